#include "components/controls/Linkedgraph.h"

#include <algorithm>
#include <utility>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"

namespace {

constexpr int kInitialPoints = 1000;

void SetUpAxis(TAxis& axis, const QString& caption, TStatValue value) {
  axis.GetTitle()->SetCaption(caption);
  axis.SetScale(value == svTime ? TAxis::asTime : TAxis::asLinear);
}

}  // namespace

QString AxisCaptionOf(const TChannel* channel) {
  if (!channel) return {};
  if (channel->GetUnits().isEmpty()) return channel->GetLabel();
  return QStringLiteral("%1 [%2]").arg(channel->GetLabel(), channel->GetUnits());
}

TLinkedGraph::TLinkedGraph(QWidget* parent) : TIconControl(parent) {
  SetIconImage(QStringLiteral("TLinkedGraph"));
  data_.SetMaxCount(kInitialPoints);
  auto* series = graphLink_.AddSeries(std::make_unique<TSeries>());
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  series->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    return ProvideGraphData(index, point, extent);
  };
  series->BlockSource = [this](int index, std::span<TCoordinate> points) {
    const int count = std::min(static_cast<int>(points.size()), data_.Count() - index);
    for (int i = 0; i < count; ++i) points[static_cast<std::size_t>(i)] = data_.Get(index + i);
    return std::max(count, 0);
  };
  connect(&graphLink_, &TCustomGraphLink::OnGraphChanged, this, &TLinkedGraph::GraphChanged);
  connect(&data_, &TPersistent::OnChange, &graphLink_, &TCustomGraphLink::Replay);
  connect(&link_, &TCustomChannelLink::OnData, this, &TLinkedGraph::UpdateValues);
  connect(&link_, &TCustomChannelLink::OnSourceChanged, this, &TLinkedGraph::ConfigurationChanged);
  connect(&link_, &TTwoChannelLink::OnChannelChanged1, this, &TLinkedGraph::ConfigurationChanged);
  connect(&link_, &TTwoChannelLink::OnChannelChanged2, this, &TLinkedGraph::ConfigurationChanged);
  for (TStatisticsOptions* options : {link_.GetOptions1(), link_.GetOptions2()}) {
    connect(options, &TPersistent::OnChange, this, &TLinkedGraph::OptionsChanged);
  }
}

void TLinkedGraph::GetLabels() {
  captionX_ = AxisCaptionOf(link_.SelectedChannel1());
  captionY_ = AxisCaptionOf(link_.SelectedChannel2());
}

void TLinkedGraph::GraphChanged() {
  GetLabels();
  if (TKorvalGraph* graph = graphLink_.GetGraph()) {
    if (link_.SelectedChannel1()) {
      SetUpAxis(*graph->GetHorizontalAx(), captionX_, link_.GetOptions1()->GetValueType());
    }
    if (link_.SelectedChannel2()) {
      SetUpAxis(*graph->GetVerticalAx(), captionY_, link_.GetOptions2()->GetValueType());
    }
  }
  link_.SetEnabled(HasBoth());
  graphLink_.Replay();
}

/// The captions follow the labels and units of the channels. What was collected stays for the
/// channels of the form that brought it, and while none is chosen.
void TLinkedGraph::ConfigurationChanged() {
  const TChannel* chosen[] = {link_.SelectedChannel1(), link_.SelectedChannel2()};
  bool others = false;
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    disconnect(channels_[i]);
    others |= shown_[i].ChangesTo(chosen[i]);
    if (chosen[i]) {
      channels_[i] = connect(chosen[i], &TPersistent::OnChange, this, &TLinkedGraph::GraphChanged);
    }
  }
  if (others) BeginAnew();
  GraphChanged();
}

void TLinkedGraph::OptionsChanged() {
  if (!IsLoading()) BeginAnew();
  GraphChanged();
}

void TLinkedGraph::BeginAnew() {
  last_ = {};
  if (data_.Count() > 0) data_.Clear();
}

/// The link ticks whether there are new data or not: those at hand would push the others out.
void TLinkedGraph::UpdateValues() {
  if (!HasBoth() || !link_.HasData()) return;
  const std::array<TStatSet, 2> now = {link_.GetData1(), link_.GetData2()};
  if (std::exchange(last_, now) == now) return;
  double* row = data_.PushBackRow();
  if (!row) return;
  row[0] = now[0].ShownValue(link_.GetOptions1()->GetValueType());
  row[1] = now[1].ShownValue(link_.GetOptions2()->GetValueType());
  if (updating_) graphLink_.Update();
}

void TLinkedGraph::Loaded() {
  link_.Loaded();
  graphLink_.Loaded();
  data_.KeepNewest(GetMaxPoints());
  TIconControl::Loaded();
}
