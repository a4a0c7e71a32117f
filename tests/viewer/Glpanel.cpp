#include "viewer/Glpanel.h"

#include <QOpenGLContext>

#include "tests/support/Testing.h"

namespace {

/// The native window inside the panel, which the mouse of a real user meets.
QWindow* SurfaceOf(const TGLPanel&) {
  for (QWindow* window : QGuiApplication::allWindows()) {
    if (window->surfaceType() == QSurface::OpenGLSurface) return window;
  }
  return nullptr;
}

/// A panel on the screen.
class GlPanel : public testing::Test {
 protected:
  GlPanel() {
    QObject::connect(&panel_, &TGLPanel::OnInit, [this] {
      ++inits_;
      EXPECT_NE(QOpenGLContext::currentContext(), nullptr);
    });
    QObject::connect(&panel_, &TGLPanel::OnPaint, [this] { ++paints_; });
    panel_.setFixedSize(400, 200);
    panel_.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&panel_));
  }

  void Drag(Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint from, QPoint to) {
    QTest::mousePress(&panel_, button, keys, from);
    DragMouse(panel_, to, button, keys);
    QTest::mouseRelease(&panel_, button, keys, to);
  }

  TGLPanel panel_;
  int inits_ = 0;
  int paints_ = 0;
};

TEST_F(GlPanel, MakesOneContextAndPaintsInItOnTheScreen) {
  EXPECT_TRUE(panel_.HasContext());
  EXPECT_GT(paints_, 0);
  panel_.BackColor = QColor(10, 200, 30);
  const int before = paints_;
  panel_.Invalidate();
  EXPECT_TRUE(QTest::qWaitFor([&] { return paints_ > before; }));
  EXPECT_EQ(inits_, 1);
  EXPECT_EQ(panel_.Picture().pixelColor(200, 100), QColor(10, 200, 30));
  const auto onScreen = [this] {
    return panel_.screen()->grabWindow(panel_.winId()).toImage().pixelColor(200, 100);
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return onScreen() == QColor(10, 200, 30); }));
  EXPECT_EQ(TakeMessages(), QStringList());

  // It is seen where its window is grabbed.
  QMainWindow window;
  panel_.setParent(&window);
  window.setCentralWidget(&panel_);
  window.show();
  EXPECT_TRUE(QTest::qWaitFor([&] { return panel_.HasContext(); }));
  EXPECT_EQ(window.grab().toImage().pixelColor(window.rect().center()), QColor(10, 200, 30));
  window.takeCentralWidget();
  panel_.setParent(nullptr);
}

TEST_F(GlPanel, DragsTurnPanAndZoom) {
  const double k = 5.0 / panel_.screen()->size().width();
  const Qt::KeyboardModifiers none, shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
  // By so many pixels; the changes of rotation, pan and zoom.
  const std::tuple<Qt::MouseButton, Qt::KeyboardModifiers, QPoint, QPointF, QPointF, double>
      cases[] = {{Qt::LeftButton, none, {10, 0}, {0, 5}, {}, 0},
                 {Qt::LeftButton, none, {0, 30}, {15, 0}, {}, 0},
                 {Qt::LeftButton, shift, {10, 20}, {}, {-10 * k, 20 * k}, 0},
                 {Qt::MiddleButton, none, {-30, 40}, {}, {30 * k, 40 * k}, 0},
                 {Qt::MiddleButton, ctrl, {-30, 40}, {}, {30 * k, 40 * k}, 0},
                 {Qt::RightButton, none, {50, 20}, {}, {}, 0.3},
                 {Qt::LeftButton, ctrl, {50, -20}, {}, {}, -0.3},
                 {Qt::LeftButton, shift | ctrl, {50, 40}, {}, {}, 0.6},
                 {Qt::RightButton, none, {0, -80}, {}, {}, -1.2}};  // beyond zero
  for (const auto& [button, keys, by, turn, pan, zoom] : cases) {
    SCOPED_TRACE(testing::Message() << button << ' ' << keys.toInt() << ' ' << by.x());
    const TViewTransform start;
    panel_.View = start;
    QSignalSpy changes(&panel_, &TGLPanel::OnViewChange);
    Drag(button, keys, {100, 100}, QPoint(100, 100) + by);
    const TViewTransform& view = panel_.View;
    EXPECT_DOUBLE_EQ(view.Rotation.x, start.Rotation.x + turn.x());
    EXPECT_DOUBLE_EQ(view.Rotation.y, start.Rotation.y + turn.y());
    EXPECT_DOUBLE_EQ(view.PanPosX, pan.x());
    EXPECT_DOUBLE_EQ(view.PanPosY, pan.y());
    EXPECT_NEAR(view.Zoom, 1.0 + zoom, 1e-12);
    EXPECT_EQ(changes.count(), 1);
  }
}

TEST_F(GlPanel, EveryMoveStartsWhereTheLastOneEndedAndTheSurfacePassesTheMouseOn) {
  QTest::mousePress(&panel_, Qt::LeftButton, {}, {100, 100});
  for (const QPoint to : {QPoint(110, 100), {110, 104}, {100, 100}}) DragMouse(panel_, to);
  QTest::mouseRelease(&panel_, Qt::LeftButton, {}, {100, 100});
  EXPECT_EQ(panel_.View.Rotation, (TVertex{30.0, -45.0, 0.0}));
  QWindow* surface = SurfaceOf(panel_);
  ASSERT_TRUE(surface);
  QTest::mousePress(surface, Qt::LeftButton, {}, {100, 100});
  QTest::mouseMove(surface, {110, 100});
  QTest::mouseRelease(surface, Qt::LeftButton, {}, {110, 100});
  EXPECT_DOUBLE_EQ(panel_.View.Rotation.y, -40.0);
  for (int i = 0; i < 200; ++i) {
    QWheelEvent wheel({50, 50}, {50, 50}, {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&panel_, &wheel);
  }
  EXPECT_GT(panel_.View.Zoom, 0.0) << "the wheel never turns the view inside out";
  EXPECT_LT(panel_.View.Zoom, 1e-6);
}

TEST(TGLPanel, SaysOnceThatThereIsNoOpenGl) {
  if (QGuiApplication::platformName() != "offscreen") GTEST_SKIP() << "there is OpenGL";
  TGLPanel panel;
  for (int i = 0; i < 3; ++i) {
    panel.show();
    panel.Invalidate();
    QApplication::processEvents();
    panel.hide();
  }
  EXPECT_FALSE(panel.HasContext());
  EXPECT_TRUE(panel.Picture().isNull());
  EXPECT_EQ(TakeMessages(), QStringList("Open GL Context Create Failed"));
}

TEST(GlPanelFormat, FollowsThePixelFormatProperties) {
  TGLPanel panel;
  panel.SetPFDNumDepthBits(16);
  panel.SetPFDNumDepthBits(-1);  // ignored
  EXPECT_EQ(panel.property("PFDNumDepthBits").toInt(), 16);
  const QWindow* surface = SurfaceOf(panel);
  ASSERT_TRUE(surface);
  EXPECT_EQ(surface->requestedFormat().depthBufferSize(), 16);
  EXPECT_EQ(surface->requestedFormat().profile(), QSurfaceFormat::CompatibilityProfile);
}

}  // namespace
