#include "model/Datetime.h"

#include <cmath>

namespace {

constexpr double kMillisecondsPerDay = 1e3 * kSecondsPerDay;
const QDate kEpoch(1899, 12, 30);

}  // namespace

TDateTime TDateTime::Now() { return FromQDateTime(QDateTime::currentDateTime()); }

TDateTime TDateTime::FromQDateTime(const QDateTime& time) {
  if (!time.isValid()) return TDateTime(std::nan(""));
  const QDateTime local = time.toLocalTime();
  const auto days = static_cast<double>(kEpoch.daysTo(local.date()));
  return TDateTime(days + local.time().msecsSinceStartOfDay() / kMillisecondsPerDay);
}

TDateTime::TClock TDateTime::Clock() const {
  const double milliseconds = std::round(days_ * kMillisecondsPerDay);
  const double day = std::floor(milliseconds / kMillisecondsPerDay);
  if (!(std::abs(day) < 4.0e6)) return {};  // far outside the years that count
  const QDate date = kEpoch.addDays(static_cast<qint64>(day));
  if (date.year() < 1 || date.year() > 9999) return {};
  return {date, QTime::fromMSecsSinceStartOfDay(
                    static_cast<int>(milliseconds - day * kMillisecondsPerDay))};
}

QDateTime TDateTime::ToQDateTime() const {
  const TClock clock = Clock();
  return clock.date.isValid() ? QDateTime(clock.date, clock.time) : QDateTime();
}
