// How fast universal files are read: geometry and a shape, beside our own model files and beside a
// script of the kind that engineers use, and functions in binary of either byte order.

#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstring>
#include <fstream>

#include "bench/Bench.h"
#include "bench/Gridfiles.h"
#include "exchange/Assembly.h"
#include "exchange/Universal.h"

namespace {

/// A grid of shells and a mode in which its heights are the motion.
std::string MakeUniversal(int nodes) {
  const TGrid grid(nodes);
  const int side = grid.Side();
  TWriter out;
  out.Add("    -1\n  2411\n");
  int id = 0;
  grid.ForEach([&](double x, double y, double z) {
    out.Add("%10d%10d%10d%10d\n%25.16E%25.16E%25.16E\n", ++id, 0, 0, 1, x, y, z);
  });
  out.Add("    -1\n    -1\n  2412\n");
  for (int i = 0; i < (side - 1) * (side - 1); ++i) {
    const int corner = i / (side - 1) * side + i % (side - 1) + 1;
    out.Add("%10d%10d%10d%10d%10d%10d\n%10d%10d%10d%10d\n", i + 1, 44, 1, 1, 7, 4, corner,
            corner + 1, corner + side + 1, corner + side);
  }
  out.Add("    -1\n    -1\n  2414\n%10d\nmode\n%10d\nNONE\nNONE\nNONE\nNONE\nNONE\n", 1, 1);
  out.Add("%10d%10d%10d%10d%10d%10d\n", 1, 2, 2, 8, 2, 3);
  out.Add("%10d%10d%10d%10d%10d%10d%10d%10d\n%10d%10d\n", 0, 0, 0, 0, 1, 1, 0, 0, 0, 0);
  out.Add("%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E\n", 0.0, 12.5, 0.0, 0.0, 0.0, 0.0);
  out.Add("%13.5E%13.5E%13.5E%13.5E%13.5E%13.5E\n", 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  id = 0;
  grid.ForEach(
      [&](double, double, double z) { out.Add("%10d\n%13.5E%13.5E%13.5E\n", ++id, 0.0, 0.0, z); });
  out.Add("    -1\n");
  return out.Take();
}

/// A function with so many single values 0, 1, 2, ... to 1023 again and again.
std::string MakeFunction(int values, bool isBig) {
  TWriter out;
  out.Add("    -1\n    58b%6d%6d%12d%12d%6d%6d%12d%12d\n", isBig ? 2 : 1, 2, 11, 4 * values, 0, 0,
          0, 0);
  out.Add("NONE\nNONE\nNONE\nNONE\nNONE\n");
  out.Add("%5d%10d%5d%10d %-10s%10d%4d %-10s%10d%4d\n", 1, 1, 1, 1, "NONE", 1, 3, "NONE", 0, 0);
  out.Add("%10d%10d%10d%13.5E%13.5E%13.5E\n", 2, values, 1, 0.0, 0.001, 0.0);
  for (const int quantity : {17, 12, 0, 0}) {
    out.Add("%10d%5d%5d%5d %-20s %-20s\n", quantity, 0, 0, 0, "NONE", "NONE");
  }
  std::string text = out.Take();
  const std::size_t head = text.size();
  text.resize(head + 4 * static_cast<std::size_t>(values));
  for (std::size_t i = 0; i < static_cast<std::size_t>(values); ++i) {
    const auto value = static_cast<float>(i % 1024);
    char* const place = text.data() + head + 4 * i;
    std::memcpy(place, &value, 4);
    if (isBig) std::reverse(place, place + 4);
  }
  return text + "    -1\n";
}

TJob Read(TBench& bench, const std::string& text) {
  TJob job;
  TFindings findings;
  findings.BeginFile(QStringLiteral("job.unv"));
  ReadUniversal(text, job, findings);
  bench.Check(findings.ToKnow() == 0, findings.Text().toStdString());
  return job;
}

double Megabytes(const std::string& text) { return 1e-6 * static_cast<double>(text.size()); }

void MeasureGeometry(TBench& bench) {
  const int nodes = bench.Quick() ? 10'000 : 1'000'000;
  const int rounds = 5;
  TModel model;
  const std::string own = MakeModel(nodes);
  const double ownTime = bench.Seconds(
      rounds, [&] { bench.Check(model.LoadFromMemory(own).Ok(), "our own model loads"); },
      [&] { model.Clear(); });
  model.Clear();
  const std::string text = MakeUniversal(nodes);
  TJob job;
  const double time = bench.Seconds(
      rounds, [&] { job = Read(bench, text); }, [&] { job = {}; });
  const double ownRate = Megabytes(own) / ownTime;
  const double rate = Megabytes(text) / time;
  bench.Row("universal file", Megabytes(text), "MB");
  bench.Row("our own model, ready to draw", ownRate, "MB/s");
  bench.Row("2411, 2412 and 2414, read", rate, "MB/s");
  bench.Row("ratio", rate / ownRate, "times as fast");
  bench.Check(job.Nodes.size() == static_cast<std::size_t>(nodes), "every node");
  bench.Check(job.Corners.size() == 4 * job.Elements.size(), "every corner");
  bench.Check(job.Shapes.size() == 1 && job.Shapes[0].IDs.size() == job.Nodes.size(),
              "every value");
  double difference = 0.0;
  for (std::size_t i = 0; i < job.Nodes.size(); ++i) {
    difference =
        std::max(difference, std::abs(job.Nodes[i].Coordinates.z - job.Shapes[0].Real[i].z));
  }
  bench.Check(difference < 1e-5, "heights and motions agree");

  TNodeList nodeList;
  const double assembled = bench.Seconds(rounds, [&] {
    TFindings findings;
    findings.BeginJob();
    const TModelContent content = AssembleModel(Read(bench, text), &nodeList, findings);
    bench.Check(content.Nodes.Count() == job.Nodes.size(), "every node in the model");
  });
  bench.Row("the same, read and assembled to a model", Megabytes(text) / assembled, "MB/s");
  bench.Row("ratio", Megabytes(text) / assembled / ownRate, "times as fast");
}

void MeasureFunctions(TBench& bench) {
  const int values = bench.Quick() ? 100'000 : 50'000'000;
  const int rounds = 5;
  for (const bool isBig : {false, true}) {
    const std::string text = MakeFunction(values, isBig);
    std::vector<char> copied;
    const double copy = bench.Seconds(
        rounds, [&] { copied.assign(text.begin(), text.end()); },
        [&] { copied = std::vector<char>(); });
    TJob job;
    const double time = bench.Seconds(
        rounds, [&] { job = Read(bench, text); }, [&] { job = {}; });
    bench.Row(isBig ? "58b, big byte order" : "58b, little byte order",
              1e-3 * Megabytes(text) / time, "GB/s");
    bench.Row("a bare copy into fresh memory", 1e-3 * Megabytes(text) / copy, "GB/s");
    bench.Check(copied.size() == text.size() && job.Functions.size() == 1, "the function");
    const std::vector<float>& found = job.Functions.at(0).Single;
    bool right = found.size() == static_cast<std::size_t>(values);
    for (std::size_t i = 0; i < found.size(); ++i) {
      right &= found[i] == static_cast<float>(i % 1024);
    }
    bench.Check(right, "every value");
  }
}

/// Runs the script on a file; the words that it prints, none if it cannot run.
QStringList RunScript(const QString& file) {
  QProcess script;
  script.start(QStringLiteral("/usr/bin/python3"),
               {QStringLiteral(VELMORA_UNIVERSAL_SCRIPT), file});
  if (!script.waitForFinished(-1) || script.exitCode() != 0) return {};
  return QString::fromUtf8(script.readAllStandardOutput()).split(' ');
}

void MeasureScript(TBench& bench) {
  const int nodes = bench.Quick() ? 1'000 : 100'000;
  const QTemporaryDir folder;
  const QString file = folder.filePath(QStringLiteral("grid.unv"));
  const std::string text = MakeUniversal(nodes);
  std::ofstream(file.toStdString(), std::ios::binary) << text;
  TJob job;
  const double ours = bench.Seconds(
      7, [&] { job = Read(bench, text); }, [&] { job = {}; });
  const QStringList words = RunScript(file);
  if (words.size() != 5) {
    std::puts("Without python3-numpy no script was measured.");
    return;
  }
  const double script = words[0].toDouble();
  bench.Row("a file for the script, read", 1e3 * ours, "ms");
  bench.Row("the same by the script", 1e3 * script, "ms");
  bench.Row("ratio", script / ours, "times as fast");
  double places = 0.0;
  double values = 0.0;
  for (const TJobNode& node : job.Nodes) {
    places += node.Coordinates.x + node.Coordinates.y + node.Coordinates.z;
  }
  for (const TVertex& value : job.Shapes.at(0).Real) values += value.z;
  bench.Check(words[1].toULongLong() == job.Nodes.size(), "as many nodes as the script reads");
  bench.Check(words[2].toULongLong() == job.Elements.size(), "as many elements");
  bench.Check(std::abs(words[3].toDouble() - places) < 1e-6 * places, "the same places");
  bench.Check(std::abs(words[4].toDouble() - values) < 1e-6 * nodes, "the same values");
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  MeasureGeometry(bench);
  MeasureFunctions(bench);
  MeasureScript(bench);
  return bench.Result();
}
