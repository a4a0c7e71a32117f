#include "components/channels/Channelstat.h"

#include <QLocale>
#include <clocale>

#include "components/channels/Matrix.h"
#include "tests/support/Testing.h"

namespace {

using testing::Each;
using testing::ElementsAre;

constexpr double kSecond = 1.0 / kSecondsPerDay;
constexpr double kHour = 1.0 / 24.0;

double Day(int year, int month, int day) {
  return static_cast<double>(QDate(1899, 12, 30).daysTo(QDate(year, month, day)));
}

TStatSet Block(double time, double value, double count = 1.0) {
  return {count, count * value, count * value * value, value, value, 0.0, 0.0, time};
}

void Add(TChannelStatistics& statistics, const TStatSet& block) {
  TMatrix matrix;
  ASSERT_TRUE(matrix.Resize(5, 2));
  const double values[] = {block.Count, block.Sum, block.SqSum, block.Max, block.Min};
  for (int row = 0; row < 5; ++row) matrix.At(row, 1) = values[row];
  statistics.UpdateStatistics(1, matrix, block.Time);
}

/// How many values lie in each record of a history, the newest first.
std::vector<double> CountsOf(const TStatHistory* history) {
  std::vector<double> counts;
  for (int i = 0; i < history->Count(); ++i) counts.push_back(history->Get(i).Count);
  return counts;
}

/// All that a chain holds: what the last history has collected and what the others still have to
/// pass on.
TStatSet Held(const TChannelStatistics& statistics) {
  TStatSet held;
  for (int i = 0; i < statistics.Count(); ++i) {
    const TStatHistory* history = statistics.Get(i);
    held.Merge(history->Current());
    held.Merge(history->MadeRoom());
    const int count = history->Next() ? history->Pending() : history->Count();
    for (int k = 0; k < count; ++k) held.Merge(history->Get(k));
  }
  return held;
}

/// A chain of all histories, and blocks for it.
struct TChannelStatisticsTest : testing::Test {
  void Give(double time, double value, double count = 1.0) {
    Add(statistics, Block(time, value, count));
  }
  TChannelStatistics statistics;
};

TEST(TStatHistory, HasALengthAndATextForEachInterval) {
  const std::tuple<TStatInterval, int, const char*> cases[] = {
      {si1_Second, 60, "Last minute"}, {si1_Minute, 60, "Last hour"},
      {si1_Hour, 24, "Last 24 hours"}, {si1_Day, 30, "Last month"},
      {si1_Month, 12, "Last year"},    {si1_Year, 200, "All years"}};
  for (const auto& [interval, length, text] : cases) {
    EXPECT_EQ(TStatHistory(interval).MaxCount(), length);
    EXPECT_EQ(TChannelStatistics::GetIntervalText(interval), text);
  }
  EXPECT_EQ(TStatHistory(static_cast<TStatInterval>(3)).MaxCount(), 60);
}

TEST(TStatHistory, CompletesARecordWithTheBlockThatReachesItsEnd) {
  TStatHistory history(si1_Second);
  const double start = Day(2024, 5, 1) + 0.25 * kSecond;
  history.UpdateStatistics(Block(start, 2.0));
  history.UpdateStatistics(Block(start + 0.5 * kSecond, 4.0));
  EXPECT_EQ(history.Count(), 0);
  EXPECT_EQ(history.Current().Count, 2.0);
  history.UpdateStatistics(Block(start + 1.1 * kSecond, 9.0));
  ASSERT_EQ(history.Count(), 1);
  TStatSet record = history.Get(0);
  EXPECT_DOUBLE_EQ(record.StDev, std::sqrt(13.0));
  record.StDev = 0.0;
  // Count, sum, sum of squares, largest, smallest, mean.
  EXPECT_EQ(record, (TStatSet{3.0, 15.0, 101.0, 9.0, 2.0, 5.0, 0.0, start + 1.1 * kSecond}));
  EXPECT_EQ(history.Current().Count, 0.0);
  EXPECT_EQ(history.Current().Mean, 5.0);  // a display shows the last completed one
  EXPECT_EQ(history.StartTime(), record.Time);
  EXPECT_EQ(history.StartText(), "00:00:00");

  history.UpdateStatistics(Block(record.Time + 0.1 * kSecond, -1.0, 0.0));
  history.UpdateStatistics(Block(record.Time + 0.2 * kSecond, 7.0));
  EXPECT_EQ(history.Current().Max, 7.0);
  EXPECT_EQ(history.Current().Min, 7.0);
}

TEST_F(TChannelStatisticsTest, SixtyOneSecondsKeepSixtyAndReachTheMinutes) {
  const double start = Day(2024, 5, 1) + 10 * kHour;
  for (int i = 0; i <= 61; ++i) Give(start + i * 1.0001 * kSecond, i);
  const TStatHistory* seconds = statistics.Get(0);
  EXPECT_EQ(seconds->Count(), 60);
  EXPECT_EQ(seconds->Get(0).Max, 61.0);
  EXPECT_EQ(seconds->Get(59).Max, 2.0);
  const TStatHistory* minutes = statistics.Get(1);
  // Blocks 0 to 60, the last of which passed the minute.
  EXPECT_THAT(CountsOf(minutes), ElementsAre(61.0));
  EXPECT_EQ(minutes->Get(0).Max, 60.0);
  EXPECT_EQ(minutes->Get(0).Min, 0.0);
  EXPECT_EQ(minutes->StartText(), "10:00:01");  // of the first completed second
  EXPECT_EQ(minutes->EndText(), "10:01:00");
  EXPECT_EQ(minutes->StartTime(), minutes->Get(0).Time);
}

/// Stamps of whole seconds are not exact in days, nor is a clock to the tenth of a millisecond.
TEST(TStatHistory, ABlockASecondMakesARecordASecond) {
  for (const double early : {0.0, 0.0004}) {
    SCOPED_TRACE(early);
    TChannelStatistics statistics;
    const double start = Day(2024, 5, 1) + 10 * kHour - early * kSecond;
    for (int i = 0; i <= 3 * 3600; ++i) {
      Add(statistics, Block(start + i * kSecond, i));
      ASSERT_TRUE(i < 2 || statistics.Get(0)->Get(0).Count == 1.0) << i;
    }
    // The first second began with a block, and the first minute and hour with that second.
    EXPECT_THAT(CountsOf(statistics.Get(1)), Each(60.0));
    EXPECT_THAT(CountsOf(statistics.Get(2)), ElementsAre(3600.0, 3600.0, 3601.0));
  }
}

TEST_F(TChannelStatisticsTest, MonthsAreThoseOfTheCalendar) {
  statistics.SetIntervals(si1_Day, si1_Year);
  const int hours = (366 + 365) * 24;
  for (int hour = 1; hour <= hours; ++hour) Give(Day(2024, 1, 1) + hour * kHour, hour);
  EXPECT_THAT(CountsOf(statistics.Get(1)),
              ElementsAre(744, 720, 744, 720, 744, 744, 720, 744, 720, 744, 672, 744));
  EXPECT_THAT(CountsOf(statistics.Get(2)), ElementsAre(8760, 8784));
  EXPECT_EQ(statistics.Get(2)->Get(0).Min, 8785.0);
}

TEST(TStatHistory, EndsOfIntervalsLieBehindEveryTime) {
  const std::tuple<TStatInterval, double, double> cases[] = {
      {si1_Minute, Day(2024, 5, 1) + 90.5 * kSecond, Day(2024, 5, 1) + 120 * kSecond},
      {si1_Hour, Day(2024, 5, 1), Day(2024, 5, 1) + kHour},
      {si1_Day, Day(2024, 3, 31) + 0.1, Day(2024, 4, 1)},  // 23 hours in Europe
      {si1_Day, Day(2024, 10, 27), Day(2024, 10, 28)},     // 25
      {si1_Month, Day(2024, 12, 31) + 0.9, Day(2025, 1, 1)},
      {si1_Month, Day(2024, 2, 1), Day(2024, 3, 1)},
      {si1_Year, Day(2023, 7, 1), Day(2024, 1, 1)},
      {si1_Day, -0.5, 0.0}};
  const auto endOf = [](TStatInterval interval, double time) {
    return interval < si1_Day ? GetEndTime(interval, time) : GetEndDate(interval, time);
  };
  for (const auto& [interval, time, end] : cases) EXPECT_DOUBLE_EQ(endOf(interval, time), end);
  std::mt19937 random(3);
  std::uniform_real_distribution<double> day(-693593.0, 2958465.0);
  for (int i = 0; i < 20000; ++i) {
    const double time = i % 2 ? day(random) : std::floor(day(random) * 1440.0) / 1440.0;
    for (int k = 0; k < kStatIntervals; ++k) ASSERT_GT(endOf(IntervalAt(k), time), time);
  }
}

/// Ten years of blocks at irregular times: pauses, and a clock that is set an hour on in March and
/// an hour back in October.
TEST_F(TChannelStatisticsTest, TenYearsLoseNothingAndCountNothingTwice) {
  std::mt19937 random(4);
  std::uniform_int_distribution<int> value(-50, 50);
  std::uniform_real_distribution<double> pause(0.0, 1.0);
  TStatSet given;
  for (double time = Day(2015, 1, 1), step = 0.2; time < Day(2025, 1, 1);) {
    const QDate date = QDate(1899, 12, 30).addDays(static_cast<qint64>(time));
    const double shift = date.month() > 3 && date.month() < 11 ? kHour : 0.0;
    const TStatSet block = Block(time + shift, value(random), 1 + value(random) % 2);
    Add(statistics, block);
    given.Merge(block);
    if (pause(random) < 0.0005) step = std::exp(12.0 * pause(random) - 1.0);  // to 16 hours
    time += step * pause(random) * kSecond;
    if (step > 3000.0 && pause(random) < 0.2) step = 0.2;
    if (pause(random) >= 0.0001) continue;
    ASSERT_EQ(Held(statistics), given) << date.toString(Qt::ISODate).toStdString();
  }
  EXPECT_GE(statistics.Get(5)->Count(), 9);
  EXPECT_EQ(Held(statistics).Count, given.Count);
}

TEST_F(TChannelStatisticsTest, AClockSetBackBeginsANewInterval) {
  const double two = Day(2024, 10, 27) + 2 * kHour;
  for (int i = 0; i < 7200; ++i) {  // the hour from two to three comes twice
    Give(two + (i % 3600 + 0.5) * kSecond, 1.0);
  }
  EXPECT_EQ(Held(statistics).Count, 7200.0);
  EXPECT_EQ(statistics.Get(1)->Count(), 60);
  EXPECT_NEAR(statistics.Get(1)->Get(0).Count, 60.0, 1.0);
  // The first of the two hours.
  EXPECT_THAT(CountsOf(statistics.Get(2)), ElementsAre(testing::DoubleNear(3600.0, 60.0)));
}

TEST_F(TChannelStatisticsTest, LeaveOutWhatCannotBeCounted) {
  Give(45000.0, 1.0);
  for (const double time : {kNan, kInfinity, -kInfinity, 1e300, -1e7, 3e6}) Give(time, 1.0);
  for (const double value : {kNan, kInfinity, -kInfinity, 1e200}) Give(45000.0, value);
  EXPECT_EQ(Held(statistics), Block(0.0, 1.0));
  TMatrix small;
  ASSERT_TRUE(small.Resize(4, 2));
  statistics.UpdateStatistics(1, small, 45000.0);
  ASSERT_TRUE(small.Resize(5, 2));
  statistics.UpdateStatistics(7, small, 45000.0);
  statistics.UpdateStatistics(-1, small, 45000.0);
  EXPECT_EQ(Held(statistics).Count, 1.0);
}

TEST_F(TChannelStatisticsTest, IntervalsBuildTheChain) {
  ASSERT_EQ(statistics.Count(), 6);
  Give(45000.0, 1.0);
  statistics.SetMaxInterval(si1_Hour);
  EXPECT_EQ(statistics.Count(), 3);
  EXPECT_EQ(statistics.Get(2)->Next(), nullptr);
  EXPECT_EQ(statistics.Get(0)->Current().Count, 1.0);  // stays
  statistics.SetMinInterval(si1_Day);
  EXPECT_EQ(statistics.GetSelIntervals(), TStatIntervals(si1_Day));
  statistics.SetSelIntervals({});
  statistics.SetSelIntervals(TStatIntervals(64));
  statistics.SetIntervals(si1_Year, si1_Day);
  EXPECT_EQ(statistics.GetSelIntervals(), TStatIntervals(si1_Day));
  statistics.SetSelIntervals(si1_Second | si1_Hour);
  ASSERT_EQ(statistics.Count(), 2);
  EXPECT_EQ(statistics.Get(0)->Next(), statistics.Get(1));
  EXPECT_EQ(statistics.GetMinInterval(), si1_Second);
  EXPECT_EQ(statistics.GetMaxInterval(), si1_Hour);
}

TEST(TStatHistory, StatusHasAWarningAndHysteresis) {
  TLimits limits;
  TStatHistory history(si1_Second, &limits);
  EXPECT_EQ(history.GetStatus(), ssNone);
  // The values, and whether each is normal, a warning or an alarm.
  const std::tuple<TLimits, std::vector<double>, std::string> cases[] = {
      {{.Max = 100.0, .Min = -100.0, .WarningLevel = 10.0, .CheckMax = true, .CheckMin = false},
       {50, 90, 91, 86, 84, 100, 101, 96, 94, 101, 20, -500},
       "nnwwnwaawann"},
      {{.Max = 0.0, .Min = -100.0, .WarningLevel = 0.0, .CheckMax = false, .CheckMin = true},
       {-100, -101, -100, 900},
       "nann"}};
  const std::map<TStatStatus, char> letters = {{ssNormal, 'n'}, {ssWarning, 'w'}, {ssAlarm, 'a'}};
  double time = 45000.0;
  for (const auto& [checked, values, expected] : cases) {
    limits = checked;
    std::string found;
    for (const double value : values) {
      history.AddToHistory(Block(time += kSecond, value));
      history.CheckStatus();
      found += letters.at(history.GetStatus());
    }
    EXPECT_EQ(found, expected);
  }
}

TEST_F(TChannelStatisticsTest, ABadSecondIsOverAfterASecondAndStaysInTheDay) {
  statistics.GetLimits()->SetLimitMax(100.0);
  statistics.GetLimits()->SetCheckMax(true);
  EXPECT_EQ(statistics.GetStatus(), ssNone);
  const double start = Day(2024, 1, 15) + 22.5 * kHour;
  for (int i = 0; i < 7200; ++i) {
    Give(start + i * kSecond, i == 60 ? 101.0 : 0.0);
    EXPECT_TRUE(i != 60 || statistics.GetStatus() == ssAlarm);
  }
  EXPECT_EQ(statistics.GetStatus(), ssNormal);
  for (const auto& [interval, status] : {std::pair(si1_Second, ssNormal),
                                         {si1_Hour, ssNormal},
                                         {si1_Day, ssAlarm},
                                         {si1_Month, ssNone}}) {
    EXPECT_EQ(statistics.GetStatus(interval), status) << interval;
  }
  statistics.SetIntervals(si1_Day, si1_Month);
  EXPECT_EQ(statistics.GetStatus(), ssAlarm);
  EXPECT_EQ(statistics.GetStatus(si1_Second), ssNone);
}

TEST_F(TChannelStatisticsTest, AGraphShowsTheHistoryAndValueOfTheOptions) {
  for (int i = 0; i < 5; ++i) Give(45000.0 + 1.5 * i * kSecond, i);
  TStatisticsOptions options;
  EXPECT_EQ(options.GetDescription(), "Last minute: Mean");
  options.SetValueType(svMax);
  EXPECT_EQ(options.GetDescription(), "Last minute: Max");
  int index = 0;
  TCoordinate point, extent;
  std::vector<TCoordinate> points;
  while (statistics.ProvideGraphData(options, index, point, extent)) points.push_back(point);
  const auto at = [](double seconds, double value) {
    return TCoordinate{45000.0 + seconds * kSecond, value};
  };
  EXPECT_THAT(points, ElementsAre(at(6.0, 4.0), at(4.5, 3.0), at(3.0, 2.0), at(1.5, 1.0)));
  TCoordinate block[3];
  EXPECT_EQ(statistics.ProvideGraphBlock(options, 2, block), 2);
  EXPECT_EQ(block[1], points[3]);
  for (const int beside : {-5, INT_MAX}) {
    EXPECT_EQ(statistics.ProvideGraphBlock(options, beside, block), 0);
  }
  EXPECT_EQ(statistics.Get(0)->GetMax(), 4.0);
  EXPECT_EQ(statistics.Get(0)->GetMin(), 0.0);
  options.SetSelInterval(si1_Day);
  index = 0;
  EXPECT_FALSE(statistics.ProvideGraphData(options, index, point, extent));
}

// Stored forms

/// Months of half-hourly blocks, so that every history holds something.
void Fill(TChannelStatistics& statistics) {
  for (int i = 0; i < 4000; ++i) {
    Add(statistics, Block(Day(2023, 12, 1) + i * kHour / 2, std::sin(i) * 1e3, 10.0));
  }
  for (int i = 0; i < 1000; ++i) {
    Add(statistics, Block(Day(2024, 3, 1) + i * 0.4 * kSecond, std::cos(i), 10.0));
  }
}

TEST(TStatHistory, HasABinaryFormOfFixedLayoutAndATextFormWithFullStops) {
  TStatHistory history(si1_Minute);
  history.UpdateStatistics(Block(45000.0, 3.0, 2.0));
  history.UpdateStatistics(Block(45000.5, 5.0, 2.0));
  QByteArray data;
  QDataStream stream(&data, QIODevice::WriteOnly);
  stream.setByteOrder(QDataStream::LittleEndian);
  history.WriteProperties(stream);
  ASSERT_EQ(data.size(), 8 + 8 + 64 + 4 + 64);
  const auto expect = [&](qsizetype at, double expected) {
    double value = 0.0;
    std::memcpy(&value, data.constData() + at, sizeof value);  // on a little endian machine
    EXPECT_DOUBLE_EQ(value, expected) << at;
  };
  expect(0, 45000.5);                 // start
  expect(8, 45000.5 + 1.0 / 1440.0);  // end
  expect(16, 0.0);                    // current count
  expect(16 + 56, 45000.5);           // current time
  EXPECT_EQ(data.mid(80, 4), QByteArray("\1\0\0\0", 4));
  const double record[] = {4.0, 16.0, 68.0, 5.0, 3.0, 4.0, std::sqrt(4.0 / 3.0), 45000.5};
  for (int i = 0; i < 8; ++i) expect(84 + 8 * i, record[i]);

  const QLocale before;
  QLocale::setDefault(QLocale::German);
  const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // where the machine has it
  const QString text =
      "45000.50000000 4.00000E+00 5.00000E+00 3.00000E+00 1.15470E+00 4 1.600000E+01 6.800000E+01";
  EXPECT_EQ(history.WritePropertiesAsText(),
            QStringList({"StartTime: 45000.50000000 EndTime: 45000.50069444 ItemCount: 1",
                         "ItemID si1_Minute",
                         "Last: 45000.50000000 4.00000E+00 5.00000E+00 3.00000E+00 1.15470E+00 0 "
                         "0.000000E+00 0.000000E+00",
                         text}));
  EXPECT_EQ(TStatSet::GetStatSetHeader(), "Time Mean Max Min StDev Count Sum Sum2");
  for (const char* name : {"", "Last: "}) {
    TStatSet read;
    EXPECT_TRUE(read.ScanFromText(name + text));
    EXPECT_EQ(read.GetAsText(), text);
  }
  std::setlocale(LC_NUMERIC, locale.c_str());
  QLocale::setDefault(before);
}

TEST_F(TChannelStatisticsTest, BothFormsReadBackEqual) {
  Fill(statistics);
  for (int i = 0; i < 5; ++i) ASSERT_GT(statistics.Get(i)->Count(), 0) << i;
  TChannelStatistics binary;
  ASSERT_TRUE(binary.ReadHistories(statistics.WriteHistories()));
  EXPECT_EQ(binary.WriteBinaryData(), statistics.WriteBinaryData());
  // And go on as if nothing had happened.
  for (auto* chain : {&binary, &statistics}) {
    for (int i = 0; i < 2000; ++i) Add(*chain, Block(Day(2024, 3, 2) + i * kHour, i));
  }
  EXPECT_EQ(binary.WriteBinaryData(), statistics.WriteBinaryData());

  statistics.SetStoreDataAsText(true);
  TChannelStatistics text;
  text.SetStoreDataAsText(true);
  ASSERT_TRUE(text.ReadHistories(statistics.WriteHistories()));
  EXPECT_EQ(text.WriteHistories(), statistics.WriteHistories());
  EXPECT_EQ(text.Get(0)->Count(), statistics.Get(0)->Count());
  EXPECT_NEAR(Held(text).Sum / Held(statistics).Sum, 1.0, 1e-5);
}

TEST_F(TChannelStatisticsTest, WhatTheyHoldCanAlwaysBeReadBack) {
  // The squares of a minute exceed the range of a double, those of a second do not.
  for (int i = 0; i < 300; ++i) Give(45000.0 + 1.5 * i * kSecond, 1e153, 100.0);
  Give(45000.5, 1e300, 1e-300);  // less than one value
  EXPECT_LT(statistics.Get(0)->Current().Time, 45000.1);
  EXPECT_GT(statistics.Get(1)->Count(), 5);
  TChannelStatistics read;
  EXPECT_TRUE(read.ReadBinaryData(statistics.WriteBinaryData()));
  EXPECT_TRUE(read.ReadData(statistics.WriteData()));

  // A minute that begins so near to its end that the digits of the text form make them one.
  TChannelStatistics late;
  Add(late, Block(std::nextafter(45001.0, 0.0), 2.0));
  ASSERT_TRUE(read.ReadData(late.WriteData()));
  Add(read, Block(45001.0 + kSecond, 4.0));
  EXPECT_EQ(Held(read).Count, 2.0);
}

TEST_F(TChannelStatisticsTest, RefuseDamagedFormsAndKeepWhatTheyHave) {
  TChannelStatistics source;
  Fill(source);
  const QByteArray data = source.WriteBinaryData();
  const QString text = source.WriteData();
  Give(45000.0, 1.0);
  const QByteArray kept = statistics.WriteBinaryData();
  QString error;
  for (qsizetype length = 0; length < data.size(); ++length) {
    ASSERT_FALSE(statistics.ReadBinaryData(data.left(length), &error)) << length;
    ASSERT_FALSE(error.isEmpty());
  }
  EXPECT_FALSE(statistics.ReadBinaryData(data + 'x', &error));
  EXPECT_EQ(error, "Something stands behind the histories");
  // Cut within its last number a text may still be whole.
  for (qsizetype length = 0; length <= text.lastIndexOf('.'); length += 7) {
    ASSERT_FALSE(statistics.ReadData(text.left(length), &error)) << length;
  }
  // The number of records, a time and a sum of the first history.
  const std::pair<qsizetype, const char*> patches[] = {{80 + 80, "00000080"},
                                                       {80 + 80, "ffffff7f"},
                                                       {80 + 80, "3d000000"},
                                                       {80, "000000000000f87f"},
                                                       {80 + 84 + 8, "000000000000f87f"},
                                                       {80 + 84 + 8, "000000000000f0ff"},
                                                       {4, "00000080"},
                                                       {8, "40000000"}};
  for (const auto& [at, hex] : patches) {
    QByteArray damaged = data;
    const QByteArray bytes = QByteArray::fromHex(hex);
    EXPECT_FALSE(statistics.ReadBinaryData(damaged.replace(at, bytes.size(), bytes), &error)) << at;
  }
  const std::pair<const char*, const char*> changes[] = {
      {"HistoryCount: 6", "HistoryCount: 2147483648"},
      {"ItemCount: 60", "ItemCount: 2147483647"},
      {"ItemCount: 60", "ItemCount: -1"},
      {"ItemID si1_Second", "ItemID si1_Year"},
      {"Last: ", "Last: nan "},
      {"E+00", "E+999"}};
  for (const auto& [from, to] : changes) {
    QString damaged = text;
    EXPECT_FALSE(statistics.ReadData(damaged.replace(from, to), &error)) << to;
  }
  EXPECT_FALSE(statistics.ReadHistories("not base64!", &error));
  EXPECT_EQ(error, "These are no stored histories");
  EXPECT_EQ(statistics.WriteBinaryData(), kept);
}

}  // namespace
