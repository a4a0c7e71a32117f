#include <bit>

#include "components/graphing/Axis.h"
#include "components/graphing/Tickrules.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

constexpr double kSecond = 1.0 / 86400.0;

void ShowRange(TAxis& axis, TAxis::TAxisScale scale, double min, double max) {
  axis.SetScale(scale);
  GiveRange(axis, min, max);
  axis.AutoScale();
}

/// The ticks that an axis chooses for a range, on which the drawn range ends.
void ExpectTicks(TAxis& axis, TAxis::TAxisScale scale, double min, double max, double start,
                 double end, int major, int minor) {
  SCOPED_TRACE(testing::Message() << min << " .. " << max);
  ShowRange(axis, scale, min, max);
  for (const TTick* tick : {axis.GetMajorTick(), axis.GetMinorTick()}) {
    EXPECT_DOUBLE_EQ(tick->Start(), start);
    EXPECT_DOUBLE_EQ(tick->End(), end);
    EXPECT_EQ(tick->Count(), tick == axis.GetMajorTick() ? major : minor);
  }
  EXPECT_DOUBLE_EQ(axis.WorkingMin(), start);
  EXPECT_DOUBLE_EQ(axis.WorkingMax(), end);
}

TEST(AxisTicks, OfALinearAxisAreRoundNumbers) {
  const std::tuple<double, double, double, double, int, int> cases[] = {
      {0, 1, 0, 1, 10, 20},                     // exactly one decade: steps of 0.1
      {0, 2, 0, 2, 10, 20},                     // exactly two: steps of 0.2
      {0, 2.5, 0, 3, 3, 30},                    // more: steps of 1
      {0, 1.01, 0, 1.2, 6, 30},                 // just above one: steps of 0.2
      {0, 9.9, 0, 10, 10, 20},                  //
      {0.3, 1.3, 0.3, 1.3, 10, 20},             // 0.3 / 0.1 is 2.9999999999999996
      {0.6, 0.8, 0.6, 0.8, 10, 20},             // 0.8 - 0.6 is a little more than 0.2
      {-0.35, 0.72, -0.4, 0.8, 6, 30},          // across zero
      {-7, -3, -7, -3, 4, 40},                  // negative
      {1e-9, 3e-9, 1e-9, 3e-9, 10, 20},         // tiny
      {1.1e6, 9.8e6, 1e6, 1e7, 9, 45},          // huge
      {1e6, 1e6 + 1, 1e6, 1e6 + 1, 10, 20},     // far from zero
      {0, 0, -1, 1, 10, 20},                    // empty at zero: 1 on both sides
      {350, 350, 240, 460, 11, 22},             // empty: becomes 250..450 with steps of 20
      {-350, -350, -460, -240, 11, 22},         //
      {5, 2, 4, 6, 10, 20},                     // collapses onto the minimum, then widens
      {1, 1 + 0x1p-52, 1, 1 + 0x1p-52, 2, 20},  // one ulp: steps of 1e-16
      {1e-320, 2e-320, 0, 1e-300, 1, 10},       // too narrow for a step: part of the smallest
      {0, 3e-300, 0, 3e-300, 3, 30},            //
      {-kInfinity, kInfinity, -5e307, 5e307, 10, 20},  // cut where the width is finite
      {0, kInfinity, 0, 5e307, 5, 25},                 //
      {1e308, 1.1e308, 4e307, 6e307, 10, 20},          // beyond the cut: empty there
      {kNan, kNan, 0, 1, 10, 20},                      // says nothing
      {kNan, 7, 6, 8, 10, 20},                         // only the other bound counts: 7..7
      {7, kNan, 6, 8, 10, 20}};
  for (const auto& [min, max, start, end, major, minor] : cases) {
    TAxis axis;
    ExpectTicks(axis, TAxis::asLinear, min, max, start, end, major, minor);
  }
  TAxis axis;
  ShowRange(axis, TAxis::asLinear, -0.09, 0.01);  // nine steps up the sum is -1.4e-17
  EXPECT_EQ(axis.GetMajorTick()->Value(9), 0.0);
  EXPECT_NEAR(axis.GetMajorTick()->Value(10), 0.01, 1e-15);
}

