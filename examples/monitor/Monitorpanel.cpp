#include "examples/monitor/Monitorpanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTime>

#include "components/channels/Statsstorage.h"
#include "components/comms/Qlxmaster.h"
#include "components/comms/Qlxxml.h"
#include "examples/monitor/Channeltable.h"
#include "examples/monitor/Historyview.h"
#include "examples/monitor/Monitoredsets.h"
#include "examples/monitor/Sourcebox.h"
#include "examples/monitor/Sourcewatch.h"
#include "examples/monitor/Storagebox.h"
#include "examples/monitor/Valuecard.h"

namespace {

constexpr quint32 kTicks = 20;     ///< of 10 ms, between two pictures
constexpr int kSaveInterval = 10;  ///< seconds that a line of a statistics file stands for
constexpr int kMostEvents = 500;   ///< lines

/// A component as a child of the panel, without its icon.
template <class T, class... TArguments>
T* Make(QWidget* panel, const char* name, TArguments&&... arguments) {
  auto* component = new T(panel, std::forward<TArguments>(arguments)...);
  component->setObjectName(QLatin1String(name));
  component->SetVisible(false);
  return component;
}

TDriverFactory DriverFor(const QString& device) {
  if (IsPortName(device)) return MakeSystemDriver;
  return [device] { return MakeDeviceDriver(device); };
}

}  // namespace

TMonitorPanel::TMonitorPanel(const TMonitorOptions& options, QWidget* parent)
    : QWidget(parent), silenceLimitMs_(options.SilenceLimitMs) {
  setWindowTitle(tr("Monitor"));
  source_ = Make<TChannelSource>(this, "source");
  AddMonitoredSets(*source_, options.DeviceRate);
  MakeStorage();
  deviceWatch_ = MakeDevice(options);
  serverWatch_ = MakeServer(options);

  auto* all = new QVBoxLayout(this);
  all->addLayout(MakeBoxes());
  all->addLayout(MakeCards());
  all->addWidget(MakeValues(), 1);
  all->addWidget(MakeEvents());
  Report(*deviceWatch_, tr("Serial device"));
  Report(*serverWatch_, tr("Package server"));
  connect(storageBox_, &TStorageBox::OnEvent, this,
          [this](const QString& text) { AddEvent(tr("Statistics files"), text); });
  if (!options.Folder.isEmpty()) storageBox_->Start(options.Folder);

  ShowValues();
  timer_.SetInterval(kTicks);
  timer_.SetOnTimer(TNotifyEvent(this, &TMonitorPanel::Tick));
  timer_.SetEnabled(true);
  resize(sizeHint());
}

TMonitorPanel::~TMonitorPanel() {
  // Nothing that ends from now on is shown.
  deviceWatch_->disconnect(this);
  serverWatch_->disconnect(this);
  storageBox_->disconnect(this);
}

// Components

TSourceWatch* TMonitorPanel::MakeDevice(const TMonitorOptions& options) {
  device_ = Make<TQLXMasterClient>(this, "device", DriverFor(options.Device));
  if (IsPortName(options.Device)) device_->GetPort()->SetPortNum(options.Device);
  device_->GetPort()->SetQLXSampleRate(options.DeviceRate);
  device_->SetChannelSource(source_);
  device_->GetChSet()->SetIndex(kMachine);
  auto* watch = new TSourceWatch(*device_, options.Device, this);
  watch->Follow(*source_->GetSets()->GetItem(kMachine));
  connect(device_->GetPort(), &TQLXPort::OnClose, watch,
          [this, watch] { watch->SetReason(device_->GetPort()->GetErrorText()); });
  device_->SetAutoConnect(true);
  return watch;
}

TSourceWatch* TMonitorPanel::MakeServer(const TMonitorOptions& options) {
  server_ = Make<TQLXXMLClient>(this, "server");
  server_->GetSocket()->SetHost(options.Host);
  server_->GetSocket()->SetPort(options.Port);
  server_->SetChannelSource(source_);
  auto* watch =
      new TSourceWatch(*server_, QStringLiteral("%1:%2").arg(options.Host).arg(options.Port), this);
  watch->Follow(*source_->GetSets()->GetItem(kMast));
  watch->Follow(*source_->GetSets()->GetItem(kWeather));
  server_->SetAutoConnect(true);
  return watch;
}

void TMonitorPanel::MakeStorage() {
  storage_ = Make<TStatsStorage>(this, "storage");
  storage_->SetSaveInterval(kSaveInterval);
  for (int i = 0; i < source_->GetSets()->Count(); ++i) {
    source_->GetSets()->GetItem(i)->SetStorage(storage_);
  }
}

