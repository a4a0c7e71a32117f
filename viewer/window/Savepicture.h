#pragma once

#include <QImage>
#include <QString>

/// The name with "bmp" added if it has no extension.
QString WithPictureSuffix(const QString& fileName);

/// Whether the extension names a picture format that can be written.
bool IsPictureName(const QString& fileName);

/// Writes the picture in the format that the extension names, as a Windows bitmap if it names none,
/// and replaces an earlier file only once all is written. Returns an empty string, or one sentence
/// for the user.
QString SavePicture(const QImage& picture, const QString& fileName);
