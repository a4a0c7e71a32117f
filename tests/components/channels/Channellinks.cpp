#include "components/channels/Channellinks.h"

#include "tests/support/Testing.h"

namespace {

constexpr double kSecond = 1.0 / kSecondsPerDay;

/// A source of two sets: "A" with the channels "a1", "a2", ... and "B" with "b1", "b2", ...
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
  void Row(int set, double seconds, double value) const {
    const double row[] = {45000.0 + seconds * kSecond, value, 2 * value, 3 * value, 4 * value};
    Set(set)->SetRow(row, 0, 5);
  }
  std::unique_ptr<TChannelSource> source = std::make_unique<TChannelSource>();
};

void Select(TOneChannelLink& link, TChannelSource* source, const char* set, const char* channel) {
  link.SetChannelSource(source);
  link.GetChannelSet()->SetItem(set);
  link.GetChannel()->SetItem(channel);
}

TEST(TOneChannelLink, SelectorsOfferWhatThereIs) {
  TTwoSets sets;
  TOneChannelLink link(false);
  EXPECT_EQ(link.GetChannelSet()->Text(), "ChannelSource not defined!");
  EXPECT_EQ(link.GetChannel()->Text(), "ChannelSet not defined!");
  QSignalSpy sources(&link, &TOneChannelLink::OnSourceChanged);
  QSignalSpy chosenSets(&link, &TOneChannelLink::OnChannelSetChanged);
  QSignalSpy chosen(&link, &TOneChannelLink::OnChannelChanged);
  link.SetChannelSource(sets.source.get());
  EXPECT_EQ(link.GetChannelSet()->Items(), QStringList({"A", "B"}));
  EXPECT_EQ(link.GetChannel()->Text(), "ChannelSet not defined!");
  link.GetChannelSet()->SetItem("B");
  EXPECT_EQ(link.SelectedChannelSet(), sets.Set(1));
  EXPECT_EQ(link.GetChannel()->Items(), QStringList({"b1", "b2", "b3", "b4"}));
  link.GetChannel()->SetIndex(2);
  EXPECT_EQ(link.SelectedChannel(), sets.Set(1)->GetChannels()->GetItem(2));
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

TEST(TOneChannelLink, FollowsTheRecordOfTheChosenInterval) {
  TTwoSets sets;
  TOneChannelLink link(true);
  QSignalSpy data(&link, &TOneChannelLink::OnData);
  link.DoOnData(nullptr);  // nothing chosen
  EXPECT_EQ(data.count(), 1);
  EXPECT_EQ(link.GetData(), TStatSet());
  Select(link, sets.source.get(), "A", "a2");
  for (int i = 0; i < 8; ++i) sets.Row(0, 20.0 * i, i);
  TChannelStatistics* stats = link.SelectedChannel()->GetStats();
  for (const auto& [wanted, history] : {std::pair(si1_Second, 0), {si1_Minute, 1}, {si1_Year, 5}}) {
    link.GetOptions()->SetSelInterval(wanted);
    link.DoOnData(nullptr);
    EXPECT_EQ(link.GetData(), stats->Get(history)->Current());
  }
  link.GetOptions()->SetSelInterval(si1_Minute);
  link.DoOnData(nullptr);
  const TStatSet before = link.GetData();
  EXPECT_GT(before.Time, 0.0);
  stats->SetMinInterval(si1_Hour);
  link.DoOnData(nullptr);
  EXPECT_EQ(link.GetData(), before);
  EXPECT_EQ(data.count(), 6);
  EXPECT_EQ(data.last()[0].value<QObject*>(), sets.source.get());
}

TEST(TCustomChannelLink, ATimerDeliversOnceItIsEnabled) {
  TTwoSets sets;
  TOneChannelLink link(true);
  EXPECT_EQ(link.GetInterval(), 100);
  QSignalSpy data(&link, &TOneChannelLink::OnData);
  Select(link, sets.source.get(), "A", "a1");
  sets.Row(0, 1, 1);  // blocks do not deliver beside a timer
  Tick(20);
  EXPECT_EQ(data.count(), 0);
  link.SetEnabled(true);
  Tick(20);
  EXPECT_EQ(data.count(), 2);  // every 100 ms
  link.SetInterval(25);        // three ticks
  Tick(9);
  EXPECT_EQ(data.count(), 5);
  link.SetInterval(0);
  EXPECT_EQ(link.GetInterval(), 25);

  TOneChannelLink without(false);
  without.SetInterval(50);
  without.SetEnabled(true);
  EXPECT_EQ(without.GetInterval(), 0);
  EXPECT_FALSE(without.GetEnabled());
}

TEST(TCustomChannelLink, WithoutATimerEachBlockDelivers) {
  TTwoSets sets;
  TOneChannelLink link(false);
  QSignalSpy data(&link, &TOneChannelLink::OnData);
  Select(link, sets.source.get(), "A", "a2");
  sets.Row(0, 1, 1);
  sets.Row(0, 2, 2);
  sets.Row(1, 3, 3);  // another set
  EXPECT_EQ(data.count(), 2);
  std::thread([&] {
    for (int i = 0; i < 5; ++i) sets.Row(0, 3 + i, i);
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
  EXPECT_TRUE(copy.SameAs(&link));
  EXPECT_EQ(copy.SelectedChannel1(), sets.Set(0)->GetChannels()->GetItem(0));
  EXPECT_EQ(copy.SelectedChannelSet2(), sets.Set(1));
}

TEST(TOneChannelLink, WhatIsChosenMayBeRenamedMovedOrGo) {
  TTwoSets sets;
  auto link = std::make_unique<TOneChannelLink>(false);
  Select(*link, sets.source.get(), "B", "b3");
  TChannel* channel = link->SelectedChannel();
  channel->SetLabel("wind");
  sets.Set(1)->SetLabel("mast");
  EXPECT_EQ(link->GetChannel()->GetItem(), "wind");
  EXPECT_EQ(link->GetChannelSet()->GetItem(), "mast");
  sets.Set(1)->DeleteChannel(0);
  sets.source->GetSets()->Delete(0);
  EXPECT_EQ(link->SelectedChannel(), channel);
  EXPECT_EQ(link->GetChannel()->GetIndex(), 1);
  EXPECT_EQ(link->GetChannelSet()->GetIndex(), 0);

  // The form's text is read again: what has the same labels takes the place.
  ASSERT_TRUE(sets.source->GetSets()->ReadProperties(sets.source->GetSets()->WriteProperties()));
  EXPECT_EQ(link->SelectedChannel(), sets.Set(0)->GetChannels()->GetItem(1));

  QSignalSpy gone(link.get(), &TOneChannelLink::OnChannelChanged);
  sets.Set(0)->DeleteChannel(1);
  EXPECT_EQ(link->SelectedChannel(), nullptr);
  EXPECT_EQ(gone.count(), 1);
  link->GetChannel()->SetItem("b4");
  sets.Set(0)->SetCount(1);
  EXPECT_EQ(link->SelectedChannel(), nullptr);
  EXPECT_EQ(gone.count(), 3);
  link->DoOnData(nullptr);
  sets.source.reset();
  EXPECT_EQ(link->SelectedChannelSet(), nullptr);
  EXPECT_EQ(link->GetChannelSet()->Text(), "ChannelSource not defined!");
  link->DoOnData(nullptr);
}

TEST(TOneChannelLink, ResolvesItsSelectionsWhenTheFormIsLoaded) {
  QWidget form;
  TIconControl display(&form);
  TOneChannelLink link(false, &display);
  link.GetChannelSet()->SetItem("A");
  link.GetChannel()->SetItem("a4");
  link.SetChannelSourceName("Source");
  TOneChannelLink copy(false);
  copy.Assign(&link);  // of what is not resolved yet
  EXPECT_EQ(copy.GetChannelSourceName(), "Source");
  EXPECT_TRUE(copy.SameAs(&link));
  auto* source = new TChannelSource(&form);
  source->setObjectName("Source");
  source->GetSets()->SetItems(TTwoSets().source->GetSets()->WriteProperties());
  link.Loaded();
  EXPECT_EQ(link.GetChannelSource(), source);
  EXPECT_EQ(link.SelectedChannel(), source->GetSets()->GetItem(0)->GetChannels()->GetItem(3));
}

TEST(TOneChannelLink, MayBeDestroyedByAnyOfItsSignals) {
  using TNews = void (TOneChannelLink::*)(QObject*);
  const TNews news[] = {&TOneChannelLink::OnSourceChanged, &TOneChannelLink::OnChannelSetChanged,
                        &TOneChannelLink::OnChannelChanged};
  const std::function<void(TTwoSets&, TOneChannelLink&)> changes[] = {
      [](TTwoSets&, TOneChannelLink& link) { link.SetChannelSource(nullptr); },
      [](TTwoSets&, TOneChannelLink& link) { link.GetChannelSet()->SetItem("B"); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.source->GetSets()->Delete(0); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.source.reset(); },
      [](TTwoSets& sets, TOneChannelLink&) { sets.Set(0)->DeleteChannel(0); },
      [](TTwoSets&, TOneChannelLink& link) {
        link.Assign(std::make_unique<TOneChannelLink>(false).get());
      }};
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
  EXPECT_EQ(destroyed, 3 + 5 + 6);
}

TEST(TOneChannelLink, IsAtRestWhileAnotherIsNotifiedThatTheSourceGoes) {
  TTwoSets sets;
  TOneChannelLink told(false);
  TOneChannelLink other(false);
  for (TOneChannelLink* link : {&told, &other}) Select(*link, sets.source.get(), "A", "a1");
  QObject::connect(&told, &TOneChannelLink::OnSourceChanged, [&] {
    other.GetChannelSet()->SetItem("B");
    EXPECT_EQ(other.SelectedChannelSet(), nullptr);
  });
  sets.source.reset();
  EXPECT_EQ(other.GetChannelSource(), nullptr);
}

TEST(TOneChannelLink, MayTakeAnotherSourceWhenItIsNotifiedOfOne) {
  TTwoSets first;
  TTwoSets second;
  TOneChannelLink link(false);
  Select(link, first.source.get(), "A", "a1");
  TChannelSource third;
  QObject::connect(&link, &TOneChannelLink::OnChannelChanged, [&] {
    if (link.GetChannelSource() == &third) Select(link, second.source.get(), "B", "b2");
  });
  link.SetChannelSource(&third);
  EXPECT_EQ(link.GetChannelSource(), second.source.get());
  EXPECT_EQ(link.SelectedChannel(), second.Set(1)->GetChannels()->GetItem(1));
}

TEST(TOneChannelLink, MayBeDestroyedByItsOwnData) {
  TTwoSets sets;
  auto link = std::make_unique<TOneChannelLink>(false);
  Select(*link, sets.source.get(), "A", "a1");
  QObject::connect(link.get(), &TOneChannelLink::OnData, [&] { link.reset(); });
  sets.Row(0, 1, 1);
  EXPECT_EQ(link, nullptr);
  sets.Row(0, 2, 1);
  auto ticked = std::make_unique<TTwoChannelLink>(true);
  ticked->SetEnabled(true);
  QObject::connect(ticked.get(), &TTwoChannelLink::OnData, [&] { ticked.reset(); });
  for (int i = 0; ticked && i < 20; ++i) Tick();
  EXPECT_EQ(ticked, nullptr);
}

}  // namespace
