#include "components/channels/Channelset.h"

#include "components/channels/Statsstorage.h"
#include "tests/support/Testing.h"

namespace {

constexpr double kSecond = 1.0 / kSecondsPerDay;
constexpr double kStart = 45000.0;  // 15 March 2023

using TRows = std::vector<std::vector<double>>;

TRows Rows(const TMatrix& matrix) {
  TRows rows;
  for (int row = 0; row < matrix.Rows(); ++row) {
    rows.emplace_back(matrix.Row(row), matrix.Row(row) + matrix.Columns());
  }
  return rows;
}

/// Sets a row at so many seconds, the same value in each channel.
void SetRow(TChannelSet& set, double seconds, double value) {
  std::vector<double> row(static_cast<std::size_t>(set.GetColumns()), value);
  row[0] = kStart + seconds * kSecond;
  set.SetRow(row.data(), 0, set.GetColumns());
}

/// A source with a set of four channels.
struct TChannelSetTest : testing::Test {
  TChannelSource source;
  TChannelSets& sets = *source.GetSets();
  TChannelSet& set = *sets.Add();
  TChannel& first = *set.GetChannels()->GetItem(0);
};

TEST(TMatrix, KeepsTheCommonCornerZeroesTheRestAndRefusesSizesThatCannotBe) {
  TMatrix matrix;
  ASSERT_TRUE(matrix.Resize(3, 3));
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) matrix.At(row, column) = 10 * row + column;
  }
  ASSERT_TRUE(matrix.Resize(2, 5));
  ASSERT_TRUE(matrix.Resize(4, 4));
  EXPECT_EQ(Rows(matrix), TRows({{0, 1, 2, 0}, {10, 11, 12, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}));
  const TMatrix copy = matrix;
  matrix.DeleteColumn(1);
  constexpr int kLarge = 1 << 16, kMost = TMatrix::kMaxCells;
  for (const auto& [rows, columns] :
       {std::pair(0, 1), {1, 0}, {-1, 5}, {INT_MAX, INT_MAX}, {kLarge, kLarge}, {kMost, 2}}) {
    EXPECT_FALSE(matrix.Resize(rows, columns)) << rows << " x " << columns;
  }
  EXPECT_EQ(Rows(matrix), TRows({{0, 2, 0}, {10, 12, 0}, {0, 0, 0}, {0, 0, 0}}));
  EXPECT_EQ(copy.At(1, 1), 11);
}

