#include "components/comms/Qlxserver.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <utility>

#include "components/comms/Stampclock.h"

/// Bytes in the order in which they came, with their times.
class TQLXServer::TQueue {
 public:
  void Keep(std::span<const char> bytes);
  TReceived Read(std::span<char> buffer);
  void Clear();
  std::size_t Count() const { return count_; }

 private:
  struct TPiece {
    std::int64_t time;
    std::int64_t lostBefore;
    QByteArray bytes;
  };

  bool Joins(std::size_t size, std::int64_t now) const;

  std::deque<TPiece> pieces_;
  std::size_t count_ = 0;
  qsizetype read_ = 0;  ///< bytes of the first piece
  bool dropping_ = false;
  std::int64_t lost_ = 0;  ///< bytes dropped since the last piece
};

void TQLXServer::TQueue::Keep(std::span<const char> bytes) {
  dropping_ = (dropping_ && count_ > 0) || count_ + bytes.size() > kMostBytes;
  if (dropping_) {
    lost_ += std::ssize(bytes);
    return;
  }
  count_ += bytes.size();
  const std::int64_t now = TTimeSource::SteadyNanoseconds();
  if (!Joins(bytes.size(), now)) pieces_.push_back({now, std::exchange(lost_, 0), {}});
  pieces_.back().bytes.append(bytes.data(), std::ssize(bytes));
}

/// Whether bytes go with the last piece: each piece costs memory of its own.
bool TQLXServer::TQueue::Joins(std::size_t size, std::int64_t now) const {
  constexpr std::size_t kLongest = 1024;
  constexpr std::size_t kMany = 65536;
  constexpr std::int64_t kMoment = 5'000'000;  // five milliseconds
  if (pieces_.empty() || lost_ > 0) return false;
  if (static_cast<std::size_t>(pieces_.back().bytes.size()) + size > kLongest) return false;
  return now - pieces_.back().time < kMoment || pieces_.size() >= kMany;
}

TQLXServer::TReceived TQLXServer::TQueue::Read(std::span<char> buffer) {
  if (pieces_.empty()) return {};
  const TPiece& piece = pieces_.front();
  const auto rest = static_cast<std::size_t>(piece.bytes.size() - read_);
  const std::size_t count = std::min(rest, buffer.size());
  std::memcpy(buffer.data(), piece.bytes.constData() + read_, count);
  const TReceived received{static_cast<int>(count), TTimeSource::SteadyNanoseconds() - piece.time,
                           read_ == 0 ? piece.lostBefore : 0};
  count_ -= count;
  read_ += static_cast<qsizetype>(count);
  if (count == rest) {
    pieces_.pop_front();
    read_ = 0;
  }
  return received;
}

void TQLXServer::TQueue::Clear() {
  pieces_.clear();
  count_ = 0;
  read_ = 0;
  lost_ = 0;
}

/// What both threads touch. Each of them holds it, since either may go first.
struct TQLXServer::TShared {
  mutable std::mutex mutex;
  std::condition_variable changed;
  TWorker* worker = nullptr;  ///< while there is one to be woken
  std::deque<TTask> tasks;
  std::uint64_t asked = 0;
  std::uint64_t done = 0;
  bool stop = false;
  TQueue queue;
  bool ended = false;
  QString reason;

  void End(const QString& why) {
    if (!std::exchange(ended, true)) reason = why;
  }
};

/// The device's thread. Only empty events reach it through the event queue: they say that there is
/// something to be done.
class TQLXServer::TWorker : public QObject {
 public:
  explicit TWorker(std::shared_ptr<TShared> shared) : shared_(std::move(shared)) {}

  void Run(const TMakeDevice& make) {
    device_ = make([this](const QString& reason) {
      Take();
      const std::lock_guard lock(shared_->mutex);
      shared_->End(reason);
    });
    connect(device_.get(), &QIODevice::readyRead, this, &TWorker::Take);
    {
      const std::lock_guard lock(shared_->mutex);
      shared_->worker = this;
      Wake();
    }
    loop_.exec();
    device_.reset();
  }

  /// With the mutex held.
  void Wake() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

 protected:
  void customEvent(QEvent* event) override {
    Q_UNUSED(event)
    while (DoNext()) {
    }
  }

 private:
  bool DoNext() {
    TTask task;
    {
      const std::lock_guard lock(shared_->mutex);
      if (shared_->stop) {
        shared_->worker = nullptr;
        loop_.quit();
        return false;
      }
      if (shared_->tasks.empty()) return false;
      task = std::move(shared_->tasks.front());
      shared_->tasks.pop_front();
    }
    task(*device_);
    task = nullptr;
    const std::lock_guard lock(shared_->mutex);
    ++shared_->done;
    shared_->changed.notify_one();
    return true;
  }

  void Take() {
    constexpr qint64 kBlock = 4096;
    char block[kBlock];
    for (qint64 count = kBlock; count == kBlock;) {
      count = device_->read(block, kBlock);
      if (count <= 0) return;
      const std::lock_guard lock(shared_->mutex);
      shared_->queue.Keep({block, static_cast<std::size_t>(count)});
    }
  }

  const std::shared_ptr<TShared> shared_;
  std::unique_ptr<QIODevice> device_;
  QEventLoop loop_;
};

TQLXServer::TQLXServer(TMakeDevice make, std::chrono::milliseconds patience)
    : shared_(std::make_shared<TShared>()), patience_(patience) {
  thread_.reset(
      QThread::create([shared = shared_, make = std::move(make)] { TWorker(shared).Run(make); }));
  thread_->start();
}

TQLXServer::~TQLXServer() {
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->stop = true;
    if (shared_->worker) shared_->worker->Wake();
  }
  if (thread_->wait(QDeadlineTimer(patience_))) return;
  // One that hangs cannot be ended, and must not be destroyed before it has.
  QThread* const left = thread_.release();
  QObject::connect(left, &QThread::finished, left, &QObject::deleteLater);
  if (left->isFinished()) left->deleteLater();
}

bool TQLXServer::Do(TTask task) {
  std::unique_lock lock(shared_->mutex);
  if (shared_->ended) return false;
  shared_->tasks.push_back(std::move(task));
  const std::uint64_t turn = ++shared_->asked;
  if (shared_->worker) shared_->worker->Wake();
  if (shared_->changed.wait_for(lock, patience_, [&] { return shared_->done >= turn; })) {
    return true;
  }
  shared_->End(QStringLiteral("it does not answer"));
  patience_ = {};
  return false;
}

TQLXServer::TReceived TQLXServer::Read(std::span<char> buffer) {
  const std::lock_guard lock(shared_->mutex);
  return shared_->queue.Read(buffer);
}

std::size_t TQLXServer::Count() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->queue.Count();
}

void TQLXServer::Clear() {
  const std::lock_guard lock(shared_->mutex);
  shared_->queue.Clear();
}

bool TQLXServer::HasEnded() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->ended;
}

QString TQLXServer::EndReason() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->reason;
}
