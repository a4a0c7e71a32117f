#include "components/channels/Channelset.h"

#include <QPointer>
#include <algorithm>
#include <chrono>
#include <cmath>

#include "model/Datetime.h"

// TDataClient

void TDataClient::SetChannelSet(TChannelSet* set) {
  if (set == set_) return;
  if (set_) set_->Leave(this);
  set_ = set;
  if (set_) set_->Join(this);
}

// TChannelSet

TChannelSet::TChannelSet(QObject* owner) : TNotifyPersistent(owner), storage_(owner) {
  SetCount(4);
  connect(&channels_, &TChannels::OnChange, this, &TChannelSet::NotifyStorage);
  connect(&storage_, &TKorvalCompList::OnItemChanged, this,
          [this](QObject*, QObject* item, TListAction action) { StorageChanged(item, action); });
}

TChannelSet::~TChannelSet() {
  // First of all, so that nobody finds the set there who is notified of anything below.
  LeaveCollection();
  BeforeDestruction();
  SetStorage(nullptr);
  for (int i = 0; i < channels_.Count(); ++i) {
    channels_.GetItem(i)->RemoveFreeNotification(this);
  }
  {
    const std::lock_guard lock(clients_->mutex);
    clients_->gone = true;
    for (TDataClient* client : clients_->list) {
      if (client) client->set_ = nullptr;
    }
  }
}

int TChannelSet::GetCount() { return count_ = channels_.Count(); }

void TChannelSet::SetCount(int count) {
  if (count < 1 || count > kMaxChannels || count == count_) return;
  const int rows = data_.Rows() > 0 ? data_.Rows() : kDefaultRows;
  if (!ResizeMatrices(rows, count + 1)) return;
  std::vector<std::unique_ptr<TChannel>> gone;  // whole until everybody knows
  {
    const QSignalBlocker once(&channels_);
    while (channels_.Count() > count) {
      gone.push_back(channels_.Take(channels_.Count() - 1, false));
    }
    while (channels_.Count() < count && channels_.Add()) continue;
  }
  const QPointer<TChannelSet> alive(this);
  emit channels_.OnChange(&channels_);
  if (alive) emit OnChange(this);
}

void TChannelSet::SetRows(int rows) {
  if (rows <= 0 || rows == data_.Rows()) return;
  if (ResizeMatrices(rows, data_.Columns())) emit OnChange(this);
}

bool TChannelSet::ResizeMatrices(int rows, int columns) {
  const TLock lock(mutex_);
  const int before = data_.Columns();
  // All three or none: the data, which are the largest but for a few rows, come last.
  if (!TMatrix::Fits(rows, columns) || !TMatrix::Fits(kStatRows, columns)) return false;
  if (!calibration_.Resize(kCalibrationRows, columns) || !blockStats_.Resize(kStatRows, columns) ||
      !data_.Resize(rows, columns)) {
    return false;
  }
  currentRow_ = 0;
  InitMatrices(before);
  return true;
}

void TChannelSet::InitMatrices(int first) {
  for (int column = first; column < data_.Columns(); ++column) {
    SetCalibrationOf(column, {});
    calibration_.At(kActive, column) = -1.0;
    for (int row = 0; row < kStatRows; ++row) blockStats_.At(row, column) = 0.0;
  }
}

int TChannelSet::GetCurrentRow() const {
  const TLock lock(mutex_);
  return currentRow_;
}

void TChannelSet::SetLabel(const QString& label) {
  if (label == label_) return;
  label_ = label;
  NotifyStorage();
  emit OnChange(this);
}

// Rows

void TChannelSet::SetRow(const double* values, int first, int count) {
  if (StoreRow(values, first, count)) BlockComplete();
}

