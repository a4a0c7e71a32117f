#include "components/comms/Qlxserver.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

namespace {

/// A peer on this machine to which the server connects.
struct TPeer {
  TPeer() { EXPECT_TRUE(listener.listen(QHostAddress::LocalHost)); }

  TQLXServer::TOpenDevice Device() {
    return [port = listener.serverPort()](QString& error) -> std::unique_ptr<QIODevice> {
      auto socket = std::make_unique<QTcpSocket>();
      socket->connectToHost(QHostAddress::LocalHost, port);
      if (!socket->waitForConnected(5000)) error = socket->errorString();
      return socket;
    };
  }
  QTcpSocket& Accept() {
    EXPECT_TRUE(listener.waitForNewConnection(5000));
    return *listener.nextPendingConnection();
  }

  QTcpServer listener;
};

TEST(TQLXServer, HandsEveryByteToTheGuiThreadInOrder) {
  TPeer peer;
  TQLXServer server;
  QByteArray received;
  qsizetype longest = 0;
  server.Start(peer.Device(), [&](QByteArrayView bytes) {
    EXPECT_EQ(QThread::currentThread(), qApp->thread());
    longest = std::max(longest, bytes.size());
    received += bytes;
  });
  QTcpSocket& socket = peer.Accept();
  QByteArray sent;
  for (int i = 0; i < 200'000; ++i) sent += QByteArray::number(i) + ' ';
  socket.write(sent);
  EXPECT_TRUE(QTest::qWaitFor([&] { return received.size() == sent.size(); }));
  EXPECT_TRUE(received == sent);
  EXPECT_LE(longest, 16384);

  QSignalSpy ended(&server, &TQLXServer::OnEnd);
  EXPECT_TRUE(server.IsRunning());
  socket.disconnectFromHost();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !ended.isEmpty(); }));
  EXPECT_FALSE(server.IsRunning());
  EXPECT_EQ(ended.at(0).at(1), "The device has ended: The remote host closed the connection");
}

TEST(TQLXServer, SaysWhyADeviceCannotBeOpened) {
  const struct {
    TQLXServer::TOpenDevice open;
    const char* reason;
  } cases[] = {
      {[](QString&) { return nullptr; }, "The device cannot be opened"},
      {[](QString& error) { return error = "No such line", std::make_unique<QBuffer>(); },
       "No such line"},
      {[](QString&) -> std::unique_ptr<QIODevice> { throw std::runtime_error("broken"); },
       "broken"},
  };
  for (const auto& c : cases) {
    TQLXServer server;
    QSignalSpy ended(&server, &TQLXServer::OnEnd);
    server.Start(c.open, {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ended.isEmpty(); }));
    EXPECT_EQ(ended.at(0).at(1), c.reason);
  }
}

TEST(TQLXServer, MayBeStoppedRestartedAndDestroyedByItsEvents) {
  TPeer peer;
  const auto endless = [](QString&) {
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(QByteArray(1'000'000, 'x'));
    buffer->open(QIODevice::ReadOnly);
    return buffer;
  };
  int chunks = 0;
  auto server = std::make_unique<TQLXServer>();
  server->Start(endless, [&](QByteArrayView) {
    ++chunks;
    server->Stop();
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return chunks > 0; }));
  EXPECT_FALSE(server->IsRunning());
  qApp->processEvents();
  EXPECT_EQ(chunks, 1);

  bool restarted = false;
  server->Start(endless, [&](QByteArrayView) {
    server->Start(endless, [&](QByteArrayView) {
      restarted = true;
      server.reset();
    });
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return restarted; }));
  EXPECT_FALSE(server);

  // A worker that waits for the GUI thread holds nothing up when the server goes.
  server = std::make_unique<TQLXServer>();
  server->Start(endless, {});
  QThread::msleep(1);
  server.reset();
}

}  // namespace
