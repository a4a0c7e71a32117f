#include "components/controls/Needle.h"

#include "tests/support/Testing.h"

namespace {

/// The corners, "x,y x,y ...".
QString Outline(const TNeedle& needle) {
  QStringList corners;
  for (const QPoint& point : needle.Points()) {
    corners << QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
  }
  return corners.join(' ');
}

QImage Picture(const TNeedle& needle, double ratio = 1.0) {
  QImage image(QSize(60, 60) * ratio, QImage::Format_RGB32);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::white);
  QPainter painter(&image);
  needle.Draw(&painter, QRect(0, 0, 60, 60));
  return image;
}

TEST(TNeedle, OutlinesOfAllTypesAreThoseFoundOnPaper) {
  // 170 pixels long, turned by 30 degrees about (300, 400).
  const QString outlines =
      R"(447,485 445,486 299,401 277,406 218,372 241,366 235,343 294,377 301,399 447,483
447,485 365,457 373,444 226,359 218,372 144,330 161,300 235,343 227,356 374,441 382,428
447,485 262,398 279,368
447,485 303,412 279,437 288,403 263,379 297,388 321,363 312,397
447,485 306,423 277,406 294,377 323,394
447,485 287,422 153,315 313,378
447,485 380,466 300,400 203,364 153,315 220,334 300,400 397,436
447,485 380,466 402,461 299,401 277,406 218,372 241,366 235,343 294,377 301,399 404,458 397,436
447,485 271,383)";
  TNeedle needle;
  needle.SetXYLength({300, 400}, 170);
  needle.SetAngle(30.0);
  QStringList drawn;
  for (int type = 0; type < TNeedle::kTypeCount; ++type) {
    needle.SetType(static_cast<TNeedle::TNeedleType>(type));
    drawn << Outline(needle);
  }
  EXPECT_EQ(drawn.join('\n').toStdString(), outlines.toStdString());
  // 15 hundredths to each side: 4.5 of 30, rounded away from zero.
  needle.SetType(TNeedle::ntArrow6);
  needle.SetXYLength({0, 0}, 30);
  needle.SetAngle(0.0);
  EXPECT_EQ(Outline(needle), "30,0 0,5 -30,0 0,-5");
}

TEST(TNeedle, StartsAsARedLineWithAGreyShadowAndIgnoresNonsense) {
  TNeedle needle;
  QSignalSpy changes(&needle, &TNeedle::OnChange);
  for (const int none : {-1, 9}) needle.SetType(static_cast<TNeedle::TNeedleType>(none));
  needle.SetLength(-1);
  needle.SetLineWidth(-1);
  needle.SetAngle(kNan);
  needle.SetXYLength({0, 0}, 40);  // as it is
  EXPECT_EQ(changes.count(), 0);
  EXPECT_EQ(Outline(needle), "40,0 -8,0");
  EXPECT_EQ(needle.GetLineColor(), TColor::FromRgb(255, 0, 0));
  EXPECT_EQ(needle.GetShaddowColor(), TColor::FromRgb(128, 128, 128));
  EXPECT_TRUE(needle.GetFillColor().IsNone());
  EXPECT_EQ(needle.GetHeight(), 4);
  EXPECT_EQ(needle.GetLineWidth(), 2);
  needle.SetAngle(1.0);
  EXPECT_EQ(changes.count(), 1);
  needle.SetXYLength({INT_MAX, INT_MIN}, INT_MAX);
  EXPECT_EQ(changes.count(), 2);
  needle.SetHeight(INT_MAX);
  needle.SetLineWidth(INT_MAX);
  Picture(needle);  // returns
}

/// A rhombus of 20 pixels about (30, 25), level, without slanted shadows in the way.
TEST(TNeedle, DrawsAFilledNeedleOverItsShadowAndWithoutFillHollowOutlines) {
  TNeedle needle;
  needle.SetType(TNeedle::ntArrow6);
  needle.SetXYLength({30, 25}, 20);
  needle.SetHeight(10);
  const auto colors = [&needle](int ratio) {
    std::vector<QColor> found;
    for (const QPoint& place : {QPoint(30, 25), {10, 25}, {55, 25}, {40, 35}, {59, 35}}) {
      found.push_back(Picture(needle, ratio).pixelColor(place * ratio));
    }
    return found;
  };
  // In the middle, at the tail's end, beside it; in the middle of the shadow, and at its tip.
  const QColor red(255, 0, 0), blue(0, 0, 255), grey(128, 128, 128), white(255, 255, 255);
  EXPECT_THAT(colors(1), testing::ElementsAre(white, red, white, white, grey));
  needle.SetFillColor(TColor::Blue());
  for (const int ratio : {1, 2}) {
    EXPECT_THAT(colors(ratio), testing::ElementsAre(blue, red, white, grey, grey));
  }
  needle.SetShaddowColor(TColor::None());
  EXPECT_THAT(colors(1), testing::ElementsAre(blue, red, white, white, white));
  needle.Draw(nullptr, QRect());  // nothing
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
      const QImage image = Picture(needle, ratio);
      const QRect column(qRound(30 * ratio), 0, 1, image.height());
      EXPECT_EQ(CountPixels(image, Qt::red, column), qRound(width * ratio));
      EXPECT_EQ(CountOther(image, Qt::white, column), qRound(width * ratio));
    }
  }
}

TEST(TNeedle, ACopyPointsWhereItDoes) {
  TNeedle needle, copy;
  needle.SetAngle(12.5);
  EXPECT_FALSE(copy.SameAs(&needle));
  copy.Assign(&needle);
  EXPECT_TRUE(copy.SameAs(&needle));
  EXPECT_EQ(Outline(copy), Outline(needle));
}

}  // namespace
