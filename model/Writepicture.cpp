#include "model/Writepicture.h"

#include <QBuffer>
#include <QImageWriter>

#include "model/Wholefile.h"

QString WritePictureFile(const QImage& picture, const QString& fileName, const QByteArray& format) {
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  QImageWriter writer(&bytes, format);
  return writer.write(picture) ? WriteWholeFile(fileName, bytes.data()) : writer.errorString();
}
