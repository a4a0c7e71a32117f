#include "components/graphing/Utilclasses.h"

#include "components/graphing/Formatsettings.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

/// Runs a test under one locale, whatever the machine's is.
class TNumberFormatTest : public testing::Test {
 protected:
  TNumberFormatTest() { SetFormatLocale(QLocale("en_US")); }
  ~TNumberFormatTest() override { SetFormatLocale(QLocale::system()); }

  /// Values and their texts, such as "1.5 1.50; 2 2.00".
  void ExpectTexts(const QString& texts) {
    for (const QString& pair : texts.split("; ")) {
      const QString value = pair.section(' ', 0, 0);
      EXPECT_EQ(format.FormatedValue(value.toDouble()), pair.section(' ', 1))
          << value.toStdString();
    }
  }
  void ExpectTexts(TNumberFormat::TFloatFormat way, int precision, int digits,
                   const QString& texts) {
    format.SetFormat(way);
    format.SetPrecision(precision);
    format.SetDigits(digits);
    ExpectTexts(texts);
  }

  TNumberFormat format;
};

TEST_F(TNumberFormatTest, GeneralIsFixedWhereThatIsShorter) {
  constexpr auto kWay = TNumberFormat::ffGeneral;
  ExpectTexts(
      kWay, 5, 2,
      "0 0; -0 0; 1.5 1.5; 100 100; 12345 12345; 123456 1.2346E5; 99999.5 1E5; -2e20 -2E20; "
      "0.30000000000000004 0.3; 0.00001 0.00001; 0.0000123456 0.000012346; "
      "0.000009 9E-6; 0.0000099999999 0.00001; 5e-324 4.9407E-324; "
      "1.7976931348623157e308 1.7977E308; inf INF; -inf -INF; nan NAN");
  ExpectTexts(kWay, 15, 2, "0.3333333333333333 0.333333333333333; 123456789012345 123456789012345");
  ExpectTexts(kWay, 1, 2, "7.5 8; 75 8E1");
}

TEST_F(TNumberFormatTest, ExponentHasPrecisionDigitsAndAtLeastDigitsOfExponent) {
  constexpr auto kWay = TNumberFormat::ffExponent;
  ExpectTexts(kWay, 5, 3, "12300 1.2300E+004");
  ExpectTexts(kWay, 5, 2, "0 0.0000E+00; inf INF");
  ExpectTexts(kWay, 1, 0, "12300 1E+4");
  ExpectTexts(kWay, 3, 2, "-0.00012345 -1.23E-04");
  ExpectTexts(kWay, 3, 1, "9.996 1.00E+1");
  ExpectTexts(kWay, 5, 0, "1e-300 1.0000E-300");
}

TEST_F(TNumberFormatTest, FixedHasDigitsDecimals) {
  constexpr auto kWay = TNumberFormat::ffFixed;
  ExpectTexts(kWay, 5, 0, "1.5 2; 2.5 3; 0.5 1");
  ExpectTexts(kWay, 5, 1, "0.95 0.9");  // below 0.95 in fact
  ExpectTexts(kWay, 5, 2,
              "1.5 1.50; 0.125 0.13; -0.125 -0.13; 0.004 0.00; -0.004 0.00; 0.006 0.01; "
              "99.999 100.00; 12345678.9 12345678.90; 1e18 1E18; 1e-300 0.00; 1e300 1E300");
  ExpectTexts(kWay, 5, 3, "1e17 100000000000000000.000");
  ExpectTexts(kWay, 5, 18, "0.5 0.500000000000000000");
}

TEST_F(TNumberFormatTest, NumberAndCurrencyGroupThousands) {
  ExpectTexts(TNumberFormat::ffNumber, 5, 2,
              "999 999.00; 1000 1,000.00; -1234567.891 -1,234,567.89; 999999.999 1,000,000.00; "
              "0.001 0.00");
  ExpectTexts(TNumberFormat::ffCurrency, 5, 2,
              "1234.5 $1,234.50; -0.001 $0.00; -5 ($5.00); nan NAN");
}

TEST_F(TNumberFormatTest, ThePointIsAFullStopUnderADecimalComma) {
  SetFormatLocale(QLocale("de_DE"));
  ASSERT_EQ(FormatSettings().decimalSeparator, ",");
  ExpectTexts(TNumberFormat::ffFixed, 5, 2, "1.5 1.50");
  ExpectTexts(TNumberFormat::ffGeneral, 5, 2, "1.5 1.5");
  ExpectTexts(TNumberFormat::ffExponent, 5, 2, "1.5 1.5000E+00");
  ExpectTexts(TNumberFormat::ffNumber, 5, 2, "1234567.5 1.234.567.50");
  ExpectTexts(TNumberFormat::ffCurrency, 5, 2, QString::fromUtf8("1234.5 1.234.50\u00a0€"));
  EXPECT_EQ(format.GetFormatStr(), QString::fromUtf8("%0.2lf€"));
}

