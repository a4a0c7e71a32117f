#include "model/Largememory.h"

// The one place that knows about huge pages: Linux has to be asked for them, and other systems get
// plain memory.
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

constexpr std::align_val_t kAlignment{kLargePage};

}  // namespace

void* AllocateLarge(std::size_t bytes) {
  if (bytes < kLargePage) return ::operator new(bytes);
  void* const memory = ::operator new(bytes, kAlignment);
#ifdef __linux__
  // A refusal costs speed and nothing else.
  static_cast<void>(madvise(memory, bytes / kLargePage * kLargePage, MADV_HUGEPAGE));
#endif
  return memory;
}

void FreeLarge(void* memory, std::size_t bytes) noexcept {
  if (bytes < kLargePage) {
    ::operator delete(memory);
  } else {
    ::operator delete(memory, kAlignment);
  }
}
