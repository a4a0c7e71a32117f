// The line of bench_lines drawn by Qwt, with what makes it fastest switched on.

#include <qwt_plot_curve.h>
#include <qwt_point_data.h>
#include <qwt_scale_map.h>

#include <QApplication>
#include <QPainter>
#include <memory>

#include "bench/Linebench.h"

namespace {

struct TPeer {
  explicit TPeer(const TLineData& data) {
    x.setScaleInterval(data.minX, data.maxX);
    y.setScaleInterval(data.minY, data.maxY);
    x.setPaintInterval(0, kWidth - 1);
    y.setPaintInterval(kHeight - 1, 0);
    curve.setPen(QPen(Qt::blue, 1));
    curve.setRenderHint(QwtPlotItem::RenderAntialiased, false);
    curve.setPaintAttribute(QwtPlotCurve::ClipPolygons);
    curve.setPaintAttribute(QwtPlotCurve::FilterPoints);
    curve.setPaintAttribute(QwtPlotCurve::MinimizeMemory);
#if QWT_VERSION >= 0x060200
    curve.setPaintAttribute(QwtPlotCurve::FilterPointsAggressive);
#endif
    curve.setRawSamples(data.x.data(), data.y.data(), static_cast<int>(data.x.size()));
  }

  void Draw(QImage& image) {
    image.fill(Qt::white);
    QPainter painter(&image);
    curve.draw(&painter, x, y, image.rect());
  }

  QwtScaleMap x;
  QwtScaleMap y;
  QwtPlotCurve curve;
};

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  return RunLineBench("Qwt", argc, argv, [](const TLineData& data) {
    auto peer = std::make_shared<TPeer>(data);
    return [peer](QImage& image) { peer->Draw(image); };
  });
}
