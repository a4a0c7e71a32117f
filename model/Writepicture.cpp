#include "model/Writepicture.h"

#include <QFile>
#include <QImageWriter>
#include <QSaveFile>

QString WritePictureFile(const QImage& picture, const QString& fileName, const QByteArray& format) {
  QSaveFile file(fileName);
  QImageWriter writer(&file, format);
  if (file.open(QIODevice::WriteOnly) && writer.write(picture) && file.flush() && file.commit()) {
    return {};
  }
  return file.error() != QFile::NoError ? file.errorString() : writer.errorString();
}
