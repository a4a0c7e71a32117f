#include "components/graphing/Basichistogram.h"

#include "components/graphing/Graph.h"
#include "components/graphing/editors/Bineditor.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TBar = std::pair<double, double>;

/// Position and count of each bin.
std::vector<TBar> Bins(const TBasicHistogram& histogram) {
  const TBinList& list = *histogram.GetBins();
  std::vector<TBar> bins;
  for (int bin = 0; bin < list.Count(); ++bin) {
    bins.emplace_back(list.GetPosition(bin), list.GetBinCount(bin));
  }
  return bins;
}

void Give(TDataControl& control, std::initializer_list<double> values) {
  for (const double value : values) control.SetValue(value);
}

TSeries& Bars(TBasicHistogram& histogram) {
  return *qobject_cast<TSeries*>(histogram.GetGraphLink()->GetSeriesList().Get(0));
}

TStatisticsSeries& StatisticsBar(TBasicHistogram& histogram) {
  return *qobject_cast<TStatisticsSeries*>(histogram.GetGraphLink()->GetSeriesList().Get(1));
}

// Values

TEST(TBasicHistogram, CountsEachValueAndNotifiesOfEveryNth) {
  TBasicHistogram histogram;
  histogram.SetInterval(2);
  std::vector<double> told;
  TValueLink link([&](double value) {
    told.push_back(value);
    EXPECT_EQ(histogram.GetBins()->GetCycleCount(), 2.0 * static_cast<double>(told.size()));
  });
  histogram.AddLink(&link, false);
  histogram.SetTimeAndValue(45000.5, 0.25);
  Give(histogram, {0.5, 3.0, 2.5});
  EXPECT_THAT(Bins(histogram), ElementsAre(TBar(1.0, 2.0), TBar(2.0, 0.0), TBar(3.0, 2.0)));
  EXPECT_THAT(told, ElementsAre(0.5, 2.5));
  EXPECT_EQ(histogram.GetValue(), 2.5);
  EXPECT_EQ(histogram.GetTime(), 45000.5);
}

TEST(TBasicHistogram, HostileValuesAreCountedNowhereAndAResetNotifiesWhateverTheInterval) {
  TBasicHistogram histogram;
  QSignalSpy notified(&histogram, &TDataControl::OnChange);
  Give(histogram, {kNan, kInfinity, -kInfinity, 1e300, -1e-300, 70000.0});
  EXPECT_THAT(Bins(histogram), ElementsAre(TBar(0.0, 1.0)));
  EXPECT_EQ(notified.count(), 1);
  EXPECT_EQ(histogram.GetBins()->GetLostCount(), 5.0);
  histogram.SetInterval(100);
  histogram.GetResetHistogram()->Click();
  EXPECT_TRUE(histogram.GetBins()->Empty());
  EXPECT_EQ(notified.count(), 2);
}

// Bars

TEST(TBasicHistogram, OffersOneBarPerBinEitherWayRound) {
  TBasicHistogram histogram;
  histogram.GetBins()->SetStep(0.5);
  TCoordinate point;
  TCoordinate extent;
  int index = 0;
  EXPECT_FALSE(histogram.ProvideGraphData(index, point, extent)) << "no bins";
  Give(histogram, {1.0, 1.5, 1.5});

  const std::tuple<TSeriesStyle::TPointStyle, TCoordinate, TCoordinate, TCoordinate> cases[] = {
      {TSeriesStyle::psXBar, {1.0, 1.0}, {1.5, 2.0}, {0.5, 0.0}},
      {TSeriesStyle::psCircle, {1.0, 1.0}, {1.5, 2.0}, {0.5, 0.0}},
      {TSeriesStyle::psYBar, {1.0, 1.0}, {2.0, 1.5}, {0.0, 0.5}}};
  for (const auto& [style, first, second, size] : cases) {
    SCOPED_TRACE(style);
    Bars(histogram).GetStyle()->SetPointStyle(style);
    index = 0;
    for (const TCoordinate& expected : {first, second}) {
      ASSERT_TRUE(histogram.ProvideGraphData(index, point, extent));
      EXPECT_EQ(point, expected);
      EXPECT_EQ(extent, size);
    }
    EXPECT_FALSE(histogram.ProvideGraphData(index, point, extent));
    EXPECT_EQ(index, 2);

    std::vector<TCoordinate> block(8);
    EXPECT_EQ(histogram.ProvideGraphBlock(0, block), 2);
    EXPECT_EQ(block[1], second);
    EXPECT_EQ(histogram.ProvideGraphBlock(1, std::span(block).first(1)), 1);
    EXPECT_EQ(block[0], second);
    for (const int outside : {-1, 2}) EXPECT_EQ(histogram.ProvideGraphBlock(outside, block), 0);
  }
}

