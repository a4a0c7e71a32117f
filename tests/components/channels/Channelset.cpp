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

TEST(TMatrix, KeepsTheCommonCornerAndZeroesTheRest) {
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
  EXPECT_EQ(Rows(matrix), TRows({{0, 2, 0}, {10, 12, 0}, {0, 0, 0}, {0, 0, 0}}));
  EXPECT_EQ(copy.At(1, 1), 11);
}

TEST(TMatrix, RefusesSizesThatCannotBe) {
  TMatrix matrix;
  ASSERT_TRUE(matrix.Resize(2, 2));
  constexpr int kLarge = 1 << 16, kMost = TMatrix::kMaxCells;
  for (const auto& [rows, columns] :
       {std::pair(0, 1), {1, 0}, {-1, 5}, {INT_MAX, INT_MAX}, {kLarge, kLarge}, {kMost, 2}}) {
    EXPECT_FALSE(matrix.Resize(rows, columns)) << rows << " x " << columns;
  }
  EXPECT_EQ(matrix.Rows(), 2);
}

TEST(TChannelSet, CountAndRowsResizeTheMatricesAndRefuseNonsense) {
  TChannelSet set;
  EXPECT_EQ(set.GetColumns(), 5);
  EXPECT_EQ(set.GetXMLTag(), "data");
  for (int i = 0; i < 4; ++i) {
    EXPECT_FALSE(set.GetChannels()->GetItem(i)->GetActive());
    EXPECT_EQ(set.GetChannels()->GetItem(i)->GetScaleFactor(), 1.0);
  }
  set.GetChannels()->GetItem(0)->SetScaleFactor(3.0);
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
  EXPECT_EQ(set.GetChannels()->GetItem(0)->GetScaleFactor(), 3.0);
  EXPECT_EQ(set.GetChannels()->GetItem(5)->GetScaleFactor(), 1.0);
}

TEST(TChannelSet, ConvertsTheValuesOfARowAndNotItsTime) {
  TChannelSet set;
  TChannel* first = set.GetChannels()->GetItem(0);
  first->SetScaleFactor(2.0);
  first->SetOffset(1.0);
  first->SetInitialValue(100.0);
  set.SetRows(2);
  const double row[] = {kStart, 5.0, 6.0, 7.0};
  set.SetRow(row, 0, 4);
  set.SetRow(row, 2, 4);
  // A raw 0 is 101.
  EXPECT_EQ(Rows(set.GetData()), TRows({{kStart, 111, 6, 7, 0}, {0, 101, 6, 7, 0}}));
  EXPECT_TRUE(set.GetActive());
  EXPECT_TRUE(first->GetActive());
  EXPECT_FALSE(set.GetChannels()->GetItem(3)->GetActive());  // the rows were short
}

TEST(TChannelSet, TellsItsClientsOfWholeBlocksInOrderAndThenBeginsAnew) {
  TChannelSet set;
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
  SetRow(set, 10, 77.0);
  EXPECT_EQ(set.GetData().At(0, 1), 77.0);
  b.reset();
  for (int i = 11; i < 20; ++i) SetRow(set, i, i);
  EXPECT_EQ(told, QStringList({"a", "b", "a"}));
}