/// True if that was the last row of the block.
bool TChannelSet::StoreRow(const double* values, int first, int count) {
  const TLock lock(mutex_);
  // Set from within a client's call, while the block that has just been completed still counts.
  if (currentRow_ >= data_.Rows()) currentRow_ = 0;
  const int last = std::min(count, data_.Columns());
  active_ = true;
  double* row = data_.Row(currentRow_);
  if (first == 0 && last > 0) row[0] = values[0];
  const double* scale = calibration_.Row(kScaleFactor);
  const double* offset = calibration_.Row(kOffset);
  const double* initial = calibration_.Row(kInitialValue);
  double* active = calibration_.Row(kActive);
  for (int column = std::max(first, 1); column < last; ++column) {
    row[column] = values[column] * scale[column] + offset[column] + initial[column];
    active[column] = 1.0;
  }
  if (++currentRow_ < data_.Rows()) return false;
  Analyse();
  return true;
}

void TChannelSet::BlockComplete() {
  TBlockStorage* storage = storageNow_;
  if (storage && storage->GetActive()) storage->SaveBlock(*this);
  if (!NotifyClients()) return;
  const TLock lock(mutex_);
  if (currentRow_ >= data_.Rows()) currentRow_ = 0;
}

/// False if one of them has destroyed the set.
bool TChannelSet::NotifyClients() {
  const std::shared_ptr<TClients> clients = clients_;
  const std::lock_guard lock(clients->mutex);
  ++clients->notifying;
  const std::size_t count = clients->list.size();
  for (std::size_t i = 0; i < count && !clients->gone; ++i) {
    const TDataClient* client = clients->list[i];
    if (client && client->OnBlock) {
      const auto call = client->OnBlock;  // the client may go meanwhile
      call(this);
    }
  }
  if (--clients->notifying == 0) std::erase(clients->list, nullptr);
  return !clients->gone;
}

void TChannelSet::Join(TDataClient* client) {
  const std::lock_guard lock(clients_->mutex);
  clients_->list.push_back(client);
}

void TChannelSet::Leave(TDataClient* client) {
  const std::lock_guard lock(clients_->mutex);
  std::replace(clients_->list.begin(), clients_->list.end(), client,
               static_cast<TDataClient*>(nullptr));
  if (clients_->notifying == 0) std::erase(clients_->list, nullptr);
}

// Block statistics

void TChannelSet::AnalyseData() {
  const TLock lock(mutex_);
  Analyse();
}

void TChannelSet::Analyse() {
  const int rows = data_.Rows();
  endTime_ = data_.At(rows - 1, 0);
  if (!(startTime_ > 0.0)) startTime_ = data_.At(0, 0);
  const double duration = (endTime_ - startTime_) * kSecondsPerDay;
  hasStats_ = duration > 0.0;
  if (hasStats_) {
    sampleRate_ = rows / duration;
    ComputeBlock(1, data_.Columns());
    for (TChannel* channel : analysed_) channel->AnalyseData();
  }
  startTime_ = endTime_;
}

void TChannelSet::ComputeBlock(int firstColumn, int endColumn) {
  double* count = blockStats_.Row(kCount);
  double* sum = blockStats_.Row(kSum);
  double* sqSum = blockStats_.Row(kSqSum);
  double* max = blockStats_.Row(kMax);
  double* min = blockStats_.Row(kMin);
  const double* values = data_.Row(0);
  for (int column = firstColumn; column < endColumn; ++column) {
    const double value = values[column];
    count[column] = data_.Rows();
    sum[column] = max[column] = min[column] = value;
    sqSum[column] = value * value;
  }
  for (int row = 1; row < data_.Rows(); ++row) {
    values = data_.Row(row);
    for (int column = firstColumn; column < endColumn; ++column) {
      const double value = values[column];
      sum[column] += value;
      sqSum[column] += value * value;
      max[column] = value > max[column] ? value : max[column];
      min[column] = value < min[column] ? value : min[column];
    }
  }
}

double TChannelSet::GetSampleRate() const {
  const TLock lock(mutex_);
  return sampleRate_;
}

double TChannelSet::GetStartTime() const {
  const TLock lock(mutex_);
  return startTime_;
}

