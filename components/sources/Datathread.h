#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "components/links/Synchronizer.h"

/// A worker thread that makes values ahead, some thousand at a time, and waits while the GUI thread
/// delivers them one by one. It is given its work, does it, and hands over the values; what of them
/// is not delivered is made once more.
///
/// Made and destroyed on the GUI thread; all members are for that one, except those for the worker.
/// A descendant calls Terminate in its destructor.
class TDataThread {
 public:
  /// A value, and what its provider has to know when it is delivered.
  struct TItem {
    double value = 0.0;
    std::uint32_t mark = 0;
  };

  /// Suspended; the thread itself begins with the first Resume.
  TDataThread();
  virtual ~TDataThread();
  TDataThread(const TDataThread&) = delete;
  TDataThread& operator=(const TDataThread&) = delete;

  /// Called whenever the worker waits for its values to be delivered and for new work; it waits on
  /// while the answer is Again. May suspend and destroy the thread.
  std::function<TSynchronizer::TAnswer()> OnValues;

  bool IsSuspended() const { return suspended_; }
  /// Throws std::system_error if there can be no more threads.
  void Resume();
  /// Does not wait: the worker ends its work and asks with OnValues what to do with the values.
  void Suspend();
  /// Ends the thread for good, from inside OnValues too.
  void Terminate();

  /// The last value that was taken.
  const TItem& GetLast() const { return last_; }
  /// In OnValues: takes the next value. False when there is none, or none that still counts.
  bool TakeValue();
  /// In OnValues, once for each work: whether it still counts and all its values have been taken.
  bool TakeEnd();
  /// In OnValues: why the work failed, or empty.
  const std::string& GetFailure() const { return failure_; }
  /// The values that have been made so far, and those being made, do not count.
  void Discard();

 protected:
  /// In OnValues: the descendant has given the worker new work.
  void BeginWork();

  /// For the worker: does the work it was given, with AddValue until IsFull. What it throws is kept
  /// in GetFailure.
  virtual void GetNextValue() {}
  bool IsFull() const { return values_.size() >= wanted_; }
  void AddValue(double value, std::uint32_t mark) { values_.push_back({value, mark}); }

 private:
  static constexpr std::size_t kFewest = 16;
  static constexpr std::size_t kMost = 4096;

  void Execute();
  bool WaitUntilResumed();
  void Work();

  // Under the mutex.
  std::mutex mutex_;
  std::condition_variable changed_;
  bool suspended_ = true;  ///< written by the GUI thread only
  bool terminated_ = false;

  // Of the worker, and of the GUI thread while OnValues runs.
  std::vector<TItem> values_;  ///< never grows beyond its first capacity
  std::size_t next_ = 0;       ///< the first that has not been taken
  std::size_t wanted_ = 0;
  bool hasWork_ = false;
  bool worked_ = false;
  std::string failure_;

  // Of the GUI thread.
  TItem last_;
  std::size_t size_ = kFewest;  ///< of the next work: grows while nothing is discarded
  std::uint64_t now_ = 0;       ///< counts the discards
  std::uint64_t workOf_ = 0;    ///< `now_` when the work was given

  TSynchronizer synchronizer_;
  std::thread worker_;
};