TEST(AxisTicks, OfALogarithmicAxisAreWholeDecades) {
  const std::tuple<double, double, double, double, int> cases[] = {
      {3, 70, 1, 100, 2},
      {1, 1000, 1, 1000, 3},          // already whole
      {0.002, 5, 0.001, 10, 4},       //
      {0, 50, 1e-6, 100, 8},          // a minimum of zero
      {-5, -2, 1e-6, 1e-5, 1},        // nothing positive at all
      {10, 10, 1, 10, 1},             // empty: a decade below
      {100, 1, 10, 100, 1},           // collapses onto the minimum
      {1, kInfinity, 1, 1e300, 300},  //
      {1e-320, 1, 1e-300, 1, 300},    //
      {-kInfinity, kInfinity, 1e-6, 1e300, 306},
      {kNan, kNan, 1e-6, 1, 6}};
  for (const auto& [min, max, start, end, decades] : cases) {
    TAxis axis;
    ExpectTicks(axis, TAxis::asLog, min, max, start, end, decades, decades);
  }
}

TEST(AxisTicks, OfATimeAxisFollowCalendarUnits) {
  constexpr double kDay = 36500.0;  // 6 December 1999; 100 steps of 365 days, 10 of 3650
  const std::string date = "Date Time : 06:12:1999 ";
  const std::string milliseconds = date + "00:00:00:msec", seconds = date + "00:00:sec";
  const std::string minutes = date + "hour:min";
  const std::tuple<double, double, int, int, const char*, std::string> cases[] = {
      {0.010 * kSecond, 0.001 * kSecond, 10, 20, "i", milliseconds},
      {0.011 * kSecond, 0.01 * kSecond, 2, 20, "i", milliseconds},
      {0.1 * kSecond, 0.01 * kSecond, 10, 20, "i", milliseconds},
      {1 * kSecond, 0.1 * kSecond, 10, 20, "i", milliseconds},
      {10 * kSecond, 1 * kSecond, 10, 20, "s", seconds},
      {11 * kSecond, 10 * kSecond, 2, 20, "s", seconds},
      {45 * kSecond, 10 * kSecond, 5, 25, "s", seconds},
      {60 * kSecond, 10 * kSecond, 6, 30, "s", seconds},
      {600 * kSecond, 60 * kSecond, 10, 20, "hh:nn", minutes},
      {3600 * kSecond, 600 * kSecond, 6, 30, "hh:nn", minutes},
      {1, 3600 * kSecond, 24, 48, "hh:nn", minutes},
      {30, 1, 30, 60, "dd", "Date : day:12:1999"},
      {365, 30, 13, 26, "mm", "Date : month:1999"},
      {3650, 365, 10, 20, "yyyy", "Time [years]"},
      {36500, 3650, 10, 20, "yyyy", "Time [years]"},
      {36501, 36500, 2, 20, "yyyy", "Time [years]"}};
  for (const auto& [days, step, majorCount, minorCount, label, title] : cases) {
    SCOPED_TRACE(testing::Message() << days << " days");
    TAxis axis;
    ShowRange(axis, TAxis::asTime, kDay, kDay + days);
    const TTick& major = *axis.GetMajorTick();
    EXPECT_EQ(major.Count(), majorCount);
    EXPECT_EQ(axis.GetMinorTick()->Count(), minorCount);
    EXPECT_NEAR((major.End() - major.Start()) / step, majorCount, 0.01);
    EXPECT_LE(major.Start(), kDay + 1e-11);
    EXPECT_GE(major.End(), kDay + days - 1e-11);
    EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetTimeFormatStr(), label);
    EXPECT_EQ(axis.GetTitle()->Text().toStdString(), title);
    EXPECT_EQ(axis.TimeOrigin().Days(), axis.WorkingMin());
  }
}

