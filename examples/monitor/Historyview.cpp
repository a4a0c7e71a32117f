#include "examples/monitor/Historyview.h"

#include <QComboBox>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <limits>

#include "components/controls/Linkedcontrols.h"
#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "components/graphing/Graphexport.h"
#include "examples/Graphlook.h"

namespace {

/// What one record of a history stands for.
QString RecordName(TStatInterval interval) {
  const char* const names[] = {"second", "minute", "hour", "day", "month", "year"};
  return QLatin1String(names[Ordinal(interval)]);
}

}  // namespace

THistoryView::THistoryView(QWidget* parent) : QWidget(parent) {
  caption_ = new QLabel;
  interval_ = new QComboBox;
  interval_->setObjectName(QStringLiteral("interval"));
  for (int i = 0; i < kStatIntervals; ++i) interval_->addItem(IntervalText(IntervalAt(i)));
  connect(interval_, &QComboBox::currentIndexChanged, this, [this] {
    for (TCurve& curve : curves_) curve.Options.SetSelInterval(Interval());
    shownCount_ = -1;
    ShowHistory();
    emit OnIntervalChanged();
  });
  auto* legend =
      new QLabel(QStringLiteral("<span style='color:#c83228'>maximum</span>, "
                                "<span style='color:#1f5ab4'><b>mean</b></span>, "
                                "<span style='color:#1e8246'>minimum</span>"));
  hint_ = new QLabel;
  hint_->setAlignment(Qt::AlignCenter);
  hint_->setWordWrap(true);
  MakeGraph();
  pages_ = new QStackedWidget;
  pages_->addWidget(hint_);
  pages_->addWidget(graph_);

  auto* row = new QHBoxLayout;
  row->addWidget(legend);
  row->addStretch(1);
  row->addWidget(interval_);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(caption_);
  all->addLayout(row);
  all->addWidget(pages_, 1);
  ShowHistory();
}

void THistoryView::MakeGraph() {
  graph_ = new TKorvalGraph(this);
  graph_->setObjectName(QStringLiteral("historyGraph"));
  graph_->SetBorderStyle(TBevel::bvNone);
  graph_->SetBorderColor(kBorder);
  graph_->setMinimumSize(260, 160);
  graph_->SetShowCoordinates(true);
  ColorAxis(*graph_->GetHorizontalAx());
  ColorAxis(*graph_->GetVerticalAx());
  graph_->GetHorizontalAx()->SetScale(TAxis::asTime);
  AddExportActions(*graph_);
  AddCurve(curves_[0], svMax, kRed, 1);
  AddCurve(curves_[1], svMin, kGreen, 1);
  AddCurve(curves_[2], svMean, kBlue, 2);
  link_.SetGraph(graph_);
}

void THistoryView::AddCurve(TCurve& curve, TStatValue value, TColor color, int weight) {
  curve.Options.SetValueType(value);
  TSeries& series = *link_.AddSeries(std::make_unique<TSeries>());
  series.GetStyle()->SetLineColor(color);
  series.GetStyle()->SetLineWeight(weight);
  series.GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  const std::vector<TCoordinate>& points = curve.Points;
  series.DataSource = [&points](int& index, TCoordinate& point, TCoordinate&) {
    if (index < 0 || index >= std::ssize(points)) return false;
    point = points[static_cast<std::size_t>(index++)];
    return true;
  };
}

/// A point that is no number parts what was measured before a gap and behind it.
void THistoryView::TakePoints(TCurve& curve) const {
  constexpr double kGap = 3.0;  // records that are missing
  curve.Points.clear();
  TCoordinate point;
  TCoordinate extent;
  int index = 0;
  while (channel_ && channel_->GetStats()->ProvideGraphData(curve.Options, index, point, extent)) {
    if (!curve.Points.empty() && curve.Points.back().X - point.X > kGap * extent.X) {
      curve.Points.push_back({point.X, std::numeric_limits<double>::quiet_NaN()});
    }
    curve.Points.push_back(point);
  }
}

TStatInterval THistoryView::Interval() const { return IntervalAt(interval_->currentIndex()); }

void THistoryView::SetInterval(TStatInterval interval) {
  interval_->setCurrentIndex(Ordinal(interval));
}

void THistoryView::SetChannel(TChannel* channel, const QString& setLabel) {
  channel_ = channel;
  setLabel_ = setLabel;
  caption_->setText(channel ? QStringLiteral("<b>%1: %2</b>").arg(setLabel, channel->GetLabel())
                            : QString());
  graph_->GetVerticalAx()->GetTitle()->SetCaption(AxisCaptionOf(channel));
  shownCount_ = -1;
  ShowHistory();
}

const TStatHistory* THistoryView::History() const {
  for (int i = 0; channel_ && i < channel_->GetStats()->Count(); ++i) {
    const TStatHistory* history = channel_->GetStats()->Get(i);
    if (history->Interval() == Interval()) return history;
  }
  return nullptr;
}

void THistoryView::ShowHistory() {
  const TStatHistory* history = History();
  const int count = history ? history->Count() : 0;
  const double time = count > 0 ? history->Get(0).Time : 0.0;
  if (count == shownCount_ && time == shownTime_) return;
  shownCount_ = count;
  shownTime_ = time;
  const bool isCurve = count > 1;
  hint_->setText(channel_ ? tr("The curve begins after two %1s.").arg(RecordName(Interval()))
                          : tr("Select a channel in the table."));
  pages_->setCurrentWidget(isCurve ? static_cast<QWidget*>(graph_) : hint_);
  for (TCurve& curve : curves_) TakePoints(curve);
  if (isCurve) link_.UpdateNow();
}
