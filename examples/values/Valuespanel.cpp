#include "examples/values/Valuespanel.h"

#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Basichistogram.h"
#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "components/graphing/Graphexport.h"
#include "components/graphing/Sliderseries.h"
#include "components/sources/Filereader.h"
#include "components/sources/Fourier.h"
#include "components/sources/Macro.h"
#include "examples/Graphlook.h"
#include "examples/generate/Pump.h"

namespace {

constexpr int kShownRows = 1000;     ///< the channels keep the latest
constexpr int kUpdateInterval = 32;  ///< values between two pictures of a channel
constexpr quint32 kTicks = 2;        ///< of 10 ms, between two pages
constexpr double kLargest = 15.0;    ///< m/s2
constexpr int kPlaces = 1000;        ///< of the slider that shows the position

/// A component as a child of the panel.
template <class T>
T* Make(QWidget* panel, const char* name) {
  auto* component = new T(panel);
  component->setObjectName(QLatin1String(name));
  return component;
}

void SetUpAxis(TAxis& axis, const QString& title) {
  ColorAxis(axis);
  axis.GetTitle()->SetCaption(title);
}

TKorvalGraph* MakeGraph(QWidget* panel, const char* name, const QString& x, const QString& y) {
  auto* graph = Make<TKorvalGraph>(panel, name);
  graph->SetBorderStyle(TBevel::bvNone);
  graph->SetBorderColor(kBorder);
  graph->setMinimumSize(220, 110);
  graph->SetShowCoordinates(true);
  SetUpAxis(*graph->GetHorizontalAx(), x);
  SetUpAxis(*graph->GetVerticalAx(), y);
  AddExportActions(*graph);
  return graph;
}

void SetRange(TAxis& axis, double from, double to) {
  axis.SetAutoMin(false);
  axis.SetAutoMax(false);
  axis.SetMinMax(from, to);
}

TSeriesStyle& CurveStyle(TCustomGraphLink& link) {
  return *static_cast<TSeries*>(link.GetSeriesList().Get(0))->GetStyle();
}

TDataChannel* MakeChannel(QWidget* panel, const char* name, TKorvalGraph& graph, TColor color) {
  auto* channel = Make<TDataChannel>(panel, name);
  channel->SetPointCount(kShownRows);
  TGraphLink& link = *channel->GetGraphLink();
  CurveStyle(link).SetLineColor(color);
  link.GetSeriesList().Get(1)->SetVisible(
      false);  // the statistics of the times, which nobody gives
  link.SetUpdateInterval(kUpdateInterval);
  link.SetGraph(&graph);
  SetRange(*graph.GetHorizontalAx(), 0.0, kShownRows);
  return channel;
}

QString SampleTitle() { return QStringLiteral("Latest samples [1/%1 s]").arg(pump::kSampleRate); }

void SetDecimals(TCustomVariable& variable, int digits) {
  variable.GetValueFormat()->SetFormat(TNumberFormat::ffFixed);
  variable.GetValueFormat()->SetDigits(digits);
}

}  // namespace

TValuesPanel::TValuesPanel(const QString& fileName, QWidget* parent) : QWidget(parent) {
  setWindowTitle(tr("Values of a pump"));
  MakeAcceleration();
  MakePressure();
  MakeExcess();
  MakeSpectrum();
  MakeHistogram();
  for (TDataControl* client :
       {static_cast<TDataControl*>(a_), static_cast<TDataControl*>(spectrum_),
        static_cast<TDataControl*>(distribution_)}) {
    acceleration_->GetClientControls()->Add(client);
  }

  auto* all = new QVBoxLayout(this);
  all->addLayout(MakeControls());
  all->addLayout(MakeVariables());
  all->addLayout(MakeGraphs(), 1);
  MakeReader(fileName);
  ShowPosition();

  timer_.SetInterval(kTicks);
  timer_.SetOnTimer(TNotifyEvent(this, &TValuesPanel::Tick));
  resize(sizeHint());
}

// Components

