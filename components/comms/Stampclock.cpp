#include "components/comms/Stampclock.h"

#include <chrono>
#include <cmath>

#include "model/Datetime.h"

std::int64_t TTimeSource::SteadyNanoseconds() {
  using std::chrono::steady_clock;
  return std::chrono::nanoseconds(steady_clock::now().time_since_epoch()).count();
}

TStampClock::TStampClock(TTimeSource source) : source_(std::move(source)) { Start(); }

void TStampClock::Start() {
  startTime_ = source_.Wall().Days();
  start_ = source_.Elapsed();
}

double TStampClock::Now() const {
  return startTime_ + static_cast<double>(source_.Elapsed() - start_) / (1e9 * kSecondsPerDay);
}

double TStampClock::Follow() {
  constexpr double kJump = 2.0 / kSecondsPerDay;
  const double change = source_.Wall().Days() - Now();
  if (!(std::abs(change) > kJump)) return 0.0;
  startTime_ += change;
  return change;
}
