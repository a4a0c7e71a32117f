#pragma once

#include <QEvent>
#include <QObject>

/// Whether a form is being designed, and not used. GUI thread only.

/// True for an object that is being designed: it, or an object above it in the tree of parents, is
/// marked, or the application object is.
bool IsDesignMode(const QObject* object);
/// Marks an object, or takes the mark away; null marks the application object and so everything.
/// Each widget to which this may matter is sent a TDesignModeEvent.
void SetDesignMode(QObject* object, bool design);

/// Asks a widget to look at IsDesignMode again.
class TDesignModeEvent : public QEvent {
 public:
  static Type Kind();
  TDesignModeEvent() : QEvent(Kind()) {}
};
