#include "components/graphing/Utilclasses.h"

#include "components/graphing/Formatsettings.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testing.h"

namespace {

using TTexts = std::initializer_list<std::pair<double, const char*>>;

/// Runs a test under one locale, whatever the machine's is.
class TNumberFormatTest : public testing::Test {
 protected:
  TNumberFormatTest() { SetFormatLocale(QLocale("en_US")); }
  ~TNumberFormatTest() override { SetFormatLocale(QLocale::system()); }

  QString Text(TNumberFormat::TFloatFormat way, int precision, int digits, double value) {
    format.SetFormat(way);
    format.SetPrecision(precision);
    format.SetDigits(digits);
    return format.FormatedValue(value);
  }
  void ExpectTexts(TNumberFormat::TFloatFormat way, int precision, int digits, TTexts texts) {
    for (const auto& [value, text] : texts) {
      EXPECT_EQ(Text(way, precision, digits, value), text) << precision << ", " << digits;
    }
  }

  TNumberFormat format;
};

TEST_F(TNumberFormatTest, GeneralIsFixedWhereThatIsShorter) {
  constexpr auto kWay = TNumberFormat::ffGeneral;
  ExpectTexts(kWay, 5, 2,
              {{0.0, "0"},
               {-0.0, "0"},
               {1.5, "1.5"},
               {100.0, "100"},
               {12345.0, "12345"},
               {123456.0, "1.2346E5"},
               {99999.5, "1E5"},
               {-2e20, "-2E20"},
               {0.1 + 0.2, "0.3"},
               {0.00001, "0.00001"},
               {0.0000123456, "0.000012346"},
               {0.000009, "9E-6"},
               {0.0000099999999, "0.00001"},
               {5e-324, "4.9407E-324"},
               {1.7976931348623157e308, "1.7977E308"},
               {kInfinity, "INF"},
               {-kInfinity, "-INF"},
               {kNan, "NAN"}});
  ExpectTexts(kWay, 15, 2,
              {{1.0 / 3.0, "0.333333333333333"}, {123456789012345.0, "123456789012345"}});
  ExpectTexts(kWay, 1, 2, {{7.5, "8"}, {75.0, "8E1"}});
}

TEST_F(TNumberFormatTest, ExponentHasPrecisionDigitsAndAtLeastDigitsOfExponent) {
  constexpr auto kWay = TNumberFormat::ffExponent;
  ExpectTexts(kWay, 5, 3, {{12300.0, "1.2300E+004"}});
  ExpectTexts(kWay, 5, 2, {{0.0, "0.0000E+00"}, {kInfinity, "INF"}});
  ExpectTexts(kWay, 1, 0, {{12300.0, "1E+4"}});
  ExpectTexts(kWay, 3, 2, {{-0.00012345, "-1.23E-04"}});
  ExpectTexts(kWay, 3, 1, {{9.996, "1.00E+1"}});
  ExpectTexts(kWay, 5, 0, {{1e-300, "1.0000E-300"}});
}

TEST_F(TNumberFormatTest, FixedHasDigitsDecimals) {
  constexpr auto kWay = TNumberFormat::ffFixed;
  ExpectTexts(kWay, 5, 0, {{1.5, "2"}, {2.5, "3"}, {0.5, "1"}});
  ExpectTexts(kWay, 5, 1, {{0.95, "0.9"}});  // below 0.95 in fact
  ExpectTexts(kWay, 5, 2,
              {{1.5, "1.50"},
               {0.125, "0.13"},
               {-0.125, "-0.13"},
               {0.004, "0.00"},
               {-0.004, "0.00"},
               {0.006, "0.01"},
               {99.999, "100.00"},
               {12345678.9, "12345678.90"},
               {1e18, "1E18"},
               {1e-300, "0.00"},
               {1e300, "1E300"}});
  ExpectTexts(kWay, 5, 3, {{1e17, "100000000000000000.000"}});
  ExpectTexts(kWay, 5, 18, {{0.5, "0.500000000000000000"}});
}

TEST_F(TNumberFormatTest, NumberAndCurrencyGroupThousands) {
  ExpectTexts(TNumberFormat::ffNumber, 5, 2,
              {{999.0, "999.00"},
               {1000.0, "1,000.00"},
               {-1234567.891, "-1,234,567.89"},
               {999999.999, "1,000,000.00"},
               {0.001, "0.00"}});
  ExpectTexts(TNumberFormat::ffCurrency, 5, 2,
              {{1234.5, "$1,234.50"}, {-0.001, "$0.00"}, {-5.0, "($5.00)"}, {kNan, "NAN"}});
}

TEST_F(TNumberFormatTest, ThePointIsAFullStopUnderADecimalComma) {
  SetFormatLocale(QLocale("de_DE"));
  ASSERT_EQ(FormatSettings().decimalSeparator, ",");
  EXPECT_EQ(Text(TNumberFormat::ffFixed, 5, 2, 1.5), "1.50");
  EXPECT_EQ(Text(TNumberFormat::ffGeneral, 5, 2, 1.5), "1.5");
  EXPECT_EQ(Text(TNumberFormat::ffExponent, 5, 2, 1.5), "1.5000E+00");
  EXPECT_EQ(Text(TNumberFormat::ffNumber, 5, 2, 1234567.5), "1.234.567.50");
  EXPECT_EQ(Text(TNumberFormat::ffCurrency, 5, 2, 1234.5), QString::fromUtf8("1.234.50\u00a0€"));
  EXPECT_EQ(format.GetFormatStr(), QString::fromUtf8("%0.2lf€"));
}

TEST_F(TNumberFormatTest, FormatStringsAreForPrintf) {
  const struct {
    TNumberFormat::TFloatFormat way;
    int digits;
    const char* text;
  } cases[] = {
      {TNumberFormat::ffGeneral, 2, "%0.2lf"},   {TNumberFormat::ffFixed, 0, "%0.0lf"},
      {TNumberFormat::ffNumber, 18, "%0.18lf"},  {TNumberFormat::ffExponent, 3, "%0.3E"},
      {TNumberFormat::ffCurrency, 2, "%0.2lf$"},
  };
  for (const auto& c : cases) {
    format.SetFormat(c.way);
    format.SetDigits(c.digits);
    EXPECT_EQ(format.GetFormatStr(), c.text);
  }
}

TEST_F(TNumberFormatTest, TimesFollowThePatternAndBadOnesReadError) {
  format.SetIsTimeFormat(true);
  const auto expect = [this](const char* pattern, TTexts texts) {
    format.SetTimeFormatStr(pattern);
    for (const auto& [value, text] : texts) {
      EXPECT_EQ(format.FormatedValue(value), text) << pattern << " " << value;
    }
  };
  expect("i", {{0.5 + 123.0 / 86400000.0, "123"}, {36526.0, "0"}, {kInfinity, "Error"}});
  expect("I", {{0.5, "I"}});
  expect("ii", {{0.5, "ii"}});
  expect("hh:nn", {{0.75, "18:00"}});
  expect("yyyy", {{36526.0, "2000"}, {kNan, "Error"}});
  expect("dd", {{1e300, "Error"}});
  expect("", {{36526.0, "1/1/00"}, {36526.5, "1/1/00 12:00:00 PM"}, {-1e7, "Error"}});
}

TEST_F(TNumberFormatTest, SettersDropWhatIsOutOfRangeAndReportTheRest) {
  QSignalSpy changes(&format, &TNumberFormat::OnChange);
  for (const int refused : {0, 16, 5}) format.SetPrecision(refused);
  for (const int refused : {-1, 19, 2}) format.SetDigits(refused);
  format.SetFormat(static_cast<TNumberFormat::TFloatFormat>(5));
  EXPECT_EQ(format.GetPrecision(), 5);
  EXPECT_EQ(format.GetDigits(), 2);
  EXPECT_EQ(changes.count(), 0);
  for (const int taken : {1, 15}) format.SetPrecision(taken);
  for (const int taken : {0, 18}) format.SetDigits(taken);
  EXPECT_EQ(changes.count(), 4);
}

TEST_F(TNumberFormatTest, AssignCopiesAllAndReportsOnBothSides) {
  format.SetFormat(TNumberFormat::ffFixed);
  format.SetIsTimeFormat(true);
  format.SetTimeFormatStr("hh");
  TNumberFormat copy;
  QSignalSpy here(&format, &TNumberFormat::OnChange);
  QSignalSpy there(&copy, &TNumberFormat::OnChange);
  copy.Assign(&format);
  EXPECT_EQ(there.count(), 3);
  EXPECT_EQ(here.count(), 1);
  EXPECT_EQ(copy.GetTimeFormatStr(), "hh");
  EXPECT_TRUE(copy.GetIsTimeFormat());
  format.AssignTo(nullptr);
  TRange range;
  format.AssignTo(&range);
  EXPECT_EQ(here.count(), 1);

  copy.SetTimeFormatStr("nn");
  EXPECT_TRUE(copy.SameAs(&format)) << "times do not count";
  copy.SetDigits(3);
  EXPECT_FALSE(copy.SameAs(&format));
  EXPECT_FALSE(copy.SameAs(nullptr));
}

TEST(TRange, SettersUncrossTheBoundsAndReportOnlyRealChanges) {
  const struct {
    void (TRange::*set)(double);
    double value, min, max;
    int fired;
  } cases[] = {{&TRange::SetMin, 0.0, 0.0, 1.0, 0},  // already there
               {&TRange::SetMin, 5.0, 1.0, 5.0, 1},  // crosses 1: the two swap
               {&TRange::SetMax, 1.0, 0.0, 1.0, 0},  {&TRange::SetMax, -3.0, -3.0, 0.0, 1},
               {&TRange::SetMin, kNan, 0.0, 1.0, 0}, {&TRange::SetMax, kNan, 0.0, 1.0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    TRange range;  // 0..1
    QSignalSpy changes(&range, &TRange::OnChange);
    (range.*c.set)(c.value);
    EXPECT_EQ(BoundsOf(range), TMinMax(c.min, c.max));
    EXPECT_EQ(changes.count(), c.fired);
  }
}

TEST(TRange, GrowsSilentlyOverValuesAndStartsAnewAfterAReset) {
  TRange range;
  QSignalSpy changes(&range, &TRange::OnChange);
  for (const double value : {kNan, 3.0, -2.0, kNan, 7.0, 0.0}) range.GetBounds(value);
  EXPECT_EQ(BoundsOf(range), TMinMax(-2.0, 7.0));
  range.SetReset(true);
  EXPECT_EQ(BoundsOf(range), TMinMax(0.0, 1.0));
  range.GetBounds(4.0);
  EXPECT_EQ(BoundsOf(range), TMinMax(4.0, 4.0));

  TRange other;
  other.GetBounds(&range);
  EXPECT_EQ(other.GetMin(), 4.0);
  range.GetBounds(9.0);
  other.GetBounds(-1.0);
  other.GetBounds(&range);
  other.GetBounds(nullptr);
  EXPECT_EQ(BoundsOf(other), TMinMax(-1.0, 9.0));
  EXPECT_EQ(changes.count(), 0);
}

TEST(TRange, AssignGoesThroughTheSettersOneByOne) {
  TRange source;
  source.SetMax(10.0);
  source.SetMin(5.0);
  source.SetAutoMax(true);
  TRange copy;  // 0..1
  copy.Assign(&source);
  EXPECT_EQ(copy.GetMin(), 1.0) << "the old maximum became the minimum";
  EXPECT_EQ(copy.GetMax(), 10.0);
  EXPECT_TRUE(copy.GetAutoMax());
  EXPECT_TRUE(copy.GetReset());
  EXPECT_FALSE(copy.SameAs(&source));
  copy.Assign(&source);
  EXPECT_TRUE(copy.SameAs(&source));
}

}  // namespace
