#include "model/Datetime.h"

#include <cmath>

namespace {

constexpr qint64 kMillisecondsPerDay = 86'400'000;
const QDate kEpoch(1899, 12, 30);

}  // namespace

TDateTime TDateTime::Now() { return FromQDateTime(QDateTime::currentDateTime()); }

TDateTime TDateTime::FromQDateTime(const QDateTime& time) {
  if (!time.isValid()) return TDateTime(std::nan(""));
  const QDateTime local = time.toLocalTime();
  const auto days = static_cast<double>(kEpoch.daysTo(local.date()));
  return TDateTime(days +
                   local.time().msecsSinceStartOfDay() / static_cast<double>(kMillisecondsPerDay));
}

QDateTime TDateTime::ToQDateTime() const {
  static const auto kFirst = static_cast<double>(kEpoch.daysTo(QDate(1, 1, 1)));
  static const auto kBehindLast = static_cast<double>(kEpoch.daysTo(QDate(10000, 1, 1)));
  if (!(days_ >= kFirst && days_ < kBehindLast)) return {};

  const double whole = std::floor(days_);
  qint64 day = static_cast<qint64>(whole);
  qint64 milliseconds = std::llround((days_ - whole) * static_cast<double>(kMillisecondsPerDay));
  if (milliseconds == kMillisecondsPerDay) {
    milliseconds = 0;
    ++day;
  }
  const QDateTime time(kEpoch.addDays(day),
                       QTime::fromMSecsSinceStartOfDay(static_cast<int>(milliseconds)));
  return time.date().year() <= 9999 ? time : QDateTime();
}
