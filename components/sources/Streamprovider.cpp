#include "components/sources/Streamprovider.h"

#include <QPointer>
#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "components/sources/Datathread.h"

namespace {

/// At the beginning of a text in UTF-8 it says so, and is no part of the first line.
constexpr QByteArrayView kByteOrderMark("\xEF\xBB\xBF");

}  // namespace

struct TStreamProvider::TChunk {
  qint64 start = 0;  ///< in the stream
  QByteArray bytes;
  bool cut = false;        ///< its last line goes on in the next chunk
  TNumberScanner scanner;  ///< at its beginning

  qint64 End() const { return start + bytes.size(); }
};

/// Scans a chunk.
class TStreamThread : public TDataThread {
 public:
  ~TStreamThread() override { Terminate(); }

  /// In OnValues: the chunk is to be scanned from an offset.
  void SetWork(std::shared_ptr<const TStreamProvider::TChunk> chunk, std::size_t offset) {
    chunk_ = std::move(chunk);
    offset_ = offset;
    // Behind a number nothing is pending.
    scanner_ = offset > 0 ? TNumberScanner() : chunk_->scanner;
    BeginWork();
  }

  /// In OnValues, when the work is done: where the scanner stands.
  std::size_t Offset() const { return offset_; }
  const TNumberScanner& Scanner() const { return scanner_; }
  bool AtBadWord() const { return result_ == TNumberScanner::TResult::Bad; }

 protected:
  void GetNextValue() override {
    const auto chunk = std::move(chunk_);
    do ScanValue(chunk->bytes);
    while (result_ == TNumberScanner::TResult::Number && !IsFull());
  }

 private:
  void ScanValue(const QByteArray& bytes) {
    const std::string_view text(bytes.data(), static_cast<std::size_t>(bytes.size()));
    double value = 0.0;
    result_ = scanner_.ScanValue(text, offset_, value);
    if (result_ == TNumberScanner::TResult::Number) {
      AddValue(value, static_cast<std::uint32_t>(offset_));
    }
  }

  std::shared_ptr<const TStreamProvider::TChunk> chunk_;
  std::size_t offset_ = 0;
  TNumberScanner scanner_;
  TNumberScanner::TResult result_ = TNumberScanner::TResult::End;
};

TStreamProvider::TStreamProvider(QWidget* parent)
    : TThreadProvider(std::make_unique<TStreamThread>(), parent) {}

TStreamThread& TStreamProvider::Worker() { return static_cast<TStreamThread&>(Thread()); }

// Stream and position

void TStreamProvider::OpenStream(std::unique_ptr<QIODevice> stream) {
  stream_ = std::move(stream);
  reader_ = TLineReader(stream_.get());
}

void TStreamProvider::SetStream(std::unique_ptr<QIODevice> stream) {
  OpenStream(std::move(stream));
  MoveTo(stream_ ? stream_->pos() : 0);
}

void TStreamProvider::DropStream() {
  if (stream_) SetStream({});
}

void TStreamProvider::ProvideStream() {
  if (stream_) stream_->seek(position_);
}

QString TStreamProvider::GetStreamName() const { return QStringLiteral("the stream"); }

qint64 TStreamProvider::GetStreamPosition() const {
  if (!stream_) return 0;
  return chunk_ ? chunk_->start + static_cast<qint64>(offset_) : position_;
}

void TStreamProvider::SetStreamPosition(qint64 position) {
  if (position < 0 || position == GetStoredPosition()) return;
  WhileInactive([this, position] {
    MoveTo(position);
    NotifyProgress();
  });
}

int TStreamProvider::GetStreamPosPercent() const {
  const qint64 size = stream_ ? stream_->size() : 0;
  if (size <= 0) return 100;
  const double percent =
      static_cast<double>(GetStreamPosition()) / static_cast<double>(size) * 100.0;
  return static_cast<int>(std::lround(std::min(percent, 100.0)));
}

/// Reading goes on there; what has been read ahead is dropped.
void TStreamProvider::MoveTo(qint64 position) {
  position_ = position;
  chunk_.reset();
  lineCut_ = false;
  scanner_ = TNumberScanner();
  Thread().Discard();
}

void TStreamProvider::Reset() {
  TThreadProvider::Reset();
  if (!stream_) return;
  MoveTo(0);
  NotifyProgress();
}

void TStreamProvider::SetActive(bool active) {
  if (active && !GetActive()) emptyStreams_ = 0;
  TThreadProvider::SetActive(active);
}

// Values

void TStreamProvider::ValueTaken() {
  offset_ = Thread().GetLast().mark;
  emptyStreams_ = 0;
}

