#include "components/comms/Qlxxml.h"

#include <QFileInfo>

#include "components/comms/Qlxwebdebug.h"
#include "components/links/Outside.h"
#include "model/Ordinaryfile.h"

namespace {

QString CountsText(const TQLXPackage::TCounts& counts) {
  return QStringLiteral("%1 packages, %2 rows, %3 for no set, %4 abandoned")
      .arg(counts.Packages)
      .arg(counts.Rows)
      .arg(counts.Unmatched)
      .arg(counts.Abandoned);
}

}  // namespace

TQLXXMLClient::TQLXXMLClient(QWidget* parent)
    : TQLXClient(parent), buffer_(TQLXClientSocket::kReadBufferSize) {
  SetIconImage(QStringLiteral("TQLXXMLClient"));
  connect(&socket_, &TQLXClientSocket::OnConnecting, this, &TQLXXMLClient::SocketConnecting);
  connect(&socket_, &TQLXClientSocket::OnConnect, this, &TQLXXMLClient::SocketConnect);
  connect(&socket_, &TQLXClientSocket::OnDisconnect, this, &TQLXXMLClient::SocketDisconnect);
  connect(&socket_, &TQLXClientSocket::OnRead, this, &TQLXXMLClient::SocketRead);
  connect(&socket_, &TQLXClientSocket::OnError, this, &TQLXXMLClient::SocketError);
  connect(&serverCom_, &TClick::OnClick, this, &TQLXXMLClient::ShowConsole);
}

TQLXXMLClient::~TQLXXMLClient() {
  socket_.disconnect(this);
  SendCommand("quit");
}

void TQLXXMLClient::AddWishes(TWishes& wishes) const {
  TQLXClient::AddWishes(wishes);
  AddConnectWish(wishes, socket_.GetPeer(), socket_.GetPort());
}

QString TQLXXMLClient::GetAddressString() const {
  if (socket_.GetPeer().isEmpty()) return QStringLiteral("Address/Host=???");
  return QStringLiteral("%1 port : %2").arg(socket_.GetPeer()).arg(socket_.GetPort());
}

bool TQLXXMLClient::SendCommand(const QByteArray& command) {
  return socket_.Send(command + "\r\n\r\n");
}

/// A server that is away is reported once, and not with each try.
void TQLXXMLClient::SocketConnecting(QObject* sender) {
  Q_UNUSED(sender)
  if (failed_ && IsReconnecting()) return;
  SetStatus(QStringLiteral("Connecting to ") + GetAddressString());
}

void TQLXXMLClient::SocketConnect(QObject* sender) {
  Q_UNUSED(sender)
  failed_ = false;
  SendCommand("open");
  const QPointer<TQLXXMLClient> self(this);
  SetStatus(QStringLiteral("Connected to ") + GetAddressString());
  if (!self) return;
  UpdateReconnect();
  ReportActive();
}

/// The package that had begun will not be continued by the next connection.
void TQLXXMLClient::SocketDisconnect(QObject* sender) {
  Q_UNUSED(sender)
  SendCommand("quit");  // arrives only if it is this side that closes
  socket_.Close();
  package_.EndRecord();
  const QPointer<TQLXXMLClient> self(this);
  SetStatus(QStringLiteral("Disconnected from ") + GetAddressString());
  if (self) ReportActive();
  if (self) UpdateReconnect();
}

void TQLXXMLClient::SocketRead(QObject* sender) {
  Q_UNUSED(sender)
  const QPointer<TQLXXMLClient> self(this);
  qsizetype size = 0;
  while (self && (size = socket_.Read(buffer_.data(), std::ssize(buffer_))) > 0) {
    Received({buffer_.data(), size});
    if (!self) return;
    package_.SetChannelSets(GetSets());
    package_.Parse({buffer_.data(), static_cast<std::size_t>(size)});
  }
}

