#pragma once

#include <QColor>
#include <QEvent>
#include <QObject>
#include <QPointF>
#include <QPolygonF>
#include <QRect>
#include <QString>
#include <QTransform>
#include <span>

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

/// Draws a dashed grey frame one logical pixel wide just inside the rectangle: the place, while a
/// form is designed, of what cannot be seen.
void DrawDashedFrame(QPainter& painter, const QRect& rect);

/// Draws one line of text in the painter's font and pen colour, turned counter-clockwise about
/// `point`, which is the upper left corner of the text as it is read: at 90 degrees the text reads
/// upwards, begins at `point` and lies to its right.
void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text);

/// Lines between whole logical pixels, with a pen of whole device pixels about their middle, so
/// that level and upright ones are sharp at every device pixel ratio; slanted ones are smooth.
class TSharpPen {
 public:
  /// Sets the painter's pen, round at ends and corners, and its antialiasing. The width is in
  /// logical pixels; the thinnest line is one device pixel.
  TSharpPen(QPainter& painter, const QColor& color, int width);

  /// Where to draw for a point. No farther than 2^20 device pixels, which no device shows.
  QPointF Map(QPoint point) const;
  QPolygonF Map(std::span<const QPoint> points) const;

 private:
  QTransform toDevice_;
  QTransform fromDevice_;
  double middle_ = 0.0;  ///< of a line, from the whole device pixel
};

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