void TStreamProvider::ValueDelivered() {
  if (chunk_ && static_cast<qint64>(offset_) > nextProgress_) NotifyProgress();
}

void TStreamProvider::NotifyProgress() {
  if (!stream_) return;
  nextProgress_ += progressStep_;
  if (nextProgress_ > stream_->size()) nextProgress_ = 0;
  emit OnProgress(this);
}

TStreamProvider::TAnswer TStreamProvider::NextWork() {
  const QPointer<TStreamProvider> self(this);
  if (Thread().TakeEnd() && chunk_ && !FinishWork()) return TAnswer::Done;
  if (IsExhausted()) {
    const TAnswer answer = FillBuffer();
    // Whoever was notified of a failure may have switched the provider on again.
    if (answer == TAnswer::Again || !self || !GetActive() || !chunk_) return answer;
  }
  Worker().SetWork(chunk_, offset_);
  return TAnswer::Done;
}

/// Takes over where the worker came to; false if it stopped at a bad word.
bool TStreamProvider::FinishWork() {
  const TStreamThread& worker = Worker();
  offset_ = worker.Offset();
  scanner_ = worker.Scanner();
  if (!worker.AtBadWord()) return true;
  const qint64 position = GetStreamPosition() - scanner_.BadLength();
  Fail(QStringLiteral("Cannot read %1: \"%2\" at byte %3 is no number")
           .arg(GetStreamName(), QString::fromStdString(scanner_.BadText()),
                QString::number(position)));
  return false;
}

bool TStreamProvider::IsExhausted() const {
  return !chunk_ || static_cast<qint64>(offset_) >= chunk_->bytes.size();
}

// Chunks

/// Makes the next chunk: the answer is Done then, or if the provider is inactive or gone.
TStreamProvider::TAnswer TStreamProvider::FillBuffer() {
  const QPointer<TStreamProvider> self(this);
  if (!stream_) ProvideStream();
  if (!self || !GetActive()) return TAnswer::Done;
  if (!stream_) {
    Stop();
    return TAnswer::Done;
  }
  if (!stream_->isReadable() || stream_->isSequential()) {
    Fail(QStringLiteral("Cannot read %1: it is not open, or offers no positions")
             .arg(GetStreamName()));
    return TAnswer::Done;
  }
  LeaveChunk();
  const std::optional<bool> more = reader_.HasData(position_);
  if (!more) return FailReading();
  return *more ? DefineBufferSize() : EndStream();
}

void TStreamProvider::LeaveChunk() {
  if (!chunk_) return;
  position_ = chunk_->End();
  lineCut_ = chunk_->cut;
  chunk_.reset();
}

TStreamProvider::TAnswer TStreamProvider::FailReading() {
  Fail(QStringLiteral("Cannot read %1: %2").arg(GetStreamName(), reader_.GetError()));
  return TAnswer::Done;
}

/// The next turn goes on with what Reset has chosen. Streams without a number are not read in a
/// circle for ever.
TStreamProvider::TAnswer TStreamProvider::EndStream() {
  const QPointer<TStreamProvider> self(this);
  const QString name = GetStreamName();
  NotifyProgress();
  if (self) Reset();
  if (!self || !GetActive()) return TAnswer::Done;
  if (++emptyStreams_ <= GetStreamsPerRound()) return TAnswer::Again;
  Fail(QStringLiteral("Cannot go on reading: there is no number in %1").arg(name));
  return TAnswer::Done;
}

/// Reads the lines from the beginning of the present one on, about a mebibyte.
TStreamProvider::TAnswer TStreamProvider::DefineBufferSize() {
  constexpr qint64 kChunkSize = 1'048'580;
  if (!lineCut_) {
    const qint64 before = position_;
    const std::optional<bool> found = reader_.FindLineStart(position_);
    if (!found) return FailReading();
    if (!*found) return TAnswer::Again;
    if (position_ < before) scanner_ = TNumberScanner();
    scanner_.EndLine();
  }
  const auto lines = reader_.ReadLines(position_, lineCut_ ? 0 : kChunkSize);
  if (!lines) return FailReading();
  // Rounds are counted from the first line of a chunk on.
  if (!lineCut_) TCustomDataProvider::Reset();
  chunk_ = std::make_shared<TChunk>(TChunk{position_, lines->bytes, lines->cut, scanner_});
  offset_ = position_ == 0 && lines->bytes.startsWith(kByteOrderMark) ? kByteOrderMark.size() : 0;
  progressStep_ = lines->bytes.size() / 10;
  nextProgress_ = 0;
  return TAnswer::Done;
}
