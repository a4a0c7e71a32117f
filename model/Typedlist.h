#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

/// Storage for the records of a TTypedList: each record by itself on the heap, so that records of
/// derived classes can stand in one list.
template <class T>
class TOneByOne {
 public:
  template <class... Args>
  T* Make(Args&&... args) {
    return new T(std::forward<Args>(args)...);
  }
  void Free(T* record) { delete record; }
};

/// Storage for many small records: they lie side by side in blocks that never move, so a pointer
/// to a record holds as long as the record. A freed place is used again.
template <class T>
class TInBlocks {
 public:
  TInBlocks() = default;
  TInBlocks(TInBlocks&& other) noexcept
      : blocks_(std::move(other.blocks_)),
        free_(std::move(other.free_)),
        used_(std::exchange(other.used_, kBlock)) {}
  TInBlocks& operator=(TInBlocks&& other) noexcept {
    blocks_ = std::move(other.blocks_);
    free_ = std::move(other.free_);
    used_ = std::exchange(other.used_, kBlock);
    return *this;
  }

  template <class... Args>
  T* Make(Args&&... args) {
    if (!free_.empty()) {
      T* record = new (free_.back()) T(std::forward<Args>(args)...);
      free_.pop_back();
      return record;
    }
    if (used_ == kBlock) {
      blocks_.push_back(std::make_unique_for_overwrite<TPlace[]>(kBlock));
      used_ = 0;
    }
    T* record = new (&blocks_.back()[used_]) T(std::forward<Args>(args)...);
    ++used_;
    return record;
  }
  void Free(T* record) {
    record->~T();
    free_.push_back(record);
  }
  /// Gives the blocks back once no record is left in them.
  void Release() {
    blocks_.clear();
    free_ = {};
    used_ = kBlock;
  }

 private:
  static constexpr std::size_t kBlock = 1024;
  struct TPlace {
    alignas(T) std::byte bytes[sizeof(T)];
  };
  std::vector<std::unique_ptr<TPlace[]>> blocks_;
  std::vector<T*> free_;
  std::size_t used_ = kBlock;  ///< places taken in the last block
};

/// An ordered list that owns its records. A record keeps its address until it is deleted.
template <class T, class Storage = TOneByOne<T>>
class TTypedList {
 public:
  TTypedList() = default;
  TTypedList(TTypedList&& other) noexcept
      : storage_(std::move(other.storage_)), records_(std::exchange(other.records_, {})) {}
  TTypedList& operator=(TTypedList&& other) noexcept {
    if (this == &other) return *this;
    ClearObjects();
    storage_ = std::move(other.storage_);
    records_ = std::exchange(other.records_, {});
    return *this;
  }
  ~TTypedList() { ClearObjects(); }

  std::size_t Count() const { return records_.size(); }
  bool Empty() const { return records_.empty(); }

  /// `index` is below Count().
  T* Get(std::size_t index) { return records_[index]; }
  const T* Get(std::size_t index) const { return records_[index]; }

  /// Makes a record from the arguments at the end of the list.
  template <class... Args>
  T* Emplace(Args&&... args) {
    records_.reserve(GrownFor(1));
    records_.push_back(storage_.Make(std::forward<Args>(args)...));
    return records_.back();
  }
  T* Add(std::unique_ptr<T> record)
    requires std::is_same_v<Storage, TOneByOne<T>>
  {
    records_.reserve(GrownFor(1));
    records_.push_back(record.release());
    return records_.back();
  }
  /// `index` is at most Count().
  T* Insert(std::size_t index, std::unique_ptr<T> record)
    requires std::is_same_v<Storage, TOneByOne<T>>
  {
    records_.reserve(GrownFor(1));
    records_.insert(At(index), record.release());
    return records_[index];
  }
  template <class... Args>
  T* EmplaceAt(std::size_t index, Args&&... args) {
    records_.reserve(GrownFor(1));
    return *records_.insert(At(index), storage_.Make(std::forward<Args>(args)...));
  }

  /// Frees the record and closes the gap.
  void DeleteObject(std::size_t index) {
    storage_.Free(records_[index]);
    records_.erase(At(index));
  }
  /// Frees every record, the first one first.
  void ClearObjects() {
    // Taken out first: a record that looks at its list while it is freed finds no freed neighbour.
    const std::vector<T*> records = std::exchange(records_, {});
    for (T* record : records) storage_.Free(record);
    if constexpr (requires { storage_.Release(); }) storage_.Release();
  }

  void Reserve(std::size_t count) { records_.reserve(count); }
  void Exchange(std::size_t a, std::size_t b) { std::swap(records_[a], records_[b]); }

  /// The records in list order, for reordering them.
  std::vector<T*>& Records() { return records_; }
  const std::vector<T*>& Records() const { return records_; }

  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }

 private:
  auto At(std::size_t index) { return records_.begin() + static_cast<std::ptrdiff_t>(index); }
  /// Room for `more` records, grown by doubling; taken before a record is made, so that a failed
  /// allocation loses none.
  std::size_t GrownFor(std::size_t more) const {
    const std::size_t needed = records_.size() + more;
    return needed <= records_.capacity() ? 0 : std::max(needed, 2 * records_.capacity());
  }

  Storage storage_;
  std::vector<T*> records_;
};
