#include "components/comms/Qlxserver.h"

#include <QAbstractSocket>
#include <QDeadlineTimer>
#include <QThread>
#include <utility>

#include "components/links/Synchronizer.h"

namespace {

constexpr int kPatienceMs = 50;  // how soon a stop is noticed
constexpr qint64 kChunk = 16384;

/// A device of which nothing more can come.
bool HasEnded(const QIODevice& device) {
  if (!device.isOpen()) return true;
  if (const auto* socket = qobject_cast<const QAbstractSocket*>(&device)) {
    return socket->state() == QAbstractSocket::UnconnectedState;
  }
  return !device.isSequential() && device.atEnd();
}

/// Waits until there are bytes; not longer than the patience, but so long if there are none, even
/// if the device cannot wait.
void WaitFor(QIODevice& device) {
  const QDeadlineTimer end(kPatienceMs);
  if (device.bytesAvailable() > 0 || device.waitForReadyRead(kPatienceMs)) return;
  if (!HasEnded(device)) QThread::msleep(static_cast<unsigned long>(end.remainingTime()));
}

}  // namespace

/// One receiving, from Start to its end.
class TQLXServer::TRun : public QThread {
 public:
  TRun(TQLXServer& server, TOpenDevice open, TDataEvent onData)
      : server_(server),
        open_(std::move(open)),
        onData_(std::make_shared<TDataEvent>(std::move(onData))) {}
  ~TRun() override {
    synchronizer_.Cancel();
    requestInterruption();
    wait();
  }

 protected:
  void run() override {
    QString reason;
    try {
      const std::unique_ptr<QIODevice> device = open_(reason);
      if (device && device->isOpen()) {
        while (!isInterruptionRequested() && Receive(*device, reason)) {
        }
      }
    } catch (const std::exception& error) {
      reason = QString::fromUtf8(error.what());
    }
    if (reason.isEmpty()) reason = QStringLiteral("The device cannot be opened");
    // The step has no caller to answer to: a receiving that was cancelled is not reported.
    (void)synchronizer_.Synchronize([server = &server_, reason] {
      server->Stop();
      emit server->OnEnd(server, reason);
      return TSynchronizer::TAnswer::Done;
    });
  }

 private:
  /// False with the reason once nothing more will come.
  bool Receive(QIODevice& device, QString& reason) {
    WaitFor(device);
    // Shared with the step, which may outlive this run.
    const auto chunk = std::make_shared<QByteArray>(device.read(kChunk));
    if (chunk->isEmpty()) {
      if (!HasEnded(device)) return true;
      reason = QStringLiteral("The device has ended: %1").arg(device.errorString());
      return false;
    }
    return synchronizer_.Synchronize([onData = onData_, chunk] {
      if (*onData) (*onData)(*chunk);
      return TSynchronizer::TAnswer::Done;
    });
  }

  TQLXServer& server_;
  TOpenDevice open_;
  std::shared_ptr<const TDataEvent> onData_;
  TSynchronizer synchronizer_;
};

TQLXServer::TQLXServer(QObject* parent) : QObject(parent) {}

TQLXServer::~TQLXServer() = default;

void TQLXServer::Start(TOpenDevice open, TDataEvent onData) {
  Stop();
  run_ = std::make_unique<TRun>(*this, std::move(open), std::move(onData));
  run_->start();
}

void TQLXServer::Stop() { run_.reset(); }
