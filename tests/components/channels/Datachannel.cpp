#include "components/channels/Datachannel.h"

#include <numeric>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/components/sources/Providerfixture.h"

namespace {

using testing::ElementsAre;

std::vector<double> Values(const TCustomDataChannel& channel) {
  std::vector<double> values;
  for (int row = 0; row < channel.GetPointCount(); ++row) {
    values.push_back(channel.GetData()->Row(row)[TFloatList::kValue]);
  }
  return values;
}

TEST(TDataChannel, ConvertsLimitsOrDropsASample) {
  using TChannel = TCustomDataChannel;
  const TChannel::TChannelOptions none, clamp = TChannel::coUseLimits,
                                        skipAlone = TChannel::coSkipError, skip = clamp | skipAlone;
  using TRow = std::tuple<double, double, TChannel::TChannelOptions, double, std::vector<double>>;
  const TRow cases[] = {
      {2, 1, none, 3, {7}},        {2, 1, none, 30, {61}},
      {1, 0, clamp, 12, {10}},     {1, 0, clamp, -3, {0}},
      {1, 0, clamp, 10, {10}},     {1, 0, skip, 10, {10}},
      {1, 0, skip, 0, {0}},        {1, 0, skip, 12, {}},
      {1, 0, skip, -0.5, {}},      {1, 0, skipAlone, 12, {12}},
      {-1, 0, clamp, 5, {0}},      {1, 0, clamp, kInfinity, {10}},
      {1, 0, skip, kInfinity, {}}, {1, 0, none, -kInfinity, {-kInfinity}},
  };
  for (const auto& [scale, shift, options, raw, stored] : cases) {
    SCOPED_TRACE(raw);
    TDataChannel channel;
    TRecorder client;
    channel.GetClientControls()->Add(&client);
    channel.SetScaleFactor(scale);
    channel.SetShiftConstant(shift);
    channel.SetLimitMax(10.0);
    channel.SetOptions(options);
    channel.SetTimeAndValue(40000.5, raw);
    EXPECT_EQ(Values(channel), stored);
    EXPECT_EQ(client.given, stored);
    EXPECT_EQ(channel.GetValue(), stored.empty() ? 0.0 : stored[0]);
    EXPECT_EQ(channel.GetData()->GetValues(0, 0), stored.empty() ? 0.0 : 40000.5);
  }
}

TEST(TDataChannel, TakesNanThroughLimitsAndGraphAndTakesItsSeriesAway) {
  TKorvalGraph graph;
  auto channel = std::make_unique<TDataChannel>();
  channel->GetGraphLink()->SetGraph(&graph);
  channel->SetOptions(TCustomDataChannel::coUseLimits | TCustomDataChannel::coSkipError);
  channel->SetLimitMax(10.0);
  for (const double value : {1.0, kNan, 3.0}) channel->SetTimeAndValue(value, value);
  EXPECT_EQ(channel->GetPointCount(), 3);
  const QImage picture = graph.grab().toImage();
  for (const Qt::GlobalColor color : {Qt::blue, Qt::yellow}) {
    EXPECT_GT(CountPixels(picture, color), 0) << color;
  }
  graph.GetDataPanel()->GetSeriesList().Get(1)->SetVisible(false);
  graph.Replay();
  EXPECT_EQ(BoundsOf(graph.GetDataPanel()->RangeY()), TMinMax(1.0, 3.0));
  channel.reset();
  EXPECT_TRUE(graph.GetDataPanel()->GetSeriesList().Empty());
  graph.grab();
}

TEST(TDataChannel, TellsSubscribersAndClientsBeforeItStoresAndDraws) {
  TDataChannel channel;
  QStringList events;
  const auto note = [&](const char* what) {
    events << QString("%1 %2").arg(what).arg(channel.GetPointCount());
  };
  TRecorder client;
  client.OnGiven = [&](double) { note("client"); };
  channel.GetClientControls()->Add(&client);
  TValueLink link([&](double) { note("subscriber"); });
  channel.AddLink(&link, false);
  QObject::connect(&channel, &TDataChannel::OnNotify, [&] { note("notify"); });
  QObject::connect(channel.GetGraphLink(), &TGraphLink::OnUpdate, [&] { note("draw"); });
  channel.SetInterval(2);
  channel.GetGraphLink()->SetUpdateInterval(3);
  for (int i = 0; i < 3; ++i) channel.SetValue(1.0);
  EXPECT_EQ(events, QStringList({"client 0", "subscriber 1", "notify 1", "client 1", "client 2",
                                 "draw 3"}));
}

TEST(TDataChannel, NeverHasItsLimitsInvertedNorAConversionThatCannotBeUndone) {
  const auto max = &TCustomDataChannel::SetLimitMax, min = &TCustomDataChannel::SetLimitMin;
  using TStep = std::tuple<decltype(max), double, double, double>;
  TDataChannel channel;
  for (const auto& [set, limit, expectedMin, expectedMax] :
       {TStep{max, -5, -5, 0}, TStep{max, 10, -5, 10}, TStep{min, 3, 3, 10}, TStep{min, 12, 10, 12},
        TStep{max, 1, 1, 10}, TStep{max, kNan, 1, 10}, TStep{min, -kInfinity, -kInfinity, 10}}) {
    (channel.*set)(limit);
    EXPECT_EQ(channel.GetLimitMin(), expectedMin) << limit;
    EXPECT_EQ(channel.GetLimitMax(), expectedMax) << limit;
  }
  for (const double refused : {0.0, kNan, kInfinity}) {
    channel.SetScaleFactor(refused);
    if (refused != 0.0) channel.SetShiftConstant(refused);
  }
  EXPECT_EQ(channel.GetScaleFactor(), 1.0);
  EXPECT_EQ(channel.GetShiftConstant(), 0.0);
}

TEST(TDataChannel, KeepsTheNewestInPipeModeAndManyWithoutIt) {
  TDataChannel channel;
  QSignalSpy redraws(channel.GetGraphLink(), &TGraphLink::OnUpdate);
  const auto expect = [&](int count, double first, double last, int redrawn) {
    EXPECT_EQ(channel.GetPointCount(), count);
    EXPECT_EQ(Values(channel).front(), first);
    EXPECT_EQ(Values(channel).back(), last);
    EXPECT_EQ(redraws.count(), redrawn);
    redraws.clear();
  };
  for (int i = 1; i <= 101; ++i) channel.SetTimeAndValue(i * 0.5, i);
  expect(100, 2.0, 101.0, 101);
  EXPECT_EQ(channel.GetData()->GetValues(99, 0), 50.5);
  channel.SetPipeMode(false);
  channel.SetValue(102.0);
  expect(101, 2.0, 102.0, 1);
  channel.SetPointCount(40);  // counts in pipe mode only
  EXPECT_EQ(channel.GetData()->GetMaxCount(), 65536);
  channel.SetPipeMode(true);
  expect(40, 63.0, 102.0, 1);
  TFloatList longer;
  for (int i = 1; i <= 50; ++i) longer.PushBack(i);
  channel.SetData(&longer);
  channel.SetData(nullptr);
  expect(40, 11.0, 50.0, 1);
  channel.GetData()->SetDataValues(longer.WriteProperties());
  for (const int refused : {-1, 65537}) channel.SetPointCount(refused);
  expect(40, 11.0, 50.0, 1);
  channel.GetReset()->Click();
  EXPECT_EQ(channel.GetPointCount(), 0);
  EXPECT_EQ(redraws.count(), 1);
}

TEST(TDataChannel, GivesItsGraphThePointsOfItsStyle) {
  using TStyle = TSeriesStyle;
  TDataChannel channel;
  TStyle* style =
      dynamic_cast<TSeries*>(channel.GetGraphLink()->GetSeriesList().Get(0))->GetStyle();
  channel.SetTimeAndValue(7.5, 1.0);
  channel.SetTimeAndValue(8.5, 2.0);
  const std::tuple<TStyle::TPointStyle, bool, TCoordinate, TCoordinate> cases[] = {
      {TStyle::psNone, false, {1.0, 2.0}, {1.0, 0.0}},
      {TStyle::psNone, true, {8.5, 2.0}, {1.0, 0.0}},
      {TStyle::psXBar, false, {1.0, 2.0}, {1.0, 0.0}},
      {TStyle::psYBar, false, {2.0, 1.0}, {0.0, 1.0}},
      {TStyle::psYBar, true, {2.0, 8.5}, {0.0, 1.0}},
  };
  for (const auto& [pointStyle, useTime, second, width] : cases) {
    SCOPED_TRACE(testing::Message() << pointStyle << useTime);
    style->SetPointStyle(pointStyle);
    channel.SetUseTime(useTime);
    int index = 0;
    TCoordinate point, extent;
    while (channel.ProvideGraphData(index, point, extent)) EXPECT_EQ(extent, width);
    EXPECT_EQ(point, second);
    EXPECT_EQ(index, 2);
    std::array<TCoordinate, 8> block;
    EXPECT_EQ(channel.ProvideGraphBlock(1, block), 1);
    EXPECT_EQ(block[0], second);
    EXPECT_EQ(channel.ProvideGraphBlock(2, block), 0);
  }
}

TEST(TDataChannel, SendsItsHistoryAgainAndKeepsItsValue) {
  TDataChannel channel;
  channel.SetScaleFactor(2.0);
  for (const double raw : {1.0, 2.0, 3.0}) channel.SetValue(raw);
  channel.TDataControl::SetValue(50.0);
  TRecorder client;
  channel.GetClientControls()->Add(&client);
  std::vector<double> told;
  TValueLink link([&](double value) {
    told.push_back(value);
    channel.GetSendData()->Click();  // it is sending already
  });
  channel.AddLink(&link, false);
  channel.GetSendData()->SetClick(true);
  EXPECT_THAT(client.given, ElementsAre(2.0, 4.0, 6.0));
  EXPECT_EQ(channel.GetPointCount(), 3);
  EXPECT_EQ(channel.GetValue(), 50.0);
  EXPECT_EQ(told.back(), 50.0);

  client.OnGiven = [](double) { throw std::runtime_error("full"); };
  EXPECT_THROW(channel.SendDataToClients(), std::runtime_error);
  EXPECT_EQ(channel.GetValue(), 50.0);
  client.OnGiven = nullptr;
  client.given.clear();
  channel.SendDataToClients();
  EXPECT_THAT(client.given, ElementsAre(2.0, 4.0, 6.0));
}

TEST(TDataChannel, SendsAllOfAFullHistoryFromItsOwnNotification) {
  TDataChannel channel;
  channel.SetPipeMode(false);
  for (int i = 0; i < TDataList::kLimit; ++i) channel.SetValue(i);
  TRecorder clients[3];
  for (TRecorder& client : clients) channel.GetClientControls()->Add(&client);
  TValueLink link([&](double value) {
    if (value < 0.0) channel.SendDataToClients();
  });
  channel.AddLink(&link, false);
  channel.SetValue(-1.0);
  for (const TRecorder& client : clients) {
    ASSERT_EQ(client.given.size(), TDataList::kLimit + 1U);  // and the value itself
    EXPECT_EQ(client.given[TDataList::kLimit - 1], TDataList::kLimit - 1.0);
  }
  QCoreApplication::processEvents();
  EXPECT_THAT(TakeMessages(), ElementsAre());
}

TEST(TDataChannel, ShiftsItsValuesToTheInitialMean) {
  TDataChannel channel;
  QSignalSpy redraws(channel.GetGraphLink(), &TGraphLink::OnUpdate);
  channel.SetInitialValue(10.0);
  channel.GetShiftToInitial()->Click();
  EXPECT_EQ(channel.GetShiftConstant(), 0.0);
  EXPECT_EQ(redraws.count(), 0);
  for (const double raw : {1.0, 2.0, 3.0}) channel.SetValue(raw);
  redraws.clear();
  channel.GetShiftToInitial()->Click();
  EXPECT_EQ(channel.GetShiftConstant(), 8.0);
  EXPECT_THAT(Values(channel), ElementsAre(9.0, 10.0, 11.0));
  EXPECT_EQ(redraws.count(), 1);
  channel.SetValue(4.0);
  EXPECT_EQ(channel.GetValue(), 12.0);

  TDataChannel scaled;
  scaled.SetScaleFactor(2.0);
  scaled.SetShiftConstant(1.0);
  for (const double raw : {1.0, kNan, 3.0}) scaled.SetValue(raw);
  scaled.CalculateShiftConstant();
  EXPECT_EQ(scaled.GetShiftConstant(), -4.0);
  EXPECT_THAT(Values(scaled), ElementsAre(-2.0, testing::IsNan(), 2.0));
}

TEST(TDataChannel, TakesItsStatisticsFromTheTimeStamps) {
  TDataChannel channel;
  channel.SetPointCount(3);
  for (const double time : {-1.0, 4.0, 1.0, 7.0}) channel.SetTimeAndValue(time, 100.0);
  TStatistics* statistics = channel.GetStatistics();
  EXPECT_EQ(statistics->GetStatData(), "3 12 66");
  EXPECT_EQ(statistics->GetData()->Get(0), (TStatisticsData{1.0, 4.0, 3.0, 7.0, 1.0}));
  channel.ResetChannel();
  EXPECT_EQ(statistics->GetCount(), 0.0);
  EXPECT_EQ(statistics->GetData()->Get(0), TStatisticsData());
}

TEST(TDataChannel, HasTheStatisticsOfItsLastUpdateHoweverLateOneLooks) {
  std::mt19937 random(4711);
  const auto draw = [&](int below) {
    return std::uniform_int_distribution<int>(0, below - 1)(random);
  };
  for (int round = 0; round < 60; ++round) {
    TDataChannel channel;
    channel.SetPointCount(1 + draw(20));
    channel.GetGraphLink()->SetUpdateInterval(1 + draw(30));
    std::vector<double> atUpdate;
    QObject::connect(channel.GetGraphLink(), &TGraphLink::OnUpdate, [&] {
      atUpdate.clear();
      for (int row = 0; row < channel.GetPointCount(); ++row) {
        atUpdate.push_back(channel.GetData()->Row(row)[TFloatList::kTime]);
      }
    });
    for (int step = 0; step < 200; ++step) {
      channel.SetTimeAndValue(1 + draw(1000), 0.0);
      if (draw(50) == 0) channel.ResetChannel();
      if (draw(20) != 0) continue;
      ASSERT_EQ(channel.GetStatistics()->GetCount(), atUpdate.size());
      ASSERT_EQ(channel.GetStatistics()->GetSum(),
                std::accumulate(atUpdate.begin(), atUpdate.end(), 0.0));
      const auto largest = std::ranges::max_element(atUpdate);
      ASSERT_EQ(channel.GetStatistics()->GetMax(), atUpdate.empty() ? 0.0 : *largest);
    }
  }
}

TEST(TDataChannel, MayBeDestroyedFromItsOwnNotifications) {
  const std::function<void(TDataChannel&)> ways[] = {
      [](TDataChannel& channel) { channel.SetValue(1.0); },
      [](TDataChannel& channel) { channel.SendDataToClients(); },
      [](TDataChannel& channel) { TDataChannel().AssignTo(&channel); },
      [](TDataChannel& channel) { channel.ResetChannel(); },
      [](TDataChannel& channel) { channel.CalculateShiftConstant(); },
  };
  int destroyed = 0;
  for (const auto& change : ways) {
    for (const bool bySubscriber : {false, true}) {
      QPointer<TDataChannel> channel = new TDataChannel;
      for (int i = 0; i < 5; ++i) channel->SetValue(i);
      TValueLink link([&](double) { delete channel; });
      if (bySubscriber) channel->AddLink(&link, false);
      QObject::connect(channel->GetGraphLink(), &TGraphLink::OnUpdate, [&] { delete channel; });
      change(*channel);
      destroyed += !channel;
      delete channel;
    }
  }
  EXPECT_EQ(destroyed, 2 + 1 + 2 + 2 + 2);  // sending again is no update
}

TEST(TDataChannel, KeepsSettingsAndSamplesOfAFormInAnyOrder) {
  for (const auto& [pipeMode, count] : {std::pair(true, 250), {false, 300}}) {
    TDataChannel saved;
    saved.SetLimitMin(-5.0);
    saved.SetLimitMax(-1.0);
    saved.SetPointCount(250);
    saved.SetPipeMode(pipeMode);
    for (int i = 0; i < 300; ++i) saved.SetTimeAndValue(i, -i / 50.0);
    std::vector<TPublished> stored;
    ForEachStored(saved, [&](const TPublished& published) { stored.push_back(published); });
    for (const bool backwards : {false, true}) {
      if (backwards) std::ranges::reverse(stored);
      TDataChannel loaded;
      loaded.BeginLoading();
      for (const TPublished& from : stored) {
        const TPublished to = FindPublished(loaded, from.Path, nullptr).value();
        to.Property.write(to.Object, from.Property.read(from.Object));
      }
      loaded.Loaded();
      EXPECT_EQ(loaded.GetLimitMin(), -5.0);
      EXPECT_EQ(loaded.GetLimitMax(), -1.0);
      EXPECT_EQ(loaded.GetPointCount(), count);
      EXPECT_TRUE(loaded.GetData()->SameAs(saved.GetData()));
    }
  }
}

TEST(TDataChannel, CopiesItsSettingsAndDataAndNotItsConnections) {
  TDataChannel source, copy;
  TRecorder client;
  const auto isSetting = [&](const TPublished& published) {
    return published.Object == &source && published.Property.propertyIndex() >=
                                              TServerDataControl::staticMetaObject.propertyCount();
  };
  ForEachStored(source, [&](const TPublished& published) {
    if (isSetting(published)) Change(published);
  });
  source.GetClientControls()->Add(&client);
  source.SetTimeAndValue(5.0, 7.0);
  copy.SetLimitMax(1e9);
  source.AssignTo(&copy);
  ForEachStored(source, [&](const TPublished& published) {
    if (!isSetting(published)) return;
    EXPECT_EQ(published.Property.read(&copy), published.Property.read(&source))
        << published.Path.toStdString();
  });
  EXPECT_TRUE(copy.GetData()->SameAs(source.GetData()));
  EXPECT_EQ(copy.GetStatistics()->GetSum(), 5.0);
  EXPECT_TRUE(copy.GetClientControls()->Empty());
}

}  // namespace