void TValuesPanel::MakeReader(const QString& fileName) {
  reader_ = Make<TFileReader>(this, "reader");
  reader_->SetReadMode(TFileReader::rmReadPage);
  reader_->GetClientControls()->Add(acceleration_);
  reader_->GetClientControls()->Add(pressure_);
  connect(reader_, &TFileReader::OnEndOfFile, this, &TValuesPanel::ReachedEnd);
  connect(reader_, &TFileReader::OnProgress, this, &TValuesPanel::ShowPosition);
  connect(reader_, &TFileReader::OnError, this,
          [this](QObject*, const QString& text) { Failed(text); });
  reader_->SetFileName(fileName);
  if (fileName.isEmpty()) Failed(tr("There is no file to read"));
  if (!reader_->GetFileName().isEmpty()) fileSize_ = QFileInfo(fileName).size();
}

void TValuesPanel::MakeAcceleration() {
  accelerationGraph_ = MakeGraph(this, "accelerationGraph", SampleTitle(),
                                 QStringLiteral("Acceleration [m/s\u00b2]"));
  SetRange(*accelerationGraph_->GetVerticalAx(), -kLargest, kLargest);
  acceleration_ = MakeChannel(this, "acceleration", *accelerationGraph_, kBlue);
  acceleration_->SetScaleFactor(pump::kAccelerationPerVolt);
  acceleration_->SetLimitMax(kLargest);
  acceleration_->SetLimitMin(-kLargest);
  acceleration_->SetOptions(TDataChannel::coUseLimits);
  a_ = Make<TVariable>(this, "a");
  SetDecimals(*a_, 2);
}

/// A sensor without contact gives a pressure below 0, which is dropped.
void TValuesPanel::MakePressure() {
  pressureGraph_ =
      MakeGraph(this, "pressureGraph", SampleTitle(), QStringLiteral("Pressure [bar]"));
  pressure_ = MakeChannel(this, "pressure", *pressureGraph_, kGreen);
  pressure_->SetScaleFactor(pump::kPressurePerVolt);
  pressure_->SetShiftConstant(pump::kPressureAtZeroVolt);
  pressure_->SetLimitMax(16.0);
  pressure_->SetOptions(TDataChannel::coUseLimits | TDataChannel::coSkipError);
}

void TValuesPanel::MakeExcess() {
  level_ = Make<TVariable>(this, "level");
  SetDecimals(*level_, 2);
  level_->SetValue(8.0);
  TSliderLink& slider = *level_->GetSliderLink();
  slider.SetSliderAxis(TSliderLink::saY);
  slider.Slider()->SetPositionX(0.06 * kShownRows);
  slider.SetGraph(accelerationGraph_);
  accelerationGraph_->setToolTip(tr("Drag the red line to set the level"));

  excessGraph_ =
      MakeGraph(this, "excessesGraph", SampleTitle(), QStringLiteral("Excess [m/s\u00b2]"));
  excessGraph_->GetVerticalAx()->SetAutoMin(false);
  excesses_ = MakeChannel(this, "excesses", *excessGraph_, kRed);

  excess_ = Make<TMacro>(this, "excess");
  SetDecimals(*excess_, 2);
  excess_->setToolTip(tr("Double click to edit the expression"));
  excess_->GetVariables()->Add(a_);
  excess_->GetVariables()->Add(level_);
  excess_->SetMacroText(QStringLiteral("MAX(ABS([a]) - [level]; 0)"));
  excess_->GetClientControls()->Add(excesses_);
  excessGraph_->setToolTip(excess_->toolTip());
  excessGraph_->GetDataPanel()->GetSeriesList().Editor = [this](TSeriesList&) {
    excess_->ShowEditor();
  };
}

