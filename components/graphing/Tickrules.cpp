#include "components/graphing/Tickrules.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "model/Datetime.h"

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kLargestValue = 5e307;
constexpr double kSmallestStep = 1e-300;

// Multiples of 36,500 days, the coarsest step, so that no tick leaves the years 1 to 9999.
constexpr double kFirstDay = -693500.0;
constexpr double kLastDay = 2956500.0;

constexpr double kSecond = 1.0 / kSecondsPerDay;
constexpr double kMinute = 60.0 * kSecond;
constexpr double kHour = 3600.0 * kSecond;

// The quotes in the patterns are literal: ':msec', ':sec' and the like appear as text.
constexpr const char* kMsecTitle = "dd:mm:yyyy hh:nn:ss':msec'";
constexpr const char* kSecTitle = "dd:mm:yyyy hh:nn':sec'";
constexpr const char* kMinuteTitle = "dd:mm:yyyy 'hour:min'";

constexpr TTimeStep kTimeSteps[] = {
    {0.01 * kSecond, 0.001 * kSecond, "i", kMsecTitle},
    {0.1 * kSecond, 0.01 * kSecond, "i", kMsecTitle},
    {kSecond, 0.1 * kSecond, "i", kMsecTitle},
    {10.0 * kSecond, kSecond, "s", kSecTitle},
    {kMinute, 10.0 * kSecond, "s", kSecTitle},
    {10.0 * kMinute, kMinute, "hh:nn", kMinuteTitle},
    {kHour, 10.0 * kMinute, "hh:nn", kMinuteTitle},
    {1.0, kHour, "hh:nn", kMinuteTitle},
    {30.0, 1.0, "dd", "'day:'mm:yyyy"},
    {365.0, 30.0, "mm", "'month:'yyyy"},
    {3650.0, 365.0, "yyyy", ""},
    {36500.0, 3650.0, "yyyy", ""},
    {std::numeric_limits<double>::infinity(), 36500.0, "yyyy", ""},
};

/// A usable range from any two numbers; see the header for what becomes of NaN and of disorder.
TBounds Tamed(TBounds range, double lowest, double highest) {
  if (std::isnan(range.Min) && std::isnan(range.Max)) return {0.0, 1.0};
  if (std::isnan(range.Min)) range.Min = range.Max;
  if (std::isnan(range.Max)) range.Max = range.Min;
  range.Min = std::clamp(range.Min, lowest, highest);
  range.Max = std::clamp(range.Max, lowest, highest);
  return {range.Min, std::max(range.Min, range.Max)};
}

/// How far rounding may have moved a difference of the range's bounds.
double RoundingOf(TBounds range) {
  return 4.0 * kEpsilon * std::max(std::abs(range.Min), std::abs(range.Max));
}

/// `value` in steps, as a whole number by `round`; a value within rounding error of a tick is on
/// it, so that 0.3 in steps of 0.1 is 3 and not 2.9999999999999996.
template <typename Round>
double WholeSteps(double value, double step, Round round) {
  const double steps = value / step;
  const double nearest = std::round(steps);
  const double rounding = std::clamp(4.0 * kEpsilon * std::abs(steps), 1e-9, 1e-2);
  return std::abs(steps - nearest) <= rounding ? nearest : round(steps);
}

/// The minor subdivisions follow from the number of major intervals, the same way on every scale
/// that has steps.
TTickChoice TicksOfStep(TBounds range, double step) {
  const auto down = [](double v) { return std::floor(v); };
  const auto up = [](double v) { return std::ceil(v); };
  TTickChoice ticks;
  // Adding 0.0 turns -0.0, which would be labelled "-0", into 0.0.
  ticks.Start = WholeSteps(range.Min, step, down) * step + 0.0;
  ticks.End = WholeSteps(range.Max, step, up) * step + 0.0;
  if (!(ticks.End > ticks.Start)) ticks.End = ticks.Start + step;
  if (!(ticks.End > ticks.Start)) {  // steps finer than the numbers can tell apart
    ticks.Start = range.Min;
    ticks.End = range.Max;
  }
  ticks.MajorCount = std::max(1, static_cast<int>(std::lround((ticks.End - ticks.Start) / step)));
  ticks.MinorCount = ticks.MajorCount * (ticks.MajorCount < 5 ? 10 : ticks.MajorCount < 10 ? 5 : 2);
  return ticks;
}

}  // namespace