TEST(AxisTicks, OfATimeAxisSurviveRangesWithoutACalendar) {
  const std::tuple<double, double, double, double, int, int> cases[] = {
      {36526.3, 36526.3, 36526, 36527, 24, 48},  // empty: its whole day
      {36526, 36526, 36526, 36527, 24, 48},      // empty at midnight: the day that begins
      {-kInfinity, kInfinity, -693500, 2956500, 100, 200},  // years 1 to 9994
      {1e300, 1e308, 2956500, 2956501, 24, 48},             // behind the calendar
      {36527, 36526, 36527, 36528, 24, 48},                 // collapses onto the minimum
      {kNan, kNan, 0, 1, 24, 48}};
  for (const auto& [min, max, start, end, major, minor] : cases) {
    TAxis axis;
    ExpectTicks(axis, TAxis::asTime, min, max, start, end, major, minor);
  }
}

/// A double of any magnitude, sign and kind.
double AnyDouble(std::mt19937_64& random) { return std::bit_cast<double>(std::uint64_t(random())); }

TEST(AxisTicks, AreFewAndFiniteWhateverTheRange) {
  std::mt19937_64 random(7);
  TAxis axis;
  for (int i = 0; i < 30000; ++i) {
    const auto scale = static_cast<TAxis::TAxisScale>(i % 3);
    const double min = AnyDouble(random);
    double max = AnyDouble(random);
    if (i % 2) max = std::nextafter(min, i % 4 == 1 ? kInfinity : -kInfinity);
    ShowRange(axis, scale, min, max);
    const TTick& major = *axis.GetMajorTick();
    SCOPED_TRACE(testing::Message() << "scale " << scale << ": " << min << " .. " << max);
    ASSERT_TRUE(std::isfinite(major.Start()) && std::isfinite(major.End()));
    ASSERT_LT(major.Start(), major.End());
    ASSERT_GE(major.Count(), 1);
    ASSERT_LE(major.Count(), scale == TAxis::asLog ? 600 : 101);
    ASSERT_LE(axis.GetMinorTick()->Count(), 600);
    ASSERT_FALSE(std::isnan(axis.ScaleFactor()));
  }
}

TEST(AxisTicks, HoldTheWholeRangeOfOrdinaryData) {
  std::mt19937_64 random(8);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-40, 40);
  TAxis axis;
  for (int i = 0; i < 30000; ++i) {
    const double scale = std::pow(10.0, exponent(random));
    double min = mantissa(random) * scale;
    double max = mantissa(random) * scale;
    if (min > max) std::swap(min, max);
    ShowRange(axis, TAxis::asLinear, min, max);
    const TTick& major = *axis.GetMajorTick();
    const double step = (major.End() - major.Start()) / major.Count();
    SCOPED_TRACE(testing::Message() << min << " .. " << max);
    ASSERT_LE(major.Start(), min + 1e-8 * step);
    ASSERT_GE(major.End(), max - 1e-8 * step);
    ASSERT_GT(major.Start(), min - 1.01 * step) << "not a whole step too far";
    ASSERT_LT(major.End(), max + 1.01 * step);
    ASSERT_LE(major.Count(), 11);
    ASSERT_GE(major.Count(), 2);
  }
}

/// The first label that an earlier one equals; empty if all differ.
QString EqualLabel(const TAxis& axis) {
  std::set<QString> seen;
  for (int i = 0; i <= axis.GetMajorTick()->Count(); ++i) {
    const QString text = axis.GetLabel()->TextOf(axis.GetMajorTick()->Value(i));
    if (!seen.insert(text).second) return text;
  }
  return {};
}