void TValuesPanel::MakeSpectrum() {
  spectrumGraph_ = MakeGraph(this, "spectrumGraph", QStringLiteral("Frequency [Hz]"),
                             QStringLiteral("Power [(m/s\u00b2)\u00b2]"));
  spectrumGraph_->GetVerticalAx()->SetScale(TAxis::asLog);
  SetRange(*spectrumGraph_->GetVerticalAx(), 1e-5, 100.0);
  SetRange(*spectrumGraph_->GetHorizontalAx(), 0.0, 500.0);
  spectrum_ = Make<TFFTChannel>(this, "spectrum");
  spectrum_->SetSampleRate(pump::kSampleRate);
  spectrum_->SetPointCount(1024);
  spectrum_->SetUpperFilter(pump::kSampleRate / 2.0);
  TSeriesStyle& style = CurveStyle(*spectrum_->GetGraphLink());
  style.SetLineColor(kBlue);
  style.SetPointStyle(TSeriesStyle::psNone);
  spectrum_->GetGraphLink()->SetGraph(spectrumGraph_);
}

void TValuesPanel::MakeHistogram() {
  distributionGraph_ =
      MakeGraph(this, "distributionGraph", QStringLiteral("Acceleration [m/s\u00b2]"),
                QStringLiteral("Count"));
  distribution_ = Make<TOccurrenceHistogram>(this, "distribution");
  distribution_->SetCaption(tr("Distribution of the acceleration"));
  distribution_->GetBins()->SetStep(0.5);
  TSeriesStyle& style = CurveStyle(*distribution_->GetGraphLink());
  style.SetPointColor(kBlue);
  style.SetFillColor(kLightBlue);
  distribution_->GetGraphLink()->SetGraph(distributionGraph_);
  distributionGraph_->setToolTip(distribution_->toolTip());
  distributionGraph_->GetDataPanel()->GetSeriesList().Editor = [this](TSeriesList&) {
    distribution_->ShowEditor();
  };
}

// Layout

QLayout* TValuesPanel::MakeControls() {
  auto* row = new QHBoxLayout;
  const auto add = [&](const char* name, const QString& text, auto method) {
    auto* button = Make<QPushButton>(this, name);
    button->setText(text);
    connect(button, &QPushButton::clicked, this, method);
    row->addWidget(button);
    return button;
  };
  toggle_ = add("toggle", tr("Start"), &TValuesPanel::Toggle);
  add("middle", tr("To the middle"), &TValuesPanel::GoToMiddle);
  add("over", tr("Start over"), &TValuesPanel::StartOver);

  speedBox_ = Make<QComboBox>(this, "speed");
  speedBox_->addItems({tr("Real time"), tr("10 times as fast"), tr("As fast as possible")});
  connect(speedBox_, &QComboBox::currentIndexChanged, this,
          [this](int index) { SetSpeed(static_cast<TSpeed>(index)); });
  row->addWidget(speedBox_);

  place_ = Make<QSlider>(this, "place");
  place_->setOrientation(Qt::Horizontal);
  place_->setRange(0, kPlaces);
  connect(place_, &QSlider::sliderMoved, this,
          [this](int place) { reader_->SetStreamPosition(fileSize_ * place / kPlaces); });
  row->addWidget(place_, 1);
  position_ = Make<QLabel>(this, "position");
  row->addWidget(position_);
  return row;
}

QLayout* TValuesPanel::MakeVariables() {
  auto* row = new QHBoxLayout;
  for (TCustomVariable* variable :
       {static_cast<TCustomVariable*>(a_), static_cast<TCustomVariable*>(level_),
        static_cast<TCustomVariable*>(excess_)}) {
    variable->setMinimumWidth(130);
    row->addWidget(variable, 0, Qt::AlignVCenter);
  }
  auto* expression = new QPushButton(tr("Expression..."));
  connect(expression, &QPushButton::clicked, excess_, &TMacro::ShowEditor);
  auto* bins = new QPushButton(tr("Bins..."));
  connect(bins, &QPushButton::clicked, distribution_, &TOccurrenceHistogram::ShowEditor);
  row->addWidget(expression);
  row->addWidget(bins);
  row->addStretch(1);
  status_ = Make<QLabel>(this, "status");
  row->addWidget(status_);
  return row;
}

