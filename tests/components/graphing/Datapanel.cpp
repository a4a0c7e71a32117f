#include <QSvgGenerator>
#include <QSvgRenderer>

#include "components/graphing/Gseries.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testing.h"

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
  TCoordinate value{1.0, 0.0};
  QPoint pixel;
  f.panel.LocateValue(pixel, value);
  EXPECT_EQ(value, (TCoordinate{1.0, 1.0e-6}));
  // Two decades at 25 pixels; four decades at 50 pixels below the axis.
  EXPECT_EQ(pixel, QPoint(70, 410));

  TCoordinate top{-2.0, 10.0};
  TCoordinate base{1.0, -5.0};
  QLine bar;
  f.panel.LocateValue(bar, top, base);
  EXPECT_EQ(top, (TCoordinate{1.0e-6, 10.0}));
  EXPECT_EQ(base, (TCoordinate{1.0, 1.0e-6}));
  EXPECT_EQ(bar, QLine(-80, 60, 70, 410));

  f.panel.LocateCoordinate({70, 60}, value);
  EXPECT_NEAR(value.X, 1.0, 1e-12);
  EXPECT_NEAR(value.Y, 10.0, 1e-11);
}

TEST(DataPanel, WithoutAVisibleSeriesItSaysSo) {
  TPanelFixture f;
  EXPECT_FALSE(InkBox(f.Picture()).isEmpty());
  TSeries* series = f.AddCurve({});
  EXPECT_TRUE(InkBox(f.Picture()).isEmpty()) << "a visible series counts, with or without points";
  series->SetVisible(false);
  EXPECT_FALSE(InkBox(f.Picture()).isEmpty());
}

TEST(DataPanel, PaintsBackgroundAndFrameInsideItsRectangleOnly) {
  TPanelFixture f;
  f.AddCurve({});
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
  for (int style = TSeriesStyle::psNone; style <= TSeriesStyle::psYBar; ++style) {
    const auto pointStyle = static_cast<TSeriesStyle::TPointStyle>(style);
    f.AddCurve(points, {2.0, 2.0})->GetStyle()->SetPointStyle(pointStyle);
    aside.AddCurve({{-20.0, 20.0}, {-20.0, 5.0}}, {2.0, 2.0})
        ->GetStyle()
        ->SetPointStyle(pointStyle);
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

TEST(DataPanel, ASelectionMustExceedThreePixelsBothWays) {
  // Left, upper, right, lower from wherever it was dragged; 10 and 20 pixels a unit.
  const std::pair<QPoint, std::vector<double>> cases[] = {{{3, 50}, {}},
                                                          {{50, 3}, {}},
                                                          {{0, 0}, {}},
                                                          {{4, 4}, {4.0, 5.5, 4.4, 5.3}},
                                                          {{-4, -4}, {3.6, 5.7, 4.0, 5.5}}};
  for (const auto& [by, values] : cases) {
    TPanelFixture f;
    f.panel.SetAllowSelection(true);
    f.panel.StartSelection({}, 60, 100);
    f.panel.EndSelection({}, 60 + by.x(), 100 + by.y());
    EXPECT_THAT(SelectionOf(f.panel), Pointwise(DoubleNear(1e-12), values));
    f.panel.SetAllowSelection(false);
    EXPECT_THAT(SelectionOf(f.panel), IsEmpty());
  }
}

TEST(DataPanel, TheSelectionStaysOnTheBorderAndIsReportedOnceAtItsEnd) {
  TPanelFixture f;
  f.panel.SetAllowSelection(true);
  QSignalSpy selections(&f.panel, &TDataPanel::OnSelection);
  bool selecting = false;
  QObject::connect(&f.panel, &TDataPanel::OnSelection,
                   [&](QObject*) { selecting = f.panel.IsSelecting(); });

  f.panel.MoveSelection({}, 50, 50);
  f.panel.EndSelection({}, 50, 50);
  EXPECT_EQ(selections.count(), 0) << "none was started";
  f.panel.StartSelection({}, 60, 100);
  f.panel.MoveSelection({}, 5000, -5000);
  EXPECT_EQ(f.panel.SelectionCorner(), QPoint(121, 10));
  f.panel.EndSelection({}, -5000, 5000);
  EXPECT_EQ(f.panel.SelectionCorner(), QPoint(20, 211));
  EXPECT_EQ(f.panel.SelectionAnchor(), QPoint(60, 100));
  EXPECT_EQ(selections.count(), 1);
  EXPECT_TRUE(selecting);
  EXPECT_FALSE(f.panel.IsSelecting());
}

TEST(DataPanel, TheSelectionIsADashedGreyRectangle) {
  TPanelFixture f;
  f.AddCurve({});
  f.panel.StartSelection({}, 40, 50);
  f.panel.EndSelection({}, 100, 150);
  const QColor grey(128, 128, 128);
  EXPECT_EQ(CountPixels(f.Picture(), grey), 0) << "not allowed";
  f.panel.SetAllowSelection(true);
  const QImage image = f.Picture();
  const int dashes = CountPixels(image, grey, QRect(40, 50, 60, 100));
  EXPECT_EQ(CountPixels(image, grey), dashes);
  EXPECT_GT(dashes, 100);
  EXPECT_LT(dashes, 300) << "an outline of 316 pixels with gaps";
  EXPECT_EQ(image.pixelColor(70, 100), QColor(Qt::white)) << "hollow";
  f.panel.ClearSelection();
  EXPECT_EQ(CountPixels(f.Picture(), grey), 0);
}

TEST(DataPanel, DragsTheTopmostActiveSliderUnderTheMouse) {
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
  lower->SetVisible(false);
  EXPECT_FALSE(f.panel.GetSelSlider({}, 70, 110));
}

TEST(DataPanel, ASliderFollowsTheMouseInsideThePanel) {
  TPanelFixture f;
  auto* slider = f.AddSlider({5.0, 5.003});
  QSignalSpy dragged(slider, &TSliderSeries::OnDragged);
  ASSERT_TRUE(f.panel.GetSelSlider({}, 72, 107));
  EXPECT_FALSE(f.panel.MoveSelSlider({}, 72, 107)) << "grabbed beside its centre it does not jump";
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 82, 107));
  EXPECT_NEAR(slider->GetPositionX(), 6.0, 1e-12);
  EXPECT_EQ(slider->GetPositionY(), 5.003) << "not rounded to its pixel";
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 9000, 9000));
  EXPECT_NEAR(slider->GetPositionX(), 10.0, 1e-12);
  EXPECT_NEAR(slider->GetPositionY(), 0.0, 1e-12);
  EXPECT_EQ(dragged.count(), 2);
}

