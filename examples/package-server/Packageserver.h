#pragma once

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "examples/package-server/Replay.h"
#include "examples/package-server/Simulatedsets.h"

class QTcpSocket;

/// What a server can do wrong, once, when the next package is due.
enum class TServerFault {
  Cut,       ///< sends half of the package and closes the connection
  Half,      ///< sends half of the package and goes on with the next one
  LongTag,   ///< sends an opening tag of a million characters
  LongName,  ///< sends a closing tag of a million characters
  LongBody,  ///< sends ten million bytes of rows in one package
  Garbage,   ///< sends 64 KiB of any bytes
  Silence    ///< sends no package any more until "open" comes again
};

/// The fault that a word names ("cut", "half", "tag", "name", "body", "garbage", "silence").
std::optional<TServerFault> FaultFromName(const QByteArray& name);

/// Sends packages over TCP to every client that has said "open". Commands come as lines:
/// "open", "quit", "rate FACTOR", "fault NAME"; to others it answers with a line. GUI thread only.
class TPackageServer : public QObject {
  Q_OBJECT

 public:
  explicit TPackageServer(QObject* parent = nullptr);
  ~TPackageServer() override;

  /// Initially MastAndWeather().
  std::vector<TSimulatedSet> Sets;
  /// Bytes that go out together; 0 for whole packages.
  int Chunk = 0;
  /// Each connection is closed after this many bytes; negative for never.
  qint64 CutAfter = -1;
  /// Sent instead of simulated packages unless it is empty; waits while no client is open.
  TReplay Replay;

  /// Time runs this many times as fast, 0 to kMaxRateFactor, others are ignored; with 0 nothing is
  /// sent by itself. Initially 1.
  void SetRateFactor(double factor);
  static constexpr double kMaxRateFactor = 10'000.0;

  /// False if the port cannot be had, see ErrorString. Port 0 takes any.
  bool Listen(const QHostAddress& address, quint16 port);
  quint16 Port() const { return server_.serverPort(); }
  QString ErrorString() const { return server_.errorString(); }
  /// Closes all connections and the port.
  void Stop();

  int ClientCount() const { return static_cast<int>(clients_.size()); }
  /// Clients that have said "open".
  int OpenCount() const;
  /// Commands that have come, oldest first; the last hundred.
  const std::vector<QByteArray>& Commands() const { return commands_; }

  /// Takes effect with the next package.
  void SetFault(TServerFault fault) { fault_ = fault; }
  /// Sends what is due; called by a timer.
  void SendDue();
  /// Sends bytes to every open client, in chunks.
  void Send(const QByteArray& bytes);

 signals:
  /// A client has said "open".
  void Opened();
  void Closed();

 private:
  struct TClient {
    QTcpSocket* socket;  ///< a child of the server
    QByteArray command;  ///< line that has not ended
    bool open = false;
    qint64 sent = 0;
  };

  void Accept();
  void ReadCommands(QTcpSocket* socket);
  void Execute(QTcpSocket* socket, const QByteArray& command);
  void Forget(QTcpSocket* socket);
  TClient* Find(const QTcpSocket* socket);
  void SendTo(TClient& client, const QByteArray& bytes);
  void SendPackage(const QByteArray& package);
  void SendFault(TServerFault fault, const QByteArray& package);
  void SendSimulated(double seconds);
  void SendReplay(double seconds);
  void CutAll();

  QTcpServer server_;
  std::vector<std::unique_ptr<TClient>> clients_;
  std::vector<QByteArray> commands_;
  std::optional<TServerFault> fault_;
  double rateFactor_ = 1.0;
  QTimer timer_;
  QElapsedTimer clock_;
  double seconds_ = 0.0;  ///< of simulated time
  TDateTime start_;
  std::vector<std::int64_t> next_;  ///< row of each set that is due next
};