double PowerOfTen(int exponent) { return std::pow(10.0, exponent); }

int Decade(double value) {
  int decade = static_cast<int>(std::floor(std::log10(value)));
  // The logarithm of a power of ten may be off by its last bit.
  if (PowerOfTen(decade + 1) <= value) ++decade;
  if (PowerOfTen(decade) > value) --decade;
  return decade;
}

TBounds ValidLinearRange(TBounds range) {
  range = Tamed(range, -kLargestValue, kLargestValue);
  if (range.Min == range.Max) {
    const double around = std::abs(range.Max);
    const double half = around < kSmallestStep ? 1.0 : PowerOfTen(Decade(around));
    range.Min -= half;
    range.Max += half;
  }
  return range;
}

TBounds ValidLogRange(TBounds range) {
  range = Tamed(range, -1e300, 1e300);
  const auto clipped = [](double value) { return std::max(value, 1e-300); };
  range.Min = range.Min <= 0.0 ? 1e-6 : PowerOfTen(Decade(clipped(range.Min)));
  if (range.Max <= 0.0) {
    range.Max = 1e-5;
  } else {
    const double maximum = clipped(range.Max);
    const double below = PowerOfTen(Decade(maximum));
    range.Max = below == maximum ? below : PowerOfTen(Decade(maximum) + 1);
  }
  if (range.Max < range.Min) range.Max = range.Min;
  if (range.Min == range.Max) range.Min = PowerOfTen(Decade(range.Max) - 1);
  return range;
}

TBounds ValidTimeRange(TBounds range) {
  range = Tamed(range, kFirstDay, kLastDay);
  if (range.Min == range.Max) {
    range.Max = std::ceil(range.Max);
    range.Min = std::floor(range.Min);
  }
  if (range.Min == range.Max) range.Max += 1.0;
  return range;
}

TTickChoice LinearTicks(TBounds range) {
  const double width = std::max(range.Max - range.Min, kSmallestStep);
  // Rounding must not push a width of exactly one or two decades over the limit.
  const double limit = 1.0 + 1e-9;
  const int decade = Decade(width);
  const double relative = width / PowerOfTen(decade);
  double step = PowerOfTen(decade);
  if (relative <= 1.0 * limit) {
    step = PowerOfTen(decade - 1);
  } else if (relative <= 2.0 * limit) {
    step = 2.0 * PowerOfTen(decade - 1);
  }
  return TicksOfStep(range, std::max(step, kSmallestStep));
}

TTickChoice LogTicks(TBounds range) {
  const int decades = std::max(1, Decade(range.Max) - Decade(range.Min));
  return {range.Min, range.Max, decades, decades};
}

const TTimeStep& TimeStep(TBounds range) {
  const double width = range.Max - range.Min - RoundingOf(range);
  return *std::find_if(std::begin(kTimeSteps), std::end(kTimeSteps),
                       [&](const TTimeStep& step) { return width <= step.LimitDays; });
}

std::vector<const char*> TimePatterns(double step) {
  constexpr const char* kAll = "yyyy-mm-dd hh:nn:ss.zzz";
  step *= 1.0 + 1e-9;
  if (step < kSecond) return {"s.zzz", "nn:ss.zzz", "hh:nn:ss.zzz", kAll};
  if (step < kMinute) return {"nn:ss", "hh:nn:ss", "dd hh:nn:ss", kAll};
  if (step < 1.0) return {"dd hh:nn", "yyyy-mm-dd hh:nn", kAll};
  if (step < 30.0) return {"mm-dd", "yyyy-mm-dd", kAll};
  return {"yyyy-mm", "yyyy-mm-dd", kAll};
}

TTickChoice TimeTicks(TBounds range, const TTimeStep& step) {
  return TicksOfStep(range, step.StepDays);
}
