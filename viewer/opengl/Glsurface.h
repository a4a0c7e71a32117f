#pragma once

#include <QWindow>
#include <functional>

class QWidget;

/// The native window inside a panel that OpenGL draws on. A window of its own is shown straight
/// away; a widget's picture would be copied twice on its way to the screen, which costs more than
/// drawing a small model. All input goes on to the panel. GUI thread only.
class TGLSurface : public QWindow {
 public:
  /// `draw` is called whenever the surface needs a picture and is on the screen. The panel is not
  /// owned and lies under the whole surface.
  TGLSurface(QWidget* panel, std::function<void()> draw);

  /// Asks for a picture; however often, it is drawn once, when the user's input has been dealt
  /// with.
  void Redraw();

 protected:
  bool event(QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;

 private:
  QWidget* const panel_;
  const std::function<void()> draw_;
  bool asked_ = false;
};
