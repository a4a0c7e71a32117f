#include <QJsonDocument>
#include <QPointer>
#include <algorithm>

#include "components/channels/Channelset.h"
#include "components/graphing/Publishedrecord.h"

namespace {

const QLatin1String kChannels("Channels");
const QLatin1String kChannelCount("ChannelCount");

bool RefuseItems(QString* error, const QString& reason) {
  if (error) *error = reason;
  return false;
}

}  // namespace

// TChannelSet as an item

QString TChannelSet::GetNamePath() const {
  const QString name = Owner() ? Owner()->objectName() : QString();
  return QStringLiteral("%1.Sets[%2]").arg(name).arg(index_);
}

void TChannelSet::LeaveCollection() {
  // Somebody has deleted the set without its collection.
  if (sets_) static_cast<void>(sets_->Take(index_).release());
}

QJsonObject TChannelSet::WriteProperties() const {
  QJsonArray channels;
  for (int i = 0; i < channels_.Count(); ++i) {
    channels.append(channels_.GetItem(i)->WriteProperties());
  }
  QJsonObject record = WritePublished(*this);
  record[kChannels] = channels;
  return record;
}

bool TChannelSet::ReadProperties(QJsonObject record, QString* error) {
  const QJsonValue list = record.take(kChannels);
  const QJsonArray channels = list.toArray();
  const auto count = static_cast<int>(channels.size());
  if (!list.isArray() || record.take(kChannelCount).toInt(-1) != count) {
    return RefuseItems(error, QStringLiteral("ChannelCount is not the number of channels"));
  }
  SetCount(count);
  while (count == 0 && channels_.Count() > 0) DeleteChannel(channels_.Count() - 1);
  if (channels_.Count() != count) return RefuseItems(error, QStringLiteral("Too many channels"));
  if (!ReadPublished(record, *this, error)) return false;
  for (int i = 0; i < count; ++i) {
    QString reason;
    if (!channels_.GetItem(i)->ReadProperties(channels[i].toObject(), &reason)) {
      return RefuseItems(error, QStringLiteral("Channel %1: %2").arg(i + 1).arg(reason));
    }
  }
  return true;
}

void TChannelSet::AssignTo(TPersistent* destination) const {
  auto* set = qobject_cast<TChannelSet*>(destination);
  if (!set || set == this) return;
  CopyInSteps(
      set, [&] { set->SetCount(channels_.Count()); }, [&] { set->SetRows(GetRows()); },
      [&] { set->SetLabel(label_); }, [&] { set->SetXMLTag(xmlTag_); },
      [&] { set->SetSetID(setId_); }, [&] { set->channels_.Assign(&channels_); },
      [&] {
        if (storageNow_) {
          set->SetStorage(storageNow_);
        } else {
          set->SetStorageName(GetStorageName());
        }
      });
}

// TChannelSets

TChannelSets::~TChannelSets() {
  for (const auto& set : items_) set->sets_ = nullptr;
}

TChannelSet* TChannelSets::GetItem(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return items_[static_cast<std::size_t>(index)].get();
}

void TChannelSets::SetItem(int index, const TChannelSet* set) {
  if (TChannelSet* item = GetItem(index)) item->Assign(set);
}

QStringList TChannelSets::Labels() const {
  QStringList labels;
  for (const auto& set : items_) labels.append(set->GetLabel());
  return labels;
}

TChannelSet* TChannelSets::Add() {
  if (Count() >= kMaxSets) return nullptr;
  auto set = std::make_unique<TChannelSet>(Owner());
  const QStringList taken = Labels();
  const auto label = QStringLiteral("ChannelSet%1");
  int number = Count() + 1;
  while (taken.contains(label.arg(number))) ++number;
  set->SetLabel(label.arg(number));
  TChannelSet* added = set.get();
  Put(std::move(set));
  emit OnChange(this);
  return added;
}

void TChannelSets::Put(std::unique_ptr<TChannelSet> set) {
  set->sets_ = this;
  set->index_ = Count();
  connect(set.get(), &TPersistent::OnChange, this, [this] { emit OnChange(this); });
  items_.push_back(std::move(set));
}

std::unique_ptr<TChannelSet> TChannelSets::Take(int index) {
  if (!GetItem(index)) return nullptr;
  const auto at = items_.begin() + index;
  std::unique_ptr<TChannelSet> taken = std::move(*at);
  items_.erase(at);
  taken->sets_ = nullptr;
  taken->index_ = -1;
  disconnect(taken.get(), nullptr, this, nullptr);
  for (int i = index; i < Count(); ++i) GetItem(i)->index_ = i;
  emit OnChange(this);
  return taken;
}

