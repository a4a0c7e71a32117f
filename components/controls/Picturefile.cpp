#include "components/controls/Picturefile.h"

#include <QFile>
#include <QImageReader>
#include <algorithm>

#include "model/Ordinaryfile.h"

namespace {

bool IsVector(const QByteArray& format) { return format.startsWith("svg") || format == "pdf"; }

}  // namespace

QImage ReadPictureFile(const QString& fileName, QString* why) {
  const auto refuse = [&](const QString& text) {
    *why = text;
    return QImage();
  };
  TOrdinaryFile file(fileName);
  if (!file.exists()) return refuse(QStringLiteral("there is no such file"));
  if (!file.Open(QIODevice::ReadOnly, why)) return {};
  if (file.size() > kMaxPictureBytes) {
    return refuse(QStringLiteral("the file is larger than %1 MiB").arg(kMaxPictureBytes >> 20));
  }
  QImageReader reader(&file);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  if (!reader.canRead() || IsVector(reader.format())) {
    return refuse(QStringLiteral("it is no picture of a known format"));
  }
  const QSize size = reader.size();
  if (qint64{size.width()} * size.height() > kMaxPicturePixels) {
    return refuse(
        QStringLiteral("%1 x %2 pixels are too many").arg(size.width()).arg(size.height()));
  }
  QImage image = reader.read();
  if (image.isNull()) return refuse(reader.errorString());
  if (std::max(image.width(), image.height()) > kMaxPictureSide) {
    image = image.scaled(kMaxPictureSide, kMaxPictureSide, Qt::KeepAspectRatio,
                         Qt::SmoothTransformation);
  }
  return image;
}
