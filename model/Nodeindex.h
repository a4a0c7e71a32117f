#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// Finds the nodes of a list by their ID: by a table where the IDs lie close together, else by
/// halving. It knows the list as it was when it was built.
class TNodeIndex {
 public:
  /// From the IDs of all nodes in list order.
  void Build(std::span<const std::int32_t> ids);

  /// Index of the first node with this ID, or -1.
  std::ptrdiff_t Find(std::int32_t id) const;

  /// Number of nodes in the list when the index was built.
  std::size_t Count() const { return count_; }
  /// Whether no node has a smaller ID than the one before it.
  bool Ascending() const { return ascending_; }

 private:
  std::size_t count_ = 0;
  bool ascending_ = true;
  std::int32_t first_ = 0;                                     ///< ID of the table's first entry
  std::vector<std::int32_t> table_;                            ///< index per ID, -1 for none
  std::vector<std::pair<std::int32_t, std::int32_t>> sorted_;  ///< ID, index
};
