#include "model/Filesync.h"

#include <future>

#include "tests/support/Testing.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(ThreadsFilesync, NobodyWaitsForASlowDiskAndNothingIsForgotten) {
  std::promise<void> begun, free;
  std::vector<QString> synced;
  {
    TFileSync sync(0ms, [&](const QString& fileName) {
      synced.push_back(fileName);
      if (synced.size() > 1) return;
      begun.set_value();
      free.get_future().wait();
    });
    sync.Grown("a");
    begun.get_future().wait();
    for (const char* name : {"b", "a", "b"}) sync.Grown(name);
    EXPECT_EQ(sync.Waiting(), QStringList({"a", "b"}));
    free.set_value();
  }
  EXPECT_THAT(synced, ElementsAre(QString("a"), QString("a"), QString("b")));
  synced.clear();
  {
    TFileSync sync(1h, [&](const QString& fileName) { synced.push_back(fileName); });
    for (int i = 0; i < 1000; ++i) sync.Grown("a");
  }
  EXPECT_THAT(synced, ElementsAre(QString("a"))) << "once, however often it grows";
}

TEST(ThreadsFilesync, LeavesAloneWhatIsNoFile) {
  SyncFile(WriteTestFile("file", "text"));
  SyncFile(TestFolder() + "/none");
#ifdef Q_OS_UNIX
  const QString pipe = TestFolder() + "/pipe";
  ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0);
  SyncFile(pipe);  // comes back
#endif
}

}  // namespace
