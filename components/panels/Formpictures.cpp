#include "components/panels/Formpictures.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QUrl>

#include "components/controls/Picturefile.h"
#include "components/links/Outside.h"
#include "model/Oneline.h"

TFormPictures::TFormPictures(const QString& folder, bool anywhere)
    : folder_(folder), anywhere_(anywhere) {}

TFormPictures::~TFormPictures() = default;

QString TFormPictures::Folder() const { return copies_ ? copies_->path() : QString(); }

QString TFormPictures::Take(const QString& name, QString* why) {
  if (name.startsWith(QLatin1String(":/"))) return name;
  if (!known_.contains(name)) known_.insert(name, Copy(name));
  const TCopy& copy = known_[name];
  pixels_ += copy.Pixels;
  if (!copy.Why.isEmpty()) {
    *why = QStringLiteral("%1: %2").arg(ShownName(name), copy.Why);
  } else if (pixels_ > kMaxPixels) {
    *why =
        QStringLiteral("%1: the pictures of the form are too large together").arg(ShownName(name));
  } else {
    return copy.Name;
  }
  return {};
}

TFormPictures::TCopy TFormPictures::Copy(const QString& name) {
  const QUrl url(name);
  if (url.scheme().size() > 1 && !url.isLocalFile()) {
    return {{}, QStringLiteral("it is no file")};
  }
  const QString path = QDir(folder_).absoluteFilePath(url.isLocalFile() ? url.toLocalFile() : name);
  if (!anywhere_ && !IsBelow(RealPath(path), RealPath(folder_))) {
    return {{}, QStringLiteral("it lies outside the folder of the panel")};
  }
  QString why;
  const QImage picture = ReadPictureFile(path, &why);
  if (picture.isNull()) return {{}, why};
  if (!copies_) copies_ = std::make_unique<QTemporaryDir>();
  const QString copy = copies_->filePath(QStringLiteral("%1.png").arg(known_.size()));
  if (!picture.save(copy, "PNG")) return {{}, QStringLiteral("it cannot be copied")};
  return {copy, {}, qint64{picture.width()} * picture.height()};
}
