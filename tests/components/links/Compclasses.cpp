#include "components/links/Compclasses.h"

#include "components/graphing/Graph.h"
#include "tests/support/Testing.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using TValues = std::vector<double>;

/// A subscriber that keeps what it is told.
struct TListener {
  TValues told;
  TValueLink link{[this](double value) { told.push_back(value); }};
};

template <class T = TServerDataControl>
std::unique_ptr<T> Named(const QString& name, QWidget* form = nullptr) {
  auto control = std::make_unique<T>(form);
  control->setObjectName(name);
  return control;
}

// Subscriptions

TEST(TLinkableControl, CallsItsSubscribersInOrderWithZero) {
  TLinkableControl control;
  std::string order;
  double told = 1.0;
  TValueLink a([&](double value) { order += 'a', told += value; });
  TValueLink b([&](double value) { order += 'b', told += value; });
  TValueLink unset;
  TValueLink never;
  for (TValueLink* link : {&b, &unset, &a, &b}) control.AddLink(link, true);
  EXPECT_EQ(control.LinkCount(), 3);
  EXPECT_EQ(order, "");  // it has no value to start with
  control.NotifyClients();
  EXPECT_EQ(order, "ba");
  EXPECT_EQ(told, 1.0);

  control.DeleteLink(&never);
  control.DeleteLink(nullptr);
  control.AddLink(nullptr, true);
  control.DeleteLink(&b);
  control.DeleteLink(&b);
  EXPECT_EQ(control.LinkCount(), 2);
  EXPECT_FALSE(control.HasLink(&b));
  control.NotifyClients();
  EXPECT_EQ(order, "baa");
}

TEST(TDataControl, StartsTheCountAgainWithANewIntervalOnly) {
  const std::tuple<int, int, TValues> cases[] = {
      // interval set after 2, what it is then, what of 1 2 3 4 5 6 the subscriber is told
      {3, 3, {3, 6}}, {0, 3, {3, 6}},       {-5, 3, {3, 6}},        {INT_MIN, 3, {3, 6}},
      {2, 2, {4, 6}}, {1, 1, {3, 4, 5, 6}}, {INT_MAX, INT_MAX, {}},
  };
  for (const auto& [interval, kept, told] : cases) {
    SCOPED_TRACE(interval);
    TDataControl control;
    EXPECT_EQ(control.GetInterval(), 1);
    control.SetInterval(3);
    TListener listener;
    control.AddLink(&listener.link, false);
    for (int value = 1; value <= 6; ++value) {
      control.SetValue(value);
      EXPECT_EQ(control.GetValue(), value);
      if (value == 2) control.SetInterval(interval);
    }
    EXPECT_EQ(control.GetInterval(), kept);
    EXPECT_EQ(listener.told, told);
  }
}

TEST(TDataControl, TellsANewSubscriberThePresentValueIfAsked) {
  TDataControl control;
  control.SetValue(7.0);
  TListener listener;
  TListener later;
  TValueLink unset;
  control.AddLink(&listener.link, true);
  control.AddLink(&later.link, false);
  control.AddLink(&unset, true);
  EXPECT_THAT(listener.told, ElementsAre(7.0));
  EXPECT_THAT(later.told, IsEmpty());
  EXPECT_EQ(control.ValueReader()(), 7.0);
}

TEST(TDataControl, FiresItsEventAfterTheSubscribersWithTheTimeInPlace) {
  TDataControl control;
  QStringList order;
  TValueLink link([&](double) { order << QString("told at %1").arg(control.GetTime()); });
  control.AddLink(&link, false);
  QObject::connect(&control, &TDataControl::OnChange, [&](QObject* sender) {
    order << (sender == &control ? "event" : "another's event");
  });
  control.SetTimeAndValue(45000.5, 2.0);
  EXPECT_EQ(control.GetValue(), 2.0);
  EXPECT_EQ(order, QStringList({"told at 45000.5", "event"}));
}

// Clients

