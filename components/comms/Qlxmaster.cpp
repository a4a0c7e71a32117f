#include "components/comms/Qlxmaster.h"

#include <cmath>
#include <span>

#include "components/channels/Channelset.h"

namespace {

/// A row, its time first, as a package of one line.
QByteArray PackageText(const QString& tag, const QString& id, std::span<const double> row) {
  const QByteArray name = tag.toUtf8();
  const QByteArray stamp = TStopWatch::MakeDateTimeStr(TDateTime(row[0])).toLatin1();
  const bool isData = name == "data";
  QByteArray text = '<' + name + " id=\"" + id.toUtf8() + '"';
  if (!isData) text += " time=\"" + stamp + '"';
  text += ">\r\n";
  if (isData) text += stamp;
  for (const double value : row.subspan(1)) text += ' ' + QByteArray::number(value, 'g', 17);
  return text + "\r\n</" + name + ">\r\n";
}

QString SizeText(std::uint64_t bytes) {
  if (bytes < 1000) return QStringLiteral("%1 bytes").arg(bytes);
  if (bytes < 1'000'000) return QStringLiteral("%1 kB").arg(bytes / 1000);
  return QStringLiteral("%1 MB").arg(static_cast<double>(bytes) / 1e6, 0, 'f', 1);
}

const QString kNoSource = QStringLiteral("ChannelSource not defined!");

}  // namespace

TQLXMasterClient::TQLXMasterClient(QWidget* parent, TDriverFactory makeDriver, TTimeSource time)
    : TQLXClient(parent), port_(this, std::move(makeDriver), std::move(time)) {
  SetIconImage(QStringLiteral("TQLXMasterClient"));
  chSet_.Caption = kNoSource;
  connect(&port_, &TQLXPort::OnOpen, this, &TQLXMasterClient::PortOpened);
  connect(&port_, &TQLXPort::OnClose, this, &TQLXMasterClient::PortClosed);
  connect(&port_, &TQLXPort::OnClockJump, this,
          [this](QObject*, double seconds) { ClockJumped(seconds); });
  port_.SetOnData([this](QObject*, const double* values, int count) { PortData(values, count); });
  connect(&miniCom_, &TClick::OnClick, this, &TQLXMasterClient::ShowConsole);
  constexpr quint32 kShowTicks = 100;  // a second
  showSkipped_.SetInterval(kShowTicks);
  showSkipped_.SetOnTimer({this, &TQLXMasterClient::ShowSkipped});
}

TQLXMasterClient::~TQLXMasterClient() { delete console_; }

/// The collection stays that of the channel source.
void TQLXMasterClient::SetChSet(const TSelectedCollItem* selection) {
  if (selection) chSet_.SetItem(selection->GetItem());
}

void TQLXMasterClient::AddWishes(TWishes& wishes) const {
  TQLXClient::AddWishes(wishes);
  AddPortWish(wishes, port_.GetPortNum());
}

void TQLXMasterClient::SourceChanged() {
  if (!GetChannelSource()) return chSet_.SetCollection({});
  chSet_.SetCollection([this] {
    const TChannelSets* sets = GetSets();
    return sets ? sets->Labels() : QStringList();
  });
}

void TQLXMasterClient::Open() {
  if (opening_) return;
  opening_ = true;
  const QPointer<TQLXMasterClient> self(this);
  port_.SetAutoRun(true);
  if (!self) return;
  opening_ = false;
  if (GetActive()) {
    ShowConnected();
  } else {
    SetStatus(port_.GetErrorText().isEmpty() ? DisconnectedText() : port_.GetErrorText());
  }
  if (self) ReportActive();
  if (self) UpdateReconnect();
}

void TQLXMasterClient::Close() {
  const QPointer<TQLXMasterClient> self(this);
  port_.SetAutoRun(false);
  if (self) port_.Close();
}

void TQLXMasterClient::PortOpened(QObject* sender) {
  Q_UNUSED(sender)
  if (opening_ || port_.IsStarting()) return;
  const QPointer<TQLXMasterClient> self(this);
  ShowConnected();
  if (self) UpdateReconnect();
  if (self) ReportActive();
}

void TQLXMasterClient::PortClosed(QObject* sender) {
  Q_UNUSED(sender)
  showSkipped_.SetEnabled(false);
  if (opening_ || port_.IsStarting()) return;
  const QPointer<TQLXMasterClient> self(this);
  SetStatus(DisconnectedText());
  if (self) UpdateReconnect();
  if (self) ReportActive();
}

QString TQLXMasterClient::DisconnectedText() const {
  return QStringLiteral("Disconnected from ") + port_.GetLineName();
}

/// With what is wrong with the line.
QString TQLXMasterClient::ConnectedText() const {
  const QString text = QStringLiteral("Connected to ") + port_.GetLineName();
  const QString skipped = GetSkippedText();
  if (skipped.isEmpty()) return text;
  return text + (IsNoisy() ? QStringLiteral(", but only noise comes: ") : QStringLiteral(", ")) +
         skipped;
}

void TQLXMasterClient::ShowConnected() {
  shownConnected_ = ConnectedText();
  showSkipped_.SetEnabled(true);
  const QPointer<TQLXMasterClient> self(this);
  SetStatus(shownConnected_);
  if (self && !GetChannelSource()) SetStatus(kNoSource);
}

void TQLXMasterClient::ShowSkipped(QObject* sender) {
  Q_UNUSED(sender)
  if (GetChannelSource() && ConnectedText() != shownConnected_) ShowConnected();
}

QString TQLXMasterClient::GetSkippedText() const {
  const TQLXDecoder::TSkipped& skipped = port_.GetSkipped();
  if (!port_.GetAutoRun() || skipped.Gaps == 0) return {};
  return QStringLiteral("%1 %2, %3 skipped")
      .arg(skipped.Gaps)
      .arg(skipped.Gaps == 1 ? QStringLiteral("gap") : QStringLiteral("gaps"))
      .arg(SizeText(skipped.Bytes));
}

/// A line of the log between two packages, which no reader of packages minds.
void TQLXMasterClient::ClockJumped(double seconds) {
  const QString text = QStringLiteral("The clock was set %1 by %2 s")
                           .arg(seconds < 0.0 ? QStringLiteral("back") : QStringLiteral("forward"))
                           .arg(std::abs(seconds), 0, 'f', 1);
  const QPointer<TQLXMasterClient> self(this);
  if (GetLogging()) Received(text.toLatin1() + "\r\n");
  if (self) SetStatus(text);
  if (self && GetActive()) ShowConnected();
}

void TQLXMasterClient::PortData(const double* values, int count) {
  TChannelSets* sets = GetSets();
  if (!sets) {
    if (GetStatus() != kNoSource) SetStatus(kNoSource);
    return;
  }
  TChannelSet* set = sets->GetItem(chSet_.GetIndex());
  if (!set || count < 1) return;
  const QPointer<TChannelSet> alive(set);
  if (GetLogging()) {
    const std::span row(values, static_cast<std::size_t>(count));
    Received(PackageText(set->GetXMLTag(), set->GetSetID(), row));
  }
  if (alive) set->SetRow(values, 0, count);
}

void TQLXMasterClient::ShowConsole() {
  if (!console_) console_ = ShowMiniCom(port_, this);
  console_->show();
  console_->raise();
  console_->activateWindow();
}