TEST(TChannelSet, SurvivesWhateverAClientDoes) {
  auto set = std::make_unique<TChannelSet>();
  set->SetRows(1);
  int calls = 0;
  std::unique_ptr<TDataClient> other;
  std::unique_ptr<TDataClient> self;
  self = std::make_unique<TDataClient>([&](TChannelSet* sender) {
    other.reset();  // stands behind this one
    self.reset();
    if (++calls == 1) SetRow(*sender, 2, 2.0);  // a row from within
  });
  other = std::make_unique<TDataClient>([&](TChannelSet*) { ADD_FAILURE(); });
  self->SetChannelSet(set.get());
  other->SetChannelSet(set.get());
  SetRow(*set, 1, 1.0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(set->GetData().At(0, 1), 2.0);

  TDataClient destroyer([&](TChannelSet*) { set.reset(); });
  TDataClient never([&](TChannelSet*) { ADD_FAILURE(); });
  destroyer.SetChannelSet(set.get());
  never.SetChannelSet(set.get());
  SetRow(*set, 3, 3.0);
  EXPECT_EQ(destroyer.GetChannelSet(), nullptr);
}

TEST(TChannelSet, MeasuresABlockFromTheEndOfTheOneBefore) {
  TChannelSet set;
  set.SetRows(4);
  for (int i = 0; i < 4; ++i) SetRow(set, i, i);  // 0 s to 3 s
  EXPECT_NEAR(set.GetSampleRate(), 4.0 / 3.0, 1e-6);
  for (int i = 4; i < 8; ++i) SetRow(set, i, i);  // 3 s to 7 s
  EXPECT_NEAR(set.GetSampleRate(), 1.0, 1e-6);
  EXPECT_DOUBLE_EQ(set.GetStartTime(), set.GetEndTime());
}

TEST(TChannelSet, ABlockThatTakesNoTimeHasNoStatistics) {
  TChannelSet set;
  set.SetRows(2);
  std::vector<TStatSet> stats;
  for (const double seconds : {100.0, 100.0}) SetRow(set, seconds, 1.0);
  EXPECT_FALSE(set.CopyBlockStats(stats));
  EXPECT_EQ(set.GetSampleRate(), 0.0);
  for (const double seconds : {50.0, 60.0}) SetRow(set, seconds, 2.0);  // the clock went back
  EXPECT_FALSE(set.CopyBlockStats(stats));
  for (const double seconds : {61.0, 62.0}) SetRow(set, seconds, 3.0);
  EXPECT_TRUE(set.CopyBlockStats(stats));
  EXPECT_NEAR(set.GetSampleRate(), 1.0, 1e-6);  // from 60 s on
  ASSERT_EQ(stats.size(), 4u);
  EXPECT_EQ(stats[0].Sum, 6.0);
  EXPECT_EQ(stats[0].SqSum, 18.0);
}

TEST(TChannelSet, BlockStatisticsAreThoseOfOnePassOverTheRows) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> value(-1000, 1000);  // whole numbers: sums are exact
  TChannelSet set;
  set.SetCount(3);
  set.SetRows(17);
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
}

TEST(TChannel, ScalesItsOffsetWithTheFactorAndKeepsTheRawValues) {
  TChannelSet set;
  TChannel* channel = set.GetChannels()->GetItem(0);
  channel->SetScaleFactor(2.0);
  channel->SetOffset(1.0);
  for (int i = 0; i < 10; ++i) SetRow(set, i, i);  // 2i + 1
  channel->SetScaleFactor(4.0);
  EXPECT_EQ(channel->GetOffset(), 2.0);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(set.GetData().At(i, 1), 4.0 * i + 2.0);
  EXPECT_EQ(set.GetBlockStats().At(TChannelSet::kMax, 1), 38.0);
  EXPECT_EQ(set.GetBlockStats().At(TChannelSet::kSum, 1), 200.0);

  for (const double bad : {0.0, kNan, kInfinity}) {
    channel->SetScaleFactor(bad);
    if (bad != 0.0) channel->SetOffset(bad);
  }
  EXPECT_EQ(channel->GetScaleFactor(), 4.0);
  EXPECT_EQ(channel->GetOffset(), 2.0);
}

