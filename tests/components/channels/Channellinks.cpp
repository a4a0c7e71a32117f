#include "components/channels/Channellinks.h"

#include "tests/support/Testing.h"

namespace {

constexpr double kSecond = 1.0 / kSecondsPerDay;

void Select(TOneChannelLink& link, TChannelSource* source, const char* set, const char* channel) {
  link.SetChannelSource(source);
  link.GetChannelSet()->SetItem(set);
  link.GetChannel()->SetItem(channel);
}

/// A source of two sets: "A" with the channels "a1" to "a4" and "B" with "b1" to "b4".
struct TTwoSets {
  TTwoSets() {
    for (const char* label : {"A", "B"}) {
      TChannelSet* set = source->GetSets()->Add();
      set->SetLabel(label);
      set->SetRows(1);
      for (int i = 0; i < 4; ++i) {
        set->GetChannels()->GetItem(i)->SetLabel(QString(label).toLower() + QString::number(i + 1));
      }
    }
  }
  TChannelSet* Set(int index) const { return source->GetSets()->GetItem(index); }
  TChannel* Channel(int set, int index) const { return Set(set)->GetChannels()->GetItem(index); }
  void Row(int set, double seconds, double value) const {
    const double row[] = {45000.0 + seconds * kSecond, value, 2 * value, 3 * value, 4 * value};
    Set(set)->SetRow(row, 0, 5);
  }
  std::unique_ptr<TChannelSource> source = std::make_unique<TChannelSource>();
};

/// A link without a timer beside such a source; counts what it tells.
struct TOneChannelLinkTest : testing::Test, TTwoSets {
  TOneChannelLink link{false};
  QSignalSpy sources{&link, &TOneChannelLink::OnSourceChanged};
  QSignalSpy chosenSets{&link, &TOneChannelLink::OnChannelSetChanged};
  QSignalSpy chosen{&link, &TOneChannelLink::OnChannelChanged};
  QSignalSpy data{&link, &TOneChannelLink::OnData};
};

TEST_F(TOneChannelLinkTest, SelectorsOfferWhatThereIs) {
  EXPECT_EQ(link.GetChannelSet()->Text(), "ChannelSource not defined!");
  EXPECT_EQ(link.GetChannel()->Text(), "ChannelSet not defined!");
  link.SetChannelSource(source.get());
  EXPECT_EQ(link.GetChannelSet()->Items(), QStringList({"A", "B"}));
  EXPECT_EQ(link.GetChannel()->Text(), "ChannelSet not defined!");
  link.GetChannelSet()->SetItem("B");
  EXPECT_EQ(link.SelectedChannelSet(), Set(1));
  EXPECT_EQ(link.GetChannel()->Items(), QStringList({"b1", "b2", "b3", "b4"}));
  link.GetChannel()->SetIndex(2);
  EXPECT_EQ(link.SelectedChannel(), Channel(1, 2));
  EXPECT_EQ(chosenSets.count(), 1);
  EXPECT_EQ(chosen.count(), 1);

  link.GetChannelSet()->SetItem("A");  // another set takes the channel away
  EXPECT_EQ(link.SelectedChannel(), nullptr);
  EXPECT_EQ(link.GetChannel()->GetItem(), "");
  EXPECT_EQ(chosen.count(), 2);
  TChannelSource other;
  link.SetChannelSource(&other);
  EXPECT_EQ(link.SelectedChannelSet(), nullptr);
  EXPECT_EQ(link.GetChannelSet()->GetItem(), "");
  EXPECT_EQ(sources.count(), 2);
}

TEST_F(TOneChannelLinkTest, FollowsTheRecordOfTheChosenInterval) {
  link.DoOnData(nullptr);  // nothing chosen
  EXPECT_EQ(link.GetData(), TStatSet());
  Select(link, source.get(), "A", "a2");
  for (int i = 0; i < 8; ++i) Row(0, 20.0 * i, i);
  data.clear();
  TChannelStatistics* stats = link.SelectedChannel()->GetStats();
  for (const auto& [wanted, history] : {std::pair(si1_Second, 0), {si1_Year, 5}, {si1_Minute, 1}}) {
    link.GetOptions()->SetSelInterval(wanted);
    link.DoOnData(nullptr);
    EXPECT_EQ(link.GetData(), stats->Get(history)->Current());
  }
  const TStatSet before = link.GetData();
  EXPECT_GT(before.Time, 0.0);
  stats->SetMinInterval(si1_Hour);
  link.DoOnData(nullptr);
  EXPECT_EQ(link.GetData(), before);
  EXPECT_EQ(data.count(), 4);
  EXPECT_EQ(data.last()[0].value<QObject*>(), source.get());
}

TEST_F(TOneChannelLinkTest, ATimerDeliversOnceItIsEnabled) {
  TOneChannelLink timed(true);
  EXPECT_EQ(timed.GetInterval(), 100);
  QSignalSpy delivered(&timed, &TOneChannelLink::OnData);
  Select(timed, source.get(), "A", "a1");
  Row(0, 1, 1);  // blocks do not deliver beside a timer
  Tick(20);
  EXPECT_EQ(delivered.count(), 0);
  timed.SetEnabled(true);
  Tick(20);
  EXPECT_EQ(delivered.count(), 2);  // every 100 ms
  timed.SetInterval(25);            // three ticks
  Tick(9);
  EXPECT_EQ(delivered.count(), 5);
  timed.SetInterval(0);
  EXPECT_EQ(timed.GetInterval(), 25);

  link.SetInterval(50);
  link.SetEnabled(true);
  EXPECT_EQ(link.GetInterval(), 0);
  EXPECT_FALSE(link.GetEnabled());
}

TEST_F(TOneChannelLinkTest, WithoutATimerEachBlockDelivers) {
  Select(link, source.get(), "A", "a2");
  Row(0, 1, 1);
  Row(0, 2, 2);
  Row(1, 3, 3);  // another set
  EXPECT_EQ(data.count(), 2);
  std::thread([&] {
    for (int i = 0; i < 5; ++i) Row(0, 3 + i, i);
  }).join();
  EXPECT_EQ(data.count(), 2);
  QCoreApplication::processEvents();
  EXPECT_EQ(data.count(), 3);  // all five at once
  EXPECT_NEAR(link.GetData().Time, 45000.0 + 7 * kSecond, 1e-9);
}

TEST(TTwoChannelLink, FollowsTwoChannelsOfOneSetOrTwo) {
  TTwoSets sets;
  TTwoChannelLink link(false);
  QSignalSpy data(&link, &TTwoChannelLink::OnData);
  link.SetChannelSource(sets.source.get());
  link.GetChannelSet1()->SetItem("A");
  link.GetChannel1()->SetItem("a1");
  link.GetChannelSet2()->SetItem("A");
  link.GetChannel2()->SetItem("a3");
  sets.Row(0, 1, 0);
  sets.Row(0, 1.5, 5);
  EXPECT_EQ(data.count(), 2);
  EXPECT_EQ(link.GetData1().Max, 5.0);
  EXPECT_EQ(link.GetData2().Max, 15.0);
  link.GetChannelSet2()->SetItem("B");
  sets.Row(0, 2, 0);
  sets.Row(1, 2, 0);
  EXPECT_EQ(data.count(), 4);
  TTwoChannelLink copy(false);
  copy.Assign(&link);
  EXPECT_EQ(copy.SelectedChannel1(), sets.Channel(0, 0));
  EXPECT_EQ(copy.SelectedChannelSet2(), sets.Set(1));
}

TEST_F(TOneChannelLinkTest, WhatIsChosenMayBeRenamedMovedOrGo) {
  Select(link, source.get(), "B", "b3");
  TChannel* channel = link.SelectedChannel();
  channel->SetLabel("wind");
  Set(1)->SetLabel("mast");
  EXPECT_EQ(link.GetChannel()->GetItem(), "wind");
  EXPECT_EQ(link.GetChannelSet()->GetItem(), "mast");
  Set(1)->DeleteChannel(0);
  source->GetSets()->Delete(0);
  EXPECT_EQ(link.SelectedChannel(), channel);
  EXPECT_EQ(link.GetChannel()->GetIndex(), 1);
  EXPECT_EQ(link.GetChannelSet()->GetIndex(), 0);

  // The form's text is read again: what has the same labels takes the place.
  ASSERT_TRUE(source->GetSets()->ReadProperties(source->GetSets()->WriteProperties()));
  EXPECT_EQ(link.SelectedChannel(), Channel(0, 1));

  chosen.clear();
  Set(0)->DeleteChannel(1);
  EXPECT_EQ(link.SelectedChannel(), nullptr);
  EXPECT_EQ(chosen.count(), 1);
  link.GetChannel()->SetItem("b4");
  Set(0)->SetCount(1);
  EXPECT_EQ(link.SelectedChannel(), nullptr);
  EXPECT_EQ(chosen.count(), 3);
  link.DoOnData(nullptr);
  source.reset();
  EXPECT_EQ(link.SelectedChannelSet(), nullptr);
  EXPECT_EQ(link.GetChannelSet()->Text(), "ChannelSource not defined!");
  link.DoOnData(nullptr);
}

TEST_F(TOneChannelLinkTest, ResolvesItsSelectionsWhenTheFormIsLoaded) {
  QWidget form;
  TIconControl display(&form);
  TOneChannelLink loaded(false, &display);
  loaded.GetChannelSet()->SetItem("A");
  loaded.GetChannel()->SetItem("a4");
  loaded.SetChannelSourceName("Source");
  link.Assign(&loaded);  // of what is not resolved yet
  EXPECT_EQ(link.GetChannelSourceName(), "Source");
  EXPECT_TRUE(link.SameAs(&loaded));
  source->setParent(&form);
  source->setObjectName("Source");
  loaded.Loaded();
  EXPECT_EQ(loaded.GetChannelSource(), source.get());
  EXPECT_EQ(loaded.SelectedChannel(), Channel(0, 3));
  source.reset();
}

TEST(TOneChannelLink, MayBeDestroyedByAnyOfItsSignals) {
  using TNews = void (TOneChannelLink::*)(QObject*);
  const TNews news[] = {&TOneChannelLink::OnSourceChanged, &TOneChannelLink::OnChannelSetChanged,
                        &TOneChannelLink::OnChannelChanged, &TOneChannelLink::OnData};
  const std::function<void(TTwoSets&, TOneChannelLink&)> changes[] = {
      [](TTwoSets&, TOneChannelLink& link) { link.SetChannelSource(nullptr); },
      [](TTwoSets&, TOneChannelLink& link) { link.GetChannelSet()->SetItem("B"); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.source->GetSets()->Delete(0); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.source.reset(); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.Set(0)->DeleteChannel(0); },
      [](TTwoSets&, TOneChannelLink& link) {
        link.Assign(std::make_unique<TOneChannelLink>(false).get());
      },
      [](TTwoSets& sets, TOneChannelLink&) { sets.Row(0, 1, 1); }};
  int destroyed = 0;
  for (const TNews what : news) {
    for (const auto& change : changes) {
      TTwoSets sets;
      auto link = std::make_unique<TOneChannelLink>(false);
      Select(*link, sets.source.get(), "A", "a1");
      QObject::connect(link.get(), what, [&] { link.reset(); });
      change(sets, *link);
      destroyed += !link;
    }
  }
  EXPECT_EQ(destroyed, 3 + 5 + 6 + 1);
  auto ticked = std::make_unique<TTwoChannelLink>(true);
  ticked->SetEnabled(true);
  QObject::connect(ticked.get(), &TTwoChannelLink::OnData, [&] { ticked.reset(); });
  for (int i = 0; ticked && i < 20; ++i) Tick();
  EXPECT_EQ(ticked, nullptr);
}

TEST_F(TOneChannelLinkTest, IsAtRestWhileAnotherIsNotifiedThatTheSourceGoes) {
  TOneChannelLink other(false);
  for (TOneChannelLink* each : {&link, &other}) Select(*each, source.get(), "A", "a1");
  QObject::connect(&link, &TOneChannelLink::OnSourceChanged, [&] {
    other.GetChannelSet()->SetItem("B");
    EXPECT_EQ(other.SelectedChannelSet(), nullptr);
  });
  source.reset();
  EXPECT_EQ(other.GetChannelSource(), nullptr);
}

TEST_F(TOneChannelLinkTest, MayTakeAnotherSourceWhenItIsNotifiedOfOne) {
  TTwoSets second;
  Select(link, source.get(), "A", "a1");
  TChannelSource third;
  QObject::connect(&link, &TOneChannelLink::OnChannelChanged, [&] {
    if (link.GetChannelSource() == &third) Select(link, second.source.get(), "B", "b2");
  });
  link.SetChannelSource(&third);
  EXPECT_EQ(link.GetChannelSource(), second.source.get());
  EXPECT_EQ(link.SelectedChannel(), second.Channel(1, 1));
}

}  // namespace
