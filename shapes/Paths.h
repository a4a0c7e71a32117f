#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/Animmodel.h"
#include "shapes/Nearest.h"

/// The bars and rolls of a model and the edges of its faces as ways between its nodes.
class TPaths {
 public:
  explicit TPaths(const TModel& model);

  /// For each node the nearest of some nodes, by the length of the shortest path. Nodes that no
  /// path joins to one of them have none. Takes n log n time.
  std::vector<TNearest> NearestOf(const std::vector<bool>& wanted) const;

 private:
  struct TWay {
    std::int32_t node;
    double length;
  };

  std::span<const TWay> WaysFrom(std::int32_t node) const;

  std::vector<std::size_t> first_;  ///< per node: its first entry in ways_; one more at the end
  std::vector<TWay> ways_;
};