TEST_F(TChannelSetTest, CountAndRowsResizeTheMatricesAndRefuseNonsense) {
  first.SetScaleFactor(3.0);
  for (const int count : {0, -1, INT_MIN, INT_MAX, 1 << 30, TChannelSet::kMaxChannels + 1}) {
    set.SetCount(count);
    EXPECT_EQ(set.GetCount(), 4) << count;
  }
  for (const int rows : {0, -1, INT_MAX, 1'000'000'000}) {
    set.SetRows(rows);
    EXPECT_EQ(set.GetRows(), 10) << rows;
  }
  for (const auto& [count, rows] : {std::pair(2, 10), {6, 3}}) {
    set.SetCount(count);
    set.SetRows(rows);
    EXPECT_EQ(set.GetData().Columns(), count + 1);
    EXPECT_EQ(set.GetBlockStats().Columns(), count + 1);
    EXPECT_EQ(set.GetData().Rows(), rows);
  }
  EXPECT_EQ(first.GetScaleFactor(), 3.0);
  EXPECT_EQ(set.GetChannels()->GetItem(5)->GetScaleFactor(), 1.0);
}

TEST_F(TChannelSetTest, ConvertsTheValuesOfARowAndNotItsTime) {
  first.SetScaleFactor(2.0);
  first.SetOffset(1.0);
  first.SetInitialValue(100.0);
  set.SetRows(2);
  const double row[] = {kStart, 5.0, 6.0, 7.0};
  set.SetRow(row, 0, 4);
  set.SetRow(row, 2, 4);
  // A raw 0 is 101.
  EXPECT_EQ(Rows(set.GetData()), TRows({{kStart, 111, 6, 7, 0}, {0, 101, 6, 7, 0}}));
  EXPECT_TRUE(set.GetActive());
  EXPECT_TRUE(first.GetActive());
  EXPECT_FALSE(set.GetChannels()->GetItem(3)->GetActive());  // the rows were short
}

TEST_F(TChannelSetTest, TellsItsClientsOfWholeBlocksInOrderAndThenBeginsAnew) {
  QStringList told;
  TDataClient a([&](TChannelSet* sender) { told.append(sender == &set ? "a" : "another's"); });
  auto b = std::make_unique<TDataClient>([&](TChannelSet*) { told.append("b"); });
  a.SetChannelSet(&set);
  b->SetChannelSet(&set);
  for (int i = 0; i < 9; ++i) SetRow(set, i, i);
  EXPECT_TRUE(told.isEmpty());
  SetRow(set, 9, 9.0);
  EXPECT_EQ(told, QStringList({"a", "b"}));
  EXPECT_EQ(set.GetCurrentRow(), 0);
  b.reset();
  for (int i = 10; i < 20; ++i) SetRow(set, i, i);
  EXPECT_EQ(told, QStringList({"a", "b", "a"}));
  EXPECT_EQ(set.GetData().At(0, 1), 10.0);
}

TEST_F(TChannelSetTest, SurvivesWhateverAClientDoes) {
  set.SetRows(1);
  int calls = 0;
  std::unique_ptr<TDataClient> self;
  std::unique_ptr<TDataClient> other;
  const auto never = [](TChannelSet*) { ADD_FAILURE(); };
  self = std::make_unique<TDataClient>([&](TChannelSet*) {
    other.reset();  // stands behind this one
    self.reset();
    if (++calls == 1) SetRow(set, 2, 2.0);  // a row from within
  });
  other = std::make_unique<TDataClient>(never);
  for (TDataClient* client : {self.get(), other.get()}) client->SetChannelSet(&set);
  SetRow(set, 1, 1.0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(set.GetData().At(0, 1), 2.0);

  TDataClient destroyer([&](TChannelSet*) { sets.Delete(0); });
  TDataClient last(never);
  for (TDataClient* client : {&destroyer, &last}) client->SetChannelSet(&set);
  SetRow(set, 3, 3.0);
  EXPECT_EQ(destroyer.GetChannelSet(), nullptr);
}

TEST_F(TChannelSetTest, MeasuresABlockFromTheEndOfTheOneBeforeAndCountsNoneThatTakesNoTime) {
  set.SetRows(2);
  const std::tuple<double, double, double, bool> blocks[] = {
      // its rows at, the rate, whether it has statistics
      {0.0, 2.0, 1.0, true},
      {3.0, 6.0, 0.5, true},
      {6.0, 6.0, 0.5, false},
      {1.0, 2.0, 0.5, false},  // the clock went back
      {3.0, 4.0, 1.0, true}};
  for (const auto& [start, end, rate, hasStatistics] : blocks) {
    for (const double seconds : {start, end}) SetRow(set, seconds, 3.0);
    EXPECT_NEAR(set.GetSampleRate(), rate, 1e-6) << end;
    std::vector<TStatSet> stats;
    ASSERT_EQ(set.CopyBlockStats(stats), hasStatistics) << end;
    EXPECT_TRUE(!hasStatistics || (stats.size() == 4 && stats[0].SqSum == 18.0)) << end;
  }
  EXPECT_DOUBLE_EQ(set.GetStartTime(), set.GetEndTime());
}

TEST_F(TChannelSetTest, BlockStatisticsAreThoseOfOnePassOverTheRows) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> value(-1000, 1000);  // whole numbers: sums are exact
  set.SetCount(3);
  set.SetRows(17);
  first.SetAnalysisTypes({});
  std::vector<TStatSet> expected(3);
  std::vector<TStatSet> stats;
  int blocks = 0;
  TDataClient client([&](TChannelSet* sender) {
    ASSERT_TRUE(sender->CopyBlockStats(stats));
    for (std::size_t i = 0; i < 3; ++i) {
      stats[i].Time = stats[i].Mean = stats[i].StDev = 0.0;
      EXPECT_EQ(stats[i], std::exchange(expected[i], {}));
    }
    ++blocks;
  });
  client.SetChannelSet(&set);
  for (int row = 0; row < 17 * 40; ++row) {
    double values[4] = {kStart + row * kSecond};
    for (std::size_t i = 0; i < 3; ++i) {
      const double x = values[i + 1] = value(random);
      expected[i].Merge({.Count = 1.0, .Sum = x, .SqSum = x * x, .Max = x, .Min = x});
    }
    set.SetRow(values, 0, 4);
  }
  EXPECT_EQ(blocks, 40);
  EXPECT_EQ(first.GetStats()->Get(0)->Count(), 0);  // it is not analysed
  EXPECT_GT(set.GetChannels()->GetItem(1)->GetStats()->Get(0)->Count(), 0);
}

TEST_F(TChannelSetTest, AChannelScalesItsOffsetWithTheFactorAndKeepsTheRawValues) {
  first.SetScaleFactor(2.0);
  first.SetOffset(1.0);
  for (int i = 0; i < 10; ++i) SetRow(set, i, i);  // 2i + 1
  first.SetScaleFactor(4.0);
  for (const double bad : {kNan, kInfinity, 0.0}) {
    first.SetScaleFactor(bad);
    if (bad != 0.0) first.SetOffset(bad);
  }
  EXPECT_EQ(first.GetScaleFactor(), 4.0);
  EXPECT_EQ(first.GetOffset(), 2.0);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(set.GetData().At(i, 1), 4.0 * i + 2.0);
  EXPECT_EQ(set.GetBlockStats().At(TChannelSet::kMax, 1), 38.0);
  EXPECT_EQ(set.GetBlockStats().At(TChannelSet::kSum, 1), 200.0);
}

TEST_F(TChannelSetTest, RescalingThereAndBackRestoresDataAndHistories) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> any(0.5, 20.0);
  for (int i = 0; i < 200; ++i) SetRow(set, i * 0.37, any(random));
  const TMatrix data = set.CopyData();
  const TStatHistory* seconds = first.GetStats()->Get(0);
  ASSERT_GT(seconds->Count(), 10);
  const TStatSet record = seconds->Get(3);
  const TStatSet current = seconds->Current();

  first.SetScaleFactor(-8.0);
  EXPECT_NEAR(seconds->Get(3).Max, -8.0 * record.Min, 1e-9);
  EXPECT_NEAR(seconds->Get(3).StDev, 8.0 * record.StDev, 1e-9);
  first.SetOffset(1234.5);
  for (const double initial : {-7.0, 0.0}) first.SetInitialValue(initial);
  first.SetOffset(0.0);
  first.SetScaleFactor(1.0);
  for (int row = 0; row < 10; ++row) EXPECT_NEAR(set.GetData().At(row, 1), data.At(row, 1), 1e-9);
  for (const auto field : {&TStatSet::Count, &TStatSet::Sum, &TStatSet::SqSum, &TStatSet::Max,
                           &TStatSet::Min, &TStatSet::Mean, &TStatSet::StDev}) {
    EXPECT_NEAR(seconds->Get(3).*field, record.*field, 1e-6);
    EXPECT_NEAR(seconds->Current().*field, current.*field, 1e-6);
  }
}