TEST(TChannel, RescalingThereAndBackRestoresDataAndHistories) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> any(0.5, 20.0);
  TChannelSet set;
  TChannel* channel = set.GetChannels()->GetItem(1);
  for (int i = 0; i < 200; ++i) SetRow(set, i * 0.37, any(random));
  const TMatrix data = set.CopyData();
  const TStatHistory* seconds = channel->GetStats()->Get(0);
  ASSERT_GT(seconds->Count(), 10);
  const TStatSet record = seconds->Get(3);
  const TStatSet current = seconds->Current();

  channel->SetScaleFactor(-8.0);
  EXPECT_NEAR(seconds->Get(3).Max, -8.0 * record.Min, 1e-9);
  EXPECT_NEAR(seconds->Get(3).StDev, 8.0 * record.StDev, 1e-9);
  channel->SetOffset(1234.5);
  channel->SetInitialValue(-7.0);
  channel->SetInitialValue(0.0);
  channel->SetOffset(0.0);
  channel->SetScaleFactor(1.0);
  for (int row = 0; row < 10; ++row) EXPECT_NEAR(set.GetData().At(row, 2), data.At(row, 2), 1e-9);
  for (const auto& [now, before] :
       {std::pair(seconds->Get(3), record), {seconds->Current(), current}}) {
    for (const auto field : {&TStatSet::Count, &TStatSet::Sum, &TStatSet::SqSum, &TStatSet::Max,
                             &TStatSet::Min, &TStatSet::Mean, &TStatSet::StDev}) {
      EXPECT_NEAR(now.*field, before.*field, 1e-6);
    }
  }
}

TEST(TChannelSet, ShiftToInitialConvertsTheStoredValuesOnceMore) {
  TChannelSet set;
  set.SetRows(3);
  TChannel* channel = set.GetChannels()->GetItem(0);
  channel->SetScaleFactor(2.0);
  channel->SetInitialValue(10.0);
  for (int i = 0; i < 3; ++i) SetRow(set, i, 1.0 + i);  // stored: 12, 14, 16
  channel->ShiftToInitial();
  EXPECT_EQ(channel->GetOffset(), -4.0);  // -2 x the mean raw value 2
  for (int i = 0; i < 3; ++i) EXPECT_EQ(set.GetData().At(i, 1), 2 * (12.0 + 2 * i) - 4 + 10);
  EXPECT_EQ(set.GetData().At(2, 2), 3.0);  // another channel
  set.ShiftToInitial(0);                   // the time is no channel
  EXPECT_EQ(set.GetData().At(0, 0), kStart);
}

TEST(TChannelSet, AColumnWithoutAMeanIsNotShifted) {
  TChannelSource source;
  TChannelSet* set = source.GetSets()->Add();
  set->SetRows(3);
  TChannel* channel = set->GetChannels()->GetItem(0);
  channel->SetOffset(5.0);
  for (const double value : {1.0, kNan, 3.0}) SetRow(*set, 1.0 + value, value);
  channel->ShiftToInitial();
  set->CalculateOffset(1);
  EXPECT_EQ(channel->GetOffset(), 5.0);
  EXPECT_EQ(set->GetData().At(2, 1), 8.0);
  // The form can be read again.
  EXPECT_TRUE(TChannelSource().GetSets()->ReadProperties(source.GetSets()->WriteProperties()));
}

TEST(TChannelSet, MayBeDestroyedByItsOwnChanges) {
  const std::function<void(TChannelSet*)> changes[] = {
      [](TChannelSet* set) { set->DeleteChannel(1); },
      [](TChannelSet* set) { delete set->GetChannels()->GetItem(1); }};
  for (const auto& change : changes) {
    for (const bool ofTheChannels : {true, false}) {
      QPointer<TChannelSet> set = new TChannelSet;
      const TPersistent* sender = set;
      if (ofTheChannels) sender = set->GetChannels();
      QObject::connect(sender, &TPersistent::OnChange, [set] { delete set; });
      change(set);
      delete set;  // not all of them are changes of the channels
    }
  }
}

TEST(TChannelSets, NobodyFindsASetThatIsBeingDestroyed) {
  TChannelSource source;
  TStatsStorage storage;
  TChannelSet* set = source.GetSets()->Add();
  set->SetStorage(&storage);  // which it leaves on the way, and tells so
  QObject::connect(source.GetSets(), &TChannelSets::OnChange, [&] { source.GetSets()->Delete(0); });
  delete set;
  EXPECT_EQ(source.GetSets()->Count(), 0);
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

TEST(TChannelSet, ADestroyedChannelTakesItsColumnAlong) {
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
  }
}

