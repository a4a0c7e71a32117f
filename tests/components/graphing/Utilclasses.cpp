#include "components/graphing/Utilclasses.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <limits>
#include <memory>

#include "components/graphing/Formatsettings.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

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

  TNumberFormat format;
};

TEST_F(TNumberFormatTest, GeneralIsFixedWhereThatIsShorter) {
  const struct {
    int precision;
    double value;
    const char* text;
  } cases[] = {
      {5, 0.0, "0"},
      {5, -0.0, "0"},
      {5, 1.5, "1.5"},
      {5, 100.0, "100"},
      {5, 12345.0, "12345"},
      {5, 123456.0, "1.2346E5"},
      {5, 99999.5, "1E5"},
      {5, -2e20, "-2E20"},
      {5, 0.1 + 0.2, "0.3"},
      {5, 0.00001, "0.00001"},
      {5, 0.0000123456, "0.000012346"},
      {5, 0.000009, "9E-6"},
      {5, 0.0000099999999, "0.00001"},
      {15, 1.0 / 3.0, "0.333333333333333"},
      {15, 123456789012345.0, "123456789012345"},
      {1, 7.5, "8"},
      {1, 75.0, "8E1"},
      {5, 5e-324, "4.9407E-324"},
      {5, 1.7976931348623157e308, "1.7977E308"},
      {5, kInf, "INF"},
      {5, -kInf, "-INF"},
      {5, kNan, "NAN"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(TNumberFormat::ffGeneral, c.precision, 2, c.value), c.text);
  }
}

TEST_F(TNumberFormatTest, ExponentHasPrecisionDigitsAndAtLeastDigitsOfExponent) {
  const struct {
    int precision, digits;
    double value;
    const char* text;
  } cases[] = {
      {5, 3, 12300.0, "1.2300E+004"},
      {5, 2, 0.0, "0.0000E+00"},
      {1, 0, 12300.0, "1E+4"},
      {3, 2, -0.00012345, "-1.23E-04"},
      {3, 1, 9.996, "1.00E+1"},
      {5, 0, 1e-300, "1.0000E-300"},
      {5, 2, kInf, "INF"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(TNumberFormat::ffExponent, c.precision, c.digits, c.value), c.text);
  }
}

TEST_F(TNumberFormatTest, FixedHasDigitsDecimals) {
  const struct {
    int digits;
    double value;
    const char* text;
  } cases[] = {
      {2, 1.5, "1.50"},
      {0, 1.5, "2"},
      {0, 2.5, "3"},
      {2, 0.125, "0.13"},
      {2, -0.125, "-0.13"},
      {2, 0.004, "0.00"},
      {2, -0.004, "0.00"},
      {2, 0.006, "0.01"},
      {1, 0.95, "0.9"},  // below 0.95 in fact
      {2, 99.999, "100.00"},
      {2, 12345678.9, "12345678.90"},
      {3, 1e17, "100000000000000000.000"},
      {2, 1e18, "1E18"},
      {18, 0.5, "0.500000000000000000"},
      {2, 1e-300, "0.00"},
      {2, 1e300, "1E300"},
      {0, 0.5, "1"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(TNumberFormat::ffFixed, 5, c.digits, c.value), c.text);
  }
}

TEST_F(TNumberFormatTest, NumberAndCurrencyGroupThousands) {
  const struct {
    TNumberFormat::TFloatFormat way;
    double value;
    const char* text;
  } cases[] = {
      {TNumberFormat::ffNumber, 999.0, "999.00"},
      {TNumberFormat::ffNumber, 1000.0, "1,000.00"},
      {TNumberFormat::ffNumber, -1234567.891, "-1,234,567.89"},
      {TNumberFormat::ffNumber, 999999.999, "1,000,000.00"},
      {TNumberFormat::ffNumber, 0.001, "0.00"},
      {TNumberFormat::ffCurrency, 1234.5, "$1,234.50"},
      {TNumberFormat::ffCurrency, -0.001, "$0.00"},
      {TNumberFormat::ffCurrency, -5.0, "($5.00)"},
      {TNumberFormat::ffCurrency, kNan, "NAN"},
  };
  for (const auto& c : cases) EXPECT_EQ(Text(c.way, 5, 2, c.value), c.text);
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
  const struct {
    const char* pattern;
    double value;
    const char* text;
  } cases[] = {
      {"i", 0.5 + 123.0 / 86400000.0, "123"},
      {"i", 36526.0, "0"},
      {"I", 0.5, "I"},
      {"ii", 0.5, "ii"},
      {"hh:nn", 0.75, "18:00"},
      {"yyyy", 36526.0, "2000"},
      {"", 36526.0, "1/1/00"},
      {"", 36526.5, "1/1/00 12:00:00 PM"},
      {"yyyy", kNan, "Error"},
      {"i", kInf, "Error"},
      {"dd", 1e300, "Error"},
      {"", -1e7, "Error"},
  };
  for (const auto& c : cases) {
    format.SetTimeFormatStr(c.pattern);
    EXPECT_EQ(format.FormatedValue(c.value), c.text) << c.pattern << " " << c.value;
  }
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
  } cases[] = {
      {&TRange::SetMin, 0.0, 0.0, 1.0, 0},  // already there
      {&TRange::SetMin, 5.0, 1.0, 5.0, 1},  // crosses 1: the two swap
      {&TRange::SetMax, 1.0, 0.0, 1.0, 0},  {&TRange::SetMax, -3.0, -3.0, 0.0, 1},
      {&TRange::SetMin, kNan, 0.0, 1.0, 0}, {&TRange::SetMax, kNan, 0.0, 1.0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    TRange range;  // 0..1
    QSignalSpy changes(&range, &TRange::OnChange);
    (range.*c.set)(c.value);
    EXPECT_EQ(range.GetMin(), c.min);
    EXPECT_EQ(range.GetMax(), c.max);
    EXPECT_EQ(changes.count(), c.fired);
  }
}

TEST(TRange, GrowsSilentlyOverValuesAndStartsAnewAfterAReset) {
  TRange range;
  QSignalSpy changes(&range, &TRange::OnChange);
  for (const double value : {kNan, 3.0, -2.0, kNan, 7.0, 0.0}) range.GetBounds(value);
  EXPECT_EQ(range.GetMin(), -2.0);
  EXPECT_EQ(range.GetMax(), 7.0);
  range.SetReset(true);
  EXPECT_EQ(range.GetMin(), 0.0);
  EXPECT_EQ(range.GetMax(), 1.0);
  range.GetBounds(4.0);
  EXPECT_EQ(range.GetMin(), 4.0);
  EXPECT_EQ(range.GetMax(), 4.0);

  TRange other;
  other.GetBounds(&range);
  EXPECT_EQ(other.GetMin(), 4.0);
  range.GetBounds(9.0);
  other.GetBounds(-1.0);
  other.GetBounds(&range);
  other.GetBounds(nullptr);
  EXPECT_EQ(other.GetMin(), -1.0);
  EXPECT_EQ(other.GetMax(), 9.0);
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

TEST(Utilclasses, FormsCanMakeItsClassesByName) {
  for (const char* name : {"TNumberFormat", "TRange"}) {
    const QMetaType type = QMetaType::fromName(QByteArray(name) + '*');
    ASSERT_TRUE(type.isValid()) << name;
    const std::unique_ptr<QObject> made(type.metaObject()->newInstance());
    ASSERT_TRUE(made) << name;
    EXPECT_STREQ(made->metaObject()->className(), name);
  }
}

}  // namespace
