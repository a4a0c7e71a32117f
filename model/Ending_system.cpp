// The file of the unit that asks which system it is built for.

#include <atomic>
#include <csignal>

#include "model/Ending.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <cerrno>
#endif

namespace {

std::atomic<bool> asked = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal's handler may touch nothing else

}  // namespace

bool TEnding::IsAsked() { return asked; }

#ifdef Q_OS_UNIX

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
int wake[2] = {-1, -1};  ///< a pipe, through which a handler wakes the event loop

extern "C" void HandleSignal(int) {
  const int error = errno;
  asked = true;
  for (const int signal : kSignals) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    // A terminal that is closed sends SIGHUP more than once.
    if (action.sa_handler == HandleSignal)
      std::signal(signal, signal == SIGHUP ? SIG_IGN : SIG_DFL);
  }
  const char byte = 0;
  static_cast<void>(!write(wake[1], &byte, 1));
  errno = error;
}

}  // namespace

void TEnding::TakeSignals() {
  if (wake[0] >= 0 || pipe(wake) != 0) return;
  for (const int end : wake) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  auto* woken = new QSocketNotifier(wake[0], QSocketNotifier::Read, this);
  connect(woken, &QSocketNotifier::activated, this, [this, woken] {
    woken->setEnabled(false);
    End();
  });
  for (const int signal : kSignals) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = HandleSignal;
    action.sa_flags = 0;
    sigaction(signal, &action, nullptr);
  }
}

#else

namespace {

TEnding* ending = nullptr;

/// Called on a thread of its own; the next signal has its usual effect again.
extern "C" void HandleSignal(int) {
  asked = true;
  QMetaObject::invokeMethod(ending, "End", Qt::QueuedConnection);
}

}  // namespace

void TEnding::TakeSignals() {
  ending = this;
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, HandleSignal);
}

#endif
