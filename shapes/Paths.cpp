#include "shapes/Paths.h"

#include <queue>
#include <tuple>

namespace {

/// Calls `take` with both ends of each bar and of each edge of a face.
template <class TTake>
void ForEachEdge(const TModel& model, TTake take) {
  const auto count = static_cast<std::int32_t>(model.Nodes.Count());
  const auto join = [&](std::int32_t a, std::int32_t b) {
    if (a != b && a >= 0 && b >= 0 && a < count && b < count) take(a, b);
  };
  for (const TElement* element : model.Elements) {
    const auto nodes = element->Nodes();
    const bool isFace = element->Type == TElement::kFace;
    if (!isFace && element->Type != TElement::kBar && element->Type != TElement::kRoll) continue;
    for (std::size_t i = 1; i < nodes.size(); ++i) join(nodes[i - 1], nodes[i]);
    if (isFace) join(nodes.back(), nodes.front());
  }
}

}  // namespace

TPaths::TPaths(const TModel& model) : first_(model.Nodes.Count() + 1) {
  const auto at = [](std::int32_t node) { return static_cast<std::size_t>(node); };
  ForEachEdge(model, [&](std::int32_t a, std::int32_t b) {
    ++first_[at(a)];
    ++first_[at(b)];
  });
  std::size_t sum = 0;
  for (std::size_t& first : first_) first = sum += first;
  ways_.resize(sum);
  // Filled backwards, each first entry ends where it belongs.
  ForEachEdge(model, [&](std::int32_t a, std::int32_t b) {
    const double length =
        Length(model.Nodes.Get(at(a))->Position, model.Nodes.Get(at(b))->Position);
    ways_[--first_[at(a)]] = {b, length};
    ways_[--first_[at(b)]] = {a, length};
  });
}

std::span<const TPaths::TWay> TPaths::WaysFrom(std::int32_t node) const {
  const auto place = static_cast<std::size_t>(node);
  return std::span(ways_).subspan(first_[place], first_[place + 1] - first_[place]);
}

std::vector<TNearest> TPaths::NearestOf(const std::vector<bool>& wanted) const {
  std::vector<TNearest> nearest(wanted.size());
  using TStep = std::tuple<double, std::int32_t, std::int32_t>;  // distance, node, from which one
  std::priority_queue<TStep, std::vector<TStep>, std::greater<>> steps;
  const auto reach = [&](double distance, std::int32_t node, std::int32_t source) {
    if (nearest[static_cast<std::size_t>(node)].Insert(source, distance)) {
      steps.emplace(distance, node, source);
    }
  };
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const auto node = static_cast<std::int32_t>(i);
    if (wanted[i]) reach(0.0, node, node);
  }
  while (!steps.empty()) {
    const TStep step = steps.top();
    steps.pop();
    const double distance = std::get<0>(step);
    const std::int32_t node = std::get<1>(step);
    const std::int32_t source = std::get<2>(step);
    // Nearer ones may have come since.
    if (!nearest[static_cast<std::size_t>(node)].Holds(source, distance)) continue;
    for (const TWay& way : WaysFrom(node)) reach(distance + way.length, way.node, source);
  }
  return nearest;
}
