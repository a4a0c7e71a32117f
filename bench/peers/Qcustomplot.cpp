// The line of bench_lines drawn by QCustomPlot, with what makes it fastest switched on.

#include <qcustomplot.h>

#include <memory>

#include "bench/Linebench.h"

namespace {

struct TPeer {
  explicit TPeer(const TLineData& data) {
    plot.setPlottingHints(QCP::phFastPolylines | QCP::phCacheLabels);
    plot.setNotAntialiasedElements(QCP::aeAll);
    plot.axisRect()->setAutoMargins(QCP::msNone);
    plot.axisRect()->setMargins({});
    for (QCPAxis* axis : plot.axisRect()->axes()) axis->setVisible(false);
    plot.xAxis->setRange(data.minX, data.maxX);
    plot.yAxis->setRange(data.minY, data.maxY);
    QCPGraph* graph = plot.addGraph();
    graph->setAdaptiveSampling(true);
    graph->setPen(QPen(Qt::blue, 1));
    graph->setData({data.x.begin(), data.x.end()}, {data.y.begin(), data.y.end()}, true);
  }

  void Draw(QImage& image) {
    QCPPainter painter(&image);
    plot.toPainter(&painter, image.width(), image.height());
  }

  QCustomPlot plot;
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  return RunLineBench("QCustomPlot", argc, argv, [](const TLineData& data) {
    auto peer = std::make_shared<TPeer>(data);
    return [peer](QImage& image) { peer->Draw(image); };
  });
}
