#include "components/controls/Compass.h"

#include "components/controls/Designmode.h"
#include "model/Datetime.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

/// The colours of what a widget shows, at some places.
std::vector<QRgb> ColorsAt(QWidget& widget, const std::vector<QPoint>& places) {
  const QImage image = widget.grab().toImage();
  std::vector<QRgb> colors;
  for (const QPoint& place : places) colors.push_back(image.pixel(place));
  return colors;
}

/// A picture of one colour with a square of another in its middle.
QString PictureFile(const QString& name, QSize size, QRgb ground, QRgb middle) {
  const QImage image = Painted(size, [&](QPainter& painter) {
    painter.fillRect(QRect(QPoint(), size), QColor(ground));
    painter.fillRect(size.width() / 4, size.height() / 4, size.width() / 2, size.height() / 2,
                     QColor(middle));
  });
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
  compass.SetAngle(kInfinity);
  compass.SetNorth(kNan);
  EXPECT_EQ(compass.GetAngle(), 0.1);
  EXPECT_EQ(compass.GetNorth(), 0.7);
}

TEST(TCompass, DoubleClicksPlaceTheNeedle) {
  const std::tuple<Qt::MouseButton, Qt::KeyboardModifiers, QPoint, QPoint, int> cases[] = {
      {Qt::LeftButton, Qt::NoModifier, {20, 20}, {40, 40}, 30},
      {Qt::RightButton, Qt::ControlModifier, {20, 20}, {40, 40}, 30},
      {Qt::LeftButton, Qt::ControlModifier, {10, 70}, {10, 70}, 30},
      {Qt::LeftButton, Qt::ShiftModifier, {13, 66}, {10, 70}, 5},
      {Qt::LeftButton, Qt::ShiftModifier, {13, 68}, {10, 70}, 3},  // root of 13: 3.6
      {Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier, {5, 6}, {5, 6}, 3},
  };
  TCompass compass;
  const TNeedle& needle = *compass.GetNeedle();
  for (const auto& [button, keys, place, centre, length] : cases) {
    SCOPED_TRACE(place.y());
    QTest::mouseDClick(&compass, button, keys, place);
    EXPECT_EQ(QPoint(needle.GetX(), needle.GetY()), centre);
    EXPECT_EQ(needle.GetLength(), length);
  }
}

TEST(TCompass, DrawsTheNeedleOverThePicture) {
  TCompass compass;
  compass.SetImageFile(PictureFile("blue.png", {81, 81}, kBlue, kBlue));
  const std::vector<QPoint> rightAndDown = {{55, 39}, {39, 55}};
  compass.SetAngle(0.0);
  EXPECT_THAT(ColorsAt(compass, rightAndDown), ElementsAre(kRed, kBlue));
  compass.SetAngle(90.0);
  EXPECT_THAT(ColorsAt(compass, rightAndDown), ElementsAre(kBlue, kRed));
  compass.SetShowImage(false);
  EXPECT_THAT(ColorsAt(compass, rightAndDown),
              ElementsAre(compass.palette().window().color().rgb(), kRed));
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
  Tick(10);
  EXPECT_EQ(compass.GetAngle(), 35.0);
  EXPECT_EQ(compass.GetNeedle()->GetAngle(), -55.0);
  link.GetOptions()->SetValueType(svMax);
  Tick(10);
  EXPECT_EQ(compass.GetAngle(), 40.0);
  const TStatInterval interval = link.GetOptions()->GetSelInterval();
  link.GetOptions()->SetSelInterval(si1_Minute);
  EXPECT_EQ(compass.GetAngle(), 0.0);  // no minute is over
  link.GetOptions()->SetSelInterval(interval);
  Tick(10);
  EXPECT_EQ(compass.GetAngle(), 40.0);
  link.GetChannel()->SetIndex(1);  // has its own values, and before them none
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(compass.GetAngle(), 0.0);
    Tick(10);
  }
  link.GetChannel()->SetIndex(0);
  Tick(10);
  link.SetChannelSource(nullptr);
  EXPECT_FALSE(link.GetEnabled());
  EXPECT_EQ(compass.GetAngle(), 40.0);
}