TEST(TChannelSet, TakesOnlyTheMessageOfItsOwnChannels) {
  TChannelSet set;
  TChannelSet other;
  set.DefaultHandler(TObjectMessage(other.GetChannels()->GetItem(0), true));
  set.DefaultHandler(TObjectMessage(&other, true));
  set.DefaultHandler(TObjectMessage(set.GetChannels()->GetItem(0), false));
  EXPECT_EQ(set.GetCount(), 4);
  TChannelSource source;
  TChannelSet* own = source.GetSets()->Add();
  source.BeginLoading();
  own->DefaultHandler(TObjectMessage(own->GetChannels()->GetItem(0), true));
  EXPECT_EQ(own->GetCount(), 4);
}

TEST(TChannel, SensorTypesHaveTheirTexts) {
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
  TChannelSet set;
  TChannel* channel = set.GetChannels()->GetItem(0);
  for (const auto type : {TChannel::stAccelerometer, TChannel::stWindSpeed}) {
    channel->SetSensorType(type);
    EXPECT_EQ(channel->GetUnits(), "g");  // set once
  }
}

TEST(TChannelSets, NewSetsHaveLabelsOfTheirOwn) {
  TChannelSource source;
  TChannelSets& sets = *source.GetSets();
  for (int i = 0; i < 3; ++i) sets.Add();
  sets.Delete(0);
  sets.GetItem(0)->SetLabel("ChannelSet4");
  sets.Add();
  EXPECT_EQ(sets.Labels(), QStringList({"ChannelSet4", "ChannelSet3", "ChannelSet5"}));
}

TEST(TChannelSource, FindsChannelsBySensorTypeSetBySet) {
  TChannelSource source;
  for (int i = 0; i < 2; ++i) {
    TChannels* channels = source.GetSets()->Add()->GetChannels();
    channels->GetItem(i)->SetSensorType(TChannel::stWindSpeed);
    channels->GetItem(3)->SetSensorType(TChannel::stWindSpeed);
  }
  EXPECT_EQ(source.GetSets()->Labels(), QStringList({"ChannelSet1", "ChannelSet2"}));
  EXPECT_EQ(source.GetSensorTypes(),
            (std::set<TSensorType>{TChannel::stUnknown, TChannel::stWindSpeed}));
  std::vector<TChannel*> found;
  source.GetChannelsOfType(found, TChannel::stWindSpeed);
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(found[1], source.GetSets()->GetItem(0)->GetChannels()->GetItem(3));
  EXPECT_EQ(found[2], source.GetSets()->GetItem(1)->GetChannels()->GetItem(1));
}

/// Two sets with everything unlike a new one.
void Fill(TChannelSource& source) {
  TChannelSet* set = source.GetSets()->Add();
  set->SetLabel("Bridge \"north\",\n1");
  set->SetCount(2);
  set->SetRows(5);
  set->SetSetID("7");
  TChannel* channel = set->GetChannels()->GetItem(1);
  channel->SetSensorType(TChannel::stStrainGage);
  channel->SetUnits({});
  channel->SetOffset(3.0);
  channel->SetScaleFactor(2.0);  // the offset becomes 6
  channel->GetNumFormat()->SetDigits(7);
  channel->GetStats()->SetIntervals(si1_Second, si1_Hour);
  channel->GetStats()->GetLimits()->SetLimitMax(12.0);
  for (int i = 0; i < 310; ++i) SetRow(*set, i * 0.5, i % 17);
  source.GetSets()->Add()->SetXMLTag("other");
}

TEST(TChannelSource, CopiesSettingsAndNotMeasurements) {
  TChannelSource source, copy;
  Fill(source);
  source.AssignTo(&copy);
  EXPECT_TRUE(copy.GetSets()->SameAs(source.GetSets()));
  EXPECT_EQ(copy.GetSets()->GetItem(0)->GetChannels()->GetItem(1)->GetStats()->Get(0)->Count(), 0);
}

