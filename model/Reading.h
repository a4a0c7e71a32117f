#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "model/Loadreport.h"
#include "model/Textscanner.h"

/// One reading of a text: where it stands, what it found, how far it is.
class TReading {
 public:
  TReading(std::string_view text, TLoadReport& report, const TLoadProgress& progress)
      : Scanner(text), Report(report), progress_(progress) {}

  TTextScanner Scanner;
  TLoadReport& Report;

  /// Counts how many characters more have been dealt with, and how many nodes were made besides:
  /// they take time and memory too. What is passed in vain counts nothing. False, and noted in the
  /// report, once the user has cancelled. Throws std::bad_alloc before the system's memory runs
  /// out.
  bool Advance(std::size_t characters, std::size_t nodes = 0);

  /// Moves behind the next occurrence of `text`; false if there is none or the user cancelled.
  bool Search(std::string_view text);

 private:
  void WeighMemory(std::size_t work);

  TLoadProgress progress_;
  std::size_t done_ = 0;        ///< characters dealt with
  std::size_t unreported_ = 0;  ///< work since progress was reported, in characters
  std::size_t unweighed_ = 0;   ///< work since the memory was looked at, in characters
};

/// Notes at `position` that a decimal comma has cut a number.
void NoteDecimalComma(TReading& reading, std::size_t position);

/// A value that can be drawn and reckoned with: finite, and not absurdly large.
inline bool IsUsable(double value) { return std::abs(value) <= 1e30; }

/// One "%d%lf%lf%lf" record, or with angles "%d%lf%lf%lf%lf%lf%lf".
struct TNodeRecord {
  std::size_t Position = 0;  ///< where it begins in the text
  std::int32_t ID = 0;
  std::array<double, 6> Values = {};  ///< x, y, z, then the angles, 0 where there are none

  bool IsUsable() const {
    bool usable = true;
    for (const double value : Values) usable &= ::IsUsable(value);
    return usable;
  }
};

/// Reads the records that follow up to the first that is not whole and hands each to `take`. A
/// record cut short by text that is not the next header is noted as a fault, and so are records
/// that go on behind a line of other text. False if cancelled.
template <class TTake>
bool ReadNodeRecords(TReading& reading, TTake take);

/// A step of ReadNodeRecords: reads the ID and `valueCount` values. On a record that is not whole
/// it notes what is lost and returns false.
bool ReadNodeRecord(TReading& reading, int valueCount, TNodeRecord& record);

template <class TTake>
bool ReadNodeRecords(TReading& reading, TTake take) {
  constexpr std::size_t kTellEvery = 1 << 16;
  const int valueCount = HasAngleData(reading.Scanner) ? 6 : 3;
  std::size_t reported = reading.Scanner.Position();
  TNodeRecord record;
  while (ReadNodeRecord(reading, valueCount, record)) {
    take(record);
    if (reading.Scanner.Position() - reported < kTellEvery) continue;
    if (!reading.Advance(reading.Scanner.Position() - reported)) return false;
    reported = reading.Scanner.Position();
  }
  return reading.Advance(reading.Scanner.Position() - reported);
}
