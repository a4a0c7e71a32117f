#pragma once

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

/// Draws a dashed grey frame one logical pixel wide just inside the rectangle: the place, while a
/// form is designed, of what cannot be seen.
void DrawDashedFrame(QPainter& painter, const QRect& rect);

/// Draws one line of text in the painter's font and pen colour, turned counter-clockwise about
/// `point`, which is the upper left corner of the text as it is read: at 90 degrees the text reads
/// upwards, begins at `point` and lies to its right.
void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text);
