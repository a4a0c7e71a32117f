#include "components/graphing/painting/Curvepainter.h"

#include <QLine>
#include <QPaintEngine>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kMarkerReach = 3;  // logical pixels from the centre of a marker to its edge
constexpr double kVectorGrid = 8.0;

QPen LinePen(const TSeriesStyle& style, double grid) {
  const int width = static_cast<int>(std::lround(style.GetLineWeight() * grid));
  QPen pen(style.GetLineColor().ToQColor(), width, style.QtLineStyle());
  if (width > 1) {
    pen.setCapStyle(style.GetLineStyle() == TSeriesStyle::psSolid ? Qt::RoundCap : Qt::FlatCap);
    pen.setJoinStyle(Qt::RoundJoin);
  }
  return pen;
}

QPen PointPen(const TSeriesStyle& style, double grid) {
  if (style.GetPointColor().IsNone()) return Qt::NoPen;
  return QPen(style.GetPointColor().ToQColor(), grid);
}

QBrush PointBrush(const TSeriesStyle& style) {
  if (style.GetFillColor().IsNone()) return Qt::NoBrush;
  return style.GetFillColor().ToQColor();
}

/// SVG files written by Qt know no clipping.
bool Clips(const QPainter& painter) {
  return !painter.paintEngine() || painter.paintEngine()->type() != QPaintEngine::SVG;
}

/// The nearest pixel of a rectangle.
QPoint Within(const TPlace& place, const QRect& rect) {
  return {static_cast<int>(std::clamp<std::int64_t>(place.x, rect.left(), rect.right())),
          static_cast<int>(std::clamp<std::int64_t>(place.y, rect.top(), rect.bottom()))};
}

/// The rectangle and what reaches into it from around it.
QRect Reach(const QRect& rect, int logicalPixels, double grid) {
  const int room = static_cast<int>(std::ceil(logicalPixels * grid)) + 1;
  return rect.adjusted(-room, -room, room, room);
}

}  // namespace

double DeviceGrid(const QPainter& painter) {
  const QPaintEngine* engine = painter.paintEngine();
  if (!engine) return 1.0;
  switch (engine->type()) {
    case QPaintEngine::SVG:
    case QPaintEngine::Pdf:
    case QPaintEngine::Picture:
      return kVectorGrid;
    default: {
      const double scale = std::sqrt(std::abs(painter.deviceTransform().determinant()));
      return std::isfinite(scale) ? std::clamp(scale, 1.0, kVectorGrid) : 1.0;
    }
  }
}

TCurvePainter::TCurvePainter(QPainter& painter, const TSeriesStyle& style, const TPlotArea& area)
    : painter_(painter),
      style_(style),
      area_(area),
      linePen_(LinePen(style, area.grid)),
      pointPen_(PointPen(style, area.grid)),
      pointBrush_(PointBrush(style)),
      markerReach_(static_cast<int>(std::lround(kMarkerReach * area.grid))),
      clips_(Clips(painter)),
      lineRect_(clips_ ? Reach(area.rect, style.GetLineWeight(), area.grid) : area.rect),
      markerRect_(clips_ ? Reach(area.rect, kMarkerReach, area.grid) : area.rect),
      barRect_(clips_ ? Reach(area.rect, 1, area.grid) : area.rect),
      lineReach_(clips_ ? LineReach(linePen_) : 0) {
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  if (area_.grid != 1.0) painter_.scale(1.0 / area_.grid, 1.0 / area_.grid);
  sink_ = MakeLineSink(painter_, linePen_, lineRect_);
  if (style_.GetPointStyle() == TSeriesStyle::psNone) {
    path_.emplace(area_.x, area_.y, lineRect_, lineReach_, *sink_);
  } else if (!style_.IsBar() && IsOnPixels(painter_)) {
    MakeStamp();
  }
}

TCurvePainter::~TCurvePainter() {
  if (path_) path_->Finish();
  painter_.restore();
}

