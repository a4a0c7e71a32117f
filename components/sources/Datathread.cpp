#include "components/sources/Datathread.h"

#include <algorithm>
#include <exception>
#include <utility>

TDataThread::TDataThread() { values_.reserve(kMost); }

TDataThread::~TDataThread() { Terminate(); }

void TDataThread::Resume() {
  if (!suspended_ || terminated_) return;
  if (!worker_.joinable()) worker_ = std::thread([this] { Execute(); });
  size_ = kFewest;
  const std::lock_guard lock(mutex_);
  suspended_ = false;
  changed_.notify_one();
}

void TDataThread::Suspend() {
  const std::lock_guard lock(mutex_);
  suspended_ = true;
}

void TDataThread::Terminate() {
  synchronizer_.Cancel();
  {
    const std::lock_guard lock(mutex_);
    terminated_ = true;
    changed_.notify_one();
  }
  if (worker_.joinable()) worker_.join();
}

bool TDataThread::TakeValue() {
  if (workOf_ != now_ || next_ >= values_.size()) return false;
  last_ = values_[next_++];
  return true;
}

void TDataThread::Discard() {
  ++now_;
  size_ = kFewest;
}

void TDataThread::BeginWork() {
  hasWork_ = true;
  workOf_ = now_;
  wanted_ = size_;
  size_ = std::min(2 * size_, kMost);
}

bool TDataThread::TakeEnd() {
  if (workOf_ != now_ || next_ < values_.size()) return false;
  return std::exchange(worked_, false);
}

// The worker

void TDataThread::Execute() {
  while (WaitUntilResumed()) {
    Work();
    if (!synchronizer_.Synchronize(OnValues)) return;
  }
}

bool TDataThread::WaitUntilResumed() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !suspended_ || terminated_; });
  return !terminated_;
}

void TDataThread::Work() {
  values_.clear();
  next_ = 0;
  failure_.clear();
  worked_ = std::exchange(hasWork_, false);
  if (!worked_) return;
  try {
    GetNextValue();
  } catch (const std::exception& error) {
    failure_ = error.what();
  }
}
