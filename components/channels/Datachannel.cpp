#include "components/channels/Datachannel.h"

#include <QMetaMethod>
#include <QScopeGuard>
#include <algorithm>
#include <cmath>

#include "components/graphing/Dataseries.h"

// TCustomDataChannel

TCustomDataChannel::TCustomDataChannel(QWidget* parent) : TServerDataControl(parent) {
  connect(&data_, &TFloatList::OnChange, this, &TCustomDataChannel::DataChanged);
  connect(&sendData_, &TClick::OnClick, this, &TCustomDataChannel::SendDataToClients);
  connect(&shiftToInitial_, &TClick::OnClick, this, &TCustomDataChannel::CalculateShiftConstant);
  connect(&reset_, &TClick::OnClick, this, &TCustomDataChannel::ResetChannel);
  SetIconImage(QStringLiteral("ChannelImage"));
  SetImageSize(QSize(17, 17));
  SetCaptionPos(cpRight);

  auto series = std::make_unique<TSeries>();
  series->GetStyle()->SetLineStyle(TSeriesStyle::psSolid);
  series->GetStyle()->SetLineColor(TColor::Blue());
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  series->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    return ProvideGraphData(index, point, extent);
  };
  series->BlockSource = [this](int index, std::span<TCoordinate> points) {
    return ProvideGraphBlock(index, points);
  };
  graphLink_.AddSeries(std::move(series));
}

/// A signal of a signal costs each value as much as all else; most channels have nobody for it.
void TCustomDataChannel::connectNotify(const QMetaMethod& signal) {
  if (signal != QMetaMethod::fromSignal(&TCustomDataChannel::OnNotify)) return;
  connect(this, &TDataControl::OnChange, this, &TCustomDataChannel::OnNotify, Qt::UniqueConnection);
}

// Values

void TCustomDataChannel::SetValue(double raw) {
  double value = scaleFactor_ * raw + shiftConstant_;
  if (!ApplyLimits(value) || !TakeValue(value)) return;
  StoreValue(value);
  graphLink_.Update();
}

/// False if the value is to be dropped.
bool TCustomDataChannel::ApplyLimits(double& value) const {
  if (!options_.testFlag(coUseLimits)) return true;
  const bool above = value > limitMax_;
  const bool below = value < limitMin_;
  if (!above && !below) return true;
  value = above ? limitMax_ : limitMin_;
  return !options_.testFlag(coSkipError);
}

void TCustomDataChannel::StoreValue(double value) {
  if (data_.IsFull()) AboutToDrop(data_.Row(0)[TFloatList::kTime]);
  data_.PushBack(value);
  data_.Row(data_.Count() - 1)[TFloatList::kTime] = GetTime();
}

void TCustomDataChannel::SetScaleFactor(double factor) {
  if (factor != 0.0 && std::isfinite(factor)) scaleFactor_ = factor;
}

void TCustomDataChannel::SetShiftConstant(double constant) {
  if (std::isfinite(constant)) shiftConstant_ = constant;
}

void TCustomDataChannel::SetInitialValue(double value) {
  if (std::isfinite(value)) initialValue_ = value;
}

/// A form gives one limit after the other: between the two they may stand the wrong way round.
void TCustomDataChannel::SetLimitMax(double limit) {
  if (limit == limitMax_ || std::isnan(limit)) return;
  limitMax_ = IsLoading() ? limit : std::max(limitMin_, limit);
  if (!IsLoading()) limitMin_ = std::min(limitMin_, limit);
}

void TCustomDataChannel::SetLimitMin(double limit) {
  if (limit == limitMin_ || std::isnan(limit)) return;
  limitMin_ = IsLoading() ? limit : std::min(limitMax_, limit);
  if (!IsLoading()) limitMax_ = std::max(limitMax_, limit);
}

// Storage

void TCustomDataChannel::SetData(const TFloatList* list) {
  if (!list || list == &data_ || data_.SameAs(list)) return;
  data_.BeginUpdate();
  data_.Assign(list);
  SetDataMaximum();
  data_.EndUpdate(true);  // Last, for a subscriber may destroy the channel.
}

void TCustomDataChannel::SetPipeMode(bool pipe) {
  if (pipe == pipeMode_) return;
  pipeMode_ = pipe;
  SetDataMaximum();
}

void TCustomDataChannel::SetPointCount(int count) {
  if (count == pointCount_ || count < 0 || count > TDataList::kLimit) return;
  pointCount_ = count;
  if (pipeMode_) SetDataMaximum();
}

/// A form gives the rows and the two settings in any order.
void TCustomDataChannel::SetDataMaximum() {
  if (!IsLoading()) data_.KeepNewest(pipeMode_ ? pointCount_ : TDataList::kLimit);
}

void TCustomDataChannel::DataChanged(QObject*) {
  const int most = data_.GetMaxCount();
  if (!IsLoading() && most > 0 && data_.Count() > most) return data_.KeepNewest(most);
  graphLink_.UpdateNow();
}

void TCustomDataChannel::ResetChannel(QObject*) { data_.Clear(); }

void TCustomDataChannel::SendDataToClients(QObject*) {
  if (sending_) return;
  sending_ = true;
  const double value = GetValue();
  // The channel may be gone by then, or a client have thrown.
  const QPointer<TCustomDataChannel> self(this);
  const auto end = qScopeGuard([&] {
    if (self) sending_ = false;
  });
  auto interrupted = qScopeGuard([&] {
    if (self) HoldValue(value);
  });
  if (!SendRows()) return;
  interrupted.dismiss();
  // NOLINTNEXTLINE(bugprone-parent-virtual-call): the value is shown again, clients have it
  TDataControl::SetValue(value);
}