TEST(TBasicHistogram, TheCountAxisBeginsAtATenthWhicheverAxisThatIsAndTheGraphFollows) {
  TBasicHistogram histogram;
  TKorvalGraph graph;
  graph.resize(300, 200);
  histogram.GetGraphLink()->SetGraph(&graph);
  for (const auto style : {TSeriesStyle::psYBar, TSeriesStyle::psXBar, TSeriesStyle::psCross}) {
    SCOPED_TRACE(style);
    Bars(histogram).GetStyle()->SetPointStyle(style);
    const bool isX = style == TSeriesStyle::psYBar;
    const TAxis& count = isX ? *graph.GetHorizontalAx() : *graph.GetVerticalAx();
    EXPECT_EQ(graph.GetHorizontalAx()->GetAutoMin(), !isX);
    EXPECT_EQ(graph.GetVerticalAx()->GetAutoMin(), isX);
    EXPECT_EQ(count.GetMin(), 0.1);
  }
  Bars(histogram).GetStyle()->SetPointStyle(TSeriesStyle::psXBar);
  Give(histogram, {0.5, 19.5, 19.5, 19.5});
  QCoreApplication::processEvents();
  EXPECT_EQ(BoundsOf(graph.GetDataPanel()->RangeX()), TMinMax(0.0, 20.0));
  EXPECT_EQ(graph.GetDataPanel()->RangeY().GetMax(), 3.0);
  histogram.GetResetHistogram()->Click();
  histogram.SetValue(5.0);
  QCoreApplication::processEvents();
  EXPECT_EQ(graph.GetDataPanel()->RangeX().GetMin(), 4.0);

  histogram.GetGraphLink()->SetGraph(nullptr);
  graph.GetHorizontalAx()->SetAutoMin(false);
  Bars(histogram).GetStyle()->SetPointStyle(TSeriesStyle::psCircle);
  EXPECT_FALSE(graph.GetHorizontalAx()->GetAutoMin()) << "not its graph any more";
}

// Occurrences

TEST(TOccurrenceHistogram, CountsOnlyValuesThatChangeTheBinIfAskedTo) {
  constexpr auto kAll = TOccurrenceHistogram::amAddAll;
  constexpr auto kChanged = TOccurrenceHistogram::amAddIfBinChanged;
  const std::tuple<TOccurrenceHistogram::THistogramAddMode, std::vector<double>, std::vector<TBar>>
      cases[] = {{kAll, {0.5, 0.5, 0.5}, {{1, 3}}},
                 {kChanged, {0.5, 0.5, 0.7, 1.0}, {{1, 1}}},
                 {kChanged, {0.5, 1.5, 0.5, 1.5}, {{1, 2}, {2, 2}}},
                 // A bin has its upper edge, not its lower.
                 {kChanged, {2.0, 1.5, 1.0, 2.0}, {{1, 1}, {2, 2}}},
                 // Before the first value the last bin is the one that ends at 0.
                 {kChanged, {-0.5, 0.0, 0.5, -0.5}, {{0, 1}, {1, 1}}},
                 // A value without a bin is no change.
                 {kChanged, {0.5, kNan, 0.5, kInfinity, 0.5, 1e300, 0.5}, {{1, 1}}}};
  for (const auto& [mode, values, bins] : cases) {
    SCOPED_TRACE(testing::PrintToString(values));
    TOccurrenceHistogram histogram;
    histogram.SetAddMode(mode);
    for (const double value : values) histogram.SetValue(value);
    EXPECT_EQ(Bins(histogram), bins);
    EXPECT_EQ(histogram.GetValue(), values.back());
  }
  TOccurrenceHistogram histogram;
  histogram.SetAddMode(kChanged);
  histogram.SetValue(0.5);
  histogram.GetResetHistogram()->Click();  // keeps the last bin
  Give(histogram, {0.5, 1.5});
  EXPECT_THAT(Bins(histogram), ElementsAre(TBar(2.0, 1.0)));
}

/// Bins of width 2 up to 2 and 4 with 1 and 3 values: middles 1 and 3, so the sum is 10 and the sum
/// of squares 28; mean 2.5, variance (4 x 28 - 100) / (3 x 4) = 1.
TEST(TOccurrenceHistogram, HasTheStatisticsOfItsBins) {
  TOccurrenceHistogram histogram;
  histogram.GetBins()->SetStep(2.0);
  TStatistics& statistics = *histogram.GetStatistics();
  Give(histogram, {1.9, 2.1, 2.2, 4.0});
  EXPECT_EQ(std::tuple(statistics.GetCount(), statistics.GetSum(), statistics.GetSqSum(),
                       statistics.GetMean(), statistics.GetVariance(), statistics.GetPos()),
            std::tuple(4.0, 10.0, 28.0, 2.5, 1.0, 2.0));
  EXPECT_EQ(BoundsOf(statistics), TMinMax(0.0, 4.0));
  EXPECT_EQ(statistics.GetData()->Get(0), (TStatisticsData{2.0, 2.5, 1.0, 4.0, 0.0}));

  histogram.SetValue(4.0);
  EXPECT_EQ(statistics.GetCount(), 5.0) << "up to date without anybody asking for it";
  histogram.GetResetHistogram()->Click();
  EXPECT_EQ(statistics.GetCount(), 0.0);
  EXPECT_EQ(statistics.GetMax(), 0.0);
  EXPECT_EQ(statistics.GetData()->Get(0), TStatisticsData());
  for (const auto& [value, min] : {std::pair(0.5, 0.0), {-0.5, -2.0}, {2.5, 2.0}}) {
    histogram.GetResetHistogram()->Click();
    histogram.SetValue(value);
    EXPECT_EQ(BoundsOf(statistics), TMinMax(min, min + 2.0)) << "an extreme of zero is one, too";
  }
}

