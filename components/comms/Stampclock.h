#pragma once

#include <cstdint>
#include <functional>

#include "model/Datetime.h"

/// Where the time comes from.
struct TTimeSource {
  /// Nanoseconds from any moment on, whatever the clock is set to.
  static std::int64_t SteadyNanoseconds();

  std::function<TDateTime()> Wall = TDateTime::Now;
  std::function<std::int64_t()> Elapsed = SteadyNanoseconds;
};

/// Gives the time that rows are stamped with. It runs evenly, as a stop-watch does, so that small
/// corrections of the system's clock do not disturb a recording; but when that clock has jumped,
/// because summer time has ended, a time server was found late or the machine has slept, it
/// follows.
class TStampClock {
 public:
  explicit TStampClock(TTimeSource source = {});

  /// Takes the time of the wall clock.
  void Start();
  /// In days since 30 December 1899.
  double Now() const;
  /// Takes the time of the wall clock again if that differs by more than two seconds. Returns by
  /// how many days the time has been set, 0 for not.
  double Follow();

 private:
  TTimeSource source_;
  double startTime_ = 0.0;  ///< days
  std::int64_t start_ = 0;
};
