#include "components/channels/Channelstat.h"

#include <QDate>
#include <algorithm>
#include <cmath>

#include "components/channels/Matrix.h"
#include "model/Datetime.h"

// TLimitLevels

void TLimitLevels::SetLimitMax(double limit) {
  if (std::isfinite(limit)) Store(limits_.Max, limit);
}

void TLimitLevels::SetLimitMin(double limit) {
  if (std::isfinite(limit)) Store(limits_.Min, limit);
}

void TLimitLevels::SetLimitValues(double max, double min) {
  if (!std::isfinite(max) || !std::isfinite(min)) return;
  if (max == limits_.Max && min == limits_.Min) return;
  limits_.Max = max;
  limits_.Min = min;
  emit OnChange(this);
}

void TLimitLevels::SetWarningLevel(double distance) {
  if (distance >= 0.0 && std::isfinite(distance)) Store(limits_.WarningLevel, distance);
}

void TLimitLevels::AssignTo(TPersistent* destination) const {
  auto* levels = qobject_cast<TLimitLevels*>(destination);
  if (!levels || levels->limits_ == limits_) return;
  levels->limits_ = limits_;
  emit levels->OnChange(levels);
}

// TStatisticsOptions

TStatisticsOptions::TStatisticsOptions(QObject* owner) : TPersistent(owner) { SetDescription(); }

void TStatisticsOptions::SetSelInterval(TStatInterval interval) {
  if (interval == interval_ || Ordinal(interval) < 0) return;
  interval_ = interval;
  SetDescription();
  emit OnChange(this);
}

void TStatisticsOptions::SetValueType(TStatValue value) {
  if (value == value_ || value < svMean || value > svTime) return;
  value_ = value;
  SetDescription();
  emit OnChange(this);
}

void TStatisticsOptions::SetDescription() {
  static constexpr const char* kValues[] = {"Mean", "Max", "Min", "StDev", "Time"};
  description_ = IntervalText(interval_) + QLatin1String(": ") + QLatin1String(kValues[value_]);
}

// Ends of intervals

double GetEndTime(TStatInterval interval, double time) {
  if (interval == si1_Second) return time + 1.0 / kSecondsPerDay;
  const double perDay = interval == si1_Minute ? 1440.0 : 24.0;
  const double passed = std::floor(time * perDay);
  // Where rounding takes a full minute for the last moment of the one before, it is the next.
  const double end = (passed + 1.0) / perDay;
  return end > time ? end : (passed + 2.0) / perDay;
}

double GetEndDate(TStatInterval interval, double time) {
  const QDate epoch(1899, 12, 30);
  const double day = std::floor(time);
  if (interval == si1_Day) return day + 1.0;
  const QDate date = epoch.addDays(static_cast<qint64>(day));
  const QDate end = interval == si1_Month ? QDate(date.year(), date.month(), 1).addMonths(1)
                                          : QDate(date.year() + 1, 1, 1);
  return static_cast<double>(epoch.daysTo(end));
}

// TStatHistory

namespace {

double EndOf(TStatInterval interval, double time) {
  return interval < si1_Day ? GetEndTime(interval, time) : GetEndDate(interval, time);
}

/// Length of an interval, for the bars of a graph.
double DaysOf(TStatInterval interval) {
  switch (interval) {
    case si1_Second:
      return 1.0 / kSecondsPerDay;
    case si1_Minute:
      return 1.0 / 1440.0;
    case si1_Hour:
      return 1.0 / 24.0;
    case si1_Month:
      return 30.0;
    case si1_Year:
      return 365.0;
    default:
      return 1.0;
  }
}

}  // namespace

TStatHistory::TStatHistory(TStatInterval interval, const TLimits* limits)
    : interval_(interval), maxCount_(HistoryLength(interval)), limits_(limits) {}

std::size_t TStatHistory::Slot(int index) const {
  const auto slot = static_cast<std::size_t>(first_) + static_cast<std::size_t>(index);
  return slot < records_.size() ? slot : slot - records_.size();
}

