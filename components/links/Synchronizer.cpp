#include "components/links/Synchronizer.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <condition_variable>
#include <mutex>
#include <utility>

/// What both threads touch. A step may destroy the synchronizer, so whoever is at work holds it.
struct TSynchronizer::TShared {
  std::mutex mutex;
  std::condition_variable changed;
  TStep step;            ///< empty while it runs
  bool waiting = false;  ///< the worker waits for its step
  bool cancelled = false;

  bool CallsFor() const { return waiting && !cancelled; }
};

/// Only empty events pass through the event queue: they say that there is a step to be run.
class TSynchronizer::TReceiver : public QObject {
 public:
  explicit TReceiver(const std::shared_ptr<TShared>& shared) : shared_(shared) {}

  /// At low priority: input and what the step before has posted go first.
  void Post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User), Qt::LowEventPriority); }

  void customEvent(QEvent* event) override {
    Q_UNUSED(event)
    Run();
  }

 private:
  void Run() {
    const std::shared_ptr<TShared> shared = shared_;  // the step may destroy the receiver
    TStep step;
    {
      const std::lock_guard lock(shared->mutex);
      if (!shared->CallsFor()) return;
      step = std::move(shared->step);
    }
    // An event loop that the step runs would take the events that are waiting behind this one for
    // sent, and sleep.
    QAbstractEventDispatcher::instance()->wakeUp();
    const TAnswer answer = step();
    const std::lock_guard lock(shared->mutex);
    if (!shared->CallsFor()) return;
    if (answer == TAnswer::Done) {
      shared->waiting = false;
      shared->changed.notify_one();
      return;
    }
    shared->step = std::move(step);
    if (answer == TAnswer::Again) return Post();
    constexpr int kLaterMs = 5;
    QTimer::singleShot(kLaterMs, this, [this] { Post(); });
  }

  const std::shared_ptr<TShared> shared_;
};

TSynchronizer::TSynchronizer()
    : shared_(std::make_shared<TShared>()), receiver_(std::make_unique<TReceiver>(shared_)) {}

TSynchronizer::~TSynchronizer() { Cancel(); }

bool TSynchronizer::Synchronize(TStep step) {
  const std::shared_ptr<TShared> shared = shared_;
  std::unique_lock lock(shared->mutex);
  if (shared->cancelled) return false;
  shared->step = std::move(step);
  shared->waiting = true;
  // Cancel takes the mutex before the receiver goes.
  receiver_->Post();
  shared->changed.wait(lock, [&] { return !shared->CallsFor(); });
  return !std::exchange(shared->waiting, false);
}

void TSynchronizer::Cancel() {
  const std::lock_guard lock(shared_->mutex);
  shared_->cancelled = true;
  shared_->changed.notify_one();
}
