#include "components/links/Compclasses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QSignalSpy>
#include <QWidget>
#include <array>
#include <climits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "components/graphing/Graph.h"
#include "tests/support/Testsupport.h"

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

TEST(TDataControl, NotifiesEveryThirdValueAndKeepsTheLatest) {
  TDataControl control;
  control.SetInterval(3);
  TListener listener;
  control.AddLink(&listener.link, false);
  for (int value = 1; value <= 7; ++value) {
    control.SetValue(value);
    EXPECT_EQ(control.GetValue(), value);
  }
  EXPECT_THAT(listener.told, ElementsAre(3.0, 6.0));
}

TEST(TDataControl, StartsTheCountAgainWithANewIntervalOnly) {
  const struct {
    int interval, kept;
    TValues told;  // of 1 2 3 4 5 6, with the interval set after 2
  } cases[] = {
      {3, 3, {3, 6}}, {0, 3, {3, 6}},       {-5, 3, {3, 6}},        {INT_MIN, 3, {3, 6}},
      {2, 2, {4, 6}}, {1, 1, {3, 4, 5, 6}}, {INT_MAX, INT_MAX, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.interval);
    TDataControl control;
    EXPECT_EQ(control.GetInterval(), 1);
    control.SetInterval(3);
    TListener listener;
    control.AddLink(&listener.link, false);
    for (int value = 1; value <= 6; ++value) {
      control.SetValue(value);
      if (value == 2) control.SetInterval(c.interval);
    }
    EXPECT_EQ(control.GetInterval(), c.kept);
    EXPECT_EQ(listener.told, c.told);
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
  std::string order;
  TValueLink link([&](double) {
    EXPECT_EQ(control.GetTime(), 45000.5);
    order += 'l';
  });
  control.AddLink(&link, false);
  QObject::connect(&control, &TDataControl::OnChange, [&](QObject* sender) {
    EXPECT_EQ(sender, &control);
    order += 'e';
  });
  control.SetTimeAndValue(45000.5, 2.0);
  EXPECT_EQ(control.GetValue(), 2.0);
  EXPECT_EQ(order, "le");
}

// Clients

TEST(TServerDataControl, GivesEveryValueToItsClientsAfterItsOwnSubscribers) {
  TServerDataControl server;
  TDataControl first;
  TServerDataControl second;
  TDataControl below;
  server.SetInterval(2);
  second.SetInterval(3);
  for (TDataControl* client :
       {static_cast<TDataControl*>(&first), static_cast<TDataControl*>(&second)}) {
    EXPECT_TRUE(server.GetClientControls()->Add(client));
  }
  second.GetClientControls()->Add(&below);
  std::string order;
  TValueLink links[4];
  const std::pair<TDataControl*, char> controls[] = {
      {&server, 's'}, {&first, '1'}, {&second, '2'}, {&below, 'b'}};
  for (std::size_t i = 0; i < 4; ++i) {
    links[i].OnValue = [&order, name = controls[i].second](double value) {
      order += name + std::to_string(static_cast<int>(value)) + ' ';
    };
    controls[i].first->AddLink(&links[i], false);
  }
  for (int value = 1; value <= 4; ++value) server.SetValue(value);
  EXPECT_EQ(order, "11 b1 s2 12 b2 13 23 b3 s4 14 b4 ");
  EXPECT_EQ(second.GetValue(), 4.0);
  EXPECT_FALSE(server.GetClientControls()->Add(std::make_unique<QObject>().get()));
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
  b->GetClientControls()->Add(a.get());
  const auto label = Named<QWidget>("D", &form);
  EXPECT_TRUE(a->GetClientControls()->Empty());
  a->Loaded();
  // A form may hold a circle, and other components than data controls.
  EXPECT_EQ(a->GetClientControls()->Count(), 2);
  EXPECT_EQ(a->GetClientControls()->Get(0), c.get());
  EXPECT_EQ(a->GetClientControls()->Get(1), b.get());
  EXPECT_THAT(TakeMessages(), IsEmpty());
  EXPECT_FALSE(a->IsLoading());
}

TEST(TServerDataControl, CopiesAListAndForgetsClientsThatGo) {
  TServerDataControl a;
  TServerDataControl b;
  auto client = std::make_unique<TDataControl>();
  auto other = std::make_unique<TServerDataControl>();
  a.GetClientControls()->Add(client.get());
  a.GetClientControls()->Add(other.get());
  b.SetClientControls(a.GetClientControls());
  b.SetClientControls(nullptr);
  EXPECT_EQ(b.GetClientControls()->Count(), 2);
  client.reset();
  other.reset();
  EXPECT_TRUE(a.GetClientControls()->Empty());
  EXPECT_TRUE(b.GetClientControls()->Empty());
  a.SetValue(1.0);
}

// Ports

TEST(TInputData, TakesTheValuesOfItsControl) {
  auto first = std::make_unique<TServerDataControl>();
  TServerDataControl second;
  first->SetValue(3.0);
  TInputData port(&second, 1.5);
  EXPECT_EQ(port.GetValue(), 1.5);
  EXPECT_EQ(port.Owner(), &second);
  QSignalSpy changes(&port, &TInputData::OnChange);
  port.SetDataControl(first.get());
  EXPECT_EQ(port.GetValue(), 3.0);
  port.SetDataControl(first.get());
  EXPECT_EQ(changes.count(), 1);
  first->SetValue(3.0);
  EXPECT_EQ(changes.count(), 2);  // an equal value is news too

  port.SetDataControl(&second);
  EXPECT_EQ(port.GetValue(), 0.0);
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
  {
    TInputData shortLived(nullptr);
    shortLived.SetDataControl(&second);
    EXPECT_EQ(second.LinkCount(), 1);
  }
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
  control.SetValue(-1.0);
  EXPECT_EQ(port.GetValue(), 5.0);
  EXPECT_EQ(changes.count(), 0);
  control.SetValue(1.0);
  EXPECT_EQ(port.GetValue(), 1.0);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_THAT(asked, ElementsAre(0.0, -1.0, 1.0));
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
  EXPECT_EQ(input.property("DataControl").toString(), "Source");

  TInputData inputCopy(owner.get());
  TOutputData outputCopy(owner.get());
  inputCopy.Assign(&input);
  outputCopy.Assign(&output);
  EXPECT_TRUE(inputCopy.SameAs(&input));
  EXPECT_TRUE(outputCopy.SameAs(&output));
  EXPECT_EQ(source->LinkCount(), 2);
  EXPECT_EQ(target->GetValue(), 4.0);
  inputCopy.Assign(&output);
  EXPECT_TRUE(inputCopy.SameAs(&input));
  EXPECT_FALSE(inputCopy.SameAs(&output));
}

// Tampering from within a notification

/// A control with three subscribers; the second one does what the test wants.
struct TTampered : testing::Test {
  TTampered() {
    for (std::unique_ptr<TValueLink>& link : links) {
      link = std::make_unique<TValueLink>();
      control->AddLink(link.get(), false);
    }
    links[0]->OnValue = [this](double) { order += '0'; };
    links[1]->OnValue = [this](double value) {
      order += '1';
      if (value == 1.0) tamper();
    };
    links[2]->OnValue = [this](double) { order += '2'; };
    QObject::connect(control.get(), &TDataControl::OnChange, [this] { order += 'e'; });
  }

  /// Who is called by 1.0, at which the second subscriber tampers, and then by 2.0.
  std::string Calls() {
    for (const double value : {1.0, 2.0}) {
      if (control) control->SetValue(value);
      order += ' ';
    }
    return order;
  }

  std::unique_ptr<TServerDataControl> control = std::make_unique<TServerDataControl>();
  std::array<std::unique_ptr<TValueLink>, 3> links;
  std::function<void()> tamper;
  std::string order;
};

TEST_F(TTampered, ASubscriberLeaves) {
  tamper = [this] { control->DeleteLink(links[1].get()); };
  EXPECT_EQ(Calls(), "012e 02e ");
  EXPECT_EQ(control->LinkCount(), 2);
}

TEST_F(TTampered, ASubscriberLeavesAndComesBack) {
  tamper = [this] {
    control->DeleteLink(links[1].get());
    control->AddLink(links[1].get(), false);
    EXPECT_EQ(control->LinkCount(), 3);
  };
  EXPECT_EQ(Calls(), "012e 021e ");
}

TEST_F(TTampered, ASubscriberGoes) {
  tamper = [this] { links[1].reset(); };
  EXPECT_EQ(Calls(), "012e 02e ");
}

TEST_F(TTampered, AllSubscribersGo) {
  tamper = [this] {
    for (std::unique_ptr<TValueLink>& link : links) link.reset();
    EXPECT_EQ(control->LinkCount(), 0);
  };
  EXPECT_EQ(Calls(), "01e e ");
}

TEST_F(TTampered, ASubscriberComesAndGetsTheNextValue) {
  TListener listener;
  tamper = [&] { control->AddLink(&listener.link, false); };
  EXPECT_EQ(Calls(), "012e 012e ");
  EXPECT_THAT(listener.told, ElementsAre(2.0));
}

TEST_F(TTampered, TheControlGoes) {
  TDataControl client;
  control->GetClientControls()->Add(&client);
  tamper = [this] { control.reset(); };
  EXPECT_EQ(Calls(), "01  ");
  EXPECT_EQ(client.GetValue(), 0.0);
  TDataControl other;
  other.AddLink(links[1].get(), false);  // free for another control
  EXPECT_EQ(other.LinkCount(), 1);
}

TEST_F(TTampered, TheControlGoesFromWithinItsOwnCorrection) {
  links[2]->OnValue = [this](double value) {
    if (value == 3.0) control.reset();
  };
  tamper = [this] { control->SetValue(3.0); };
  EXPECT_EQ(Calls(), "0101  ");
}

TEST_F(TTampered, ASubscriberCorrectsTheValue) {
  TListener listener;
  control->AddLink(&listener.link, false);
  tamper = [this] { control->SetValue(10.0); };
  control->SetValue(1.0);
  EXPECT_EQ(order,
            "0101"
            "2e2e");
  EXPECT_THAT(listener.told, ElementsAre(10.0, 10.0));
  EXPECT_EQ(control->GetValue(), 10.0);
}

TEST(Tampering, AnyListenerOnTheRoadMayDestroyTheServer) {
  const auto road = [](auto hook) {
    auto server = std::make_unique<TServerDataControl>();
    TServerDataControl client;
    TDataControl last;
    server->GetClientControls()->Add(&client);
    server->GetClientControls()->Add(&last);
    const auto end = [&server] { server.reset(); };
    hook(*server, client, end);
    server->SetValue(1.0);
    EXPECT_FALSE(server);
    EXPECT_EQ(last.GetValue(), 0.0);
  };
  road([](TServerDataControl& server, TServerDataControl&, auto end) {
    QObject::connect(&server, &TDataControl::OnChange, end);
  });
  road([](TServerDataControl&, TServerDataControl& client, auto end) {
    QObject::connect(&client, &TDataControl::OnChange, end);
  });
}

TEST(Tampering, AClientMayTakeOthersOutOfTheList) {
  TServerDataControl server;
  TDataControl first;
  auto second = std::make_unique<TDataControl>();
  TDataControl third;
  for (TDataControl* client : {&first, second.get(), &third}) {
    server.GetClientControls()->Add(client);
  }
  TValueLink link([&](double) { second.reset(); });
  first.AddLink(&link, false);
  server.SetValue(1.0);
  EXPECT_EQ(server.GetClientControls()->Count(), 2);
  EXPECT_EQ(third.GetValue(), 1.0);
}

TEST(Tampering, APortMayBeDestroyedByItsSubscriber) {
  TServerDataControl control;
  const auto destroyed = [&](auto hook, auto act) {
    auto port = std::make_unique<TInputData>(nullptr);
    port->setObjectName("port");
    hook(*port, [&port] { port.reset(); });
    act(*port);
    EXPECT_FALSE(port);
    EXPECT_EQ(control.LinkCount(), 0);
  };
  const auto onChange = [](TInputData& port, auto end) {
    QObject::connect(&port, &TInputData::OnChange, end);
  };
  const auto onValidate = [](TInputData& port, auto end) {
    port.OnValidate = [end](double) {
      end();
      return true;
    };
  };
  TInputData source(nullptr, 2.0);
  const auto point = [&](TInputData& port) { port.SetDataControl(&control); };
  const auto set = [&](TInputData& port) { port.SetValue(1.0); };
  const auto copy = [&](TInputData& port) { port.Assign(&source); };
  destroyed(onChange, point);
  destroyed(onChange, set);
  destroyed(onChange, copy);
  destroyed(onValidate, point);
  destroyed(onValidate, set);
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
/// of who should know whom.
class TWorld {
 public:
  static constexpr int kSlots = 14;  ///< the first half are servers

  explicit TWorld(unsigned seed) : random_(seed) {}

  void Operate() {
    const int operation = Any(20);
    if (operation < 2) return Create(Any(kSlots));
    if (operation < 3) return Destroy(Any(kSlots));
    if (operation < 6) return Subscribe(Any(kSlots), Any(kSlots), Any(2) == 0);
    if (operation < 7) return Unsubscribe(Any(kSlots), Any(kSlots));
    if (operation < 8) return links_[Index(Any(kSlots))].reset();
    if (operation < 11) return AddClient(Any(kSlots / 2), Any(kSlots));
    if (operation < 12) return DeleteClient(Any(kSlots / 2), Any(kSlots));
    if (operation < 14) return PointPorts(Any(kSlots), Any(kSlots));
    SetValue(Any(kSlots));
  }

  /// Every control knows those that the model says, and no others.
  void Check() {
    for (int i = 0; i < kSlots; ++i) {
      TSlot* control = Control(i);
      if (!control) continue;
      int links = 0;
      for (int k = 0; k < kSlots; ++k) {
        const TSubscriber* link = links_[Index(k)].get();
        if (!link) continue;
        const bool linked = link->controls.contains(control->id);
        ASSERT_EQ(control->control->HasLink(&link->link), linked);
        links += linked;
        const bool listens = link->listensTo == control->id;
        ASSERT_EQ(link->port.GetDataControl() == control->control.get(), listens);
        links += listens;
      }
      ASSERT_EQ(control->control->LinkCount(), links);
      TServerDataControl* server = control->Server();
      if (!server) continue;
      std::set<int> clients;
      for (const int client : control->clients) {
        if (Find(client)) clients.insert(client);
      }
      ASSERT_EQ(ClientIds(*server), clients);
    }
  }

  int Calls() const { return calls_; }
  int Refusals() const { return refusals_; }

 private:
  struct TSlot {
    int id;
    std::unique_ptr<TDataControl> control;
    std::set<int> clients;  ///< ids, also of controls that are gone

    TServerDataControl* Server() const { return qobject_cast<TServerDataControl*>(control.get()); }
  };
  struct TSubscriber {
    TValueLink link;
    TInputData port{nullptr};
    int listensTo = 0;  ///< id, also of a control that is gone
    TOutputData output{nullptr};
    std::set<int> controls;  ///< ids, also of controls that are gone
  };

  static std::size_t Index(int slot) { return static_cast<std::size_t>(slot); }
  int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  TSlot* Control(int slot) { return controls_[Index(slot)].get(); }
  TSlot* Find(int id) {
    for (int i = 0; i < kSlots; ++i) {
      if (Control(i) && Control(i)->id == id) return Control(i);
    }
    return nullptr;
  }
  static std::set<int> ClientIds(TServerDataControl& server) {
    std::set<int> ids;
    for (int i = 0; i < server.GetClientControls()->Count(); ++i) {
      ids.insert(server.GetClientControls()->Get(i)->property("id").toInt());
    }
    return ids;
  }

  void Create(int slot) {
    if (Control(slot)) return;
    auto made = std::make_unique<TSlot>();
    made->id = ++lastId_;
    made->control = slot < kSlots / 2 ? std::make_unique<TServerDataControl>()
                                      : std::make_unique<TDataControl>();
    made->control->setProperty("id", made->id);
    made->control->SetInterval(1 + Any(3));
    controls_[Index(slot)] = std::move(made);
  }

  /// Out of the model first: what happens while it goes must not find it.
  void Destroy(int slot) { const auto gone = std::move(controls_[Index(slot)]); }

  void Subscribe(int slot, int who, bool notifyNow) {
    TSlot* control = Control(slot);
    if (!control) return;
    auto& link = links_[Index(who)];
    if (!link) {
      link = std::make_unique<TSubscriber>();
      link->link.OnValue = [this, who](double) { Told(who); };
      QObject::connect(&link->port, &TInputData::OnChange, [this, who] { Told(who); });
    }
    link->controls.insert(control->id);
    control->control->AddLink(&link->link, notifyNow);
  }

  void Unsubscribe(int slot, int who) {
    auto& link = links_[Index(who)];
    TSlot* control = Control(slot);
    if (!control || !link) return;
    link->controls.erase(control->id);
    control->control->DeleteLink(&link->link);
  }

  /// Whether values of the control get to the target, by the model.
  bool Reaches(const TSlot& from, int target, std::set<int>& seen) {
    for (const int client : from.clients) {
      const TSlot* next = Find(client);
      if (!next) continue;
      if (client == target) return true;
      if (seen.insert(client).second && Reaches(*next, target, seen)) return true;
    }
    return false;
  }

  void AddClient(int slot, int client) {
    TSlot* server = Control(slot);
    TSlot* added = Control(client);
    if (!server || !added || server->Server()->GetClientControls()->Count() >= 2) return;
    std::set<int> seen;
    const bool circle = Reaches(*added, server->id, seen);
    const bool known = server->Server()->GetClientControls()->Contains(added->control.get());
    ASSERT_EQ(server->Server()->GetClientControls()->Add(added->control.get()), !circle && !known);
    const bool refused = circle && !known;
    ASSERT_EQ(TakeMessages().size(), refused ? 1 : 0);
    refusals_ += refused;
    if (!circle) server->clients.insert(added->id);
  }

  void DeleteClient(int slot, int client) {
    TSlot* server = Control(slot);
    TSlot* removed = Control(client);
    if (!server || !removed) return;
    server->Server()->GetClientControls()->DeleteComponent(removed->control.get());
    server->clients.erase(removed->id);
  }

  void PointPorts(int slot, int who) {
    const auto& link = links_[Index(who)];
    const TSlot* control = Control(slot);
    if (!link) return;
    TServerDataControl* server = control ? control->Server() : nullptr;
    link->listensTo = server ? control->id : 0;
    link->port.SetDataControl(server);
    if (!link) return;  // by now
    control = Control(slot);
    link->output.SetDataControl(control ? control->control.get() : nullptr);
  }

  void SetValue(int slot) {
    if (TSlot* control = Control(slot)) control->control->SetValue(Any(1000));
  }

  /// A subscriber is told a value, and now and then does something about it.
  void Told(int who) {
    ++calls_;
    ASSERT_TRUE(links_[Index(who)]) << "a subscriber that is gone was told";
    if (depth_ >= 3 || Any(8) != 0) return;
    ++depth_;
    Operate();
    --depth_;
  }

  std::mt19937 random_;
  std::array<std::unique_ptr<TSlot>, kSlots> controls_;
  std::array<std::unique_ptr<TSubscriber>, kSlots> links_;
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
