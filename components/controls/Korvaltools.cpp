#include "components/controls/Korvaltools.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QSet>
#include <QWidget>

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

void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text) {
  painter.save();
  painter.translate(point);
  painter.rotate(-angleDeg);
  painter.drawText(QPointF(0.0, QFontMetricsF(painter.font(), painter.device()).ascent()), text);
  painter.restore();
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