TEST(AxisTicks, HaveLabelsOfWhichNoTwoAreEqual) {
  std::mt19937_64 random(9);
  std::uniform_real_distribution<double> any(0.0, 1.0);
  for (int i = 0; i < 3000; ++i) {
    const auto scale = static_cast<TAxis::TAxisScale>(i % 3);
    TAxis axis;
    TNumberFormat& format = *axis.GetLabel()->GetNumFormat();
    format.SetFormat(static_cast<TNumberFormat::TFloatFormat>(i / 3 % 5));
    format.SetPrecision(1 + i % 7);
    format.SetDigits(i % 4);
    const double min =
        scale == TAxis::asTime ? 73000.0 * any(random) : std::pow(10.0, 16.0 * any(random) - 8.0);
    const double width = std::pow(10.0, 16.0 * any(random) - 9.0);
    // Dates lie in the calendar, and their steps are not below a millisecond.
    if (scale == TAxis::asLinear && i % 2 && min + width < 1e6 && width > 1e-6) {
      format.SetIsTimeFormat(true);
    }
    // A step has one of the 15 digits that a format can show.
    if (scale == TAxis::asLinear && width < 1e-13 * min) continue;
    ShowRange(axis, scale, min, min + width);
    EXPECT_EQ(EqualLabel(axis).toStdString(), "") << scale << ": " << min << " + " << width;
  }
}

TEST(AxisTicks, HaveTheDigitsOfTheirStep) {
  using T = TNumberFormat;
  const std::tuple<TAxis::TAxisScale, double, double, T::TFloatFormat, const char*> cases[] = {
      {TAxis::asLinear, 1e6, 1e6 + 1, T::ffGeneral, "1000000.1"},
      {TAxis::asLinear, 0, 0.001, T::ffFixed, "0.0001"},
      {TAxis::asLinear, 0, 10, T::ffFixed, "1.00"},  // enough as they are
      {TAxis::asLog, 1e-9, 1e-7, T::ffFixed, "0.000000010"},
      {TAxis::asTime, 36526, 36526 + 60 * kSecond, T::ffGeneral, "00:10"},
      {TAxis::asTime, 36526, 36526 + 45 * kSecond, T::ffGeneral, "10"},
      {TAxis::asTime, 36526, 36527, T::ffGeneral, "01 01:00"},
      {TAxis::asTime, 36526, 36526 + 365, T::ffGeneral, "2000-01"}};
  for (const auto& [scale, min, max, format, second] : cases) {
    TAxis axis;
    axis.GetLabel()->GetNumFormat()->SetFormat(format);
    ShowRange(axis, scale, min, max);
    EXPECT_EQ(axis.GetLabel()->TextOf(axis.GetMajorTick()->Value(1)), second);
  }
}

TEST(AxisTicks, OfARangeThatIsDrawnAlreadyStay) {
  TAxis axis;
  ExpectTicks(axis, TAxis::asLinear, 0.95, 10.85, 0, 11, 11, 22);
  ExpectTicks(axis, TAxis::asLinear, 0, 11, 0, 11, 11, 22);    // chosen anew this would be 0..12
  ExpectTicks(axis, TAxis::asLinear, 0, 10.85, 0, 12, 6, 30);  // one bound of each: other data
  axis.SetAutoMin(false);
  axis.SetMin(0.95);
  ExpectTicks(axis, TAxis::asLinear, -50, 10.85, 0, 11, 11, 22);
  ExpectTicks(axis, TAxis::asLinear, -50, 11, 0, 11, 11, 22);  // the fixed bound has not moved
  axis.SetMin(0.5);
  ExpectTicks(axis, TAxis::asLinear, -50, 11, 0, 12, 6, 30);
}

TEST(AxisTicks, OfAFixedBoundStartFromItsValueOnEveryScale) {
  TAxis axis;
  axis.SetAutoMin(false);
  axis.SetMin(0.1);
  ShowRange(axis, TAxis::asLinear, -50, 90);
  EXPECT_EQ(axis.WorkingMin(), 0.0);
  // Not from 1e-6, which the 0 of the linear ticks would give.
  ExpectTicks(axis, TAxis::asLog, -50, 90, 0.1, 100, 3, 3);
}

}  // namespace