// Layout

QLayout* TMonitorPanel::MakeBoxes() {
  deviceBox_ = new TSourceBox(tr("Serial device"), *deviceWatch_, *device_->GetMiniCom());
  deviceBox_->setObjectName(QStringLiteral("deviceBox"));
  serverBox_ = new TSourceBox(tr("Package server"), *serverWatch_, *server_->GetServerCom());
  serverBox_->setObjectName(QStringLiteral("serverBox"));
  storageBox_ = new TStorageBox(*storage_);
  auto* row = new QHBoxLayout;
  for (QWidget* box : {static_cast<QWidget*>(deviceBox_), static_cast<QWidget*>(serverBox_),
                       static_cast<QWidget*>(storageBox_)}) {
    row->addWidget(box, 1);
  }
  return row;
}

QLayout* TMonitorPanel::MakeCards() {
  const struct {
    TMonitoredSet set;
    int channel;
  } shown[] = {{kMast, 0}, {kMast, 1}, {kWeather, 0}, {kWeather, 1}, {kWeather, 2}, {kMachine, 1}};
  auto* row = new QHBoxLayout;
  for (const auto& [index, channel] : shown) {
    TChannelSet& set = *source_->GetSets()->GetItem(index);
    cards_.push_back(
        new TValueCard(*source_, set.GetLabel(), set.GetChannels()->GetItem(channel)->GetLabel()));
    row->addWidget(cards_.back(), 1);
  }
  return row;
}

QWidget* TMonitorPanel::MakeValues() {
  table_ = new TChannelTable(*source_);
  table_->setObjectName(QStringLiteral("table"));
  history_ = new THistoryView;
  connect(table_, &TChannelTable::OnSelected, this, [this] {
    const TChannelSet* set = table_->SelectedSet();
    history_->SetChannel(table_->SelectedChannel(), set ? set->GetLabel() : QString());
  });
  connect(history_, &THistoryView::OnIntervalChanged, this, &TMonitorPanel::ShowValues);
  table_->Select(source_->GetSets()->GetItem(kMast)->GetChannels()->GetItem(0));

  interval_ = new QLabel;
  auto* left = new QWidget;
  auto* column = new QVBoxLayout(left);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(interval_);
  column->addWidget(table_, 1);

  auto* both = new QSplitter(Qt::Horizontal);
  both->setChildrenCollapsible(false);
  both->addWidget(left);
  both->addWidget(history_);
  both->setStretchFactor(0, 0);
  both->setStretchFactor(1, 1);
  return both;
}

QWidget* TMonitorPanel::MakeEvents() {
  constexpr int kLines = 5;
  events_ = new QPlainTextEdit;
  events_->setObjectName(QStringLiteral("events"));
  events_->setReadOnly(true);
  events_->setMaximumBlockCount(kMostEvents);
  events_->setFixedHeight((kLines + 1) * events_->fontMetrics().lineSpacing());
  return events_;
}

void TMonitorPanel::Report(TSourceWatch& watch, const QString& name) {
  connect(&watch, &TSourceWatch::OnEvent, this,
          [this, name](const QString& text) { AddEvent(name, text); });
}

void TMonitorPanel::AddEvent(const QString& from, const QString& text) {
  events_->appendPlainText(
      QStringLiteral("%1  %2: %3")
          .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")), from, text));
}

// Display

void TMonitorPanel::Tick(QObject* sender) {
  Q_UNUSED(sender)
  deviceWatch_->Look();
  serverWatch_->Look();
  // A device that was switched off and on does not stream again by itself.
  if (deviceWatch_->GetState() == TSourceWatch::kConnected && deviceWatch_->IsWanted() &&
      deviceWatch_->SilentMs() > silenceLimitMs_) {
    deviceWatch_->Reopen();
  }
  ShowValues();
}

bool TMonitorPanel::IsLive(const TChannelSet& set) const {
  const TSourceWatch& watch = set.Index() == kMachine ? *deviceWatch_ : *serverWatch_;
  return watch.GetState() == TSourceWatch::kReceiving;
}

void TMonitorPanel::ShowValues() {
  deviceBox_->ShowState();
  serverBox_->ShowState();
  for (TValueCard* card : cards_) card->ShowStatus(card->Set() && IsLive(*card->Set()));
  interval_->setText(tr("Minimum, maximum and average: <b>%1</b>")
                         .arg(IntervalText(history_->Interval()).toLower()));
  table_->ShowValues(history_->Interval(), [this](const TChannelSet& set) { return IsLive(set); });
  history_->ShowHistory();
}
