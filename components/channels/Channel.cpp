#include "components/channels/Channel.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "components/channels/Matrix.h"
#include "components/graphing/Publishedrecord.h"

namespace {

struct TSensorTexts {
  const char* sensor;
  const char* quantity;
  const char* units;
};
constexpr std::array<TSensorTexts, 7> kSensors = {
    {{"Unknown", "Unknown", ""},
     {"Strain gage", "Stress", "MPa"},
     {"Accelerometer", "Acceleration", "g"},
     {"Thermometer", "Temperature", "C"},
     {"Displacement transducer", "Displacement", "mm"},
     {"Anemometer", "Wind speed", "m/s"},
     {"Wind vane", "Wind direction", "deg"}}};

const TSensorTexts& Texts(TSensorType type) {
  const auto index = static_cast<std::size_t>(type);
  return index < kSensors.size() ? kSensors[index] : kSensors[0];
}

const QLatin1String kStats("Stats");
const QLatin1String kHistories("Histories");
const QLatin1String kScaleFactor("ScaleFactor");

}  // namespace

QString GetSensorTypeText(TSensorType type) { return QString::fromLatin1(Texts(type).sensor); }
QString GetQuantityText(TSensorType type) { return QString::fromLatin1(Texts(type).quantity); }
QString GetUnitsText(TSensorType type) { return QString::fromLatin1(Texts(type).units); }

// TChannel

TChannel::TChannel(TChannelOwner& set, TChannels& channels, int index)
    : TNotifyPersistent(&channels), set_(set), channels_(&channels), index_(index) {}

TChannel::~TChannel() {
  BeforeDestruction();
  // Somebody has deleted the channel without its collection, and nobody has taken it out.
  if (channels_) static_cast<void>(channels_->Take(index_, false).release());
}

QString TChannel::GetNamePath() const {
  return QStringLiteral("%1.Channels[%2]").arg(set_.GetNamePath()).arg(index_);
}

void TChannel::Calibrate(const TCalibration& calibration) {
  const TCalibration now = set_.GetCalibration(Column());
  if (calibration == now || !std::isfinite(calibration.ScaleFactor) ||
      !std::isfinite(calibration.Offset) || !std::isfinite(calibration.InitialValue)) {
    return;
  }
  set_.Recalibrate(*this, calibration);
  emit OnChange(this);
}

void TChannel::SetScaleFactor(double factor) {
  TCalibration calibration = set_.GetCalibration(Column());
  if (factor == 0.0 || factor == calibration.ScaleFactor) return;
  calibration.Offset = factor / calibration.ScaleFactor * calibration.Offset;
  calibration.ScaleFactor = factor;
  Calibrate(calibration);
}

void TChannel::SetOffset(double offset) {
  TCalibration calibration = set_.GetCalibration(Column());
  calibration.Offset = offset;
  Calibrate(calibration);
}

void TChannel::SetInitialValue(double value) {
  TCalibration calibration = set_.GetCalibration(Column());
  calibration.InitialValue = value;
  Calibrate(calibration);
}

void TChannel::SetAnalysisTypes(TAnalysisTypes types) {
  const int bits = types & atStatistics;
  if (analysis_.exchange(bits) != bits) emit OnChange(this);
}

void TChannel::SetSensorType(TSensorType type) {
  if (type == sensor_ || type < stUnknown || type > stWindDirection) return;
  sensor_ = type;
  if (units_.isEmpty()) units_ = GetUnitsText(type);
  emit OnChange(this);
}

void TChannel::AnalyseData() {
  if (!(analysis_.load() & atStatistics)) return;
  stats_.UpdateStatistics(Column(), set_.GetBlockStats(), set_.BlockTime());
}

QJsonObject TChannel::WriteProperties() const {
  QJsonObject record = WritePublished(*this);
  QJsonObject stats = record[kStats].toObject();
  stats[kHistories] = stats_.WriteHistories();
  record[kStats] = stats;
  return record;
}

