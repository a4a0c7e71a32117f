#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

/// Writes a picture in a format such as "png" and replaces an earlier file only once all is
/// written. Returns an empty string, or why it cannot be written.
[[nodiscard]] QString WritePictureFile(const QImage& picture, const QString& fileName,
                                       const QByteArray& format);
