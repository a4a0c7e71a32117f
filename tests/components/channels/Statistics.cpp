#include "components/channels/Statistics.h"

#include "components/channels/Statisticsseries.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testing.h"

namespace {

TEST(TStatistics, DerivesMeanAndSampleVarianceFromTheSums) {
  const std::tuple<std::vector<double>, double, double, double> cases[] = {
      {{}, 0.0, 0.0, 0.0},
      {{-3.5}, -3.5, 0.0, 0.0},
      {{2, 4, 4, 4, 5, 5, 7, 9}, 5.0, 32.0 / 7.0, 2.138089935},
      {{1e6 + 1, 1e6 + 3}, 1e6 + 2, 2.0, 1.414213562},
  };
  for (const auto& [values, mean, variance, stDev] : cases) {
    TStatistics statistics;
    for (const double value : values) statistics.AddValue(value);
    EXPECT_EQ(statistics.GetCount(), values.size());
    EXPECT_DOUBLE_EQ(statistics.GetMean(), mean);
    EXPECT_NEAR(statistics.GetVariance(), variance, 1e-9);
    EXPECT_NEAR(statistics.GetStDev(), stDev, 1e-9);
    EXPECT_EQ(statistics.GetMax(), 0.0);
    for (const double value : values) statistics.SubtractValue(value);
    EXPECT_EQ(statistics.GetStatData(), "0 0 0");
  }
}

TEST(TStatistics, PassesANegativeVarianceOnAndResetsWhenThereIsLessThanOneValueToTakeAway) {
  TStatistics statistics;
  statistics.SetStatData("2 2 1");
  EXPECT_EQ(statistics.GetVariance(), -1.0);
  EXPECT_TRUE(std::isnan(statistics.GetStDev()));
  statistics.SetStatData("0.5 4 0");
  statistics.SetPos(3.0);
  statistics.SetMax(7.0);
  statistics.SubtractValue(1.0);
  EXPECT_EQ(statistics.GetStatData(), "0 0 0");
  EXPECT_THAT((std::array{statistics.GetPos(), statistics.GetMax(), statistics.GetMin()}),
              testing::Each(0.0));
}

TEST(TStatistics, TakesTheFirstValueForBothExtremesWhileTheyAreZero) {
  TStatistics statistics;
  statistics.SetMax(0.0);
  statistics.SetMin(0.0);
  statistics.SetMax(-1.0);
  EXPECT_EQ(BoundsOf(statistics), TMinMax(-1.0, -1.0));
  for (const double value : {3.0, 2.0, -4.0, kNan}) {
    statistics.SetMax(value);
    statistics.SetMin(value);
  }
  EXPECT_EQ(BoundsOf(statistics), TMinMax(-4.0, 3.0));
}

TEST(TStatistics, KeepsTheLatestSnapshotInItsOneRow) {
  TStatistics statistics;
  EXPECT_EQ(statistics.GetData()->ColNames, QStringList({"Pos", "Mean", "StDev", "Max", "Min"}));
  EXPECT_EQ(statistics.GetData()->Get(0), TStatisticsData());
  for (const double value : {1.0, 3.0}) {
    statistics.AddValue(value);
    statistics.SetMax(value);
    statistics.SetPos(value * 10.0);
    statistics.Update();
  }
  statistics.Reset();
  int index = 0;
  TStatisticsData record;
  ASSERT_TRUE(statistics.ProvideGraphData(index, record));
  EXPECT_EQ(record, (TStatisticsData{30.0, 2.0, std::sqrt(2.0), 3.0, 1.0}));
  EXPECT_FALSE(statistics.ProvideGraphData(index, record));

  TStatDataList rows;
  for (const double pos : {1.0, 2.0, 3.0}) rows.Add({pos, 0.0, 0.0, 0.0, 0.0});
  statistics.SetData(&rows);
  EXPECT_EQ(statistics.GetData()->Get(0).Pos, 1.0);
  statistics.Update();
  EXPECT_EQ(statistics.GetData()->Count(), 1);
  rows.Clear();
  statistics.SetData(&rows);
  EXPECT_EQ(statistics.GetData()->Count(), 1) << "there is always a row for the next snapshot";
}

TEST(TStatistics, CopiesEverythingButTheExtremes) {
  TStatistics source;
  source.AddValue(4.0);
  source.SetMax(4.0);
  source.SetPos(2.0);
  TStatistics copy;
  copy.SetMax(9.0);
  copy.Assign(&source);
  EXPECT_EQ(copy.GetPos(), 2.0);
  EXPECT_EQ(copy.GetMean(), 4.0);
  EXPECT_EQ(BoundsOf(copy), TMinMax(9.0, 9.0));
}

TEST(TStatistics, SurvivesAFormWithEveryBitOfItsSums) {
  const std::array<double, 3> triples[] = {
      {8.0, 40.0, 232.0},
      {1e15, 0.1 + 0.2, 1.0 / 3.0},
      {2.5, -5e-324, std::numeric_limits<double>::max()},
      {1.0, kInfinity, kInfinity},
  };
  for (const auto& [count, sum, sqSum] : triples) {
    TStatistics saved;
    saved.SetCount(count);
    saved.SetSum(sum);
    saved.SetSqSum(sqSum);
    saved.SetMax(5.0);
    TStatistics loaded;
    ASSERT_TRUE(loaded.setProperty("StatData", saved.property("StatData")));
    EXPECT_EQ((std::array{loaded.GetCount(), loaded.GetSum(), loaded.GetSqSum(), loaded.GetMax()}),
              (std::array{count, sum, sqSum, 0.0}));
  }
  TStatistics statistics;
  for (const char* text : {"8 40 232", "", "1", "1 2", "1 2 3 4", "1 2 x", "1;2;3", "\x01 2 3"}) {
    statistics.SetStatData(text);
    EXPECT_EQ(statistics.GetStatData(), "8 40 232") << text;
  }
}

TEST(TStatistics, MakesUpForAPostponedComputationOnceAndBeforeAnybodySees) {
  int computed = 0;
  TStatistics statistics;
  statistics.OnCompute = [&] {
    ++computed;
    statistics.Reset();
    statistics.SetCount(10.0 * computed);
    statistics.SetSum(30.0);
    statistics.Update();
  };
  for (int i = 0; i < 2; ++i) statistics.Postpone();
  EXPECT_EQ(computed, 0);
  EXPECT_EQ(statistics.GetMean(), 3.0);
  EXPECT_EQ(statistics.GetData()->Get(0).Mean, 3.0);
  EXPECT_EQ(computed, 1);
  statistics.Postpone();
  statistics.AddValue(1.0);  // to the new figures
  EXPECT_EQ(statistics.GetStatData(), "21 31 1");
  statistics.Postpone();
  statistics.Reset();
  EXPECT_EQ(statistics.GetStatData(), "0 0 0");
  statistics.Postpone();
  EXPECT_EQ(statistics.GetStatData(), "40 30 0");
}

/// A series of these records in a panel of 10 x 10 units.
struct TSeriesFixture : TPanelFixture {
  explicit TSeriesFixture(std::vector<TStatisticsData> records) {
    series = panel.AddSeries(std::make_unique<TStatisticsSeries>());
    series->Statistics = [records = std::move(records)](int& index, TStatisticsData& record) {
      if (index >= static_cast<int>(records.size())) return false;
      record = records[static_cast<std::size_t>(index++)];
      return true;
    };
    series->GetStyle()->SetLineColor(TColor::Black());
    series->GetStyle()->SetFillColor(TColor::Yellow());
  }
  TStatisticsSeries* series;
};

constexpr TStatisticsData kRecord{5.0, 4.0, 2.0, 9.0, 1.0};

TEST(TStatisticsSeries, DrawsExtremesDeviationAndMeanOverEachOther) {
  TSeriesFixture fixture({kRecord});
  fixture.series->GetStyle()->SetBarStyle(TStatSeriesStyle::bsYBar);
  // The position 5 is column 70; the values 9, 6, 4, 2 and 1 are the rows 30, 90, 130, 170 and 190.
  using TSeries = TStatisticsSeries;
  using TPoints = std::vector<QPoint>;
  const std::tuple<TSeries::TStatOptions, TPoints, TPoints, TPoints> cases[] = {
      // what is shown, and points that are black, white and yellow
      {{TSeries::soShowMinMax},
       {{67, 40}, {73, 40}, {70, 30}, {70, 190}},
       {{66, 40}, {70, 29}},
       {{70, 130}}},
      {{TSeries::soShowStDev}, {{64, 130}, {70, 90}, {70, 170}}, {{70, 40}}, {{70, 130}}},
      {{TSeries::soShowMean}, {{61, 130}, {79, 130}}, {{70, 129}}, {}},
      {TSeries().GetOptions(), {{67, 40}, {70, 130}}, {}, {{67, 100}}},
  };
  const auto expect = [&](const TPoints& points, const QColor& color) {
    const QImage picture = fixture.Picture();
    for (const QPoint& at : points) {
      EXPECT_EQ(picture.pixelColor(at), color) << at.x() << ' ' << at.y();
    }
  };
  for (const auto& [options, black, white, yellow] : cases) {
    SCOPED_TRACE(options);
    fixture.series->SetOptions(options);
    expect(black, Qt::black);
    expect(white, Qt::white);
    expect(yellow, Qt::yellow);
  }
  fixture.series->GetStyle()->SetBarStyle(TStatSeriesStyle::bsXBar);
  // Values are columns, 10 a unit from 20 on, and the position is row 110.
  expect({{110, 110}, {60, 119}}, Qt::black);
  expect({{111, 110}}, Qt::white);
}

TEST(TStatisticsSeries, ABarThatGoesOnBeyondThePanelHasNoEndAtItsEdge) {
  TSeriesFixture fixture({{5.0, 4.0, 2.0, 1e300, -1.0}});
  fixture.series->GetStyle()->SetBarStyle(TStatSeriesStyle::bsYBar);
  fixture.series->GetStyle()->SetLineWeight(3);
  fixture.series->SetOptions(TStatisticsSeries::soShowMinMax);
  const QImage picture = fixture.Picture();
  for (const int edge : {TPanelFixture::kRect.top(), TPanelFixture::kRect.bottom()}) {
    EXPECT_EQ(picture.pixelColor(70, edge), Qt::yellow) << edge;
    EXPECT_EQ(picture.pixelColor(67, edge), Qt::black) << edge;
  }
}

TEST(TStatisticsSeries, CoversWhatItDraws) {
  using TSeries = TStatisticsSeries;
  const TStatisticsData wide{7.0, 5.0, 6.0, 8.0, 3.0};
  const TStatisticsData broken{kNan, kInfinity, kNan, kInfinity, -kInfinity};
  const std::tuple<TSeries::TStatOptions, double, double> cases[] = {
      {{TSeries::soShowMinMax}, 1.0, 9.0},
      {{TSeries::soShowStDev}, -1.0, 11.0},
      {{TSeries::soShowMean}, 4.0, 5.0},
      {{}, kNan, kNan},  // nothing is drawn
  };
  TSeriesFixture fixture({kRecord, broken, wide});
  TStatisticsSeries& series = *fixture.series;
  for (const auto& [options, min, max] : cases) {
    for (const bool alongX : {true, false}) {
      series.GetStyle()->SetBarStyle(alongX ? TStatSeriesStyle::bsXBar : TStatSeriesStyle::bsYBar);
      series.SetOptions(options);
      series.UpdateRangeX();
      series.UpdateRangeY();
      const TRange& values = alongX ? series.RangeX() : series.RangeY();
      const TRange& positions = alongX ? series.RangeY() : series.RangeX();
      EXPECT_EQ(values.GetReset() && positions.GetReset(), std::isnan(min));
      if (std::isnan(min)) continue;
      EXPECT_EQ(BoundsOf(values), TMinMax(min, max));
      EXPECT_EQ(BoundsOf(positions), TMinMax(5.0, 7.0));
    }
  }
  TSeriesFixture nothing({broken});
  nothing.series->UpdateRangeX();
  EXPECT_TRUE(nothing.series->RangeX().GetReset());
  EXPECT_EQ(CountPixels(nothing.Picture(), Qt::white), 150 * 230);
}

TEST(TStatisticsSeries, RedrawsOnceForAStyleAndIsKeptByForms) {
  TSeriesFixture fixture({kRecord});
  QSignalSpy redraws(&fixture.panel, &TDataPanel::OnRepaint);
  TStatSeriesStyle style;
  style.SetLineColor(TColor::Green());
  style.SetFillColor(TColor::None());
  style.SetBarStyle(TStatSeriesStyle::bsYBar);
  for (TStatSeriesStyle* each : {&style, &style, static_cast<TStatSeriesStyle*>(nullptr)}) {
    fixture.series->SetStyle(each);
    EXPECT_EQ(redraws.count(), 1);
  }
  TSeriesList copy;
  ASSERT_TRUE(copy.ReadProperties(fixture.panel.GetSeriesList().WriteProperties()));
  EXPECT_TRUE(copy.SameAs(&fixture.panel.GetSeriesList()));
}

}  // namespace
