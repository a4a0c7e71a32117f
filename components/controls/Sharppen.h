#pragma once

#include <QColor>
#include <QPointF>
#include <QPolygonF>
#include <QTransform>
#include <span>

class QPainter;

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
