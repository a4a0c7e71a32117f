#include "components/links/Linkclasses.h"

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "components/graphing/Sliderseries.h"
#include "tests/support/Testing.h"

namespace {

/// Points of the diagonal; counts how often they are drawn.
TProvideGraphData Diagonal(int& pulls) {
  return [&pulls](int& index, TCoordinate& point, TCoordinate&) {
    if (index == 0) ++pulls;
    if (index > 10) return false;
    point = {static_cast<double>(index), static_cast<double>(index)};
    ++index;
    return true;
  };
}

TEST(GraphLink, RedrawsWithEveryIntervalthUpdateAndFiresItsEventFirst) {
  TKorvalGraph graph;
  TGraphLink link;
  int pulls = 0;
  link.AddSeries(std::make_unique<TSeries>())->DataSource = Diagonal(pulls);
  link.SetUpdateInterval(3);
  link.SetUpdateInterval(0);
  EXPECT_EQ(link.GetUpdateInterval(), 3);
  QStringList events;
  QObject::connect(&link, &TGraphLink::OnUpdate, [&] { events << (pulls ? "late" : "event"); });
  const auto expect = [&](const QStringList& expected, auto act) {
    events.clear();
    pulls = 0;
    act();
    if (pulls) events << "drawn";
    EXPECT_EQ(events, expected);
  };
  const auto update = [&] { link.Update(); };
  expect({"event"}, [&] { link.UpdateNow(); });  // in no graph
  link.SetGraph(&graph);
  for (int round = 0; round < 2; ++round) {
    expect({}, update);
    expect({}, update);
    expect({"event", "drawn"}, update);
  }
  expect({"event", "drawn"}, [&] { link.UpdateNow(); });
  expect({"drawn"}, [&] { link.Replay(); });
  // 0 to 10 in steps of one unit.
  EXPECT_EQ(graph.GetHorizontalAx()->WorkingMax(), 10.0);
}

TEST(GraphLink, MovesItsSeriesFromGraphToGraphAndSurvivesThem) {
  auto first = std::make_unique<TKorvalGraph>();
  TKorvalGraph second;
  TSeriesList& ofFirst = first->GetDataPanel()->GetSeriesList();
  first->GetDataPanel()->AddSeries(std::make_unique<TSeries>());
  TGraphLink link;
  QSignalSpy changes(&link, &TGraphLink::OnGraphChanged);
  auto* series = link.AddSeries(std::make_unique<TSeries>());
  EXPECT_FALSE(link.IsAttached());
  for (int i = 0; i < 2; ++i) link.SetGraph(first.get());
  EXPECT_TRUE(link.IsAttached());
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(series->Panel(), first->GetDataPanel());
  EXPECT_EQ(link.AddSeries(std::make_unique<TArraySeries>())->Panel(), first->GetDataPanel());
  EXPECT_EQ(ofFirst.Count(), 3);

  link.SetGraph(&second);
  EXPECT_EQ(ofFirst.Count(), 1);
  EXPECT_EQ(second.GetDataPanel()->GetSeriesList().Count(), 2);
  EXPECT_EQ(link.GetGraph(), &second);
  link.SetGraph(nullptr);
  EXPECT_EQ(second.GetDataPanel()->GetSeriesList().Count(), 0);
  EXPECT_EQ(link.GetSeriesList().Count(), 2);

  link.SetGraph(first.get());
  changes.clear();
  first.reset();
  EXPECT_EQ(link.GetGraph(), nullptr);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_EQ(series->Panel(), nullptr);
  series->GetStyle()->SetLineWeight(2);
  link.UpdateNow();
  link.SetGraph(&second);
  EXPECT_EQ(series->Panel(), second.GetDataPanel());
}

TEST(GraphLink, TakesItsSeriesAlongWhenItGoesFirst) {
  TKorvalGraph graph;
  int pulls = 0;
  {
    TGraphLink link;
    for (int i = 0; i < 2; ++i) {
      link.AddSeries(std::make_unique<TSeries>())->DataSource = Diagonal(pulls);
    }
    link.SetGraph(&graph);
    pulls = 0;  // from here on the sources may be half destroyed
  }
  EXPECT_EQ(graph.GetDataPanel()->GetSeriesList().Count(), 0);
  graph.Replay();
  graph.Picture();
  EXPECT_EQ(pulls, 0);
}

TEST(GraphLink, AFormKeepsTheLookOfTheSeriesAndLeavesTheirSources) {
  TGraphLink link;
  link.AddSeries(std::make_unique<TSeries>())->GetStyle()->SetLineColor(TColor::Green());
  const QString text = link.property("SeriesData").toString();
  int pulls = 0;
  TGraphLink other;
  auto* restored = other.AddSeries(std::make_unique<TSeries>());
  restored->DataSource = Diagonal(pulls);
  other.setProperty("SeriesData", text.chopped(1));
  EXPECT_EQ(restored->GetStyle()->GetLineColor(), TColor::Blue());
  other.setProperty("SeriesData", text);
  EXPECT_EQ(restored->GetStyle()->GetLineColor(), TColor::Green());
  EXPECT_EQ(other.GetSeriesList().Get(0), restored);
  EXPECT_TRUE(restored->DataSource);
}

TEST(SliderLink, ReadsTheValueWhenAttachedAndFollowsIt) {
  TKorvalGraph graph;
  TSliderLink link;
  link.ReadValue = [] { return 4.5; };
  int written = 0;
  link.WriteValue = [&](double) { ++written; };
  EXPECT_EQ(link.GetSliderPos(), 0.0);
  link.SetGraph(&graph);
  EXPECT_EQ(link.GetSliderPos(), 4.5);
  EXPECT_EQ(link.Slider()->GetPosition(), (TCoordinate{4.5, 0.0}));
  link.SetSliderPos(6.0);
  EXPECT_EQ(link.Slider()->GetPositionX(), 6.0);
  link.SetSliderPos(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(link.GetSliderPos(), 6.0);
  link.SetSliderAxis(TSliderLink::saY);
  EXPECT_EQ(link.Slider()->GetPosition(), (TCoordinate{6.0, 4.5}));
  EXPECT_EQ(written, 0) << "moving the slider is no news to the value";
}

}  // namespace
