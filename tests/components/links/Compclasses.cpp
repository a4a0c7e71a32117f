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
  explicit TListener(TLinkableControl& control) { control.AddLink(&link, false); }
  TValues told;
  TValueLink link{[this](double value) { told.push_back(value); }};
};

/// Calls `act` with each value of a control as long as the subscription lives.
std::unique_ptr<TValueLink> Subscribed(TLinkableControl& control, std::function<void(double)> act) {
  auto link = std::make_unique<TValueLink>(std::move(act));
  control.AddLink(link.get(), false);
  return link;
}

template <class T = TServerDataControl>
std::unique_ptr<T> Named(const QString& name, QWidget* form = nullptr) {
  auto control = std::make_unique<T>(form);
  control->setObjectName(name);
  return control;
}

// Subscriptions

TEST(TLinkableControl, CallsEachSubscriberOnceWithZero) {
  TLinkableControl control;
  TListener listener(control);
  TValueLink never;
  TValueLink* const none = nullptr;
  for (TValueLink* link : {&listener.link, none}) control.AddLink(link, true);
  EXPECT_EQ(control.LinkCount(), 1);
  EXPECT_THAT(listener.told, IsEmpty());  // it has no value to start with
  control.NotifyClients();
  for (TValueLink* link : {&never, none, &listener.link, &listener.link}) control.DeleteLink(link);
  EXPECT_EQ(control.LinkCount(), 0);
  EXPECT_FALSE(control.HasLink(&listener.link));
  control.NotifyClients();
  EXPECT_THAT(listener.told, ElementsAre(0.0));
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
    TListener listener(control);
    TValueLink unset;
    control.AddLink(&unset, true);
    for (int value = 1; value <= 6; ++value) {
      control.SetValue(value);
      EXPECT_EQ(control.GetValue(), value);
      if (value == 2) control.SetInterval(interval);
    }
    EXPECT_EQ(control.GetInterval(), kept);
    EXPECT_EQ(listener.told, told);
  }
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
  const auto note = [&order](TDataControl& control, char name) {
    return Subscribed(control, [&order, name](double value) {
      order += name + std::to_string(static_cast<int>(value)) + ' ';
    });
  };
  const std::unique_ptr<TValueLink> links[] = {note(server, 's'), note(first, '1'),
                                               note(second, '2'), note(below, 'b')};
  for (int value = 1; value <= 4; ++value) server.SetValue(value);
  EXPECT_EQ(order, "11 b1 s2 12 b2 13 23 b3 s4 14 b4 ");
  EXPECT_EQ(second.GetValue(), 4.0);
}

TEST(TServerDataControl, MovesItsSliderLast) {
  TKorvalGraph graph;
  TServerDataControl server;
  TSliderLink& slider = *server.GetSliderLink();
  TDataControl client;
  server.GetClientControls()->Add(&client);
  server.SetInterval(100);
  TValues positions;
  const auto link = Subscribed(client, [&](double) { positions.push_back(slider.GetSliderPos()); });
  server.SetValue(1.0);  // in no graph
  slider.SetGraph(&graph);
  server.SetValue(5.0);
  EXPECT_THAT(positions, ElementsAre(0.0, 1.0));
  EXPECT_EQ(slider.GetSliderPos(), 5.0);
  slider.WriteValue(8.0);  // the user drags it
  EXPECT_EQ(client.GetValue(), 8.0);
}

