#include "components/graphing/painting/Pixelscale.h"

#include <algorithm>

TPixelScale::TPixelScale(const TAxisRange& range, double start, double direction, double grid)
    : isLog_(range.isLog),
      floor_(range.min > 0.0 ? std::min(range.min, kLogFloor) : kLogFloor),
      min_(range.isLog ? std::log10(range.min <= 0.0 ? kLogFloor : range.min) : range.min),
      factor_(range.factor),
      start_(start),
      direction_(direction),
      grid_(grid),
      half_(0.5 + 0.5 * (grid - 1.0)),
      perStep_(direction / (range.factor * grid)) {}

TPixelScale TPixelScale::Rightwards(const TAxisRange& range, int left, double grid) {
  return {range, static_cast<double>(left), 1.0, grid};
}

TPixelScale TPixelScale::Upwards(const TAxisRange& range, int bottom, double grid) {
  // On the plain grid the row is found from the bottom edge and then moved up by one, so that the
  // halves fall as they do in LocateValue.
  if (grid != 1.0) return {range, bottom - 1.0, -1.0, grid};
  TPixelScale scale(range, bottom, -1.0, grid);
  scale.offset_ = -1;
  return scale;
}

int TPixelScale::Pixel(double value) const {
  if (std::isnan(value)) return -kFar;
  return static_cast<int>(std::clamp<std::int64_t>(Place(value), -kFar, kFar));
}

double TPixelScale::Value(double position) const {
  // From the position of min_, where a whole position lies in the middle of its step.
  const double steps = position - offset_ - (start_ * grid_ + half_ - 0.5);
  const double v = min_ + steps * perStep_;
  return isLog_ ? std::pow(10.0, v) : v;
}
