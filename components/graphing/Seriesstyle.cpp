#include "components/graphing/Seriesstyle.h"

void TBasicSeriesStyle::EndUpdate() {
  updating_ = false;
  emit OnChange(this);
}

void TBasicSeriesStyle::SetLineStyle(TPenStyle style) {
  if (style >= psSolid && style <= psClear) Set(lineStyle_, style);
}

void TBasicSeriesStyle::SetLineWeight(int weight) {
  if (weight >= 1 && weight <= kMaxWeight) Set(lineWeight_, weight);
}

Qt::PenStyle TBasicSeriesStyle::QtLineStyle() const {
  static constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine,   Qt::DashLine,       Qt::DotLine,
                                             Qt::DashDotLine, Qt::DashDotDotLine, Qt::NoPen};
  return kStyles[lineStyle_];
}

void TBasicSeriesStyle::AssignTo(TPersistent* destination) const {
  auto* style = qobject_cast<TBasicSeriesStyle*>(destination);
  if (!style) return;
  style->SetLineColor(lineColor_);
  style->SetFillColor(fillColor_);
  style->SetLineStyle(lineStyle_);
  style->SetLineWeight(lineWeight_);
}

bool TBasicSeriesStyle::SameAs(const TPersistent* other) const {
  const auto* style = qobject_cast<const TBasicSeriesStyle*>(other);
  return style && lineColor_ == style->lineColor_ && fillColor_ == style->fillColor_ &&
         lineStyle_ == style->lineStyle_ && lineWeight_ == style->lineWeight_;
}

void TSeriesStyle::SetPointStyle(TPointStyle style) {
  if (style >= psNone && style <= psYBar) Set(pointStyle_, style);
}

void TSeriesStyle::AssignTo(TPersistent* destination) const {
  TBasicSeriesStyle::AssignTo(destination);
  auto* style = qobject_cast<TSeriesStyle*>(destination);
  if (!style) return;
  style->SetPointColor(pointColor_);
  style->SetPointStyle(pointStyle_);
}

bool TSeriesStyle::SameAs(const TPersistent* other) const {
  const auto* style = qobject_cast<const TSeriesStyle*>(other);
  return style && TBasicSeriesStyle::SameAs(other) && pointColor_ == style->pointColor_ &&
         pointStyle_ == style->pointStyle_;
}
