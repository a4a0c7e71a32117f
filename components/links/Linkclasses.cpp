#include "components/links/Linkclasses.h"

#include "components/graphing/Graph.h"
#include "components/graphing/Sliderseries.h"

TCustomGraphLink::TCustomGraphLink(QObject* owner) : TPersistent(owner), graph_(owner) {
  connect(&graph_, &TKorvalCompList::OnItemChanged, this,
          [this](QObject*, QObject*, TListAction action) { GraphChanged(action); });
  connect(&series_, &TSeriesList::OnChange, this, &TCustomGraphLink::ShowSeries);
}

TCustomGraphLink::~TCustomGraphLink() {
  blockSignals(true);
  LeaveGraph();
}

TKorvalGraph* TCustomGraphLink::GetGraph() const { return graph_.Get(); }

void TCustomGraphLink::SetGraph(TKorvalGraph* graph) {
  if (graph != GetGraph()) graph_.Set(graph);
}

void TCustomGraphLink::GraphChanged(TListAction action) {
  const QPointer<TCustomGraphLink> self(this);
  if (action == laAdded) {
    Attached();
    if (self) ShowSeries();
  } else {
    LeaveGraph();
  }
  if (self) emit OnGraphChanged(this);
  if (self) emit OnChange(this);
}

void TCustomGraphLink::ShowSeries() {
  if (TKorvalGraph* graph = GetGraph()) graph->GetDataPanel()->AddSeries(series_);
}

/// Of a graph that is being destroyed the panel is gone already, and its series know it.
void TCustomGraphLink::LeaveGraph() {
  for (int i = 0; i < series_.Count(); ++i) {
    if (TSeriesPanel* panel = series_.Get(i)->Panel()) panel->RemoveSeries(series_);
  }
}

void TCustomGraphLink::SetUpdateInterval(int interval) {
  if (interval == updateInterval_ || interval < 1) return;
  updateInterval_ = interval;
  updates_ = 0;
  emit OnChange(this);
}

void TCustomGraphLink::Update() {
  if (++updates_ < updateInterval_) return;
  updates_ = 0;
  UpdateNow();
}

void TCustomGraphLink::UpdateNow() {
  const QPointer<TCustomGraphLink> self(this);
  emit OnUpdate(this);
  if (self) Replay();
}

void TCustomGraphLink::Replay() {
  if (TKorvalGraph* graph = GetGraph()) graph->Replay();
}

void TCustomGraphLink::AssignTo(TPersistent* destination) const {
  auto* link = qobject_cast<TCustomGraphLink*>(destination);
  if (!link || link == this) return;
  CopyInSteps(
      link, [&] { link->SetGraph(GetGraph()); }, [&] { link->SetUpdateInterval(updateInterval_); },
      [&] { link->SetSeriesData(GetSeriesData()); });
}

bool TCustomGraphLink::SameAs(const TPersistent* other) const {
  const auto* link = qobject_cast<const TCustomGraphLink*>(other);
  return link && graph_.SameAs(&link->graph_) && updateInterval_ == link->updateInterval_ &&
         series_.SameAs(&link->series_);
}

TSliderLink::TSliderLink(QObject* owner)
    : TCustomGraphLink(owner), slider_(AddSeries(std::make_unique<TSliderSeries>())) {
  slider_->SetShowGridX(true);
  connect(slider_, &TSliderSeries::OnDragged, this, [this] {
    if (WriteValue) WriteValue(GetSliderPos());
  });
}

void TSliderLink::SetSliderAxis(TSliderAxis axis) {
  if (axis == axis_ || axis < saX || axis > saY) return;
  axis_ = axis;
  slider_->SetShowGridX(axis == saX);
  slider_->SetShowGridY(axis == saY);
  if (IsAttached()) Attached();
  emit OnChange(this);
}

double TSliderLink::GetSliderPos() const {
  return axis_ == saX ? slider_->GetPositionX() : slider_->GetPositionY();
}

void TSliderLink::SetSliderPos(double value) {
  if (axis_ == saX) {
    slider_->SetPositionX(value);
  } else {
    slider_->SetPositionY(value);
  }
}

void TSliderLink::Attached() {
  if (ReadValue) SetSliderPos(ReadValue());
}

void TSliderLink::AssignTo(TPersistent* destination) const {
  auto* link = qobject_cast<TSliderLink*>(destination);
  CopyInSteps(
      destination, [&] { TCustomGraphLink::AssignTo(destination); },
      [&] {
        if (link && link != this) link->SetSliderAxis(axis_);
      });
}

bool TSliderLink::SameAs(const TPersistent* other) const {
  const auto* link = qobject_cast<const TSliderLink*>(other);
  return link && TCustomGraphLink::SameAs(other) && axis_ == link->axis_;
}
