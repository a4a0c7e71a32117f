#include "model/Nodeindex.h"

#include <algorithm>

void TNodeIndex::Build(std::span<const std::int32_t> ids) {
  *this = {};
  count_ = ids.size();
  if (count_ == 0) return;
  ascending_ = std::is_sorted(ids.begin(), ids.end());

  constexpr std::size_t kSparsest = 4;
  const auto [smallest, largest] = std::minmax_element(ids.begin(), ids.end());
  const auto span = static_cast<std::size_t>(std::int64_t{*largest} - *smallest + 1);
  if (span <= kSparsest * count_) {
    first_ = *smallest;
    table_.assign(span, -1);
    // Backwards, so that the first of several nodes with one ID stays.
    for (std::size_t i = count_; i-- > 0;) {
      table_[static_cast<std::size_t>(std::int64_t{ids[i]} - first_)] =
          static_cast<std::int32_t>(i);
    }
    return;
  }
  sorted_.reserve(count_);
  for (std::size_t i = 0; i < count_; ++i) {
    sorted_.emplace_back(ids[i], static_cast<std::int32_t>(i));
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
