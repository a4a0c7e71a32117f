#pragma once

#include <QString>
#include <cstddef>
#include <utility>
#include <vector>

#include "model/Animmodel.h"

/// The complex components of one data set, node by node, each along x, y and z as far as measured.
struct TPhasors {
  std::vector<double> Real;
  std::vector<double> Imaginary;
};

/// What takes part when shapes are compared: of the data sets of one file certain nodes, along the
/// axes that were measured. A view: the sets are not owned and stay as they are while it is used.
///
/// An axis counts as measured if a node moves along it in any set. A node was not measured in a set
/// that says so, nor in one that has no record of it: there it is linked to no node of the model.
/// What was not measured reads as 0.
class TComponents {
 public:
  /// Over all nodes.
  explicit TComponents(const TNodesSet& sets);
  /// Two files over the nodes and axes that both have, in one order. Nodes belong together by
  /// their numbers, whether of one model or of two; of several with one number the first.
  static std::pair<TComponents, TComponents> Common(const TNodesSet& a, const TNodesSet& b);

  std::size_t SetCount() const { return lists_.size(); }
  const TDataNodeList& Set(std::size_t set) const { return *lists_[set]; }
  std::size_t NodeCount() const { return nodes_.size(); }
  std::size_t PerNode() const { return axes_.size(); }

  /// Sets in which the same nodes were measured have one pattern.
  std::size_t PatternCount() const { return patterns_.size(); }
  std::size_t PatternOf(std::size_t set) const { return patternOf_[set]; }
  bool IsMeasured(std::size_t pattern, std::size_t node) const {
    return patterns_[pattern][nodes_[node]];
  }

  /// Writes the components of `count` nodes of a set from `first` on, PerNode() each.
  void Read(std::size_t set, std::size_t first, std::size_t count, double* real,
            double* imaginary) const;
  TPhasors Read(std::size_t set) const;

 private:
  using TCoordinate = double TVertex::*;

  std::vector<const TDataNodeList*> lists_;
  std::vector<std::size_t> nodes_;  ///< indices in the lists
  std::vector<TCoordinate> axes_;
  std::vector<std::vector<bool>> patterns_;  ///< per node of the lists: whether it was measured
  std::vector<std::size_t> patternOf_;       ///< per set
};

/// Why a shape whose components have this sum of squares compares with nothing; empty if it does.
QString WhyNoShape(double sumOfSquares);
