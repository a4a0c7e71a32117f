#pragma once

#include <QIODevice>
#include <QString>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

class QThread;

/// Serves a device on a thread of its own, which takes what the device brings as it comes and keeps
/// it until it is read here: while this thread stands still, nothing is lost. GUI thread only.
///
/// At most kMostBytes wait. Once there are more, what comes is dropped and counted until all that
/// waits has been read: one gap, not many.
///
/// The device's thread never waits for this one. This one waits while the device does what it is
/// asked, but no longer than its patience: a device that hangs in the system counts as ended, and
/// its thread is left to itself.
class TQLXServer {
 public:
  static constexpr std::size_t kMostBytes = std::size_t{4} << 20;

  /// Reports that nothing more will come, and why, in one sentence without a full stop.
  using TEnd = std::function<void(const QString& reason)>;
  /// Makes the device, which reports its end. Runs on the device's thread, as all that happens to
  /// it; there it is destroyed, too.
  using TMakeDevice = std::function<std::unique_ptr<QIODevice>(const TEnd& end)>;
  using TTask = std::function<void(QIODevice& device)>;

  /// Bytes that were read, and what is known of them.
  struct TReceived {
    int Count = 0;
    std::int64_t Age = 0;         ///< nanoseconds since they came
    std::int64_t LostBefore = 0;  ///< bytes that were dropped before them
  };

  explicit TQLXServer(TMakeDevice make,
                      std::chrono::milliseconds patience = std::chrono::seconds(5));
  ~TQLXServer();
  TQLXServer(const TQLXServer&) = delete;
  TQLXServer& operator=(const TQLXServer&) = delete;

  /// Has the device's thread do something, and returns when it is done. False if the device has
  /// ended: then it is never done, or later. So it may touch nothing on the caller's stack.
  bool Do(TTask task);
  /// Same with an answer.
  template <class TQuestion>
  auto Ask(TQuestion question) {
    auto answer = std::make_shared<std::optional<std::invoke_result_t<TQuestion, QIODevice&>>>();
    const bool done = Do([question = std::move(question), answer](QIODevice& device) {
      *answer = question(device);
    });
    return done ? *answer : std::nullopt;
  }

  /// Takes bytes that came at one moment, as many as there is room for. None: nothing waits.
  TReceived Read(std::span<char> buffer);
  /// Bytes that wait.
  std::size_t Count() const;
  /// Drops them.
  void Clear();

  /// The device brings nothing more; bytes may wait still.
  bool HasEnded() const;
  QString EndReason() const;

 private:
  class TQueue;
  class TWorker;
  struct TShared;

  std::shared_ptr<TShared> shared_;
  std::chrono::milliseconds patience_;
  std::unique_ptr<QThread> thread_;
};
