#include <QSvgGenerator>
#include <QSvgRenderer>

#include "components/graphing/Gseries.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

using testing::DoubleNear;
using testing::IsEmpty;
using testing::Pointwise;

TEST(DataPanel, LocatesValuesOnPixelsAndBack) {
  TPanelFixture f;
  const std::pair<TCoordinate, QPoint> cases[] = {
      {{0.0, 0.0}, {20, 210}},  // bottom is 211, one past the last row
      {{10.0, 10.0}, {120, 10}},
      {{5.0, 2.5}, {70, 160}},
      {{-1.0, 11.0}, {10, -10}}};
  for (const auto& [expected, at] : cases) {
    TCoordinate value = expected;
    QPoint pixel;
    f.panel.LocateValue(pixel, value);
    EXPECT_EQ(pixel, at);
    EXPECT_EQ(value, expected);
    f.panel.LocateCoordinate(at, value);
    EXPECT_NEAR(value.X, expected.X, 1e-12);
    EXPECT_NEAR(value.Y, expected.Y, 1e-12);
  }
}

TEST(DataPanel, ANonPositiveValueOnALogarithmicAxisIsReplacedForTheCallerToo) {
  TPanelFixture f(true);
  TCoordinate top{-2.0, 10.0};
  TCoordinate base{1.0, 0.0};
  QLine bar;
  f.panel.LocateValue(bar, top, base);
  EXPECT_EQ(top, (TCoordinate{1.0e-6, 10.0}));
  EXPECT_EQ(base, (TCoordinate{1.0, 1.0e-6}));
  // Two decades at 25 pixels; four decades at 50 pixels below the axis.
  EXPECT_EQ(bar, QLine(-80, 60, 70, 410));
  f.panel.LocateCoordinate({70, 60}, top);
  EXPECT_NEAR(top.X, 1.0, 1e-12);
  EXPECT_NEAR(top.Y, 10.0, 1e-11);
}

TEST(DataPanel, PaintsBackgroundAndFrameOrSaysThatThereIsNoVisibleSeries) {
  TPanelFixture f;
  EXPECT_FALSE(InkBox(f.Picture()).isEmpty());
  TSeries* series = f.AddCurve({});
  EXPECT_TRUE(InkBox(f.Picture()).isEmpty()) << "a visible series counts, with or without points";
  series->SetVisible(false);
  EXPECT_FALSE(InkBox(f.Picture()).isEmpty());
  series->SetVisible(true);
  f.panel.SetFillColor(TColor::Yellow());
  EXPECT_EQ(CountPixels(f.Picture(), Qt::yellow), 101 * 201);
  f.panel.SetLineColor(TColor::Green());
  const QImage image = f.Picture();
  EXPECT_EQ(CountPixels(image, Qt::green), 2 * 101 + 2 * 199);
  EXPECT_EQ(image.pixelColor(120, 210), QColor(Qt::green));
}

/// The panel written as a file that knows no clipping, and read again.
QImage ThroughSvg(TPanelFixture& f) {
  QBuffer file;
  QSvgGenerator generator;
  generator.setOutputDevice(&file);
  generator.setViewBox(QRect(0, 0, 150, 230));
  {
    QPainter painter(&generator);
    f.panel.Draw(&painter);
  }
  return Painted({150, 230},
                 [&](QPainter& painter) { QSvgRenderer(file.data()).render(&painter); });
}

TEST(DataPanel, NothingIsDrawnOutsideItsRectangle) {
  const std::vector<TCoordinate> points = {{-5.0, -5.0}, {15.0, 15.0}, {5.0, -1.0e9},
                                           {1.0e9, 5.0}, {-50.0, 5.0}, {4.0, 20.0}};
  TPanelFixture f;
  TPanelFixture aside;
  for (int i = TSeriesStyle::psNone; i <= TSeriesStyle::psYBar; ++i) {
    const auto style = static_cast<TSeriesStyle::TPointStyle>(i);
    f.AddCurve(points, {2.0, 2.0}, style);
    aside.AddCurve({{-20.0, 20.0}, {-20.0, 5.0}}, {2.0, 2.0}, style);
  }
  // In a file that knows no clipping, half a line's width, or of a marker's, may reach over the
  // border.
  const auto expectInside = [](const QImage& image, int reach) {
    const QRect around = TPanelFixture::kRect.adjusted(-reach, -reach, reach, reach);
    EXPECT_GT(CountOther(image, Qt::white, around), 500);
    EXPECT_TRUE(around.contains(InkBox(image)));
  };
  expectInside(ThroughSvg(f), 4);
  aside.panel.DeleteSeries(TSeriesStyle::psYBar);  // stands on the left border
  EXPECT_TRUE(InkBox(ThroughSvg(aside)).isEmpty());

  f.AddCurve({{-5.0, 5.0}, {0.1, 0.1}, {9.9, 9.9}})->GetStyle()->SetLineWeight(9);
  f.AddSlider({10.0, 10.0})->SetShowGridX(true);
  expectInside(f.Picture(), 0);
}

