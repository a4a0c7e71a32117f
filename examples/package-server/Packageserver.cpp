#include "examples/package-server/Packageserver.h"

#include <QTcpSocket>
#include <algorithm>
#include <random>
#include <utility>

namespace {

constexpr qint64 kMaxWaiting = 4 << 20;  ///< bytes for a client that does not read
constexpr qsizetype kMaxCommand = 1024;
constexpr std::size_t kMaxCommands = 100;
constexpr int kManyCharacters = 1'000'000;

QByteArray Rubbish() {
  static std::mt19937 random(1);
  QByteArray bytes(65536, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);
  return bytes;
}

QByteArray LongBody() {
  const QByteArray row = "20240501 120000000 1.0 2.0 3.0 4.0\r\n";
  return "<data id=\"mast\">\r\n" + row.repeated(10'000'000 / row.size()) + "</data>\r\n";
}

}  // namespace

std::optional<TServerFault> FaultFromName(const QByteArray& name) {
  static const std::pair<const char*, TServerFault> names[] = {
      {"cut", TServerFault::Cut},         {"half", TServerFault::Half},
      {"tag", TServerFault::LongTag},     {"name", TServerFault::LongName},
      {"body", TServerFault::LongBody},   {"garbage", TServerFault::Garbage},
      {"silence", TServerFault::Silence},
  };
  for (const auto& [word, fault] : names) {
    if (name == word) return fault;
  }
  return {};
}

TPackageServer::TPackageServer(QObject* parent) : QObject(parent), Sets(MastAndWeather()) {
  connect(&server_, &QTcpServer::newConnection, this, &TPackageServer::Accept);
  connect(&timer_, &QTimer::timeout, this, &TPackageServer::SendDue);
  timer_.setInterval(20);
}

TPackageServer::~TPackageServer() { Stop(); }

bool TPackageServer::Listen(const QHostAddress& address, quint16 port) {
  if (!server_.listen(address, port)) return false;
  next_.assign(Sets.size(), 0);
  start_ = TDateTime::Now();
  seconds_ = 0.0;
  clock_.start();
  timer_.start();
  return true;
}

void TPackageServer::SetRateFactor(double factor) {
  if (factor >= 0.0 && factor <= kMaxRateFactor) rateFactor_ = factor;
}

void TPackageServer::Stop() {
  timer_.stop();
  server_.close();
  CutAll();
}

void TPackageServer::CutAll() {
  while (!clients_.empty()) {
    QTcpSocket* socket = clients_.back()->socket;
    socket->disconnect(this);
    Forget(socket);
    socket->flush();
    socket->close();
  }
}

int TPackageServer::OpenCount() const {
  return static_cast<int>(
      std::ranges::count_if(clients_, [](const auto& client) { return client->open; }));
}

void TPackageServer::Accept() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    clients_.push_back(std::make_unique<TClient>(TClient{socket, {}}));
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { ReadCommands(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] { Forget(socket); });
  }
}

TPackageServer::TClient* TPackageServer::Find(const QTcpSocket* socket) {
  const auto found = std::ranges::find(clients_, socket, [](const auto& c) { return c->socket; });
  return found == clients_.end() ? nullptr : found->get();
}

void TPackageServer::Forget(QTcpSocket* socket) {
  if (!Find(socket)) return;
  std::erase_if(clients_, [&](const auto& client) { return client->socket == socket; });
  socket->deleteLater();
  emit Closed();
}

void TPackageServer::ReadCommands(QTcpSocket* socket) {
  while (TClient* client = Find(socket)) {
    client->command += socket->read(kMaxCommand);
    const qsizetype end = client->command.indexOf('\n');
    if (end < 0) {
      if (client->command.size() > kMaxCommand) socket->abort();
      return;
    }
    const QByteArray line = client->command.first(end).trimmed();
    client->command.remove(0, end + 1);
    if (!line.isEmpty()) Execute(socket, line);
  }
}

