#include "components/graphing/Datetimeformat.h"

#include <gtest/gtest.h>

#include "model/Datetime.h"

namespace {

/// Days of a date and a time of day; 1 January 2000 is day 36526, worked out from 30 December 1899:
/// 2 days to 1900 and 36524 days of 100 years with 24 leap days.
TDateTime At(int year2000Day, int hour, int minute, int second, int msec = 0) {
  const double seconds = hour * 3600 + minute * 60 + second + msec / 1000.0;
  return TDateTime(36526 + year2000Day + seconds / kSecondsPerDay);
}

QString Text(const char* pattern, TDateTime time, const char* locale = "en_US") {
  return FormatDateTime(QString::fromUtf8(pattern), time, TFormatSettings::Of(QLocale(locale)))
      .value_or("nothing");
}

// Sunday, 5 March 2000, 64 days after 1 January (a Saturday)
const TDateTime kMorning = At(64, 7, 8, 9, 45);
const TDateTime kEvening = At(64, 19, 0, 59, 999);

TEST(FormatDateTime, KnowsEverySpecifier) {
  const struct {
    const char *pattern, *text;
  } cases[] = {
      {"d", "5"},
      {"dd", "05"},
      {"ddd", "Sun"},
      {"dddd", "Sunday"},
      {"ddddd", "3/5/00"},
      {"dddddd", "Sunday, March 5, 2000"},
      {"ddddddddd", "Sunday, March 5, 2000"},
      {"m", "3"},
      {"mm", "03"},
      {"mmm", "Mar"},
      {"mmmm", "March"},
      {"y", "00"},
      {"yy", "00"},
      {"yyyy", "2000"},
      {"yyy", "2000"},
      {"h", "7"},
      {"hh", "07"},
      {"hhh", "07"},
      {"n", "8"},
      {"nn", "08"},
      {"s", "9"},
      {"ss", "09"},
      {"z", "45"},
      {"zzz", "045"},
      {"t", "7:08 AM"},
      {"tt", "7:08:09 AM"},
      {"c", "3/5/00 7:08:09 AM"},
      {"", "3/5/00 7:08:09 AM"},
      {"e.g.", ".."},
      {"yyyy gg", "2000 "},
      {"x1_", "x1_"},
      {"é", "é"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(c.pattern, kMorning), QString::fromUtf8(c.text)) << c.pattern;
  }
}

TEST(FormatDateTime, LettersMayBeOfEitherCase) {
  EXPECT_EQ(Text("DD.MM.YYYY HH:NN:SS.ZZZ", kMorning), "05.03.2000 07:08:09.045");
  EXPECT_EQ(Text("dD hH:Mm", kMorning), "05 07:08");
}

TEST(FormatDateTime, AnMRightAfterTheHourMeansMinutes) {
  const struct {
    const char *pattern, *text;
  } cases[] = {
      {"hh:mm", "07:08"},       {"h m", "7 8"},           {"hh'h'mm", "07h08"},
      {"mm:hh:mm", "03:07:08"}, {"hh:ss:mm", "07:09:03"}, {"hh:mm:mm", "07:08:03"},
      {"hh mmm", "07 Mar"},     {"hh:dd/mm", "07:05/03"},
  };
  for (const auto& c : cases) EXPECT_EQ(Text(c.pattern, kMorning), c.text) << c.pattern;
}

TEST(FormatDateTime, AFormOfAmPmAfterTheHourTakesTheTwelveHourClock) {
  const struct {
    const char* pattern;
    TDateTime time;
    const char* text;
  } cases[] = {
      {"h:nn am/pm", kEvening, "7:00 pm"},
      {"hh:nn AM/PM", kMorning, "07:08 AM"},
      {"h a/p", kEvening, "7 p"},
      {"h A/P", kMorning, "7 A"},
      {"hAmPm", kEvening, "7PM"},
      {"h Am/pM", kEvening, "7 pM"},
      {"h am/pm", At(0, 0, 0, 0), "12 am"},
      {"h am/pm", At(0, 12, 0, 0), "12 pm"},
      {"h am/pm hh", kEvening, "7 pm 19"},
      {"am/pm h", kEvening, "pm 19"},
      {"h h a/p", kEvening, "19 7 p"},
      {"h 'am/pm'", kEvening, "19 am/pm"},
      {"h a", kEvening, "19 a"},
      {"h am", kEvening, "19 a3"},
  };
  for (const auto& c : cases) EXPECT_EQ(Text(c.pattern, c.time), c.text) << c.pattern;
}

TEST(FormatDateTime, QuotedTextStandsForItself) {
  const struct {
    const char *pattern, *text;
  } cases[] = {
      {"'day:'mm:yyyy", "day:03:2000"},
      {"\"hh\" hh", "hh 07"},
      {"'it\"s' d", "it\"s 5"},
      {"d 'open dd", "5 open dd"},
      {"''d", "5"},
      {"dd'", "05"},
      {"dd:mm:yyyy hh:nn:ss':msec'", "05:03:2000 07:08:09:msec"},
  };
  for (const auto& c : cases) EXPECT_EQ(Text(c.pattern, kMorning), c.text) << c.pattern;
}

TEST(FormatDateTime, MidnightIsShownAsADateAlone) {
  EXPECT_EQ(Text("c", At(0, 0, 0, 0)), "1/1/00");
  EXPECT_EQ(Text("c", At(0, 0, 0, 1)), "1/1/00 12:00:01 AM");
}

TEST(FormatDateTime, SpeaksTheLocalesLanguage) {
  const struct {
    const char *locale, *pattern, *text;
  } cases[] = {
      {"de_DE", "dddd, d. mmmm", "Sonntag, 5. März"},
      {"de_DE", "dd/mm/yyyy hh:nn", "05.03.2000 07:08"},
      {"de_DE", "c", "05.03.00 07:08:09"},
      {"de_DE", "dddddd", "Sonntag, 5. März 2000"},
      {"fi_FI", "hh:nn:ss", "07.08.09"},
      {"en_GB", "ddddd", "05/03/2000"},
      {"sv_SE", "ddddd tt", "2000-03-05 07:08:09"},
      {"es_ES", "dddddd", "domingo, 5 de marzo de 2000"},
      {"ja_JP", "tt", "7時08分09秒"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(c.pattern, kMorning, c.locale), QString::fromUtf8(c.text))
        << c.locale << " " << c.pattern;
  }
}

TEST(FormatDateTime, ReadsTheClockToTheNearestMillisecond) {
  const struct {
    double days;
    const char* text;
  } cases[] = {
      {0.0, "1899-12-30 00:00:00.000"},
      {-0.25, "1899-12-29 18:00:00.000"},
      {36526.0 - 1e-12, "2000-01-01 00:00:00.000"},
      {2958465.99999, "9999-12-31 23:59:59.136"},
      {-693593.0, "0001-01-01 00:00:00.000"},
      {2958466.0, "nothing"},
      {-693594.0, "nothing"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text("yyyy'-'mm'-'dd hh':'nn':'ss.zzz", TDateTime(c.days)), c.text);
  }
}

/// One that is read again for every letter would take minutes.
TEST(FormatDateTime, ReadsALongPatternOnce) {
  constexpr qsizetype kLetters = 1'000'000;
  for (const char letter : {'x', 'a', '-'}) {
    const QString pattern(kLetters, letter);
    EXPECT_EQ(FormatDateTime(pattern, kMorning), pattern);
  }
  EXPECT_EQ(FormatDateTime(QString(kLetters, 'z'), kMorning), "045");
}

/// 26 March 2000, 02:30 does not exist in central Europe, yet a logger may have run through it.
TEST(FormatDateTime, ShowsTheHourThatSummerTimeLeavesOut) {
  EXPECT_EQ(Text("dd hh:nn", At(85, 2, 30, 0)), "26 02:30");
}

}  // namespace