/// False if the channel was destroyed on the way.
bool TCustomDataChannel::SendRows() {
  const int count = data_.Count();
  for (int row = 0; row < std::min(count, data_.Count()); ++row) {
    const TRun::TAlone alone;
    if (!TakeValue(data_.Row(row)[TFloatList::kValue])) return false;
  }
  return true;
}

void TCustomDataChannel::CalculateShiftConstant(QObject*) {
  const auto raw = [this](double value) { return (value - shiftConstant_) / scaleFactor_; };
  double sum = 0.0;
  int count = 0;
  for (int row = 0; row < data_.Count(); ++row) {
    const double value = raw(data_.Row(row)[TFloatList::kValue]);
    if (!std::isfinite(value)) continue;
    sum += value;
    ++count;
  }
  if (count == 0) return;
  const double constant = initialValue_ - scaleFactor_ * (sum / count);
  if (!std::isfinite(constant)) return;
  for (int row = 0; row < data_.Count(); ++row) {
    double& value = data_.Row(row)[TFloatList::kValue];
    value = raw(value) * scaleFactor_ + constant;
  }
  shiftConstant_ = constant;
  graphLink_.UpdateNow();
}

// Graph

bool TCustomDataChannel::HasYBars() const {
  const auto* series = qobject_cast<const TSeries*>(graphLink_.GetSeriesList().Get(0));
  return series && series->GetStyle()->GetPointStyle() == TSeriesStyle::psYBar;
}

TCoordinate TCustomDataChannel::Point(int row, bool swapped) const {
  const double* cells = data_.Row(row);
  const double x = useTime_ ? cells[TFloatList::kTime] : static_cast<double>(row);
  const double y = cells[TFloatList::kValue];
  return swapped ? TCoordinate{y, x} : TCoordinate{x, y};
}

bool TCustomDataChannel::ProvideGraphData(int& index, TCoordinate& point,
                                          TCoordinate& extent) const {
  if (index < 0 || index >= data_.Count()) return false;
  const bool swapped = HasYBars();
  point = Point(index++, swapped);
  (swapped ? extent.Y : extent.X) = 1.0;
  return true;
}

int TCustomDataChannel::ProvideGraphBlock(int index, std::span<TCoordinate> points) const {
  if (index < 0 || index >= data_.Count()) return 0;
  const int count = std::min(data_.Count() - index, static_cast<int>(points.size()));
  const bool swapped = HasYBars();
  for (int i = 0; i < count; ++i) points[static_cast<std::size_t>(i)] = Point(index + i, swapped);
  return count;
}

// Copies and forms

void TCustomDataChannel::AssignTo(TCustomDataChannel* destination) const {
  if (!destination || destination == this) return;
  destination->SetScaleFactor(scaleFactor_);
  destination->SetShiftConstant(shiftConstant_);
  destination->SetInterval(GetInterval());
  destination->SetInitialValue(initialValue_);
  destination->SetOptions(options_);
  destination->SetUseTime(useTime_);
  // Both at once: a limit that is set alone may change places with the old other one.
  destination->limitMin_ = limitMin_;
  destination->limitMax_ = limitMax_;
  // With the rows that they are for, so that there is one notification. That comes last: a
  // subscriber may destroy the destination.
  destination->pointCount_ = pointCount_;
  destination->pipeMode_ = pipeMode_;
  destination->SetData(&data_);
}

void TCustomDataChannel::Loaded() {
  graphLink_.Loaded();
  TServerDataControl::Loaded();
  if (limitMin_ > limitMax_) std::swap(limitMin_, limitMax_);
  SetDataMaximum();
}

// TDataChannel

TDataChannel::TDataChannel(QWidget* parent) : TCustomDataChannel(parent) {
  SetIconImage(QStringLiteral("DataChannelImage"));
  statistics_.OnCompute = [this] {
    const int kept = rows_ - static_cast<int>(dropped_.size());
    Compute(dropped_, std::min(kept, GetPointCount()));
    statistics_.Update();
  };
  series_ = AddStatisticsSeries(*GetGraphLink(), statistics_, TStatSeriesStyle::bsYBar);
  connect(GetGraphLink(), &TGraphLink::OnUpdate, this, &TDataChannel::UpdateStatistics);
}

/// The graph link, a member of the base, lives longer than the statistics.
TDataChannel::~TDataChannel() {
  if (series_) series_->Statistics = nullptr;
  disconnect(GetGraphLink(), &TGraphLink::OnUpdate, this, nullptr);
}

void TDataChannel::ComputeStatistics(QObject*) { Compute({}, GetPointCount()); }

void TDataChannel::UpdateStatistics(QObject*) {
  dropped_.clear();
  rows_ = GetPointCount();
  statistics_.Postpone();
}

void TDataChannel::AboutToDrop(double time) {
  const bool isCounted = std::ssize(dropped_) < rows_;
  if (!statistics_.IsPostponed() || !isCounted) return;
  if (dropped_.size() < kMaxDropped) {
    dropped_.push_back(time);
  } else {
    statistics_.Settle();
  }
}

/// The statistics of times that have left Data and of its first rows.
void TDataChannel::Compute(std::span<const double> dropped, int rows) {
  statistics_.Reset();
  const int count = static_cast<int>(dropped.size()) + rows;
  if (count == 0) return;
  double sum = 0.0;
  double sqSum = 0.0;
  const auto add = [&](double time) {
    sum += time;
    sqSum += time * time;
    statistics_.SetMax(time);
    statistics_.SetMin(time);
  };
  for (const double time : dropped) add(time);
  for (int row = 0; row < rows; ++row) add(GetData()->Row(row)[TFloatList::kTime]);
  statistics_.SetCount(count);
  statistics_.SetSum(sum);
  statistics_.SetSqSum(sqSum);
  const int middle = count / 2;
  statistics_.SetPos(middle);
}
