#pragma once

#include <cstdlib>
#include <new>

/// Counts what a benchmark allocates. To be included by its one source: it replaces the operators.

/// Calls of operator new by this thread.
inline thread_local long allocations = 0;

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
