#include "components/graphing/Graphseries.h"

#include <QPointer>
#include <utility>

#include "components/graphing/Publishedrecord.h"

TCustomGraphSeries::~TCustomGraphSeries() {
  if (panel_) static_cast<void>(panel_->RemoveSeries(this).release());
}

void TCustomGraphSeries::SetLabel(const QString& label) {
  if (label_ == label) return;
  label_ = label;
  Changed();
}

void TCustomGraphSeries::SetVisible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  Changed();
}

void TCustomGraphSeries::Changed() {
  const QPointer<TCustomGraphSeries> self(this);
  emit OnChange(this);
  if (self && panel_) emit panel_->OnRepaint(panel_);
}

void TCustomGraphSeries::WriteSeries(QJsonObject& record) const { record = WritePublished(*this); }

bool TCustomGraphSeries::ReadSeries(const QJsonObject& record, QString* error) {
  return ReadPublished(record, *this, error);
}

bool TCustomGraphSeries::Grab(QPoint) { return false; }
bool TCustomGraphSeries::Drag(QPoint) { return false; }

void TCustomGraphSeries::TakeSources(const TCustomGraphSeries& other) {
  DataSource = other.DataSource;
  BlockSource = other.BlockSource;
}

void TCustomGraphSeries::AssignTo(TPersistent* destination) const {
  auto* series = qobject_cast<TCustomGraphSeries*>(destination);
  if (!series || series == this) return;
  series->TakeSources(*this);
  TPersistent::AssignTo(series);
}

TCustomDataSeries::TCustomDataSeries(std::unique_ptr<TBasicSeriesStyle> style, QObject* owner)
    : TCustomGraphSeries(owner), style_(std::move(style)) {
  connect(style_.get(), &TBasicSeriesStyle::OnChange, this, &TCustomDataSeries::Changed);
}
