#include <QApplication>
#include <QEventLoop>
#include <cmath>
#include <string>

#include "bench/Allocations.h"
#include "bench/Bench.h"
#include "components/channels/Datachannel.h"
#include "components/sources/Numberscanner.h"
#include "components/sources/Simulator.h"
#include "components/sources/Stringreader.h"

// What a number costs on its road from text to a data channel: found and converted, and handed over
// by a worker thread. Allocations are counted on the GUI thread.

namespace {

struct TForm {
  const char* what;
  std::string (*number)(int i);
};

void Scan(TBench& bench, const TForm& form) {
  const int count = bench.Quick() ? 10'000 : 1'000'000;
  std::string text;
  double expected = 0.0;
  for (int i = 0; i < count; ++i) {
    const std::string number = form.number(i);
    expected += std::stod(number);
    text += number + (i % 4 == 3 ? '\n' : ' ');
  }
  double sum = 0.0;
  const double seconds = bench.Seconds(7, [&] {
    TNumberScanner scanner;
    std::size_t position = 0;
    double value = 0.0;
    sum = 0.0;
    while (scanner.ScanValue(text, position, value) == TNumberScanner::TResult::Number) {
      sum += value;
    }
  });
  bench.Row(std::string("scan ") + form.what, seconds / count * 1e9, "ns");
  bench.Check(sum == expected, std::string("sum of numbers ") + form.what);
}

/// Runs until the provider has stopped.
double Run(TBench& bench, TCustomDataProvider& provider) {
  QEventLoop loop;
  QObject::connect(&provider, &TStateControl::OnActiveChanged, &loop, [&] {
    if (!provider.GetActive()) loop.quit();
  });
  return bench.Seconds(5, [&] {
    provider.SetActive(true);
    loop.exec();
  });
}

void Deliver(TBench& bench, const std::string& what, TCustomDataProvider& provider, int count,
             double& sum) {
  sum = 0.0;
  const long before = allocations;
  const double seconds = Run(bench, provider);
  bench.Row(what, count / seconds / 1e6, "million values/s");
  const double each = static_cast<double>(allocations - before) / (bench.Quick() ? 1 : 5) / count;
  bench.Row("  allocations per value", each, "");
  bench.Check(each < 0.05, what + " allocates for values");
}

void ReadStrings(TBench& bench) {
  const int count = bench.Quick() ? 10'000 : 1'000'000;
  QStringList lines;
  double expected = 0.0;
  for (int i = 0; i < count; ++i) {
    lines << QString::number(i / 8.0, 'f', 3);
    expected += i / 8.0;
  }
  double sum = 0.0;
  TDataChannel channel;
  TValueLink link([&sum](double value) { sum += value; });
  channel.AddLink(&link, false);
  TStringReader reader;
  reader.GetClientControls()->Add(&channel);
  reader.SetDataStrings(lines);
  Deliver(bench, "string reader into a data channel, no graph", reader, count, sum);
  bench.Check(sum == expected * (bench.Quick() ? 1 : 5), "every value arrives");
  bench.Check(channel.GetPointCount() == 100, "the channel holds its last values");
}

void Simulate(TBench& bench) {
  const int count = bench.Quick() ? 10'000 : 1'000'000;
  double sum = 0.0;
  TDataChannel channel;
  TValueLink link([&sum](double value) { sum += value; });
  channel.AddLink(&link, false);
  TSignalSimulator simulator;
  simulator.GetClientControls()->Add(&channel);
  simulator.SetAverage(3.0);
  simulator.SetReadMode(TCustomDataProvider::rmReadPage);
  simulator.SetPageSize(count);
  Deliver(bench, "simulator of noise into a data channel", simulator, count, sum);
  const double mean = sum / count / (bench.Quick() ? 1 : 5);
  bench.Check(std::abs(mean - 3.0) < 0.1, "the mean of the noise");
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  TBench bench(argc, argv);
  const TForm forms[] = {
      {"of whole numbers", [](int i) { return std::to_string(i % 10'000); }},
      {"with decimals", [](int i) { return std::to_string(i % 1000 - 500 + 0.015625 * (i % 64)); }},
      {"with exponents", [](int i) { return std::to_string(i % 777) + ".5E-3"; }},
      {"with misplaced points", [](int i) { return std::to_string(i % 777) + ".5."; }},
  };
  for (const TForm& form : forms) Scan(bench, form);
  ReadStrings(bench);
  Simulate(bench);
  return bench.Result();
}
