#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringView>

#include "components/channels/Calibration.h"

/// Names for what histories keep and what displays pick from them.
struct TStatTypes {
  Q_GADGET

 public:
  /// One bit each, so that they can also stand in a set; see Ordinal.
  enum TStatInterval : int {
    si1_Second = 1,
    si1_Minute = 2,
    si1_Hour = 4,
    si1_Day = 8,
    si1_Month = 16,
    si1_Year = 32
  };
  Q_ENUM(TStatInterval)
  Q_DECLARE_FLAGS(TStatIntervals, TStatInterval)
  Q_FLAG(TStatIntervals)

  enum TStatValue : int { svMean, svMax, svMin, svStDev, svTime };
  Q_ENUM(TStatValue)
};
Q_DECLARE_OPERATORS_FOR_FLAGS(TStatTypes::TStatIntervals)

using TStatInterval = TStatTypes::TStatInterval;
using TStatIntervals = TStatTypes::TStatIntervals;
using TStatValue = TStatTypes::TStatValue;

// Not "using enum": clang 14 crashes where names from it are compared.
inline constexpr TStatInterval si1_Second = TStatTypes::si1_Second;
inline constexpr TStatInterval si1_Minute = TStatTypes::si1_Minute;
inline constexpr TStatInterval si1_Hour = TStatTypes::si1_Hour;
inline constexpr TStatInterval si1_Day = TStatTypes::si1_Day;
inline constexpr TStatInterval si1_Month = TStatTypes::si1_Month;
inline constexpr TStatInterval si1_Year = TStatTypes::si1_Year;
inline constexpr TStatValue svMean = TStatTypes::svMean;
inline constexpr TStatValue svMax = TStatTypes::svMax;
inline constexpr TStatValue svMin = TStatTypes::svMin;
inline constexpr TStatValue svStDev = TStatTypes::svStDev;
inline constexpr TStatValue svTime = TStatTypes::svTime;

inline constexpr int kStatIntervals = 6;
/// The interval's place, 0 to 5 from the second to the year; -1 for no interval.
int Ordinal(TStatInterval interval);
/// The interval at a place of 0 to 5.
TStatInterval IntervalAt(int ordinal);
/// How many records a history of the interval keeps; 60 for no interval.
int HistoryLength(TStatInterval interval);
/// What such a history shows, "Last minute" to "All years"; empty for no interval.
QString IntervalText(TStatInterval interval);

/// Statistics of many values, in the layout in which they are stored: eight doubles.
struct TStatSet {
  double Count = 0.0;
  double Sum = 0.0;
  double SqSum = 0.0;  ///< sum of squares
  double Max = 0.0;    ///< of no meaning while Count is 0, as is Min
  double Min = 0.0;
  double Mean = 0.0;   ///< Mean and StDev are those of the last ComputeMoments
  double StDev = 0.0;  ///< of the sample (n - 1)
  double Time = 0.0;   ///< of the last block that went in, days since 30 December 1899

  /// Adds the values of another record; its time and moments do not count. False, and nothing
  /// changes, if it counts less than one value but some, or a sum would not be finite.
  bool Merge(const TStatSet& other);
  /// Mean and StDev from the sums. A variance that rounding has made negative counts as 0.
  void ComputeMoments();
  /// The same values under another calibration. A record that then exceeds the range of a double
  /// loses its values and keeps its time.
  void RescaleData(const TCalibration& from, const TCalibration& to);
  double Value(TStatValue value) const;
  /// The same as a display shows it while the record is accumulated: Mean and StDev are those of
  /// what is in it so far.
  double ShownValue(TStatValue value) const;
  /// All eight are numbers, the count is 0 or at least 1, and the time lies in the years 1 to 9999.
  [[nodiscard]] bool IsValid() const;

  /// The record as text, in the order of the header and with a full stop in its numbers whatever
  /// the locale is: time "%0.8lf", four values "%0.5E", count "%0.0lf", sums "%0.6E".
  QString GetAsText() const;
  /// "Time Mean Max Min StDev Count Sum Sum2"
  static QString GetStatSetHeader();
  /// Reads what GetAsText wrote; a word in front of the numbers is skipped. False, and nothing
  /// changes, if there are not eight numbers, or anything else, or the record is not valid.
  [[nodiscard]] bool ScanFromText(QStringView text);

  friend bool operator==(const TStatSet&, const TStatSet&) = default;
};
static_assert(sizeof(TStatSet) == 64);

/// A time that histories take: days since 30 December 1899 within the years 1 to 9999.
[[nodiscard]] bool IsHistoryTime(double time);

/// Whether a time has reached the end of an interval, or lies behind it. Stamps are rounded, so
/// what lacks half a millisecond is there.
[[nodiscard]] bool ReachesEnd(double time, double end);
[[nodiscard]] bool PassesEnd(double time, double end);
