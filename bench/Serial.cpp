// A soak run: a simulated device in a process of its own streams 16 inputs at 800 Hz over a pseudo
// terminal while this process draws a graph of them. No packet may be missing.
//
//   bench_serial [--quick] [--seconds N]      60 s by default

#include <QApplication>
#include <QProcess>
#include <QTimer>
#include <cmath>
#include <ctime>

#include "bench/Bench.h"
#include "components/comms/Qlxport.h"
#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"

namespace {

constexpr int kInputs = 16;
constexpr int kRateHz = 800;

/// The last eight seconds of one input, drawn 25 times a second.
class TScope {
 public:
  TScope() {
    auto* series = graph_.GetDataPanel()->AddSeries(std::make_unique<TSeries>());
    series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
    series->BlockSource = [this](int index, std::span<TCoordinate> points) {
      const std::size_t first = static_cast<std::size_t>(index);
      const std::size_t count = std::min(points.size(), points_.size() - first);
      for (std::size_t i = 0; i < count; ++i) {
        points[i] = {static_cast<double>(first + i), points_[(next_ + first + i) % points_.size()]};
      }
      return static_cast<int>(count);
    };
    graph_.resize(800, 600);
    graph_.show();
    QObject::connect(&redraw_, &QTimer::timeout, &graph_, &TKorvalGraph::Replay);
    redraw_.start(40);
  }

  void Add(double value) {
    points_[next_] = value;
    next_ = (next_ + 1) % points_.size();
  }

 private:
  std::vector<double> points_ = std::vector<double>(std::size_t{8} * kRateHz);
  std::size_t next_ = 0;
  TKorvalGraph graph_;
  QTimer redraw_;
};

/// Counts the packets by the numbers that the device gives them.
struct TPacketCount {
  double received = 0;
  double missing = 0;
  double next = -1;

  void Take(double number) {
    if (next >= 0) missing += std::abs(number - next);
    next = std::fmod(number + 1, 0x1000000);
    ++received;
  }
};

/// Processor time that this process takes while the event loop runs for so long, in seconds.
double RunFor(int milliseconds) {
  const std::clock_t start = std::clock();
  QEventLoop loop;
  QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

int Seconds(int argc, char** argv, bool quick) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--seconds") == 0) return std::max(1, std::atoi(argv[i + 1]));
  }
  return quick ? 2 : 60;
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  TBench bench(argc, argv);
  const int seconds = Seconds(argc, argv, bench.Quick());

  QProcess device;
  device.start(VELMORA_DEVICE_SIMULATOR,
               {"--inputs", QString::number(kInputs), "--rate", QString::number(kRateHz),
                "--markers", QString::number(kRateHz)});
  device.waitForReadyRead(5000);
  qputenv("VELMORA_COM1", device.readLine().trimmed());

  TScope scope;
  TQLXPort port;
  TPacketCount count;
  port.SetQLXSampleRate(kRateHz);
  port.SetOnData([&](QObject*, const double* values, int) {
    count.Take(values[1] + 8388600);
    scope.Add(values[2]);
  });
  port.SetAutoRun(true);
  bench.Check(port.GetValueCount() == kInputs + 1,
              "the device does not answer: " + port.GetErrorText().toStdString());
  RunFor(500);  // until the window is there
  const double before = count.received;
  const double withPort = RunFor(1000 * seconds);
  const double received = count.received - before;
  bench.Check(port.GetConnected(), "the port has closed");
  port.SetAutoRun(false);
  const double alone = RunFor(1000 * std::min(seconds, 20)) / std::min(seconds, 20);
  device.terminate();
  device.waitForFinished(5000);

  bench.Row("packets received", received, "");
  bench.Row("packets lost", count.missing, "");
  bench.Row("drawing alone", 100.0 * alone, "% of a core");
  bench.Row("drawing and receiving", 100.0 * withPort / seconds, "% of a core");
  bench.Row("receiving", 100.0 * (withPort / seconds - alone), "% of a core");
  std::printf("%s", device.readAll().constData());
  bench.Check(count.missing == 0, "packets lost");
  bench.Check(received > 0.95 * kRateHz * seconds, "too few packets");
  return bench.Result();
}
