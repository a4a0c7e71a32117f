#include "components/controls/Linkedcontrols.h"

#include "components/channels/Channelset.h"
#include "components/graphing/Graph.h"
#include "model/Datetime.h"
#include "tests/support/Testing.h"

namespace {

constexpr double kStart = 45'000.25;
constexpr double kSecond = 1.0 / kSecondsPerDay;

/// 100 ms of the timer service: one delivery of a link.
void Deliver() { Tick(10); }

/// A mast whose blocks are single rows: wind speed, direction without a unit, temperature.
struct Linked : testing::Test {
  Linked() {
    set->SetLabel("Mast");
    set->SetRows(1);
    set->SetCount(3);
    const char* labels[][2] = {{"Speed", "m/s"}, {"Direction", ""}, {"Temperature", "C"}};
    for (int i = 0; i < 3; ++i) {
      Channel(i)->SetLabel(labels[i][0]);
      Channel(i)->SetUnits(labels[i][1]);
    }
    Channel(0)->GetNumFormat()->SetFormat(TNumberFormat::ffFixed);
    Channel(0)->GetNumFormat()->SetDigits(1);
    Row(-1.0, 0.0, 0.0);  // where the first block begins
  }
  TChannel* Channel(int index) const { return set->GetChannels()->GetItem(index); }
  void Row(double seconds, double speed, double direction, double temperature = 0.0) const {
    const double row[] = {kStart + seconds * kSecond, speed, direction, temperature};
    set->SetRow(row, 0, 4);
  }

  std::unique_ptr<TChannelSource> source = std::make_unique<TChannelSource>();
  TChannelSet* set = source->GetSets()->Add();
};

// Label

struct LinkedLabel : Linked {
  void Choose(const char* channel) {
    link.SetChannelSource(source.get());
    link.GetChannelSet()->SetItem("Mast");
    link.GetChannel()->SetItem(channel);
  }

  /// What it shows when it has been delivered to.
  QString Shown() {
    Deliver();
    return label.text();
  }