double TChannelSet::GetEndTime() const {
  const TLock lock(mutex_);
  return endTime_;
}

TMatrix TChannelSet::CopyData() const {
  const TLock lock(mutex_);
  return data_;
}

bool TChannelSet::CopyBlockStats(std::vector<TStatSet>& channels) const {
  const TLock lock(mutex_);
  channels.resize(static_cast<std::size_t>(GetCountNow()));
  for (int column = 1; column < data_.Columns(); ++column) {
    channels[static_cast<std::size_t>(column - 1)] = {.Count = blockStats_.At(kCount, column),
                                                      .Sum = blockStats_.At(kSum, column),
                                                      .SqSum = blockStats_.At(kSqSum, column),
                                                      .Max = blockStats_.At(kMax, column),
                                                      .Min = blockStats_.At(kMin, column),
                                                      .Time = endTime_};
  }
  return hasStats_;
}

void TChannelSet::Reset() {
  const TLock lock(mutex_);
  data_.Zero();
  blockStats_.Zero();
}

// Calibration

TCalibration TChannelSet::CalibrationOf(int column) const {
  return {calibration_.At(kScaleFactor, column), calibration_.At(kOffset, column),
          calibration_.At(kInitialValue, column)};
}

void TChannelSet::SetCalibrationOf(int column, const TCalibration& calibration) {
  calibration_.At(kScaleFactor, column) = calibration.ScaleFactor;
  calibration_.At(kOffset, column) = calibration.Offset;
  calibration_.At(kInitialValue, column) = calibration.InitialValue;
}

TCalibration TChannelSet::GetCalibration(int column) const {
  const TLock lock(mutex_);
  return HasColumn(column) ? CalibrationOf(column) : TCalibration();
}

void TChannelSet::Recalibrate(TChannel& channel, const TCalibration& calibration) {
  const TLock lock(mutex_);
  const int column = channel.Column();
  if (!HasColumn(column)) return;
  const TCalibration before = CalibrationOf(column);
  SetCalibrationOf(column, calibration);
  RescaleColumn(column, before, calibration);
  channel.GetStats()->RescaleData(before, calibration);
}

void TChannelSet::RescaleData(int column, const TCalibration& from, const TCalibration& to) {
  const TLock lock(mutex_);
  if (HasColumn(column)) RescaleColumn(column, from, to);
}

void TChannelSet::RescaleColumn(int column, const TCalibration& from, const TCalibration& to) {
  for (int row = 0; row < data_.Rows(); ++row) {
    data_.At(row, column) = Rescale(data_.At(row, column), from, to);
  }
  ComputeBlock(column, column + 1);
}

bool TChannelSet::IsChannelActive(int column) const {
  const TLock lock(mutex_);
  return HasColumn(column) && calibration_.At(kActive, column) > 0.0;
}

void TChannelSet::SetChannelActive(int column, bool active) {
  const TLock lock(mutex_);
  if (HasColumn(column)) calibration_.At(kActive, column) = active ? 1.0 : -1.0;
}

void TChannelSet::CalculateOffset(int column) {
  const TLock lock(mutex_);
  if (HasColumn(column)) Offset(column);
}

/// False, and nothing changes, if the data have no finite mean.
bool TChannelSet::Offset(int column) {
  const TCalibration now = CalibrationOf(column);
  double sum = 0.0;
  for (int row = 0; row < data_.Rows(); ++row) {
    sum += (data_.At(row, column) - now.Offset - now.InitialValue) / now.ScaleFactor;
  }
  const double offset = -now.ScaleFactor * (sum / data_.Rows());
  if (!std::isfinite(offset)) return false;
  calibration_.At(kOffset, column) = offset;
  return true;
}

void TChannelSet::ShiftToInitial(int column) {
  const TLock lock(mutex_);
  if (HasColumn(column)) Shift(column);
}

void TChannelSet::ShiftToInitial() {
  const TLock lock(mutex_);
  for (int column = 1; column < data_.Columns(); ++column) Shift(column);
}

