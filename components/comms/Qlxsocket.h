#pragma once

#include <QByteArrayView>
#include <memory>

#include "components/links/Propclasses.h"

class QTcpSocket;

/// A TCP connection to a server: where it stands, and what happens on it. A member of its owner.
/// Nothing here waits. GUI thread only.
///
/// An event may destroy the socket with its owner.
class TQLXClientSocket : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QString Address READ GetAddress WRITE SetAddress)
  Q_PROPERTY(QString Host READ GetHost WRITE SetHost)
  Q_PROPERTY(int Port READ GetPort WRITE SetPort)

 public:
  /// Bytes that may wait here unread; the network holds the rest back. OnRead fires once per turn
  /// of the event loop, so this is also what a flood of text brings at once.
  static constexpr int kReadBufferSize = 65536;

  explicit TQLXClientSocket(QObject* owner = nullptr);
  ~TQLXClientSocket() override;

  /// The server by number ("192.168.1.7") and by name; the number goes first if both are set.
  /// Changes count from the next Open on.
  const QString& GetAddress() const { return address_; }
  void SetAddress(const QString& address) { Store(address_, address); }
  const QString& GetHost() const { return host_; }
  void SetHost(const QString& host) { Store(host_, host); }
  /// 0 for none to 65535; others are ignored.
  int GetPort() const { return port_; }
  void SetPort(int port);
  /// Address or host, empty for neither.
  const QString& GetPeer() const { return address_.isEmpty() ? host_ : address_; }

  /// A connection stands; still so in an OnDisconnect that Close fires.
  bool GetConnected() const { return connected_; }
  /// A connection is being made.
  bool IsConnecting() const;

  /// Begins to connect; does nothing while connected or connecting.
  void Open();
  /// Ends the connection; what was sent before still goes out. Fires OnDisconnect first, whose
  /// handler may send a farewell and may call Close to end the connection there. After an attempt
  /// to connect that is given up it fires, too.
  void Close();

  /// Takes the bytes to be sent; false without a connection.
  bool Send(QByteArrayView bytes);
  /// Takes at most `size` of the bytes that wait. Returns how many.
  qsizetype Read(char* bytes, qsizetype size);

 signals:
  void OnConnecting(QObject* sender);
  void OnConnect(QObject* sender);
  /// Ended by Close, or closed by the other side after all that it sent has been given to OnRead.
  void OnDisconnect(QObject* sender);
  /// Bytes wait.
  void OnRead(QObject* sender);
  /// `text` says why there is no connection. OnDisconnect follows if there was one.
  void OnError(QObject* sender, const QString& text);

 private:
  void Connected();
  void Disconnected();
  void Failed();
  template <class THandler>
  void InEvent(THandler handler);

  QString address_;
  QString host_;
  int port_ = 0;
  bool connected_ = false;
  bool announced_ = false;  ///< Close has fired OnDisconnect
  int inEvent_ = 0;         ///< handlers of the toolkit's signals on the stack
  std::unique_ptr<QTcpSocket> socket_;
};
