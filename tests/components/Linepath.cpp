#include "components/graphing/Linepath.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "components/graphing/Curvepainter.h"
#include "tests/components/Panelfixture.h"
#include "tests/support/Testsupport.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const QSize kPicture(220, 160);
const QRect kPanel(20, 10, 180, 130);

/// The panel's rectangle with linear axes of so many pixels per unit, from 0.
TPlotArea Area(double pixelsPerX, double pixelsPerY) {
  return {kPanel, TPixelScale::Rightwards({false, 0.0, pixelsPerX}, kPanel.left()),
          TPixelScale::Upwards({false, 0.0, pixelsPerY}, kPanel.top() + kPanel.height())};
}

/// Four decades each way.
TPlotArea LogArea(double min) {
  return {kPanel, TPixelScale::Rightwards({true, min, 179.0 / 4.0}, kPanel.left()),
          TPixelScale::Upwards({true, min, 129.0 / 4.0}, kPanel.top() + kPanel.height())};
}

template <class Paint>
QImage Painted(Paint paint) {
  QImage image(kPicture, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setClipRect(kPanel);
  paint(painter);
  return image;
}

QImage Drawn(const std::vector<TCoordinate>& points, const TPlotArea& area, int weight = 1) {
  return Painted([&](QPainter& painter) {
    TSeriesStyle style;
    style.SetPointStyle(TSeriesStyle::psNone);
    style.SetLineWeight(weight);
    TCurvePainter(painter, style, area).Add(points);
  });
}

/// A line from each point to the next, and nothing else.
QImage DrawnPlainly(const std::vector<TCoordinate>& points, const TPlotArea& area) {
  return Painted([&](QPainter& painter) {
    painter.setPen(QPen(Qt::blue, 1));
    for (std::size_t i = 1; i < points.size(); ++i) {
      const TCoordinate& a = points[i - 1];
      const TCoordinate& b = points[i];
      if (!std::isfinite(a.X + a.Y) || !std::isfinite(b.X + b.Y)) continue;
      painter.drawLine(area.x.Pixel(a.X), area.y.Pixel(a.Y), area.x.Pixel(b.X), area.y.Pixel(b.Y));
    }
  });
}

/// Random curves of many kinds, in pixels of a panel.
class TCurves {
 public:
  std::vector<TCoordinate> Next() {
    const int count = Int(1, 400);
    const double step = std::pow(10.0, Real(-2.5, 1.0));
    const double height = Chance(0.3) ? 3000.0 : Chance(0.5) ? 130.0 : Real(1.0, 40.0);
    const int kind = Int(0, 6);
    std::vector<TCoordinate> points;
    double x = Chance(0.3) ? Real(-300.0, 100.0) : Real(0.0, 60.0);
    double y = 65.0;
    for (int i = 0; i < count; ++i) {
      switch (kind) {
        case 0:  // noise
          y = 65.0 + height * Real(-0.5, 0.5);
          break;
        case 1:  // a smooth wave
          y = 65.0 + 0.5 * height * std::sin(0.2 * i);
          break;
        case 2:  // plateaus
          if (Chance(0.1)) y = Real(0.0, 130.0);
          break;
        case 3:  // a walk
          y += Real(-4.0, 4.0);
          break;
        case 4:  // vertical runs: many points over one another, then a step
          y = Real(-20.0, 150.0);
          break;
        case 5:  // spikes
          y = Chance(0.05) ? 65.0 + height * Real(-5.0, 5.0) : 65.0;
          break;
        default:  // whole pixels, where rounding has nothing to decide
          y = Int(0, 129);
      }
      points.push_back({kind == 4 ? std::floor(x) : x, y});
      x += kind == 3 ? Real(-2.0, 3.0) * step : step;
      if (Chance(0.005)) points.push_back({x, kNan});
      if (Chance(0.002)) x = Real(-500.0, 700.0);
    }
    return points;
  }

  double Real(double from, double to) { return std::uniform_real_distribution(from, to)(random_); }
  int Int(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }
  bool Chance(double p) { return Real(0.0, 1.0) < p; }

 private:
  std::mt19937 random_{20260101};
};

/// Writes what differs into the build folder, for a look.
void ExpectSamePicture(const QImage& drawn, const QImage& plain, int round) {
  if (drawn == plain) return;
  const QString file = BuiltFile("linepath-%1-%2.png").arg(round);
  drawn.save(file.arg(QStringLiteral("merged")));
  plain.save(file.arg(QStringLiteral("plain")));
  ADD_FAILURE() << "curve " << round << " differs";
}

TEST(LinePath, MergingChangesNoPixelOfAThinSolidLine) {
  TCurves curves;
  for (int round = 0; round < 2000 && !HasFailure(); ++round) {
    const std::vector<TCoordinate> points = curves.Next();
    const TPlotArea area = Area(1.0, 1.0);
    ExpectSamePicture(Drawn(points, area), DrawnPlainly(points, area), round);
  }
}

TEST(LinePath, MergingChangesNoPixelOnLogarithmicAxes) {
  TCurves curves;
  for (int round = 0; round < 1000 && !HasFailure(); ++round) {
    // What is not positive is drawn at 1e-6: left of the one axis, inside the other.
    const double min = round % 2 ? 0.01 : 1.0e-9;
    std::vector<TCoordinate> points = curves.Next();
    for (TCoordinate& point : points) {
      point = {min * std::pow(10.0, point.X / 40.0), min * std::pow(10.0, point.Y / 40.0)};
      if (curves.Chance(0.05)) point.Y = -point.Y;
      if (curves.Chance(0.05)) point.X = 0.0;
    }
    ExpectSamePicture(Drawn(points, LogArea(min)), DrawnPlainly(points, LogArea(min)), round);
  }
}

TEST(LinePath, MergesSteepAxesWhereRoundingIsCoarse) {
  // Values near 1e9 whose last bits are hundredths of a pixel.
  TCurves curves;
  const TPlotArea area{kPanel, TPixelScale::Rightwards({false, 1.0e9, 1.0e5}, kPanel.left()),
                       TPixelScale::Upwards({false, 0.0, 1.0}, kPanel.top() + kPanel.height())};
  for (int round = 0; round < 200 && !HasFailure(); ++round) {
    std::vector<TCoordinate> points = curves.Next();
    for (TCoordinate& point : points) point.X = 1.0e9 + point.X * 1.0e-5;
    ExpectSamePicture(Drawn(points, area), DrawnPlainly(points, area), round);
  }
}

/// What a sink is handed.
struct TRecorder : TLineSink {
  void Join(const QLine& line) override { joins.push_back(line); }
  void Span(const TSpan& span) override { spans.push_back(span); }
  void Finish() override { ++finished; }
  std::vector<QLine> joins;
  std::vector<TSpan> spans;
  int finished = 0;
};

TEST(LinePath, AColumnGivesItsFirstLowestHighestAndLastPoint) {
  const TPlotArea area = Area(1.0, 1.0);
  TRecorder sink;
  TLinePath path(area.x, area.y, kPanel, 1000, sink);
  // Column 20 + 30 = 50; the row of y is 10 + 130 - y - 1.
  for (const double y : {50.0, 90.0, 20.0, 60.0}) path.Add(30.2, y);
  path.Add(31.0, 60.0);
  path.Finish();
  ASSERT_EQ(sink.spans.size(), 1u);
  const TLineSink::TSpan& span = sink.spans[0];
  EXPECT_EQ(span.column, 50);
  EXPECT_EQ(span.first, 89);
  EXPECT_EQ(span.high, 49);
  EXPECT_EQ(span.low, 119);
  EXPECT_EQ(span.last, 79);
  EXPECT_FALSE(span.lowIsFirst);
  ASSERT_EQ(sink.joins.size(), 1u);
  EXPECT_EQ(sink.joins[0], QLine(50, 79, 51, 79));
  EXPECT_EQ(sink.finished, 1);
}

TEST(LinePath, AMillionPointsAreFewPieces) {
  const TPlotArea area = Area(180.0 / 1.0e6, 1.0);
  TRecorder sink;
  TLinePath path(area.x, area.y, kPanel, 1000, sink);
  for (int i = 0; i < 1'000'000; ++i) path.Add(i, i % 2 ? 10.0 : 100.0);
  path.Finish();
  EXPECT_LE(sink.spans.size(), 181u);
  EXPECT_LE(sink.joins.size(), 181u);
}

TEST(LinePath, WhatLiesAsideIsLeftOut) {
  const TPlotArea area = Area(1.0, 1.0);
  TRecorder sink;
  TLinePath path(area.x, area.y, kPanel, 1000, sink);
  for (int x = -5000; x < 5000; ++x) path.Add(x, x % 7);
  path.Finish();
  EXPECT_LE(sink.joins.size(), 182u);
}

TEST(LinePath, AValueThatIsNotFiniteMakesAGap) {
  const TPlotArea area = Area(10.0, 10.0);
  for (const TCoordinate hole : {TCoordinate{2.0, kNan},
                                 {kNan, 2.0},
                                 {2.0, kInfinity},
                                 {2.0, -kInfinity},
                                 {kInfinity, 2.0},
                                 {-kInfinity, 2.0}}) {
    SCOPED_TRACE(QStringLiteral("(%1, %2)").arg(hole.X).arg(hole.Y).toStdString());
    const std::vector<TCoordinate> points = {{0.0, 2.0}, {1.0, 2.0}, hole, {3.0, 2.0}, {4.0, 2.0}};
    const QImage image = Drawn(points, area);
    // Two lines over 11 pixels each, at 0..10 and 30..40 pixels.
    EXPECT_EQ(CountPixels(image, Qt::blue), 22);
    EXPECT_EQ(image.pixelColor(kPanel.left() + 20, 119), QColor(Qt::white));
  }
  EXPECT_EQ(CountPixels(Drawn(std::vector<TCoordinate>(5, {1.0, kNan}), area), Qt::blue), 0);
}

TEST(LinePath, FarAwayPointsKeepTheirDirection) {
  const TPlotArea area = Area(1.0, 1.0);
  for (const double far : {1.0e4, 1.0e6, 1.0e9, 1.0e11}) {
    SCOPED_TRACE(far);
    // The diagonal of the panel's square, from far below to far above.
    const QImage image = Drawn({{-far, -far}, {far, far}}, area);
    for (const int i : {0, 1, 64, 128}) {
      EXPECT_EQ(image.pixelColor(kPanel.left() + i, kPanel.top() + 129 - i), QColor(Qt::blue)) << i;
    }
    EXPECT_EQ(CountPixels(image, Qt::blue), 130);
  }
  for (const double huge : {1.0e300, std::numeric_limits<double>::max()}) {
    const QImage image = Drawn({{50.0, 50.0}, {huge, 50.0}, {-huge, -huge}, {50.0, huge}}, area);
    EXPECT_EQ(image.pixelColor(kPanel.left() + 179, kPanel.top() + 79), QColor(Qt::blue));
  }
}

TEST(LinePath, OnePointDrawsNothingAndTwoInAPixelADot) {
  const TPlotArea area = Area(1.0, 1.0);
  EXPECT_EQ(CountPixels(Drawn({{50.0, 50.0}}, area), Qt::blue), 0);
  EXPECT_EQ(CountPixels(Drawn({{50.0, 50.0}, {50.1, 49.9}}, area), Qt::blue), 1);
}

TEST(LinePath, AWideLineIsAsWideAsItsWeight) {
  const TPlotArea area = Area(1.0, 1.0);
  for (const int weight : {2, 3, 7}) {
    const QImage image = Drawn({{0.0, 60.0}, {179.0, 60.0}}, area, weight);
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) rows += image.pixelColor(100, y) == Qt::blue;
    EXPECT_EQ(rows, weight);
  }
}

