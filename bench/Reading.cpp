#include <QTemporaryDir>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>

#include "bench/Bench.h"
#include "bench/Gridfiles.h"
#include "model/Animmodel.h"

#ifdef __linux__
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

std::string MakeData(int sections, int records) {
  TWriter out;
  std::mt19937 random(2);
  std::uniform_real_distribution<double> amplitude(-1.0, 1.0);
  for (int s = 0; s < sections; ++s) {
    out.Add("[F = %g]\n", 0.5 * (s + 1));
    for (int i = 0; i < records; ++i) {
      out.Add("%d %.7f %.7f %.8f\n", i + 1, amplitude(random), amplitude(random),
              amplitude(random));
    }
  }
  return out.Take();
}

/// What an engineer's own program would do: records one after the other into an array.
std::size_t ReadWithFscanf(const QString& name, double& sum) {
  struct TRecord {
    int id;
    double x, y, z;
  };
  std::vector<TRecord> records;
  std::FILE* file = std::fopen(qPrintable(name), "r");
  char line[256];
  while (std::fgets(line, sizeof line, file) && std::strcmp(line, "[Nodes]\n") != 0) {
  }
  TRecord r;
  while (std::fscanf(file, "%d%lf%lf%lf\n", &r.id, &r.x, &r.y, &r.z) == 4) records.push_back(r);
  std::fclose(file);
  sum = 0.0;
  for (const TRecord& record : records) sum += record.z;
  return records.size();
}

/// Memory of this process in bytes; 0 where there is no cheap way to ask.
std::size_t MemoryNow() {
#ifdef __linux__
  std::ifstream in("/proc/self/statm");
  std::size_t pages = 0, resident = 0;
  in >> pages >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
#else
  return 0;
#endif
}

/// The most memory this process ever had.
std::size_t MemoryPeak() {
#ifdef __linux__
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
#else
  return 0;
#endif
}

QString WriteFile(const QTemporaryDir& folder, const char* name, const std::string& text) {
  const QString path = folder.filePath(name);
  std::ofstream(path.toStdString(), std::ios::binary) << text;
  return path;
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  const int nodes = bench.Quick() ? 20'000 : 1'000'000;
  const int sections = bench.Quick() ? 20 : 1'000;
  const int records = 1'000;
  const int rounds = 7;
  const QTemporaryDir folder;

  std::size_t modelBytes = 0;
  QString modelFile;
  {
    const std::string text = MakeModel(nodes);
    modelBytes = text.size();
    modelFile = WriteFile(folder, "grid.mod", text);
  }
  // First of all, while no freed memory of an earlier run can be used again.
  TModel model;
  const std::size_t before = MemoryNow();
  bench.Check(model.LoadFromFile(modelFile).Ok(), "the model loads without a fault");
  const auto perNode = [&](std::size_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(nodes);
  };
  bench.Row("model file", static_cast<double>(modelBytes) / 1e6, "MB");
  if (before > 0) {
    const double kept = perNode(MemoryNow() - before);
    const double atMost = perNode(MemoryPeak() - before - modelBytes);
    bench.Row("memory kept per node", kept, "bytes");
    bench.Row("memory at most per node, beyond the file", atMost, "bytes");
    // A small model is smaller than the pages that it lies in.
    bench.Check(bench.Quick() || (kept <= 200 && atMost <= 200), "200 bytes per node suffice");
  }

  double plainSum = 0.0;
  std::size_t plainCount = 0;
  const double plain =
      bench.Seconds(rounds, [&] { plainCount = ReadWithFscanf(modelFile, plainSum); });
  const double ours = bench.Seconds(
      rounds, [&] { bench.Check(model.LoadFromFile(modelFile).Ok(), "the model loads again"); },
      [&] { model.Clear(); });
  bench.Row("model by a bare loop of fscanf", 1e3 * plain, "ms");
  bench.Row("model, ready to draw", 1e3 * ours, "ms");
  bench.Row("ratio", plain / ours, "times as fast");
  const double modelRate = static_cast<double>(modelBytes) / ours / 1e6;
  bench.Row("rate", modelRate, "MB/s");

  double sum = 0.0;
  for (const TNode* node : model.Nodes) sum += node->Position.z;
  bench.Check(model.Nodes.Count() == plainCount, "as many nodes as fscanf reads");
  // The model is centred: its heights have lost their middle, nothing else.
  const double shift = (plainSum - sum) / nodes;
  bench.Check(std::abs(shift) < 0.01 && model.Display.Count() == plainCount, "the same heights");

  TModel plate;
  bench.Check(plate.LoadFromMemory(MakeModel(records)).Ok(), "the small model loads");
  const std::string data = MakeData(sections, records);
  const QString dataFile = WriteFile(folder, "grid.dat", data);
  TMeasuredData measured;
  const double dataTime = bench.Seconds(
      rounds, [&] { bench.Check(measured.LoadFromFile(dataFile, plate).Ok(), "the data load"); },
      [&] { measured.Clear(); });
  bench.Row("data file", static_cast<double>(data.size()) / 1e6, "MB");
  bench.Row("data sets, ready to draw", 1e3 * dataTime, "ms");
  const double dataRate = static_cast<double>(data.size()) / dataTime / 1e6;
  bench.Row("rate", dataRate, "MB/s");
  bench.Row("rate compared with the model's", dataRate / modelRate, "times");
  bench.Check(measured.All.Count() == static_cast<std::size_t>(sections), "every section");
  bench.Check(measured.All.Get(measured.All.Count() - 1)->Frequency == 0.5 * sections,
              "the last frequency");
  return bench.Result();
}
