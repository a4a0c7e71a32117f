#include "components/controls/Historygraph.h"

#include <limits>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"

THistoryGraph::THistoryGraph(QWidget* parent) : TIconControl(parent) {
  SetIconImage(QStringLiteral("THistoryGraph"));
  auto* history = graphLink_.AddSeries(std::make_unique<TSeries>());
  history->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  history->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    const TChannelStatistics* statistics = Statistics();
    return statistics && statistics->ProvideGraphData(*link_.GetOptions(), index, point, extent);
  };
  history->BlockSource = [this](int index, std::span<TCoordinate> points) {
    const TChannelStatistics* statistics = Statistics();
    return statistics ? statistics->ProvideGraphBlock(*link_.GetOptions(), index, points) : 0;
  };
  auto* limits = graphLink_.AddSeries(std::make_unique<TSeries>());
  limits->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  limits->GetStyle()->SetLineColor(TColor::FromRgb(200, 60, 50));
  limits->GetStyle()->SetLineStyle(TSeriesStyle::psDash);
  limits->DataSource = [this](int& index, TCoordinate& point, TCoordinate&) {
    if (index < 0 || index >= static_cast<int>(limitLines_.size())) return false;
    point = limitLines_[static_cast<std::size_t>(index++)];
    return true;
  };
  connect(&graphLink_, &TCustomGraphLink::OnGraphChanged, this, &THistoryGraph::GraphChanged);
  connect(&link_, &TCustomChannelLink::OnData, this, &THistoryGraph::LookForRecord);
  connect(&link_, &TOneChannelLink::OnChannelChanged, this, &THistoryGraph::GraphChanged);
  connect(link_.GetOptions(), &TPersistent::OnChange, this, &THistoryGraph::GraphChanged);
}

void THistoryGraph::SetShowLimits(bool show) {
  if (show == showLimits_) return;
  showLimits_ = show;
  GraphChanged();
}

const TChannelStatistics* THistoryGraph::Statistics() {
  const TChannel* channel = link_.SelectedChannel();
  return channel ? channel->GetStats() : nullptr;
}

void THistoryGraph::GraphChanged() {
  if (TKorvalGraph* graph = graphLink_.GetGraph()) SetUpAxes(*graph);
  link_.SetEnabled(Statistics());
  FindLimitLines();
  graphLink_.Replay();
}

/// The user's own scale for values stays.
void THistoryGraph::SetUpAxes(TKorvalGraph& graph) {
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  TAxis& vertical = *graph.GetVerticalAx();
  const bool isTime = link_.GetOptions()->GetValueType() == svTime;
  if (isTime) vertical.SetScale(TAxis::asTime);
  if (!isTime && vertical.GetScale() == TAxis::asTime) vertical.SetScale(TAxis::asLinear);
}

/// The histories of most channels change far less often than one may want to look.
void THistoryGraph::LookForRecord() {
  TCoordinate newest;  // 0 of a history that has been deleted
  if (const TChannelStatistics* statistics = Statistics()) {
    statistics->ProvideGraphBlock(*link_.GetOptions(), 0, {&newest, 1});
  }
  if (newest.X == newest_) return;
  newest_ = newest.X;
  FindLimitLines();
  graphLink_.Update();
}

/// A line along the whole history for each limit, with a gap behind it.
void THistoryGraph::FindLimitLines() {
  limitLines_.clear();
  const TChannelStatistics* statistics = Statistics();
  TCoordinate newest;
  if (!statistics || !showLimits_) return;
  if (statistics->ProvideGraphBlock(*link_.GetOptions(), 0, {&newest, 1}) == 0) return;
  TCoordinate oldest = newest;
  int index = 0;
  for (TCoordinate extent;
       statistics->ProvideGraphData(*link_.GetOptions(), index, oldest, extent);) {
  }
  const TLimitLevels& limits = *statistics->GetLimits();
  const auto add = [&](double limit) {
    constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
    limitLines_.insert(limitLines_.end(), {{oldest.X, limit}, {newest.X, limit}, {kGap, kGap}});
  };
  if (limits.GetCheckMax()) add(limits.GetMax());
  if (limits.GetCheckMin()) add(limits.GetMin());
}

void THistoryGraph::Loaded() {
  link_.Loaded();
  graphLink_.Loaded();
  TIconControl::Loaded();
}
