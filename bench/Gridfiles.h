#pragma once

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <utility>

/// Collects formatted text.
class TWriter {
 public:
  void Add(const char* format, auto... values) {
    char line[256];
    const int length = std::snprintf(line, sizeof line, format, values...);
    text_.append(line, static_cast<std::size_t>(length));
  }
  std::string Take() { return std::move(text_); }

 private:
  std::string text_;
};

/// The nodes of a square grid, row by row.
class TGrid {
 public:
  explicit TGrid(int nodes) : side_(static_cast<int>(std::sqrt(nodes))), nodes_(nodes) {}

  int Side() const { return side_; }

  /// Calls take(x, y, z) for each node; heights are random and always the same.
  template <class TTake>
  void ForEach(TTake take) const {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> height(-1.0, 1.0);
    for (int i = 0; i < nodes_; ++i) {
      const int row = i / side_;
      take(0.001 * (i % side_), 0.001 * row, height(random));
    }
  }

 private:
  int side_;
  int nodes_;
};

/// A model file without elements: reading nodes is what is measured.
inline std::string MakeModel(int nodes) {
  TWriter out;
  out.Add("[Options]\nNodeRadius=0.01\nElementRadius=0.005\n[Nodes]\n");
  int id = 0;
  TGrid(nodes).ForEach(
      [&](double x, double y, double z) { out.Add("%d %.7f %.7f %.8f\n", ++id, x, y, z); });
  return out.Take();
}
