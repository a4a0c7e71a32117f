#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "model/Records.h"

/// The motions of all nodes of a list, made ready for frames: every amplitude is split by its phase
/// angle, a cos(w + angle) = (a cos angle) cos w - (a sin angle) sin w, so that a frame needs one
/// cosine and one sine for the whole list. Where the angles are 0 the result is a cos w to the last
/// bit. It is a copy: it knows the nodes as they were when it was built.
class TMotions {
 public:
  static constexpr std::size_t kBytesPerNode = 3 * sizeof(TVertex);

  void Build(const TNodeList& nodes);
  void Clear() { *this = {}; }

  /// 0 unless built.
  std::size_t Count() const { return inPhase_.size(); }

  /// Adds the displacements at phase `w` (radians) of the nodes from `first` on to `sums`, as far
  /// as both reach.
  void AddTo(std::span<TVertex> sums, std::size_t first, double w) const;

  /// Where the nodes are at `phase`, as ScaleComplexNode places each. `positions` has Count()
  /// entries.
  void Place(std::span<TVertex> positions, double phase, double drawScale) const;

 private:
  struct TUnlinked {
    std::size_t index;
    TVertex position;
  };
  std::vector<TVertex> inPhase_;     ///< amplitude x cos(angle)
  std::vector<TVertex> quadrature_;  ///< amplitude x sin(angle); empty if no angle differs from 0
  std::vector<TVertex> rest_;        ///< position of the linked model node
  std::vector<TUnlinked> unlinked_;  ///< nodes that do not move
};

/// a cos(w + angle) per axis for one node.
TVertex Displacement(const TNode& node, double w);

/// Where a list places a node: scale x position, times the cosine of phase plus angle per axis and
/// moved to the linked model node, if there is one.
TVertex ScaleComplexNode(const TNode& node, double phase, double drawScale);
