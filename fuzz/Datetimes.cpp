#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "components/graphing/Datetimeformat.h"

#include "model/Datetime.h"

/// A pattern for dates and times, with the time in the first bytes; and the same text as a typed
/// time, which is read back from what it is written as.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  double days = 0.0;
  if (size < sizeof days) return 0;
  std::memcpy(&days, bytes, sizeof days);
  const QString pattern = QString::fromUtf8(reinterpret_cast<const char*>(bytes) + sizeof days,
                                            static_cast<qsizetype>(size - sizeof days));
  constexpr qsizetype kLongestPart = 100;
  for (const double time : {days, 45000.5, -0.25}) {
    const auto text = FormatDateTime(pattern, TDateTime(time));
    if (text && text->size() > kLongestPart * (pattern.size() + 1)) std::abort();
  }
  for (const auto& typed : {ScanTypedTime(pattern), ScanTypedTime(TypedTime(TDateTime(days)))}) {
    if (!typed) continue;
    const auto again = ScanTypedTime(TypedTime(*typed));
    constexpr double kMillisecond = 1.0 / (1e3 * kSecondsPerDay);
    if (!again || !(std::abs(again->Days() - typed->Days()) <= kMillisecond)) std::abort();
  }
  return 0;
}
