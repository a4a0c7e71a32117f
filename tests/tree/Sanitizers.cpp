#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <thread>

// Deliberate faults: a build whose sanitizer does not catch them proves nothing.

#ifdef VELMORA_SANITIZED_ADDRESS

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

#ifdef VELMORA_SANITIZED_THREAD

namespace {

TEST(Sanitizers, CatchTwoThreadsThatWriteOneNumber) {
  constexpr int kRace = 66;  // how the sanitizer ends a program in which it has seen one
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        int number = 0;
        std::thread other([&number] { number += 1; });
        number += 2;
        other.join();
        std::exit(number > 0 ? EXIT_SUCCESS : EXIT_FAILURE);
      },
      testing::ExitedWithCode(kRace), "data race");
}

}  // namespace

#endif
