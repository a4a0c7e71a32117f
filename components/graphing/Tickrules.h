#pragma once

#include <utility>
#include <vector>

/// Which ticks a value range gets, on each kind of scale: arithmetic on numbers alone, which needs
/// no axis. Every function answers every input, whatever its bounds: NaN, infinite or absurdly
/// narrow ranges first become a range that can be drawn (see ValidLinearRange and its kin), so that
/// no tick count ever leaves 1 to 616.

/// A range, lower bound first.
struct TBounds {
  double Min = 0.0;
  double Max = 1.0;
};

/// The ticks of a range: Start and End are the first and the last major and minor tick, Count is
/// the number of intervals between them.
struct TTickChoice {
  double Start = 0.0;
  double End = 1.0;
  int MajorCount = 1;
  int MinorCount = 1;
};

/// One step of a time axis: ranges of up to `LimitDays` get ticks every `StepDays`.
struct TTimeStep {
  double LimitDays;
  double StepDays;
  const char* LabelPattern;  ///< date-time pattern of the tick labels
  const char* TitlePattern;  ///< date-time pattern of the title; empty for steps of years
};

/// 10^exponent.
double PowerOfTen(int exponent);
/// The largest n with 10^n <= value, for a positive finite value.
int Decade(double value);

/// The range that a linear axis can show. A maximum below the minimum collapses onto it; an empty
/// range is widened on both sides by the decade of its value, by 1 around 0.
/// A NaN bound takes the place of the other one, two of them become 0..1. Bounds beyond +-5e307 are
/// cut there, so that the width of the range stays finite.
TBounds ValidLinearRange(TBounds range);
/// The range that a logarithmic axis can show: whole decades within 1e-300..1e300. A minimum that
/// is not positive becomes 1e-6, a maximum 1e-5. NaN bounds as above.
TBounds ValidLogRange(TBounds range);
/// The range that a time axis can show, within the years 1 to 9994. An empty range becomes its
/// whole day; at midnight, where that is empty too, the day that begins. NaN bounds as above.
TBounds ValidTimeRange(TBounds range);

/// Steps of 1, 2 or 10 tenths of the range's decade, 2 to 11 of them, over a valid linear range.
/// Steps end at 1e-300: a narrower range is shown as part of one such step.
TTickChoice LinearTicks(TBounds range);
/// One major interval for each decade of a valid logarithmic range.
TTickChoice LogTicks(TBounds range);
/// The first step that suits a valid time range.
const TTimeStep& TimeStep(TBounds range);
/// Date-time patterns that distinguish what lies `step` days apart, each more than the one before.
std::vector<const char*> TimePatterns(double step);
/// The ticks of a step over a valid time range; at most 101 intervals.
TTickChoice TimeTicks(TBounds range, const TTimeStep& step);
