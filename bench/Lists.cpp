#include <algorithm>
#include <cmath>
#include <string>

#include "bench/Bench.h"
#include "components/graphing/Utilclasses.h"
#include "components/links/Binlist.h"
#include "components/links/Objlists.h"

// What a sample costs on its way into the lists, and a number on its way to a label.

namespace {

constexpr double kNano = 1e9;

void PushIntoFullList(TBench& bench, int rows) {
  TFloatList list;
  list.SetMaxCount(rows);
  for (int row = 0; row < rows; ++row) list.PushBack(0.0);
  const int pushes = bench.Quick() ? 1000 : 2'000'000;
  double next = 0.0;
  const double back = bench.Seconds(7, [&] {
    for (int push = 0; push < pushes; ++push) list.PushBack(next++);
  });
  bench.Row("PushBack, full list of " + std::to_string(rows), back / pushes * kNano, "ns");
  bench.Check(list.GetValues(rows - 1, 1) == next - 1.0, "the newest row is the last");
  bench.Check(list.GetValues(0, 1) == std::max(0.0, next - rows), "the oldest row is the first");

  const double front = bench.Seconds(7, [&] {
    for (int push = 0; push < pushes; ++push) list.Push(next++);
  });
  bench.Row("Push, full list of " + std::to_string(rows), front / pushes * kNano, "ns");
  bench.Check(list.GetValues(0, 1) == next - 1.0, "the newest row is the first");
  bench.Check(list.Count() == rows && list.Capacity() == rows, "the list does not grow");
}

void ReadAndSave(TBench& bench) {
  TFloatList list;
  list.SetMaxCount(TDataList::kLimit);
  for (int row = 0; row < TDataList::kLimit + 100; ++row) list.PushBack(std::sin(row * 0.37));

  double sum = 0.0;
  const double pull = bench.Seconds(7, [&] {
    TCoordinate point, extent;
    for (int index = 0; list.ProvideGraphData(index, point, extent);) sum += point.Y;
  });
  bench.Row("pull 65,536 points for a graph", pull * 1e3, "ms");
  bench.Check(std::abs(sum) < 1e6 && sum != 0.0, "the points are the rows");

  double range = 0.0;
  const double extremes = bench.Seconds(7, [&] { range = list.Max() - list.Min(); });
  bench.Row("Max and Min of 65,536 rows", extremes * 1e3, "ms");
  bench.Check(std::abs(range - 2.0) < 1e-6, "a sine spans from -1 to 1");

  QString text;
  bench.Row("write 65,536 rows", bench.Seconds(5, [&] { text = list.WriteProperties(); }) * 1e3,
            "ms");
  TFloatList copy;
  bool read = false;
  bench.Row("read 65,536 rows",
            bench.Seconds(
                5, [&] { read = copy.ReadProperties(text); }, [&] { copy.Clear(); }) *
                1e3,
            "ms");
  copy.SetMaxCount(TDataList::kLimit);
  bench.Check(read && copy.SameAs(&list), "what is read is what was written");

  list.Compare = TDataList::CompareValues;
  bench.Row("sort 65,536 rows", bench.Seconds(1, [&] { list.SortBy(1); }) * 1e3, "ms");
  bench.Check(list.GetValues(0, 1) == copy.Min(), "the smallest comes first");
}

void CountIntoBins(TBench& bench) {
  TBinList bins;
  bins.SetStep(0.01);
  const int values = bench.Quick() ? 1000 : 1'000'000;
  int rounds = 0;
  const double seconds = bench.Seconds(
      7,
      [&] {
        for (int value = 0; value < values; ++value) bins.AddValues(1.0, std::sin(value * 0.37));
      },
      [&] { ++rounds; });
  bench.Row("AddValues, 200 bins (sine included)", seconds / values * kNano, "ns");
  bench.Check(bins.GetCycleCount() == static_cast<double>(values) * rounds, "every value counts");
  bench.Check(bins.Count() <= 201, "the bins span from -1 to 1");
}

void Format(TBench& bench) {
  const struct {
    const char* what;
    TNumberFormat::TFloatFormat way;
    bool isTime;
    const char *pattern, *text;
  } cases[] = {
      {"general", TNumberFormat::ffGeneral, false, "", "36526"},
      {"exponent", TNumberFormat::ffExponent, false, "", "3.6526E+04"},
      {"number", TNumberFormat::ffNumber, false, "", nullptr},
      {"date and time", TNumberFormat::ffGeneral, true, "yyyy'-'mm'-'dd hh'.'nn'.'ss'.'zzz",
       "2000-01-01 06.00.00.000"},
  };
  const int texts = bench.Quick() ? 100 : 100'000;
  for (const auto& c : cases) {
    TNumberFormat format;
    format.SetFormat(c.way);
    format.SetIsTimeFormat(c.isTime);
    format.SetTimeFormatStr(c.pattern);
    QString text;
    const double seconds = bench.Seconds(7, [&] {
      for (int i = 0; i < texts; ++i) text = format.FormatedValue(36526.25);
    });
    bench.Row(std::string("FormatedValue, ") + c.what, seconds / texts * kNano, "ns");
    bench.Check(!c.text || text == c.text, c.what);
  }
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  for (const int rows : {100, TDataList::kLimit}) PushIntoFullList(bench, rows);
  ReadAndSave(bench);
  CountIntoBins(bench);
  Format(bench);
  return bench.Result();
}
