#include "model/Records.h"

#include <algorithm>
#include <tuple>

TElement::TElement(std::uint8_t type, std::int32_t nodeCount)
    : Type(type), nodeCount_(nodeCount < 1 ? 2 : nodeCount) {
  if (nodeCount_ > kInside) {
    more_ = std::make_unique<std::int32_t[]>(static_cast<std::size_t>(nodeCount_));
  }
}

TVertex MaxNodeCoordinates(const TElement& element) {
  TVertex largest;
  if (!element.NodeList) return largest;
  bool first = true;
  for (const std::int32_t index : element.Nodes()) {
    if (index < 0 || static_cast<std::size_t>(index) >= element.NodeList->Count()) continue;
    const TVertex& p = element.NodeList->Get(static_cast<std::size_t>(index))->Position;
    largest = first ? p
                    : TVertex{std::max(largest.x, p.x), std::max(largest.y, p.y),
                              std::max(largest.z, p.z)};
    first = false;
  }
  return largest;
}

int CompareNodesID(const TNode* a, const TNode* b) {
  if (!a || !b || a->ID == b->ID) return 0;
  return a->ID < b->ID ? -1 : 1;
}

int CompareElements(const TElement* a, const TElement* b) {
  if (!a || !b) return 0;
  const TVertex p = MaxNodeCoordinates(*a);
  const TVertex q = MaxNodeCoordinates(*b);
  const auto left = std::tie(p.z, p.y, p.x);
  const auto right = std::tie(q.z, q.y, q.x);
  return left < right ? -1 : right < left ? 1 : 0;
}
