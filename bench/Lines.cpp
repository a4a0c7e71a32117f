// One line series drawn into an 800 x 600 picture, the pulling of its points included; then a whole
// graph of that size with wide and dashed lines, on devices of one, one and a half and two pixels
// to a logical one.
//
//   bench_lines [--quick]      tables of milliseconds, one row per number of points
//   peers/bench_peer_*         the rows of other libraries, built where these are installed

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <span>
#include <vector>

#include "bench/Linebench.h"
#include "components/graphing/Axis.h"
#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"

namespace {

constexpr double kRatios[] = {1.0, 1.5, 2.0};

void SetUp(TAxis& axis, TAxis::TAxisOrientation orientation, const QRect& rect, double minimum,
           double maximum) {
  axis.SetOrientation(orientation);
  axis.SetAlign(orientation == TAxis::aoHorizontal ? TAxis::alBottom : TAxis::alLeft);
  axis.SetFixedOrigin(true);
  axis.OnQueryPlotRect = [rect] { return rect; };
  axis.SetAutoMin(false);
  axis.SetAutoMax(false);
  axis.SetMinMax(minimum, maximum);
  axis.UpdateAxis();
}

void TakePoints(TSeries& series, const TLineData& data) {
  series.DataSource = [&data](int& index, TCoordinate& point, TCoordinate&) {
    const auto i = static_cast<std::size_t>(index);
    if (i >= data.x.size()) return false;
    point = {data.x[i], data.y[i]};
    ++index;
    return true;
  };
}

TProvideGraphBlock BlocksOf(const TLineData& data) {
  return [&data](int index, std::span<TCoordinate> points) {
    const auto first = static_cast<std::size_t>(index);
    const std::size_t count = std::min(points.size(), data.x.size() - first);
    for (std::size_t i = 0; i < count; ++i) points[i] = {data.x[first + i], data.y[first + i]};
    return static_cast<int>(count);
  };
}

/// A panel as large as the picture with one series without markers.
struct TOurs {
  TOurs(const TLineData& data, bool inBlocks) {
    const QRect rect(0, 0, kWidth, kHeight);
    SetUp(horizontal, TAxis::aoHorizontal, rect, data.minX, data.maxX);
    SetUp(vertical, TAxis::aoVertical, rect, data.minY, data.maxY);
    panel.SetOrigin(rect);
    auto* series = panel.AddSeries(std::make_unique<TSeries>());
    series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
    TakePoints(*series, data);
    if (inBlocks) series->BlockSource = BlocksOf(data);
  }

  void Draw(QImage& image) {
    image.fill(Qt::white);
    QPainter painter(&image);
    panel.Draw(&painter);
  }

  TAxis horizontal;
  TAxis vertical;
  TDataPanel panel{&horizontal, &vertical};
};

void FillGraph(TKorvalGraph& graph, const TLineData& data, TSeriesStyle::TPenStyle pen,
               int weight) {
  graph.resize(kWidth, kHeight);
  auto* series = graph.GetDataPanel()->AddSeries(std::make_unique<TSeries>());
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  series->GetStyle()->SetLineStyle(pen);
  series->GetStyle()->SetLineWeight(weight);
  TakePoints(*series, data);
  series->BlockSource = BlocksOf(data);
  graph.Replay();
}

/// Milliseconds of processor time: other programs cannot slow the larger pictures alone.
double RedrawTime(TKorvalGraph& graph, QImage& image) {
  const std::clock_t start = std::clock();
  QPainter painter(&image);
  graph.Draw(painter);
  painter.end();
  return 1e3 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The part of a picture that has the line's colour.
double Covered(const QImage& image) {
  qint64 count = 0;
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    count += std::count(row, row + image.width(), qRgb(0, 0, 255));
  }
  return static_cast<double>(count) / image.width() / image.height();
}

/// One graph on devices of three ratios.
struct TRedraws {
  double times[3] = {1e9, 1e9, 1e9};  ///< milliseconds, the best of many
  double covered[3];                  ///< parts of the picture

