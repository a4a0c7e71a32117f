#pragma once

#include <QImage>
#include <QPainter>
#include <set>
#include <string>

/// Compares two pictures of one scene that were drawn in different ways: at most `perMille` pixels
/// in 1000 may be off by more than 16 levels, since an edge that passes close to a pixel's centre
/// may fall on either side. A failure writes the actual and the expected picture and their
/// difference into the build folder, under `name`; so does every comparison if
/// VELMORA_KEEP_PICTURES is set.
void ExpectSamePicture(const QImage& actual, const QImage& expected, const std::string& name,
                       int perMille = 1);

/// How many pixels of a picture, or of a part of it, are so.
template <class TTest>
int CountIf(const QImage& image, TTest test, const QRect& part = {}) {
  const QRect where = part.isNull() ? image.rect() : part;
  int count = 0;
  for (int y = where.top(); y <= where.bottom(); ++y) {
    for (int x = where.left(); x <= where.right(); ++x) count += test(image.pixelColor(x, y));
  }
  return count;
}

/// How many pixels are of this colour, and how many of another.
int CountPixels(const QImage& image, const QColor& color, const QRect& part = {});
int CountOther(const QImage& image, const QColor& color, const QRect& part = {});

/// The smallest rectangle around all that is not of the ground's colour.
QRect InkBox(const QImage& image, const QColor& ground = Qt::white);

std::set<QRgb> ColorsOf(const QImage& image);

/// What a function paints on white.
template <class TPaint>
QImage Painted(QSize size, TPaint paint) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  paint(painter);
  return image;
}
