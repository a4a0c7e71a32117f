#include "components/controls/Needle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <climits>
#include <limits>

#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAreArray;

std::vector<QPoint> PointsOf(const TNeedle& needle) {
  return {needle.Points().begin(), needle.Points().end()};
}

QImage Picture(const TNeedle& needle, int ratio = 1) {
  QImage image(QSize(60, 60) * ratio, QImage::Format_RGB32);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::white);
  QPainter painter(&image);
  needle.Draw(&painter, QRect(0, 0, 60, 60));
  return image;
}

/// A rhombus of 20 pixels about (30, 25), level, without slanted shadows in the way.
std::unique_ptr<TNeedle> Rhombus() {
  auto needle = std::make_unique<TNeedle>();
  needle->SetType(TNeedle::ntArrow6);
  needle->SetXYLength({30, 25}, 20);
  needle->SetHeight(10);
  return needle;
}

TEST(TNeedle, OutlinesOfAllTypesAreThoseFoundOnPaper) {
  // 170 pixels long, turned by 30 degrees about (300, 400).
  const std::vector<QPoint> outlines[] = {
      {{447, 485},
       {445, 486},
       {299, 401},
       {277, 406},
       {218, 372},
       {241, 366},
       {235, 343},
       {294, 377},
       {301, 399},
       {447, 483}},
      {{447, 485},
       {365, 457},
       {373, 444},
       {226, 359},
       {218, 372},
       {144, 330},
       {161, 300},
       {235, 343},
       {227, 356},
       {374, 441},
       {382, 428}},
      {{447, 485}, {262, 398}, {279, 368}},
      {{447, 485},
       {303, 412},
       {279, 437},
       {288, 403},
       {263, 379},
       {297, 388},
       {321, 363},
       {312, 397}},
      {{447, 485}, {306, 423}, {277, 406}, {294, 377}, {323, 394}},
      {{447, 485}, {287, 422}, {153, 315}, {313, 378}},
      {{447, 485},
       {380, 466},
       {300, 400},
       {203, 364},
       {153, 315},
       {220, 334},
       {300, 400},
       {397, 436}},
      {{447, 485},
       {380, 466},
       {402, 461},
       {299, 401},
       {277, 406},
       {218, 372},
       {241, 366},
       {235, 343},
       {294, 377},
       {301, 399},
       {404, 458},
       {397, 436}},
      {{447, 485}, {271, 383}}};
  TNeedle needle;
  needle.SetXYLength({300, 400}, 170);
  needle.SetAngle(30.0);
  for (int type = 0; type < TNeedle::kTypeCount; ++type) {
    SCOPED_TRACE(type);
    needle.SetType(static_cast<TNeedle::TNeedleType>(type));
    EXPECT_THAT(PointsOf(needle), ElementsAreArray(outlines[type]));
  }
}

TEST(TNeedle, TurnsClockwiseAndRoundsHalvesAwayFromZero) {
  const struct {
    double angle;
    QPoint tip, side;
  } cases[] = {{0.0, {30, 0}, {0, 5}},
               {90.0, {0, 30}, {-5, 0}},
               {180.0, {-30, 0}, {0, -5}},
               {-90.0, {0, -30}, {5, 0}},
               {360.0, {30, 0}, {0, 5}}};
  TNeedle needle;
  needle.SetType(TNeedle::ntArrow6);  // 15 hundredths to each side: 4.5 of 30
  needle.SetLength(30);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.angle);
    needle.SetAngle(c.angle);
    EXPECT_EQ(needle.Points()[0], c.tip);
    // A right angle has no exact sine, so a half may fall on either side of it.
    EXPECT_LE((needle.Points()[1] - c.side).manhattanLength(), c.angle == 0.0 ? 0 : 1);
  }
}

TEST(TNeedle, StartsAsARedLineWithAGreyShadow) {
  TNeedle needle;
  EXPECT_EQ(needle.GetType(), TNeedle::ntArrow9);
  EXPECT_THAT(PointsOf(needle), ElementsAreArray({QPoint(40, 0), QPoint(-8, 0)}));
  EXPECT_EQ(needle.GetLineColor(), TColor::FromRgb(255, 0, 0));
  EXPECT_EQ(needle.GetShaddowColor(), TColor::FromRgb(128, 128, 128));
  EXPECT_TRUE(needle.GetFillColor().IsNone());
  EXPECT_EQ(needle.GetHeight(), 4);
  EXPECT_EQ(needle.GetLineWidth(), 2);
}

