#include "components/comms/Qlxsocket.h"

#include <QNetworkProxy>
#include <QTcpSocket>

#include "components/links/Outside.h"

TQLXClientSocket::TQLXClientSocket(QObject* owner)
    : TPersistent(owner), socket_(std::make_unique<QTcpSocket>()) {
  socket_->setProxy(QNetworkProxy::NoProxy);
  socket_->setReadBufferSize(kReadBufferSize);
  const auto on = [this](auto signal, auto handler) {
    connect(socket_.get(), signal, this, [this, handler] { InEvent(handler); });
  };
  on(&QTcpSocket::connected, [this] { Connected(); });
  on(&QTcpSocket::disconnected, [this] { Disconnected(); });
  on(&QTcpSocket::errorOccurred, [this] { Failed(); });
  on(&QTcpSocket::readyRead, [this] { emit OnRead(this); });
}

TQLXClientSocket::~TQLXClientSocket() {
  socket_->disconnect(this);
  socket_->flush();
  socket_->close();
  // In one of its events the toolkit's socket is still on the stack.
  if (inEvent_ > 0) socket_.release()->deleteLater();
}

template <class THandler>
void TQLXClientSocket::InEvent(THandler handler) {
  const QPointer<TQLXClientSocket> self(this);
  ++inEvent_;
  handler();
  if (self) --inEvent_;
}

void TQLXClientSocket::SetPort(int port) {
  if (port >= 0 && port <= 65535) Store(port_, port);
}

bool TQLXClientSocket::IsConnecting() const {
  const auto state = socket_->state();
  return state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState;
}

void TQLXClientSocket::Open() {
  if (connected_ || IsConnecting()) return;
  if (GetPeer().isEmpty()) {
    emit OnError(this, QStringLiteral("no address or host is set"));
    return;
  }
  if (port_ == 0) {
    emit OnError(this, QStringLiteral("no port is set"));
    return;
  }
  if (const QString why = RestRefusal(this); !why.isEmpty()) {
    emit OnError(this, why);
    return;
  }
  const QPointer<TQLXClientSocket> self(this);
  emit OnConnecting(this);
  if (!self || connected_ || IsConnecting()) return;
  socket_->abort();  // an earlier connection may still be sending its last bytes
  socket_->connectToHost(GetPeer(), static_cast<quint16>(port_));
}

void TQLXClientSocket::Close() {
  if (IsConnecting()) {
    socket_->abort();
    emit OnDisconnect(this);
    return;
  }
  if (connected_ && !announced_) {
    announced_ = true;
    const QPointer<TQLXClientSocket> self(this);
    emit OnDisconnect(this);
    if (!self) return;
  }
  if (!connected_) return;
  connected_ = announced_ = false;
  socket_->flush();
  socket_->disconnectFromHost();
}

bool TQLXClientSocket::Send(QByteArrayView bytes) {
  return socket_->state() == QAbstractSocket::ConnectedState &&
         socket_->write(bytes.data(), bytes.size()) == bytes.size();
}

qsizetype TQLXClientSocket::Read(char* bytes, qsizetype size) {
  return connected_ ? std::max<qint64>(socket_->read(bytes, size), 0) : 0;
}

void TQLXClientSocket::Connected() {
  connected_ = true;
  announced_ = false;
  // A peer that is gone without a word is noticed in the end.
  socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
  emit OnConnect(this);
}

void TQLXClientSocket::Disconnected() {
  if (!connected_) return;
  const QPointer<TQLXClientSocket> self(this);
  if (socket_->bytesAvailable() > 0) emit OnRead(this);
  if (!self || !connected_) return;
  connected_ = false;
  emit OnDisconnect(this);
}

void TQLXClientSocket::Failed() {
  if (socket_->error() == QAbstractSocket::RemoteHostClosedError) return;  // Disconnected says it
  emit OnError(this, socket_->errorString());
}
