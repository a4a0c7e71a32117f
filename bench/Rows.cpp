// Rows of 16 channels into a channel set, with block statistics and six histories per channel: how
// many per second, and whether the road of a row takes memory.

#include <cmath>
#include <numbers>

#include "bench/Allocations.h"
#include "bench/Bench.h"
#include "components/channels/Channelset.h"
#include "model/Datetime.h"

namespace {

constexpr int kChannels = 16;
constexpr double kRate = 800.0;  // rows per second of the device

/// Time and values of rows one after the other.
class TRows {
 public:
  const double* Next() {
    row_[0] = 45000.0 + static_cast<double>(count_) / kRate / kSecondsPerDay;
    for (int i = 1; i <= kChannels; ++i) row_[i] = static_cast<double>((count_ * i) & 255);
    ++count_;
    return row_;
  }

 private:
  double row_[kChannels + 1] = {};
  long count_ = 0;
};

void Measure(TBench& bench, int rowsPerBlock, long rows) {
  TChannelSet set;
  set.SetCount(kChannels);
  set.SetRows(rowsPerBlock);
  TRows source;
  const auto run = [&](long count) {
    for (long i = 0; i < count; ++i) set.SetRow(source.Next(), 0, kChannels + 1);
  };
  run(80'000);  // the histories of the first minutes have their memory
  const long before = allocations;
  const double seconds = bench.Seconds(5, [&] { run(rows); });
  const long taken = allocations - before;
  const std::string what = std::to_string(rowsPerBlock) + " rows per block: ";
  bench.Row(what + "rows", rows / seconds * 1e-6, "million/s");
  bench.Row(what + "memory taken per million rows",
            static_cast<double>(taken) / (bench.Quick() ? 1.0 : 5.0) / rows * 1e6, "times");
  // The first blocks of a new hour or day may take memory for its history; rows take none.
  bench.Check(taken <= kChannels * 6L, "rows take memory");

  const TChannelStatistics* stats = set.GetChannels()->GetItem(kChannels - 1)->GetStats();
  bench.Check(stats->Get(0)->Count() == 60 && stats->Get(0)->GetMax() <= 255.0,
              "the seconds are not those of the rows");
  bench.Check(std::abs(stats->Get(0)->Get(0).Count - kRate) <= rowsPerBlock,
              "a second has not the rows of a second");
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  const long rows = bench.Quick() ? 100'000 : 2'000'000;
  for (const int rowsPerBlock : {1, 10, 100}) Measure(bench, rowsPerBlock, rows);
  return bench.Result();
}
