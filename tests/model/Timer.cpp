#include "model/Timer.h"

#include "tests/support/Testing.h"

namespace {

/// Counts firings, and does something at each.
class TCounter : public QObject {
 public:
  void Count(QObject* sender) {
    ++count;
    last = sender;
    if (then) then();
  }
  void Other(QObject*) {}

  int count = 0;
  QObject* last = nullptr;
  std::function<void()> then;
};

std::unique_ptr<TTimerClient> Client(TCounter& counter, quint32 interval = 1) {
  auto client = std::make_unique<TTimerClient>();
  client->SetInterval(interval);
  client->SetEnabled(true);
  client->SetOnTimer({&counter, &TCounter::Count});
  return client;
}

TEST(TTimerClient, FiresEveryIntervalTicksWhileEnabled) {
  for (const auto& [interval, fired] : {std::pair{0u, 12}, {1u, 12}, {5u, 2}, {12u, 1}, {13u, 0}}) {
    TCounter counter;
    const auto client = Client(counter, interval);
    Tick(12);
    EXPECT_EQ(counter.count, fired) << interval;
    client->SetEnabled(false);
    Tick(20);
    EXPECT_EQ(counter.count, fired) << interval;
    EXPECT_EQ(counter.last, fired > 0 ? client.get() : nullptr);
  }
  EXPECT_EQ(TTimerClient().GetInterval(), 100u);
  EXPECT_FALSE(TTimerClient().GetEnabled());
}

TEST(TTimerClient, CountsAnewOnlyAfterARealChange) {
  TCounter counter;
  const TNotifyEvent count{&counter, &TCounter::Count}, other{&counter, &TCounter::Other};
  const std::pair<std::function<void(TTimerClient&)>, int> cases[] = {
      {[](TTimerClient& c) { c.SetInterval(5); }, 1},
      {[](TTimerClient& c) { c.SetEnabled(true); }, 1},
      {[&](TTimerClient& c) { c.SetOnTimer(count); }, 1},
      {[](TTimerClient& c) { c.SetInterval(4), c.SetInterval(5); }, 0},
      {[](TTimerClient& c) { c.SetEnabled(false), c.SetEnabled(true); }, 0},
      {[&](TTimerClient& c) { c.SetOnTimer(other), c.SetOnTimer(count); }, 0}};
  for (const auto& [change, fired] : cases) {
    counter.count = 0;
    const auto client = Client(counter, 5);
    Tick(4);
    change(*client);
    Tick();
    EXPECT_EQ(counter.count, fired);
  }
}

TEST(TTimerServer, ServesOnWhenAnEventDestroysClients) {
  TCounter counters[4];
  std::unique_ptr<TTimerClient> clients[4];
  for (int i = 0; i < 4; ++i) clients[i] = Client(counters[i]);
  // One that was served, itself, and one that is still to come.
  counters[1].then = [&] { std::for_each_n(clients, 3, [](auto& client) { client.reset(); }); };
  Tick();
  const std::vector<int> served{counters[0].count, counters[1].count, counters[2].count,
                                counters[3].count};
  EXPECT_THAT(served, testing::ElementsAre(1, 1, 0, 1));
  counters[3].then = [&] { clients[3].reset(); };  // the last one takes the server with it
  Tick();
  EXPECT_EQ(counters[3].count, 2);
  EXPECT_EQ(TTimerServer::Instance(), nullptr);
}

TEST(TTimerServer, ReportsAnExceptionAndGoesOnWithTheNextTick) {
  TCounter bad, good;
  const auto first = Client(bad);
  const auto second = Client(good);
  bad.then = [] { throw std::runtime_error("no"); };
  Tick();
  EXPECT_EQ(TakeMessages(), QStringList{"Timer server error!"});
  EXPECT_EQ(good.count, 0);
  bad.then = {};
  Tick();
  EXPECT_EQ(good.count, 1);
  EXPECT_EQ(TakeMessages(), QStringList{});
}

TEST(TTimerServer, SaysThatTheSystemRefusesATimer) {
  ExpectQtWarning("Timers can only be used with threads started with QThread");
  std::thread([] {  // a thread without event dispatcher gets no timer
    TCounter counter;
    const auto client = Client(counter);
    Tick();
    EXPECT_EQ(counter.count, 1) << "the server stays, without ticks of its own";
  })
      .join();
  EXPECT_EQ(TakeMessages(), QStringList{"Can't create timer!"});
}

TEST(TTimerServer, RestsWhileNoClientIsEnabled) {
  TCounter counter;
  TTimerClient resting;
  const auto timers = [] {
    return QAbstractEventDispatcher::instance()->registeredTimers(TTimerServer::Instance()).size();
  };
  EXPECT_EQ(timers(), 0);
  auto one = Client(counter), other = Client(counter);
  EXPECT_EQ(timers(), 1);
  one->SetEnabled(false);
  EXPECT_EQ(timers(), 1);
  other.reset();
  EXPECT_EQ(timers(), 0);
  one->SetEnabled(true);
  EXPECT_EQ(timers(), 1);
}

TEST(TTimerServer, TicksByItselfServesAClientThatAnEventMakesAndEntersNoneTwice) {
  TCounter parent, child;
  std::unique_ptr<TTimerClient> born;
  const auto client = Client(parent);
  QEventLoop loop;
  parent.then = [&] {
    loop.quit();
    if (!born) born = Client(child);
    Tick();
  };
  loop.exec();
  EXPECT_EQ(parent.count, 1);
  EXPECT_EQ(child.count, 1);
}

TEST(TStopWatch, WritesSpansDatesAndTimesWithoutSeparators) {
  for (const auto& [milliseconds, text] : {std::pair(0LL, "000000000"),
                                           {((12 * 60 + 34) * 60 + 56) * 1000 + 789, "123456789"},
                                           {100 * 3'600'000LL + 5, "1000000005"},
                                           {-1, "000000000"}}) {
    EXPECT_EQ(TStopWatch::MakeTimeStr(milliseconds), text);
  }
  const QDateTime time(QDate(2024, 2, 29), QTime(3, 4, 5, 67));
  EXPECT_EQ(TStopWatch::MakeDateTimeStr(TDateTime::FromQDateTime(time)), "20240229 030405067");
  EXPECT_EQ(TStopWatch::MakeDateTimeStr(TDateTime(0.0)), "18991230 000000000");
  EXPECT_EQ(TStopWatch::MakeDateTimeStr(TDateTime(1e300)), "");
  EXPECT_EQ(TStopWatch().GetTimeStr().size(), 9);
  EXPECT_EQ(TStopWatch().GetDateTimeStr().size(), 18);
}

TEST(TDateTime, CountsDaysFromThirtiethDecember1899) {
  const std::pair<double, QDateTime> cases[] = {
      {0.0, {{1899, 12, 30}, {0, 0}}},
      {36526.5, {{2000, 1, 1}, {12, 0}}},
      {1.0 + 1.0 / 86400, {{1899, 12, 31}, {0, 0, 1}}},
      {-0.25, {{1899, 12, 29}, {18, 0}}},
      {1.0 - 1e-12, {{1899, 12, 31}, {0, 0}}}};  // rounds up to the next day
  for (const auto& [days, time] : cases) {
    EXPECT_EQ(TDateTime(days).ToQDateTime(), time);
    EXPECT_NEAR(TDateTime::FromQDateTime(time).Days(), days, 1e-11);
  }
  for (const double days : {kNan, 1e18, -1e18, 2958466.0, -693594.0}) {
    EXPECT_FALSE(TDateTime(days).ToQDateTime().isValid()) << days;
  }
  EXPECT_TRUE(std::isnan(TDateTime::FromQDateTime(QDateTime()).Days()));
}

}  // namespace