void TQLXXMLClient::SocketError(QObject* sender, const QString& text) {
  Q_UNUSED(sender)
  failed_ = !GetActive();
  SetStatus((GetActive() ? QStringLiteral("Connection to %1 failed: %2")
                         : QStringLiteral("Cannot connect to %1: %2"))
                .arg(GetAddressString(), text));
}

void TQLXXMLClient::ShowConsole() {
  if (!console_) {
    console_ = new TQLXWebDebug(
        *this, [this](const QByteArray& line) { return SendCommand(line); },
        [this] { return CountsText(package_.Counts()); }, this);
  }
  console_->show();
  console_->raise();
  console_->activateWindow();
}

TXMLFileClient::TXMLFileClient(QWidget* parent) : TQLXClient(parent) {
  SetIconImage(QStringLiteral("TXMLFileClient"));
  read_.SetOnTimer({this, &TXMLFileClient::DoReadFile});
  SetReadInterval(readInterval_);
}

void TXMLFileClient::SetBlockSize(int bytes) {
  if (bytes >= 1 && bytes <= kMaxBlockSize) blockSize_ = bytes;
}

void TXMLFileClient::SetReadInterval(int milliseconds) {
  if (milliseconds < 1) return;
  readInterval_ = milliseconds;
  read_.SetInterval(static_cast<quint32>((qint64{milliseconds} + 5) / 10));
}

void TXMLFileClient::AddWishes(TWishes& wishes) const {
  TQLXClient::AddWishes(wishes);
  AddReadWish(wishes, this, fileName_);
}

void TXMLFileClient::Open() {
  if (file_) return;
  const QString path = FormPath(this, fileName_);
  if (const QString why = ReadRefusal(this, path); !why.isEmpty()) {
    return SetStatus(QStringLiteral("Cannot read %1: %2").arg(fileName_, why));
  }
  const QFileInfo info(path);
  if (!info.exists()) {
    return SetStatus(QStringLiteral("File '%1' does not exist").arg(fileName_));
  }
  auto file = std::make_unique<TOrdinaryFile>(path);
  // A file that is being logged into would never end.
  if (!info.isFile() || (GetLogging() && !MayLogInto(FormPath(this, GetLogFile()))) ||
      !file->Open(QIODevice::ReadOnly | QIODevice::Unbuffered, nullptr)) {
    return SetStatus(QStringLiteral("Error opening file"));
  }
  file_ = std::move(file);
  read_.SetEnabled(true);
  const QPointer<TXMLFileClient> self(this);
  SetStatus(QStringLiteral("File '%1' opened for reading").arg(fileName_));
  if (self) UpdateReconnect();
  if (self) ReportActive();
}

void TXMLFileClient::Close() {
  if (!file_) return;
  read_.SetEnabled(false);
  file_.reset();
  package_.EndRecord();
  const QPointer<TXMLFileClient> self(this);
  SetStatus(QStringLiteral("File closed"));
  if (self) ReportActive();
  if (self) UpdateReconnect();
}

/// A file that got shorter meanwhile ends here, too.
void TXMLFileClient::DoReadFile(QObject* sender) {
  Q_UNUSED(sender)
  buffer_.resize(static_cast<std::size_t>(blockSize_));
  const qint64 size = file_->read(buffer_.data(), blockSize_);
  const QPointer<TXMLFileClient> self(this);
  if (size > 0) {
    Received({buffer_.data(), static_cast<qsizetype>(size)});
    if (!self || !file_) return;
    package_.SetChannelSets(GetSets());
    package_.Parse({buffer_.data(), static_cast<std::size_t>(size)});
    if (!self || !file_) return;
  }
  if (size <= 0 || file_->atEnd()) Close();
}

/// The log would begin with emptying the file that is read.
bool TXMLFileClient::MayLogInto(const QString& fileName) const {
  const QString log = QFileInfo(fileName).canonicalFilePath();
  const auto same = [&](const QString& name) {
    return !log.isEmpty() && log == QFileInfo(name).canonicalFilePath();
  };
  return !same(FormPath(this, fileName_)) && !(file_ && same(file_->fileName()));
}
