#include "components/controls/Compbase.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <cstddef>

#include "components/controls/Designmode.h"
#include "components/controls/Korvaltools.h"

namespace {

/// A component with everything that descendants reach opened up.
class TProbe : public TStateControl {
 public:
  using TIconControl::SetFace;
  using TIconControl::SetIconImage;
  using TIconControl::SetImageSize;
  using TStateControl::SetStateImages;
  using TStateControl::TStateControl;

  int doubleClicks = 0;

 protected:
  void DoubleClicked() override { ++doubleClicks; }
};

QImage Canvas(int width, int height, double ratio = 1.0) {
  QImage image(QSize(width, height) * ratio, QImage::Format_RGB32);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::red);
  return image;
}

int PixelsNot(const QImage& image, QRgb color) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) != color;
  }
  return count;
}

TEST(DrawBevel, PaintsALineOfLightAndALineOfDark) {
  const QRgb red = qRgb(255, 0, 0), white = qRgb(255, 255, 255), grey = qRgb(128, 128, 128);
  const struct {
    TBevelKind kind;
    QRgb upper, lower;
  } cases[] = {{TBevel::bvRaised, white, grey},
               {TBevel::bvLowered, grey, white},
               {TBevel::bvNone, red, red},
               {TBevel::bvSpace, red, red}};
  for (const auto& c : cases) {
    for (const int ratio : {1, 2}) {
      QImage image = Canvas(20, 10, ratio);
      QPainter painter(&image);
      DrawBevel(painter, QRect(2, 1, 15, 8), c.kind);
      painter.end();
      const auto at = [&](int x, int y) { return image.pixel(x * ratio, y * ratio); };
      EXPECT_EQ(at(2, 1), c.upper);
      EXPECT_EQ(at(2, 7), c.upper);
      EXPECT_EQ(at(15, 1), c.upper);
      EXPECT_EQ(at(2, 8), c.lower);
      EXPECT_EQ(at(16, 1), c.lower);
      EXPECT_EQ(at(16, 8), c.lower);
      // a closed line about the inside, two device pixels wide at a ratio of 2
      const int frame = c.upper == red ? 0 : (15 * 8 - 13 * 6) * ratio * ratio;
      EXPECT_EQ(PixelsNot(image, red), frame);
    }
  }
}

/// The part of the picture that a text covers.
QRect Inked(double angle) {
  QImage image = Canvas(200, 200);
  QPainter painter(&image);
  painter.setPen(Qt::black);
  RotateText(painter, QPointF(100, 100), angle, "Pressure");
  painter.end();
  QRect ink;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      if (image.pixel(x, y) != qRgb(255, 0, 0)) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink;
}

TEST(RotateText, TurnsTheTextCounterClockwiseAboutItsUpperLeftCorner) {
  const QRect level = Inked(0.0);
  ASSERT_GT(level.width(), 2 * level.height());
  EXPECT_GE(level.left(), 98);
  EXPECT_GE(level.top(), 99);
  const QRect up = Inked(90.0);
  EXPECT_LE(up.bottom(), 101);
  EXPECT_GE(up.left(), 99);
  EXPECT_NEAR(up.height(), level.width(), 2);
  const QRect down = Inked(-90.0);
  EXPECT_GE(down.top(), 98);
  EXPECT_LE(down.right(), 101);
}

TEST(LayOutIcon, PutsTheCaptionBesideThePicture) {
  const QSize image(24, 24), text(40, 14);
  const struct {
    QSize image, text;
    TIconControl::TCaptionPos pos;
    QRect icon, caption;
    QSize size;
  } cases[] = {
      {image, text, TIconControl::cpRight, {0, 0, 24, 24}, {27, 5, 40, 14}, {67, 24}},
      {image, text, TIconControl::cpLeft, {43, 0, 24, 24}, {0, 5, 40, 14}, {67, 24}},
      {image, text, TIconControl::cpBottom, {8, 0, 24, 24}, {0, 27, 40, 14}, {40, 41}},
      {image, text, TIconControl::cpTop, {8, 17, 24, 24}, {0, 0, 40, 14}, {40, 41}},
      {image, text, TIconControl::cpNone, {0, 0, 24, 24}, {}, {24, 24}},
      {image, QSize(0, 14), TIconControl::cpLeft, {0, 0, 24, 24}, {}, {24, 24}},
      {QSize(), text, TIconControl::cpRight, {}, {0, 0, 40, 14}, {40, 14}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.pos);
    const TIconLayout layout = LayOutIcon(c.image, c.text, c.pos);
    EXPECT_EQ(layout.icon, c.icon);
    EXPECT_EQ(layout.caption, c.caption);
    EXPECT_EQ(layout.size, c.size);
  }
}

TEST(IsDesignMode, HoldsForAMarkedObjectAndAllBelowIt) {
  QObject form, other;
  auto* part = new QObject(new QObject(&form));
  SetDesignMode(&form, true);
  EXPECT_TRUE(IsDesignMode(part));
  EXPECT_FALSE(IsDesignMode(&other));
  SetDesignMode(&form, false);
  EXPECT_FALSE(IsDesignMode(part));
  SetDesignMode(nullptr, true);
  EXPECT_TRUE(IsDesignMode(&other));
  SetDesignMode(nullptr, false);
  EXPECT_FALSE(IsDesignMode(&other));
}

