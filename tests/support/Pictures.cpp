#include "tests/support/Pictures.h"

#include <gtest/gtest.h>

#include <QDir>
#include <algorithm>
#include <cstdlib>

#include "tests/support/Testsupport.h"

namespace {

constexpr int kLevels = 16;

int Distance(QRgb a, QRgb b) {
  return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                   std::abs(qBlue(a) - qBlue(b))});
}

int CountOff(const QImage& a, const QImage& b) {
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      count += Distance(a.pixel(x, y), b.pixel(x, y)) > kLevels;
    }
  }
  return count;
}

QImage Difference(const QImage& a, const QImage& b) {
  QImage image(a.size(), QImage::Format_RGB32);
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const int off = std::min(255, 4 * Distance(a.pixel(x, y), b.pixel(x, y)));
      image.setPixel(x, y, qRgb(off, off, off));
    }
  }
  return image;
}

}  // namespace

void ExpectSamePicture(const QImage& actual, const QImage& expected, const std::string& name,
                       int perMille) {
  ASSERT_FALSE(actual.isNull());
  ASSERT_EQ(actual.size(), expected.size());
  const int off = CountOff(actual, expected);
  const int allowed = actual.width() * actual.height() / 1000 * perMille;
  EXPECT_LE(off, allowed) << name;
  if (off <= allowed && !std::getenv("VELMORA_KEEP_PICTURES")) return;
  const QString folder = BuiltFile("pictures/");
  QDir().mkpath(folder);
  const QString file = folder + QString::fromStdString(name);
  actual.save(file + "-actual.png");
  expected.save(file + "-expected.png");
  Difference(actual, expected).save(file + "-difference.png");
  std::printf("%s: %d pixels off; see %s-*.png\n", name.c_str(), off, qPrintable(file));
}

int CountPixels(const QImage& image, const QColor& color, const QRect& part) {
  return CountIf(
      image, [&](const QColor& pixel) { return pixel == color; }, part);
}

int CountOther(const QImage& image, const QColor& color, const QRect& part) {
  return CountIf(
      image, [&](const QColor& pixel) { return pixel != color; }, part);
}

QRect InkBox(const QImage& image, const QColor& ground) {
  QRect box;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y) != ground) box |= QRect(x, y, 1, 1);
    }
  }
  return box;
}

std::set<QRgb> ColorsOf(const QImage& image) {
  std::set<QRgb> colors;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) colors.insert(image.pixel(x, y));
  }
  return colors;
}
