#include "components/comms/Polling.h"

#include <deque>

#include "tests/support/Testing.h"
namespace {

/// A device whose answers take so many ticks.
struct TLine {
  int latency;
  TPolling polling{};
  int now = 0;
  int lose = 0;  ///< answers that are still to be lost
  std::deque<int> due{};

  /// Returns in how many of the ticks the device was asked.
  int Pass(int ticks) {
    int requests = 0;
    for (const int end = now + ticks; now < end; ++now) {
      for (; !due.empty() && due.front() <= now; due.pop_front()) polling.TakeAnswer();
      if (!polling.Tick()) continue;
      ++requests;
      if (lose > 0) {
        --lose;
      } else {
        due.push_back(now + latency);
      }
      EXPECT_LE(due.size(), 2u) << "requests in flight";
    }
    return requests;
  }
};

TEST(TPolling, IsAsFastAsBeforeAfterLostAnswers) {
  // At least so many requests come in 100 ticks behind the pause.
  const std::tuple<int, int, int, int> cases[] = {
      {1, 1, 0, 100},  {1, 2, 24, 100}, {1, 3, 24, 100},
      {2, 1, 26, 100}, {2, 2, 26, 100}, {2, 5, 76, 100},  // two in 23 ticks are lost
      {3, 1, 130, 60},  // a line that is slower than the ticks anyway, and tried now and then
      {3, 2, 30, 60},
  };
  for (const auto& [latency, lost, pause, least] : cases) {
    SCOPED_TRACE(testing::Message() << latency << " ticks, " << lost << " lost");
    TLine line{latency};
    EXPECT_GE(line.Pass(300), 3 * least);
    line.lose = lost;
    line.Pass(1 + pause);
    EXPECT_EQ(line.lose, 0);
    EXPECT_GE(line.Pass(100), least);
  }
}

TEST(TPolling, AsksASilentDeviceTwiceIn23Ticks) {
  TLine line{1'000'000};
  line.polling.TakeAnswer();  // that nobody has asked for
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(line.Pass(2), 2);
    line.due.clear();
    EXPECT_EQ(line.Pass(21), 0);
  }
}

}  // namespace
