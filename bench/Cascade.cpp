#include <QApplication>
#include <memory>
#include <string>
#include <vector>

#include "bench/Allocations.h"
#include "bench/Bench.h"
#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"

// What a value costs on its road through data controls and channels, in time and in allocations.

namespace {

/// Gives `control` many values; checks that none of them allocates.
void GiveValues(TBench& bench, const std::string& what, TDataControl& control) {
  const int values = bench.Quick() ? 1000 : 1'000'000;
  double next = 0.0;
  for (int i = 0; i < 10; ++i) control.SetTimeAndValue(next, next);
  const long before = allocations;
  const double seconds = bench.Seconds(7, [&] {
    for (int i = 0; i < values; ++i) {
      next += 1.0;
      control.SetTimeAndValue(next, next);
    }
  });
  // The stopwatch itself keeps its times in a list.
  const double each = static_cast<double>(allocations - before) / values;
  bench.Row(what, seconds / values * 1e9, "ns");
  bench.Row("  allocations per value", each, "");
  bench.Check(each < 0.05, what + " allocates for values");
  bench.Check(control.GetValue() == next, what + " has the last value");
}

void Chain(TBench& bench) {
  constexpr int kControls = 10;
  std::vector<std::unique_ptr<TServerDataControl>> controls;
  std::vector<std::unique_ptr<TValueLink>> links;
  double sum = 0.0;
  for (int i = 0; i < kControls; ++i) {
    controls.push_back(std::make_unique<TServerDataControl>());
    links.push_back(std::make_unique<TValueLink>([&sum](double value) { sum += value; }));
    controls.back()->AddLink(links.back().get(), false);
    if (i > 0) controls[controls.size() - 2]->GetClientControls()->Add(controls.back().get());
  }
  GiveValues(bench, "ten server controls, one subscriber each", *controls.front());
  const double last = controls.back()->GetValue();
  bench.Check(last == controls.front()->GetValue(), "the value runs through the chain");
  const double before = sum;
  controls.front()->SetValue(3.0);
  bench.Check(sum - before == 3.0 * kControls, "every subscriber is notified");
}

void Channel(TBench& bench, int rows, int updateInterval) {
  TDataChannel channel;
  channel.SetPointCount(rows);
  channel.GetGraphLink()->SetUpdateInterval(updateInterval);
  for (int row = 0; row < rows + updateInterval; ++row) channel.SetValue(0.0);
  GiveValues(bench,
             "data channel of " + std::to_string(rows) + " rows, no graph, updates every " +
                 std::to_string(updateInterval),
             channel);
  bench.Check(channel.GetPointCount() == rows, "the list does not grow");
  bench.Check(channel.GetStatistics()->GetCount() == rows, "the statistics are of all rows");
}

void LookedAt(TBench& bench) {
  TDataChannel channel;
  channel.SetPipeMode(false);
  for (int row = 0; row < TDataList::kLimit; ++row) channel.SetTimeAndValue(row, 0.0);
  double mean = 0.0;
  const double seconds = bench.Seconds(
      7, [&] { mean = channel.GetStatistics()->GetMean(); }, [&] { channel.UpdateStatistics(); });
  bench.Row("statistics of 65,536 rows, when looked at", seconds * 1e6, "us");
  bench.Check(mean == (TDataList::kLimit - 1) / 2.0, "the mean of 0 to 65,535");
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  TBench bench(argc, argv);
  TServerDataControl single;
  GiveValues(bench, "one server control", single);
  Chain(bench);
  for (const int rows : {100, TDataList::kLimit}) {
    for (const int interval : {1, 2, 1000}) Channel(bench, rows, interval);
  }
  TVariable variable;
  variable.setObjectName(QStringLiteral("v"));
  GiveValues(bench, "variable that shows its value", variable);
  LookedAt(bench);
  return bench.Result();
}
