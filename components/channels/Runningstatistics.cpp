#include "components/channels/Runningstatistics.h"

#include <algorithm>
#include <cmath>

TRunningStatistics::TRunningStatistics(QWidget* parent) : TCustomVariable(parent) {
  SetIconImage(QStringLiteral("TRunningStatistics"));
  connect(&reset_, &TClick::OnClick, this, &TRunningStatistics::ResetStatistics);
}

void TRunningStatistics::SetFigure(TFigure figure) {
  if (figure == figure_ || figure < fgCount || figure > fgMin) return;
  figure_ = figure;
  if (!IsLoading()) TCustomVariable::SetValue(GetFigureValue());
}

double TRunningStatistics::GetFigureValue() const {
  const double count = statistics_.GetCount();
  if (count < 1.0) return 0.0;
  switch (figure_) {
    case fgCount:
      return count;
    case fgMean:
      return statistics_.GetMean();
    case fgStDev:
      return std::sqrt(std::max(statistics_.GetVariance(), 0.0));
    case fgRms:
      return std::sqrt(std::max(statistics_.GetSqSum(), 0.0) / count);
    case fgMax:
      return max_;
    case fgMin:
      return min_;
  }
  return 0.0;
}

void TRunningStatistics::SetMax(double max) {
  if (std::isfinite(max)) max_ = max;
}

void TRunningStatistics::SetMin(double min) {
  if (std::isfinite(min)) min_ = min;
}

void TRunningStatistics::SetValue(double value) {
  if (!std::isfinite(value)) return;
  const bool first = statistics_.GetCount() < 1.0;
  statistics_.AddValue(value);
  max_ = first ? value : std::max(max_, value);
  min_ = first ? value : std::min(min_, value);
  TCustomVariable::SetValue(GetFigureValue());
}

void TRunningStatistics::ResetStatistics(QObject*) {
  statistics_.Reset();
  max_ = min_ = 0.0;
  TCustomVariable::SetValue(0.0);
}

void TRunningStatistics::Loaded() {
  HoldValue(GetFigureValue());
  TCustomVariable::Loaded();
}
