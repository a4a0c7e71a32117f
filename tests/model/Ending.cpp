#include "model/Ending.h"

#include "tests/support/Testing.h"

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {

TEST(TEnding, TheEndOfTheSessionIsTimeToKeepThings) {
  QSignalSpy keeps(&TEnding::Instance(), &TEnding::OnKeep);
  EndSession();
  EXPECT_EQ(keeps.count(), 1);
  EXPECT_FALSE(TEnding::IsAsked());
}

#ifdef Q_OS_UNIX

/// A program that shows two dialogs, one after the other, when it is told to end; and one that has
/// still been loading. The exit status: how often things were kept.
void EndFromDialogs() {
  TEnding::Instance().TakeSignals();
  QSignalSpy keeps(&TEnding::Instance(), &TEnding::OnKeep);
  QTimer::singleShot(0, [] {
    std::raise(SIGINT);
    for (int dialog = 0; dialog < 2; ++dialog) QEventLoop().exec();
  });
  QCoreApplication::exec();
  std::_Exit(static_cast<int>(keeps.count()));
}

void EndWhileLoading() {
  TEnding::Instance().TakeSignals();
  QSignalSpy keeps(&TEnding::Instance(), &TEnding::OnKeep);
  std::raise(SIGTERM);
  const QDeadlineTimer patience(5000);
  while (keeps.isEmpty() && !patience.hasExpired()) QCoreApplication::processEvents();
  QCoreApplication::exec();
  std::_Exit(static_cast<int>(keeps.count()));
}

void EndTwice() {
  TEnding::Instance().TakeSignals();
  std::raise(SIGTERM);
  std::raise(SIGHUP);  // as from a terminal that is closed
  if (TEnding::IsAsked()) std::raise(SIGINT);
  std::_Exit(0);
}

void EndIgnored() {
  std::signal(SIGHUP, SIG_IGN);
  TEnding::Instance().TakeSignals();
  std::raise(SIGHUP);
  std::_Exit(TEnding::IsAsked() ? 1 : 0);
}

TEST(TEndingDeathTest, ASignalEndsAllLoopsAndASecondOneTheProgram) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(EndFromDialogs(), testing::ExitedWithCode(1), "");
  EXPECT_EXIT(EndWhileLoading(), testing::ExitedWithCode(1), "");
  EXPECT_EXIT(EndTwice(), testing::KilledBySignal(SIGINT), "");
  EXPECT_EXIT(EndIgnored(), testing::ExitedWithCode(0), "");
}

#endif

}  // namespace