TEST(TServerDataControl, GivesEveryValueToItsClientsAfterItsOwnSubscribers) {
  TServerDataControl server;
  TDataControl first;
  TServerDataControl second;
  TDataControl below;
  server.SetInterval(2);
  second.SetInterval(3);
  EXPECT_TRUE(server.GetClientControls()->Add(&first));
  EXPECT_TRUE(server.GetClientControls()->Add(&second));
  EXPECT_FALSE(server.GetClientControls()->Add(std::make_unique<QObject>().get()));
  second.GetClientControls()->Add(&below);
  std::string order;
  const auto note = [&order](char name) {
    return [&order, name](double value) {
      order += name + std::to_string(static_cast<int>(value)) + ' ';
    };
  };
  TValueLink ofServer(note('s')), ofFirst(note('1')), ofSecond(note('2')), ofBelow(note('b'));
  server.AddLink(&ofServer, false);
  first.AddLink(&ofFirst, false);
  second.AddLink(&ofSecond, false);
  below.AddLink(&ofBelow, false);
  for (int value = 1; value <= 4; ++value) server.SetValue(value);
  EXPECT_EQ(order, "11 b1 s2 12 b2 13 23 b3 s4 14 b4 ");
  EXPECT_EQ(second.GetValue(), 4.0);
}

TEST(TServerDataControl, MovesItsSliderLast) {
  TKorvalGraph graph;
  TServerDataControl server;
  TDataControl client;
  server.GetClientControls()->Add(&client);
  server.SetInterval(100);
  server.SetValue(1.0);
  EXPECT_EQ(server.GetSliderLink()->GetSliderPos(), 0.0);  // in no graph
  server.GetSliderLink()->SetGraph(&graph);
  EXPECT_EQ(server.GetSliderLink()->GetSliderPos(), 1.0);
  TValues positions;
  TValueLink link([&](double) { positions.push_back(server.GetSliderLink()->GetSliderPos()); });
  client.AddLink(&link, false);
  server.SetValue(5.0);
  EXPECT_THAT(positions, ElementsAre(1.0));
  EXPECT_EQ(server.GetSliderLink()->GetSliderPos(), 5.0);
  server.GetSliderLink()->WriteValue(8.0);  // the user drags it
  EXPECT_EQ(client.GetValue(), 8.0);
}

