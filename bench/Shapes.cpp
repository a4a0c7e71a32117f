// How long it takes to compare 200 data sets of 10,000 nodes with themselves and with those of
// another file, to tell how complex they are, and to find all orbits of one. All sets are waves
// whose products are known.

#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <numbers>
#include <optional>
#include <string>

#include "bench/Bench.h"
#include "shapes/Complexity.h"
#include "shapes/Mac.h"
#include "shapes/Orbits.h"

namespace {

/// Waves around a ring: each set has one more of them. Along x and y they stand, along z they run,
/// so that two different sets are orthogonal.
struct TRing {
  TRing(int sets, int nodes) {
    for (int i = 0; i < nodes; ++i) Rest.Emplace(i + 1, TVertex{});
    for (int wave = 1; wave <= sets; ++wave) {
      auto list = std::make_unique<TDataNodeList>(nullptr, false);
      list->Frequency = wave;
      for (int i = 0; i < nodes; ++i) {
        const double angle = 2.0 * std::numbers::pi * wave * i / nodes;
        TNode* node = list->Emplace(i + 1, std::cos(angle), std::sin(angle), 1.0);
        node->Link = Rest.Get(static_cast<std::size_t>(i));
        node->Angles = {0.5, 0.5, std::remainder(angle, 2.0 * std::numbers::pi)};
      }
      Sets.Add(std::move(list));
    }
  }
  TNodeList Rest;
  TNodesSet Sets;
};

void CheckMatrix(TBench& bench, const TMac& mac) {
  double error = 0.0;
  for (std::size_t row = 0; row < mac.RowCount(); ++row) {
    for (std::size_t column = 0; column < mac.ColumnCount(); ++column) {
      const double expected = row == column ? 1.0 : 0.0;
      error = std::max(error, std::abs(mac.Value(row, column).value_or(2.0) - expected));
    }
  }
  bench.Check(error < 1e-9, "the matrix");
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  const int sets = bench.Quick() ? 21 : 200;
  const int nodes = bench.Quick() ? 1000 : 10'000;
  const TRing ring(sets, nodes);
  const TRing other(sets, nodes);
  const std::string size = std::to_string(sets) + " sets of " + std::to_string(nodes) + " nodes";
  for (const TNodesSet* columns : {&ring.Sets, &other.Sets}) {
    std::optional<TMac> mac;
    QString fault;
    const double seconds = bench.Seconds(3, [&] {
      mac.emplace(ring.Sets, *columns);
      fault = mac->Compute();
    });
    bench.Row(size + (columns == &ring.Sets ? ", MAC" : ", MAC with another file"), seconds, "s");
    bench.Check(fault.isEmpty(), fault.toStdString());
    CheckMatrix(bench, *mac);
  }

  const TComponents components(ring.Sets);
  double mpc = 0.0;
  const double complexity = bench.Seconds(5, [&] {
    for (std::size_t set = 0; set < components.SetCount(); ++set) {
      mpc = ComplexityOf(components.Read(set))->Mpc;
    }
  });
  bench.Row(size + ", MPC and MPD", complexity, "s");
  // Half of the squares stand, half of them run.
  bench.Check(std::abs(mpc - 0.25) < 1e-9, "MPC");

  double largest = 0.0;
  const double orbits = bench.Seconds(25, [&] {
    largest = 0.0;
    for (const TOrbit& orbit : OrbitsOf(*ring.Sets.Get(0))) {
      largest = std::max(largest, orbit.Amplitude());
    }
  });
  bench.Row("orbits of " + std::to_string(nodes) + " nodes", 1e3 * orbits, "ms");
  // Where z moves with x and y: along a line, across the diagonal of a square.
  bench.Check(std::abs(largest - std::numbers::sqrt2) < 1e-4, "orbits");
  return bench.Result();
}
