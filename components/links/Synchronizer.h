#pragma once

#include <functional>
#include <memory>

/// How a worker thread gets something done on the GUI thread, and waits for it. One for each
/// worker; made and destroyed on the GUI thread, whose event loop runs the steps.
///
/// The GUI thread may wait for a worker that has been cancelled (join it), from inside a step too:
/// no worker waits for it any more then.
class TSynchronizer {
 public:
  enum class TAnswer {
    Done,
    Again,  ///< the step is to run once more, after the event loop has seen to other things
    Later   ///< as Again, but not before some milliseconds have passed
  };
  using TStep = std::function<TAnswer()>;

  TSynchronizer();
  /// Cancels.
  ~TSynchronizer();
  TSynchronizer(const TSynchronizer&) = delete;
  TSynchronizer& operator=(const TSynchronizer&) = delete;

  /// For the worker: runs `step` on the GUI thread and returns when it is done. What either thread
  /// wrote before is seen by the other. False if the synchronizer is cancelled, before or while the
  /// worker waits; then the step has not run, or has not come to its end yet: what it touches must
  /// not belong to the caller's stack.
  [[nodiscard]] bool Synchronize(TStep step);

  /// For the GUI thread: ends the worker's waiting, now and for good. A step may cancel, and
  /// destroy the synchronizer.
  void Cancel();

 private:
  class TReceiver;
  struct TShared;

  std::shared_ptr<TShared> shared_;
  std::unique_ptr<TReceiver> receiver_;
};
