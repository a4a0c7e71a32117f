#include "components/graphing/Datetimeformat.h"

#include "tests/support/Testing.h"

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

/// What patterns give, such as "d = 5; m = 3".
void ExpectTexts(TDateTime time, const QString& cases) {
  for (const QString& pair : cases.split("; ")) {
    const QString pattern = pair.section(" = ", 0, 0);
    EXPECT_EQ(Text(pattern.toUtf8(), time), pair.section(" = ", 1)) << pattern.toStdString();
  }
}

TEST(FormatDateTime, KnowsEverySpecifierInEitherCase) {
  ExpectTexts(
      kMorning,
      "d = 5; dd = 05; ddd = Sun; dddd = Sunday; ddddd = 3/5/00; m = 3; mm = 03; mmm = Mar; "
      "mmmm = March; y = 00; yy = 00; yyy = 2000; yyyy = 2000; h = 7; hh = 07; hhh = 07; "
      "n = 8; nn = 08; s = 9; ss = 09; z = 45; zzz = 045; t = 7:08 AM; tt = 7:08:09 AM; "
      "dddddd = Sunday, March 5, 2000; ddddddddd = Sunday, March 5, 2000; "
      "c = 3/5/00 7:08:09 AM; x1_ = x1_; é = é; e.g. = ..; yyyy gg = 2000 ");
  EXPECT_EQ(Text("", kMorning), "3/5/00 7:08:09 AM");
  ExpectTexts(kMorning, "DD.MM.YYYY HH:NN:SS.ZZZ = 05.03.2000 07:08:09.045; dD hH:Mm = 05 07:08");
}

TEST(FormatDateTime, AnMRightAfterTheHourMeansMinutes) {
  ExpectTexts(
      kMorning,
      "hh:mm = 07:08; h m = 7 8; hh'h'mm = 07h08; mm:hh:mm = 03:07:08; hh:ss:mm = 07:09:03; "
      "hh:mm:mm = 07:08:03; hh mmm = 07 Mar; hh:dd/mm = 07:05/03");
}

TEST(FormatDateTime, QuotedTextStandsForItself) {
  ExpectTexts(kMorning, R"('day:'mm:yyyy = day:03:2000; "hh" hh = hh 07; 'it"s' d = it"s 5; )"
                        R"(d 'open dd = 5 open dd; ''d = 5; dd' = 05; )"
                        R"(dd:mm:yyyy hh:nn:ss':msec' = 05:03:2000 07:08:09:msec)");
}

TEST(FormatDateTime, AFormOfAmPmAfterTheHourTakesTheTwelveHourClock) {
  ExpectTexts(
      kEvening,
      "h:nn am/pm = 7:00 pm; h a/p = 7 p; hAmPm = 7PM; h Am/pM = 7 pM; h am/pm hh = 7 pm 19; "
      "am/pm h = pm 19; h h a/p = 19 7 p; h 'am/pm' = 19 am/pm; h a = 19 a; h am = 19 a3");
  ExpectTexts(kMorning, "hh:nn AM/PM = 07:08 AM; h A/P = 7 A");
  ExpectTexts(At(0, 0, 0, 0), "h am/pm = 12 am");
  ExpectTexts(At(0, 12, 0, 0), "h am/pm = 12 pm");
}

TEST(FormatDateTime, MidnightIsShownAsADateAlone) {
  ExpectTexts(At(0, 0, 0, 0), "c = 1/1/00");
  ExpectTexts(At(0, 0, 0, 1), "c = 1/1/00 12:00:01 AM");
  // 02:30 does not exist in central Europe on that day, yet a logger may have run through it.
  ExpectTexts(At(85, 2, 30, 0), "dd hh:nn = 26 02:30");
}

TEST(FormatDateTime, SpeaksTheLocalesLanguage) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"de_DE", "dddd, d. mmmm", "Sonntag, 5. März"},
      {"de_DE", "dd/mm/yyyy hh:nn", "05.03.2000 07:08"},
      {"de_DE", "c", "05.03.00 07:08:09"},
      {"de_DE", "dddddd", "Sonntag, 5. März 2000"},
      {"fi_FI", "hh:nn:ss", "07.08.09"},
      {"en_GB", "ddddd", "05/03/2000"},
      {"sv_SE", "ddddd tt", "2000-03-05 07:08:09"},
      {"es_ES", "dddddd", "domingo, 5 de marzo de 2000"},
      {"ja_JP", "tt", "7時08分09秒"}};
  for (const auto& [locale, pattern, text] : cases) {
    EXPECT_EQ(Text(pattern, kMorning, locale), QString::fromUtf8(text)) << locale << " " << pattern;
  }
}

TEST(FormatDateTime, ReadsTheClockToTheNearestMillisecond) {
  const std::pair<double, const char*> cases[] = {{0.0, "1899-12-30 00:00:00.000"},
                                                  {-0.25, "1899-12-29 18:00:00.000"},
                                                  {36526.0 - 1e-12, "2000-01-01 00:00:00.000"},
                                                  {2958465.99999, "9999-12-31 23:59:59.136"},
                                                  {-693593.0, "0001-01-01 00:00:00.000"},
                                                  {2958466.0, "nothing"},
                                                  {-693594.0, "nothing"}};
  for (const auto& [days, text] : cases) {
    EXPECT_EQ(Text("yyyy'-'mm'-'dd hh':'nn':'ss.zzz", TDateTime(days)), text);
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

}  // namespace
