#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

inline constexpr int kWidth = 800;
inline constexpr int kHeight = 600;

/// The line that every library draws: a slow wave under noise, x rising.
struct TLineData {
  std::vector<double> x, y;
  double minX = 0.0, maxX = 1.0, minY = -2.0, maxY = 2.0;

  TLineData(int count, bool noisy) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> noise(-0.9, 0.9);
    for (int i = 0; i < count; ++i) {
      const double t = static_cast<double>(i) / (count - 1);
      x.push_back(t);
      y.push_back(std::sin(12.0 * t) + (noisy ? noise(random) : 0.0));
    }
  }
};

/// Draws a prepared line into the picture, background included.
using TDrawLine = std::function<void(QImage& image)>;
using TPrepareLine = std::function<TDrawLine(const TLineData& data)>;

/// Prints one row of milliseconds (the best of many runs) per number of points. Fails if a picture
/// does not show the line from its first column to its last.
inline int RunLineBench(const char* library, int argc, char** argv, const TPrepareLine& prepare) {
  const bool quick = argc > 1 && std::strcmp(argv[1], "--quick") == 0;
  QImage image(kWidth, kHeight, QImage::Format_RGB32);
  std::printf("%-28s %10s %12s %12s\n", "library", "points", "smooth ms", "noisy ms");
  for (const int count : {1'000, 10'000, 100'000, 1'000'000}) {
    double best[2] = {1e9, 1e9};
    for (const bool noisy : {false, true}) {
      const TLineData data(count, noisy);
      const TDrawLine draw = prepare(data);
      const int runs = quick ? 1 : std::clamp(20'000'000 / count, 20, 400);
      for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        draw(image);
        best[noisy] = std::min(best[noisy], static_cast<double>(timer.nsecsElapsed()) / 1e6);
      }
      for (const int column : {1, 400, 798}) {
        bool found = false;
        for (int row = 0; row < image.height(); ++row) {
          found = found || image.pixel(column, row) != qRgb(255, 255, 255);
        }
        if (!found) {
          std::printf("%s: no line in column %d at %d points\n", library, column, count);
          return 1;
        }
      }
    }
    std::printf("%-28s %10d %12.3f %12.3f\n", library, count, best[0], best[1]);
  }
  return 0;
}