TEST(DataPanel, AGridLineOfASliderMovesItsOwnCoordinate) {
  TPanelFixture f;
  auto* slider = f.AddSlider({5.0, 5.0});
  EXPECT_FALSE(f.panel.GetSelSlider({}, 70, 200));
  slider->SetShowGridX(true);
  slider->SetShowGridY(true);
  ASSERT_TRUE(f.panel.GetSelSlider({}, 70, 200));
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 80, 20));
  EXPECT_NEAR(slider->GetPositionX(), 6.0, 1e-12);
  EXPECT_EQ(slider->GetPositionY(), 5.0);
  ASSERT_TRUE(f.panel.GetSelSlider({}, 30, 110));
  EXPECT_TRUE(f.panel.MoveSelSlider({}, 80, 130));
  EXPECT_NEAR(slider->GetPositionX(), 6.0, 1e-12);
  EXPECT_NEAR(slider->GetPositionY(), 4.0, 1e-12);
}

TEST(DataPanel, ASliderThatGoesWhileItIsHeldIsLetGo) {
  TPanelFixture f;
  f.AddSlider({5.0, 5.0});
  ASSERT_TRUE(f.panel.GetSelSlider({}, 70, 110));
  f.panel.DeleteSeries(0);
  EXPECT_EQ(f.panel.SelSlider(), nullptr);
  EXPECT_FALSE(f.panel.MoveSelSlider({}, 80, 110));
}

TEST(DataPanel, ReportsEachChangeOnceToTheLayoutAndOnceToThePicture) {
  TPanelFixture f;
  QSignalSpy changes(&f.panel, &TDataPanel::OnChange);
  QSignalSpy repaints(&f.panel, &TDataPanel::OnRepaint);
  const auto expect = [&](int changed, int repainted) {
    EXPECT_EQ(changes.count(), changed);
    EXPECT_EQ(repaints.count(), repainted);
    changes.clear();
    repaints.clear();
  };
  TSeries* series = f.panel.AddSeries(std::make_unique<TSeries>());
  expect(1, 1);
  f.panel.SetFillColor(TColor::Yellow());
  expect(1, 1);
  f.panel.SetFillColor(TColor::Yellow());
  expect(0, 0);
  series->GetStyle()->SetLineColor(TColor::Green());
  expect(0, 1);
  series->SetVisible(false);
  expect(0, 1);
  const auto taken = f.panel.RemoveSeries(series);
  expect(1, 1);
  taken->SetVisible(true);
  expect(0, 0);
}

}  // namespace
