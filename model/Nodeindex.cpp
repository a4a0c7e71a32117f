#include "model/Nodeindex.h"

#include <algorithm>

void TNodeIndex::Build(const TNodeList& nodes) {
  *this = {};
  count_ = nodes.Count();
  if (count_ == 0) return;

  std::int32_t smallest = nodes.Get(0)->ID;
  std::int32_t largest = smallest;
  std::int32_t previous = smallest;
  for (const TNode* node : nodes) {
    ascending_ &= previous <= node->ID;
    previous = node->ID;
    smallest = std::min(smallest, node->ID);
    largest = std::max(largest, node->ID);
  }

  constexpr std::size_t kSparsest = 4;
  const auto span = static_cast<std::size_t>(std::int64_t{largest} - smallest + 1);
  if (span <= kSparsest * count_) {
    first_ = smallest;
    table_.assign(span, -1);
    // Backwards, so that the first of several nodes with one ID stays.
    for (std::size_t i = count_; i-- > 0;) {
      table_[static_cast<std::size_t>(std::int64_t{nodes.Get(i)->ID} - first_)] =
          static_cast<std::int32_t>(i);
    }
    return;
  }
  sorted_.reserve(count_);
  for (std::size_t i = 0; i < count_; ++i) {
    sorted_.emplace_back(nodes.Get(i)->ID, static_cast<std::int32_t>(i));
  }
  if (!ascending_) std::sort(sorted_.begin(), sorted_.end());
}

std::ptrdiff_t TNodeIndex::Find(std::int32_t id) const {
  if (!table_.empty()) {
    const std::int64_t entry = std::int64_t{id} - first_;
    const bool inside = entry >= 0 && entry < static_cast<std::int64_t>(table_.size());
    return inside ? table_[static_cast<std::size_t>(entry)] : -1;
  }
  const auto place = std::lower_bound(sorted_.begin(), sorted_.end(), std::pair{id, 0});
  return place != sorted_.end() && place->first == id ? place->second : -1;
}
