#include "components/sources/Filereader.h"

#include <QFileInfo>
#include <algorithm>

#include "components/links/Outside.h"
#include "components/sources/Filename.h"
#include "model/Ordinaryfile.h"

namespace {

/// The file open for reading, or null with the reason in `error`.
std::unique_ptr<QFile> OpenFile(const TFileReader* reader, const QString& name, QString& error) {
  constexpr auto kMode = QIODevice::ReadOnly | QIODevice::Unbuffered;
  auto file = std::make_unique<TOrdinaryFile>(name);
  if (const QString refusal = ReadRefusal(reader, name); !refusal.isEmpty()) {
    error = QStringLiteral("Cannot open %1: %2").arg(name, refusal);
  } else if (QString why; !file->Open(kMode, &why)) {
    error = QStringLiteral("Cannot open %1: %2").arg(name, why);
  } else {
    return file;
  }
  return {};
}

}  // namespace

TFileReader::TFileReader(QWidget* parent) : TStreamProvider(parent) {
  SetStateImages(QStringLiteral("FileReaderIdle"), QStringLiteral("FileReaderActive"),
                 QStringLiteral("FileReaderDown"));
}

void TFileReader::AddWishes(TWishes& wishes) const {
  AddReadWish(wishes, this, fileName_);
  for (const QString& name : files_) AddReadWish(wishes, this, name);
}

/// A file that may not be read yet is kept as it is.
void TFileReader::SetFileName(const QString& name) {
  if (IsAtRest(this) && !ReadRefusal(this, FormPath(this, name)).isEmpty()) {
    fileName_ = name;
    return;
  }
  QString error;
  const bool opens = name.isEmpty() || OpenFile(this, FormPath(this, name), error);
  const QString stored = opens                                      ? name
                         : QFileInfo(FormPath(this, name)).isFile() ? fileName_
                                                                    : QString();
  const QPointer<TFileReader> self(this);
  if (stored != fileName_) {
    WhileInactive([this, &stored] {
      fileName_ = stored;
      if (!useList_) DropStream();
    });
  }
  if (self && !opens) Report(error);
}

void TFileReader::SetUseList(bool use) {
  if (use == useList_ || GetActive()) return;
  useList_ = use;
  DropStream();
}

void TFileReader::SetFiles(const QStringList& files) {
  if (files == files_) return;
  files_ = files;
  if (!useList_ || IsLoading()) return;
  itemIndex_ = static_cast<int>(files_.size());
  Reset();
}

void TFileReader::SetItemIndex(int index) {
  const bool exists = index <= files_.size() || IsLoading();
  if (index >= -1 && exists) itemIndex_ = index;
}

int TFileReader::GetStoredIndex() const {
  const bool isUnread = HasStream() && GetStreamPosition() == 0;
  return useList_ && isUnread ? std::max(itemIndex_ - 1, -1) : itemIndex_;
}

/// A form gives list, index and position in any order.
void TFileReader::Loaded() {
  if (itemIndex_ > files_.size()) itemIndex_ = -1;
  TStreamProvider::Loaded();
}

void TFileReader::SetActive(bool active) {
  if (active && !GetActive() && !IsLoading()) LeaveFormerFile();
  TStreamProvider::SetActive(active);
}

void TFileReader::LeaveFormerFile() {
  if (!file_) return;
  const bool isNamed = WhoHasName(*file_, FormPath(this, openName_)) == TNameHolder::Itself;
  if (isNamed && file_->size() >= GetStreamPosition()) return;
  DropStream();
  if (useList_) itemIndex_ = std::max(itemIndex_ - 1, -1);
}

QString TFileReader::GetValidFile() {
  if (!useList_) return fileName_;
  const bool goesOn = GetStoredPosition() > 0 && itemIndex_ >= 0 && itemIndex_ < files_.size();
  if (!goesOn) itemIndex_ = std::min(itemIndex_ + 1, static_cast<int>(files_.size()));
  return files_.value(itemIndex_);
}

void TFileReader::ProvideStream() {
  const QPointer<TFileReader> self(this);
  QString name = GetValidFile();
  emit OnNewFile(this, name);
  if (!self || !GetActive() || HasStream()) return;
  if (!useList_) name = fileName_;  // a listener may just have set another
  if (name.isEmpty()) {
    FailOpening(QStringLiteral("Cannot read: there is no file"));
    return;
  }
  QString error;
  std::unique_ptr<QFile> file = OpenFile(this, FormPath(this, name), error);
  if (!file) {
    FailOpening(error);
    return;
  }
  openName_ = name;
  file_ = file.get();
  OpenStream(std::move(file));
  TStreamProvider::ProvideStream();
}

/// Behind the last file of the list the next try begins with the first.
void TFileReader::FailOpening(const QString& error) {
  if (useList_ && itemIndex_ >= files_.size() - 1) itemIndex_ = -1;
  Fail(error);
}

int TFileReader::GetStreamsPerRound() const {
  return useList_ ? std::max(1, static_cast<int>(files_.size())) : 1;
}

void TFileReader::Reset() {
  const QPointer<TFileReader> self(this);
  TStreamProvider::Reset();
  if (!self) return;
  // Without a name, while another file takes the place of this, it is read on.
  if (file_ && WhoHasName(*file_, FormPath(this, openName_)) == TNameHolder::Another) DropStream();
  bool stop = GetReadMode() == rmUntilEnd;
  if (useList_) {
    DropStream();
    if (itemIndex_ >= files_.size() - 1) {
      itemIndex_ = -1;
      stop |= GetReadMode() == rmUntilFileListEnd;
    }
  }
  if (stop) Stop();
  if (self) emit OnEndOfFile(this);
}
