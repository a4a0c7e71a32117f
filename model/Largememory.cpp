#include "model/Largememory.h"

#include <algorithm>
#include <atomic>
#include <limits>

// The one place that knows about huge pages and about memory that is promised but not there: Linux
// has to be asked for both, and other systems get plain memory.
#ifdef __linux__
#include <sys/mman.h>

#include <cstdio>
#endif

namespace {

constexpr std::align_val_t kAlignment{kLargePage};
constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> mostAvailable = kUnlimited;

#ifdef __linux__
std::size_t SystemMemory() {
  constexpr std::size_t kReserve = std::size_t{256} << 20;  // for everybody else
  std::FILE* const file = std::fopen("/proc/meminfo", "re");
  if (!file) return kUnlimited;
  char line[128];
  unsigned long long kibibytes = 0;
  bool found = false;
  while (!found && std::fgets(line, sizeof line, file)) {
    found = std::sscanf(line, "MemAvailable: %llu", &kibibytes) == 1;
  }
  std::fclose(file);
  if (!found) return kUnlimited;
  const auto bytes = static_cast<std::size_t>(kibibytes) * 1024;
  return bytes > kReserve ? bytes - kReserve : 0;
}
#else
std::size_t SystemMemory() { return kUnlimited; }
#endif

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

std::size_t AvailableMemory() { return std::min(SystemMemory(), mostAvailable.load()); }

void LimitAvailableMemory(std::size_t bytes) { mostAvailable = bytes; }