TEST(TNeedle, ReportsRealChangesOnceAndIgnoresNonsense) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    void (*set)(TNeedle&);
    int fired;
  } cases[] = {
      {"type 9", [](TNeedle& n) { n.SetType(static_cast<TNeedle::TNeedleType>(9)); }, 0},
      {"type -1", [](TNeedle& n) { n.SetType(static_cast<TNeedle::TNeedleType>(-1)); }, 0},
      {"same type", [](TNeedle& n) { n.SetType(TNeedle::ntArrow9); }, 0},
      {"type", [](TNeedle& n) { n.SetType(TNeedle::ntArrow1); }, 1},
      {"length", [](TNeedle& n) { n.SetLength(41); }, 1},
      {"negative length", [](TNeedle& n) { n.SetLength(-1); }, 0},
      {"angle", [](TNeedle& n) { n.SetAngle(1.0); }, 1},
      {"no angle", [](TNeedle& n) { n.SetAngle(kNan); }, 0},
      {"place",
       [](TNeedle& n) {
         n.SetXYLength({1, 2}, 3);
       },
       1},
      {"same place",
       [](TNeedle& n) {
         n.SetXYLength({0, 0}, 40);
       },
       0},
      {"line width", [](TNeedle& n) { n.SetLineWidth(-1); }, 0},
      {"fill", [](TNeedle& n) { n.SetFillColor(TColor::Blue()); }, 1},
      {"height", [](TNeedle& n) { n.SetHeight(5); }, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TNeedle needle;
    QSignalSpy changes(&needle, &TNeedle::OnChange);
    c.set(needle);
    EXPECT_EQ(changes.count(), c.fired);
  }
  TNeedle needle;
  needle.SetXYLength({INT_MAX, INT_MIN}, INT_MAX);
  needle.SetHeight(INT_MAX);
  needle.SetLineWidth(INT_MAX);
  Picture(needle);  // returns
}

TEST(TNeedle, DrawsAFilledNeedleOverItsShadow) {
  auto needle = Rhombus();
  needle->SetFillColor(TColor::Blue());
  for (const int ratio : {1, 2}) {
    SCOPED_TRACE(ratio);
    const QImage image = Picture(*needle, ratio);
    const auto at = [&](int x, int y) { return image.pixelColor(x * ratio, y * ratio); };
    EXPECT_EQ(at(30, 25), QColor(0, 0, 255));
    EXPECT_EQ(at(40, 35), QColor(128, 128, 128));  // the middle of the shadow
    EXPECT_EQ(at(10, 25), QColor(255, 0, 0));      // the tail's end
    EXPECT_EQ(at(55, 25), QColor(255, 255, 255));
  }
}

TEST(TNeedle, WithoutFillBothOutlinesAreHollow) {
  auto needle = Rhombus();
  QImage image = Picture(*needle);
  EXPECT_EQ(image.pixelColor(30, 25), QColor(255, 255, 255));
  EXPECT_EQ(image.pixelColor(40, 35), QColor(255, 255, 255));
  EXPECT_EQ(image.pixelColor(59, 35), QColor(128, 128, 128));  // the tip of the shadow
  needle->SetShaddowColor(TColor::None());
  image = Picture(*needle);
  EXPECT_EQ(image.pixelColor(59, 35), QColor(255, 255, 255));
  needle->Draw(nullptr, QRect());  // nothing
}

/// A level line fills whole device pixels: nothing of it is blurred.
TEST(TNeedle, IsSharpAtEveryPixelRatio) {
  TNeedle needle;
  needle.SetXYLength({15, 25}, 30);
  needle.SetShaddowColor(TColor::None());
  for (const int width : {1, 2, 3}) {
    for (const double ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
      SCOPED_TRACE(testing::Message() << width << " at " << ratio);
      needle.SetLineWidth(width);
      QImage image(QSize(60, 60) * ratio, QImage::Format_RGB32);
      image.setDevicePixelRatio(ratio);
      image.fill(Qt::white);
      QPainter painter(&image);
      needle.Draw(&painter, QRect());
      painter.end();
      int red = 0;
      const int column = qRound(30 * ratio);
      for (int y = 0; y < image.height(); ++y) {
        const QColor color = image.pixelColor(column, y);
        if (color == QColor(255, 0, 0)) {
          ++red;
        } else {
          EXPECT_EQ(color, QColor(255, 255, 255));
        }
      }
      EXPECT_EQ(red, qRound(width * ratio));
    }
  }
}

TEST(TNeedle, AssignMakesASameNeedle) {
  auto needle = Rhombus();
  needle->SetAngle(12.5);
  needle->SetFillColor(TColor::Green());
  TNeedle copy;
  EXPECT_FALSE(copy.SameAs(needle.get()));
  copy.Assign(needle.get());
  EXPECT_TRUE(copy.SameAs(needle.get()));
  EXPECT_EQ(PointsOf(copy), PointsOf(*needle));
}

}  // namespace
