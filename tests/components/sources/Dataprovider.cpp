#include "components/sources/Dataprovider.h"

#include "components/sources/Simulator.h"
#include "components/sources/Stringreader.h"
#include "tests/components/sources/Providerfixture.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TValues = std::vector<double>;

TEST(TStringReader, DeliversItsNumbersAndStopsAndTakesOtherTextAtOnce) {
  TFeeding<TStringReader> reader;
  reader.SetDataStrings({"1 2 3"});
  for (int run = 0; run < 2; ++run) EXPECT_THAT(reader.Run(), ElementsAre(1, 2, 3));
  EXPECT_EQ(reader.GetErrorText(), QString());
  reader.client.OnGiven = [&](double value) {
    if (value == 2) reader.SetDataStrings({"6", "7"});
  };
  EXPECT_THAT(reader.Run(), ElementsAre(1, 2, 6, 7));
}

TEST(TStringReader, DealsValuesInTurn) {
  for (const std::size_t count : {0, 1, 2, 3}) {
    TStringReader reader;
    std::vector<TRecorder> clients(count);
    for (TRecorder& client : clients) reader.GetClientControls()->Add(&client);
    reader.SetDataStrings({"0 1 2 3", "4", "5 6 7 8 9 10"});
    ASSERT_TRUE(RunToStop(reader));
    TValues expected[3];
    for (int value = 0; count && value <= 10; ++value) {
      expected[static_cast<std::size_t>(value) % count].push_back(value);
    }
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(clients[i].given, expected[i]);
  }
}

TEST(TStringReader, StopsAfterEachPageAndGoesOnBehindIt) {
  for (const int pageSize : {1, 7, 100, 5000}) {
    SCOPED_TRACE(pageSize);
    TFeeding<TStringReader> reader;
    QStringList lines;
    for (int i = 0; i < 3 * pageSize + 1; ++i) lines << QString::number(i);
    reader.SetDataStrings(lines);
    SetPages(reader, pageSize);
    reader.client.OnGiven = [&](double value) {
      // The last value of a page is delivered when the provider has stopped already.
      EXPECT_EQ(reader.GetActive(), static_cast<int>(value) % pageSize != pageSize - 1);
    };
    for (std::size_t page = 1; page <= 3; ++page) {
      ASSERT_TRUE(RunToStop(reader));
      EXPECT_THAT(reader.given(), SizeIs(page * static_cast<std::size_t>(pageSize)));
    }
    ExpectCounting(reader.given());
  }
}

TEST(TStringReader, StopsAtAWordThatIsNoNumberAndGoesOnBehindIt) {
  TFeeding<TStringReader> reader;
  reader.setObjectName("50%1");  // is shown as it is
  reader.SetDataStrings({"1 2", "33 1E+ 4"});
  QSignalSpy errors(&reader, &TThreadProvider::OnError);
  EXPECT_THAT(reader.Run(), ElementsAre(1, 2, 33));
  const QString text = R"(Cannot read the text of 50%1: "1E+" at byte 7 is no number)";
  EXPECT_EQ(reader.GetErrorText(), text);
  ASSERT_EQ(errors.count(), 1);
  EXPECT_EQ(errors[0][1].toString(), text);
  EXPECT_THAT(reader.Run(), ElementsAre(4));
  EXPECT_EQ(reader.GetErrorText(), QString());
  // So it does at an exception of a client.
  reader.client.OnGiven = [](double value) {
    if (value == 2) throw std::runtime_error("no room");
  };
  EXPECT_THAT(reader.Run(), ElementsAre(1, 2));
  EXPECT_EQ(reader.GetErrorText(), "no room");
}

TEST(TStringReader, DoesNotGoInACircleWithoutNumbers) {
  for (const auto mode : {TCustomDataProvider::rmContinuous, TCustomDataProvider::rmReadPage}) {
    for (const QStringList& lines : {QStringList(), QStringList{"", "header", "7<tag>"}}) {
      TStringReader reader;
      reader.SetReadMode(mode);
      reader.SetDataStrings(lines);
      ASSERT_TRUE(RunToStop(reader));
      EXPECT_EQ(reader.GetErrorText(), "Cannot go on reading: there is no number in the text");
    }
  }
}

