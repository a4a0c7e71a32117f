#pragma once

#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QString>

class QPainter;

/// Small tools shared by the components. GUI thread only.

struct TBevel {
  Q_GADGET

 public:
  enum TBevelKind : int {
    bvNone,     ///< nothing
    bvLowered,  ///< dark above and left, light below and right
    bvRaised,   ///< light above and left, dark below and right
    bvSpace     ///< takes the same room, paints nothing
  };
  Q_ENUM(TBevelKind)
};
using TBevelKind = TBevel::TBevelKind;

/// Draws a frame one logical pixel wide just inside the rectangle.
void DrawBevel(QPainter& painter, const QRect& rect, TBevelKind kind);

/// Draws one line of text in the painter's font and pen colour, turned counter-clockwise about
/// `point`, which is the upper left corner of the text as it is read: at 90 degrees the text reads
/// upwards, begins at `point` and lies to its right.
void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text);

/// True for an object that is being designed: it, or an object above it in the tree of parents, is
/// marked, or the application object is.
bool IsDesignMode(const QObject* object);
/// Marks an object, or takes the mark away; null marks the application object and so everything.
/// Each widget to which this may matter is sent a TDesignModeEvent.
void SetDesignMode(QObject* object, bool design);

/// Tells a widget to look at IsDesignMode again.
class TDesignModeEvent : public QEvent {
 public:
  static Type Kind();
  TDesignModeEvent() : QEvent(Kind()) {}
};
