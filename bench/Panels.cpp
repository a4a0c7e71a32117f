#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <cmath>
#include <ctime>
#include <map>

#include "bench/Bench.h"
#include "components/channels/Datachannel.h"
#include "components/graphing/Graph.h"
#include "components/panels/Panelwindow.h"

namespace {

constexpr int kPoints = 1000;
constexpr int kUpdatesPerSecond = 20;
constexpr int kGraphs = 20;

QString Geometry(int x, int y, int width, int height) {
  return QStringLiteral(
             "<property name=\"geometry\"><rect><x>%1</x><y>%2</y><width>%3</width><height>%4"
             "</height></rect></property>\n")
      .arg(x)
      .arg(y)
      .arg(width)
      .arg(height);
}

QString Widget(const char* className, const QString& name, const QString& properties) {
  return QStringLiteral("<widget class=\"%1\" name=\"%2\">\n%3</widget>\n")
      .arg(className, name, properties);
}

QString Text(const char* name, const QString& text) {
  return QStringLiteral("<property name=\"%1\" stdset=\"0\"><string>%2</string></property>\n")
      .arg(name, text);
}

QString Number(const char* name, int value) {
  return QStringLiteral("<property name=\"%1\"><number>%2</number></property>\n")
      .arg(name)
      .arg(value);
}

QString Form(const QString& widgets) {
  return "<ui version=\"4.0\"><class>Panel</class><widget class=\"QWidget\" name=\"Panel\">\n" +
         Geometry(0, 0, 1600, 960) + widgets + "</widget></ui>\n";
}

/// A graph with a channel of 1,000 values for it.
QString GraphWithChannel(int i) {
  const QString number = QString::number(i);
  return Widget("TKorvalGraph", "graph" + number,
                Geometry(320 * (i % 5), 240 * (i / 5 % 4), 320, 240) +
                    Text("VerticalAx.Title.Caption", "Signal " + number)) +
         Widget("TDataChannel", "channel" + number,
                Number("PointCount", kPoints) + Text("GraphLink.Graph", "graph" + number));
}

/// 100 components of many classes that refer to each other.
QString MixedForm() {
  QString widgets;
  for (int i = 0; i < 10; ++i) {
    const QString number = QString::number(i);
    widgets += GraphWithChannel(i);
    widgets += Widget("TLinkedLabel", "label" + number, Geometry(10, 20 * i, 80, 20));
    widgets += Widget("TCompass", "compass" + number, Geometry(100 * i, 500, 90, 90));
    widgets += Widget("TVariable", "variable" + number, QString());
    widgets +=
        Widget("TFFTChannel", "transform" + number, Text("GraphLink.Graph", "graph" + number));
    widgets += Widget("TBasicHistogram", "histogram" + number, QString());
    widgets += Widget("TValueEdit", "edit" + number, Geometry(100 * i, 600, 80, 24));
    widgets += Widget("TTextLabel", "text" + number,
                      Geometry(100 * i, 650, 80, 24) + Text("Caption", "Text"));
    widgets += Widget("TArrow", "arrow" + number, Geometry(100 * i, 700, 80, 80));
  }
  return Form(widgets);
}

QString GraphsForm() {
  QString widgets;
  for (int i = 0; i < kGraphs; ++i) widgets += GraphWithChannel(i);
  return Form(widgets);
}

/// How often each graph is painted.
class TPaintCounter : public QObject {
 public:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++Paints[object];
    return false;
  }
  std::map<QObject*, int> Paints;
};

void Loading(TBench& bench) {
  const QString text = MixedForm();
  std::unique_ptr<TPanelWindow> window;
  QStringList faults;
  const auto read = [&] {
    faults.clear();
    return TPanel::FromText(text, "bench.ui", &faults);
  };
  const double seconds = bench.Seconds(
      9,
      [&] {
        window = std::make_unique<TPanelWindow>(read());
        window->show();
        QCoreApplication::processEvents();
        window->grab();
      },
      [&] { window.reset(); });
  bench.Row("read, show and paint a panel with 100 components", seconds * 1000.0, "ms");
  bench.Check(window->Panel().Components().size() == 100, "not all components are there");
  for (const QString& fault : faults) bench.Check(false, fault.toStdString());
}

/// Gives each channel `values` values every 1/20 s for a while.
void Running(TBench& bench, int values) {
  QStringList faults;
  auto panel = TPanel::FromText(GraphsForm(), "bench.ui", &faults);
  for (const QString& fault : faults) bench.Check(false, fault.toStdString());
  const auto channels = panel->Root()->findChildren<TDataChannel*>();
  const auto graphs = panel->Root()->findChildren<TKorvalGraph*>();
  TPaintCounter counter;
  for (TKorvalGraph* graph : graphs) graph->installEventFilter(&counter);
  double time = 0.0;
  const auto give = [&](int count) {
    for (int i = 0; i < count; ++i) {
      time += 0.001;
      for (TDataChannel* channel : channels) {
        channel->SetTimeAndValue(time, std::sin(time * 20.0) + 0.3 * std::sin(time * 171.0));
      }
    }
  };
  give(kPoints);
  for (TDataChannel* channel : channels) channel->GetGraphLink()->SetUpdateInterval(values);

  TPanelWindow window(std::move(panel));
  window.resize(1640, 1040);  // all of them are seen, even on a smaller screen
  window.show();
  QCoreApplication::processEvents();
  counter.Paints.clear();

  const int updates = (bench.Quick() ? 1 : 10) * kUpdatesPerSecond;
  int done = 0;
  QEventLoop loop;
  QTimer timer;
  timer.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer, &QTimer::timeout, [&] {
    if (done == updates) return loop.quit();
    ++done;
    give(values);
  });
  QElapsedTimer clock;
  clock.start();
  const std::clock_t cpu = std::clock();
  timer.start(1000 / kUpdatesPerSecond);
  loop.exec();
  const double busy = static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC;
  const double wall = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
  bench.Row("20 graphs of 1,000 points, " + std::to_string(values) + " values an update, one core",
            100.0 * busy / wall, "%");
  bench.Row("  of that, one redraw of one graph",
            1e3 * busy / (static_cast<double>(updates) * kGraphs), "ms");
  for (TKorvalGraph* graph : graphs) {
    const int paints = counter.Paints[graph];
    bench.Check(paints > updates / 2, "a graph is not redrawn");
    bench.Check(paints <= updates + 2, "a redraw is queued twice");
    bench.Check(graph->GetDataPanel()->RangeX().GetMax() > 0.0, "a graph has no data");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  TBench bench(argc, argv);
  Loading(bench);
  Running(bench, 1);
  Running(bench, 50);
  return bench.Result();
}