TEST(PixelScale, FirstAndLastPixelBelongToTheEndsOfTheAxis) {
  // 100 pixels from 7, values 10 to 30: 99 / 20 pixels a unit.
  const auto right = TPixelScale::Rightwards({false, 10.0, 99.0 / 20.0}, 7);
  const auto up = TPixelScale::Upwards({false, 10.0, 99.0 / 20.0}, 107);
  const struct {
    double value;
    int right, up;
  } cases[] = {
      {10.0, 7, 106},
      {30.0, 106, 7},
      {20.0, 57, 57},  // 49.5 pixels along: halves are rounded up
      {5.0, -18, 131},
      {kNan, -TPixelScale::kFar, -TPixelScale::kFar},
      {kInfinity, TPixelScale::kFar, -TPixelScale::kFar},
      {-1.0e200, -TPixelScale::kFar, TPixelScale::kFar},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(right.Pixel(c.value), c.right) << c.value;
    EXPECT_EQ(up.Pixel(c.value), c.up) << c.value;
  }
  EXPECT_DOUBLE_EQ(right.Value(106), 30.0);
  EXPECT_DOUBLE_EQ(up.Value(106), 10.0);
}

TEST(PixelScale, ALogarithmicAxisHasEqualDecades) {
  const auto scale = TPixelScale::Rightwards({true, 0.01, 50.0}, 0);
  EXPECT_EQ(scale.Pixel(0.01), 0);
  EXPECT_EQ(scale.Pixel(1.0), 100);
  EXPECT_EQ(scale.Pixel(2.0), 115);   // 50 x 0.30103
  EXPECT_EQ(scale.Pixel(0.0), -200);  // drawn at 1e-6
  EXPECT_EQ(scale.Pixel(-3.0), -200);
  EXPECT_NEAR(scale.Value(150), 10.0, 1e-12);
}

TEST(PixelScale, AFinerGridHasItsOwnPixelsInsideEachLogicalOne) {
  const auto scale = TPixelScale::Rightwards({false, 0.0, 1.0}, 10, 2.0);
  // The centre of logical pixel 10 lies between the grid pixels 20 and 21.
  EXPECT_EQ(scale.Pixel(-0.25), 20);
  EXPECT_EQ(scale.Pixel(0.25), 21);
  EXPECT_EQ(scale.Pixel(0.75), 22);
  EXPECT_DOUBLE_EQ(scale.Value(21.0), 0.25);
  const auto up = TPixelScale::Upwards({false, 0.0, 1.0}, 100, 2.0);
  EXPECT_EQ(up.Pixel(-0.25), 199);
  EXPECT_EQ(up.Pixel(0.25), 198);
}

}  // namespace
