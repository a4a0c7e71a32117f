#include "components/links/Binlist.h"

#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

std::vector<std::pair<double, double>> Bins(const TBinList& list) {
  std::vector<std::pair<double, double>> bins;
  for (int bin = 0; bin < list.Count(); ++bin) {
    bins.emplace_back(list.GetPosition(bin), list.GetBinCount(bin));
  }
  return bins;
}

TEST(TBinList, ABinHoldsTheValuesUpToItsUpperEdge) {
  TBinList list;
  list.SetStep(0.5);
  for (const double value : {1.0, 0.51, 0.5, 0.5000001, 2.0}) list.AddValues(1.0, value);
  list.AddValues(2.5, -0.25);
  EXPECT_THAT(Bins(list), ElementsAre(std::pair(0.0, 2.5), std::pair(0.5, 1.0), std::pair(1.0, 3.0),
                                      std::pair(1.5, 0.0), std::pair(2.0, 1.0)));
  EXPECT_EQ(list.GetCycleCount(), 7.5);
  EXPECT_EQ(list.BasePair(), (TCoordinate{0.5, 0.0}));
}

TEST(TBinList, CorrectPosIsTheUpperEdgeOfTheValuesBin) {
  const std::array<double, 4> cases[] = {
      // step, anchor, value, edge
      {1.0, 0.0, 0.0, 0.0},     {1.0, 0.0, 0.1, 1.0},     {1.0, 0.0, -0.1, 0.0},
      {1.0, 0.25, 0.25, 0.25},  {1.0, 0.25, 0.3, 1.25},   {10.0, 5.0, -5.0, -5.0},
      {10.0, 5.0, -5.01, -5.0}, {1.0, 0.0, 1e300, 1e300}, {1.0, 0.0, kInfinity, kInfinity},
      {1e-300, 0.0, 1.0, 1.0},  {1.0, 1e17, 3.0, 3.0},  // no bins of width 1 up there
  };
  for (const auto& [step, anchor, value, edge] : cases) {
    SCOPED_TRACE(testing::Message() << step << ", " << anchor << ", " << value);
    TBinList list;
    list.SetStep(step);
    list.SetAnchor(anchor);
    EXPECT_EQ(list.CorrectPos(value), edge);
    EXPECT_TRUE(list.Empty());
  }
  EXPECT_TRUE(std::isnan(TBinList().CorrectPos(kNan)));
}

/// Whatever the grid, a value lies in (edge - step, edge] of its bin as the edges are given.
TEST(TBinList, EdgesAndBinsAgreeToTheLastBit) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> uniform(-50.0, 50.0);
  for (const double step : {0.1, 0.3, 1.0 / 3.0, 0.7}) {
    TBinList list;
    list.SetStep(step);
    list.SetAnchor(uniform(random));
    for (const double far : {-60.0, 60.0}) list.AddValues(0.0, far);
    for (int bin = 1; bin < list.Count(); ++bin) {
      const double edge = list.GetPosition(bin);
      EXPECT_EQ(list.CorrectPos(edge), edge);
      EXPECT_EQ(list.CorrectPos(std::nextafter(list.GetPosition(bin - 1), kInfinity)), edge);
    }
    for (int draw = 0; draw < 1000; ++draw) list.AddValues(1.0, uniform(random));
    EXPECT_EQ(list.GetCycleCount(), 1000.0) << "nothing is lost";
  }
}

TEST(TBinList, HostileValuesTakeNoMemoryAndSpoilNothing) {
  TBinList list;
  list.AddValues(1.0, 0.5);
  for (const double value : {kInfinity, -kInfinity, kNan, 1e300, -1e300, 70000.0, -65536.0}) {
    list.AddValues(1.0, value);
  }
  for (const double weight : {kInfinity, kNan}) list.AddValues(weight, 0.5);
  EXPECT_THAT(Bins(list), ElementsAre(std::pair(1.0, 1.0)));
  EXPECT_EQ(list.GetLostCount(), 7.0);

  list.AddValues(1.0, -65534.5);  // the 65,536th bin
  EXPECT_EQ(list.Count(), 65536);
  list.AddValues(1.0, 1.5);
  list.AddValues(1.0, -65535.5);
  EXPECT_EQ(list.Count(), 65536);
  EXPECT_EQ(list.GetCycleCount(), 2.0);
  EXPECT_EQ(list.GetLostCount(), 9.0);

  list.SetAnchor(1e17);  // where the next number is 16 away
  list.AddValues(1.0, 1e17 + 16.0);
  EXPECT_TRUE(list.Empty());
  EXPECT_EQ(list.GetLostCount(), 1.0);
}

TEST(TBinList, ReportsValuesByCallbackAndChangesBySignal) {
  TBinList list;
  int added = 0;
  list.OnValueAdded = [&added] { ++added; };
  QSignalSpy changes(&list, &TBinList::OnChange);
  list.AddValues(1.0, 3.0);
  list.AddValues(1.0, 3.0);
  list.AddValues(1.0, kNan);
  EXPECT_EQ(added, 2);
  EXPECT_EQ(changes.count(), 0);

  for (const double refused : {1.0, 0.0, -2.0, kInfinity, kNan}) list.SetStep(refused);
  for (const double refused : {0.0, kInfinity, kNan}) list.SetAnchor(refused);
  EXPECT_EQ(changes.count(), 0);
  EXPECT_EQ(list.Count(), 1);
  list.SetStep(2.0);
  EXPECT_TRUE(list.Empty()) << "another grid";
  list.SetAnchor(0.5);
  list.Clear();
  EXPECT_EQ(changes.count(), 3);
  EXPECT_EQ(added, 2);
}

TEST(TBinList, RefusesDamagedDataAndKeepsItsBins) {
  const std::pair<const char*, const char*> cases[] = {
      {"1 2\n3", "Row 2: 1 values instead of 2"},
      {"1 2\n1e300 1", "Row 2: no bin can be made at 1e+300"},
      {"1 2\n70000 1", "Row 2: no bin can be made at 70000"},
      {"1 inf", "Row 1: no bin can be made at 1"},
  };
  TBinList list;
  list.AddValues(1.0, 5.0);
  for (const auto& [text, expected] : cases) {
    QString error;
    EXPECT_FALSE(list.ReadData(text, &error));
    EXPECT_EQ(error, expected);
    EXPECT_THAT(Bins(list), ElementsAre(std::pair(5.0, 1.0)));
  }
}

}  // namespace
