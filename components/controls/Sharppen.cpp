#include "components/controls/Sharppen.h"

#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

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
