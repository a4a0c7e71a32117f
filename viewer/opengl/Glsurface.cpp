#include "viewer/opengl/Glsurface.h"

#include <QCoreApplication>
#include <QWidget>

namespace {

/// The widget that takes what is dropped on this one; null if none does.
QWidget* DropTarget(QWidget* widget) {
  while (widget && !widget->acceptDrops()) widget = widget->parentWidget();
  return widget;
}

}  // namespace

TGLSurface::TGLSurface(QWidget* panel, std::function<void()> draw)
    : panel_(panel), draw_(std::move(draw)) {
  setSurfaceType(QSurface::OpenGLSurface);
  // The keyboard stays with the window that holds the panel.
  setFlag(Qt::WindowDoesNotAcceptFocus);
}

void TGLSurface::Redraw() {
  if (asked_) return;
  asked_ = true;
  QCoreApplication::postEvent(this, new QEvent(QEvent::UpdateRequest), Qt::LowEventPriority);
}

void TGLSurface::exposeEvent(QExposeEvent*) {
  if (isExposed()) draw_();
}

bool TGLSurface::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::UpdateRequest:
      asked_ = false;
      if (isExposed()) draw_();
      return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
      return QCoreApplication::sendEvent(panel_, event);
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop: {
      QWidget* target = DropTarget(panel_);
      return target && QCoreApplication::sendEvent(target, event);
    }
    default:
      return QWindow::event(event);
  }
}