bool TChannel::ReadProperties(QJsonObject record, QString* error) {
  QJsonObject stats = record[kStats].toObject();
  const QJsonValue histories = stats.take(kHistories);
  if (record.contains(kStats)) record[kStats] = stats;
  // The factor goes first, as it scales the offset.
  QJsonObject first;
  if (record.contains(kScaleFactor)) first[kScaleFactor] = record.take(kScaleFactor);
  if (!ReadPublished(first, *this, error) || !ReadPublished(record, *this, error)) return false;
  // An empty unit in a record is meant, though the sensor has one.
  if (record.contains(QLatin1String("Units"))) units_ = record[QLatin1String("Units")].toString();
  return histories.isUndefined() || stats_.ReadHistories(histories.toString(), error);
}

void TChannel::AssignTo(TPersistent* destination) const {
  auto* channel = qobject_cast<TChannel*>(destination);
  if (!channel || channel == this) return;
  CopyInSteps(
      channel, [&] { TPersistent::AssignTo(channel); }, [&] { channel->SetUnits(units_); });
}

// TChannels

TChannels::TChannels(TChannelOwner& set, QObject* owner) : TPersistent(owner), set_(set) {}

TChannels::~TChannels() {
  for (const auto& channel : items_) channel->channels_ = nullptr;
}

TChannel* TChannels::GetItem(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return items_[static_cast<std::size_t>(index)].get();
}

void TChannels::SetItem(int index, const TChannel* channel) {
  if (TChannel* item = GetItem(index)) item->Assign(channel);
}

QStringList TChannels::Labels() const {
  QStringList labels;
  labels.reserve(Count());
  for (const auto& channel : items_) labels.append(channel->GetLabel());
  return labels;
}

TChannel* TChannels::Add() {
  const int index = Count();
  if (!set_.MakeColumn(index + 1)) return nullptr;
  auto channel = std::make_unique<TChannel>(set_, *this, index);
  channel->label_ = QStringLiteral("Channel%1").arg(index + 1);
  TChannel* added = channel.get();
  connect(added, &TPersistent::OnChange, this, [this] { emit OnChange(this); });
  added->FreeNotification(Owner());
  set_.ChangeChannels(0, [&] { items_.push_back(std::move(channel)); });
  emit OnChange(this);
  return added;
}

std::unique_ptr<TChannel> TChannels::Take(int index, bool withColumn) {
  TChannel* channel = GetItem(index);
  if (!channel) return nullptr;
  std::unique_ptr<TChannel> taken;
  set_.ChangeChannels(withColumn ? channel->Column() : 0, [&] {
    const auto at = items_.begin() + index;
    taken = std::move(*at);
    items_.erase(at);
    for (int i = index; i < Count(); ++i) GetItem(i)->index_ = i;
  });
  channel->channels_ = nullptr;
  channel->RemoveFreeNotification(Owner());
  emit OnChange(this);
  return taken;
}

void TChannels::GetChannelsOfType(std::vector<TChannel*>& list, TSensorType type) const {
  for (const auto& channel : items_) {
    if (channel->GetSensorType() == type) list.push_back(channel.get());
  }
}

void TChannels::AssignTo(TPersistent* destination) const {
  auto* channels = qobject_cast<TChannels*>(destination);
  if (!channels || channels == this) return;
  const QPointer<const TChannels> self(this);
  const QPointer<TChannels> other(channels);
  for (int i = 0; self && other && i < std::min(Count(), other->Count()); ++i) {
    other->SetItem(i, GetItem(i));
  }
}

bool TChannels::SameAs(const TPersistent* other) const {
  const auto* channels = qobject_cast<const TChannels*>(other);
  return channels &&
         std::equal(items_.begin(), items_.end(), channels->items_.begin(), channels->items_.end(),
                    [](const auto& a, const auto& b) { return a->SameAs(b.get()); });
}
