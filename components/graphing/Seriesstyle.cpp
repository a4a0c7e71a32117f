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

void TSeriesStyle::SetPointStyle(TPointStyle style) {
  if (style >= psNone && style <= psYBar) Set(pointStyle_, style);
}