/// A page counts from the mode on.
TEST(TCustomDataProvider, BeginsAgainWithOtherClientsOrPages) {
  TFeeding<TStringReader> reader;
  TRecorder second;
  reader.SetDataStrings({"1 2 3"});
  SetPages(reader, 2);
  reader.client.OnGiven = [&](double value) {
    if (value != 1) return;
    reader.SetReadMode(TCustomDataProvider::rmContinuous);
    SetPages(reader, 2);
  };
  EXPECT_THAT(reader.Run(), ElementsAre(1, 2, 3));
  TKorvalCompList other(nullptr, &TDataControl::staticMetaObject);
  other.Add(&second);
  reader.SetClientControls(&other);
  EXPECT_FALSE(reader.GetActive());
  EXPECT_THAT(reader.Run(), IsEmpty());
  EXPECT_THAT(second.given, ElementsAre(1, 2));
}

TEST(TThreadProvider, MayBeDestroyedByAClientOrAListener) {
  for (const bool byClient : {true, false}) {
    QPointer<TSignalSimulator> simulator = new TSignalSimulator;
    TRecorder client;
    simulator->GetClientControls()->Add(&client);
    SetPages(*simulator, 10);
    client.OnGiven = [&](double) {
      if (byClient && client.given.size() == 10) delete simulator;
    };
    QObject::connect(simulator, &TStateControl::OnActiveChanged, &client, [&] {
      if (!byClient && !simulator->GetActive()) delete simulator;
    });
    simulator->SetActive(true);
    ASSERT_TRUE(RunUntil([&] { return !simulator; }));
    EXPECT_THAT(client.given, SizeIs(10));
  }
}

/// Counts what it paints.
struct TPainted : QWidget {
  void paintEvent(QPaintEvent*) override { ++paints; }
  int paints = 0;
};