TEST_F(TNumberFormatTest, FormatStringsAreForPrintf) {
  const std::pair<TNumberFormat::TFloatFormat, const char*> cases[] = {
      {TNumberFormat::ffGeneral, "%0.2lf"},
      {TNumberFormat::ffFixed, "%0.2lf"},
      {TNumberFormat::ffNumber, "%0.2lf"},
      {TNumberFormat::ffExponent, "%0.2E"},
      {TNumberFormat::ffCurrency, "%0.2lf$"}};
  for (const auto& [way, text] : cases) {
    format.SetFormat(way);
    EXPECT_EQ(format.GetFormatStr(), text);
  }
  format.SetDigits(18);
  EXPECT_EQ(format.GetFormatStr(), "%0.18lf$");
}

TEST_F(TNumberFormatTest, TimesFollowThePatternAndBadOnesReadError) {
  format.SetIsTimeFormat(true);
  const std::pair<const char*, const char*> cases[] = {
      {"i", "0.500001423611111 123; 36526 0; inf Error"},  // 123 ms after noon
      {"I", "0.5 I"},
      {"ii", "0.5 ii"},
      {"hh:nn", "0.75 18:00"},
      {"yyyy", "36526 2000; nan Error"},
      {"dd", "1e300 Error"},
      {"", "36526 1/1/00; 36526.5 1/1/00 12:00:00 PM; -1e7 Error"}};
  for (const auto& [pattern, texts] : cases) {
    SCOPED_TRACE(pattern);
    format.SetTimeFormatStr(pattern);
    ExpectTexts(texts);
  }
}

TEST_F(TNumberFormatTest, SettersDropWhatIsOutOfRangeAndReportTheRest) {
  QSignalSpy changes(&format, &TNumberFormat::OnChange);
  for (const int refused : {0, 16, 5}) format.SetPrecision(refused);
  for (const int refused : {-1, 19, 2}) format.SetDigits(refused);
  format.SetFormat(static_cast<TNumberFormat::TFloatFormat>(5));
  EXPECT_EQ(std::pair(format.GetPrecision(), format.GetDigits()), std::pair(5, 2));
  EXPECT_EQ(changes.count(), 0);
  for (const int taken : {1, 15}) format.SetPrecision(taken);
  for (const int taken : {0, 18}) format.SetDigits(taken);
  EXPECT_EQ(changes.count(), 4);
  TNumberFormat copy;
  QSignalSpy there(&copy, &TNumberFormat::OnChange);
  copy.Assign(&format);  // reports on both sides
  EXPECT_EQ(there.count(), 2);
  EXPECT_EQ(changes.count(), 5);
}

TEST(TRange, SettersUncrossTheBoundsAndReportOnlyRealChanges) {
  const std::tuple<void (TRange::*)(double), double, TMinMax, int> cases[] = {
      {&TRange::SetMin, 0.0, {0.0, 1.0}, 0},  // already there
      {&TRange::SetMin, 5.0, {1.0, 5.0}, 1},  // crosses 1: the two swap
      {&TRange::SetMax, 1.0, {0.0, 1.0}, 0},  {&TRange::SetMax, -3.0, {-3.0, 0.0}, 1},
      {&TRange::SetMin, kNan, {0.0, 1.0}, 0}, {&TRange::SetMax, kNan, {0.0, 1.0}, 0}};
  for (const auto& [set, value, bounds, fired] : cases) {
    SCOPED_TRACE(value);
    TRange range;  // 0..1
    QSignalSpy changes(&range, &TRange::OnChange);
    (range.*set)(value);
    EXPECT_EQ(BoundsOf(range), bounds);
    EXPECT_EQ(changes.count(), fired);
  }
}

TEST(TRange, GrowsSilentlyOverValuesAndStartsAnewAfterAReset) {
  TRange range, other;
  QSignalSpy changes(&range, &TRange::OnChange);
  for (const double value : {kNan, 3.0, -2.0, kNan, 7.0, 0.0}) range.GetBounds(value);
  EXPECT_EQ(BoundsOf(range), TMinMax(-2.0, 7.0));
  range.SetReset(true);
  EXPECT_EQ(BoundsOf(range), TMinMax(0.0, 1.0));
  range.GetBounds(4.0);
  EXPECT_EQ(BoundsOf(range), TMinMax(4.0, 4.0));

  other.GetBounds(&range);
  EXPECT_EQ(BoundsOf(other), TMinMax(4.0, 4.0));
  range.GetBounds(9.0);
  other.GetBounds(-1.0);
  for (const TRange* source : {&range, static_cast<TRange*>(nullptr)}) other.GetBounds(source);
  EXPECT_EQ(BoundsOf(other), TMinMax(-1.0, 9.0));
  EXPECT_EQ(changes.count(), 0);
}

TEST(TRange, AssignGoesThroughTheSettersOneByOne) {
  TRange source, copy;  // 0..1
  source.SetMax(10.0);
  source.SetMin(5.0);
  source.SetAutoMax(true);
  copy.Assign(&source);
  EXPECT_EQ(BoundsOf(copy), TMinMax(1.0, 10.0)) << "the old maximum became the minimum";
  EXPECT_TRUE(copy.GetAutoMax() && copy.GetReset());
  EXPECT_FALSE(copy.SameAs(&source));
  copy.Assign(&source);
  EXPECT_TRUE(copy.SameAs(&source));
}

}  // namespace
