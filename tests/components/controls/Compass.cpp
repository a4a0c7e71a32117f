#include "components/controls/Compass.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <limits>

#include "components/controls/Designmode.h"
#include "model/Datetime.h"
#include "tests/support/Testsupport.h"

namespace {

QImage Grab(QWidget& widget) {
  QImage image(widget.size(), QImage::Format_RGB32);
  image.fill(Qt::black);
  widget.render(&image);
  return image;
}

/// A picture of one colour with a square of another in its middle.
QString PictureFile(const QString& name, QSize size, QRgb ground, QRgb middle) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(ground);
  QPainter painter(&image);
  painter.fillRect(size.width() / 4, size.height() / 4, size.width() / 2, size.height() / 2,
                   QColor(middle));
  painter.end();
  const QString file = TestFolder() + '/' + name;
  EXPECT_TRUE(image.save(file));
  return file;
}

constexpr QRgb kRed = qRgb(255, 0, 0), kGreen = qRgb(0, 255, 0), kBlue = qRgb(0, 0, 255);

TEST(TCompass, NorthTurnsTheScaleAndLeavesTheAngle) {
  TCompass compass;
  EXPECT_EQ(compass.size(), QSize(81, 81));
  compass.SetNorth(90.0);
  compass.SetAngle(0.0);
  EXPECT_EQ(compass.GetNeedle()->Points()[0], QPoint(40, 70));  // down
  compass.SetNorth(-90.0);
  EXPECT_EQ(compass.GetAngle(), 0.0);
  EXPECT_EQ(compass.GetNeedle()->Points()[0], QPoint(40, 10));
  compass.GetNeedle()->SetAngle(30.0);  // turned by itself
  EXPECT_EQ(compass.GetAngle(), 120.0);
  // Sum and difference of these would not give the angle back.
  compass.SetNorth(0.3);
  compass.SetAngle(0.1);
  compass.SetNorth(0.7);
  EXPECT_EQ(compass.GetAngle(), 0.1);
  compass.SetAngle(std::numeric_limits<double>::infinity());
  compass.SetNorth(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(compass.GetAngle(), 0.1);
  EXPECT_EQ(compass.GetNorth(), 0.7);
}

TEST(TCompass, DoubleClicksPlaceTheNeedle) {
  TCompass compass;
  TNeedle& needle = *compass.GetNeedle();
  const auto centre = [&] { return QPoint(needle.GetX(), needle.GetY()); };
  QTest::mouseDClick(&compass, Qt::LeftButton, Qt::NoModifier, {20, 20});
  QTest::mouseDClick(&compass, Qt::RightButton, Qt::ControlModifier, {20, 20});
  EXPECT_EQ(centre(), QPoint(40, 40));
  EXPECT_EQ(needle.GetLength(), 30);
  QTest::mouseDClick(&compass, Qt::LeftButton, Qt::ControlModifier, {10, 70});
  EXPECT_EQ(centre(), QPoint(10, 70));
  EXPECT_EQ(needle.GetLength(), 30);
  QTest::mouseDClick(&compass, Qt::LeftButton, Qt::ShiftModifier, {13, 66});
  EXPECT_EQ(centre(), QPoint(10, 70));
  EXPECT_EQ(needle.GetLength(), 5);
  QTest::mouseDClick(&compass, Qt::LeftButton, Qt::ShiftModifier, {13, 68});  // root of 13: 3.6
  EXPECT_EQ(needle.GetLength(), 3);
  QTest::mouseDClick(&compass, Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier, {5, 6});
  EXPECT_EQ(centre(), QPoint(5, 6));
  EXPECT_EQ(needle.GetLength(), 3);
}

TEST(TCompass, DrawsTheNeedleOverThePicture) {
  TCompass compass;
  compass.SetImageFile(PictureFile("blue.png", {81, 81}, kBlue, kBlue));
  compass.SetAngle(0.0);
  QImage image = Grab(compass);
  EXPECT_EQ(image.pixel(55, 39), kRed);
  EXPECT_EQ(image.pixel(55, 60), kBlue);
  compass.SetAngle(90.0);
  image = Grab(compass);
  EXPECT_EQ(image.pixel(55, 39), kBlue);
  EXPECT_EQ(image.pixel(39, 55), kRed);
  compass.SetShowImage(false);
  image = Grab(compass);
  EXPECT_EQ(image.pixel(55, 39), compass.palette().window().color().rgb());
  EXPECT_EQ(image.pixel(39, 55), kRed);
}

TEST(TCompass, ShowsTheSelectedValueOfItsChannel) {
  TChannelSource source;
  TChannelSet* set = source.GetSets()->Add();
  set->SetLabel("Wind");
  set->SetRows(2);
  set->GetChannels()->GetItem(0)->SetLabel("Direction");
  TCompass compass;
  compass.SetNorth(-90.0);
  compass.SetAngle(5.0);
  TOneChannelLink& link = *compass.GetChannelLink();
  link.DoOnData(nullptr);
  EXPECT_EQ(compass.GetAngle(), 5.0);  // no channel, nothing to show
  EXPECT_FALSE(link.GetEnabled());
  link.SetChannelSource(&source);
  link.GetChannelSet()->SetItem("Wind");
  link.GetChannel()->SetItem("Direction");
  EXPECT_TRUE(link.GetEnabled());
  // A block of two rows, half a second long: time and four channels each.
  const double rows[2][5] = {{45000.0, 30.0, 0, 0, 0},
                             {45000.0 + 0.5 / kSecondsPerDay, 40.0, 0, 0, 0}};
  for (const auto& row : rows) set->SetRow(row, 0, 5);
  const auto tick = [] {
    for (int i = 0; i < 10; ++i) TTimerServer::Instance()->Timer();
  };
  tick();
  EXPECT_EQ(compass.GetAngle(), 35.0);
  EXPECT_EQ(compass.GetNeedle()->GetAngle(), -55.0);
  link.GetOptions()->SetValueType(svMax);
  tick();
  EXPECT_EQ(compass.GetAngle(), 40.0);
  const TStatInterval interval = link.GetOptions()->GetSelInterval();
  link.GetOptions()->SetSelInterval(si1_Minute);
  EXPECT_EQ(compass.GetAngle(), 0.0);  // no minute is over
  link.GetOptions()->SetSelInterval(interval);
  tick();
  EXPECT_EQ(compass.GetAngle(), 40.0);
  link.SetChannelSource(nullptr);
  EXPECT_FALSE(link.GetEnabled());
  EXPECT_EQ(compass.GetAngle(), 40.0);
  link.SetChannelSource(&source);
  link.GetChannelSet()->SetItem("Wind");
  link.GetChannel()->SetIndex(1);  // has its own values, and before them none
  EXPECT_EQ(compass.GetAngle(), 0.0);
  tick();
  EXPECT_EQ(compass.GetAngle(), 0.0);
}

TEST(TImageControl, FitsStretchesOrLeavesThePicture) {
  // 40 x 20 in a control of 80 x 80: twice as large, in the middle.
  TImageControl control;
  control.resize(80, 80);
  control.SetImageFile(PictureFile("wide.png", {40, 20}, kBlue, kGreen));
  const QRgb window = control.palette().window().color().rgb();
  QImage image = Grab(control);
  EXPECT_EQ(image.pixel(40, 19), window);
  EXPECT_EQ(image.pixel(2, 21), kBlue);
  EXPECT_EQ(image.pixel(40, 40), kGreen);
  EXPECT_EQ(image.pixel(40, 61), window);
  control.SetFit(TImageControl::ifStretch);
  image = Grab(control);
  EXPECT_EQ(image.pixel(40, 5), kBlue);
  EXPECT_EQ(image.pixel(40, 30), kGreen);
  control.SetFit(TImageControl::ifActual);
  image = Grab(control);
  EXPECT_EQ(image.pixel(20, 10), kGreen);
  EXPECT_EQ(image.pixel(41, 10), window);
}

TEST(TImageControl, TransparentTakesTheColourOfTheLowerLeftCornerOut) {
  QWidget form;
  form.setStyleSheet("background: #102030");
  TImageControl control(&form);
  control.resize(40, 40);
  control.SetImageFile(PictureFile("square.png", {40, 40}, kBlue, kGreen));
  form.resize(40, 40);
  EXPECT_EQ(Grab(form).pixel(2, 2), kBlue);
  control.SetTransparent(true);
  const QImage image = Grab(form);
  EXPECT_EQ(image.pixel(2, 2), qRgb(0x10, 0x20, 0x30));
  EXPECT_EQ(image.pixel(20, 20), kGreen);
}

TEST(TImageControl, SaysWhyThereIsNoPicture) {
  QByteArray huge("P6\n30000 30000\n255\n");
  huge.append(3000, 'x');
  QImage half(200, 200, QImage::Format_RGB32);
  half.fill(Qt::white);
  for (int i = 0; i < 200; ++i) half.setPixel(i, (i * i * 7) % 200, 0xff000000 + i * 77777);
  half.save(TestFolder() + "/half.png");
  QFile whole(TestFolder() + "/half.png");
  ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
  const QByteArray firstHalf = whole.read(whole.size() / 2);
  const struct {
    QString file;
    const char* why;
  } cases[] = {
      {TestFolder() + "/none.png", "there is no such file"},
      {TestFolder(), "it is a folder"},
      {WriteTestFile("text.png", "hello"), "it is no picture of a known format"},
      {WriteTestFile("empty.png", ""), "it is no picture of a known format"},
      {WriteTestFile("a.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"),
       "it is no picture of a known format"},
      {WriteTestFile("huge.ppm", huge), "30000 x 30000 pixels are too many"},
      {WriteTestFile("cut.png", firstHalf), "Unable to read image data"},
  };
  for (const auto& c : cases) {
    TImageControl control;
    control.SetImageFile(c.file);
    EXPECT_EQ(control.Fault().toStdString(),
              QString("Cannot read %1: %2").arg(c.file, c.why).toStdString());
    EXPECT_EQ(control.toolTip(), control.Fault());
    control.resize(300, 100);
    EXPECT_EQ(Grab(control).pixel(1, 1), qRgb(255, 240, 240));
    control.SetImageFile(PictureFile("good.png", {10, 10}, kBlue, kBlue));
    EXPECT_EQ(control.Fault(), "");
    EXPECT_EQ(control.toolTip(), "");
    EXPECT_EQ(Grab(control).pixel(150, 50), kBlue);
  }
}

TEST(TImageControl, LargePicturesAreKeptSmaller) {
  TImageControl control;
  control.SetImageFile(PictureFile("long.png", {8192, 16}, kBlue, kGreen));
  EXPECT_EQ(control.Picture().size(), QSize(4096, 8));
  control.resize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  QImage image(10, 10, QImage::Format_RGB32);
  control.render(&image);  // returns, without a picture of that size
}

TEST(TImageControl, ShowsItsPlaceWhileItsFormIsDesigned) {
  TImageControl control;
  const QRgb window = control.palette().window().color().rgb();
  EXPECT_EQ(Grab(control).pixel(0, 0), window);
  SetDesignMode(&control, true);
  EXPECT_EQ(Grab(control).pixel(0, 0), qRgb(128, 128, 128));
}

}  // namespace