TEST_F(TChannelSetTest, ShiftToInitialConvertsTheStoredValuesOnceMore) {
  set.SetCount(2);
  set.SetRows(3);
  first.SetScaleFactor(2.0);
  first.SetInitialValue(10.0);
  for (int i = 0; i < 3; ++i) SetRow(set, 0, 1.0 + i);  // stored: 12, 14, 16
  first.ShiftToInitial();
  EXPECT_EQ(first.GetOffset(), -4.0);  // -2 x the mean raw value 2
  set.ShiftToInitial(0);               // the time is no channel
  EXPECT_EQ(Rows(set.GetData()), TRows({{kStart, 30, 1}, {kStart, 34, 2}, {kStart, 38, 3}}));
}

TEST_F(TChannelSetTest, AColumnWithoutAMeanIsNotShifted) {
  set.SetRows(3);
  first.SetOffset(5.0);
  for (const double value : {1.0, kNan, 3.0}) SetRow(set, 1.0, value);
  first.ShiftToInitial();
  set.CalculateOffset(1);
  EXPECT_EQ(first.GetOffset(), 5.0);
  EXPECT_EQ(set.GetData().At(2, 1), 8.0);
  // The form can be read again.
  EXPECT_TRUE(TChannelSource().GetSets()->ReadProperties(sets.WriteProperties()));
}