TEST(DataPanel, VisibleSeriesMakeTheRanges) {
  TPanelFixture f;
  const auto expect = [&f](double minX, double maxX, double minY, double maxY) {
    f.UpdateRanges();
    EXPECT_EQ(BoundsOf(f.panel.RangeX()), TMinMax(minX, maxX));
    EXPECT_EQ(BoundsOf(f.panel.RangeY()), TMinMax(minY, maxY));
  };
  expect(0.0, 1.0, 0.0, 1.0);
  f.AddCurve({{1000.0, 4.0}, {kNan, 9.0}, {1003.0, kInfinity}});
  TSeries* other = f.AddCurve({{990.0, -2.0}});
  f.AddCurve({});  // an empty one covers nothing, not 0 to 1
  expect(990.0, 1003.0, -2.0, 9.0);
  other->SetVisible(false);
  expect(1000.0, 1003.0, 4.0, 9.0);
  f.AddSlider({2000.0, 5.0});
  expect(1000.0, 2000.0, 4.0, 9.0);
}

TEST(DataPanel, BarsWidenTheRangeToTheirOtherEndAndTheirFoot) {
  TPanelFixture f;
  const auto leastOf = [&f](TSeries* series, TSeriesStyle::TPointStyle style) {
    series->GetStyle()->SetPointStyle(style);
    f.UpdateRanges();
    return TMinMax(series->RangeX().GetMin(), series->RangeY().GetMin());
  };
  TSeries* high = f.AddCurve({{1.0, 3.0}, {2.0, 4.0}}, {0.5, 7.0});
  EXPECT_EQ(leastOf(high, TSeriesStyle::psXBar), TMinMax(0.5, -4.0));
  EXPECT_EQ(leastOf(high, TSeriesStyle::psYBar), TMinMax(0.0, -4.0));
  TSeries* low = f.AddCurve({{1.0, 3.0}, {2.0, 4.0}}, {0.5, 0.5});
  EXPECT_EQ(leastOf(low, TSeriesStyle::psCircle), TMinMax(1.0, 3.0));
  EXPECT_EQ(leastOf(low, TSeriesStyle::psXBar), TMinMax(0.5, 0.0));
  EXPECT_EQ(leastOf(low, TSeriesStyle::psYBar), TMinMax(0.0, 2.5));
  f.vertical.SetScale(TAxis::asTime);  // the day 0 of the calendar is no foot
  EXPECT_EQ(leastOf(low, TSeriesStyle::psXBar), TMinMax(0.5, 2.5));
}

TEST(DataPanel, TheSelectionStaysOnTheBorderAndIsReportedOnceAtItsEnd) {
  TPanelFixture f;
  f.panel.SetAllowSelection(true);
  int selections = 0;
  QObject::connect(&f.panel, &TDataPanel::OnSelection, [&] {
    ++selections;
    EXPECT_TRUE(f.panel.IsSelecting());
  });
  f.panel.MoveSelection({}, 50, 50);
  f.panel.EndSelection({}, 50, 50);
  EXPECT_EQ(selections, 0) << "none was started";
  f.panel.StartSelection({}, 60, 100);
  f.panel.MoveSelection({}, 5000, -5000);
  EXPECT_EQ(f.panel.SelectionCorner(), QPoint(121, 10));
  f.panel.EndSelection({}, -5000, 5000);
  EXPECT_EQ(f.panel.SelectionCorner(), QPoint(20, 211));
  EXPECT_EQ(f.panel.SelectionAnchor(), QPoint(60, 100));
  EXPECT_EQ(selections, 1);
  EXPECT_FALSE(f.panel.IsSelecting());

  // It must exceed three pixels both ways. Left, upper, right, lower; 10 and 20 pixels a unit.
  const std::pair<QPoint, std::vector<double>> cases[] = {{{3, 50}, {}},
                                                          {{50, 3}, {}},
                                                          {{0, 0}, {}},
                                                          {{-4, -4}, {3.6, 5.7, 4.0, 5.5}},
                                                          {{4, 4}, {4.0, 5.5, 4.4, 5.3}}};
  for (const auto& [by, values] : cases) {
    f.panel.StartSelection({}, 60, 100);
    f.panel.EndSelection({}, 60 + by.x(), 100 + by.y());
    EXPECT_THAT(SelectionOf(f.panel), Pointwise(DoubleNear(1e-12), values));
  }
  f.panel.SetAllowSelection(false);
  EXPECT_THAT(SelectionOf(f.panel), IsEmpty());
  // It is a dashed grey rectangle.
  f.AddCurve({});
  const QColor grey(128, 128, 128);
  EXPECT_EQ(CountPixels(f.Picture(), grey), 0) << "not allowed";
  f.panel.SetAllowSelection(true);
  f.panel.StartSelection({}, 40, 50);
  f.panel.EndSelection({}, 100, 150);
  const QImage image = f.Picture();
  const int dashes = CountPixels(image, grey, QRect(40, 50, 60, 100));
  EXPECT_EQ(CountPixels(image, grey), dashes);
  EXPECT_THAT(dashes, testing::AllOf(testing::Gt(100), testing::Lt(300)))
      << "an outline of 316 pixels with gaps";
  EXPECT_EQ(image.pixelColor(70, 100), QColor(Qt::white)) << "hollow";
  f.panel.ClearSelection();
  EXPECT_EQ(CountPixels(f.Picture(), grey), 0);
}

