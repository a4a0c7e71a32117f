#include "components/channels/Statsstorage.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <algorithm>
#include <cmath>

#include "components/links/Outside.h"
#include "model/Datetime.h"
#include "model/Ending.h"
#include "model/Growingfile.h"
#include "model/Ordinaryfile.h"

namespace {

constexpr double kMoment = 0.001 / kSecondsPerDay;
constexpr std::size_t kMaxHeaders =
    2 * std::size_t{TChannelSets::kMaxSets};  ///< remembered at a time

}  // namespace

TStatsStorage::TStatsStorage(QWidget* parent) : TBlockStorage(parent) {
  SetIconImage(QStringLiteral("StatsStorageImage"));
  SetImageSize(QSize(17, 17));
  connect(&TEnding::Instance(), &TEnding::OnKeep, this, &TStatsStorage::WriteAll);
}

TStatsStorage::~TStatsStorage() { WriteAll(); }

// Properties

TStatsStorage::TStorageSettings TStatsStorage::Settings() const {
  const TLock lock(mutex_);
  return settings_;
}

template <class T>
void TStatsStorage::Set(T TStorageSettings::*field, const T& value) {
  const TLock lock(mutex_);
  settings_.*field = value;
}

void TStatsStorage::SetRootDir(const QString& folder) {
  Set(&TStorageSettings::rootDir, folder);
  UpdatePlace();
}

/// Writing has a thread of its own, which cannot ask the form.
void TStatsStorage::UpdatePlace() {
  const QString folder = GetRootDir();
  const QString path = folder.isEmpty() ? FormFolder(this) : FormPath(this, folder);
  const std::optional<QString> place = WritePlace(this, Wishes().front());
  const TLock lock(mutex_);
  settings_.path = path;
  settings_.place = place;
  if (!place) SetStatus(QStringLiteral("Cannot write into %1: %2").arg(path, NoPlaceText(this)));
}

void TStatsStorage::AddWishes(TWishes& wishes) const { AddFolderWish(wishes, this, GetRootDir()); }

void TStatsStorage::SetFilePrefix(const QString& prefix) {
  Set(&TStorageSettings::filePrefix, prefix);
}
void TStatsStorage::SetAutoPrefix(bool on) { Set(&TStorageSettings::autoPrefix, on); }
void TStatsStorage::SetUseDoubleTime(bool on) { Set(&TStorageSettings::doubleTime, on); }

void TStatsStorage::SetFileExt(const QString& extension) {
  Set(&TStorageSettings::fileExt, extension.startsWith('.') ? extension.mid(1) : extension);
}

void TStatsStorage::SetEndTime(double time) {
  if (std::isfinite(time)) Set(&TStorageSettings::endTime, time);
}

void TStatsStorage::SetSaveInterval(int seconds) {
  if (seconds >= 0 && seconds <= kSecondsPerDay) Set(&TStorageSettings::saveInterval, seconds);
}

void TStatsStorage::SetActive(bool active) {
  if (active_.exchange(active) && !active) WriteAll();
}

void TStatsStorage::Loaded() {
  logger_.Loaded();
  TBlockStorage::Loaded();
  UpdatePlace();
}

void TStatsStorage::Started() { UpdatePlace(); }

QString TStatsStorage::GetStatus() const {
  const TLock lock(mutex_);
  return status_;
}

// Blocks

void TStatsStorage::LayoutChanged(TChannelSet& set) {
  std::vector<TStatsColumn> channels;
  for (int i = 0; i < set.GetChannels()->Count(); ++i) {
    const TChannel* channel = set.GetChannels()->GetItem(i);
    channels.push_back({channel->GetLabel(), channel->GetUnits()});
  }
  const QByteArray header = StatsHeader(channels);
  const TLock lock(mutex_);
  TCollected& collected = sets_[&set];
  if (collected.header == header && collected.label == set.GetLabel()) return;
  // What has been collected is of the channels before.
  WriteOrKeep(collected);
  collected = {};
  collected.label = set.GetLabel();
  collected.header = header;
  collected.sums.resize(channels.size());
}

void TStatsStorage::Forget(TChannelSet& set) {
  const TLock lock(mutex_);
  const auto found = sets_.find(&set);
  if (found == sets_.end()) return;
  WriteOrKeep(found->second);
  sets_.erase(found);
}

void TStatsStorage::SaveBlock(TChannelSet& set) {
  const TLock lock(mutex_);
  const auto found = sets_.find(&set);
  if (!settings_.place || found == sets_.end() || !set.CopyBlockStats(found->second.block)) return;
  TCollected& collected = found->second;
  // Channels that have just come or gone are reported in a moment.
  if (collected.block.empty() || collected.block.size() != collected.sums.size()) return;
  const TStatSet& block = collected.block.front();
  if (!IsHistoryTime(block.Time)) return;
  if (settings_.endTime > 0.0 && PassesEnd(block.Time, settings_.endTime)) return;
  Collect(collected, block.Count / set.GetSampleRate() / kSecondsPerDay);
}