  TRedraws(TKorvalGraph& graph, bool quick) {
    std::vector<QImage> images;
    for (const double ratio : kRatios) {
      images.emplace_back((QSizeF(kWidth, kHeight) * ratio).toSize(), QImage::Format_RGB32);
      images.back().setDevicePixelRatio(ratio);
    }
    QElapsedTimer all;
    all.start();
    do {
      for (std::size_t i = 0; i < 3; ++i) {
        times[i] = std::min(times[i], RedrawTime(graph, images[i]));
      }
    } while (!quick && all.elapsed() < 300);
    for (std::size_t i = 0; i < 3; ++i) covered[i] = Covered(images[i]);
  }
};

/// What a dotted line that crosses nothing covers, for each logical pixel of its length. A dot is a
/// disc of whole pixels, and a small one has a third more or less of them than a circle.
double DotInk(int weight, double ratio) {
  constexpr int kDiscs[] = {1, 4, 5, 12, 21, 32, 37, 52};  // by their diameter
  const auto diameter = std::lround(weight * ratio);
  return kDiscs[diameter - 1] / (3.0 * static_cast<double>(diameter)) / ratio;
}

/// The line covers about the same part of the picture at each ratio, and dots that lie apart what
/// their pixels make; true if not.
bool IsWrong(const double (&covered)[3], int weight, bool isDots) {
  const double most = isDots ? 1.25 : 1.6;
  const double least = isDots ? 0.8 : 0.6;
  for (std::size_t i = 0; i < 3; ++i) {
    const double ink = isDots ? DotInk(weight, kRatios[i]) / DotInk(weight, 1.0) : 1.0;
    const double part = covered[i] / ink;
    if (part > least * covered[0] && part < most * covered[0] && covered[i] > 1e-3) continue;
    std::printf("WRONG: the line covers %.4f, %.4f, %.4f\n", covered[0], covered[1], covered[2]);
    return true;
  }
  return false;
}

int RunRatioBench(bool quick) {
  constexpr const char* kPens[] = {"solid", "dash", "dot", "dash dot", "dash dot dot"};
  bool wrong = false;
  std::printf("\n%-10s %-7s %-13s %-7s %9s %9s %9s %6s\n", "points", "curve", "pen", "weight",
              "1 ms", "1.5 ms", "2 ms", "2 : 1");
  for (const int count : {1'000, 10'000, 100'000, 1'000'000}) {
    for (const bool noisy : {false, true}) {
      const TLineData data(count, noisy);
      for (int pen = TSeriesStyle::psSolid; pen < TSeriesStyle::psClear; ++pen) {
        for (const int weight : {1, 2, 3, 4}) {
          TKorvalGraph graph;
          FillGraph(graph, data, static_cast<TSeriesStyle::TPenStyle>(pen), weight);
          const TRedraws redraws(graph, quick);
          const auto& times = redraws.times;
          std::printf("%-10d %-7s %-13s %-7d %9.3f %9.3f %9.3f %6.1f\n", count,
                      noisy ? "noisy" : "smooth", kPens[pen], weight, times[0], times[1], times[2],
                      times[2] / times[0]);
          wrong |= IsWrong(redraws.covered, weight, pen == TSeriesStyle::psDot && !noisy);
        }
      }
    }
  }
  return wrong;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  int failed = 0;
  for (const bool inBlocks : {false, true}) {
    failed |= RunLineBench(inBlocks ? "series, points in blocks" : "series, point by point", argc,
                           argv, [inBlocks](const TLineData& data) {
                             auto ours = std::make_shared<TOurs>(data, inBlocks);
                             return [ours](QImage& image) { ours->Draw(image); };
                           });
  }
  const bool quick = argc > 1 && std::strcmp(argv[1], "--quick") == 0;
  return failed | RunRatioBench(quick);
}
