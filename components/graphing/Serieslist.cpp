#include "components/graphing/Serieslist.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>
#include <algorithm>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Sliderseries.h"

namespace {

constexpr char kClassKey[] = "Class";

}  // namespace

std::map<std::string, TSeriesList::TFactory>& TSeriesList::Factories() {
  static std::map<std::string, TFactory> factories = {
      {"TSeries", [] { return std::make_unique<TSeries>(); }},
      {"TArraySeries", [] { return std::make_unique<TArraySeries>(); }},
      {"TSliderSeries", [] { return std::make_unique<TSliderSeries>(); }},
  };
  return factories;
}

std::unique_ptr<TCustomGraphSeries> TSeriesList::Make(const QString& className) {
  const auto found = Factories().find(className.toStdString());
  return found == Factories().end() ? nullptr : found->second();
}

TSeriesList::~TSeriesList() {
  // A borrowed series lives on without a panel; an owned one must not look back at the list.
  for (const TEntry& entry : entries_) Leave(*entry.series);
}

TCustomGraphSeries* TSeriesList::Get(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return entries_[static_cast<std::size_t>(index)].series;
}

int TSeriesList::IndexOf(const TCustomGraphSeries* series) const {
  const auto at = std::find_if(entries_.begin(), entries_.end(),
                               [series](const TEntry& entry) { return entry.series == series; });
  return at == entries_.end() ? -1 : static_cast<int>(at - entries_.begin());
}

bool TSeriesList::IsOwner(int index) const {
  return Get(index) && entries_[static_cast<std::size_t>(index)].owned;
}

void TSeriesList::AddOwned(std::unique_ptr<TCustomGraphSeries> series) {
  if (!series) return;
  if (panel_) series->panel_ = panel_;
  TCustomGraphSeries* added = series.get();
  entries_.push_back({added, std::move(series)});
  Changed();
}

void TSeriesList::Borrow(const TSeriesList& owner) {
  if (owner.panel_) return;
  bool added = false;
  for (const TEntry& entry : owner.entries_) {
    if (IndexOf(entry.series) >= 0) continue;
    added = true;
    // A series shows in one panel: it leaves the one that it is in.
    if (entry.series->panel_) static_cast<void>(entry.series->panel_->RemoveSeries(entry.series));
    entry.series->panel_ = panel_;
    entries_.push_back({entry.series, nullptr});
  }
  if (added) Changed();
}

void TSeriesList::Return(const TSeriesList& owner) {
  const auto gone = std::erase_if(entries_, [&](const TEntry& entry) {
    if (entry.owned || owner.IndexOf(entry.series) < 0) return false;
    Leave(*entry.series);
    return true;
  });
  if (gone > 0) Changed();
}

/// The panel forgets a series that is about to leave the list, and so does one that borrowed it.
void TSeriesList::Leave(TCustomGraphSeries& series) {
  if (!panel_) {
    if (series.panel_) static_cast<void>(series.panel_->RemoveSeries(&series));
    return;
  }
  panel_->SeriesLeft(series);
  series.panel_ = nullptr;
}

std::unique_ptr<TCustomGraphSeries> TSeriesList::Remove(TCustomGraphSeries* series) {
  const int index = IndexOf(series);
  if (index < 0) return nullptr;
  Leave(*series);
  const auto at = entries_.begin() + index;
  std::unique_ptr<TCustomGraphSeries> owned = std::move(at->owned);
  entries_.erase(at);
  Changed();
  return owned;
}

void TSeriesList::Delete(int index) { Remove(Get(index)); }

void TSeriesList::Clear() {
  const std::vector<TEntry> gone = std::exchange(entries_, {});
  for (const TEntry& entry : gone) Leave(*entry.series);
  if (!gone.empty()) Changed();
}

void TSeriesList::Changed() {
  const QPointer<TSeriesPanel> panel(panel_);
  const QPointer<TSeriesList> self(this);
  emit OnChange(this);
  if (!self || !panel) return;
  emit panel->OnChange(panel);
  if (panel) emit panel->OnRepaint(panel);
}

void TSeriesList::ShowEditor() {
  if (Editor) Editor(*this);
}

QString TSeriesList::WriteProperties() const {
  QJsonArray records;
  for (const TEntry& entry : entries_) {
    if (!entry.owned) continue;
    QJsonObject record;
    entry.series->WriteSeries(record);
    record[QLatin1String(kClassKey)] = QLatin1String(entry.series->metaObject()->className());
    records.append(record);
  }
  return QString::fromUtf8(QJsonDocument(records).toJson(QJsonDocument::Compact));
}

bool TSeriesList::ReadProperties(const QString& text, QString* error) {
  const auto refuse = [&](const QString& reason) {
    if (error) *error = reason;
    return false;
  };
  QJsonParseError problem;
  const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &problem);
  if (problem.error != QJsonParseError::NoError) {
    return refuse(
        QStringLiteral("Character %1: %2").arg(problem.offset).arg(problem.errorString()));
  }
  if (!document.isArray()) return refuse(QStringLiteral("The text is no list of series"));

  std::vector<TEntry> read;
  for (const auto& value : document.array()) {
    const QString where = QStringLiteral("Series %1: ").arg(read.size() + 1);
    QJsonObject record = value.toObject();
    const QString className = record.take(QLatin1String(kClassKey)).toString();
    std::unique_ptr<TCustomGraphSeries> series = Make(className);
    if (!series) return refuse(where + QStringLiteral("unknown class \"%1\"").arg(className));
    QString reason;
    if (!series->ReadSeries(record, &reason)) return refuse(where + reason);
    TCustomGraphSeries* added = series.get();
    read.push_back({added, std::move(series)});
  }
  ReplaceOwned(std::move(read));
  return true;
}

void TSeriesList::RestoreProperties(const QString& text) {
  TSeriesList read;
  if (!read.ReadProperties(text)) return;
  const QPointer<TSeriesList> self(this);
  for (int i = 0; self && i < std::min(Count(), read.Count()); ++i) {
    if (Get(i)->metaObject() != read.Get(i)->metaObject()) continue;
    read.Get(i)->TakeSources(*Get(i));
    Get(i)->Assign(read.Get(i));
  }
}

/// The new series come first, as they do in a form that has not been linked yet.
void TSeriesList::ReplaceOwned(std::vector<TEntry> entries) {
  for (const TEntry& entry : entries) entry.series->panel_ = panel_;
  for (TEntry& entry : entries_) {
    if (entry.owned) {
      Leave(*entry.series);
    } else {
      entries.push_back(std::move(entry));
    }
  }
  entries_ = std::move(entries);
  Changed();
}

void TSeriesList::AssignTo(TPersistent* destination) const {
  auto* list = qobject_cast<TSeriesList*>(destination);
  if (!list || list == this) return;
  std::vector<TEntry> copies;
  for (const TEntry& entry : entries_) {
    if (!entry.owned) continue;
    auto copy = Make(QLatin1String(entry.series->metaObject()->className()));
    if (!copy) continue;
    copy->Assign(entry.series);
    TCustomGraphSeries* added = copy.get();
    copies.push_back({added, std::move(copy)});
  }
  list->ReplaceOwned(std::move(copies));
}

bool TSeriesList::SameAs(const TPersistent* other) const {
  const auto* list = qobject_cast<const TSeriesList*>(other);
  return list &&
         std::equal(entries_.begin(), entries_.end(), list->entries_.begin(), list->entries_.end(),
                    [](const TEntry& a, const TEntry& b) { return a.series->SameAs(b.series); });
}
