#include "components/controls/Needle.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "components/controls/Sharppen.h"

namespace {

/// A corner of an outline: its distance from the centre, where 1 is the needle's length, and its
/// direction from that of the needle, in radians.
struct TPolarPoint {
  double factor;
  double offset;
};
using TShape = std::vector<TPolarPoint>;

/// From the coordinates along and across the needle, in hundredths of its length.
TPolarPoint Polar(double along, double across) {
  return {std::hypot(along, across) / 100.0, std::atan2(across, along)};
}

/// By type.
const TShape& ShapeOf(TNeedle::TNeedleType type) {
  static const std::array<TShape, TNeedle::kTypeCount> shapes = {{
      {Polar(100, 0), Polar(99, 1), Polar(0, 1), Polar(-10, 10), Polar(-50, 10), Polar(-40, 0),
       Polar(-50, -10), Polar(-10, -10), Polar(0, -1), Polar(99, -1)},
      {Polar(100, 0), Polar(50, 10), Polar(50, 1), Polar(-50, 1), Polar(-50, 10), Polar(-100, 10),
       Polar(-100, -10), Polar(-50, -10), Polar(-50, -1), Polar(50, -1), Polar(50, -10)},
      {Polar(100, 0), Polar(-20, 10), Polar(-20, -10)},
      {Polar(100, 0), Polar(5, 5), Polar(0, 25), Polar(-5, 5), Polar(-25, 0), Polar(-5, -5),
       Polar(0, -25), Polar(5, -5)},
      {Polar(100, 0), Polar(10, 10), Polar(-10, 10), Polar(-10, -10), Polar(10, -10)},
      {Polar(100, 0), Polar(0, 15), Polar(-100, 0), Polar(0, -15)},
      {Polar(100, 0), Polar(60, 10), Polar(0, 0.1), Polar(-60, 10), Polar(-100, 0), Polar(-60, -10),
       Polar(0, -0.1), Polar(60, -10)},
      {Polar(100, 0), Polar(60, 10), Polar(70, 1), Polar(0, 1), Polar(-10, 10), Polar(-50, 10),
       Polar(-40, 0), Polar(-50, -10), Polar(-10, -10), Polar(0, -1), Polar(70, -1),
       Polar(60, -10)},
      {Polar(100, 0), Polar(-20, 0)},
  }};
  return shapes[static_cast<std::size_t>(type)];
}

/// Whole pixels from `origin`, kept where sums of pixels cannot overflow.
int Pixel(double distance, int origin) {
  constexpr double kFar = 1 << 28;
  return static_cast<int>(std::clamp(std::round(distance) + origin, -kFar, kFar));
}

}  // namespace

TNeedle::TNeedle(QObject* owner) : TPersistent(owner) { ComputePoints(); }

void TNeedle::SetLineWidth(int width) {
  if (width >= 0) Store(lineWidth_, width);
}

void TNeedle::SetPlace(int& field, int value) {
  if (value == field) return;
  field = value;
  Validate();
}

void TNeedle::SetX(int x) { SetPlace(x_, x); }

void TNeedle::SetY(int y) { SetPlace(y_, y); }

void TNeedle::SetLength(int length) {
  if (length >= 0) SetPlace(length_, length);
}

void TNeedle::SetAngle(double angleDeg) {
  if (angleDeg == angle_ || !std::isfinite(angleDeg)) return;
  angle_ = angleDeg;
  Validate();
}

void TNeedle::SetXYLength(QPoint centre, int length) {
  if (length < 0 || (centre == QPoint(x_, y_) && length == length_)) return;
  x_ = centre.x();
  y_ = centre.y();
  length_ = length;
  Validate();
}

void TNeedle::SetType(TNeedleType type) {
  if (type == type_ || type < 0 || type >= kTypeCount) return;
  type_ = type;
  Validate();
}

void TNeedle::Validate() {
  ComputePoints();
  emit OnChange(this);
}

void TNeedle::ComputePoints() {
  const double angle = std::numbers::pi * angle_ / 180.0;
  const TShape& shape = ShapeOf(type_);
  points_.resize(shape.size());
  std::ranges::transform(shape, points_.begin(), [&](const TPolarPoint& corner) {
    const double direction = corner.offset + angle;
    return QPoint(Pixel(std::cos(direction) * length_ * corner.factor, x_),
                  Pixel(std::sin(direction) * length_ * corner.factor, y_));
  });
}

void TNeedle::Draw(QPainter* canvas, const QRect& rect) const {
  Q_UNUSED(rect)
  if (!canvas) return;
  if (!shaddowColor_.IsNone()) {
    constexpr int kFar = 1 << 28;
    DrawOutline(*canvas, std::clamp(height_, -kFar, kFar), shaddowColor_,
                fillColor_.IsNone() ? TColor::None() : shaddowColor_);
  }
  DrawOutline(*canvas, 0, lineColor_, fillColor_);
}

void TNeedle::DrawOutline(QPainter& canvas, int shift, TColor line, TColor fill) const {
  std::vector<QPoint> points = points_;
  for (QPoint& point : points) point += QPoint(shift, shift);
  canvas.save();
  const TSharpPen pen(canvas, line.ToQColor(), lineWidth_);
  if (line.IsNone()) canvas.setPen(Qt::NoPen);
  canvas.setBrush(fill.IsNone() ? QBrush(Qt::NoBrush) : QBrush(fill.ToQColor()));
  canvas.drawPolygon(pen.Map(points));
  canvas.restore();
}

void TNeedle::AssignTo(TPersistent* destination) const {
  auto* needle = qobject_cast<TNeedle*>(destination);
  if (!needle || needle == this) return;
  // Its place is one change.
  CopyInSteps(
      needle,
      [&] {
        needle->SetXYLength({x_, y_}, length_);
      },
      [&] { TPersistent::AssignTo(needle); }, [&] { needle->SetAngle(angle_); });
}

bool TNeedle::SameAs(const TPersistent* other) const {
  const auto* needle = qobject_cast<const TNeedle*>(other);
  return needle && TPersistent::SameAs(needle) && angle_ == needle->angle_;
}
