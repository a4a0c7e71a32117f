#include "components/comms/Qlxxml.h"

#include <QTcpSocket>

#include "components/comms/Qlxwebdebug.h"
#include "examples/package-server/Packageserver.h"
#include "model/Datetime.h"
#include "tests/components/comms/Rowrecorder.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

/// Lets events happen until the condition holds, or never does.
bool WaitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20'000); }

/// The sets of a mast and of a tower's wind, and what a client says.
class TClientTest : public testing::Test {
 protected:
  TClientTest() {
    recorder.Add("data", "mast", 4);
    recorder.Add("wind", "tower", 3);
  }
  void Listen(TQLXClient& client) {
    client.SetChannelSource(recorder.Source());
    QObject::connect(&client, &TQLXClient::OnStatusChanged,
                     [this, &client] { statuses << client.GetStatus(); });
    QObject::connect(&client, &TQLXClient::OnActiveChanged,
                     [this, &client] { active.push_back(client.GetActive()); });
  }

  TRowRecorder recorder;
  QStringList statuses;
  std::vector<bool> active;
};

/// A client of a server on this machine that sends only what a test lets it send.
class TQLXXMLClientTest : public TClientTest {
 protected:
  TQLXXMLClientTest() {
    server.SetRateFactor(0.0);
    EXPECT_TRUE(server.Listen(QHostAddress::LocalHost, 0));
    port = server.Port();
    MakeClient();
  }

  void MakeClient() {
    client = std::make_unique<TQLXXMLClient>();
    Listen(*client);
    client->GetSocket()->SetAddress(QStringLiteral("127.0.0.1"));
    client->GetSocket()->SetPort(port);
  }

  void Connect() {
    client->SetActive(true);
    ASSERT_TRUE(WaitFor([this] { return server.OpenCount() == 1 && client->GetActive(); }));
  }

  /// "127.0.0.1 port : " and the port.
  QString Address() const { return QStringLiteral("127.0.0.1 port : %1").arg(port); }

  /// Whether so many rows have come to the set of the wind.
  bool WaitForWind(std::size_t rows) {
    return WaitFor([this, rows] { return recorder.Rows(1).size() >= rows; });
  }

  TPackageServer server;
  int port = 0;
  std::unique_ptr<TQLXXMLClient> client;
};

TEST_F(TQLXXMLClientTest, GreetsTakesRowsAndTakesLeave) {
  for (const bool destroyed : {false, true}) {
    statuses.clear();
    active.clear();
    recorder.Clear();
    Connect();
    EXPECT_EQ(server.Commands().back(), "open");
    server.Send(MastAndWeather()[0].Package(TDateTime(45413.0), 0));
    server.Send(MastAndWeather()[1].Package(TDateTime(45413.0), 7));
    ASSERT_TRUE(WaitForWind(1));
    EXPECT_EQ(recorder.Rows(0).size(), 10u);
    EXPECT_NEAR(recorder.Rows(1)[0][0], 45413.0 + 7.0 / kSecondsPerDay, 1e-9);
    if (destroyed) {
      client.reset();
    } else {
      client->SetActive(false);
      EXPECT_FALSE(client->GetActive());
      EXPECT_EQ(statuses, QStringList({"Connecting to " + Address(), "Connected to " + Address(),
                                       "Disconnected from " + Address()}));
      EXPECT_THAT(active, ElementsAre(true, false));
    }
    ASSERT_TRUE(WaitFor([this] { return server.ClientCount() == 0; }));
    EXPECT_EQ(server.Commands().back(), "quit");
  }
  EXPECT_EQ(server.Commands().size(), 4u);
}