TEST(TOccurrenceHistogram, StartsAsBlueBarsWithItsStatisticsAcrossThem) {
  TOccurrenceHistogram histogram;
  const TSeriesStyle& bars = *Bars(histogram).GetStyle();
  EXPECT_EQ(bars.GetLineStyle(), TSeriesStyle::psClear);
  EXPECT_EQ(bars.GetPointStyle(), TSeriesStyle::psXBar);
  const TStatSeriesStyle& style = *StatisticsBar(histogram).GetStyle();
  EXPECT_EQ(style.GetBarStyle(), TStatSeriesStyle::bsXBar);
  EXPECT_EQ(std::tuple(bars.GetPointColor(), bars.GetFillColor(), style.GetLineColor(),
                       style.GetFillColor()),
            std::tuple(TColor::Blue(), TColor::Blue(), TColor::Black(), TColor::Yellow()));
  Give(histogram, {0.5, 1.5, 1.5, 1.5});
  TStatisticsData record;
  int index = 0;
  ASSERT_TRUE(StatisticsBar(histogram).Statistics(index, record));
  EXPECT_EQ(record.Mean, 1.25);
  EXPECT_EQ(record.Pos, 2.0);
  Bars(histogram).GetStyle()->SetPointStyle(TSeriesStyle::psYBar);
  EXPECT_EQ(style.GetBarStyle(), TStatSeriesStyle::bsYBar);
}

TEST(TOccurrenceHistogram, LoadsItsBinsInSilenceAndComputesItsFiguresFromThem) {
  TOccurrenceHistogram saved;
  saved.GetBins()->SetStep(0.25);
  Give(saved, {0.2, 0.9, 0.2});
  TOccurrenceHistogram loaded;
  QSignalSpy notified(&loaded, &TDataControl::OnChange);
  loaded.BeginLoading();
  for (const char* name : {"Step", "Anchor", "Data"}) {
    loaded.GetBins()->setProperty(name, saved.GetBins()->property(name));
  }
  loaded.GetStatistics()->SetStatData(saved.GetStatistics()->GetStatData());
  loaded.Loaded();
  EXPECT_EQ(Bins(loaded), Bins(saved));
  EXPECT_TRUE(loaded.GetStatistics()->SameAs(saved.GetStatistics()));
  EXPECT_EQ(loaded.GetStatistics()->GetMax(), 1.0);
  EXPECT_EQ(notified.count(), 0);
}

// Life

TEST(TOccurrenceHistogram, ASubscriberMayGiveItAnotherValue) {
  TOccurrenceHistogram histogram;
  int told = 0;
  TValueLink link([&](double value) {
    ++told;
    histogram.SetValue(value + 1.0);
  });
  histogram.AddLink(&link, false);
  histogram.SetValue(0.5);
  EXPECT_GE(told, 1);
  EXPECT_EQ(histogram.GetBins()->GetCycleCount(), told + 1.0) << "each value was counted";
  QCoreApplication::processEvents();  // the warning that the cascade was cut
}

TEST(TBasicHistogram, OpensItsEditorByDoubleClickAndTakesItAlong) {
  auto histogram = std::make_unique<TBasicHistogram>();
  EXPECT_EQ(histogram->toolTip(), "Double click to view/edit histogram");
  EXPECT_EQ(histogram->GetIconImage(), "THistogram");
  EXPECT_EQ(histogram->GetImageSize(), QSize(24, 24));
  EXPECT_EQ(histogram->GetCaptionPos(), TIconControl::cpRight);
  for (int i = 0; i < 2; ++i) QTest::mouseDClick(histogram.get(), Qt::LeftButton);
  const QPointer<TBinEditor> editor = histogram->findChild<TBinEditor*>();
  ASSERT_TRUE(editor);
  EXPECT_TRUE(editor->isVisible());
  EXPECT_EQ(histogram->findChildren<TBinEditor*>().size(), 1);
  histogram.reset();
  EXPECT_FALSE(editor);
}

}  // namespace
