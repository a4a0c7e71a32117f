#include "components/graphing/painting/Linepath.h"

#include <algorithm>
#include <cmath>

namespace {

bool Holds(const QRect& rect, const TPlace& p) {
  return p.x >= rect.left() && p.x <= rect.right() && p.y >= rect.top() && p.y <= rect.bottom();
}

QPoint ToPoint(const TPlace& p) { return {static_cast<int>(p.x), static_cast<int>(p.y)}; }

/// By the parameters at which the line crosses the four edges (Liang and Barsky, 1984).
bool Clip(const TPlace& from, const TPlace& to, const QRect& rect, QLine& line) {
  const auto dx = static_cast<double>(to.x - from.x);
  const auto dy = static_cast<double>(to.y - from.y);
  double enter = 0.0;
  double leave = 1.0;
  const auto cut = [&](double along, std::int64_t room) {
    if (along == 0.0) return room >= 0;
    const double t = static_cast<double>(room) / along;
    if (along < 0.0) enter = std::max(enter, t);
    if (along > 0.0) leave = std::min(leave, t);
    return enter <= leave;
  };
  if (!cut(-dx, from.x - rect.left()) || !cut(dx, rect.right() - from.x) ||
      !cut(-dy, from.y - rect.top()) || !cut(dy, rect.bottom() - from.y)) {
    return false;
  }
  const auto at = [&](double t) {
    return TPlace{from.x + std::llround(t * dx), from.y + std::llround(t * dy)};
  };
  line = QLine(ToPoint(enter > 0.0 ? at(enter) : from), ToPoint(leave < 1.0 ? at(leave) : to));
  return true;
}

}  // namespace

bool Misses(const TPlace& a, const TPlace& b, const QRect& rect) {
  return std::max(a.x, b.x) < rect.left() || std::min(a.x, b.x) > rect.right() ||
         std::max(a.y, b.y) < rect.top() || std::min(a.y, b.y) > rect.bottom();
}

bool CutLine(TPlace from, TPlace to, const QRect& rect, int reach, QLine& line) {
  if (Misses(from, to, rect)) return false;
  const QRect whole = rect.adjusted(-reach, -reach, reach, reach);
  if (!Holds(whole, from) || !Holds(whole, to)) return Clip(from, to, whole, line);
  line = QLine(ToPoint(from), ToPoint(to));
  return true;
}

TLinePath::TLinePath(const TPixelScale& x, const TPixelScale& y, const QRect& visible, int reach,
                     TLineSink& sink)
    : x_(x),
      y_(y),
      yFloor_(std::nextafter(y.Lowest(), -HUGE_VAL)),
      visible_(visible),
      right_(visible.left() + visible.width()),
      bottom_(visible.top() + visible.height()),
      reach_(reach),
      sink_(sink) {}

void TLinePath::Add(std::span<const TCoordinate> points) {
  const TCoordinate* point = points.data();
  const TCoordinate* const end = point + points.size();
  while (point < end) {
    // The column's state in registers, for as long as the points fall into it.
    const TCoordinate* const first = point;
    const double left = xLow_, right = xHigh_, floor = yFloor_;
    double low = yLow_, high = yHigh_;
    bool lowIsFirst = lowIsFirst_;
    for (; point < end; ++point) {
      const auto [x, y] = *point;
      if (!(x >= left && x <= right && y > floor && y <= DBL_MAX)) break;
      if (y < low) {
        low = y;
        lowIsFirst = false;
      } else if (y > high) {
        high = y;
        lowIsFirst = true;
      }
    }
    if (point > first) {
      yLow_ = low;
      yHigh_ = high;
      lowIsFirst_ = lowIsFirst;
      lastX_ = point[-1].X;
      lastY_ = point[-1].Y;
      several_ = true;
    }
    if (point == end) return;
    AddOutside(point->X, point->Y);
    ++point;
  }
}

void TLinePath::AddOutside(double x, double y) {
  if (!std::isfinite(x) || !std::isfinite(y)) return Break();
  x = x_.Clamped(x);
  y = y_.Clamped(y);
  const bool known = open_ && x >= xLow_ && x <= xHigh_;
  const std::int64_t column = known ? column_ : x_.Place(x);
  if (known || (open_ && column == column_ && !aside_)) {
    if (!known) WidenTowards(x);
    Extend(x, y);
    return;
  }
  FlushColumn();
  StartColumn(x, y, column);
}

void TLinePath::StartColumn(double x, double y, std::int64_t column) {
  open_ = true;
  several_ = false;
  column_ = column;
  xLow_ = xHigh_ = lastX_ = x;
  yLow_ = yHigh_ = firstY_ = lastY_ = y;
  lowIsFirst_ = true;
  aside_ = column < visible_.left() || column >= right_;
  if (aside_) TakeAside();
}

// A value this near to the border of its column, in pixels, is not trusted to fall into it.
constexpr double kHalf = 0.5 - 1.0e-6;

/// Finds the values between the column's border and its values known so far, on the side of `x`,
/// so that most points need no mapping. A bound that fails the test of the mapping is not taken.
void TLinePath::WidenTowards(double x) {
  const bool up = x > xHigh_;
  double& known = up ? xHigh_ : xLow_;
  const double bound = x_.Value(static_cast<double>(column_) + (up ? kHalf : -kHalf));
  const bool beyond = up ? bound > x : bound < x;
  known = beyond && x_.Place(bound) == column_ ? bound : x;
}

/// The same for all that lies on one side of the visible pixels.
void TLinePath::TakeAside() {
  if (column_ < visible_.left()) {
    const double bound = x_.Value(visible_.left() - 1 + kHalf);
    if (x_.Place(bound) < visible_.left() && bound > xHigh_) xHigh_ = bound;
    xLow_ = x_.Lowest();
  } else {
    const double bound = x_.Value(right_ - kHalf);
    if (x_.Place(bound) >= right_ && bound < xLow_) xLow_ = bound;
    xHigh_ = DBL_MAX;
  }
}

void TLinePath::Break() {
  // A point without neighbours is a dot.
  if (open_ && !hasPrevious_ && !aside_) several_ = true;
  FlushColumn();
  open_ = false;
  hasPrevious_ = false;
  xLow_ = 1.0;
  xHigh_ = 0.0;
}

void TLinePath::Finish() {
  Break();
  sink_.Finish();
}

void TLinePath::FlushColumn() {
  if (!open_) return;
  const TPlace first{column_, y_.Place(firstY_)};
  if (hasPrevious_) EmitJoin(previous_, first);
  hasPrevious_ = true;
  previous_ = first;
  if (!several_) return;
  previous_ = {aside_ ? x_.Place(lastX_) : column_, y_.Place(lastY_)};
  if (!aside_) EmitSpan(first.y, previous_.y);
}

void TLinePath::EmitSpan(std::int64_t first, std::int64_t last) {
  const std::int64_t low = y_.Place(yLow_);
  const std::int64_t high = y_.Place(yHigh_);
  if (std::max(low, high) < visible_.top() || std::min(low, high) >= bottom_) return;
  const auto row = [this](std::int64_t y) {
    return static_cast<int>(std::clamp<std::int64_t>(y, visible_.top() - 1, bottom_));
  };
  sink_.Span({static_cast<int>(column_), row(first), row(low), row(high), row(last), lowIsFirst_});
}

void TLinePath::EmitJoin(const TPlace& from, const TPlace& to) {
  QLine line;
  if (CutLine(from, to, visible_, reach_, line)) sink_.Join(line);
}