TEST(TChannelSet, ADestroyedChannelTakesItsColumnAlongThoughAListenerDestroysTheSet) {
  const std::function<void(TChannelSet&)> ways[] = {
      [](TChannelSet& set) { set.DeleteChannel(1); },
      [](TChannelSet& set) { delete set.GetChannels()->GetItem(1); }};
  for (const auto& destroy : ways) {
    SCOPED_TRACE(&destroy - ways);
    TChannelSet set;
    set.SetRows(2);
    const double row[] = {kStart, 1.0, 2.0, 3.0, 4.0};
    set.SetRow(row, 0, 5);
    destroy(set);
    EXPECT_EQ(Rows(set.GetData()), TRows({{kStart, 1, 3, 4}, {0, 0, 0, 0}}));
    EXPECT_EQ(set.GetChannels()->GetItem(1)->GetLabel(), "Channel3");
    EXPECT_EQ(set.GetChannels()->GetItem(1)->Column(), 2);
    SetRow(set, 1.0, 5.0);  // and the set goes on
    for (const bool ofTheChannels : {true, false}) {
      QPointer<TChannelSet> doomed = new TChannelSet;
      const TPersistent* sender = doomed;
      if (ofTheChannels) sender = doomed->GetChannels();
      QObject::connect(sender, &TPersistent::OnChange, [doomed] { delete doomed; });
      destroy(*doomed);
      delete doomed;  // not all of them are changes of the channels
    }
  }
}

TEST_F(TChannelSetTest, NobodyFindsASetThatIsBeingDestroyed) {
  TStatsStorage storage;
  set.SetStorage(&storage);  // which it leaves on the way, and tells so
  QObject::connect(&sets, &TChannelSets::OnChange, [&] { sets.Delete(0); });
  delete sets.GetItem(0);
  EXPECT_EQ(sets.Count(), 0);
}

TEST(TChannelSets, ListenersThatAddSetsDoNotKeepThemFromBeingCleared) {
  int added = 0;  // outlives the sets, which are news to the last
  TChannelSource source;
  TChannelSource copy;
  for (int i = 0; i < 3; ++i) copy.GetSets()->Add();
  QObject::connect(copy.GetSets(), &TChannelSets::OnChange, [&] {
    if (++added < 5000) copy.GetSets()->Add();  // up to kMaxSets
  });
  source.GetSets()->AssignTo(copy.GetSets());
  copy.GetSets()->Clear();
  EXPECT_LT(added, 1000);
}

TEST_F(TChannelSetTest, TakesOnlyTheMessageOfItsOwnChannels) {
  TChannelSet other;
  set.DefaultHandler(TObjectMessage(other.GetChannels()->GetItem(0), true));
  set.DefaultHandler(TObjectMessage(&other, true));
  set.DefaultHandler(TObjectMessage(&first, false));
  source.BeginLoading();
  set.DefaultHandler(TObjectMessage(&first, true));
  EXPECT_EQ(set.GetCount(), 4);
}

