#pragma once

#include <cstdint>
#include <vector>

#include "model/Vertex.h"
#include "shapes/Nearest.h"

/// Finds the nearest of some points. It halves them by their coordinates in turn, so that building
/// it takes n log n time and a search looks at few of them.
class TPointTree {
 public:
  struct TPoint {
    TVertex Place;
    std::int32_t Node;
  };
  explicit TPointTree(std::vector<TPoint> points);

  TNearest NearestTo(const TVertex& place) const;

 private:
  void Sort(std::size_t from, std::size_t to, int axis);
  void Search(std::size_t from, std::size_t to, int axis, const TVertex& place,
              TNearest& nearest) const;

  std::vector<TPoint> points_;  ///< the middle one of a range divides it
};