  TLinkedLabel label;
  TOneChannelLink& link = *label.GetChannelLink();
};

TEST_F(LinkedLabel, IsComposedInItsOrderWithinBracketsWhileNothingIsLinked) {
  enum { kLabel = 1, kValue = 2, kUnits = 4, kDescription = 8 };
  const std::tuple<const char*, const char*, int, const char*> cases[] = {
      {"Speed", "m/s", kLabel | kValue | kUnits, "<Speed : 12.5 m/s>"},
      {"Speed", "m/s", kValue | kUnits, "<12.5 m/s>"},
      {"", "m/s", kLabel | kValue | kUnits, "<12.5 m/s>"},
      {"Speed", "", kLabel | kValue | kUnits, "<Speed : 12.5>"},
      {"Speed", "m/s", kLabel | kValue, "<Speed : 12.5>"},
      {"Speed", "m/s", kLabel | kUnits, "<Speed m/s>"},
      {"Speed", "m/s", kLabel, "<Speed>"},
      {"Speed", "m/s", 0, "<>"},
      {"Speed", "m/s", kDescription, "< (Last minute: Mean)>"},
      {"Speed", "m/s", kLabel | kValue | kUnits | kDescription,
       "<Speed : 12.5 m/s (Last minute: Mean)>"},
  };
  EXPECT_EQ(label.text(), "<0>");
  label.SetValue(12.5);
  for (const auto& [name, units, shown, text] : cases) {
    label.SetLabel(name);
    label.SetUnits(units);
    label.SetShowLabel(shown & kLabel);
    label.SetShowValue(shown & kValue);
    label.SetShowUnits(shown & kUnits);
    label.SetShowDescription(shown & kDescription);
    EXPECT_EQ(label.text(), text);
  }
  TNumberFormat fixed;
  fixed.SetFormat(TNumberFormat::ffFixed);
  label.SetFormat(&fixed);
  EXPECT_EQ(label.text(), "<Speed : 12.50 m/s (Last minute: Mean)>");
  label.SetValue(kNan);
  EXPECT_EQ(label.text(), "<Speed : NAN m/s (Last minute: Mean)>");
  label.GetFormat()->SetIsTimeFormat(true);
  EXPECT_EQ(label.text(), "<Speed : Error m/s (Last minute: Mean)>");
}

TEST_F(LinkedLabel, TakesNameUnitFormatAndEachNewValueOfItsChannel) {
  label.SetLabel("nothing yet");
  EXPECT_FALSE(link.GetEnabled());
  Choose("Speed");
  EXPECT_TRUE(link.GetEnabled());
  EXPECT_EQ(Shown(), "<Speed : 0.0 m/s>");  // it has measured nothing
  Row(0.0, 4.0, 0.0);
  EXPECT_EQ(Shown(), "Speed : 4.0 m/s");
  Row(0.1, 8.0, 0.0);
  EXPECT_EQ(Shown(), "Speed : 6.0 m/s");  // the mean of what there is of this second
  label.SetShowDescription(true);
  link.GetOptions()->SetValueType(svMax);
  EXPECT_EQ(label.text(), "Speed : 8.0 m/s (Last minute: Max)");
  EXPECT_EQ(Shown(), "Speed : 8.0 m/s (Last minute: Max)");  // nothing new: as valid as it was
  label.SetShowDescription(false);
  link.GetOptions()->SetValueType(svTime);
  label.GetFormat()->SetTimeFormatStr("yyyy-mm-dd hh:nn:ss");
  EXPECT_EQ(Shown(), "Speed : 2023-03-15 06:00:00");
  link.GetOptions()->SetValueType(svMax);
  Deliver();

  Channel(0)->SetLabel("Gusts");
  Channel(0)->SetUnits("kn");
  EXPECT_EQ(label.text(), "Gusts : 8.0 kn");
  link.GetChannel()->SetItem("nobody");
  EXPECT_EQ(label.text(), "<Gusts : 8.0 kn>");
  EXPECT_FALSE(link.GetEnabled());
  Channel(0)->SetLabel("Speed");  // is none of the label's business any more
  link.DoOnData(nullptr);
  EXPECT_EQ(label.text(), "<Gusts : 8.0 kn>");
}

TEST_F(LinkedLabel, DoesNotPassTheValueOfOneChannelOffAsThatOfAnother) {
  Channel(2)->GetStats()->SetMinInterval(si1_Hour);
  Row(0.0, 4.0, 90.0, 20.0);
  Choose("Speed");
  Deliver();
  EXPECT_TRUE(label.IsValid());
  Choose("Temperature");  // keeps no seconds: there is nothing to show
  for (int ticks = 0; ticks < 2; ++ticks) {
    EXPECT_EQ(label.text(), "<Temperature : 0 C>");
    Deliver();
  }
  link.GetOptions()->SetSelInterval(si1_Hour);
  EXPECT_EQ(Shown(), "Temperature : 20 C");
  link.GetOptions()->SetSelInterval(si1_Second);
  EXPECT_EQ(Shown(), "<Temperature : 0 C>");
}

TEST_F(LinkedLabel, OutlivesChannelSetAndSource) {
  Choose("Temperature");
  Row(0.0, 1.0, 2.0, 3.0);
  Deliver();
  set->DeleteChannel(2);
  EXPECT_EQ(label.text(), "<Temperature : 3 C>");
  Choose("Direction");
  link.GetOptions()->SetValueType(svMax);
  Row(0.1, 1.0, 7.0);
  EXPECT_EQ(Shown(), "Direction : 7");
  source.reset();
  EXPECT_EQ(label.text(), "<Direction : 7>");
  Deliver();
  link.DoOnData(nullptr);
  EXPECT_EQ(label.text(), "<Direction : 7>");
}

TEST_F(LinkedLabel, ADoubleClickChoosesTheChannel) {
  QSignalSpy clicks(&label, &TLinkedLabel::OnClick);
  label.resize(200, 30);
  QTest::mouseClick(&label, Qt::LeftButton, {}, {5, 5});
  QTest::mouseClick(&label, Qt::RightButton, {}, {5, 5});
  EXPECT_EQ(clicks.count(), 1);
  QTest::mouseDClick(&label, Qt::LeftButton, {}, {5, 5});
  auto* menu = label.findChild<QMenu*>();
  ASSERT_TRUE(menu);
  EXPECT_FALSE(menu->actions().first()->isEnabled());  // there is no source
  menu->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

  Choose("Speed");
  Channel(2)->SetLabel("Air & sea");
  QTest::mouseDClick(&label, Qt::LeftButton, {}, {5, 5});
  menu = label.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
  ASSERT_TRUE(menu);
  ASSERT_EQ(menu->actions().size(), 1);
  const QList<QAction*> channels = menu->actions().first()->menu()->actions();
  ASSERT_EQ(channels.size(), 3);
  EXPECT_TRUE(channels[0]->isChecked());
  EXPECT_EQ(channels[2]->text(), "Air && sea");
  channels[2]->trigger();
  EXPECT_EQ(link.SelectedChannel(), Channel(2));
  // It may go while its menu is open.
  auto* doomed = new TLinkedLabel;
  QTest::mouseDClick(doomed, Qt::LeftButton);
  delete doomed;
  QCoreApplication::processEvents();
}

TEST_F(LinkedLabel, TellsATextThatIsCutOff) {
  label.SetLabel("Wind speed at the top of the mast");
  label.resize(60, 20);
  const auto tip = [this] {
    QHelpEvent event(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(&label, &event);
    return event.isAccepted() ? QToolTip::text() : QString();
  };
  EXPECT_EQ(tip(), "<p>&lt;Wind speed at the top of the mast : 0&gt;</p>");
  const auto ink = [this] {
    return InkBox(label.grab().toImage(), label.palette().window().color()).right();
  };
  EXPECT_LT(ink(), 60 - 1);  // dots, and no half letter at the edge
  EXPECT_GT(ink(), 40);
  label.resize(label.sizeHint());
  EXPECT_EQ(tip(), "");
}

// Graph

struct LinkedGraph : Linked {
  /// The last value of each row: they ascend.
  LinkedGraph() {
    plot.GetGraphLink()->SetGraph(&graph);
    for (auto* options : {link.GetOptions1(), link.GetOptions2()}) options->SetValueType(svMax);
  }
  void Choose(const char* x, const char* y) {
    link.SetChannelSource(source.get());
    link.GetChannelSet1()->SetItem("Mast");
    link.GetChannelSet2()->SetItem("Mast");
    link.GetChannel1()->SetItem(x);
    link.GetChannel2()->SetItem(y);
  }
  QString TitleX() const { return graph.GetHorizontalAx()->GetTitle()->GetCaption(); }
  QString TitleY() const { return graph.GetVerticalAx()->GetTitle()->GetCaption(); }

  TKorvalGraph graph;
  TLinkedGraph plot;
  TTwoChannelLink& link = *plot.GetChannelLink();
  const TCoordinateList& data = *plot.GetData();
};

TEST_F(LinkedGraph, AddsAPointWithEachDeliveryOnceBothChannelsAreSet) {
  Choose("Speed", "Speed");
  link.GetOptions1()->SetValueType(svTime);
  Deliver();
  EXPECT_EQ(data.Count(), 0);  // nothing is measured
  link.GetOptions1()->SetValueType(svMax);
  link.GetChannel2()->SetItem("nobody");
  Row(0.0, 1.0, 10.0);
  link.DoOnData(nullptr);
  EXPECT_EQ(data.Count(), 0);
  EXPECT_FALSE(link.GetEnabled());
  link.GetChannel2()->SetItem("Direction");
  EXPECT_TRUE(link.GetEnabled());
  for (int i = 0; i < 3; ++i) {
    Row(0.1 * i + 0.1, 2.0 + i, 20.0 + i);
    Deliver();
    Deliver();  // nothing new
  }
  ASSERT_EQ(data.Count(), 3);
  EXPECT_EQ(data.Get(0), (TCoordinate{2.0, 20.0}));
  EXPECT_EQ(data.Get(2), (TCoordinate{4.0, 22.0}));
  // The graph shows them.
  double low = 0.0, high = 0.0;
  graph.UpdateRangeX(low, high);
  EXPECT_EQ(low, 2.0);
  EXPECT_EQ(high, 4.0);

  link.GetChannel1()->SetItem("nobody");
  EXPECT_FALSE(link.GetEnabled());
  Row(0.5, 9.0, 90.0);
  link.DoOnData(nullptr);
  EXPECT_EQ(data.Count(), 3);
}

TEST_F(LinkedGraph, BeginsAnewWithAnotherChannelOrValue) {
  Choose("Speed", "Direction");
  // Changes, and how many points they leave.
  const std::pair<std::function<void()>, int> cases[] = {
      {[this] { link.GetChannel2()->SetItem("Temperature"); }, 0},
      {[this] { link.GetChannel1()->SetItem("Direction"); }, 0},
      {[this] { link.GetOptions1()->SetValueType(svMin); }, 0},
      {[this] { link.GetOptions2()->SetSelInterval(si1_Minute); }, 0},
      {[this] { link.GetChannel2()->SetItem("nobody"); }, 1},
      {[this] { link.GetChannel2()->SetItem("Temperature"); }, 1},  // the one before
      {[this] { Channel(2)->SetLabel("Warmth"); }, 1},
  };
  double at = 0.0;
  for (const auto& [change, left] : cases) {
    at += 61.0;
    if (data.Count() == 0) Row(at, 1.0 + at, 2.0 + at, 3.0 + at);
    Deliver();
    ASSERT_EQ(data.Count(), 1);
    change();
    EXPECT_EQ(data.Count(), left);
  }
  // A channel without such a history has no values, and not those of the former one.
  Channel(1)->GetStats()->SetMinInterval(si1_Hour);
  for (const char* channel : {"Speed", "Direction"}) link.GetChannel1()->SetItem(channel);
  Row(at + 0.05, 4.0, 5.0, 6.0);
  Deliver();
  EXPECT_EQ(data.Count(), 0);
}

TEST_F(LinkedGraph, NamesTheAxesAfterTheChannelsAndTheirScalesAfterTheSelectors) {
  graph.GetHorizontalAx()->GetTitle()->SetCaption("my x");
  graph.GetVerticalAx()->GetTitle()->SetCaption("my y");
  graph.GetVerticalAx()->SetScale(TAxis::asTime);
  Choose("Speed", "nobody");
  EXPECT_EQ(TitleX(), "Speed [m/s]");
  EXPECT_EQ(TitleY(), "my y");  // no channel, no change
  EXPECT_EQ(graph.GetVerticalAx()->GetScale(), TAxis::asTime);
  link.GetChannel2()->SetItem("Direction");
  EXPECT_EQ(TitleY(), "Direction");
  EXPECT_EQ(graph.GetVerticalAx()->GetScale(), TAxis::asLinear);

  EXPECT_EQ(graph.GetHorizontalAx()->GetScale(), TAxis::asLinear);
  link.GetOptions1()->SetValueType(svTime);
  EXPECT_EQ(graph.GetHorizontalAx()->GetScale(), TAxis::asTime);
  EXPECT_EQ(graph.GetVerticalAx()->GetScale(), TAxis::asLinear);
  link.GetOptions1()->SetValueType(svMean);
  EXPECT_EQ(graph.GetHorizontalAx()->GetScale(), TAxis::asLinear);

  Channel(1)->SetUnits("deg");
  EXPECT_EQ(TitleY(), "Direction [deg]");
  link.GetChannel2()->SetItem("Temperature");
  Channel(1)->SetLabel("Course");
  EXPECT_EQ(TitleY(), "Temperature [C]");
  // Another graph is set up when it is attached.
  TKorvalGraph other;
  plot.GetGraphLink()->SetGraph(&other);
  EXPECT_EQ(other.GetHorizontalAx()->GetTitle()->GetCaption(), "Speed [m/s]");
  plot.GetGraphLink()->SetGraph(nullptr);
}

TEST_F(LinkedGraph, KeepsTheNewestPointsAndDrawsThemWhileUpdating) {
  Choose("Speed", "Direction");
  for (const int most : {2, -1, 65'537}) plot.SetMaxPoints(most);
  EXPECT_EQ(plot.GetMaxPoints(), 2);
  QSignalSpy drawn(plot.GetGraphLink(), &TGraphLink::OnUpdate);
  for (int i = 1; i <= 3; ++i) {
    plot.SetUpdating(i != 2);
    Row(0.1 * i, i, 10.0 * i);
    Deliver();
  }
  EXPECT_EQ(drawn.count(), 2);
  EXPECT_EQ(data.Count(), 2);
  std::vector<TCoordinate> points;
  TCoordinate point, extent;
  for (int index = 0; plot.ProvideGraphData(index, point, extent);) points.push_back(point);
  EXPECT_THAT(points, testing::ElementsAre(TCoordinate{2.0, 20.0}, TCoordinate{3.0, 30.0}));
  plot.SetMaxPoints(1);
  EXPECT_EQ(data.Get(0), (TCoordinate{3.0, 30.0}));
  plot.SetMaxPoints(0);
  EXPECT_EQ(plot.GetMaxPoints(), 0);
}

TEST_F(LinkedGraph, OutlivesGraphChannelAndSource) {
  Choose("Speed", "Direction");
  {
    TKorvalGraph doomed;
    plot.GetGraphLink()->SetGraph(&doomed);
    Row(0.0, 1.0, kNan);
    Deliver();
    doomed.grab();
  }
  Row(0.1, 2.0, 2.0);
  Deliver();
  set->DeleteChannel(1);
  EXPECT_FALSE(link.GetEnabled());
  Deliver();
  source.reset();
  Deliver();
  EXPECT_EQ(plot.GetAxisCaptionX(), "");
}

}  // namespace