TEST(TServerDataControl, RefusesAComponentThatWouldCloseACircle) {
  const auto a = Named("A%2");  // a placeholder in a name is none
  const auto b = Named("B");
  const auto c = Named("C");
  EXPECT_TRUE(a->GetClientControls()->Add(b.get()));
  EXPECT_TRUE(b->GetClientControls()->Add(c.get()));
  EXPECT_TRUE(a->PointsTo(c.get()));
  EXPECT_FALSE(c->PointsTo(a.get()));
  EXPECT_THAT(TakeMessages(), IsEmpty());

  EXPECT_FALSE(c->GetClientControls()->Add(a.get()));
  EXPECT_EQ(TakeMessages(), QStringList("Can't add component 'A%2' to the 'C.ClientControls'.\n"
                                        "Circular references not allowed!"));
  EXPECT_TRUE(c->GetClientControls()->Empty());
  EXPECT_TRUE(a->GetClientControls()->Add(c.get()));  // two ways are no circle

  EXPECT_TRUE(b->GetClientControls()->Add(b.get()));  // nobody looks whether it is its own
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
  TListener listener(*control);
  TOutputData port(&owner);
  port.SetValue(1.0);
  for (int i = 0; i < 2; ++i) port.SetDataControl(control.get());
  port.SetValue(2.0);
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

// Cascades end

/// What the user has been told by now.
QStringList Told() {
  QCoreApplication::processEvents();
  return TakeMessages();
}

/// `count` controls, each of which has the next ones as clients.
std::vector<std::unique_ptr<TServerDataControl>> Chain(int count, int next) {
  std::vector<std::unique_ptr<TServerDataControl>> controls;
  for (int i = 0; i < count; ++i) {
    controls.push_back(Named(QString::number(i)));
    for (int k = std::max(0, i - next); k < i; ++k) {
      controls[static_cast<std::size_t>(k)]->GetClientControls()->Add(controls.back().get());
    }
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
    const auto controls = Chain(count, 0);
    for (const auto& control : controls) {
      control->BeginLoading();  // a form refuses no circle
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
  const auto controls = Chain(100, 2);
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
  const auto chain = Chain(2000, 1);
  chain[0]->SetValue(1.0);
  EXPECT_THAT(ValuesOf(chain), Each(1.0));
  EXPECT_TRUE(chain.front()->PointsTo(chain.back().get()));

  constexpr std::size_t kMany = 300'000;  // more than there may be repeats
  TDataControl asking;
  TServerDataControl server;
  TDataControl client;
  server.GetClientControls()->Add(&client);
  TListener given(client);
  const auto many = Subscribed(asking, [&](double) {
    for (std::size_t i = 0; i < kMany; ++i) server.SetValue(1.0);
  });
  asking.SetValue(1.0);
  EXPECT_EQ(given.told.size(), kMany);

  TDataControl counting;
  TListener counted(counting);
  const auto down = Subscribed(counting, [&](double value) {
    if (value > 0.0) counting.SetValue(value - 1.0);
  });
  counting.SetValue(1000.0);
  EXPECT_EQ(counted.told.size(), 1001U);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST(Cascade, DoesNotHoldUpValuesThatComeWhileASubscriberWaits) {
  constexpr int kMany = 300'000;  // more than one cascade may have calls
  TDataControl waiting;
  TDataControl flowing;
  TListener counted(flowing);
  const auto waiter = Subscribed(waiting, [&](double) {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
      for (int i = 0; i < kMany; ++i) flowing.SetValue(i);
      loop.quit();
    });
    loop.exec();
  });
  waiting.SetValue(1.0);
  EXPECT_GT(counted.told.size(), kMany - 256U);
}

// Random operations

/// Controls, subscribers and ports that come, go and change under each other's feet.
class TWorld {
 public:
  explicit TWorld(unsigned seed) : random_(seed) {}

  void Operate() {
    const std::size_t operation = Any(20);
    auto& control = controls_[Any(kSlots)];
    auto& subscriber = subscribers_[Any(kSlots)];
    if (operation < 2) return Create(Any(kSlots));
    if (operation < 3) return std::exchange(control, nullptr).reset();
    if (operation < 4) return subscriber.reset();
    if (operation < 6 && subscriber) return PointPorts(control.get(), subscriber);
    if (operation < 6 || !control) return;
    if (operation < 9) return Subscribe(*control, Any(kSlots));
    if (operation < 10 && subscriber) return control->DeleteLink(&subscriber->link);
    if (operation >= 14) return control->SetValue(static_cast<double>(Any(1000)));
    TServerDataControl* server = Server(Any(kSlots / 2));
    if (!server) return;
    if (operation < 13 && server->GetClientControls()->Count() < 2) AddClient(*server, *control);
    if (operation >= 13) server->GetClientControls()->DeleteComponent(control.get());
  }

  /// Whom a control knows, knows the control, and there are no others.
  void Check() const {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      const auto& control = controls_[slot];
      if (!control) continue;
      ASSERT_EQ(control->LinkCount(),
                std::ranges::count_if(subscribers_, [&](const auto& one) {
                  return one && control->HasLink(&one->link);
                }) + std::ranges::count_if(subscribers_, [&](const auto& one) {
                  return one && one->port.GetDataControl() == control.get();
                }));
      TServerDataControl* server = Server(slot);
      if (!server) continue;
      ASSERT_EQ(server->PointsTo(server), server->GetClientControls()->Contains(server));
      ASSERT_EQ(server->GetClientControls()->Count(),
                std::ranges::count_if(controls_, [&](const auto& client) {
                  return server->GetClientControls()->Contains(client.get());
                }));
    }
  }

  int Calls() const { return calls_; }
  qsizetype Refusals() const { return refusals_; }

 private:
  static constexpr std::size_t kSlots = 14;  ///< the first half are servers

  struct TSubscriber {
    TValueLink link;
    TInputData port{nullptr};
    TOutputData output{nullptr};
  };

  std::size_t Any(std::size_t count) { return random_() % count; }
  TServerDataControl* Server(std::size_t slot) const {
    return qobject_cast<TServerDataControl*>(controls_[slot].get());
  }

  void Create(std::size_t slot) {
    if (controls_[slot]) return;
    controls_[slot] = slot < kSlots / 2 ? std::make_unique<TServerDataControl>()
                                        : std::make_unique<TDataControl>();
    controls_[slot]->SetInterval(1 + static_cast<int>(Any(3)));
  }

  void Subscribe(TDataControl& control, std::size_t slot) {
    auto& subscriber = subscribers_[slot];
    if (!subscriber) {
      subscriber = std::make_unique<TSubscriber>();
      subscriber->link.OnValue = [this, slot](double) { Told(slot); };
      QObject::connect(&subscriber->port, &TInputData::OnChange, [this, slot] { Told(slot); });
    }
    control.AddLink(&subscriber->link, Any(2) == 0);
  }

  void AddClient(TServerDataControl& server, TDataControl& client) {
    const bool isKnown = server.GetClientControls()->Contains(&client);
    const bool isAdded = server.GetClientControls()->Add(&client);
    const qsizetype messages = TakeMessages().size();
    ASSERT_EQ(messages, isAdded || isKnown ? 0 : 1);
    refusals_ += messages;
  }

  static void PointPorts(const QPointer<TDataControl>& control,
                         const std::unique_ptr<TSubscriber>& subscriber) {
    subscriber->port.SetDataControl(qobject_cast<TServerDataControl*>(control));
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
  int depth_ = 0;
  int calls_ = 0;
  qsizetype refusals_ = 0;
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