void TChannelSets::Delete(int index) { Take(index); }

void TChannelSets::Clear() {
  if (Count() > 0) Replace({});
}

QString TChannelSets::WriteProperties() const {
  QJsonArray records;
  for (const auto& set : items_) records.append(set->WriteProperties());
  return QString::fromUtf8(QJsonDocument(records).toJson(QJsonDocument::Compact));
}

bool TChannelSets::ReadProperties(const QString& text, QString* error) {
  QJsonParseError problem;
  const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &problem);
  if (problem.error != QJsonParseError::NoError) {
    return RefuseItems(
        error, QStringLiteral("Character %1: %2").arg(problem.offset).arg(problem.errorString()));
  }
  const QJsonArray records = document.array();
  if (!document.isArray() || records.size() > kMaxSets) {
    return RefuseItems(error,
                       QStringLiteral("The text is no list of at most %1 sets").arg(kMaxSets));
  }
  std::vector<std::unique_ptr<TChannelSet>> read;
  qint64 cells = 0;
  int channels = 0;
  for (const auto& record : records) {
    const QString where = QStringLiteral("Set %1: ").arg(read.size() + 1);
    read.push_back(std::make_unique<TChannelSet>(Owner()));
    QString reason;
    if (!read.back()->ReadProperties(record.toObject(), &reason)) {
      return RefuseItems(error, where + reason);
    }
    cells += qint64{read.back()->GetRows()} * read.back()->GetColumns();
    if (cells > kMaxCells) return RefuseItems(error, where + QStringLiteral("too many rows"));
    channels += read.back()->GetCount();
    if (channels > kMaxChannels)
      return RefuseItems(error, where + QStringLiteral("too many channels"));
  }
  Replace(std::move(read));
  return true;
}

void TChannelSets::Replace(std::vector<std::unique_ptr<TChannelSet>> sets) {
  const auto gone = std::exchange(items_, {});
  for (const auto& set : gone) {
    set->sets_ = nullptr;
    set->index_ = -1;
    disconnect(set.get(), nullptr, this, nullptr);
  }
  for (auto& set : sets) {
    Put(std::move(set));
    if (!IsLoading(Owner())) items_.back()->Loaded();
  }
  emit OnChange(this);
}

void TChannelSets::AssignTo(TPersistent* destination) const {
  auto* sets = qobject_cast<TChannelSets*>(destination);
  if (!sets || sets == this) return;
  // Not until the counts are equal: whoever is notified of a change may make another one.
  const QPointer<const TChannelSets> self(this);
  const QPointer<TChannelSets> other(sets);
  const auto alive = [&] { return self && other; };
  for (int i = sets->Count() - Count(); alive() && i > 0; --i) sets->Delete(sets->Count() - 1);
  for (int i = alive() ? Count() - sets->Count() : 0; alive() && i > 0; --i) sets->Add();
  for (int i = 0; alive() && i < Count(); ++i) sets->SetItem(i, GetItem(i));
}

bool TChannelSets::SameAs(const TPersistent* other) const {
  const auto* sets = qobject_cast<const TChannelSets*>(other);
  return sets && std::equal(items_.begin(), items_.end(), sets->items_.begin(), sets->items_.end(),
                            [](const auto& a, const auto& b) { return a->SameAs(b.get()); });
}

// TChannelSource

namespace {}  // namespace

TChannelSource::TChannelSource(QWidget* parent) : TIconControl(parent) {
  SetIconImage(QStringLiteral("ChannelSourceImage"));
  SetImageSize(QSize(17, 17));
}

TChannelSource::~TChannelSource() {
  destroying_ = true;
  sets_.Clear();
}

std::set<TSensorType> TChannelSource::GetSensorTypes() const {
  std::set<TSensorType> types;
  for (int i = 0; i < sets_.Count(); ++i) {
    const TChannels* channels = sets_.GetItem(i)->GetChannels();
    for (int k = 0; k < channels->Count(); ++k) types.insert(channels->GetItem(k)->GetSensorType());
  }
  return types;
}

void TChannelSource::GetChannelsOfType(std::vector<TChannel*>& list, TSensorType type) const {
  for (int i = 0; i < sets_.Count(); ++i) {
    sets_.GetItem(i)->GetChannels()->GetChannelsOfType(list, type);
  }
}

void TChannelSource::Loaded() {
  for (int i = 0; i < sets_.Count(); ++i) sets_.GetItem(i)->Loaded();
  TIconControl::Loaded();
}

void TChannelSource::AssignTo(TChannelSource* destination) const {
  if (destination) destination->SetSets(&sets_);
}