TEST(TImageControl, FitsStretchesOrLeavesThePicture) {
  TImageControl control;
  control.resize(80, 80);
  const QRgb window = control.palette().window().color().rgb();
  EXPECT_THAT(ColorsAt(control, {{0, 0}}), ElementsAre(window));
  SetDesignMode(&control, true);  // shows its place
  EXPECT_THAT(ColorsAt(control, {{0, 0}}), ElementsAre(qRgb(128, 128, 128)));
  SetDesignMode(&control, false);
  // 40 x 20 in a control of 80 x 80: twice as large, in the middle.
  control.SetImageFile(PictureFile("wide.png", {40, 20}, kBlue, kGreen));
  EXPECT_THAT(ColorsAt(control, {{40, 19}, {2, 21}, {40, 40}, {40, 61}}),
              ElementsAre(window, kBlue, kGreen, window));
  control.SetFit(TImageControl::ifStretch);
  EXPECT_THAT(ColorsAt(control, {{40, 5}, {40, 30}}), ElementsAre(kBlue, kGreen));
  control.SetFit(TImageControl::ifActual);
  EXPECT_THAT(ColorsAt(control, {{20, 10}, {41, 10}}), ElementsAre(kGreen, window));
}

TEST(TImageControl, TransparentTakesTheColourOfTheLowerLeftCornerOut) {
  QWidget form;
  form.setStyleSheet("background: #102030");
  TImageControl control(&form);
  control.resize(40, 40);
  control.SetImageFile(PictureFile("square.png", {40, 40}, kBlue, kGreen));
  form.resize(40, 40);
  const std::vector<QPoint> cornerAndMiddle = {{2, 2}, {20, 20}};
  EXPECT_THAT(ColorsAt(form, cornerAndMiddle), ElementsAre(kBlue, kGreen));
  control.SetTransparent(true);
  EXPECT_THAT(ColorsAt(form, cornerAndMiddle), ElementsAre(qRgb(0x10, 0x20, 0x30), kGreen));
}

TEST(TImageControl, SaysWhyThereIsNoPicture) {
  const QByteArray huge = "P6\n30000 30000\n255\n" + QByteArray(3000, 'x');
  const QByteArray whole = Contents(PictureFile("whole.png", {200, 200}, kBlue, kGreen));
  const std::pair<QString, const char*> cases[] = {
      {TestFolder() + "/none.png", "there is no such file"},
      {TestFolder(), "it is a folder"},
      {WriteTestFile("text.png", "hello"), "it is no picture of a known format"},
      {WriteTestFile("empty.png", ""), "it is no picture of a known format"},
      {WriteTestFile("a.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"),
       "it is no picture of a known format"},
      {WriteTestFile("huge.ppm", huge), "30000 x 30000 pixels are too many"},
      {WriteTestFile("cut.png", whole.first(whole.size() / 2)), "Unable to read image data"},
  };
  for (const auto& [file, why] : cases) {
    TImageControl control;
    control.resize(300, 100);
    control.SetImageFile(file);
    const QString fault = QStringLiteral("Cannot read %1: %2").arg(file, why);
    EXPECT_EQ(control.Fault().toStdString(), fault.toStdString());
    EXPECT_EQ(control.toolTip(), fault);
    EXPECT_THAT(ColorsAt(control, {{1, 1}}), ElementsAre(qRgb(255, 240, 240)));
    control.SetImageFile(PictureFile("good.png", {10, 10}, kBlue, kBlue));
    EXPECT_EQ(control.Fault() + control.toolTip(), "");
    EXPECT_THAT(ColorsAt(control, {{150, 50}}), ElementsAre(kBlue));
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

}  // namespace
