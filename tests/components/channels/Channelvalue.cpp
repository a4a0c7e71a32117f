#include "components/channels/Channelvalue.h"

#include "components/channels/Runningstatistics.h"
#include "components/controls/Historygraph.h"
#include "components/graphing/Graph.h"
#include "tests/support/Testing.h"

namespace {

constexpr double kSecond = 1.0 / kSecondsPerDay;
constexpr double kStart = 45000.0;

TEST(TRunningStatistics, GivesEachFigureOfWhatItWasGiven) {
  using TSubject = TRunningStatistics;
  // Of 1, -3, 0, 6: mean 1, squared deviations 0 + 16 + 1 + 25, squares 1 + 9 + 0 + 36; and of
  // twice -0.5.
  const std::tuple<TSubject::TFigure, double, double> cases[] = {
      {TSubject::fgCount, 4.0, 2.0},
      {TSubject::fgMean, 1.0, -0.5},
      {TSubject::fgStDev, std::sqrt(42.0 / 3.0), 0.0},
      {TSubject::fgRms, std::sqrt(46.0 / 4.0), 0.5},
      {TSubject::fgMax, 6.0, -0.5},
      {TSubject::fgMin, -3.0, -0.5},
  };
  for (const auto& [figure, expected, ofHalves] : cases) {
    SCOPED_TRACE(figure);
    TRunningStatistics statistics;
    TVariable client;
    statistics.SetFigure(figure);
    statistics.GetClientControls()->Add(&client);
    for (const double value : {1.0, -3.0, std::nan(""), 0.0, 6.0}) statistics.SetValue(value);
    EXPECT_DOUBLE_EQ(client.GetValue(), expected);
    statistics.GetReset()->Click();
    EXPECT_EQ(client.GetValue(), 0.0);
    for (int i = 0; i < 2; ++i) statistics.SetValue(-0.5);
    EXPECT_EQ(client.GetValue(), ofHalves);
  }
}

/// A set "Mast" with the channels "a" and "b", and what follows it.
struct ChannelValue : testing::Test {
  ChannelValue() {
    set->SetLabel("Mast");
    set->SetCount(2);
    set->SetRows(2);
    set->GetChannels()->GetItem(0)->SetLabel("a");
    set->GetChannels()->GetItem(1)->SetLabel("b");
  }
  void Follow(TOneChannelLink& link, const char* channel) {
    link.SetChannelSource(&source);
    link.GetChannelSet()->SetItem("Mast");
    link.GetChannel()->SetItem(channel);
  }
  void Row(double seconds, double a, double b) {
    const double row[] = {kStart + seconds * kSecond, a, b};
    set->SetRow(row, 0, 3);
  }

  TChannelSource source;
  TChannelSet* set = source.GetSets()->Add();
  TLimitLevels& limits = *set->GetChannels()->GetItem(0)->GetStats()->GetLimits();
};

TEST_F(ChannelValue, GivesTheMeanOfEachBlockOnce) {
  TChannelValue value;
  Follow(*value.GetChannelLink(), "b");
  std::vector<double> taken;
  TValueLink link([&](double x) { taken.push_back(x); });
  value.AddLink(&link, false);
  double seconds = 0.0;
  for (const double b : {1.0, 2.0, -4.0, 10.0}) Row(seconds += 0.1, 7.0, b);
  EXPECT_EQ(taken, std::vector<double>({1.5, 3.0}));

  value.setObjectName("v");
  Follow(*value.GetChannelLink(), "a");
  EXPECT_EQ(value.GetCaption(), "v=0");  // and not the other channel's
  EXPECT_EQ(taken.size(), 2u);
  value.SetContent(TChannelValue::ctHistory);
  value.GetChannelLink()->GetOptions()->SetValueType(svTime);
  value.GetValueFormat()->SetTimeFormatStr("yyyy-mm-dd hh:nn");
  Row(0.5, 7.0, 1.0);
  Row(0.6, 7.0, 1.0);
  EXPECT_EQ(value.GetCaption(), "v=2023-03-15 00:00");
}

TEST_F(ChannelValue, TellsHowTheChannelStandsToItsLimits) {
  limits.SetLimitMax(10.0);
  limits.SetWarningLevel(2.0);
  limits.SetCheckMax(true);
  TChannelValue status;
  status.SetContent(TChannelValue::ctStatus);
  Follow(*status.GetChannelLink(), "a");
  for (const double seconds : {0.0, 0.5}) Row(seconds, 5.0, 0.0);
  EXPECT_EQ(status.GetValue(), 0.0);  // no second is over
  double at = 0.0;
  for (const auto& [value, expected] : {std::pair(5.0, 1.0), {9.0, 2.0}, {11.0, 3.0}}) {
    at += 1.0;
    for (const double part : {0.2, 0.4, 0.6, 0.8, 1.1, 1.15}) Row(at + part, value, 0.0);
    EXPECT_EQ(status.GetValue(), expected) << value;
  }
  status.GetChannelLink()->GetOptions()->SetSelInterval(si1_Minute);
  for (const double part : {1.2, 1.25}) Row(at + part, 0.0, 0.0);
  EXPECT_EQ(status.GetValue(), 0.0);  // no minute is over
}

TEST_F(ChannelValue, AHistoryIsDrawnOverTimeWithTheLimitsThatAreChecked) {
  TKorvalGraph graph;
  THistoryGraph history;
  history.GetGraphLink()->SetGraph(&graph);
  Follow(*history.GetChannelLink(), "a");
  EXPECT_EQ(graph.GetHorizontalAx()->GetScale(), TAxis::asTime);
  const auto points = [&history](int series) {
    const auto& give = history.GetGraphLink()->GetSeriesList().Get(series)->DataSource;
    std::vector<TCoordinate> result;
    TCoordinate point, extent;
    for (int i = 0; give(i, point, extent);) result.push_back(point);
    return result;
  };
  limits.SetLimitValues(20.0, -20.0);
  limits.SetCheckMin(true);
  history.GetChannelLink()->DoOnData(nullptr);
  EXPECT_TRUE(points(0).empty());
  EXPECT_TRUE(points(1).empty());
  for (int i = 0; i <= 40; ++i) Row(0.1 * i, i < 20 ? 1.0 : 3.0, 0.0);
  history.GetChannelLink()->DoOnData(nullptr);
  const auto kept = points(0);
  ASSERT_GE(kept.size(), 2u);
  EXPECT_EQ(kept.back().Y, 1.0);
  EXPECT_EQ(kept.front().Y, 3.0);
  EXPECT_GT(kept.front().X, kept.back().X);
  const auto lines = points(1);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], (TCoordinate{kept.back().X, -20.0}));
  EXPECT_EQ(lines[1], (TCoordinate{kept.front().X, -20.0}));
  EXPECT_TRUE(std::isnan(lines[2].X));
  history.SetShowLimits(false);
  EXPECT_TRUE(points(1).empty());
  history.GetChannelLink()->GetOptions()->SetValueType(svTime);
  EXPECT_EQ(graph.GetVerticalAx()->GetScale(), TAxis::asTime);
  history.GetChannelLink()->GetOptions()->SetValueType(svMean);
  EXPECT_EQ(graph.GetVerticalAx()->GetScale(), TAxis::asLinear);
}

}  // namespace
