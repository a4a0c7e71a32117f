#include "components/controls/Korvaltools.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QSet>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

const QColor kLight(255, 255, 255);
const QColor kDark(128, 128, 128);

/// Marked objects; null stands for everything.
QSet<const QObject*>& Designed() {
  static QSet<const QObject*> objects;
  return objects;
}

}  // namespace

void DrawBevel(QPainter& painter, const QRect& rect, TBevelKind kind) {
  if (kind != TBevel::bvLowered && kind != TBevel::bvRaised) return;
  if (rect.width() < 1 || rect.height() < 1) return;
  const QColor& upper = kind == TBevel::bvRaised ? kLight : kDark;
  const QColor& lower = kind == TBevel::bvRaised ? kDark : kLight;
  // Filled strips are sharp at every device pixel ratio, which lines are not.
  painter.fillRect(rect.left(), rect.top(), rect.width(), 1, upper);
  painter.fillRect(rect.left(), rect.top(), 1, rect.height(), upper);
  painter.fillRect(rect.right(), rect.top(), 1, rect.height(), lower);
  painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, lower);
}

void DrawDashedFrame(QPainter& painter, const QRect& rect) {
  constexpr int kDash = 3;
  constexpr int kLongest = 1 << 14;  // more than a screen shows
  const auto strips = [&](int length, auto strip) {
    for (int at = 0; at < length; at += 2 * kDash) strip(at, std::min(kDash, length - at));
  };
  strips(std::min(rect.width(), kLongest), [&](int at, int length) {
    painter.fillRect(rect.left() + at, rect.top(), length, 1, kDark);
    painter.fillRect(rect.left() + at, rect.bottom(), length, 1, kDark);
  });
  strips(std::min(rect.height(), kLongest), [&](int at, int length) {
    painter.fillRect(rect.left(), rect.top() + at, 1, length, kDark);
    painter.fillRect(rect.right(), rect.top() + at, 1, length, kDark);
  });
}

void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text) {
  painter.save();
  painter.translate(point);
  painter.rotate(-angleDeg);
  painter.drawText(QPointF(0.0, QFontMetricsF(painter.font(), painter.device()).ascent()), text);
  painter.restore();
}

TSharpPen::TSharpPen(QPainter& painter, const QColor& color, int width)
    : toDevice_(painter.deviceTransform()), fromDevice_(toDevice_.inverted()) {
  constexpr int kWidest = 1 << 14;
  const double scale = std::max(std::hypot(toDevice_.m11(), toDevice_.m12()), 1.0e-3);
  const int pixels = qMax(1, qRound(qBound(0, width, kWidest) * scale));
  if (pixels % 2 == 1) middle_ = 0.5;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(color, pixels / scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

QPointF TSharpPen::Map(QPoint point) const {
  constexpr double kFar = 1 << 20;
  const QPointF device = toDevice_.map(QPointF(point));
  return fromDevice_.map(QPointF(qBound(-kFar, std::round(device.x()), kFar) + middle_,
                                 qBound(-kFar, std::round(device.y()), kFar) + middle_));
}

QPolygonF TSharpPen::Map(std::span<const QPoint> points) const {
  QPolygonF result;
  result.reserve(static_cast<qsizetype>(points.size()));
  for (const QPoint& point : points) result.append(Map(point));
  return result;
}

QEvent::Type TDesignModeEvent::Kind() {
  static const int kind = QEvent::registerEventType();
  return static_cast<Type>(kind);
}

bool IsDesignMode(const QObject* object) {
  const QSet<const QObject*>& designed = Designed();
  if (designed.isEmpty()) return false;
  for (; object; object = object->parent()) {
    if (designed.contains(object)) return true;
  }
  return designed.contains(nullptr);
}

void SetDesignMode(QObject* object, bool design) {
  if (Designed().contains(object) == design) return;
  if (design) {
    Designed().insert(object);
    if (object) {
      QObject::connect(object, &QObject::destroyed,
                       [](const QObject* gone) { Designed().remove(gone); });
    }
  } else {
    Designed().remove(object);
  }
  QWidgetList told = object ? object->findChildren<QWidget*>() : QApplication::allWidgets();
  if (auto* widget = qobject_cast<QWidget*>(object)) told.prepend(widget);
  for (QWidget* widget : told) {
    TDesignModeEvent event;
    QApplication::sendEvent(widget, &event);
  }
}
