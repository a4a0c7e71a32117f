// One line series drawn into an 800 x 600 picture, the pulling of its points included.
//
//   bench_lines [--quick]      a table of milliseconds, one row per number of points
//   peers/bench_peer_*         the rows of other libraries, built where these are installed

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "bench/Linebench.h"
#include "components/graphing/Axis.h"
#include "components/graphing/Gseries.h"

namespace {

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

/// A panel as large as the picture with one series without markers.
struct TOurs {
  TOurs(const TLineData& data, bool inBlocks) {
    const QRect rect(0, 0, kWidth, kHeight);
    SetUp(horizontal, TAxis::aoHorizontal, rect, data.minX, data.maxX);
    SetUp(vertical, TAxis::aoVertical, rect, data.minY, data.maxY);
    panel.SetOrigin(rect);
    auto* series = panel.AddSeries(std::make_unique<TSeries>());
    series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
    series->DataSource = [&data](int& index, TCoordinate& point, TCoordinate&) {
      const auto i = static_cast<std::size_t>(index);
      if (i >= data.x.size()) return false;
      point = {data.x[i], data.y[i]};
      ++index;
      return true;
    };
    if (!inBlocks) return;
    series->BlockSource = [&data](int index, std::span<TCoordinate> points) {
      const auto first = static_cast<std::size_t>(index);
      const std::size_t count = std::min(points.size(), data.x.size() - first);
      for (std::size_t i = 0; i < count; ++i) points[i] = {data.x[first + i], data.y[first + i]};
      return static_cast<int>(count);
    };
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
  return failed;
}