void TStatHistory::UpdateStatistics(const TStatSet& block) {
  TStatSet alone;
  if (!IsHistoryTime(block.Time) || !alone.Merge(block)) return;
  if (!IsStarted()) ResetTime(block.Time);
  if (block.Time < current_.Time) Restart(block.Time);
  current_.Merge(block);
  current_.Time = block.Time;
  if (ReachesEnd(block.Time, end_)) Complete(block.Time);
}

void TStatHistory::UpdateStatistics(TStatHistory* shorter) {
  if (!Gather(*shorter)) return;
  if (ReachesEnd(current_.Time, end_)) Complete(current_.Time);
}

/// Takes all that the shorter history has not passed on; false if that is nothing.
bool TStatHistory::Gather(TStatHistory& shorter) {
  if (shorter.pending_ == 0) return false;
  const TStatSet before = current_;
  current_ = shorter.Get(0);
  for (int i = 1; i < shorter.pending_; ++i) current_.Merge(shorter.Get(i));
  current_.Merge(shorter.madeRoom_);
  // What this history collected itself before it got a shorter one.
  current_.Merge(before);
  shorter.pending_ = 0;
  shorter.madeRoom_ = {};
  return true;
}

void TStatHistory::Complete(double time) {
  current_.ComputeMoments();
  AddToHistory(current_);
  CheckStatus();
  current_.Count = current_.Sum = current_.SqSum = 0.0;
  ResetTime(time);
}

/// The clock has been set back: the present interval ends where it stands.
void TStatHistory::Restart(double time) {
  if (current_.Count > 0.0) {
    Complete(time);
  } else {
    ResetTime(time);
  }
}

void TStatHistory::AddToHistory(const TStatSet& record) {
  if (next_ && Count() > 0 && record.Time < Get(0).Time) {
    next_->Gather(*this);
    next_->Restart(record.Time);
  }
  PutFirst(record);
  if (!next_) return;
  if (!next_->IsStarted()) next_->ResetTime(record.Time);
  // Which also begins the next interval there, as the record is of the time that ends this one.
  if (ReachesEnd(record.Time, next_->end_)) next_->UpdateStatistics(this);
}

void TStatHistory::PutFirst(const TStatSet& record) {
  if (Count() < maxCount_) {
    if (records_.capacity() == 0) records_.reserve(static_cast<std::size_t>(maxCount_));
    records_.insert(records_.begin(), record);
  } else {
    first_ = first_ == 0 ? Count() - 1 : first_ - 1;
    TStatSet& oldest = records_[static_cast<std::size_t>(first_)];
    if (next_ && pending_ == Count()) {
      madeRoom_.Merge(oldest);
      --pending_;
    }
    oldest = record;
  }
  if (next_) ++pending_;
}

void TStatHistory::ResetTime(double time) {
  startBefore_ = start_;
  endBefore_ = end_;
  hasBefore_ = true;
  end_ = EndOf(interval_, time);
  if (ReachesEnd(time, end_)) end_ = EndOf(interval_, end_);
  start_ = time;
}

QString TStatHistory::TimeText(double time) const {
  if (!hasBefore_) return {};
  const TDateTime::TClock clock = TDateTime(time).Clock();
  return interval_ < si1_Day ? clock.time.toString(QStringLiteral("HH:mm:ss"))
                             : clock.date.toString(Qt::ISODate);
}

namespace {

/// The status of a value that lies `beyond` a limit (negative: before it), after `present`.
TStatStatus Status(double beyond, double warning, TStatStatus present) {
  const double back = 0.5 * warning;
  const double alarm = present == ssAlarm ? -back : 0.0;
  if (beyond > alarm) return ssAlarm;
  const double warn = present >= ssWarning ? -warning - back : -warning;
  return warning > 0.0 && beyond > warn ? ssWarning : ssNormal;
}

}  // namespace

