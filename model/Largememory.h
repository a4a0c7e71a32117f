#pragma once

#include <cstddef>
#include <limits>
#include <new>

/// Memory for large arrays. From kLargePage bytes on it is asked for in huge pages where the system
/// offers them: the first touch of 2 MiB then costs one page fault instead of 512. Throws
/// std::bad_alloc. Any thread.
constexpr std::size_t kLargePage = std::size_t{2} << 20;
void* AllocateLarge(std::size_t bytes);
/// `bytes` as given to AllocateLarge.
void FreeLarge(void* memory, std::size_t bytes) noexcept;

/// How many bytes can be had before the system, which promises more than it has, ends programs to
/// get some back; any number where the system does not tell. It costs some 30 microseconds to ask.
std::size_t AvailableMemory();
/// Makes AvailableMemory tell no more than this.
void LimitAvailableMemory(std::size_t bytes);

/// AllocateLarge for containers. Elements made without arguments are left uninitialised, so that a
/// buffer to be filled is not filled twice.
template <class T>
struct TLargeAllocator {
  using value_type = T;

  TLargeAllocator() = default;
  template <class U>
  TLargeAllocator(const TLargeAllocator<U>&) {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / kEach) throw std::bad_alloc();
    return static_cast<T*>(AllocateLarge(count * kEach));
  }
  void deallocate(T* memory, std::size_t count) noexcept { FreeLarge(memory, count * kEach); }

  template <class U>
  void construct(U* place) {
    ::new (static_cast<void*>(place)) U;
  }
  template <class U, class... Args>
  void construct(U* place, Args&&... args) {
    ::new (static_cast<void*>(place)) U(static_cast<Args&&>(args)...);
  }

  friend bool operator==(const TLargeAllocator&, const TLargeAllocator&) { return true; }

 private:
  // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers are elements like others
  static constexpr std::size_t kEach = sizeof(T);
};
