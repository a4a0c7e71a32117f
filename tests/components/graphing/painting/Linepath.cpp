#include "components/graphing/painting/Linepath.h"

#include "components/graphing/painting/Curvepainter.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

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

/// What a function paints inside the panel.
template <class TPaint>
QImage PaintedInside(TPaint paint) {
  return Painted(kPicture, [&](QPainter& painter) {
    painter.setClipRect(kPanel);
    paint(painter);
  });
}

TSeriesStyle& Line(TSeriesStyle& style, int weight,
                   TSeriesStyle::TPenStyle pen = TSeriesStyle::psSolid) {
  style.SetPointStyle(TSeriesStyle::psNone);
  style.SetLineStyle(pen);
  style.SetLineWeight(weight);
  return style;
}

QImage Drawn(const std::vector<TCoordinate>& points, const TPlotArea& area, int weight = 1) {
  return PaintedInside([&](QPainter& painter) {
    TSeriesStyle style;
    TCurvePainter(painter, Line(style, weight), area).Add(points);
  });
}

/// A line from each point to the next, and a dot for a point without neighbours.
QImage DrawnPlainly(const std::vector<TCoordinate>& points, const TPlotArea& area) {
  return PaintedInside([&](QPainter& painter) {
    painter.setPen(QPen(Qt::blue, 1));
    const auto pixel = [&area](const TCoordinate& point) {
      return QPoint(area.x.Pixel(point.X), area.y.Pixel(point.Y));
    };
    const auto is = [&points](std::size_t i) {  // -1 is past the end
      return i < points.size() && std::isfinite(points[i].X + points[i].Y);
    };
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (!is(i)) continue;
      if (is(i + 1)) painter.drawLine(pixel(points[i]), pixel(points[i + 1]));
      if (!is(i - 1) && !is(i + 1)) painter.drawPoint(pixel(points[i]));
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
    // Noise, a smooth wave, plateaus, a walk, many points over one another and then a step, spikes,
    // and whole pixels, where rounding has nothing to decide.
    const std::function<double(int, double)> kinds[] = {
        [&](int, double) { return 65.0 + height * Real(-0.5, 0.5); },
        [&](int i, double) { return 65.0 + 0.5 * height * std::sin(0.2 * i); },
        [&](int, double y) { return Chance(0.1) ? Real(0.0, 130.0) : y; },
        [&](int, double y) { return y + Real(-4.0, 4.0); },
        [&](int, double) { return Real(-20.0, 150.0); },
        [&](int, double) { return Chance(0.05) ? 65.0 + height * Real(-5.0, 5.0) : 65.0; },
        [&](int, double) { return Int(0, 129); }};
    double x = Chance(0.3) ? Real(-300.0, 100.0) : Real(0.0, 60.0);
    double y = 65.0;
    for (int i = 0; i < count; ++i) {
      y = kinds[kind](i, y);
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

/// Merging changes no pixel of random curves, each of them changed by `change`.
template <class TChange>
void ExpectNoPixelChanged(int rounds, TChange change) {
  TCurves curves;
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    std::vector<TCoordinate> points = curves.Next();
    const TPlotArea area = change(points, round, curves);
    const QImage drawn = Drawn(points, area), plain = DrawnPlainly(points, area);
    EXPECT_TRUE(drawn == plain) << round;
    if (drawn != plain) ExpectSamePicture(drawn, plain, "linepath-" + std::to_string(round), 0);
  }
}

TEST(LinePath, MergingChangesNoPixelOfAThinSolidLine) {
  ExpectNoPixelChanged(2000, [](auto&, int, TCurves&) { return Area(1.0, 1.0); });
  ExpectNoPixelChanged(1000, [](auto& points, int round, TCurves& curves) {
    // What is not positive is drawn at 1e-6, left of the one axis, and where the other begins.
    const double min = round % 2 ? 0.01 : 1.0e-9;
    for (TCoordinate& point : points) {
      point = {min * std::pow(10.0, point.X / 40.0), min * std::pow(10.0, point.Y / 40.0)};
      if (curves.Chance(0.05)) point.Y = -point.Y;
      if (curves.Chance(0.05)) point.X = 0.0;
    }
    return LogArea(min);
  });
  // Values near 1e9 whose last bits are hundredths of a pixel.
  ExpectNoPixelChanged(200, [](auto& points, int, TCurves&) {
    for (TCoordinate& point : points) point.X = 1.0e9 + point.X * 1.0e-5;
    TPlotArea area = Area(1.0, 1.0);
    area.x = TPixelScale::Rightwards({false, 1.0e9, 1.0e5}, kPanel.left());
    return area;
  });
}

/// What a sink is handed of a line.
struct TRecorder : TLineSink {
  explicit TRecorder(const TPlotArea& area) : path(area.x, area.y, kPanel, 1000, *this) {}
  void Join(const QLine& line) override { joins.push_back(line); }
  void Span(const TSpan& span) override { spans.push_back(span); }
  void Finish() override { ++finished; }
  TLinePath path;
  std::vector<QLine> joins;
  std::vector<TSpan> spans;
  int finished = 0;
};

TEST(LinePath, AColumnGivesItsFirstLowestHighestAndLastPoint) {
  TRecorder sink(Area(1.0, 1.0));
  // Column 20 + 30 = 50; the row of y is 10 + 130 - y - 1.
  for (const double y : {50.0, 90.0, 20.0, 60.0}) sink.path.Add(30.2, y);
  sink.path.Add(31.0, 60.0);
  sink.path.Finish();
  ASSERT_EQ(sink.spans.size(), 1u);
  const TLineSink::TSpan& span = sink.spans[0];
  EXPECT_EQ(std::tuple(span.column, span.first, span.high, span.low, span.last, span.lowIsFirst),
            std::tuple(50, 89, 49, 119, 79, false));
  EXPECT_THAT(sink.joins, testing::ElementsAre(QLine(50, 79, 51, 79)));
  EXPECT_EQ(sink.finished, 1);
}

TEST(LinePath, AMillionPointsAreFewPiecesAndWhatLiesAsideIsLeftOut) {
  TRecorder sink(Area(180.0 / 1.0e6, 1.0));
  for (int i = 0; i < 1'000'000; ++i) sink.path.Add(i, i % 2 ? 10.0 : 100.0);
  sink.path.Finish();
  EXPECT_LE(sink.spans.size(), 181u);
  EXPECT_LE(sink.joins.size(), 181u);
  TRecorder aside(Area(1.0, 1.0));
  for (int x = -5000; x < 5000; ++x) aside.path.Add(x, x % 7);
  aside.path.Finish();
  EXPECT_LE(aside.joins.size(), 182u);
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

TEST(LinePath, OnePointIsADotLikeTwoInAPixelAndALineAsWideAsItsWeight) {
  const TPlotArea area = Area(1.0, 1.0);
  for (const auto& [weight, pixels] : {std::pair(1, 1), {2, 4}, {3, 5}, {7, 37}}) {
    EXPECT_EQ(CountPixels(Drawn({{50.0, 50.0}}, area, weight), Qt::blue), pixels);
    EXPECT_EQ(CountPixels(Drawn({{50.0, 50.0}, {50.1, 49.9}}, area, weight), Qt::blue), pixels);
    const QImage line = Drawn({{0.0, 60.0}, {179.0, 60.0}}, area, weight);
    EXPECT_EQ(CountPixels(line, Qt::blue, QRect(100, 0, 1, line.height())), weight);
  }
}

/// A pixel within the distance has the colour.
bool IsNear(const QImage& image, QPoint centre, double distance, QRgb color) {
  const int reach = static_cast<int>(distance);
  for (int dy = -reach; dy <= reach; ++dy) {
    for (int dx = -reach; dx <= reach; ++dx) {
      const QPoint at = centre + QPoint(dx, dy);
      if (std::hypot(dx, dy) <= distance && kPanel.contains(at) && image.pixel(at) == color) {
        return true;
      }
    }
  }
  return false;
}

TEST(LinePath, AWideLineIsADiscThatFollowsAThinOne) {
  const QRgb blue = QColor(Qt::blue).rgb();
  const QRgb white = QColor(Qt::white).rgb();
  TCurves curves;
  const TPlotArea area = Area(1.0, 1.0);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const int weight = 2 + round % 8;
    const std::vector<TCoordinate> points = curves.Next();
    const QImage thin = DrawnPlainly(points, area);
    const QImage wide = Drawn(points, area, weight);
    int missing = 0, surplus = 0;
    for (int y = kPanel.top(); y <= kPanel.bottom(); ++y) {
      for (int x = kPanel.left(); x <= kPanel.right(); ++x) {
        const bool isInside = thin.pixel(x, y) == blue;
        missing += isInside && IsNear(wide, {x, y}, 0.5 * weight - 1.0, white);
        // A little more where the line is outside of the panel.
        const bool isBorder = !kPanel.adjusted(weight, weight, -weight, -weight).contains(x, y);
        surplus += !isBorder && wide.pixel(x, y) == blue &&
                   !IsNear(thin, {x, y}, 0.5 * weight + 1.5, blue);
      }
    }
    EXPECT_EQ(missing, 0);
    EXPECT_EQ(surplus, 0);
  }
}

TEST(LinePath, AWideLineIsPaintedOnceWhereItCrossesItself) {
  std::vector<TCoordinate> points;
  for (int i = 0; i < 500; ++i) points.push_back({0.3 * i, 65.0 + 60.0 * std::sin(12.9 * i)});
  for (const auto pen : {TSeriesStyle::psSolid, TSeriesStyle::psDash}) {
    const QImage image = PaintedInside([&](QPainter& painter) {
      painter.setOpacity(0.5);
      TSeriesStyle style;
      TCurvePainter(painter, Line(style, 4, pen), Area(1.0, 1.0)).Add(points);
    });
    EXPECT_EQ(ColorsOf(image).size(), 2u) << pen;
  }
}

/// Lengths of what is drawn and what is left out along the middle of a horizontal line.
std::vector<int> Runs(const std::vector<TCoordinate>& points, TSeriesStyle::TPenStyle pen,
                      int weight, int ratio) {
  const TPlotArea area{
      QRect(kPanel.topLeft() * ratio, kPanel.size() * ratio),
      TPixelScale::Rightwards({false, 0.0, 1.0}, kPanel.left(), ratio),
      TPixelScale::Upwards({false, 0.0, 1.0}, kPanel.top() + kPanel.height(), ratio),
      static_cast<double>(ratio)};
  const QImage image = Painted(kPicture * ratio, [&](QPainter& painter) {
    painter.scale(ratio, ratio);
    TSeriesStyle style;
    TCurvePainter(painter, Line(style, weight, pen), area).Add(points);
  });
  const int row = (kPanel.top() + kPanel.height() - 1 - 60) * ratio;
  std::vector<int> runs;
  for (int x = 0; x < image.width(); ++x) {
    if (x == 0 || image.pixel(x, row) != image.pixel(x - 1, row)) runs.push_back(0);
    ++runs.back();
  }
  return runs;
}

TEST(LinePath, DashesAreMeasuredInPenWidthsAndRunOnOverThePoints) {
  const std::pair<TSeriesStyle::TPenStyle, std::vector<int>> pens[] = {
      {TSeriesStyle::psDash, {4, 2}},
      {TSeriesStyle::psDot, {1, 2}},
      {TSeriesStyle::psDashDot, {4, 2, 1, 2}},
      {TSeriesStyle::psDashDotDot, {4, 2, 1, 2, 1, 2}}};
  std::vector<TCoordinate> many;
  for (int i = 0; i <= 1600; ++i) many.push_back({0.1 * i, 60.0});
  for (const auto& [pen, pattern] : pens) {
    for (const auto& [weight, ratio] :
         {std::pair(2, 1), std::pair(3, 1), std::pair(1, 2), std::pair(3, 2)}) {
      SCOPED_TRACE(testing::Message() << pen << ' ' << weight << ' ' << ratio);
      const std::vector<int> runs = Runs({{0.0, 60.0}, {160.0, 60.0}}, pen, weight, ratio);
      EXPECT_EQ(runs, Runs(many, pen, weight, ratio));
      ASSERT_GT(runs.size(), pattern.size() + 1);
      for (std::size_t i = 0; i < pattern.size(); ++i) {
        EXPECT_EQ(runs[i + 1], pattern[i] * weight * ratio) << "piece " << i;
      }
    }
  }
}

TEST(PixelScale, FirstAndLastPixelBelongToTheEndsOfTheAxis) {
  // 100 pixels from 7, values 10 to 30: 99 / 20 pixels a unit.
  const auto right = TPixelScale::Rightwards({false, 10.0, 99.0 / 20.0}, 7);
  const auto up = TPixelScale::Upwards({false, 10.0, 99.0 / 20.0}, 107);
  const std::tuple<double, int, int> cases[] = {
      {10.0, 7, 106},
      {30.0, 106, 7},
      {20.0, 57, 57},  // 49.5 pixels along: halves are rounded up
      {5.0, -18, 131},
      {kNan, -TPixelScale::kFar, -TPixelScale::kFar},
      {kInfinity, TPixelScale::kFar, -TPixelScale::kFar},
      {-1.0e200, -TPixelScale::kFar, TPixelScale::kFar}};
  for (const auto& [value, x, y] : cases) {
    EXPECT_EQ(right.Pixel(value), x) << value;
    EXPECT_EQ(up.Pixel(value), y) << value;
  }
  EXPECT_DOUBLE_EQ(right.Value(106), 30.0);
  EXPECT_DOUBLE_EQ(up.Value(106), 10.0);
}

TEST(PixelScale, DecadesAreEqualAndAFinerGridHasItsOwnPixelsInsideEachLogicalOne) {
  const auto decades = TPixelScale::Rightwards({true, 0.01, 50.0}, 0);
  // 50 x 0.30103 is 15; what is not positive is drawn at 1e-6.
  for (const auto& [value, pixel] :
       {std::pair(0.01, 0), {1.0, 100}, {2.0, 115}, {0.0, -200}, {-3.0, -200}}) {
    EXPECT_EQ(decades.Pixel(value), pixel);
  }
  EXPECT_EQ(TPixelScale::Rightwards({true, 1.0e-9, 50.0}, 0).Pixel(0.0), 0);  // where it begins
  EXPECT_NEAR(decades.Value(150), 10.0, 1e-12);

  const auto right = TPixelScale::Rightwards({false, 0.0, 1.0}, 10, 2.0);
  const auto up = TPixelScale::Upwards({false, 0.0, 1.0}, 100, 2.0);
  // The centre of logical pixel 10 lies between the grid pixels 20 and 21.
  for (const auto& [value, x, y] : {std::tuple(-0.25, 20, 199), {0.25, 21, 198}, {0.75, 22, 197}}) {
    EXPECT_EQ(right.Pixel(value), x);
    EXPECT_EQ(up.Pixel(value), y);
  }
  EXPECT_DOUBLE_EQ(right.Value(21.0), 0.25);
}

}  // namespace