/// The channels above each other on the left, what is made of them on the right.
QLayout* TValuesPanel::MakeGraphs() {
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  const auto add = [](QVBoxLayout* column, const QString& caption, TKorvalGraph* graph) {
    column->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(caption)));
    column->addWidget(graph, 1);
  };
  add(left, tr("Acceleration of the bearing"), accelerationGraph_);
  add(left, tr("Excess over the level"), excessGraph_);
  add(left, tr("Pressure behind the pump"), pressureGraph_);
  add(right, tr("Spectrum of the acceleration"), spectrumGraph_);
  add(right, tr("Distribution of the acceleration"), distributionGraph_);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 3);
  columns->addLayout(right, 2);
  return columns;
}

// Reading

void TValuesPanel::SetSpeed(TSpeed speed) {
  if (speed == speed_) return;
  speed_ = speed;
  speedBox_->setCurrentIndex(speed);
  if (!IsReading()) return;
  reader_->SetActive(false);
  Start();
}

void TValuesPanel::Start() {
  if (fileSize_ == 0) return;
  error_.clear();
  SetState(TState::kReading, tr("Reading"));
  const bool isUnlimited = speed_ == spUnlimited;
  reader_->SetReadMode(isUnlimited ? TFileReader::rmUntilEnd : TFileReader::rmReadPage);
  if (isUnlimited) reader_->SetActive(true);
}

void TValuesPanel::Stop() {
  if (!IsReading()) return;
  reader_->SetActive(false);
  SetState(TState::kStopped, tr("Stopped"));
}

void TValuesPanel::Toggle() {
  if (IsReading()) {
    Stop();
  } else {
    Start();
  }
}

void TValuesPanel::GoToMiddle() {
  reader_->SetStreamPosition(fileSize_ / 2);
  if (state_ == TState::kFinished) SetState(TState::kStopped, tr("Stopped"));
  ShowPosition();
}

void TValuesPanel::StartOver() {
  reader_->SetStreamPosition(0);
  for (TDataChannel* channel : {acceleration_, excesses_, pressure_}) channel->ResetChannel();
  spectrum_->GetResetFFT()->Click();
  distribution_->GetResetHistogram()->Click();
  if (!IsReading() && fileSize_ > 0) SetState(TState::kFresh, QString());
}

/// Has the rows read that have come due since the last page.
void TValuesPanel::Tick(QObject*) {
  ShowPosition();
  if (speed_ == spUnlimited || reader_->GetActive()) return;
  const double factor = speed_ == spTenfold ? 10.0 : 1.0;
  rowsDue_ += factor * pump::kSampleRate * 0.01 * kTicks;
  const int rows = static_cast<int>(rowsDue_);
  rowsDue_ -= rows;
  reader_->SetPageSize(reader_->GetClientControls()->Count() * rows);
  reader_->SetActive(true);
}

/// The reader has gone to the beginning of the file.
void TValuesPanel::ReachedEnd() {
  reader_->SetActive(false);
  SetState(TState::kFinished, tr("End of the file"));
  emit OnFinished();
}

void TValuesPanel::Failed(const QString& text) {
  const bool wasReading = IsReading();
  error_ = text;
  SetState(TState::kFailed, text);
  if (wasReading) emit OnFinished();
}

void TValuesPanel::SetState(TState state, const QString& text) {
  state_ = state;
  timer_.SetEnabled(state == TState::kReading);
  toggle_->setText(state == TState::kReading   ? tr("Stop")
                   : state == TState::kStopped ? tr("Continue")
                                               : tr("Start"));
  status_->setText(text);
  ShowPosition();
}

void TValuesPanel::ShowPosition() {
  if (!reader_) return;
  const qint64 position = state_ == TState::kFinished ? fileSize_ : reader_->GetStreamPosition();
  if (!place_->isSliderDown() && fileSize_ > 0) {
    place_->setValue(static_cast<int>(kPlaces * position / fileSize_));
  }
  position_->setText(tr("%1 of %2 kB")
                         .arg(static_cast<double>(position) / 1000.0, 0, 'f', 1)
                         .arg(static_cast<double>(fileSize_) / 1000.0, 0, 'f', 1));
}