TEST(TServerDataControl, RefusesAComponentThatWouldCloseACircle) {
  const auto a = Named("A%2");  // a placeholder in a name is none
  const auto b = Named("B");
  const auto c = Named("C");
  const auto plain = Named<TDataControl>("Plain");
  EXPECT_TRUE(a->GetClientControls()->Add(b.get()));
  EXPECT_TRUE(b->GetClientControls()->Add(c.get()));
  EXPECT_TRUE(a->PointsTo(c.get()));
  EXPECT_FALSE(c->PointsTo(a.get()));
  EXPECT_THAT(TakeMessages(), IsEmpty());

  EXPECT_FALSE(c->GetClientControls()->Add(a.get()));
  EXPECT_EQ(TakeMessages(), QStringList("Can't add component 'A%2' to the 'C.ClientControls'.\n"
                                        "Circular references not allowed!"));
  EXPECT_TRUE(c->GetClientControls()->Empty());
  EXPECT_TRUE(c->GetClientControls()->Add(plain.get()));
  EXPECT_TRUE(a->GetClientControls()->Add(c.get()));  // two ways are no circle

  // The list itself: nobody looks whether it is the control's own, until it is.
  EXPECT_FALSE(b->PointsTo(b.get()));
  EXPECT_TRUE(b->GetClientControls()->Add(b.get()));
  EXPECT_TRUE(b->PointsTo(b.get()));
  EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST(TServerDataControl, FindsItsClientsByNameOnceTheFormIsComplete) {
  QWidget form;
  const auto a = Named("A", &form);
  a->BeginLoading();
  a->GetClientControls()->SetNames({"C", "B", "D"});
  const auto b = Named("B", &form);
  const auto c = Named("C", &form);
  const auto label = Named<QWidget>("D", &form);
  b->GetClientControls()->Add(a.get());
  a->Loaded();
  // A form may hold a circle, and other components than data controls.
  ASSERT_EQ(a->GetClientControls()->Count(), 2);
  EXPECT_EQ(a->GetClientControls()->Get(0), c.get());
  EXPECT_EQ(a->GetClientControls()->Get(1), b.get());
  EXPECT_THAT(TakeMessages(), IsEmpty());
}

// Ports

TEST(TInputData, TakesTheValuesOfItsControl) {
  auto first = std::make_unique<TServerDataControl>();
  TServerDataControl second;
  first->SetValue(3.0);
  TInputData port(&second, 1.5);
  TValues taken = {port.GetValue()};
  QObject::connect(&port, &TInputData::OnChange, [&] { taken.push_back(port.GetValue()); });
  port.SetDataControl(first.get());
  port.SetDataControl(first.get());
  first->SetValue(3.0);  // an equal value is taken, too
  EXPECT_THAT(taken, ElementsAre(1.5, 3.0, 3.0));

  port.SetDataControl(&second);
  EXPECT_EQ(first->LinkCount(), 0);
  first->SetValue(9.0);
  EXPECT_EQ(port.GetValue(), 0.0);
  port.SetDataControl(first.get());
  first.reset();
  EXPECT_EQ(port.GetDataControl(), nullptr);
  EXPECT_EQ(port.GetValue(), 9.0);
  port.SetDataControl(&second);
  port.SetDataControl(nullptr);
  EXPECT_EQ(second.LinkCount(), 0);
  std::make_unique<TInputData>(nullptr)->SetDataControl(&second);
  EXPECT_EQ(second.LinkCount(), 0);
}

TEST(TInputData, AsksBeforeItTakesAValue) {
  TServerDataControl control;
  TInputData port(nullptr, 5.0);
  TValues asked;
  port.OnValidate = [&](double value) {
    EXPECT_EQ(port.GetValue(), 5.0);
    asked.push_back(value);
    return value >= 1.0;
  };
  QSignalSpy changes(&port, &TInputData::OnChange);
  port.SetDataControl(&control);
  for (const double value : {-1.0, 1.0}) control.SetValue(value);
  EXPECT_THAT(asked, ElementsAre(0.0, -1.0, 1.0));
  EXPECT_EQ(port.GetValue(), 1.0);
  EXPECT_EQ(changes.count(), 1);
}

TEST(TOutputData, GivesItsValuesToItsControlUnlessTheOwnerIsLoading) {
  TDataControl owner;
  auto control = std::make_unique<TDataControl>();
  TListener listener;
  control->AddLink(&listener.link, false);
  TOutputData port(&owner);
  port.SetValue(1.0);
  port.SetDataControl(control.get());
  port.SetDataControl(control.get());
  port.SetValue(2.0);
  EXPECT_THAT(listener.told, ElementsAre(1.0, 2.0));

  owner.BeginLoading();
  port.SetValue(3.0);
  port.SetDataControl(nullptr);
  port.SetDataControl(control.get());
  owner.Loaded();
  EXPECT_EQ(port.GetValue(), 3.0);
  EXPECT_EQ(control->GetValue(), 2.0);
  port.SetValue(4.0);
  EXPECT_THAT(listener.told, ElementsAre(1.0, 2.0, 4.0));
  control.reset();
  EXPECT_EQ(port.GetDataControl(), nullptr);
  port.SetValue(5.0);
}

TEST(Ports, FindTheirControlsByNameOnceTheFormIsComplete) {
  QWidget form;
  const auto owner = Named("Owner", &form);
  TInputData input(owner.get());
  TOutputData output(owner.get());
  owner->BeginLoading();
  input.setProperty("DataControl", "Source");
  output.setProperty("Value", 4.0);
  output.setProperty("DataControl", "Target");
  const auto source = Named("Source", &form);
  const auto target = Named("Target", &form);
  source->SetValue(8.0);
  input.Loaded();
  output.Loaded();
  owner->Loaded();
  EXPECT_EQ(input.GetDataControl(), source.get());
  EXPECT_EQ(input.GetValue(), 8.0);
  EXPECT_EQ(output.GetDataControl(), target.get());
  EXPECT_EQ(target->GetValue(), 0.0);

  TInputData inputCopy(owner.get());
  TOutputData outputCopy(owner.get());
  inputCopy.Assign(&input);
  outputCopy.Assign(&output);
  EXPECT_TRUE(inputCopy.SameAs(&input));
  EXPECT_TRUE(outputCopy.SameAs(&output));
  EXPECT_EQ(source->LinkCount(), 2);
  EXPECT_EQ(target->GetValue(), 4.0);
}

// Tampering from within a notification

void WhenItChanges(TDataControl& control, const std::function<void()>& act) {
  QObject::connect(&control, &TDataControl::OnChange, act);
}

/// A control with the subscribers a, b and c and the clients x, y and z. When b is told 1, it does
/// what the test wants.
struct TTampered {
  explicit TTampered(std::function<void(TTampered&)> whatTheTestWants)
      : tamper(std::move(whatTheTestWants)) {
    for (const char name : {'a', 'b', 'c'}) {
      links[name] = std::make_unique<TValueLink>([this, name](double value) {
        order += name + std::to_string(static_cast<int>(value));
        if (name == 'b' && value == 1.0) tamper(*this);
      });
      control->AddLink(links[name].get(), false);
    }
    WhenItChanges(*control, [this] { order += 'e'; });
    for (const char name : {'x', 'y', 'z'}) {
      clients[name] = std::make_unique<TDataControl>();
      control->GetClientControls()->Add(clients[name].get());
      WhenItChanges(*clients[name], [this, name] { order += name; });
    }
  }

  /// Who is called by 1 and then by 2.
  std::string Calls() {
    for (const double value : {1.0, 2.0}) {
      if (control) control->SetValue(value);
      order += ' ';
    }
    return order;
  }

  std::function<void(TTampered&)> tamper;
  std::map<char, std::unique_ptr<TValueLink>> links;
  std::map<char, std::unique_ptr<TDataControl>> clients;
  std::unique_ptr<TServerDataControl> control = std::make_unique<TServerDataControl>();
  std::string order;
};

TEST(Tampering, ReachesWhoIsStillThere) {
  const std::tuple<const char*, std::function<void(TTampered&)>, const char*> cases[] = {
      {"b leaves", [](TTampered& t) { t.control->DeleteLink(t.links['b'].get()); },
       "a1b1c1exyz a2c2exyz "},
      {"b leaves and comes back",
       [](TTampered& t) {
         t.control->DeleteLink(t.links['b'].get());
         t.control->AddLink(t.links['b'].get(), false);
         EXPECT_EQ(t.control->LinkCount(), 3);
       },
       "a1b1c1exyz a2c2b2exyz "},
      {"b goes", [](TTampered& t) { t.links['b'].reset(); }, "a1b1c1exyz a2c2exyz "},
      {"all subscribers go",
       [](TTampered& t) {
         t.links.clear();
         EXPECT_EQ(t.control->LinkCount(), 0);
       },
       "a1b1exyz exyz "},
      {"d comes",
       [](TTampered& t) {
         t.links['d'] = std::make_unique<TValueLink>([&t](double) { t.order += 'd'; });
         t.control->AddLink(t.links['d'].get(), false);
       },
       "a1b1c1exyz a2b2c2dexyz "},
      {"y goes", [](TTampered& t) { t.clients['y'].reset(); }, "a1b1c1exz a2b2c2exz "},
      {"y goes when x has its value",
       [](TTampered& t) { WhenItChanges(*t.clients['x'], [&t] { t.clients['y'].reset(); }); },
       "a1b1c1exz a2b2c2exz "},
      {"the control goes, and b is free for another",
       [](TTampered& t) {
         TDataControl other;
         t.control.reset();
         other.AddLink(t.links['b'].get(), false);
         EXPECT_EQ(other.LinkCount(), 1);
       },
       "a1b1  "},
      {"the control goes at its event",
       [](TTampered& t) { WhenItChanges(*t.control, [&t] { t.control.reset(); }); }, "a1b1c1e  "},
      {"the control goes when x has its value",
       [](TTampered& t) { WhenItChanges(*t.clients['x'], [&t] { t.control.reset(); }); },
       "a1b1c1ex  "},
      {"b corrects the value", [](TTampered& t) { t.control->SetValue(3.0); },
       "a1b1a3b3c3exyzc3exyz a2b2c2exyz "},
      {"the control goes within the correction",
       [](TTampered& t) {
         t.links['c']->OnValue = [&t](double) { t.control.reset(); };
         t.control->SetValue(3.0);
       },
       "a1b1a3b3  "},
  };
  for (const auto& [what, tamper, calls] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(TTampered(tamper).Calls(), calls);
  }
}

TEST(Tampering, APortMayBeDestroyedByItsSubscriber) {
  TServerDataControl control;
  TInputData source(nullptr, 2.0);
  const std::function<void(TInputData&)> acts[] = {
      [&](TInputData& port) { port.SetDataControl(&control); },
      [](TInputData& port) { port.SetValue(1.0); },
      [&](TInputData& port) { port.Assign(&source); },
  };
  for (const auto& act : acts) {
    for (const bool isAsked : {false, true}) {
      auto port = std::make_unique<TInputData>(nullptr);
      const auto destroy = [&port] {
        port.reset();
        return true;
      };
      if (isAsked) port->OnValidate = [&](double) { return destroy(); };
      QObject::connect(port.get(), &TInputData::OnChange, destroy);
      act(*port);
      EXPECT_FALSE(port);
      EXPECT_EQ(control.LinkCount(), 0);
    }
  }
}

TEST(Tampering, APortMayBePointedElsewhereByItsSubscriber) {
  TServerDataControl first;
  TServerDataControl second;
  second.SetValue(2.0);
  TInputData port(nullptr);
  QObject::connect(&port, &TInputData::OnChange, [&] { port.SetDataControl(&second); });
  port.SetDataControl(&first);
  EXPECT_EQ(port.GetDataControl(), &second);
  EXPECT_EQ(port.GetValue(), 2.0);
  EXPECT_EQ(first.LinkCount(), 0);
  EXPECT_EQ(second.LinkCount(), 1);
}

// Cascades end

/// What the user has been told by now.
QStringList Told() {
  QCoreApplication::processEvents();
  return TakeMessages();
}

/// `count` controls whose client lists are read from a form, which refuses no circle.
std::vector<std::unique_ptr<TServerDataControl>> Loading(int count) {
  std::vector<std::unique_ptr<TServerDataControl>> controls;
  for (int i = 0; i < count; ++i) {
    controls.push_back(Named(QString::number(i)));
    controls.back()->BeginLoading();
  }
  return controls;
}

TValues ValuesOf(const std::vector<std::unique_ptr<TServerDataControl>>& controls) {
  TValues values;
  for (const auto& control : controls) values.push_back(control->GetValue());
  return values;
}

TEST(Cascade, EndsThoughEveryControlIsAClientOfEveryOther) {
  for (const int count : {1, 2, 3, 30}) {
    const auto controls = Loading(count);
    for (const auto& control : controls) {
      for (const auto& client : controls) control->GetClientControls()->Add(client.get());
      control->Loaded();
    }
    for (const double value : {1.0, 2.0}) {
      controls[0]->SetValue(value);
      EXPECT_THAT(ValuesOf(controls), Each(value));
    }
    // Two and three have no more roads than can be followed.
    EXPECT_LE(Told().size(), count == 30 ? 1 : 0) << count;
  }
}

TEST(Cascade, EndsThoughItsRoadsDoubleAtEveryControl) {
  const auto controls = Loading(100);
  for (std::size_t i = 0; i + 2 < controls.size(); ++i) {
    controls[i]->GetClientControls()->Add(controls[i + 1].get());
    controls[i]->GetClientControls()->Add(controls[i + 2].get());
  }
  for (const double value : {1.0, 2.0}) {
    controls[0]->SetValue(value);
    EXPECT_THAT(ValuesOf(controls), Each(value));
  }
  EXPECT_EQ(Told(), QStringList("The values of '0' run in a circle, or on more roads than can be "
                                "followed: some were not passed on."));
}

TEST(Cascade, EndsThoughSubscribersPassValuesInACircle) {
  TServerDataControl a;
  TServerDataControl b;
  TOutputData toA(&b);
  toA.SetDataControl(&a);
  TInputData fromB(&a);
  fromB.SetDataControl(&b);
  QObject::connect(&fromB, &TInputData::OnChange, [&] { toA.SetValue(fromB.GetValue() + 1.0); });
  a.GetClientControls()->Add(&b);
  a.SetValue(1.0);
  EXPECT_GT(b.GetValue(), 1.0);

  TDataControl c;
  TDataControl d;
  QObject::connect(&c, &TDataControl::OnChange, [&] { d.SetValue(c.GetValue() + 1.0); });
  QObject::connect(&d, &TDataControl::OnChange, [&] { c.SetValue(d.GetValue() + 1.0); });
  for (const double value : {1.0, 2.0}) {
    c.SetValue(value);
    EXPECT_GT(d.GetValue(), value);
  }
  EXPECT_EQ(Told().size(), 2);  // of `a`, and once of `c`
}

TEST(Cascade, IsNotCutWhileItIsFinite) {
  const auto chain = Loading(2000);
  for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
    chain[i]->GetClientControls()->Add(chain[i + 1].get());
  }
  chain[0]->SetValue(1.0);
  EXPECT_THAT(ValuesOf(chain), Each(1.0));
  EXPECT_TRUE(chain.front()->PointsTo(chain.back().get()));

  constexpr int kMany = 300'000;  // more than there may be repeats
  TDataControl asking;
  TServerDataControl server;
  TDataControl client;
  server.GetClientControls()->Add(&client);
  int given = 0;
  TValueLink counter([&](double) { ++given; });
  client.AddLink(&counter, false);
  TValueLink many([&](double) {
    for (int i = 0; i < kMany; ++i) server.SetValue(i);
  });
  asking.AddLink(&many, false);
  asking.SetValue(1.0);
  EXPECT_EQ(given, kMany);

  TDataControl counting;
  TListener listener;
  counting.AddLink(&listener.link, false);
  TValueLink down([&](double value) {
    if (value > 0.0) counting.SetValue(value - 1.0);
  });
  counting.AddLink(&down, false);
  counting.SetValue(1000.0);
  EXPECT_EQ(listener.told.size(), 1001U);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST(Cascade, DoesNotHoldUpValuesThatComeWhileASubscriberWaits) {
  constexpr int kMany = 300'000;  // more than one cascade may have calls
  TDataControl waiting;
  TDataControl flowing;
  int counted = 0;
  TValueLink counter([&](double) { ++counted; });
  flowing.AddLink(&counter, false);
  TValueLink waiter([&](double) {
    QEventLoop loop;
    QMetaObject::invokeMethod(
        &loop,
        [&] {
          for (int i = 0; i < kMany; ++i) flowing.SetValue(i);
          loop.quit();
        },
        Qt::QueuedConnection);
    loop.exec();
  });
  waiting.AddLink(&waiter, false);
  waiting.SetValue(1.0);
  EXPECT_GT(counted, kMany - 256);
}

// Random operations

/// Controls, subscribers and ports that come, go and change under each other's feet, beside a model
/// of who should know whom. Everything has an id that never comes again.
class TWorld {
 public:
  static constexpr int kSlots = 14;  ///< the first half are servers

  explicit TWorld(unsigned seed) : random_(seed) {}

  void Operate() {
    const std::size_t operation = Any(20);
    auto& control = controls_[Any(kSlots)];
    auto& subscriber = subscribers_[Any(kSlots)];
    if (operation < 2) return Create(Any(kSlots));
    // Out of the slot first: what happens while it goes must not find it.
    if (operation < 3) return std::exchange(control, nullptr).reset();
    if (operation < 4) return subscriber.reset();
    if (operation < 6 && subscriber) return PointPorts(control.get(), subscriber);
    if (operation < 6 || !control) return;
    if (operation < 9) return Subscribe(*control, Any(kSlots));
    if (operation < 10 && subscriber) return Unsubscribe(*control, *subscriber);
    if (operation < 13) return AddClient(*control, Server(Any(kSlots / 2)));
    if (operation < 14) return DeleteClient(*control, Server(Any(kSlots / 2)));
    control->SetValue(static_cast<double>(Any(1000)));
  }

  /// Every control knows those that the model says, and no others.
  void Check() {
    for (const auto& control : controls_) {
      if (!control) continue;
      int links = 0;
      int clients = 0;
      for (const auto& subscriber : subscribers_) {
        if (!subscriber) continue;
        const bool linked = subscribed_.contains({IdOf(control.get()), subscriber->id});
        const bool listens = listened_[subscriber->id] == IdOf(control.get());
        ASSERT_EQ(control->HasLink(&subscriber->link), linked);
        ASSERT_EQ(subscriber->port.GetDataControl() == control.get(), listens);
        links += linked + listens;
      }
      ASSERT_EQ(control->LinkCount(), links);
      auto* server = qobject_cast<TServerDataControl*>(control.get());
      if (!server) continue;
      for (const auto& client : controls_) {
        const bool known = client && clients_.contains({IdOf(server), IdOf(client.get())});
        ASSERT_EQ(server->GetClientControls()->Contains(client.get()), known);
        clients += known;
      }
      ASSERT_EQ(server->GetClientControls()->Count(), clients);
    }
  }

  int Calls() const { return calls_; }
  int Refusals() const { return refusals_; }

 private:
  struct TSubscriber {
    int id = 0;
    TValueLink link;
    TInputData port{nullptr};
    TOutputData output{nullptr};
  };
  using TPairs = std::set<std::pair<int, int>>;  ///< of ids

  std::size_t Any(int count) { return random_() % static_cast<unsigned>(count); }
  static int IdOf(const QObject* control) { return control->property("id").toInt(); }

  TServerDataControl* Server(std::size_t slot) const {
    return qobject_cast<TServerDataControl*>(controls_[slot].get());
  }

  void Create(std::size_t slot) {
    if (controls_[slot]) return;
    auto control = slot < kSlots / 2 ? std::make_unique<TServerDataControl>()
                                     : std::make_unique<TDataControl>();
    control->setProperty("id", ++lastId_);
    control->SetInterval(1 + static_cast<int>(Any(3)));
    controls_[slot] = std::move(control);
  }

  void Subscribe(TDataControl& control, std::size_t slot) {
    auto& subscriber = subscribers_[slot];
    if (!subscriber) {
      subscriber = std::make_unique<TSubscriber>();
      subscriber->id = ++lastId_;
      subscriber->link.OnValue = [this, slot](double) { Told(slot); };
      QObject::connect(&subscriber->port, &TInputData::OnChange, [this, slot] { Told(slot); });
    }
    subscribed_.emplace(IdOf(&control), subscriber->id);
    control.AddLink(&subscriber->link, Any(2) == 0);
  }

  void Unsubscribe(TDataControl& control, TSubscriber& subscriber) {
    subscribed_.erase({IdOf(&control), subscriber.id});
    control.DeleteLink(&subscriber.link);
  }

  /// Whether values of the one get to the other, by the model.
  bool Reaches(int from, int target, std::set<int>& seen) const {
    return std::ranges::any_of(controls_, [&](const auto& next) {
      const int id = next ? IdOf(next.get()) : 0;
      if (!clients_.contains({from, id})) return false;
      return id == target || (seen.insert(id).second && Reaches(id, target, seen));
    });
  }

  void AddClient(TDataControl& client, TServerDataControl* server) {
    if (!server || server->GetClientControls()->Count() >= 2) return;
    std::set<int> seen;
    const bool circle = Reaches(IdOf(&client), IdOf(server), seen);
    const bool known = server->GetClientControls()->Contains(&client);
    ASSERT_EQ(server->GetClientControls()->Add(&client), !circle && !known);
    const bool refused = circle && !known;
    ASSERT_EQ(TakeMessages().size(), refused ? 1 : 0);
    refusals_ += refused;
    if (!circle) clients_.emplace(IdOf(server), IdOf(&client));
  }

  void DeleteClient(TDataControl& client, TServerDataControl* server) {
    if (!server) return;
    clients_.erase({IdOf(server), IdOf(&client)});
    server->GetClientControls()->DeleteComponent(&client);
  }

  void PointPorts(const QPointer<TDataControl>& control, std::unique_ptr<TSubscriber>& subscriber) {
    auto* server = qobject_cast<TServerDataControl*>(control);
    listened_[subscriber->id] = server ? IdOf(server) : -1;
    subscriber->port.SetDataControl(server);
    if (subscriber) subscriber->output.SetDataControl(control);  // both may be gone by now
  }

  /// A subscriber is told a value, and now and then does something about it.
  void Told(std::size_t slot) {
    ++calls_;
    ASSERT_TRUE(subscribers_[slot]) << "a subscriber that is gone was told";
    if (depth_ >= 3 || Any(8) != 0) return;
    ++depth_;
    Operate();
    --depth_;
  }

  std::mt19937 random_;
  std::array<std::unique_ptr<TDataControl>, kSlots> controls_;
  std::array<std::unique_ptr<TSubscriber>, kSlots> subscribers_;
  TPairs subscribed_;            ///< control, subscriber
  TPairs clients_;               ///< server, client
  std::map<int, int> listened_;  ///< by subscriber
  int lastId_ = 0;
  int depth_ = 0;
  int calls_ = 0;
  int refusals_ = 0;
};

TEST(LinkedControls, KeepNoDanglingLinkThroughAHundredThousandRandomOperations) {
  TWorld world(20240229);
  for (int i = 0; i < 100'000; ++i) {
    world.Operate();
    if (i % 50 == 0) world.Check();
    ASSERT_FALSE(HasFailure()) << "operation " << i;
  }
  EXPECT_GT(world.Calls(), 10'000);
  EXPECT_GT(world.Refusals(), 100);
}

}  // namespace
