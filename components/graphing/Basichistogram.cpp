#include "components/graphing/Basichistogram.h"

#include <QComboBox>
#include <QLabel>
#include <algorithm>

#include "components/graphing/Graph.h"
#include "components/graphing/editors/Bineditor.h"

// TBasicHistogram

TBasicHistogram::TBasicHistogram(QWidget* parent) : TDataControl(parent) {
  bins_.OnValueAdded = [this] { ValueAdded(); };
  connect(&bins_, &TBinList::OnChange, this, [this] { DataChanged(); });
  connect(&reset_, &TClick::OnClick, this, &TBasicHistogram::ResetHistogramBins);

  series_ = graphLink_.AddSeries(std::make_unique<TSeries>());
  series_->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    return ProvideGraphData(index, point, extent);
  };
  series_->BlockSource = [this](int index, std::span<TCoordinate> points) {
    return ProvideGraphBlock(index, points);
  };
  TSeriesStyle& style = *series_->GetStyle();
  style.BeginUpdate();
  style.SetLineStyle(TSeriesStyle::psClear);
  style.SetPointStyle(TSeriesStyle::psXBar);
  style.SetPointColor(TColor::Blue());
  style.SetFillColor(TColor::Blue());
  style.EndUpdate();
  connect(&style, &TSeriesStyle::OnChange, this, [this] { SeriesStyleChanged(); });
  // A form has its own axes; they are not known yet while it is loaded.
  connect(&graphLink_, &TGraphLink::OnGraphChanged, this, [this] {
    if (!IsLoading()) SeriesStyleChanged();
  });

  SetIconImage(QStringLiteral("THistogram"));
  SetImageSize(QSize(24, 24));
  SetCaptionPos(cpRight);
  setToolTip(QStringLiteral("Double click to view/edit histogram"));
}

TBasicHistogram::~TBasicHistogram() { CloseEditor(); }

void TBasicHistogram::SetValue(double value) {
  HoldValue(value);
  bins_.AddValues(1.0, value);
}

void TBasicHistogram::ValueAdded() {
  TRun run(*this, reporting_);
  if (CanNotify()) NotifyClients();
  if (!run.IsGone()) ReplayLater();
}

void TBasicHistogram::DataChanged() {
  if (IsLoading()) return;
  TRun run(*this, reporting_);
  NotifyClients();
  if (!run.IsGone()) graphLink_.Update();
}

void TBasicHistogram::ReplayLater() {
  if (replayIsDue_ || !graphLink_.IsAttached()) return;
  replayIsDue_ = true;
  const auto replay = [this] {
    replayIsDue_ = false;
    graphLink_.Replay();
  };
  QMetaObject::invokeMethod(this, replay, Qt::QueuedConnection);
}

void TBasicHistogram::ResetHistogramBins(QObject*) { bins_.Clear(); }

void TBasicHistogram::Loaded() {
  graphLink_.Loaded();
  TDataControl::Loaded();
}

// Graph

bool TBasicHistogram::HasYBars() const {
  return series_ && series_->GetStyle()->GetPointStyle() == TSeriesStyle::psYBar;
}

bool TBasicHistogram::ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const {
  if (index < 0 || index >= bins_.Count()) return false;
  point = bins_.Bar(index++);
  extent = bins_.BasePair();
  if (HasYBars()) {
    std::swap(point.X, point.Y);
    std::swap(extent.X, extent.Y);
  }
  return true;
}

int TBasicHistogram::ProvideGraphBlock(int index, std::span<TCoordinate> points) const {
  if (index < 0 || index >= bins_.Count()) return 0;
  const int count = std::min(bins_.Count() - index, static_cast<int>(points.size()));
  const bool swapped = HasYBars();
  for (int i = 0; i < count; ++i) {
    const TCoordinate bar = bins_.Bar(index + i);
    points[static_cast<std::size_t>(i)] = swapped ? TCoordinate{bar.Y, bar.X} : bar;
  }
  return count;
}

void TBasicHistogram::SeriesStyleChanged() {
  constexpr double kLeastCount = 0.1;
  TKorvalGraph* graph = graphLink_.GetGraph();
  if (!graph) return;
  TAxis* values = graph->GetHorizontalAx();
  TAxis* counts = graph->GetVerticalAx();
  if (HasYBars()) std::swap(values, counts);
  values->SetAutoMin(true);
  counts->SetAutoMin(false);
  counts->SetMin(kLeastCount);
}

// Editor

void TBasicHistogram::ShowBinEditor() {
  if (!editor_) {
    auto* editor = new TBinEditor(bins_, this);
    editor_ = editor;
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->setWindowTitle(GetCaption().isEmpty() ? tr("Histogram") : GetCaption());
    editor->Reset = [this] { reset_.Click(); };
    if (series_) editor->SetColors(*series_->GetStyle());
    FillEditor(*editor);
  }
  editor_->show();
  editor_->raise();
  editor_->activateWindow();
}

