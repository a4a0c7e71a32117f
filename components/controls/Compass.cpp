#include "components/controls/Compass.h"

#include <QMouseEvent>
#include <cmath>

TCompass::TCompass(QWidget* parent) : TCustomImageControl(parent) {
  needle_.SetXYLength({40, 40}, 30);
  connect(&needle_, &TNeedle::OnChange, this, qOverload<>(&QWidget::update));
  connect(&link_, &TOneChannelLink::OnChannelChanged, this, &TCompass::SelectedChannelChanged);
  connect(&link_, &TOneChannelLink::OnData, this, &TCompass::UpdateValue);
  connect(link_.GetOptions(), &TPersistent::OnChange, this, &TCompass::OptionsChanged);
}

/// An angle that was set is read back as it was, without the rounding of sum and difference.
double TCompass::GetAngle() const {
  const double needle = needle_.GetAngle();
  return needle == angle_ + north_ ? angle_ : needle - north_;
}

void TCompass::SetAngle(double angleDeg) {
  if (!std::isfinite(angleDeg + north_)) return;
  angle_ = angleDeg;
  needle_.SetAngle(angleDeg + north_);
}

void TCompass::SetNorth(double northDeg) {
  if (northDeg == north_ || !std::isfinite(northDeg + GetAngle())) return;
  const double angle = GetAngle();
  north_ = northDeg;
  SetAngle(angle);
}

/// The angle of another channel would pass for one of this.
void TCompass::SelectedChannelChanged() {
  const TChannel* channel = link_.SelectedChannel();
  link_.SetEnabled(channel);
  if (shown_.ChangesTo(channel)) SetAngle(0.0);
}

/// So would the angle of another value or interval.
void TCompass::OptionsChanged() {
  if (link_.SelectedChannel() && !link_.HasData()) SetAngle(0.0);
  UpdateValue();
}

void TCompass::UpdateValue() {
  // The link ticks before the first value, too.
  if (!link_.HasData()) return;
  SetAngle(link_.GetData().ShownValue(link_.GetOptions()->GetValueType()));
}

void TCompass::Loaded() {
  link_.Loaded();
  TCustomImageControl::Loaded();
}

void TCompass::Paint(QPainter& painter) {
  TCustomImageControl::Paint(painter);
  needle_.Draw(&painter, rect());
}

void TCompass::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const QPoint point = event->position().toPoint();
  const QPoint centre(needle_.GetX(), needle_.GetY());
  if (event->modifiers() & Qt::ControlModifier) {
    needle_.SetXYLength(point, needle_.GetLength());
  } else if (event->modifiers() & Qt::ShiftModifier) {
    needle_.SetLength(static_cast<int>(std::hypot(point.x() - centre.x(), point.y() - centre.y())));
  }
}