void TStatHistory::CheckStatus() {
  if (!limits_ || records_.empty()) return;
  const TStatSet& newest = Get(0);
  const double warning = limits_->WarningLevel;
  upper_ = limits_->CheckMax ? Status(newest.Max - limits_->Max, warning, upper_) : ssNormal;
  lower_ = limits_->CheckMin ? Status(limits_->Min - newest.Min, warning, lower_) : ssNormal;
  status_ = std::max(upper_, lower_);
}

double TStatHistory::GetMax() const { return Extremes().Max; }

double TStatHistory::GetMin() const { return Extremes().Min; }

TStatSet TStatHistory::Extremes() const {
  TStatSet all;
  all.Merge(current_);
  for (const TStatSet& record : records_) all.Merge(record);
  return all;
}

bool TStatHistory::ProvideGraphData(TStatValue value, int& index, TCoordinate& point,
                                    TCoordinate& extent) const {
  if (ProvideGraphBlock(value, index, {&point, 1}) == 0) return false;
  extent.X = DaysOf(interval_);
  ++index;
  return true;
}

int TStatHistory::ProvideGraphBlock(TStatValue value, int index,
                                    std::span<TCoordinate> points) const {
  if (index < 0) return 0;
  const int count = std::clamp(Count() - index, 0, static_cast<int>(points.size()));
  for (int i = 0; i < count; ++i) {
    const TStatSet& record = Get(index + i);
    points[static_cast<std::size_t>(i)] = {record.Time, record.Value(value)};
  }
  return count;
}

void TStatHistory::RescaleData(const TCalibration& from, const TCalibration& to) {
  for (TStatSet& record : records_) record.RescaleData(from, to);
  current_.RescaleData(from, to);
  madeRoom_.RescaleData(from, to);
}

void TStatHistory::DeleteHistory() { *this = Emptied(); }

/// A new history in the place of this one.
TStatHistory TStatHistory::Emptied() const {
  TStatHistory empty(interval_, limits_);
  empty.next_ = next_;
  return empty;
}

// TChannelStatistics

TChannelStatistics::TChannelStatistics(QObject* owner) : TPersistent(owner) {
  SetIntervals(si1_Second, si1_Year);
  connect(&limits_, &TLimitLevels::OnChange, this, [this] {
    {
      const std::lock_guard lock(mutex_);
      limitsNow_ = limits_.Values();
    }
    emit OnChange(this);
  });
}

TStatInterval TChannelStatistics::GetMinInterval() const {
  int ordinal = 0;
  while (!selected_.testFlag(IntervalAt(ordinal))) ++ordinal;
  return IntervalAt(ordinal);
}

TStatInterval TChannelStatistics::GetMaxInterval() const {
  int ordinal = kStatIntervals - 1;
  while (!selected_.testFlag(IntervalAt(ordinal))) --ordinal;
  return IntervalAt(ordinal);
}

void TChannelStatistics::SetMinInterval(TStatInterval interval) {
  if (interval != GetMinInterval()) SetIntervals(interval, std::max(interval, GetMaxInterval()));
}

void TChannelStatistics::SetMaxInterval(TStatInterval interval) {
  if (interval != GetMaxInterval()) SetIntervals(std::min(interval, GetMinInterval()), interval);
}

void TChannelStatistics::SetIntervals(TStatInterval min, TStatInterval max) {
  const int first = Ordinal(min);
  const int last = Ordinal(max);
  if (first < 0 || last < first) return;
  TStatIntervals intervals;
  for (int ordinal = first; ordinal <= last; ++ordinal) intervals |= IntervalAt(ordinal);
  SetSelIntervals(intervals);
}

void TChannelStatistics::SetSelIntervals(TStatIntervals intervals) {
  intervals &= TStatIntervals((1 << kStatIntervals) - 1);
  if (!intervals || intervals == selected_) return;
  selected_ = intervals;
  InitTables();
  emit OnChange(this);
}

