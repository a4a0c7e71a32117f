#include "components/controls/Compbase.h"

#include "components/controls/Designmode.h"
#include "components/controls/Korvaltools.h"
#include "tests/support/Testing.h"

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

TEST(DrawBevel, PaintsALineOfLightAndALineOfDark) {
  const QColor white(255, 255, 255), grey(128, 128, 128), red(255, 0, 0);
  const std::tuple<TBevelKind, QColor, QColor> cases[] = {{TBevel::bvRaised, white, grey},
                                                          {TBevel::bvLowered, grey, white},
                                                          {TBevel::bvNone, red, red},
                                                          {TBevel::bvSpace, red, red}};
  for (const auto& [kind, upper, lower] : cases) {
    for (const int ratio : {1, 2}) {
      QImage image(20 * ratio, 10 * ratio, QImage::Format_RGB32);
      image.setDevicePixelRatio(ratio);
      image.fill(red);
      QPainter painter(&image);
      DrawBevel(painter, QRect(2, 1, 15, 8), kind);
      painter.end();
      for (const QPoint& place : {QPoint(2, 1), {2, 7}, {15, 1}}) {
        EXPECT_EQ(image.pixelColor(place * ratio), upper);
      }
      for (const QPoint& place : {QPoint(2, 8), {16, 1}, {16, 8}}) {
        EXPECT_EQ(image.pixelColor(place * ratio), lower);
      }
      // a closed line about the inside, two device pixels wide at a ratio of 2
      const int frame = upper == red ? 0 : (15 * 8 - 13 * 6) * ratio * ratio;
      EXPECT_EQ(CountOther(image, red), frame);
    }
  }
}

TEST(RotateText, TurnsTheTextCounterClockwiseAboutItsUpperLeftCorner) {
  const auto ink = [](double angle) {
    return InkBox(Painted({200, 200}, [angle](QPainter& painter) {
      RotateText(painter, QPointF(100, 100), angle, "Pressure");
    }));
  };
  const QRect level = ink(0.0), up = ink(90.0), down = ink(-90.0);
  ASSERT_GT(level.width(), 2 * level.height());
  EXPECT_GE(level.left(), 98);
  EXPECT_GE(level.top(), 99);
  EXPECT_LE(up.bottom(), 101);
  EXPECT_GE(up.left(), 99);
  EXPECT_NEAR(up.height(), level.width(), 2);
  EXPECT_GE(down.top(), 98);
  EXPECT_LE(down.right(), 101);
}

TEST(LayOutIcon, PutsTheCaptionBesideThePicture) {
  const QSize image(24, 24), text(40, 14);
  const std::tuple<QSize, QSize, TIconControl::TCaptionPos, QRect, QRect, QSize> cases[] = {
      {image, text, TIconControl::cpRight, {0, 0, 24, 24}, {27, 5, 40, 14}, {67, 24}},
      {image, text, TIconControl::cpLeft, {43, 0, 24, 24}, {0, 5, 40, 14}, {67, 24}},
      {image, text, TIconControl::cpBottom, {8, 0, 24, 24}, {0, 27, 40, 14}, {40, 41}},
      {image, text, TIconControl::cpTop, {8, 17, 24, 24}, {0, 0, 40, 14}, {40, 41}},
      {image, text, TIconControl::cpNone, {0, 0, 24, 24}, {}, {24, 24}},
      {image, QSize(0, 14), TIconControl::cpLeft, {0, 0, 24, 24}, {}, {24, 24}},
      {QSize(), text, TIconControl::cpRight, {}, {0, 0, 40, 14}, {40, 14}},
  };
  for (const auto& [picture, words, pos, icon, caption, size] : cases) {
    SCOPED_TRACE(pos);
    const TIconLayout layout = LayOutIcon(picture, words, pos);
    EXPECT_EQ(layout.icon, icon);
    EXPECT_EQ(layout.caption, caption);
    EXPECT_EQ(layout.size, size);
  }
}

TEST(IsDesignMode, HoldsForAMarkedObjectAndAllBelowIt) {
  QObject form, other;
  auto* part = new QObject(new QObject(&form));
  // What is marked, and of which it is a mark: of the part, of the other.
  const std::tuple<QObject*, bool, bool> cases[] = {{&form, true, false}, {nullptr, true, true}};
  for (const auto& [marked, ofPart, ofOther] : cases) {
    SetDesignMode(marked, true);
    EXPECT_EQ(IsDesignMode(part), ofPart);
    EXPECT_EQ(IsDesignMode(&other), ofOther);
    SetDesignMode(marked, false);
    EXPECT_FALSE(IsDesignMode(part) || IsDesignMode(&other));
  }
  // A mark goes with its object.
  alignas(QObject) std::byte place[sizeof(QObject)];
  auto* first = new (place) QObject;
  SetDesignMode(first, true);
  first->~QObject();
  auto* second = new (place) QObject;
  EXPECT_FALSE(IsDesignMode(second));
  second->~QObject();
}

TEST(TIconControl, IsSeenInDesignModeAndWithAFaceAtRunTime) {
  for (int bits = 0; bits < 16; ++bits) {
    SCOPED_TRACE(bits);
    const bool design = bits & 1, face = bits & 2, visible = bits & 4, shownFirst = bits & 8;
    QWidget form;
    TProbe control(&form);
    if (shownFirst) form.show();
    control.SetFace(face);
    control.SetVisible(visible);
    SetDesignMode(&form, design);
    if (!shownFirst) form.show();
    EXPECT_EQ(control.isVisible(), design || (face && visible));
    control.show();
    EXPECT_EQ(control.isVisible(), design || (face && visible)) << "nobody shows it by accident";
  }
}

TEST(TIconControl, IsNoWindowOfItsOwnAndFollowsItsForm) {
  QWidget form;
  form.show();
  TProbe control;
  control.SetFace(true);
  EXPECT_FALSE(control.isVisible());
  control.setParent(&form);
  QCoreApplication::sendPostedEvents(&control);
  EXPECT_TRUE(control.isVisible());
  control.SetFace(false);
  EXPECT_FALSE(control.isVisible());
  for (const bool design : {true, false}) {
    SetDesignMode(&form, design);
    EXPECT_EQ(control.isVisible(), design);
  }
}

TEST(TIconControl, TakesTheSizeOfItsPictureAndItsCaptionAndDrawsThem) {
  QWidget form;
  TProbe control(&form);
  control.SetImageSize({17, 17});
  EXPECT_EQ(control.size(), QSize(17, 17));
  control.SetImageSize({0, 17});
  EXPECT_EQ(control.GetImageSize(), QSize(17, 17));
  control.SetCaption("Channel");
  const int text = control.fontMetrics().size(0, "Channel").width();
  EXPECT_EQ(control.width(), 17 + 3 + text);
  control.SetIconImage("ChannelImage");
  const QImage image = Painted(control.size(), [&control](QPainter& painter) {
    control.render(&painter, {}, {}, QWidget::RenderFlags());
  });
  EXPECT_GT(CountOther(image, Qt::white, {0, 0, 17, 17}), 150);
  EXPECT_GT(CountOther(image, Qt::white, {20, 0, text, 17}), 30);
  control.SetCaptionPos(TIconControl::cpNone);
  EXPECT_EQ(control.width(), 17);
  control.SetCaptionPos(TIconControl::cpRight);
  control.SetShowIcon(false);
  EXPECT_EQ(control.width(), text);
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