void TPackageServer::Execute(QTcpSocket* socket, const QByteArray& command) {
  commands_.push_back(command);
  if (commands_.size() > kMaxCommands) commands_.erase(commands_.begin());
  const QByteArray word = command.split(' ').value(0);
  const QByteArray argument = command.mid(word.size()).trimmed();
  if (word == "open") {
    Find(socket)->open = true;
    emit Opened();
  } else if (word == "quit") {
    socket->disconnectFromHost();
  } else if (word == "rate") {
    SetRateFactor(argument.toDouble());
  } else if (const auto fault = FaultFromName(argument); word == "fault" && fault) {
    SetFault(*fault);
  } else {
    socket->write(
        "Commands: open, quit, rate FACTOR, fault cut|half|tag|name|body|garbage|silence\r\n");
  }
}

void TPackageServer::Send(const QByteArray& bytes) {
  for (std::size_t i = clients_.size(); i-- > 0;) {
    if (i < clients_.size() && clients_[i]->open) SendTo(*clients_[i], bytes);
  }
}

/// A client that does not read loses packages, not the server its memory. A client that has gone
/// is noticed while bytes are flushed, and forgotten there.
void TPackageServer::SendTo(TClient& client, const QByteArray& bytes) {
  QTcpSocket* const socket = client.socket;
  if (socket->bytesToWrite() > kMaxWaiting) return;
  qsizetype count = bytes.size();
  if (CutAfter >= 0) count = std::min<qsizetype>(count, CutAfter - client.sent);
  client.sent += count;
  const bool last = CutAfter >= 0 && client.sent >= CutAfter;
  const qsizetype chunk = Chunk > 0 ? Chunk : std::max<qsizetype>(count, 1);
  for (qsizetype i = 0; i < count && Find(socket); i += chunk) {
    socket->write(bytes.constData() + i, std::min(chunk, count - i));
    socket->flush();
  }
  if (last && Find(socket)) socket->disconnectFromHost();
}

void TPackageServer::SendPackage(const QByteArray& package) {
  if (fault_) {
    SendFault(*std::exchange(fault_, {}), package);
  } else {
    Send(package);
  }
}

void TPackageServer::SendFault(TServerFault fault, const QByteArray& package) {
  switch (fault) {
    case TServerFault::Cut:
      Send(package.first(package.size() / 2));
      CutAll();
      break;
    case TServerFault::Half:
      Send(package.first(package.size() / 2));
      break;
    case TServerFault::LongTag:
      Send("<" + QByteArray(kManyCharacters, 't') + ">\r\n");
      break;
    case TServerFault::LongName:
      Send("<data>\r\n1 2 3\r\n</" + QByteArray(kManyCharacters, 'n') + ">\r\n");
      break;
    case TServerFault::LongBody:
      Send(LongBody());
      break;
    case TServerFault::Garbage:
      Send(Rubbish());
      break;
    case TServerFault::Silence:
      for (const auto& client : clients_) client->open = false;
      break;
  }
}

void TPackageServer::SendDue() {
  constexpr double kLongest = 1.0;  // a machine that slept does not send all that it missed
  const double seconds = std::min(static_cast<double>(clock_.restart()) / 1000.0, kLongest);
  if (Replay.IsEmpty()) {
    SendSimulated(seconds * rateFactor_);
  } else {
    SendReplay(seconds * rateFactor_);
  }
}

void TPackageServer::SendSimulated(double seconds) {
  seconds_ += seconds;
  for (std::size_t i = 0; i < Sets.size(); ++i) {
    const TSimulatedSet& set = Sets[i];
    const auto due = static_cast<std::int64_t>(seconds_ * set.RateHz);
    for (; next_[i] + set.RowsPerPackage <= due; next_[i] += set.RowsPerPackage) {
      if (OpenCount() > 0) SendPackage(set.Package(start_, next_[i]));
    }
  }
}

void TPackageServer::SendReplay(double seconds) {
  if (seconds <= 0.0 || OpenCount() == 0) return;
  Replay.Advance(seconds);
  for (QByteArray piece; !(piece = Replay.Take()).isEmpty();) SendPackage(piece);
}
