#include "components/controls/Designmode.h"

#include <QApplication>
#include <QSet>
#include <QWidget>

namespace {

/// Marked objects; null stands for everything.
QSet<const QObject*>& Designed() {
  static QSet<const QObject*> objects;
  return objects;
}

}  // namespace

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
  QWidgetList widgets = object ? object->findChildren<QWidget*>() : QApplication::allWidgets();
  if (auto* widget = qobject_cast<QWidget*>(object)) widgets.prepend(widget);
  for (QWidget* widget : widgets) {
    TDesignModeEvent event;
    QApplication::sendEvent(widget, &event);
  }
}
