#pragma once

#include <QFile>
#include <QPointer>
#include <vector>

#include "components/comms/Qlxclient.h"
#include "components/comms/Qlxpackage.h"
#include "components/comms/Qlxsocket.h"

class QDialog;

/// Takes packages from a server over TCP. It greets the server with "open" and leaves with "quit",
/// each followed by an empty line.
class TQLXXMLClient : public TQLXClient {
  Q_OBJECT
  Q_PROPERTY(TQLXClientSocket* Socket READ GetSocket WRITE SetSocket)
  Q_PROPERTY(TClick* ServerCom READ GetServerCom WRITE SetServerCom)

 public:
  explicit TQLXXMLClient(QWidget* parent = nullptr);
  ~TQLXXMLClient() override;

  TQLXClientSocket* GetSocket() { return &socket_; }
  void SetSocket(const TQLXClientSocket* socket) { socket_.Assign(socket); }
  /// Opens the console that shows what the server sends.
  TClick* GetServerCom() { return &serverCom_; }
  void SetServerCom(const TClick* click) { serverCom_.Assign(click); }

  void AddWishes(TWishes& wishes) const override;

  /// True while the connection stands.
  bool GetActive() const override { return socket_.GetConnected(); }

  /// "127.0.0.1 port : 4001", or "Address/Host=???" if neither is set.
  QString GetAddressString() const;
  const TQLXPackage& GetPackage() const { return package_; }

  /// Sends a command, followed by an empty line; false without a connection.
  bool SendCommand(const QByteArray& command);

 protected:
  void Open() override { socket_.Open(); }
  void Close() override { socket_.Close(); }

 private:
  void SocketConnecting(QObject* sender);
  void SocketConnect(QObject* sender);
  void SocketDisconnect(QObject* sender);
  void SocketRead(QObject* sender);
  void SocketError(QObject* sender, const QString& text);
  void ShowConsole();

  TQLXClientSocket socket_{this};
  TClick serverCom_{this};
  TQLXPackage package_;
  std::vector<char> buffer_;
  bool failed_ = false;        ///< the last attempt to connect has
  QPointer<QDialog> console_;  ///< a child of this
};

/// Takes packages from a recorded file, a block at a time.
class TXMLFileClient : public TQLXClient {
  Q_OBJECT
  Q_PROPERTY(QString FileName READ GetFileName WRITE SetFileName)
  Q_PROPERTY(int BlockSize READ GetBlockSize WRITE SetBlockSize)
  Q_PROPERTY(int ReadInterval READ GetReadInterval WRITE SetReadInterval)
  Q_PROPERTY(bool UseLocalTime READ GetUseLocalTime WRITE SetUseLocalTime)

 public:
  static constexpr int kMaxBlockSize = 16 << 20;

  explicit TXMLFileClient(QWidget* parent = nullptr);

  /// A new name counts from the next Open on.
  const QString& GetFileName() const { return fileName_; }
  void SetFileName(const QString& fileName) { fileName_ = fileName; }
  /// Bytes that are read at once, 1 to kMaxBlockSize; others are ignored.
  int GetBlockSize() const { return blockSize_; }
  void SetBlockSize(int bytes);
  /// Milliseconds from block to block, kept to the 10 ms of the timer service; below 1 ignored.
  int GetReadInterval() const { return readInterval_; }
  void SetReadInterval(int milliseconds);
  /// Moves the rows to the clock of this machine, from opening the file to its end by the same
  /// time.
  bool GetUseLocalTime() const { return package_.UseLocalTime; }
  void SetUseLocalTime(bool local) { package_.UseLocalTime = local; }

  void AddWishes(TWishes& wishes) const override;

  /// True while the file is open.
  bool GetActive() const override { return file_ != nullptr; }

  const TQLXPackage& GetPackage() const { return package_; }

 public slots:
  /// Opens the file and begins to read. Anything but a plain file, such as a folder or a pipe, is
  /// refused.
  void Open() override;
  /// Also called at the end of the file.
  void Close() override;

 protected:
  bool Reconnects() const override { return false; }
  bool MayLogInto(const QString& fileName) const override;

 private:
  void DoReadFile(QObject* sender);

  QString fileName_;
  int blockSize_ = 16384;
  int readInterval_ = 100;
  std::unique_ptr<QFile> file_;  ///< null: closed
  TQLXPackage package_;
  std::vector<char> buffer_;
  TTimerClient read_;
};