/// Chains the histories of the selected intervals; those that are there stay.
void TChannelStatistics::InitTables() {
  const std::lock_guard lock(mutex_);
  THistories before = std::exchange(histories_, {});
  for (int ordinal = 0; ordinal < kStatIntervals; ++ordinal) {
    if (selected_.testFlag(IntervalAt(ordinal))) AddStatHistory(IntervalAt(ordinal), before);
  }
}

void TChannelStatistics::AddStatHistory(TStatInterval interval, THistories& from) {
  const auto kept = std::find_if(from.begin(), from.end(), [&](const auto& history) {
    return history && history->Interval() == interval;
  });
  auto history =
      kept != from.end() ? std::move(*kept) : std::make_unique<TStatHistory>(interval, &limitsNow_);
  history->SetNext(nullptr);
  if (!histories_.empty()) histories_.back()->SetNext(history.get());
  histories_.push_back(std::move(history));
}

void TChannelStatistics::UpdateStatistics(int column, const TMatrix& blockStatistics, double time) {
  constexpr int kRows = 5;
  if (column < 0 || column >= blockStatistics.Columns() || blockStatistics.Rows() < kRows) return;
  const TStatSet block{.Count = blockStatistics.At(0, column),
                       .Sum = blockStatistics.At(1, column),
                       .SqSum = blockStatistics.At(2, column),
                       .Max = blockStatistics.At(3, column),
                       .Min = blockStatistics.At(4, column),
                       .Time = time};
  const std::lock_guard lock(mutex_);
  histories_.front()->UpdateStatistics(block);
}

void TChannelStatistics::RescaleData(const TCalibration& from, const TCalibration& to) {
  const std::lock_guard lock(mutex_);
  for (const auto& history : histories_) history->RescaleData(from, to);
}

void TChannelStatistics::DeleteHistory() {
  const std::lock_guard lock(mutex_);
  for (const auto& history : histories_) history->DeleteHistory();
}

bool TChannelStatistics::GetCurrent(int index, TStatSet& record) const {
  const std::lock_guard lock(mutex_);
  if (index < 0 || index >= Count()) return false;
  record = Get(index)->Current();
  return true;
}

TStatStatus TChannelStatistics::GetStatus() const {
  const std::lock_guard lock(mutex_);
  return histories_.front()->GetStatus();
}

TStatStatus TChannelStatistics::GetStatus(TStatInterval interval) const {
  const std::lock_guard lock(mutex_);
  const TStatHistory* history = Find(interval);
  return history ? history->GetStatus() : ssNone;
}

const TStatHistory* TChannelStatistics::Find(TStatInterval interval) const {
  const auto found = std::find_if(histories_.begin(), histories_.end(), [&](const auto& history) {
    return history->Interval() == interval;
  });
  return found == histories_.end() ? nullptr : found->get();
}

bool TChannelStatistics::ProvideGraphData(const TStatisticsOptions& options, int& index,
                                          TCoordinate& point, TCoordinate& extent) const {
  const std::lock_guard lock(mutex_);
  const TStatHistory* history = Find(options.GetSelInterval());
  return history && history->ProvideGraphData(options.GetValueType(), index, point, extent);
}

int TChannelStatistics::ProvideGraphBlock(const TStatisticsOptions& options, int index,
                                          std::span<TCoordinate> points) const {
  const std::lock_guard lock(mutex_);
  const TStatHistory* history = Find(options.GetSelInterval());
  return history ? history->ProvideGraphBlock(options.GetValueType(), index, points) : 0;
}

void TChannelStatistics::AssignTo(TPersistent* destination) const {
  auto* statistics = qobject_cast<TChannelStatistics*>(destination);
  if (!statistics || statistics == this) return;
  CopyInSteps(
      statistics, [&] { statistics->SetSelIntervals(selected_); },
      [&] { statistics->SetLimits(&limits_); }, [&] { statistics->SetStoreDataAsText(asText_); });
}