TEST(TThreadProvider, LeavesTurnsToTheWindowWhenItRunsFlatOut) {
  TFeeding<TSignalSimulator> simulator;
  TPainted window;
  window.show();
  simulator.SetActive(true);
  ASSERT_TRUE(RunUntil([&] { return simulator.given().size() > 10'000 && window.paints > 0; }));
  for (int round = 0; round < 20; ++round) {
    int timeouts = 0;
    QTimer::singleShot(0, &window, [&] { ++timeouts; });
    const int before = window.paints;
    window.update();
    int turns = 0;
    for (; turns < 10 && (timeouts == 0 || window.paints == before); ++turns) {
      QCoreApplication::processEvents();
    }
    EXPECT_LT(turns, 10) << "the timer or the repaint waits behind the values";
  }
}

TEST(TThreadProvider, GivesASlowClientOneValueInATurn) {
  TFeeding<TSignalSimulator> simulator;
  simulator.client.OnGiven = [](double) {
    const QDeadlineTimer busy(5);
    while (!busy.hasExpired()) continue;
  };
  simulator.SetActive(true);
  int turns = 0;
  ASSERT_TRUE(RunUntil([&] { return ++turns, simulator.given().size() >= 10; }));
  EXPECT_GE(turns, 10);
}

// TSignalSimulator

TEST(TSignalSimulator, NeverGivesMoreValuesThanItsRateAllows) {
  TFeeding<TSignalSimulator> simulator;
  simulator.SetRate(400.0);
  for (const double ignored : {-1.0, std::nan(""), HUGE_VAL}) simulator.SetRate(ignored);
  EXPECT_EQ(simulator.GetRate(), 400.0);
  QElapsedTimer clock;
  clock.start();
  simulator.SetActive(true);
  ASSERT_TRUE(RunUntil([&] { return simulator.given().size() >= 100; }));
  // The first comes at once, each other one a four hundredth of a second after the one before.
  EXPECT_GE(static_cast<double>(clock.nsecsElapsed()) / 1e9 * 400.0 + 1.0,
            static_cast<double>(simulator.given().size()));
}

TEST(TSignalSimulator, GivesEachClientTheSameSampleOfTheSineAndGoesOnWhereItStopped) {
  for (const std::size_t clients : {1, 2, 3}) {
    TSignalSimulator simulator;
    simulator.SetFunction(TSignalSimulator::sfSinusoid);
    simulator.SetAverage(10.0);
    simulator.SetAmplitude(4.0);
    std::vector<TRecorder> recorders(clients);
    for (TRecorder& recorder : recorders) simulator.GetClientControls()->Add(&recorder);
    SetPages(simulator, 7);  // in the middle of a round
    for (int page = 0; page < 60; ++page) ASSERT_TRUE(RunToStop(simulator));
    const TValues& first = recorders[0].given;
    ASSERT_THAT(first, SizeIs(420 / clients));
    for (const TRecorder& other : recorders) EXPECT_EQ(other.given, first);
    for (std::size_t i = 30; i < first.size(); ++i) ASSERT_EQ(first[i], first[i - 30]);
    EXPECT_EQ(first[0], 10.0);
    EXPECT_NEAR(first[5], 10.0 + 4.0 * std::sqrt(0.75), 1e-12);  // a sixth of a period
    EXPECT_NEAR(first[15], 10.0, 1e-12);
    EXPECT_NEAR(first[20], 10.0 - 4.0 * std::sqrt(0.75), 1e-12);
  }
}

TEST(TSignalSimulator, FollowsItsDistributions) {
  constexpr int kCount = 20'000;
  // The deviation and a bound, by the amplitude.
  const std::tuple<TSignalSimulator::TSimFuncType, double, double> cases[] = {
      {TSignalSimulator::sfConstant, 0.0, 0.0},
      {TSignalSimulator::sfNormalDistribution, 1.0, 7.0},
      {TSignalSimulator::sfRandom, 1.0 / std::sqrt(3.0), 1.0}};
  for (const auto& [function, deviation, bound] : cases) {
    TFeeding<TSignalSimulator> simulator;
    simulator.SetFunction(function);
    simulator.SetAverage(50.0);
    simulator.SetAmplitude(2.0);
    SetPages(simulator, kCount);
    double sum = 0.0, squares = 0.0, most = 0.0;
    for (const double value : simulator.Run()) {
      sum += value;
      squares += (value - 50.0) * (value - 50.0);
      most = std::max(most, std::abs(value - 50.0));
    }
    // Five standard errors.
    EXPECT_NEAR(sum / kCount, 50.0, 5.0 * 2.0 * deviation / std::sqrt(kCount));
    EXPECT_NEAR(std::sqrt(squares / kCount), 2.0 * deviation, 0.05 * 2.0 * deviation);
    EXPECT_LE(most, 2.0 * bound);
    EXPECT_GE(most, 2.0 * deviation);
  }
}

TEST(TSignalSimulator, FollowsAChangeWithTheNextValue) {
  TFeeding<TSignalSimulator> simulator;
  simulator.SetFunction(TSignalSimulator::sfConstant);
  SetPages(simulator, 1000);
  simulator.client.OnGiven = [&](double) {
    simulator.SetAverage(static_cast<double>(simulator.given().size()));
  };
  EXPECT_THAT(simulator.Run(), SizeIs(1000));
  ExpectCounting(simulator.given());
  simulator.SetAverage(std::nan(""));
  simulator.SetAmplitude(INFINITY);
  EXPECT_EQ(simulator.GetAverage(), 1000.0);
  EXPECT_EQ(simulator.GetAmplitude(), 1.0);
}

TEST(TSignalSimulator, IsNotInStepWithAnother) {
  TFeeding<TSignalSimulator> one, two;
  for (auto* simulator : {&one, &two}) SetPages(*simulator, 10);
  EXPECT_NE(one.Run(), two.Run());
}

TEST(TThreadProvider, GivesNothingToAClientThatIsBeingDestroyed) {
  TSignalSimulator simulator;
  TRecorder first;
  auto* second = new TRecorder;
  // Told before the list is: the client is a bare widget in it by then.
  QObject::connect(second, &QObject::destroyed, &first, [&] {
    const std::size_t before = first.given.size();
    EXPECT_TRUE(RunUntil([&] { return first.given.size() > before + 10; }));
  });
  simulator.GetClientControls()->Add(&first);
  simulator.GetClientControls()->Add(second);
  simulator.SetActive(true);
  delete second;
  EXPECT_EQ(simulator.GetClientControls()->Count(), 1);
}

}  // namespace
