#include "components/graphing/Sliderseries.h"

#include <QPainter>
#include <QPen>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr TColor kActiveColor = TColor::FromRgb(255, 0, 0);
constexpr TColor kInactiveColor = TColor::FromRgb(128, 128, 128);

}  // namespace

void TSliderSeries::SetPosition(const TCoordinate& position) {
  if (position == position_ || !std::isfinite(position.X) || !std::isfinite(position.Y)) return;
  position_ = position;
  Changed();
}

void TSliderSeries::SetActive(bool active) {
  if (active_ == active) return;
  active_ = active;
  Changed();
}

void TSliderSeries::SetShowGridX(bool show) {
  if (showGridX_ == show) return;
  showGridX_ = show;
  Changed();
}

void TSliderSeries::SetShowGridY(bool show) {
  if (showGridY_ == show) return;
  showGridY_ = show;
  Changed();
}

void TSliderSeries::SetSliderPos(QPoint pixel) {
  if (!Panel()) return;
  TCoordinate position;
  Panel()->LocateCoordinate(pixel, position);
  SetPosition(position);
}

QPoint TSliderSeries::Pixel() const {
  QPoint pixel;
  TCoordinate position = position_;
  Panel()->LocateValue(pixel, position);
  return pixel;
}

void TSliderSeries::Draw(QPainter* painter) {
  if (!Panel()) return;
  const QRect rect = Panel()->Rect();
  const QPoint at = Pixel();
  const QColor color = (active_ ? kActiveColor : kInactiveColor).ToQColor();
  painter->setPen(QPen(color, 1, Qt::DotLine));
  if (showGridX_ && at.x() >= rect.left() && at.x() <= rect.right()) {
    painter->drawLine(at.x(), rect.top(), at.x(), rect.bottom());
  }
  if (showGridY_ && at.y() >= rect.top() && at.y() <= rect.bottom()) {
    painter->drawLine(rect.left(), at.y(), rect.right(), at.y());
  }
  if (!rect.adjusted(-kArm, -kArm, kArm, kArm).contains(at)) return;
  painter->setPen(QPen(color, 1));
  painter->drawLine(at.x() - kArm, at.y(), at.x() + kArm, at.y());
  painter->drawLine(at.x(), at.y() - kArm, at.x(), at.y() + kArm);
}

void TSliderSeries::UpdateRangeX() {
  rangeX_.SetReset(true);
  rangeX_.GetBounds(position_.X);
}

void TSliderSeries::UpdateRangeY() {
  rangeY_.SetReset(true);
  rangeY_.GetBounds(position_.Y);
}

TSliderSeries::THold TSliderSeries::HoldAt(QPoint pixel) const {
  const QPoint distance = Pixel() - pixel;
  const int dx = std::abs(distance.x());
  const int dy = std::abs(distance.y());
  if (dx <= kArm && dy <= kArm) return THold::kBoth;
  if (showGridX_ && dx <= kHitTolerance) return THold::kX;
  if (showGridY_ && dy <= kHitTolerance) return THold::kY;
  return THold::kNone;
}

bool TSliderSeries::Grab(QPoint pixel) {
  hold_ = active_ && Panel() ? HoldAt(pixel) : THold::kNone;
  if (hold_ == THold::kNone) return false;
  grip_ = Pixel() - pixel;
  return true;
}

bool TSliderSeries::Drag(QPoint pixel) {
  if (hold_ == THold::kNone || !Panel()) return false;
  const QPoint present = Pixel();
  const QRect rect = Panel()->Rect();
  QPoint target = pixel + grip_;
  target.setX(std::max(rect.left(), std::min(target.x(), rect.right())));
  target.setY(std::max(rect.top(), std::min(target.y(), rect.bottom())));

  // A coordinate whose pixel stays is not rounded to it.
  TCoordinate found;
  Panel()->LocateCoordinate(target, found);
  TCoordinate position = position_;
  if (hold_ != THold::kY && target.x() != present.x()) position.X = found.X;
  if (hold_ != THold::kX && target.y() != present.y()) position.Y = found.Y;
  if (position == position_ || !std::isfinite(position.X) || !std::isfinite(position.Y)) {
    return false;
  }
  position_ = position;
  // The graph draws anew after each move; asking for it here would do it twice.
  const QPointer<TSliderSeries> self(this);
  emit OnChange(this);
  if (self) emit OnDragged(this);
  return true;
}