TEST_F(TChannelSetTest, SensorTypesHaveTheirTexts) {
  using TTexts = std::array<QString, 3>;
  const TTexts cases[] = {{"Unknown", "Unknown", ""},
                          {"Strain gage", "Stress", "MPa"},
                          {"Accelerometer", "Acceleration", "g"},
                          {"Thermometer", "Temperature", "C"},
                          {"Displacement transducer", "Displacement", "mm"},
                          {"Anemometer", "Wind speed", "m/s"},
                          {"Wind vane", "Wind direction", "deg"}};
  for (int i = -1; i <= 7; ++i) {
    const auto type = static_cast<TSensorType>(i);
    EXPECT_EQ((TTexts{GetSensorTypeText(type), GetQuantityText(type), GetUnitsText(type)}),
              cases[i > 0 && i < 7 ? i : 0]);
  }
  for (const auto type : {TChannel::stAccelerometer, TChannel::stWindSpeed}) {
    first.SetSensorType(type);
    EXPECT_EQ(first.GetUnits(), "g");  // set once
  }
}

TEST_F(TChannelSetTest, NewSetsHaveLabelsOfTheirOwn) {
  for (int i = 0; i < 2; ++i) sets.Add();
  EXPECT_EQ(sets.Labels(), QStringList({"ChannelSet1", "ChannelSet2", "ChannelSet3"}));
  sets.Delete(0);
  sets.GetItem(0)->SetLabel("ChannelSet4");
  sets.Add();
  EXPECT_EQ(sets.Labels(), QStringList({"ChannelSet4", "ChannelSet3", "ChannelSet5"}));
}

TEST_F(TChannelSetTest, FindsChannelsBySensorTypeSetBySet) {
  TChannels* channels[] = {set.GetChannels(), sets.Add()->GetChannels()};
  std::vector<TChannel*> expected;
  for (int i : {0, 1}) {
    for (const int channel : {i, 3}) {
      expected.push_back(channels[i]->GetItem(channel));
      expected.back()->SetSensorType(TChannel::stWindSpeed);
    }
  }
  EXPECT_EQ(source.GetSensorTypes(),
            (std::set<TSensorType>{TChannel::stUnknown, TChannel::stWindSpeed}));
  std::vector<TChannel*> found;
  source.GetChannelsOfType(found, TChannel::stWindSpeed);
  EXPECT_EQ(found, expected);
}

/// Two sets with everything unlike a new one.
struct TFilledSetTest : TChannelSetTest {
  TFilledSetTest() {
    set.SetLabel("Bridge \"north\",\n1");
    set.SetCount(2);
    set.SetRows(5);
    set.SetSetID("7");
    channel.SetSensorType(TChannel::stStrainGage);
    channel.SetUnits({});
    channel.SetOffset(3.0);
    channel.SetScaleFactor(2.0);  // the offset becomes 6
    channel.GetNumFormat()->SetDigits(7);
    channel.GetStats()->SetIntervals(si1_Second, si1_Hour);
    channel.GetStats()->GetLimits()->SetLimitMax(12.0);
    for (int i = 0; i < 310; ++i) SetRow(set, i * 0.5, i % 17);
    sets.Add()->SetXMLTag("other");
  }
  TChannel& channel = *set.GetChannels()->GetItem(1);
};

TEST_F(TFilledSetTest, IsCopiedWithoutAndSavedWithItsHistories) {
  TChannelSource copy;
  source.AssignTo(&copy);
  EXPECT_TRUE(copy.GetSets()->SameAs(&sets));
  EXPECT_EQ(copy.GetSets()->GetItem(0)->GetChannels()->GetItem(1)->GetStats()->Get(0)->Count(), 0);
  for (const bool asText : {false, true}) {
    SCOPED_TRACE(asText);
    channel.GetStats()->SetStoreDataAsText(asText);
    TChannelSource read;
    ASSERT_TRUE(read.GetSets()->ReadProperties(sets.WriteProperties()));
    EXPECT_TRUE(read.GetSets()->SameAs(&sets));
    EXPECT_EQ(read.GetSets()->WriteProperties(), sets.WriteProperties());
    const TChannel* same = read.GetSets()->GetItem(0)->GetChannels()->GetItem(1);
    EXPECT_EQ(same->GetUnits(), "");
    EXPECT_EQ(same->GetOffset(), 6.0);
    EXPECT_EQ(same->GetStats()->Get(0)->Count(), 60);
  }
}

