#pragma once

#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "exchange/Fields.h"
#include "exchange/Findings.h"
#include "exchange/Job.h"
#include "model/Loadreport.h"

/// One reading of a universal file, data set by data set: where it stands, where its entries and
/// what is found go. Not owned: text, job and findings must outlive it.
class TUniversalReading {
 public:
  TUniversalReading(std::string_view text, TJob& job, TFindings& findings,
                    const TLoadProgress& progress);

  TJob& Job;
  bool HasHeader = false;     ///< one was read
  std::size_t Rotations = 0;  ///< data sets whose rotations were left out

  /// Moves to the line with the type of the next data set; false behind the last, or if the user
  /// has cancelled.
  bool BeginSet();
  /// Passes what is left of the data set, and notes it if its end is missing.
  void EndSet();

  /// Moves to the next line of the data set; false at its end.
  bool Next();
  /// Lets Next() give the present line once more.
  void Back();

  const QString& Type() const { return type_; }  ///< "2411", "58b"
  std::string_view Line() const { return lines_.Line(); }
  TPlace Place() const { return {file_, begin_, type_.toInt()}; }  ///< of the data set
  std::string_view Rest() const { return lines_.Text().substr(lines_.Behind()); }

  /// Goes on so many characters behind the present line.
  void Skip(std::size_t characters) { lines_.SkipTo(lines_.Behind() + characters); }

  /// Whether what the file has given so far takes no more memory than its text justifies: a hostile
  /// one says much in few characters.
  bool HasRoom() const { return Taken() - takenBefore_ <= kFree + 2 * lines_.Behind(); }

  /// The next line as text, without blanks around it.
  QString ReadText();
  /// Reads the integers of the next line, at most as many as there is room for, by columns of ten;
  /// returns their number.
  int ReadInts(std::span<std::int32_t> ints);
  /// Reads reals until all are there or a line has fewer than it could; returns their number.
  int ReadReals(std::span<double> reals, int perLine, int width);

  void Use(const QString& what) { findings_.Use(type_, begin_, what); }
  /// The data set, or a part of it that has no line.
  void LeaveOut(const QString& why) { findings_.LeaveOut(type_, begin_, why); }
  void LeaveOutLine(const QString& why) { findings_.LeaveOut(type_, lines_.Number(), why); }
  /// The present line, which should have been a "node"; a blank one is nothing worth a word.
  void LeaveOutStray(const QString& expected);
  void WarnOfSet(const QString& what) { findings_.Warn(type_, begin_, what); }
  void Warn(const QString& what) { findings_.Warn(type_, lines_.Number(), what); }
  /// About the file as a whole.
  void LeaveOutOfFile(const QString& why) { findings_.LeaveOut({}, 0, why); }

  /// Before an entry is added to a list: if it is full, makes room for what the rest of the text
  /// holds in records of this many characters, `most` at the most.
  template <class TList>
  void MakeRoom(TList& list, std::size_t recordLength,
                std::size_t most = std::numeric_limits<std::size_t>::max()) const {
    constexpr std::size_t kFew = 1024;
    const std::size_t count = list.size();
    if (count < list.capacity() || count < kFew) return;
    list.reserve(count + std::max(count / 2, std::min(Rest().size() / recordLength, most)));
  }

 private:
  static constexpr std::size_t kFree = std::size_t{16} << 20;

  enum class TState { Outside, Inside, Ended, Cut, Cancelled };

  bool Tick();
  std::size_t Taken() const;

  TLineScanner lines_;
  TFindings& findings_;
  const TLoadProgress& progress_;
  int file_ = 0;
  std::size_t takenBefore_;
  QString type_;
  std::size_t begin_ = 0;   ///< line of the data set's type
  std::size_t ticked_ = 0;  ///< position at which progress was told
  TState state_ = TState::Outside;
};

/// The width of columns that are told apart by the blanks between them.
constexpr int kAnyWidth = 1'000'000;

/// Whether a line is the mark that begins and ends data sets: -1 in columns 5 and 6, nothing else.
bool IsMark(std::string_view line);

/// The type on the first line of a data set, "58b"; empty if the line cannot be one.
std::string_view TypeOn(std::string_view line);
