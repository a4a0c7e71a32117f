#pragma once

#include <QDateTime>
#include <compare>

inline constexpr double kSecondsPerDay = 86400.0;

/// A date and time as days since 30 December 1899, 00:00 local time; the fraction is the time of
/// day and 1 s is 1/86400.
class TDateTime {
 public:
  constexpr TDateTime() = default;
  constexpr explicit TDateTime(double days) : days_(days) {}

  static TDateTime Now();
  static TDateTime FromQDateTime(const QDateTime& time);

  constexpr double Days() const { return days_; }

  /// Local time, to the nearest millisecond. An invalid QDateTime for a value that is not finite
  /// or lies outside the years 1 to 9999; an invalid QDateTime gives a value that is not a number.
  QDateTime ToQDateTime() const;

  /// Date and time of day as a clock on the wall shows them, to the nearest millisecond: unlike a
  /// QDateTime it knows no hours that summer time leaves out. Both invalid where ToQDateTime is.
  struct TClock {
    QDate date;
    QTime time;
  };
  TClock Clock() const;

  friend constexpr auto operator<=>(TDateTime, TDateTime) = default;
  friend constexpr bool operator==(TDateTime, TDateTime) = default;

 private:
  double days_ = 0.0;
};
