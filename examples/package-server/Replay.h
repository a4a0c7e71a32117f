#pragma once

#include <QByteArray>
#include <vector>

/// A recorded text that is given out again, over and over: each package at its time, or all bytes
/// at an even rate.
///
/// The time of a package is that of its last row, or of its tag if its rows have none; one without
/// a time comes along with the one before. Each kind of package keeps the distances of its own
/// times, so that a clock that was set back while the record was made holds nothing up.
class TReplay {
 public:
  static constexpr double kLongestPause = 3600.0;  ///< seconds; a longer one is cut to that
  static constexpr double kShortestRound = 1.0;    ///< seconds from one beginning to the next
  static constexpr double kByteRate = 65536.0;     ///< bytes per second if no package has a time

  TReplay() : TReplay(QByteArray()) {}
  /// With a byte rate, above 0 and per second, times do not count.
  explicit TReplay(QByteArray text, double byteRate = 0.0);

  bool IsEmpty() const { return text_.isEmpty(); }

  /// Lets time pass.
  void Advance(double seconds);
  /// What is due next; empty if nothing is. Behind the last piece that is so until time passes.
  QByteArray Take();

 private:
  /// A package with what stands before it.
  struct TPiece {
    qsizetype end;   ///< in the text
    double seconds;  ///< since the start of the record
  };

  void FindPackages();
  qsizetype DueEnd();
  double Round() const;

  QByteArray text_;
  double byteRate_ = 0.0;
  std::vector<TPiece> pieces_;
  std::size_t next_ = 0;  ///< piece
  qsizetype given_ = 0;   ///< bytes of this round
  double now_ = 0.0;      ///< seconds since the start of this round
};