/// `duration` is that of the block, in days.
void TStatsStorage::Collect(TCollected& collected, double duration) {
  const double time = collected.block.front().Time;
  const double length = settings_.saveInterval / kSecondsPerDay;
  const bool setBack = time < collected.due - length;
  const bool afterPause = length > 0.0 && PassesEnd(time, collected.due + length);
  if (setBack || afterPause) Write(collected);
  // After a pause, which counts as a part of the block, nobody knows when the block began.
  const double known = duration > 2.0 * length ? std::min(duration, kMoment) : duration;
  if (collected.empty) collected.due = EndAfter(time - known);
  collected.empty = false;
  for (std::size_t i = 0; i < collected.sums.size(); ++i) {
    // A sensor that gives no number does not spoil the line.
    collected.sums[i].Merge(collected.block[i]);
  }
  collected.time = time;
  if (ReachesEnd(time, collected.due)) Write(collected);
}

/// The end of the interval that begins at a time, or holds it.
double TStatsStorage::EndAfter(double start) const {
  const double length = settings_.saveInterval / kSecondsPerDay;
  if (length == 0.0) return start;
  double midnight = std::floor(start);
  if (ReachesEnd(start, midnight + 1.0)) midnight += 1.0;
  double passed = std::floor((start - midnight) / length) + 1.0;
  if (ReachesEnd(start, midnight + passed * length)) passed += 1.0;
  return std::min(midnight + passed * length, midnight + 1.0);
}

/// Writes what has been collected, after what has waited. What cannot be written is kept for the
/// next time.
void TStatsStorage::Write(TCollected& collected) {
  if (collected.empty) return;
  WriteWaiting();
  if (!WriteLine(collected)) collected.due = EndAfter(collected.time);
}

/// False if it cannot be written; it is then as it was.
bool TStatsStorage::WriteLine(TCollected& collected) {
  for (TStatSet& sum : collected.sums) sum.ComputeMoments();
  const QString fileName = FileName(collected);
  const QByteArray line = StatsLine(collected.time, collected.sums, settings_.doubleTime);
  QString reason;
  if (!Append(fileName, collected.header, line, reason)) {
    SetStatus(QStringLiteral("Cannot write %1: %2").arg(fileName, reason));
    return false;
  }
  std::fill(collected.sums.begin(), collected.sums.end(), TStatSet());
  collected.empty = true;
  SetStatus(QStringLiteral("Saving to %1").arg(fileName));
  return true;
}

/// For a set, or a layout of it, that adds nothing any more.
void TStatsStorage::WriteOrKeep(TCollected& collected) {
  Write(collected);
  if (collected.empty) return;
  const auto same = std::find_if(waiting_.begin(), waiting_.end(), [&](const TCollected& other) {
    return other.label == collected.label && other.header == collected.header;
  });
  if (same == waiting_.end()) {
    waiting_.push_back(std::move(collected));
    return;
  }
  for (std::size_t i = 0; i < same->sums.size(); ++i) same->sums[i].Merge(collected.sums[i]);
  same->time = std::max(same->time, collected.time);
}

void TStatsStorage::WriteWaiting() {
  for (auto next = waiting_.begin(); next != waiting_.end();) {
    next = WriteLine(*next) ? waiting_.erase(next) : next + 1;
  }
}

void TStatsStorage::WriteAll() {
  const TLock lock(mutex_);
  WriteWaiting();
  for (auto& [set, collected] : sets_) Write(collected);
}

QString TStatsStorage::FileName(const TCollected& collected) const {
  const QString prefix = settings_.autoPrefix ? collected.label + '_' : settings_.filePrefix;
  const QString day = TDateTime(collected.time).Clock().date.toString(QStringLiteral("yyyyMMdd"));
  const QString extension = SafeFileName(settings_.fileExt);
  return QDir(settings_.path)
      .filePath(SafeFileName(prefix) + day + (extension.isEmpty() ? QString() : '.' + extension));
}

bool TStatsStorage::Append(const QString& fileName, const QByteArray& header,
                           const QByteArray& line, QString& reason) {
  reason = settings_.place ? PlaceRefusal(fileName, *settings_.place)
                           : QStringLiteral("the place is not allowed");
  if (!reason.isEmpty()) return false;
  TOrdinaryFile file(fileName);
  if (!file.Open(kGrowing, &reason) &&
      !(QDir().mkpath(settings_.path) && file.Open(kGrowing, &reason))) {
    return false;
  }
  if (headers_.size() > kMaxHeaders) headers_.clear();
  QByteArray& last = headers_[fileName];
  const bool needsHeader = file.size() == 0 || last != header;
  if (!AppendLines(file, needsHeader ? header + line : line, reason)) return false;
  last = header;
  return true;
}

/// A new text goes to the GUI thread.
void TStatsStorage::SetStatus(const QString& text) {
  if (text == status_) return;
  status_ = text;
  QMetaObject::invokeMethod(
      this, [this, text] { PublishStatus(text); }, Qt::QueuedConnection);
}

void TStatsStorage::PublishStatus(const QString& text) {
  const QPointer<TStatsStorage> alive(this);
  if (QObject* logger = logger_.Get()) {
    for (const char* slot : {"Log", "appendPlainText"}) {
      if (logger->metaObject()->indexOfMethod(QByteArray(slot) + "(QString)") < 0) continue;
      QMetaObject::invokeMethod(logger, slot, Q_ARG(QString, text));
      break;
    }
  }
  if (alive) emit OnStatusChanged(this);
}
