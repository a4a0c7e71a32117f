#include "components/comms/Qlxclient.h"

#include <QFile>
#include <QPointer>

#include "components/channels/Channelset.h"
#include "components/links/Outside.h"
#include "model/Filesync.h"
#include "model/Ordinaryfile.h"

TQLXClient::TQLXClient(QWidget* parent) : TIconControl(parent), source_(this) {
  constexpr quint32 kReconnectTicks = 20;  // 200 ms
  reconnect_.SetInterval(kReconnectTicks);
  reconnect_.SetOnTimer({this, &TQLXClient::Reconnect});
  connect(&source_, &TKorvalCompList::OnChange, this, [this] { SourceChanged(); });
}

TQLXClient::~TQLXClient() = default;

void TQLXClient::SetAutoConnect(bool autoConnect) {
  autoConnect_ = autoConnect;
  UpdateReconnect();
}

void TQLXClient::UpdateReconnect() {
  if (!IsWaiting()) reconnect_.SetEnabled(autoConnect_ && !GetActive());
}

void TQLXClient::Reconnect(QObject* sender) {
  Q_UNUSED(sender)
  if (GetActive() || !Reconnects()) return;
  const QPointer<TQLXClient> self(this);
  reconnecting_ = true;
  SetActive(true);
  if (self) reconnecting_ = false;
}

void TQLXClient::SetActive(bool active) {
  if (IsWaiting()) {
    activeWhenLoaded_ = active;
  } else if (!active) {
    Close();
  } else if (!GetActive()) {
    Open();
  }
}

void TQLXClient::ReportActive() {
  if (GetActive() == reportedActive_) return;
  reportedActive_ = !reportedActive_;
  emit OnActiveChanged(this);
}

void TQLXClient::SetStatus(const QString& text) {
  status_ = text;
  const QPointer<TQLXClient> self(this);
  emit OnStatusText(status_);
  if (self) emit OnStatusChanged(this);
}

TChannelSource* TQLXClient::GetChannelSource() const { return source_.Get(); }

void TQLXClient::SetChannelSource(TChannelSource* source) {
  if (source != GetChannelSource()) source_.Set(source);
}

TChannelSets* TQLXClient::GetSets() const {
  TChannelSource* source = GetChannelSource();
  return source ? source->GetSets() : nullptr;
}

void TQLXClient::SetLogging(bool logging) {
  if (IsWaiting()) {
    loggingWhenLoaded_ = logging;
    return;
  }
  log_.reset();
  if (logging) OpenLog(QIODevice::Truncate);
}

void TQLXClient::OpenLog(QIODevice::OpenMode mode) {
  if (logFile_.isEmpty()) return;
  const QString path = FormPath(this, logFile_);
  TWishes wishes;
  AddWriteWish(wishes, this, logFile_);
  if (const QString why = WriteRefusal(this, wishes, path); !why.isEmpty()) return CannotLog(why);
  if (!MayLogInto(path)) return CannotLog(QStringLiteral("it is being read"));
  auto log = std::make_unique<TOrdinaryFile>(path);
  // Without a buffer nothing is lost in a crash, and a full disk shows at once.
  QString why;
  if (!log->Open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode, &why)) {
    return CannotLog(why);
  }
  log_ = std::move(log);
}

bool TQLXClient::MayLogInto(const QString& fileName) const {
  Q_UNUSED(fileName)
  return true;
}

void TQLXClient::CannotLog(const QString& reason) {
  SetStatus(QStringLiteral("Cannot write %1: %2").arg(logFile_, reason));
}

void TQLXClient::Log(QByteArrayView text) {
  if (!log_) return;
  if (log_->write(text.data(), text.size()) == text.size()) {
    TFileSync::Instance().Grown(log_->fileName());
    return;
  }
  const QString reason = log_->errorString();
  log_.reset();
  CannotLog(reason);
}

void TQLXClient::Received(QByteArrayView text) {
  const QPointer<TQLXClient> self(this);
  Log(text);
  if (self) emit OnReceived(this, QByteArray::fromRawData(text.data(), text.size()));
}

void TQLXClient::Loaded() {
  source_.Loaded();
  TIconControl::Loaded();
  Started();
}

void TQLXClient::AddWishes(TWishes& wishes) const { AddWriteWish(wishes, this, logFile_); }

void TQLXClient::Started() {
  if (IsWaiting()) return;
  const QPointer<TQLXClient> self(this);
  if (std::exchange(loggingWhenLoaded_, false)) OpenLog(QIODevice::Append);
  if (self && std::exchange(activeWhenLoaded_, false)) SetActive(true);
  if (self) UpdateReconnect();
}
