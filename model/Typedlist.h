#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "model/Largememory.h"

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
  /// Frees all records, the first one first.
  void FreeAll(std::span<T* const> records) {
    for (T* record : records) delete record;
  }
};

/// Storage for many small records: they lie side by side in blocks that never move, so a pointer
/// to a record holds as long as the record. Blocks grow with the list up to one large page. A freed
/// place is used again.
template <class T>
class TInBlocks {
 public:
  TInBlocks() = default;
  TInBlocks(TInBlocks&& other) noexcept { Swap(other); }
  TInBlocks& operator=(TInBlocks&& other) noexcept {
    TInBlocks taken(std::move(other));
    Swap(taken);
    return *this;
  }

  /// Makes the next blocks fit for as many records more.
  void Expect(std::size_t more) { expected_ = more; }

  template <class... Args>
  T* Make(Args&&... args) {
    if (free_) {
      TPlace* const next = free_->next;
      T* const record = new (free_) T(std::forward<Args>(args)...);
      free_ = next;
      return record;
    }
    if (used_ == room_) AddBlock();
    T* const record = new (&blocks_.back()[used_]) T(std::forward<Args>(args)...);
    ++used_;
    return record;
  }
  void Free(T* record) {
    record->~T();
    free_ = new (record) TPlace{.next = free_};
  }
  /// Frees all records, the first one first, and the blocks they lay in.
  void FreeAll(std::span<T* const> records) {
    for (T* record : records) record->~T();
    *this = {};
  }

 private:
  union TPlace {
    TPlace* next;
    alignas(T) std::byte bytes[sizeof(T)];
  };
  using TBlock = std::vector<TPlace, TLargeAllocator<TPlace>>;
  static constexpr std::size_t kSmallestBlock = 8;
  static constexpr std::size_t kLargestBlock = kLargePage / sizeof(TPlace);

  void AddBlock() {
    const std::size_t room =
        std::clamp(expected_ > 0 ? expected_ : 2 * room_, kSmallestBlock, kLargestBlock);
    blocks_.emplace_back(room);
    expected_ -= std::min(expected_, room);
    room_ = room;
    used_ = 0;
  }
  void Swap(TInBlocks& other) noexcept {
    std::swap(blocks_, other.blocks_);
    std::swap(free_, other.free_);
    std::swap(used_, other.used_);
    std::swap(room_, other.room_);
    std::swap(expected_, other.expected_);
  }

  std::vector<TBlock> blocks_;
  TPlace* free_ = nullptr;    ///< freed places, each holding the address of the next
  std::size_t used_ = 0;      ///< places taken in the last block
  std::size_t room_ = 0;      ///< places of the last block
  std::size_t expected_ = 0;  ///< records that are still expected
};

/// An ordered list that owns its records. A record keeps its address until it is deleted.
template <class T, class Storage = TOneByOne<T>>
class TTypedList {
 public:
  using TRecords = std::vector<T*, TLargeAllocator<T*>>;

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
    MakeRoom();
    records_.push_back(storage_.Make(std::forward<Args>(args)...));
    return records_.back();
  }
  T* Add(std::unique_ptr<T> record) requires std::is_same_v<Storage, TOneByOne<T>> {
    MakeRoom();
    records_.push_back(record.release());
    return records_.back();
  }
  /// `index` is at most Count().
  T* Insert(std::size_t index,
            std::unique_ptr<T> record) requires std::is_same_v<Storage, TOneByOne<T>> {
    MakeRoom();
    records_.insert(At(index), record.release());
    return records_[index];
  }
  template <class... Args>
  T* EmplaceAt(std::size_t index, Args&&... args) {
    MakeRoom();
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
    const TRecords records = std::exchange(records_, {});
    storage_.FreeAll(records);
  }

  /// Makes room for `more` records.
  void Reserve(std::size_t more) {
    records_.reserve(records_.size() + more);
    if constexpr (requires { storage_.Expect(more); }) storage_.Expect(more);
  }
  void Exchange(std::size_t a, std::size_t b) { std::swap(records_[a], records_[b]); }

  /// The records in list order, for reordering them.
  TRecords& Records() { return records_; }
  const TRecords& Records() const { return records_; }

  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }

 private:
  auto At(std::size_t index) { return records_.begin() + static_cast<std::ptrdiff_t>(index); }
  /// Takes the room for one more slot before a record is made, so that a failed allocation loses
  /// none.
  void MakeRoom() {
    if (records_.size() == records_.capacity()) {
      records_.reserve(std::max<std::size_t>(4, 2 * records_.size()));
    }
  }

  Storage storage_;
  TRecords records_;
};
