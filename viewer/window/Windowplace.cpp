#include "viewer/window/Windowplace.h"

#include <QEvent>
#include <algorithm>

namespace {

/// Far beyond any screen, and small enough for sums and products of rectangles.
constexpr int kFar = 100'000;

qint64 Area(const QRect& rect) {
  return rect.isEmpty() ? 0 : static_cast<qint64>(rect.width()) * rect.height();
}

QRect Tamed(QPoint place, QSize size, QSize minimum) {
  const auto tame = [](int value) { return std::clamp(value, -kFar, kFar); };
  const QSize tamed(tame(size.width()), tame(size.height()));
  return {QPoint(tame(place.x()), tame(place.y())), tamed.expandedTo(minimum)};
}

}  // namespace

QRect FitToScreens(QPoint place, QSize size, const QList<QRect>& screens, QSize minimum) {
  QRect bounds = Tamed(place, size, minimum);
  if (screens.isEmpty()) return bounds;
  qint64 seen = 0;
  qint64 most = 0;
  QRect home = screens.front();
  for (const QRect& screen : screens) {
    const qint64 overlap = Area(screen.intersected(bounds));
    seen += overlap;
    if (overlap > most) {
      most = overlap;
      home = screen;
    }
  }
  if (seen >= Area(bounds)) return bounds;
  bounds.setSize(bounds.size().boundedTo(home.size()));
  bounds.moveLeft(std::clamp(bounds.left(), home.left(), home.right() - bounds.width() + 1));
  bounds.moveTop(std::clamp(bounds.top(), home.top(), home.bottom() - bounds.height() + 1));
  return bounds;
}

TWindowPlace::TWindowPlace(QWidget* window) : window_(window) {
  Note();
  window->installEventFilter(this);
}

void TWindowPlace::Set(const QRect& bounds) {
  window_->resize(bounds.size());
  window_->move(bounds.topLeft());
  bounds_ = bounds;
}

QRect TWindowPlace::Bounds() const {
  return IsOrdinary() ? QRect(window_->pos(), window_->size()) : bounds_;
}

bool TWindowPlace::IsOrdinary() const {
  return window_ && !(window_->windowState() &
                      (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized));
}

void TWindowPlace::Note() {
  asked_ = false;
  if (IsOrdinary()) bounds_ = QRect(window_->pos(), window_->size());
}

bool TWindowPlace::eventFilter(QObject*, QEvent* event) {
  if ((event->type() == QEvent::Move || event->type() == QEvent::Resize) && !asked_) {
    asked_ = true;
    // A window that is being maximised may get its new size before its new state.
    QMetaObject::invokeMethod(
        this, [this] { Note(); }, Qt::QueuedConnection);
  }
  return false;
}
