#include "shapes/Pointtree.h"

#include <algorithm>
#include <utility>

namespace {

double Coordinate(const TVertex& v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

constexpr int NextAxis(int axis) { return (axis + 1) % 3; }

}  // namespace

TPointTree::TPointTree(std::vector<TPoint> points) : points_(std::move(points)) {
  Sort(0, points_.size(), 0);
}

void TPointTree::Sort(std::size_t from, std::size_t to, int axis) {
  if (to - from < 2) return;
  const auto at = [this](std::size_t i) {
    return points_.begin() + static_cast<std::ptrdiff_t>(i);
  };
  const std::size_t middle = from + (to - from) / 2;
  std::nth_element(at(from), at(middle), at(to), [axis](const TPoint& a, const TPoint& b) {
    return Coordinate(a.Place, axis) < Coordinate(b.Place, axis);
  });
  Sort(from, middle, NextAxis(axis));
  Sort(middle + 1, to, NextAxis(axis));
}

TNearest TPointTree::NearestTo(const TVertex& place) const {
  TNearest nearest;
  Search(0, points_.size(), 0, place, nearest);
  return nearest;
}

void TPointTree::Search(std::size_t from, std::size_t to, int axis, const TVertex& place,
                        TNearest& nearest) const {
  if (from >= to) return;
  const std::size_t middle = from + (to - from) / 2;
  const TPoint& point = points_[middle];
  nearest.Insert(point.Node, Length(place, point.Place));
  const double across = Coordinate(place, axis) - Coordinate(point.Place, axis);
  const auto search = [&](bool low) {
    low ? Search(from, middle, NextAxis(axis), place, nearest)
        : Search(middle + 1, to, NextAxis(axis), place, nearest);
  };
  search(across < 0.0);
  if (std::abs(across) < nearest.Reach()) search(across >= 0.0);
}
