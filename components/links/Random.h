#pragma once

#include <cstdlib>

/// The largest number that Random15 gives.
inline constexpr int kRandom15Max = 32767;

/// A uniform whole number from 0 to 32767, from the process-wide generator of the C library, which
/// nobody here seeds. Any thread.
inline int Random15() {
  // The high bits: the low ones of some libraries repeat soon.
  return static_cast<int>(static_cast<unsigned>(std::rand()) /
                          (static_cast<unsigned>(RAND_MAX) / (kRandom15Max + 1U) + 1U));
}
