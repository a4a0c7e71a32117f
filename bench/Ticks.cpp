// How long an axis takes to choose its ticks and to lay out its labels. Three cases: a new range
// each time (an automatic range over arriving data, where every label is a new text), a range that
// comes again (labels are known), and the drawing of a whole axis.

#include <QApplication>
#include <QImage>
#include <QPainter>

#include "bench/Bench.h"
#include "components/graphing/Axis.h"

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const int calls = bench.Quick() ? 20 : 1000;
  const auto measure = [&](const char* what, auto call) {
    const double seconds = bench.Seconds(15, [&] {
      for (int i = 0; i < calls; ++i) call(i);
    });
    bench.Row(what, 1e6 * seconds / calls, "us");
  };

  TAxis axis;
  axis.SetOrientation(
      TAxis::aoVertical);  // measures every label; a horizontal axis only the height
  axis.SetAlign(TAxis::alLeft);
  axis.SetFixedOrigin(true);
  axis.OnQueryPlotRect = [] { return QRect(60, 20, 700, 540); };
  double from = 0.0;
  double width = 10.0;
  axis.OnQueryRange = [&](double& min, double& max) {
    min = from;
    max = from + width;
  };

  const auto newRange = [&](int i) {
    from = 20.0 * i;
    axis.UpdateAxis();
  };
  measure("linear, new range", newRange);
  bench.Check(axis.GetMajorTick()->Count() == 10 && axis.WorkingMin() == 20.0 * (calls - 1),
              "ticks of a linear range");

  const auto knownRange = [&](int i) {
    from = i % 2;
    axis.UpdateAxis();
  };
  measure("linear, known range", knownRange);
  bench.Check(axis.WorkingMax() == 11.0, "ticks of a known range");

  axis.SetScale(TAxis::asLog);
  const auto logRange = [&](int i) {
    from = i % 2 ? 1e-3 : 1e-4;
    width = 1e4;
    axis.UpdateAxis();
  };
  measure("logarithmic", logRange);
  bench.Check(axis.GetMajorTick()->Count() == 8, "decades");

  axis.SetScale(TAxis::asTime);
  const auto timeRange = [&](int i) {
    from = 45000.0 + i;
    width = 8.0 / 24.0;
    axis.UpdateAxis();
  };
  measure("time, new range", timeRange);
  bench.Check(axis.GetMajorTick()->Count() == 8, "hours");

  QImage picture(800, 600, QImage::Format_RGB32);
  picture.fill(Qt::white);
  QPainter painter(&picture);
  measure("drawing the axis", [&](int) { axis.Draw(painter); });
  painter.end();
  bench.Check(picture.pixelColor(60, 300) != QColor(Qt::white), "the axis line is drawn");
  return bench.Result();
}
