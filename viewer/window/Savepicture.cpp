#include "viewer/window/Savepicture.h"

#include <QFileInfo>
#include <QImageWriter>

#include "model/Oneline.h"
#include "model/Writepicture.h"

namespace {

QByteArray SuffixOf(const QString& fileName) {
  return QFileInfo(fileName).suffix().toLower().toLatin1();
}

}  // namespace

QString WithPictureSuffix(const QString& fileName) {
  if (!SuffixOf(fileName).isEmpty()) return fileName;
  return fileName.endsWith('.') ? fileName + "bmp" : fileName + ".bmp";
}

bool IsPictureName(const QString& fileName) {
  return QImageWriter::supportedImageFormats().contains(SuffixOf(fileName));
}

QString SavePicture(const QImage& picture, const QString& fileName) {
  const QString why =
      WritePictureFile(picture, fileName, IsPictureName(fileName) ? SuffixOf(fileName) : "bmp");
  if (why.isEmpty()) return {};
  return QStringLiteral("Cannot write %1: %2.").arg(ShownFileName(fileName), why);
}
