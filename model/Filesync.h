#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

/// Has what was written to growing files reach the disk, so that a power cut costs no more than the
/// last half minute. Writers only say which file has grown; a thread of its own waits for the disk,
/// however slow that is. Any thread.
class TFileSync {
 public:
  using TSync = std::function<void(const QString& fileName)>;

  /// `sync` is called for each file at most `interval` after it has grown, on the thread.
  explicit TFileSync(std::chrono::milliseconds interval, TSync sync);
  /// What waits is synced first.
  ~TFileSync();
  TFileSync(const TFileSync&) = delete;
  TFileSync& operator=(const TFileSync&) = delete;

  /// The one of the program: 30 s, and what waits at its end.
  static TFileSync& Instance();

  void Grown(const QString& fileName);
  /// Files that have grown and are not synced yet.
  QStringList Waiting() const;

 private:
  void Run();

  const std::chrono::milliseconds interval_;
  const TSync sync_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::set<QString> waiting_;
  bool ends_ = false;
  std::thread thread_;  ///< runs once a file has grown
};

/// Waits until a file, and its name in its folder, are on the disk. What is no file any more is
/// left alone.
void SyncFile(const QString& fileName);