/// The greeting as it is on the wire.
TEST_F(TQLXXMLClientTest, EndsCommandsWithAnEmptyLine) {
  server.Stop();
  QTcpServer plain;
  ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
  client->GetSocket()->SetPort(plain.serverPort());
  client->SetActive(true);
  ASSERT_TRUE(WaitFor([&] { return plain.hasPendingConnections() && client->GetActive(); }));
  QTcpSocket* peer = plain.nextPendingConnection();
  client->SetActive(false);
  ASSERT_TRUE(WaitFor([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
  EXPECT_EQ(peer->readAll(), "open\r\n\r\nquit\r\n\r\n");
}

TEST_F(TQLXXMLClientTest, KeepsTheRowsOfWholePackagesWhereverTheConnectionEnds) {
  const QByteArray first = "<wind id=\"tower\" time=\"20240501 000000000\">\r\n1 2 3\r\n</wind>";
  const QByteArray text = first + "\r\n" + first;
  for (int cut = 0; cut <= text.size(); ++cut) {
    recorder.Clear();
    Connect();
    server.Send(text.first(cut));
    server.Stop();
    ASSERT_TRUE(WaitFor([this] { return !client->GetActive(); }));
    EXPECT_EQ(client->GetStatus(), "Disconnected from " + Address());
    const std::size_t whole = cut >= text.size() ? 2 : cut >= first.size() ? 1 : 0;
    ASSERT_EQ(recorder.Rows(1).size(), whole) << "cut at " << cut;
    ASSERT_TRUE(server.Listen(QHostAddress::LocalHost, static_cast<quint16>(port)));
  }
}

TEST_F(TQLXXMLClientTest, SaysWhyThereIsNoConnection) {
  server.Stop();
  client->SetActive(true);
  const QString refused = "Cannot connect to " + Address() + ": Connection refused";
  ASSERT_TRUE(WaitFor([this] { return statuses.size() == 2; }));
  client->SetAutoConnect(true);
  Tick(20);
  ASSERT_TRUE(WaitFor([this] { return statuses.size() == 3; }));
  EXPECT_EQ(statuses, QStringList({"Connecting to " + Address(), refused, refused}));
  client->SetAutoConnect(false);

  client->GetSocket()->SetAddress(QString());
  EXPECT_EQ(client->GetAddressString(), "Address/Host=???");
  client->SetActive(true);
  EXPECT_EQ(client->GetStatus(), "Cannot connect to Address/Host=???: no address or host is set");
  client->GetSocket()->SetHost(QStringLiteral("localhost"));
  EXPECT_EQ(client->GetAddressString(), QStringLiteral("localhost port : %1").arg(port));
  EXPECT_THAT(active, testing::IsEmpty());
}

TEST_F(TQLXXMLClientTest, GivesAnAttemptToConnectUp) {
  for (const bool connects : {true, false}) {
    client->SetActive(connects);
    EXPECT_EQ(client->GetSocket()->IsConnecting(), connects);
  }
  EXPECT_THAT(statuses,
              ElementsAre("Connecting to " + Address(), "Disconnected from " + Address()));
  EXPECT_THAT(active, testing::IsEmpty());
  Connect();
}

TEST_F(TQLXXMLClientTest, GoesOnAfterEveryFaultOfTheServer) {
  server.SetRateFactor(20.0);
  Connect();
  for (const char* fault : {"half", "tag", "name", "body", "garbage"}) {
    SCOPED_TRACE(fault);
    server.SetFault(*FaultFromName(fault));
    ASSERT_TRUE(WaitFor([&] { return !recorder.Rows(0).empty(); }));
    recorder.Clear();
    const auto rows = client->GetPackage().Counts().Rows;
    ASSERT_TRUE(WaitFor([&] { return client->GetPackage().Counts().Rows > rows + 100; }));
    for (const auto& row : recorder.Rows(0)) {
      ASSERT_GT(row[0], 45000.0) << "a row of two halves";
    }
  }
  EXPECT_TRUE(client->GetActive());
}

TEST_F(TQLXXMLClientTest, LogsEveryByteUnchanged) {
  const QString name = TestFolder() + "/log.packages";
  client->SetLogFile(name);
  client->SetLogging(true);
  Connect();
  const QByteArray text = QByteArrayLiteral(
      "<wind id=\"tower\">4 5 6</wind>\r\n\0\xff rubbish \r\r\n"
      "<wind id=\"tower\">4 5 6</wind>");
  server.Send(text);
  ASSERT_TRUE(WaitForWind(2));
  EXPECT_EQ(Contents(name), text);

  client->SetLogging(true);
  EXPECT_EQ(QFileInfo(name).size(), 0);
}

TEST_F(TQLXXMLClientTest, SaysThatALogCannotBeWritten) {
  client->SetLogging(true);  // no name: no log
  EXPECT_FALSE(client->GetLogging());
  EXPECT_THAT(statuses, testing::IsEmpty());

  const QString folder = TestFolder();
  client->SetLogFile(folder);
  client->SetLogging(true);
  EXPECT_FALSE(client->GetLogging());
  EXPECT_THAT(statuses.last().toStdString(),
              testing::StartsWith("Cannot write " + folder.toStdString() + ": "));

  const QString log = folder + "/log.txt";
  client->SetLogFile(log);
  client->SetLogging(true);
  EXPECT_TRUE(client->GetLogging());
  Connect();
  const TFullDisk disk(8);
  server.Send("<wind id=\"tower\">4 5 6</wind>");
  ASSERT_TRUE(WaitForWind(1));
  EXPECT_FALSE(client->GetLogging());
  EXPECT_THAT(client->GetStatus().toStdString(),
              testing::StartsWith("Cannot write " + log.toStdString() + ": "));
}

TEST_F(TQLXXMLClientTest, MayBeDestroyedByASubscriber) {
  const auto destroy = [this] { client.reset(); };
  const std::function<void()> ways[] = {
      [&] { QObject::connect(client.get(), &TQLXClient::OnStatusChanged, destroy); },
      [&] { QObject::connect(client.get(), &TQLXClient::OnActiveChanged, destroy); },
      [&] { QObject::connect(client.get(), &TQLXClient::OnReceived, destroy); },
      [&] { recorder.OnRow = destroy; },
  };
  for (const auto& way : ways) {
    MakeClient();
    client->disconnect();
    way();
    client->SetActive(true);
    ASSERT_TRUE(WaitFor([this] { return !client || server.OpenCount() == 1; }));
    server.Send("<wind id=\"tower\">4 5 6\r\n7 8 9\r\n</wind>");
    ASSERT_TRUE(WaitFor([this] { return !client; }));
    recorder.OnRow = nullptr;
    ASSERT_TRUE(WaitFor([this] { return server.ClientCount() == 0; }));
  }
}

TEST_F(TQLXXMLClientTest, LeavesTheEventLoopItsTurnInAFlood) {
  Connect();
  int pieces = 0;
  qsizetype largest = 0;
  QObject::connect(client.get(), &TQLXClient::OnReceived, [&](QObject*, const QByteArray& text) {
    ++pieces;
    largest = std::max(largest, text.size());
  });
  const QByteArray package = MastAndWeather()[0].Package(TDateTime(45413.0), 0);
  server.Send(package.repeated(4000));
  ASSERT_TRUE(WaitFor([this] { return recorder.Rows(0).size() == 40000; }));
  EXPECT_LE(largest, 65536);
  EXPECT_GT(pieces, 20);
}

TEST_F(TQLXXMLClientTest, ShowsWhatComesInItsConsole) {
  client->GetServerCom()->Click();
  auto* console = &Child<QDialog>(*client);
  auto* text = &Child<QPlainTextEdit>(*console);
  const QList<QPushButton*> buttons = console->findChildren<QPushButton*>();
  const auto found = std::ranges::find(buttons, "Connect", &QPushButton::text);
  ASSERT_NE(found, buttons.end());
  QPushButton& toggle = **found;
  toggle.click();
  ASSERT_TRUE(WaitFor([this] { return server.OpenCount() == 1; }));
  EXPECT_EQ(toggle.text(), "Disconnect");
  EnterText(Child<QLineEdit>(*console), "rate 0");
  ASSERT_TRUE(WaitFor([this] { return server.Commands().size() == 2; }));
  EXPECT_EQ(server.Commands()[1], "rate 0");

  server.Send("<wind id=\"tower\">\r\n4 5 6\r\n</wind>\a");
  ASSERT_TRUE(WaitForWind(1));
  Tick(10);
  EXPECT_EQ(text->toPlainText(), QStringLiteral("<wind id=\"tower\">\n4 5 6\n</wind>\ufffd"));

  for (const int length : {5, 500}) {
    const QByteArray flood = (QByteArray(length, '5') + "\r\n").repeated(1'000'000 / length);
    emit client->OnReceived(client.get(), flood);
    Tick(10);
    EXPECT_LE(text->document()->blockCount(), TQLXWebDebug::kMaxLines);
    EXPECT_LT(text->document()->characterCount(), 100'000);
  }
  EXPECT_THAT(text->toPlainText().toStdString(), testing::HasSubstr(" bytes not shown ..."));
  toggle.click();
  EXPECT_FALSE(client->GetActive());
  delete console;
  client->GetServerCom()->Click();
  EXPECT_TRUE(client->findChild<QDialog*>());
}

/// A client of a file, ticked by hand: a tick of 10 ms reads one block.
class TXMLFileClientTest : public TClientTest {
 protected:
  TXMLFileClientTest() {
    Listen(client);
    client.SetReadInterval(10);
  }
  /// Returns after how many ticks it is at the end.
  int ReadAll() {
    client.SetActive(true);
    int ticks = 0;
    for (; client.GetActive() && ticks < 1'000'000; ++ticks) Tick();
    return ticks;
  }

  TXMLFileClient client;
};

const QString kRecord = SourceFile("examples/mast.packages");

TEST_F(TXMLFileClientTest, ReadsARecordedFileInBlocksOfAnySize) {
  client.SetFileName(kRecord);
  client.SetAutoConnect(true);
  Tick(100);
  EXPECT_FALSE(client.GetActive()) << "a file is not opened by itself";
  const qint64 size = QFileInfo(kRecord).size();
  TRowRecorder::TRows mast;
  for (const int block : {16384, 7001, 997}) {
    recorder.Clear();
    statuses.clear();
    active.clear();
    client.SetBlockSize(block);
    EXPECT_EQ(ReadAll(), (size + block - 1) / block);
    // Half a minute at 100 Hz and at 1 Hz, from noon on 1 May 2024.
    EXPECT_EQ(recorder.Rows(0).size(), 3000u);
    EXPECT_EQ(recorder.Rows(1).size(), 30u);
    EXPECT_NEAR(recorder.Rows(0).back()[0], 45413.5 + 29.99 / kSecondsPerDay, 1e-9);
    if (mast.empty()) mast = recorder.Rows(0);
    EXPECT_EQ(recorder.Rows(0), mast);
    EXPECT_THAT(statuses, ElementsAre("File '" + kRecord + "' opened for reading", "File closed"));
    EXPECT_THAT(active, ElementsAre(true, false));
  }
}

TEST_F(TXMLFileClientTest, MovesAFileAsAWholeToTheLocalClockAndMayBeClosedByARow) {
  client.SetFileName(kRecord);
  client.SetUseLocalTime(true);
  for (int round = 0; round < 2; ++round) {
    recorder.Clear();
    const double before = TDateTime::Now().Days();
    ReadAll();
    const auto& rows = recorder.Rows(0);
    EXPECT_GE(rows.front()[0], before);
    EXPECT_LE(rows.front()[0], TDateTime::Now().Days());
    EXPECT_NEAR((rows.back()[0] - rows.front()[0]) * kSecondsPerDay, 29.99, 1e-5);
  }
  // A row may close it.
  recorder.Clear();
  recorder.OnRow = [this] { client.SetActive(false); };
  ReadAll();
  EXPECT_EQ(recorder.Rows(0).size() + recorder.Rows(1).size(), 1u);
}

TEST_F(TXMLFileClientTest, ReadsABlockEveryInterval) {
  client.SetFileName(
      WriteTestFile("two", "<wind id=\"tower\">1</wind><wind id=\"tower\">2</wind>"));
  for (const int bytes : {25, 0, -5, TXMLFileClient::kMaxBlockSize + 1}) client.SetBlockSize(bytes);
  for (const int interval : {100, 0, -100}) client.SetReadInterval(interval);
  client.SetActive(true);
  Tick(9);
  EXPECT_EQ(recorder.Rows(1).size(), 0u);
  Tick();
  EXPECT_EQ(recorder.Rows(1).size(), 1u);
  Tick(10);
  EXPECT_EQ(recorder.Rows(1).size(), 2u);
}

TEST_F(TXMLFileClientTest, SaysWhatIsWrongWithAFile) {
  const QString none = TestFolder() + "/none";
  for (const QString& name : {none, TestFolder(), QStringLiteral("/dev/zero")}) {
    client.SetFileName(name);
    client.SetActive(true);
    EXPECT_EQ(client.GetStatus(),
              name == none ? "File '" + none + "' does not exist" : "Error opening file");
    EXPECT_FALSE(client.GetActive());
  }
}

TEST_F(TXMLFileClientTest, EndsWithAFileThatVanishesOrGetsShorter) {
  const QByteArray text = QByteArray("<wind id=\"tower\">1</wind>").repeated(10);
  for (const bool remove : {true, false}) {
    SCOPED_TRACE(remove);
    recorder.Clear();
    const QString name = WriteTestFile("shrinks", text);
    client.SetFileName(name);
    client.SetBlockSize(50);
    client.SetActive(true);
    Tick();
    ASSERT_TRUE(remove ? QFile::remove(name) : QFile::resize(name, 10));
    Tick(10);
    EXPECT_FALSE(client.GetActive());
    EXPECT_EQ(client.GetStatus(), "File closed");
    EXPECT_GE(recorder.Rows(1).size(), 2u);
  }
}

TEST_F(TXMLFileClientTest, DoesNotLogIntoTheFileThatItReads) {
  const QByteArray text = "<wind id=\"tower\">1</wind>";
  const QString name = WriteTestFile("record", text);
  client.SetFileName(name);
  client.SetLogFile(TestFolder() + "/../" + QFileInfo(TestFolder()).fileName() + "/record");
  client.SetLogging(true);
  EXPECT_FALSE(client.GetLogging());
  EXPECT_EQ(QFileInfo(name).size(), text.size());

  client.SetLogFile(TestFolder() + "/copy");
  client.SetLogging(true);
  ReadAll();
  EXPECT_EQ(Contents(TestFolder() + "/copy"), text);

  client.SetFileName(TestFolder() + "/copy");
  client.SetActive(true);
  EXPECT_EQ(client.GetStatus(), "Error opening file");
}

}  // namespace