void TCurvePainter::Add(std::span<const TCoordinate> points) {
  if (path_) return path_->Add(points);
  for (const TCoordinate& point : points) AddMarked(point, {});
}

/// Point by point, for each line crosses the marker before it and is crossed by the next one.
void TCurvePainter::AddMarked(const TCoordinate& point, const TCoordinate& extent) {
  if (!std::isfinite(point.X) || !std::isfinite(point.Y)) {
    hasPrevious_ = settled_ = false;
    return;
  }
  const TPlace place{area_.x.Place(point.X), area_.y.Place(point.Y)};
  if (style_.IsBar()) {
    if (hasPrevious_) DrawPiece(previous_, place);
    DrawBar(point, extent);
  } else if (!(settled_ && place == previous_)) {
    settled_ = hasPrevious_;
    if (hasPrevious_) DrawPiece(previous_, place);
    QLine centre;
    if (CutLine(place, place, markerRect_, 0, centre)) DrawMarker(centre.p1());
  }
  hasPrevious_ = true;
  previous_ = place;
}

void TCurvePainter::DrawPiece(const TPlace& from, const TPlace& to) {
  QLine line;
  if (style_.IsLineClear() || !CutLine(from, to, lineRect_, lineReach_, line)) return;
  sink_->Join(line);
  sink_->Finish();
}

/// The marker as a picture, which is painted several times as fast as its shape.
void TCurvePainter::MakeStamp() {
  const int room = markerReach_ + static_cast<int>(std::ceil(area_.grid)) + 1;
  stamp_ = QImage(2 * room + 1, 2 * room + 1, QImage::Format_ARGB32_Premultiplied);
  stamp_.fill(Qt::transparent);
  QPainter painter(&stamp_);
  PaintMarker(painter, {room, room});
}

void TCurvePainter::DrawMarker(QPoint centre) {
  if (stamp_.isNull()) return PaintMarker(painter_, centre);
  painter_.drawImage(centre - stamp_.rect().center(), stamp_);
}

void TCurvePainter::PaintMarker(QPainter& painter, QPoint centre) const {
  UsePointPen(painter);
  const int reach = markerReach_;
  const QRect box(centre.x() - reach, centre.y() - reach, 2 * reach, 2 * reach);
  switch (style_.GetPointStyle()) {
    case TSeriesStyle::psCircle:
      painter.drawEllipse(box);
      break;
    case TSeriesStyle::psRectangle:
      painter.drawRect(box);
      break;
    case TSeriesStyle::psCross: {
      const QLine lines[] = {
          {centre.x() - reach, centre.y() - reach, centre.x() + reach, centre.y() + reach},
          {centre.x() - reach, centre.y() + reach, centre.x() + reach, centre.y() - reach}};
      painter.drawLines(lines, 2);
      break;
    }
    default:
      break;
  }
}

void TCurvePainter::DrawBar(const TCoordinate& point, const TCoordinate& extent) {
  const bool upright = style_.GetPointStyle() == TSeriesStyle::psXBar;
  const TCoordinate base{upright ? point.X - extent.X : point.X,
                         upright ? point.Y : point.Y - extent.Y};
  if (!std::isfinite(base.X) || !std::isfinite(base.Y)) return;
  const TPlace top{area_.x.Place(point.X), area_.y.Place(point.Y)};
  const TPlace foot{upright ? area_.x.Place(base.X) : area_.rect.left(),
                    upright ? area_.rect.bottom() : area_.y.Place(base.Y)};
  if (Misses(top, foot, area_.rect)) return;
  const QPoint a = Within(top, barRect_);
  const QPoint b = Within(foot, barRect_);
  UsePointPen(painter_);
  if (upright ? a.x() == b.x() : a.y() == b.y()) {
    painter_.drawLine(a, b);
  } else {
    painter_.drawRect(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::abs(a.x() - b.x()),
                      std::abs(a.y() - b.y()));
  }
}

void TCurvePainter::UsePointPen(QPainter& painter) const {
  painter.setPen(pointPen_);
  painter.setBrush(pointBrush_);
}
