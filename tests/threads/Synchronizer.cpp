#include "components/links/Synchronizer.h"

#include "tests/components/sources/Providerfixture.h"

namespace {

using TAnswer = TSynchronizer::TAnswer;
using testing::ElementsAre;

TEST(ThreadsSynchronizer, RunsEachStepOnTheGuiThreadBeforeTheWorkerGoesOn) {
  TSynchronizer synchronizer;
  const std::thread::id gui = std::this_thread::get_id();
  long sum = 0;  // written by both in turn
  std::atomic<bool> ended{false};
  const std::jthread worker([&] {
    for (long i = 0; i < 1000; ++i) {
      sum += 1;
      const bool done = synchronizer.Synchronize([&, i] {
        EXPECT_EQ(std::this_thread::get_id(), gui);
        EXPECT_EQ(sum, 2 * i + 1);
        sum += 1;
        return TAnswer::Done;
      });
      EXPECT_TRUE(done);
      EXPECT_EQ(sum, 2 * i + 2);
    }
    ended = true;
  });
  EXPECT_TRUE(RunUntil([&] { return ended.load(); }));
}

TEST(ThreadsSynchronizer, LetsOthersInBetweenTwoRunsOfAStep) {
  TSynchronizer synchronizer;
  std::vector<int> order;
  QObject other;
  bool ended = false;
  const std::jthread worker([&] {
    const bool done = synchronizer.Synchronize([&] {
      order.push_back(1);
      QTimer::singleShot(0, &other, [&] { order.push_back(2); });
      ended = order.size() >= 5;
      return ended ? TAnswer::Done : TAnswer::Again;
    });
    EXPECT_TRUE(done);
  });
  EXPECT_TRUE(RunUntil([&] { return ended; }));
  EXPECT_THAT(order, ElementsAre(1, 2, 1, 2, 1));
}

TEST(ThreadsSynchronizer, EndsTheWaitingWhenItIsCancelled) {
  TSynchronizer synchronizer;
  std::atomic<bool> waits{false};
  {
    const std::jthread worker([&] {
      waits = true;
      EXPECT_FALSE(synchronizer.Synchronize([] { return TAnswer::Again; }));
      EXPECT_FALSE(synchronizer.Synchronize([] { return TAnswer::Done; }));
    });
    EXPECT_TRUE(RunUntil([&] { return waits.load(); }));
    synchronizer.Cancel();
  }
  QCoreApplication::processEvents();  // a step that was posted is not run any more
}

TEST(ThreadsSynchronizer, MayGoInItsOwnStep) {
  auto synchronizer = std::make_unique<TSynchronizer>();
  std::thread worker;
  bool gone = false;
  worker = std::thread([&synchronizer, &gone, &worker] {
    EXPECT_FALSE(synchronizer->Synchronize([&] {
      synchronizer->Cancel();
      worker.join();  // it waits for nobody now
      synchronizer.reset();
      gone = true;
      return TAnswer::Again;
    }));
  });
  EXPECT_TRUE(RunUntil([&] { return gone; }));
}

}  // namespace