TEST(DataPanel, DragsTheTopmostActiveSliderUnderTheMouseUntilItGoes) {
  TPanelFixture f;
  auto* lower = f.AddSlider({5.0, 5.0});  // at (70, 110)
  auto* upper = f.AddSlider({5.0, 5.0});
  EXPECT_FALSE(f.panel.GetSelSlider({}, 70 + TSliderSeries::kArm + 1, 110));
  EXPECT_FALSE(f.panel.MoveSelSlider({}, 90, 90));
  EXPECT_TRUE(f.panel.GetSelSlider({}, 70, 110));
  EXPECT_EQ(f.panel.SelSlider(), upper);
  f.panel.ReleaseSelSlider({}, 70, 110);
  EXPECT_EQ(f.panel.SelSlider(), nullptr);
  upper->SetActive(false);
  EXPECT_TRUE(f.panel.GetSelSlider({}, 70, 110));
  EXPECT_EQ(f.panel.SelSlider(), lower);
  f.panel.DeleteSeries(0);
  EXPECT_EQ(f.panel.SelSlider(), nullptr);
  EXPECT_FALSE(f.panel.MoveSelSlider({}, 80, 110));
  upper->SetActive(true);
  upper->SetVisible(false);
  EXPECT_FALSE(f.panel.GetSelSlider({}, 70, 110));
}

TEST(DataPanel, ASliderFollowsTheMouseInsideThePanel) {
  TPanelFixture f;
  auto* slider = f.AddSlider({5.0, 5.003});
  QStringList news;
  QObject::connect(slider, &TSliderSeries::OnChange, [&] { news << "changed"; });
  QObject::connect(slider, &TSliderSeries::OnDragged, [&] { news << "dragged"; });
  const auto expectAt = [slider](double x, double y) {
    EXPECT_NEAR(slider->GetPositionX(), x, 1e-12);
    EXPECT_NEAR(slider->GetPositionY(), y, 1e-12);
  };
  ASSERT_TRUE(f.panel.GetSelSlider({}, 72, 107));
  EXPECT_FALSE(f.panel.MoveSelSlider({}, 72, 107)) << "grabbed beside its centre it does not jump";
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 82, 107));
  expectAt(6.0, 5.003);  // not rounded to its pixel
  EXPECT_EQ(news, QStringList({"changed", "dragged"}));
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 9000, 9000));
  expectAt(10.0, 0.0);
  EXPECT_EQ(news.count("dragged"), 2);

  // A grid line moves its own coordinate.
  slider->SetPosition({5.0, 5.0});
  EXPECT_FALSE(f.panel.GetSelSlider({}, 70, 200));
  slider->SetShowGridX(true);
  slider->SetShowGridY(true);
  ASSERT_TRUE(f.panel.GetSelSlider({}, 70, 200));
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 80, 20));
  expectAt(6.0, 5.0);
  ASSERT_TRUE(f.panel.GetSelSlider({}, 30, 110));
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 80, 130));
  expectAt(6.0, 4.0);
}

TEST(DataPanel, ReportsEachChangeOnceToTheLayoutAndOnceToThePicture) {
  TPanelFixture f;
  std::unique_ptr<TCustomGraphSeries> taken;
  TSeries* series = nullptr;
  const std::tuple<std::function<void()>, qsizetype, qsizetype> cases[] = {
      {[&] { series = f.panel.AddSeries(std::make_unique<TSeries>()); }, 1, 1},
      {[&] { f.panel.SetFillColor(TColor::Yellow()); }, 1, 1},
      {[&] { f.panel.SetFillColor(TColor::Yellow()); }, 0, 0},
      {[&] { series->GetStyle()->SetLineColor(TColor::Green()); }, 0, 1},
      {[&] { series->SetVisible(false); }, 0, 1},
      {[&] { taken = f.panel.RemoveSeries(series); }, 1, 1},
      {[&] { taken->SetVisible(true); }, 0, 0}};
  for (const auto& [change, changed, repainted] : cases) {
    QSignalSpy changes(&f.panel, &TDataPanel::OnChange);
    QSignalSpy repaints(&f.panel, &TDataPanel::OnRepaint);
    change();
    EXPECT_EQ(std::pair(changes.count(), repaints.count()), std::pair(changed, repainted));
  }
}

}  // namespace
