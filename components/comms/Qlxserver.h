#pragma once

#include <QByteArrayView>
#include <QIODevice>
#include <QObject>
#include <functional>
#include <memory>

/// Receives from a device that has to be waited for, on a thread of its own, and hands each chunk
/// to the GUI thread, which holds the receiving up until it has taken it: nothing piles up. Belongs
/// to the GUI thread; any of its events may stop, restart or destroy it.
class TQLXServer : public QObject {
  Q_OBJECT

 public:
  /// Makes and opens the device. Runs on the server's thread, on which the device stays and is
  /// destroyed. Null, or a device that is not open, ends the receiving; `error` may say why.
  using TOpenDevice = std::function<std::unique_ptr<QIODevice>(QString& error)>;
  /// Takes a chunk of at most 16 KiB, on the GUI thread; the bytes are valid during the call.
  using TDataEvent = std::function<void(QByteArrayView bytes)>;

  explicit TQLXServer(QObject* parent = nullptr);
  ~TQLXServer() override;

  /// Ends what runs and starts anew.
  void Start(TOpenDevice open, TDataEvent onData);
  /// Returns once the device is closed: after a twentieth of a second at most, unless it is just
  /// being opened. No event fires any more.
  void Stop();
  bool IsRunning() const { return run_ != nullptr; }

 signals:
  /// The device could not be opened, or has ended; the reason is one sentence without a full stop.
  void OnEnd(QObject* sender, const QString& reason);

 private:
  class TRun;

  std::unique_ptr<TRun> run_;
};