void TBasicHistogram::CloseEditor() { delete editor_; }

// TOccurrenceHistogram

TOccurrenceHistogram::TOccurrenceHistogram(QWidget* parent) : TBasicHistogram(parent) {
  SetIconImage(QStringLiteral("TOccurrenceHistogram"));
  statistics_.OnCompute = [this] {
    ComputeStatistics();
    statistics_.Update();
  };
  statisticsSeries_ = AddStatisticsSeries(*GetGraphLink(), statistics_, TStatSeriesStyle::bsXBar);
  connect(GetGraphLink(), &TGraphLink::OnUpdate, this, &TOccurrenceHistogram::UpdateStatistics);
}

/// The graph link and the bins, members of the base, live longer than the statistics.
TOccurrenceHistogram::~TOccurrenceHistogram() {
  CloseEditor();
  if (statisticsSeries_) statisticsSeries_->Statistics = nullptr;
  disconnect(GetGraphLink(), &TGraphLink::OnUpdate, this, nullptr);
}

void TOccurrenceHistogram::SetAddMode(THistogramAddMode mode) {
  if (mode <= amAddIfBinChanged) addMode_ = mode;
}

bool TOccurrenceHistogram::IsInLastBin(double value) const {
  return value <= lastBinPos_ && value > lastBinPos_ - GetBins()->GetStep();
}

void TOccurrenceHistogram::SetValue(double value) {
  HoldValue(value);
  if (addMode_ == amAddIfBinChanged && IsInLastBin(value)) return;
  TRun run(*this, adding_);
  const bool counted = GetBins()->AddValues(1.0, value);
  if (run.IsGone() || !counted || addMode_ != amAddIfBinChanged) return;
  lastBinPos_ = GetBins()->CorrectPos(value);
}

void TOccurrenceHistogram::ValueAdded() {
  UpdateStatistics();
  TBasicHistogram::ValueAdded();
}

void TOccurrenceHistogram::DataChanged() {
  UpdateStatistics();
  TBasicHistogram::DataChanged();
}

void TOccurrenceHistogram::SeriesStyleChanged() {
  if (statisticsSeries_) {
    statisticsSeries_->GetStyle()->SetBarStyle(HasYBars() ? TStatSeriesStyle::bsYBar
                                                          : TStatSeriesStyle::bsXBar);
  }
  TBasicHistogram::SeriesStyleChanged();
}

/// A form gives bins and statistics in any order.
void TOccurrenceHistogram::Loaded() {
  TBasicHistogram::Loaded();
  if (!GetBins()->Empty()) UpdateStatistics();
}

// Statistics

void TOccurrenceHistogram::UpdateStatistics(QObject*) { statistics_.Postpone(); }

void TOccurrenceHistogram::ComputeStatistics(QObject*) {
  const TBinList& bins = *GetBins();
  statistics_.Reset();
  if (bins.Empty()) return;
  const double width = bins.GetStep();
  double sum = 0.0;
  double sqSum = 0.0;
  for (int bin = 0; bin < bins.Count(); ++bin) {
    const double middle = bins.GetPosition(bin) - width / 2.0;
    const double count = bins.GetBinCount(bin);
    sum += count * middle;
    sqSum += count * middle * middle;
  }
  const double counted = bins.GetCycleCount();
  statistics_.SetCount(counted);
  statistics_.SetSum(sum);
  statistics_.SetSqSum(sqSum);
  const double least = bins.GetPosition(0) - width;
  statistics_.SetMin(least);
  statistics_.SetMax(bins.GetPosition(bins.Count() - 1));
  statistics_.SetMin(least);  // again: a first extreme of 0 counts as none, and the next is both
  statistics_.SetPos(counted / bins.Count());
}

// Editor

QString TOccurrenceHistogram::StatisticsText() const {
  const auto text = [](double value) { return QString::number(value, 'g', 5); };
  return tr("mean %1, standard deviation %2")
      .arg(text(statistics_.GetMean()), text(statistics_.GetStDev()));
}

void TOccurrenceHistogram::FillEditor(TBinEditor& editor) {
  auto* mode = new QComboBox;
  mode->setObjectName(QStringLiteral("AddMode"));
  mode->addItems({tr("Every value"), tr("Values that change the bin")});
  mode->setCurrentIndex(addMode_);
  connect(&editor, &TBinEditor::OnApply, this,
          [this, mode] { SetAddMode(static_cast<THistogramAddMode>(mode->currentIndex())); });
  editor.AddRow(tr("Count"), mode);

  auto* statistics = new QLabel;
  statistics->setObjectName(QStringLiteral("Statistics"));
  const auto show = [this, statistics] { statistics->setText(StatisticsText()); };
  connect(&editor, &TBinEditor::OnRefresh, this, show);
  show();
  editor.AddRow(tr("Statistics"), statistics);
}
