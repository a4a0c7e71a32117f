#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

class QIODevice;

/// Reads whole lines from places of a device. A member of its owner, on the thread of that. The
/// device ends where it gives no more, whatever size it reported. All calls answer nothing if the
/// device fails.
class TLineReader {
 public:
  /// The most that a call reads, bytes, so that no line can hold up the thread or fill the memory.
  static constexpr qint64 kMost = qint64{1} << 22;

  /// Not owned; null for none.
  explicit TLineReader(QIODevice* device = nullptr) : device_(device) {}

  /// Whether there is anything to be read at `position`.
  std::optional<bool> HasData(qint64 position);

  /// Moves `position` back to the beginning of its line. False if that is farther than one call
  /// goes; the next goes on.
  std::optional<bool> FindLineStart(qint64& position);

  struct TLines {
    QByteArray bytes;
    bool cut = false;  ///< the last line goes on behind them
  };
  /// Reads from `position` at least `minimum` bytes and on to the next line feed, or to the end.
  std::optional<TLines> ReadLines(qint64 position, qint64 minimum);

  /// Why the device failed.
  const QString& GetError() const { return error_; }

 private:
  std::optional<qint64> Read(qint64 position, char* bytes, qint64 size);
  std::optional<qint64> Append(QByteArray& bytes, qint64 start, qint64 size);

  QIODevice* device_;
  QString error_;
};
