#pragma once

#include <cfloat>
#include <cmath>
#include <cstdint>

/// How the values of one axis fall on pixels. Plain arithmetic: needs no axis, no widget, no
/// painter.
///
/// A pixel is counted on a grid: `grid` steps per logical pixel, 1 unless a finer device is drawn
/// on.
class TPixelScale {
 public:
  /// Stands in for a non-positive value on a logarithmic axis, unless the axis begins below it:
  /// then its beginning does.
  static constexpr double kLogFloor = 1.0e-6;

  struct TAxisRange {
    bool isLog = false;
    double min = 0.0;     ///< value at the near end of the axis
    double factor = 1.0;  ///< logical pixels per value unit, per decade on a logarithmic axis
  };

  TPixelScale() = default;
  /// Values grow to the right of the logical pixel `left`.
  static TPixelScale Rightwards(const TAxisRange& range, int left, double grid = 1.0);
  /// Values grow upwards from the last row above `bottom`, which is one past the last pixel.
  static TPixelScale Upwards(const TAxisRange& range, int bottom, double grid = 1.0);

  /// The lowest value below which none is mapped differently.
  double Lowest() const { return isLog_ ? DBL_TRUE_MIN : -DBL_MAX; }
  /// The value that stands for `value` on this axis.
  double Clamped(double value) const { return isLog_ && value <= 0.0 ? floor_ : value; }

  /// Grid position, halves rounded up. A value that is not finite has one that is not either.
  double Position(double value) const { return std::floor(Exact(value) * grid_ + half_) + offset_; }
  /// Position as an integer, at most kFarthest away from 0, where it still has room for arithmetic.
  /// The value is finite.
  std::int64_t Place(double value) const {
    const double exact = Exact(value) * grid_ + half_;
    if (!(exact > -kFarthest)) return -kFarthest;
    if (!(exact < kFarthest)) return kFarthest;
    const auto whole = static_cast<std::int64_t>(exact);
    return whole - (exact < static_cast<double>(whole) ? 1 : 0) + offset_;
  }
  static constexpr std::int64_t kFarthest = 1'000'000'000'000;
  /// Position as an int that leaves room for any arithmetic on pixels: at most kFar away from 0. A
  /// value that is not a number lies at -kFar.
  int Pixel(double value) const;
  static constexpr int kFar = 1 << 24;

  /// The value whose position is `position`, which need not be whole.
  double Value(double position) const;

 private:
  TPixelScale(const TAxisRange& range, double start, double direction, double grid);
  double Exact(double value) const {
    const double v = isLog_ ? std::log10(Clamped(value)) : value;
    return start_ + direction_ * ((v - min_) * factor_);
  }

  bool isLog_ = false;
  double floor_ = kLogFloor;
  double min_ = 0.0;  ///< its logarithm on a logarithmic axis
  double factor_ = 1.0;
  double start_ = 0.0;  ///< logical position of min_
  double direction_ = 1.0;
  double grid_ = 1.0;
  double half_ = 0.5;     ///< from a logical pixel to the end of its middle grid step
  double perStep_ = 1.0;  ///< value units per grid step; their sign is the direction's
  int offset_ = 0;
};
