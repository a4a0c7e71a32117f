#pragma once

#include <QImage>
#include <QString>

/// Limits that keep a picture from exhausting the program.
constexpr qint64 kMaxPictureBytes = 256 << 20;
constexpr qint64 kMaxPicturePixels = 64'000'000;
/// Larger pictures are kept at this width or height.
constexpr int kMaxPictureSide = 4096;

/// Reads a picture made of pixels, upright, from an ordinary file. A null one, and why, if that
/// fails. A vector file can draw without end and open others: none is taken.
QImage ReadPictureFile(const QString& fileName, QString* why);
