#include "components/comms/Qlxmaster.h"

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

const QString kNoSource = QStringLiteral("ChannelSource not defined!");

}  // namespace

TQLXMasterClient::TQLXMasterClient(QWidget* parent, TDriverFactory makeDriver)
    : TQLXClient(parent), port_(this, std::move(makeDriver)) {
  SetIconImage(QStringLiteral("TQLXMasterClient"));
  chSet_.Caption = kNoSource;
  connect(&port_, &TQLXPort::OnOpen, this, &TQLXMasterClient::PortOpened);
  connect(&port_, &TQLXPort::OnClose, this, &TQLXMasterClient::PortClosed);
  port_.SetOnData([this](QObject*, const double* values, int count) { PortData(values, count); });
  connect(&miniCom_, &TClick::OnClick, this, &TQLXMasterClient::ShowConsole);
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
  if (!GetActive() && !port_.GetErrorText().isEmpty()) SetStatus(port_.GetErrorText());
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
  const QPointer<TQLXMasterClient> self(this);
  SetStatus(QStringLiteral("Connected to ") + port_.GetPortNum());
  if (self && !GetChannelSource()) SetStatus(kNoSource);
  if (self) UpdateReconnect();
  if (self && !opening_) ReportActive();
}

void TQLXMasterClient::PortClosed(QObject* sender) {
  Q_UNUSED(sender)
  const QPointer<TQLXMasterClient> self(this);
  SetStatus(QStringLiteral("Disconnected from ") + port_.GetPortNum());
  if (self) UpdateReconnect();
  if (self && !opening_) ReportActive();
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
