#include "shapes/Components.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "shapes/Phasor.h"

namespace {

constexpr std::array<double TVertex::*, 3> kCoordinates = {&TVertex::x, &TVertex::y, &TVertex::z};

/// Which nodes of a set were measured; none beyond its end.
std::vector<bool> MeasuredOf(const TDataNodeList& list, std::size_t count) {
  std::vector<bool> measured(count);
  for (std::size_t i = 0; i < std::min(count, list.Count()); ++i) {
    const bool hasRecord = list.Get(i)->Link || !list.Model;
    measured[i] = hasRecord && (i >= list.Measured.size() || list.Measured[i]);
  }
  return measured;
}

const TDataNodeList* LongestOf(const TNodesSet& sets) {
  const auto longest = std::max_element(sets.begin(), sets.end(), [](const auto* a, const auto* b) {
    return a->Count() < b->Count();
  });
  return longest == sets.end() ? nullptr : *longest;
}

std::vector<std::int32_t> IdsOf(const TNodesSet& sets) {
  std::vector<std::int32_t> ids;
  if (const TDataNodeList* list = LongestOf(sets)) {
    for (const TNode* node : *list) ids.push_back(node->ID);
  }
  return ids;
}

}  // namespace

TComponents::TComponents(const TNodesSet& sets) : lists_(sets.begin(), sets.end()) {
  const TDataNodeList* longest = LongestOf(sets);
  nodes_.resize(longest ? longest->Count() : 0);
  std::iota(nodes_.begin(), nodes_.end(), 0U);
  std::array<bool, 3> moves = {};
  std::unordered_map<std::vector<bool>, std::size_t> known;
  for (const TDataNodeList* list : lists_) {
    std::vector<bool> measured = MeasuredOf(*list, nodes_.size());
    for (std::size_t i = 0; i < list->Count(); ++i) {
      if (!measured[i]) continue;
      for (std::size_t axis = 0; axis < 3; ++axis) {
        moves[axis] = moves[axis] || list->Get(i)->Position.*kCoordinates[axis] != 0.0;
      }
    }
    const auto [pattern, isNew] = known.try_emplace(std::move(measured), known.size());
    if (isNew) patterns_.push_back(pattern->first);
    patternOf_.push_back(pattern->second);
  }
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (moves[axis]) axes_.push_back(kCoordinates[axis]);
  }
}

std::pair<TComponents, TComponents> TComponents::Common(const TNodesSet& a, const TNodesSet& b) {
  if (&a == &b) {
    const TComponents one(a);
    return {one, one};
  }
  TComponents first(a);
  TComponents second(b);
  const std::vector<std::int32_t> ids = IdsOf(a);
  TNodeIndex indexA;
  TNodeIndex indexB;
  indexA.Build(ids);
  indexB.Build(IdsOf(b));
  first.nodes_.clear();
  second.nodes_.clear();
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const std::ptrdiff_t there = indexB.Find(ids[i]);
    if (there < 0 || indexA.Find(ids[i]) != static_cast<std::ptrdiff_t>(i)) continue;
    first.nodes_.push_back(i);
    second.nodes_.push_back(static_cast<std::size_t>(there));
  }
  std::erase_if(first.axes_, [&other = second.axes_](TCoordinate axis) {
    return std::find(other.begin(), other.end(), axis) == other.end();
  });
  second.axes_ = first.axes_;
  return {std::move(first), std::move(second)};
}

void TComponents::Read(std::size_t set, std::size_t first, std::size_t count, double* real,
                       double* imaginary) const {
  const TDataNodeList& list = *lists_[set];
  const std::vector<bool>& measured = patterns_[patternOf_[set]];
  for (std::size_t i = first; i < first + count; ++i) {
    const bool isMeasured = measured[nodes_[i]];
    for (const TCoordinate axis : axes_) {
      std::complex<double> value;
      if (isMeasured) {
        const TNode& node = *list.Get(nodes_[i]);
        value = Phasor(node.Position.*axis, node.Angles.*axis);
      }
      *real++ = value.real();
      *imaginary++ = value.imag();
    }
  }
}

TPhasors TComponents::Read(std::size_t set) const {
  TPhasors phasors;
  phasors.Real.resize(NodeCount() * PerNode());
  phasors.Imaginary.resize(phasors.Real.size());
  Read(set, 0, NodeCount(), phasors.Real.data(), phasors.Imaginary.data());
  return phasors;
}

QString WhyNoShape(double sumOfSquares) {
  if (!std::isfinite(sumOfSquares)) {
    return QStringLiteral("it holds a value that is no finite number");
  }
  return sumOfSquares > 0.0 ? QString() : QStringLiteral("it does not move");
}
