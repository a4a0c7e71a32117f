#pragma once

#include <QIODevice>
#include <memory>

#include "components/sources/Dataprovider.h"
#include "components/sources/Linereader.h"
#include "components/sources/Numberscanner.h"

class TStreamThread;

/// Reads numbers from a stream, see TNumberScanner, in chunks of whole lines of about a mebibyte,
/// each of which begins with the first client. A byte order mark at the beginning is left out. A
/// word that looks like a number and is none stops the provider; it goes on behind it when it is
/// active again.
class TStreamProvider : public TThreadProvider {
  Q_OBJECT

 public:
  explicit TStreamProvider(QWidget* parent = nullptr);

  /// Reads another stream from where it stands. It must be open, and offer positions; null takes
  /// the stream away. May be called while values flow.
  void SetStream(std::unique_ptr<QIODevice> stream);

  /// Bytes from the beginning of the stream to behind the last delivered value and the white space
  /// that ended it; 0 without a stream.
  qint64 GetStreamPosition() const;
  /// Goes on at the beginning of the line that holds the position. A negative one is ignored.
  /// Without a stream it counts for the next that the provider opens.
  void SetStreamPosition(qint64 position);
  /// What forms store: the position, or without a stream the one that waits for the next.
  qint64 GetStoredPosition() const { return stream_ ? GetStreamPosition() : position_; }
  /// The position as a part of the size, 0 to 100; 100 without a stream or if it is empty.
  int GetStreamPosPercent() const;

  /// Goes to the beginning of the stream.
  void Reset() override;
  void SetActive(bool active) override;

 signals:
  /// The position has moved on, about a tenth of a chunk, to the end, or to another place.
  void OnProgress(QObject* sender);

 protected:
  bool HasStream() const { return stream_ != nullptr; }
  /// Takes the stream away, if there is one; the next is read from its beginning.
  void DropStream();
  /// There is no stream and a value is wanted. Descendants open one, and then call the base, which
  /// moves it to the position that was set before; without a stream the provider stops.
  virtual void ProvideStream();
  void OpenStream(std::unique_ptr<QIODevice> stream);
  /// For messages.
  virtual QString GetStreamName() const;
  /// How many streams come one after the other until the first comes again.
  virtual int GetStreamsPerRound() const { return 1; }

  void ValueTaken() override;
  void ValueDelivered() override;
  TAnswer NextWork() override;

 private:
  /// A piece of the stream in memory; the worker and the provider share it, unchanged.
  struct TChunk;
  friend class TStreamThread;

  TStreamThread& Worker();
  void NotifyProgress();
  void MoveTo(qint64 position);
  bool FinishWork();
  bool IsExhausted() const;
  void LeaveChunk();
  TAnswer FillBuffer();
  TAnswer EndStream();
  TAnswer DefineBufferSize();
  TAnswer FailReading();

  std::unique_ptr<QIODevice> stream_;
  TLineReader reader_;
  std::shared_ptr<const TChunk> chunk_;
  std::size_t offset_ = 0;   ///< in the chunk, behind the last delivered value
  qint64 position_ = 0;      ///< in the stream, where the next chunk begins, while there is none
  bool lineCut_ = false;     ///< the next chunk goes on with the line of the last
  TNumberScanner scanner_;   ///< at the beginning of the next chunk
  qint64 progressStep_ = 0;  ///< bytes
  qint64 nextProgress_ = 0;  ///< in the chunk
  int emptyStreams_ = 0;     ///< that came to their end since the last value
};
