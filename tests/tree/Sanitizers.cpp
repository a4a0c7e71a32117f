#include <gtest/gtest.h>

#include <limits>

#if defined(VELMORA_SANITIZED) && defined(__SANITIZE_ADDRESS__)

// Deliberate faults: a build whose sanitizer does not catch them proves nothing.

namespace {

TEST(Sanitizers, CatchAnAccessBehindAnArray) {
  volatile int index = 4;
  EXPECT_DEATH(
      {
        int* volatile numbers = new int[4];
        numbers[index] = 1;
        delete[] numbers;
      },
      "heap-buffer-overflow");
}

TEST(Sanitizers, CatchAnOverflowOfASignedNumber) {
  volatile int number = std::numeric_limits<int>::max();
  EXPECT_DEATH({ number = number + 1; }, "signed integer overflow");
}

}  // namespace

#endif
