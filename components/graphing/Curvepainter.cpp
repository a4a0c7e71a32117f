#include "components/graphing/Curvepainter.h"

#include <QLine>
#include <QPaintEngine>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kMarkerReach = 3;  // logical pixels from the centre of a marker to its edge
constexpr double kVectorGrid = 8.0;
constexpr double kDashes =
    4.0 * 6.0 * 8.0 * 10.0;  // holds every dash pattern a whole number of times

QPen LinePen(const TSeriesStyle& style, double grid) {
  const double width = style.GetLineWeight() * grid;
  QPen pen(style.GetLineColor().ToQColor(), width, style.QtLineStyle());
  if (width > 1.0) {
    pen.setCapStyle(style.GetLineStyle() == TSeriesStyle::psSolid ? Qt::RoundCap : Qt::FlatCap);
    pen.setJoinStyle(Qt::RoundJoin);
  }
  return pen;
}

QPen PointPen(const TSeriesStyle& style, double grid) {
  if (style.GetPointColor().IsNone()) return Qt::NoPen;
  return QPen(style.GetPointColor().ToQColor(), grid);
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
      clips_(Clips(painter)),
      lineRect_(clips_ ? Reach(area.rect, style.GetLineWeight(), area.grid) : area.rect),
      markerRect_(clips_ ? Reach(area.rect, kMarkerReach, area.grid) : area.rect),
      barRect_(clips_ ? Reach(area.rect, 1, area.grid) : area.rect),
      lineReach_(clips_ ? LineReach(linePen_) : 0) {
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  if (area_.grid != 1.0) painter_.scale(1.0 / area_.grid, 1.0 / area_.grid);
  if (style_.GetPointStyle() != TSeriesStyle::psNone) {
    const TColor fill = style_.GetFillColor();
    painter_.setBrush(fill.IsNone() ? QBrush(Qt::NoBrush) : QBrush(fill.ToQColor()));
    return;
  }
  sink_ = MakeLineSink(painter_, linePen_, lineRect_);
  path_.emplace(area_.x, area_.y, lineRect_, lineReach_, *sink_);
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
    if (!isFirst_ && CutLine(place, place, markerRect_, 0, centre)) DrawMarker(centre.p1());
  }
  isFirst_ = false;
  hasPrevious_ = true;
  previous_ = place;
}

void TCurvePainter::DrawPiece(const TPlace& from, const TPlace& to) {
  if (style_.IsLineClear()) return;
  QLine line;
  if (CutLine(from, to, lineRect_, lineReach_, line)) {
    UseLinePen();
    painter_.drawLine(line);
  }
  // Dashes run on from piece to piece.
  if (linePen_.style() == Qt::SolidLine) return;
  tool_ = TTool::kNone;
  const double length =
      std::hypot(static_cast<double>(to.x - from.x), static_cast<double>(to.y - from.y));
  linePen_.setDashOffset(std::fmod(linePen_.dashOffset() + length / linePen_.widthF(), kDashes));
}

void TCurvePainter::DrawMarker(QPoint centre) {
  UsePointPen();
  const int reach = static_cast<int>(std::lround(kMarkerReach * area_.grid));
  const QRect box(centre.x() - reach, centre.y() - reach, 2 * reach, 2 * reach);
  switch (style_.GetPointStyle()) {
    case TSeriesStyle::psCircle:
      painter_.drawEllipse(box);
      break;
    case TSeriesStyle::psRectangle:
      painter_.drawRect(box);
      break;
    case TSeriesStyle::psCross: {
      const QLine lines[] = {
          {centre.x() - reach, centre.y() - reach, centre.x() + reach, centre.y() + reach},
          {centre.x() - reach, centre.y() + reach, centre.x() + reach, centre.y() - reach}};
      painter_.drawLines(lines, 2);
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
  UsePointPen();
  if (upright ? a.x() == b.x() : a.y() == b.y()) {
    painter_.drawLine(a, b);
  } else {
    painter_.drawRect(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::abs(a.x() - b.x()),
                      std::abs(a.y() - b.y()));
  }
}

void TCurvePainter::UseLinePen() {
  if (tool_ == TTool::kLine) return;
  tool_ = TTool::kLine;
  painter_.setPen(linePen_);
}

void TCurvePainter::UsePointPen() {
  if (tool_ == TTool::kPoint) return;
  tool_ = TTool::kPoint;
  painter_.setPen(pointPen_);
}
