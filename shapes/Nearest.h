#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

/// The nearest of some nodes, up to kMost different ones, the nearest first.
class TNearest {
 public:
  static constexpr std::size_t kMost = 4;

  struct TEntry {
    double Distance = std::numeric_limits<double>::infinity();
    std::int32_t Node = -1;  ///< -1: none
  };

  /// Takes a node in unless it is there at no larger distance, or as many are nearer as there is
  /// room for. Returns whether it was taken in.
  bool Insert(std::int32_t node, double distance) {
    std::size_t at = 0;
    while (at < kMost && entries_[at].Distance <= distance) {
      if (entries_[at].Node == node) return false;
      ++at;
    }
    if (at == kMost) return false;
    std::size_t last = at;
    while (last + 1 < kMost && entries_[last].Node != node) ++last;
    for (; last > at; --last) entries_[last] = entries_[last - 1];
    entries_[at] = {distance, node};
    return true;
  }

  /// Whether a node is there at this distance.
  bool Holds(std::int32_t node, double distance) const {
    for (const TEntry& entry : entries_) {
      if (entry.Node == node) return entry.Distance == distance;
    }
    return false;
  }

  bool Empty() const { return entries_[0].Node < 0; }
  /// The distance that a node must not exceed to be taken in.
  double Reach() const { return entries_.back().Distance; }
  const std::array<TEntry, kMost>& Entries() const { return entries_; }

 private:
  std::array<TEntry, kMost> entries_;
};