TEST(IsDesignMode, AMarkGoesWithItsObject) {
  alignas(QObject) std::byte place[sizeof(QObject)];
  auto* first = new (place) QObject;
  SetDesignMode(first, true);
  first->~QObject();
  auto* second = new (place) QObject;
  EXPECT_FALSE(IsDesignMode(second));
  second->~QObject();
}

TEST(TIconControl, IsSeenInDesignModeAndWithAFaceAtRunTime) {
  const struct {
    bool design, face, visible, seen;
  } cases[] = {{false, false, true, false}, {false, true, true, true}, {false, true, false, false},
               {true, false, true, true},   {true, true, false, true}, {true, false, false, true}};
  for (const auto& c : cases) {
    for (const bool shownFirst : {false, true}) {
      SCOPED_TRACE(testing::Message() << c.design << c.face << c.visible << shownFirst);
      QWidget form;
      TProbe control(&form);
      if (shownFirst) form.show();
      control.SetFace(c.face);
      control.SetVisible(c.visible);
      SetDesignMode(&form, c.design);
      if (!shownFirst) form.show();
      EXPECT_EQ(control.isVisible(), c.seen);
      control.show();
      EXPECT_EQ(control.isVisible(), c.seen) << "nobody shows it by accident";
    }
  }
}

TEST(TIconControl, FollowsItsFormAndItsMode) {
  QWidget form;
  form.show();
  TProbe control;
  control.SetFace(true);
  EXPECT_FALSE(control.isVisible()) << "it is no window of its own";
  control.setParent(&form);
  QCoreApplication::sendPostedEvents(&control);
  EXPECT_TRUE(control.isVisible());
  control.SetFace(false);
  EXPECT_FALSE(control.isVisible());
  SetDesignMode(&form, true);
  EXPECT_TRUE(control.isVisible());
  SetDesignMode(&form, false);
  EXPECT_FALSE(control.isVisible());
}

TEST(TIconControl, TakesTheSizeOfPictureAndCaption) {
  QWidget form;
  TProbe control(&form);
  control.SetImageSize({17, 17});
  EXPECT_EQ(control.size(), QSize(17, 17));
  control.SetImageSize({0, 17});
  EXPECT_EQ(control.GetImageSize(), QSize(17, 17));
  control.SetCaption("Channel");
  const int text = control.fontMetrics().size(0, "Channel").width();
  EXPECT_EQ(control.width(), 17 + 3 + text);
  control.SetCaptionPos(TIconControl::cpNone);
  EXPECT_EQ(control.width(), 17);
  control.SetCaptionPos(TIconControl::cpRight);
  control.SetShowIcon(false);
  EXPECT_EQ(control.width(), text);
}

TEST(TIconControl, DrawsItsPictureAndItsCaption) {
  QWidget form;
  TProbe control(&form);
  control.SetIconImage("ChannelImage");
  control.SetCaption("X");
  QImage image = Canvas(control.width(), control.height());
  control.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
  const QRgb red = qRgb(255, 0, 0);
  EXPECT_GT(PixelsNot(image.copy(0, 0, 24, 24), red), 300);
  EXPECT_GT(PixelsNot(image.copy(27, 0, control.width() - 27, 24), red), 3);
}

TEST(TStateControl, ShowsThePictureOfItsStateAndIsThrownByAClick) {
  QWidget form;
  TProbe control(&form);
  control.SetFace(true);
  control.SetStateImages("SimulatorIdle", "SimulatorActive", "SimulatorDown");
  form.show();
  EXPECT_EQ(control.GetIconImage(), "SimulatorIdle");
  QSignalSpy changes(&control, &TStateControl::OnActiveChanged);

  QTest::mousePress(&control, Qt::LeftButton);
  EXPECT_EQ(control.GetIconImage(), "SimulatorDown");
  EXPECT_FALSE(control.GetActive());
  QTest::mouseRelease(&control, Qt::LeftButton);
  EXPECT_TRUE(control.GetActive());
  EXPECT_EQ(control.GetIconImage(), "SimulatorActive");

  QTest::mousePress(&control, Qt::LeftButton);
  QTest::mouseRelease(&control, Qt::LeftButton, {}, {500, 500});
  EXPECT_TRUE(control.GetActive()) << "released elsewhere";
  EXPECT_EQ(control.GetIconImage(), "SimulatorActive");
  QTest::mouseClick(&control, Qt::RightButton);
  control.SetActive(true);
  EXPECT_EQ(changes.count(), 1);

  SetDesignMode(&form, true);
  QTest::mouseClick(&control, Qt::LeftButton);
  EXPECT_TRUE(control.GetActive()) << "the designer only selects it";
  QTest::mouseDClick(&control, Qt::RightButton);
  EXPECT_EQ(control.doubleClicks, 0);
  QTest::mouseDClick(&control, Qt::LeftButton);
  EXPECT_EQ(control.doubleClicks, 1);
}

}  // namespace
