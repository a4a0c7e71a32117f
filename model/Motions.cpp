#include "model/Motions.h"

#include <algorithm>
#include <cmath>

namespace {

/// The coordinates of many vertices as one row of numbers, which the compiler takes several at a
/// time.
std::span<const double> Row(const std::vector<TVertex>& vertices) {
  static_assert(sizeof(TVertex) == 3 * sizeof(double));
  return {&vertices.data()->x, 3 * vertices.size()};
}

/// A vertex of a function of each angle and the amplitude.
template <class TFunction>
TVertex Split(const TNode& node, TFunction f) {
  const TVertex& a = node.Position;
  return {a.x * f(node.Angles.x), a.y * f(node.Angles.y), a.z * f(node.Angles.z)};
}

}  // namespace

void TMotions::Build(const TNodeList& nodes) {
  Clear();
  const bool angles = std::any_of(nodes.begin(), nodes.end(),
                                  [](const TNode* node) { return node->Angles != TVertex{}; });
  inPhase_.reserve(nodes.Count());
  rest_.reserve(nodes.Count());
  if (angles) quadrature_.reserve(nodes.Count());
  for (std::size_t i = 0; i < nodes.Count(); ++i) {
    const TNode& node = *nodes.Get(i);
    const bool turned = node.Angles != TVertex{};
    inPhase_.push_back(turned ? Split(node, [](double x) { return std::cos(x); }) : node.Position);
    if (angles) {
      quadrature_.push_back(turned ? Split(node, [](double x) { return std::sin(x); }) : TVertex{});
    }
    rest_.push_back(node.Link ? node.Link->Position : TVertex{});
    if (!node.Link) unlinked_.push_back({i, node.Position});
  }
}

void TMotions::AddTo(std::span<TVertex> sums, std::size_t first, double w) const {
  if (first >= Count()) return;
  const std::size_t count = 3 * std::min(sums.size(), Count() - first);
  double* const sum = &sums.data()->x;
  const double* const a = Row(inPhase_).data() + 3 * first;
  const double c = std::cos(w);
  if (quadrature_.empty()) {
    for (std::size_t i = 0; i < count; ++i) sum[i] += a[i] * c;
    return;
  }
  const double* const q = Row(quadrature_).data() + 3 * first;
  const double s = std::sin(w);
  for (std::size_t i = 0; i < count; ++i) sum[i] += a[i] * c - q[i] * s;
}

void TMotions::Place(std::span<TVertex> positions, double phase, double drawScale) const {
  const std::size_t count = 3 * Count();
  if (count == 0) return;
  double* const p = &positions.data()->x;
  const double* const a = Row(inPhase_).data();
  const double* const rest = Row(rest_).data();
  const double c = std::cos(phase);
  if (quadrature_.empty()) {
    for (std::size_t i = 0; i < count; ++i) p[i] = a[i] * c * drawScale + rest[i];
  } else {
    const double* const q = Row(quadrature_).data();
    const double s = std::sin(phase);
    for (std::size_t i = 0; i < count; ++i) p[i] = (a[i] * c - q[i] * s) * drawScale + rest[i];
  }
  for (const TUnlinked& node : unlinked_) positions[node.index] = node.position * drawScale;
}

TVertex Displacement(const TNode& node, double w) {
  return Split(node, [w](double angle) { return std::cos(w + angle); });
}

TVertex ScaleComplexNode(const TNode& node, double phase, double drawScale) {
  if (!node.Link) return node.Position * drawScale;
  return Displacement(node, phase) * drawScale + node.Link->Position;
}