TEST(TChannelSets, AreSavedAndLoadedWithTheirHistories) {
  for (const bool asText : {false, true}) {
    SCOPED_TRACE(asText);
    TChannelSource source;
    Fill(source);
    source.GetSets()->GetItem(0)->GetChannels()->GetItem(1)->GetStats()->SetStoreDataAsText(asText);
    const QString text = source.GetSets()->WriteProperties();
    TChannelSource read;
    QString error;
    ASSERT_TRUE(read.GetSets()->ReadProperties(text, &error)) << error.toStdString();
    EXPECT_TRUE(read.GetSets()->SameAs(source.GetSets()));
    const TChannel* channel = read.GetSets()->GetItem(0)->GetChannels()->GetItem(1);
    EXPECT_EQ(channel->GetUnits(), "");
    EXPECT_EQ(channel->GetOffset(), 6.0);
    EXPECT_EQ(channel->GetStats()->Get(0)->Count(), 60);
    EXPECT_EQ(read.GetSets()->WriteProperties(), text);
  }
}

TEST(TChannelSets, RefuseDamagedTextAndKeepWhatTheyHave) {
  TChannelSource source;
  Fill(source);
  const QString text = source.GetSets()->WriteProperties();
  const auto with = [&](const char* from, const char* to) {
    return QString(text).replace(from, to);
  };
  QString many = "{\"ChannelCount\":1024,\"Channels\":[" + QString("{},").repeated(1023) + "{}]},";
  many = '[' + many.repeated(33).chopped(1) + ']';
  const std::pair<QString, QString> cases[] = {
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
  for (const auto& [damaged, expectedError] : cases) {
    QString error;
    EXPECT_FALSE(source.GetSets()->ReadProperties(damaged, &error));
    EXPECT_EQ(error, expectedError);
  }
  for (qsizetype length = 0; length < text.size(); length += 97) {
    EXPECT_FALSE(source.GetSets()->ReadProperties(text.left(length)));
  }
  EXPECT_EQ(source.GetSets()->WriteProperties(), text);
}

TEST(TChannelSet, TheGuardNeverBlocks) {
  TChannelSet set;
  set.WriteBegin();
  set.ReadBegin();  // nobody ends the writing
  EXPECT_EQ(set.GetAccess(), TChannelSet::kReading);
  set.ReadBegin();
  set.WriteBegin();
  EXPECT_EQ(set.GetAccess(), TChannelSet::kWriting);
  set.WriteEnd();
  EXPECT_EQ(set.GetAccess(), TChannelSet::kIdle);
}

TEST(TChannelSet, RowsMayComeOnAThreadOfTheirOwn) {
  TChannelSource source;
  TChannelSet* set = source.GetSets()->Add();
  std::atomic<int> blocks = 0;
  TDataClient client([&](TChannelSet*) { ++blocks; });
  client.SetChannelSet(set);
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    // The values of a row are equal, and have to stay so while others look and change things.
    double row[64];
    for (int i = 1; !stop; ++i) {
      std::fill(std::begin(row), std::end(row), i);
      row[0] = kStart + i * kSecond * 0.01;
      set->WriteBegin();
      set->SetRow(row, 0, 64);
      set->WriteEnd();
    }
  });
  for (int i = 0; i < 200 || blocks < 20; ++i) {
    const TMatrix data = set->CopyData();
    for (int r = 0; r < data.Rows(); ++r) EXPECT_EQ(data.At(r, 1), data.At(r, 2));
    TStatSet record;
    static_cast<void>(set->GetChannels()->GetItem(0)->GetStats()->GetCurrent(0, record));
    if (i % 10 == 0) set->SetCount(3 + i % 7);
    if (i % 10 == 1) set->DeleteChannel(2);
    if (i % 10 == 2 || i % 10 == 3) {
      set->GetChannels()->GetItem(0)->GetStats()->SetMinInterval(i % 2 ? si1_Second : si1_Minute);
    }
    if (i % 10 == 4 || i % 10 == 5) client.SetChannelSet(i % 10 == 4 ? nullptr : set);
    if (i % 10 == 6) set->SetRows(5 + i % 11);
    set->GetChannels()->GetItem(i % 2)->GetStats()->GetLimits()->SetLimitMax(i);
  }
  stop = true;
  writer.join();
}

}  // namespace