TEST_F(TFilledSetTest, RefusesDamagedTextAndKeepsWhatItHas) {
  const QString text = sets.WriteProperties();
  const auto with = [&](const char* from, const char* to) {
    return QString(text).replace(from, to);
  };
  QString many = "{\"ChannelCount\":1024,\"Channels\":[" + QString("{},").repeated(1023) + "{}]},";
  many = '[' + many.repeated(33).chopped(1) + ']';
  const std::pair<QString, const char*> cases[] = {
      {"", "Character 0: illegal value"},
      {"{}", "The text is no list of at most 256 sets"},
      {"[1]", "Set 1: ChannelCount is not the number of channels"},
      {with("\"ScaleFactor\":2", "\"ScaleFactor\":0"),
       "Set 1: Channel 2: TChannel.ScaleFactor does not take its value"},
      {with("\"ChannelCount\":2", "\"ChannelCount\":2147483647"),
       "Set 1: ChannelCount is not the number of channels"},
      {with("\"Rows\":5", "\"Rows\":1000000000"),
       "Set 1: TChannelSet.Rows does not take its value"},
      {many, "Set 33: too many channels"}};
  for (const auto& [damaged, expected] : cases) {
    QString error;
    EXPECT_FALSE(sets.ReadProperties(damaged, &error));
    EXPECT_EQ(error, expected);
  }
  for (qsizetype length = 0; length < text.size(); length += 97) {
    EXPECT_FALSE(sets.ReadProperties(text.left(length)));
  }
  EXPECT_EQ(sets.WriteProperties(), text);
}

TEST_F(TChannelSetTest, TheGuardNeverBlocks) {
  set.WriteBegin();
  set.ReadBegin();  // nobody ends the writing
  EXPECT_EQ(set.GetAccess(), TChannelSet::kReading);
  set.ReadBegin();
  set.WriteBegin();
  EXPECT_EQ(set.GetAccess(), TChannelSet::kWriting);
  set.WriteEnd();
  EXPECT_EQ(set.GetAccess(), TChannelSet::kIdle);
}

TEST_F(TChannelSetTest, RowsMayComeOnAThreadOfTheirOwn) {
  std::atomic<int> blocks = 0;
  TDataClient client([&](TChannelSet*) { ++blocks; });
  client.SetChannelSet(&set);
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    // The values of a row are equal, and have to stay so while others look and change things.
    double row[64];
    for (int i = 1; !stop; ++i) {
      std::ranges::fill(row, i);
      row[0] = kStart + i * kSecond * 0.01;
      set.WriteBegin();
      set.SetRow(row, 0, 64);
      set.WriteEnd();
    }
  });
  for (int i = 0; i < 200 || blocks < 20; ++i) {
    for (const std::vector<double>& row : Rows(set.CopyData())) EXPECT_EQ(row[1], row[2]);
    TStatSet record;
    TChannelStatistics& stats = *set.GetChannels()->GetItem(i % 2)->GetStats();
    static_cast<void>(stats.GetCurrent(0, record));
    stats.GetLimits()->SetLimitMax(i);
    if (i % 8 == 0) set.SetCount(3 + i % 7);
    if (i % 8 == 1) set.DeleteChannel(2);
    if (i % 8 / 2 == 1) stats.SetMinInterval(i % 2 ? si1_Second : si1_Minute);
    if (i % 8 / 2 == 2) client.SetChannelSet(i % 2 ? &set : nullptr);
    if (i % 8 == 6) set.SetRows(5 + i % 11);
  }
  stop = true;
  writer.join();
}

}  // namespace