void TChannelSet::Shift(int column) {
  if (!Offset(column)) return;
  const TCalibration now = CalibrationOf(column);
  for (int row = 0; row < data_.Rows(); ++row) {
    double& value = data_.At(row, column);
    value = value * now.ScaleFactor + now.Offset + now.InitialValue;
  }
}

// Channels that come and go

bool TChannelSet::MakeColumn(int column) {
  if (column < data_.Columns()) return true;
  return column <= kMaxChannels && ResizeMatrices(data_.Rows(), column + 1);
}

void TChannelSet::ChangeChannels(int goneColumn, const std::function<void()>& change) {
  const TLock lock(mutex_);
  if (HasColumn(goneColumn)) {
    for (TMatrix* matrix : {&data_, &calibration_, &blockStats_}) matrix->DeleteColumn(goneColumn);
  }
  change();
  analysed_.clear();
  for (int i = 0; i < channels_.Count(); ++i) analysed_.push_back(channels_.GetItem(i));
  count_ = channels_.Count();
}

void TChannelSet::DeleteChannel(int index) {
  const QPointer<TChannelSet> alive(this);
  if (channels_.Take(index, true) && alive) emit OnChange(this);
}

void TChannelSet::DefaultHandler(const TObjectMessage& message) {
  const auto* source = qobject_cast<const TChannelSource*>(Owner());
  if (!message.Flag || (source && (source->IsBeingDestroyed() || source->IsLoading()))) return;
  const auto* channel = qobject_cast<const TChannel*>(message.Sender);
  if (!channel || channels_.GetItem(channel->Index()) != channel) return;
  // It is being destroyed already.
  const QPointer<TChannelSet> alive(this);
  static_cast<void>(channels_.Take(channel->Index(), true).release());
  if (alive) emit OnChange(this);
}

void TChannelSet::customEvent(QEvent* event) {
  if (event->type() == TObjectMessage::kType) {
    DefaultHandler(static_cast<const TObjectMessage&>(*event));
  } else {
    TNotifyPersistent::customEvent(event);
  }
}

// Guard

void TChannelSet::WriteBegin() {
  std::unique_lock lock(accessMutex_);
  const TAccess other = access_;
  if (other != kIdle) {
    std::condition_variable& ended = other == kWriting ? writeEnded_ : readEnded_;
    ended.wait_for(lock, std::chrono::milliseconds(kWaitMs), [&] { return access_ != other; });
  }
  access_ = kWriting;
}

void TChannelSet::WriteEnd() {
  const std::lock_guard lock(accessMutex_);
  access_ = kIdle;
  writeEnded_.notify_all();
}

void TChannelSet::ReadBegin() {
  std::unique_lock lock(accessMutex_);
  if (access_ == kWriting) {
    writeEnded_.wait_for(lock, std::chrono::milliseconds(kWaitMs),
                         [&] { return access_ != kWriting; });
  }
  access_ = kReading;
}

void TChannelSet::ReadEnd() {
  const std::lock_guard lock(accessMutex_);
  access_ = kIdle;
  readEnded_.notify_all();
}

// Storage

void TChannelSet::SetStorage(TBlockStorage* storage) {
  if (storage_.Set(storage)) emit OnChange(this);
}

void TChannelSet::SetStorageName(const QString& name) {
  if (storage_.SetName(name)) emit OnChange(this);
}

/// A storage that is being destroyed is none any more, and has forgotten the set by itself.
void TChannelSet::StorageChanged(QObject* item, TListAction action) {
  auto* storage = qobject_cast<TBlockStorage*>(item);
  storageNow_ = action == laAdded ? storage : nullptr;
  if (action == laAdded) NotifyStorage();
  if (action == laRemoved && storage) storage->Forget(*this);
}

void TChannelSet::NotifyStorage() {
  if (TBlockStorage* storage = storageNow_) storage->LayoutChanged(*this);
}
