#include "model/Filesync.h"

#include <utility>

TFileSync::TFileSync(std::chrono::milliseconds interval, TSync sync)
    : interval_(interval), sync_(std::move(sync)) {}

TFileSync::~TFileSync() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_one();
  if (thread_.joinable()) thread_.join();
}

TFileSync& TFileSync::Instance() {
  static TFileSync instance(std::chrono::seconds(30), SyncFile);
  return instance;
}

void TFileSync::Grown(const QString& fileName) {
  const std::lock_guard lock(mutex_);
  if (!waiting_.insert(fileName).second || waiting_.size() > 1) return;
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  changed_.notify_one();
}

QStringList TFileSync::Waiting() const {
  const std::lock_guard lock(mutex_);
  return QStringList(waiting_.begin(), waiting_.end());
}

void TFileSync::Run() {
  std::unique_lock lock(mutex_);
  while (!ends_ || !waiting_.empty()) {
    changed_.wait(lock, [this] { return ends_ || !waiting_.empty(); });
    changed_.wait_for(lock, interval_, [this] { return ends_; });
    const auto files = std::exchange(waiting_, {});
    lock.unlock();
    for (const QString& fileName : files) sync_(fileName);
    lock.lock();
  }
}
