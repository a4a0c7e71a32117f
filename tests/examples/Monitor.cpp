// The monitoring example with the real programs at the other ends of its lines.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

#include "components/channels/Statsfile.h"
#include "components/graphing/Graph.h"
#include "examples/monitor/Channeltable.h"
#include "examples/monitor/Fittinglabel.h"
#include "examples/monitor/Historyview.h"
#include "examples/monitor/Monitoredsets.h"
#include "examples/monitor/Monitorpanel.h"
#include "examples/monitor/Valuecard.h"
#include "model/Datetime.h"
#include "tests/support/Testsupport.h"

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

/// Has time pass until something is so; false if that takes too long.
template <class TDone>
[[nodiscard]] bool PassUntil(TDone done) {
  return QTest::qWaitFor(done, 60'000);
}

// The command line

TEST(MonitorOptions, AServerIsAHostWithAPortOrWithout) {
  const struct {
    const char* text;
    const char* host;
    int port;
  } cases[] = {{"10.0.0.7:5000", "10.0.0.7", 5000},
               {"mast.local", "mast.local", 4001},
               {"[::1]:65535", "::1", 65535},
               {"[fe80::1]", "fe80::1", 4001}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    TMonitorOptions options;
    EXPECT_EQ(TakeServer(c.text, options), "");
    EXPECT_EQ(options.Host, c.host);
    EXPECT_EQ(options.Port, c.port);
  }
}

TEST(MonitorOptions, SayWhatIsWrongAndChangeNothing) {
  const QString file = WriteTestFile("file", "text");
  const QString form = ": a server is given as host:port, such as 127.0.0.1:4001";
  const QString port = ": the port is a number from 1 to 65535";
  const struct {
    QString (*take)(const QString&, TMonitorOptions&);
    QString text;
    QString message;
  } cases[] = {
      {TakeServer, "", "--server " + form},
      {TakeServer, "::1", "--server ::1" + form},
      {TakeServer, "host:", "--server host:" + form},
      {TakeServer, "a host:1", "--server a host:1" + form},
      {TakeServer, "host:0", "--server host:0" + port},
      {TakeServer, "host:65536", "--server host:65536" + port},
      {TakeServer, "host:99999999999", "--server host:99999999999" + port},
      {TakeDevice, "", "--device needs a port, such as COM1 or /dev/ttyUSB0"},
      {TakeDevice, file, "--device " + file + ": that is a file, not a serial port"},
      {TakeDevice, "/", "--device /: that is a folder, not a serial port"},
      {TakeFolder, file, "--store " + file + ": that is a file, not a folder"},
  };
  for (const auto& c : cases) {
    TMonitorOptions options;
    EXPECT_EQ(c.take(c.text, options), c.message);
    EXPECT_EQ(options.Device, "COM1");
    EXPECT_EQ(options.Host, "127.0.0.1");
    EXPECT_EQ(options.Port, 4001);
    EXPECT_EQ(options.Folder, "");
  }
}

TEST(MonitorProgram, EndsWithASentenceOnABadCommandLine) {
  const struct {
    QStringList arguments;
    const char* message;
  } cases[] = {
      {{"--server", "host:0"}, "monitor: --server host:0: the port is a number from 1 to 65535\n"},
      {{"--rate", "1e9"}, "--rate takes a number from 40 to 800, not 1e9\n"},
      {{"--ratio", "9"}, "--ratio takes a number from 1 to 4, not 9\n"},
      {{"--after=-1"}, "--after takes a number from 0 to 86400, not -1\n"},
      {{"file"}, "monitor: unexpected argument file; see --help\n"},
  };
  for (const auto& c : cases) {
    QProcess monitor;
    monitor.start(BuiltFile("examples/monitor/monitor"), c.arguments);
    ASSERT_TRUE(monitor.waitForFinished());
    EXPECT_EQ(monitor.exitCode(), 1);
    EXPECT_THAT(monitor.readAllStandardError().toStdString(), HasSubstr(c.message));
  }
}

// What the sets say of their values

TEST(MonitoredSets, SumUpWhatHistoriesHoldAndWhatIsUnderWay) {
  TChannelSource source;
  AddMonitoredSets(source, 100.0);
  TChannelSet& weather = *source.GetSets()->GetItem(kWeather);
  TChannel& speed = *weather.GetChannels()->GetItem(0);
  constexpr int kCount = 1000;
  for (int i = 0; i <= kCount; ++i) {
    const double row[] = {45413.5 + i / kSecondsPerDay, static_cast<double>(i)};
    weather.SetRow(row, 0, 2);
  }
  // A block of one row has no length before the second row, so that the first one does not count.
  const TStatSet hour = Summary(*speed.GetStats(), si1_Minute);
  EXPECT_EQ(hour.Count, kCount);
  EXPECT_EQ(hour.Min, 1.0);
  EXPECT_EQ(hour.Max, 1000.0);
  EXPECT_DOUBLE_EQ(hour.Mean, 500.5);
  // The present second, and the 60 that the history of seconds keeps.
  const TStatSet minute = Summary(*speed.GetStats(), si1_Second);
  EXPECT_EQ(minute.Max, 1000.0);
  EXPECT_GE(minute.Count, 60.0);
  EXPECT_LE(minute.Count, 122.0);
  EXPECT_EQ(minute.Min, 1001.0 - minute.Count) << "the newest ones, all of them";
  EXPECT_EQ(LatestValue(weather, speed), 1000.0);
}

TEST(MonitoredSets, ShowValuesWithTheirUnitAndNeverEndlessly) {
  TChannelSource source;
  AddMonitoredSets(source, 100.0);
  TChannelSet& weather = *source.GetSets()->GetItem(kWeather);
  TChannel& speed = *weather.GetChannels()->GetItem(0);
  EXPECT_EQ(ValueText(speed, 12.345), "12.3 m/s");
  EXPECT_EQ(ValueText(*weather.GetChannels()->GetItem(1), 231.4), QStringLiteral("231 \u00b0"));
  EXPECT_EQ(ValueText(speed, -1e300), "-1e+300 m/s");
  EXPECT_EQ(LimitsText(speed), "Alarm above 11.5 m/s, warning from 10.0 m/s on");
}

TEST(ChannelTable, HidesInputsThatTheDeviceDoesNotHave) {
  TChannelSource source;
  AddMonitoredSets(source, 100.0);
  TChannelTable table(source);
  const auto shown = [&table] {
    int rows = 0;
    for (int row = 0; row < table.rowCount(); ++row) rows += !table.isRowHidden(row);
    return rows;
  };
  EXPECT_EQ(shown(), 4 + 3 + 16) << "as long as nothing is known of the devices";
  const double row[] = {45413.5, 0.0, 1.0, 2.0};
  source.GetSets()->GetItem(kMachine)->SetRow(row, 0, 4);
  table.ShowValues(si1_Second, [](const TChannelSet&) { return true; });
  EXPECT_EQ(shown(), 4 + 3 + 3);
}

TEST(HistoryView, LeavesAGapWhereNothingWasMeasured) {
  TChannelSource source;
  AddMonitoredSets(source, 100.0);
  TChannelSet& weather = *source.GetSets()->GetItem(kWeather);
  for (const double start : {0.0, 100.0}) {
    for (int i = 0; i < 10; ++i) {
      const double row[] = {45413.5 + (start + 1.5 * i) / kSecondsPerDay, 8.0};
      weather.SetRow(row, 0, 2);
    }
  }
  THistoryView view;
  view.SetChannel(weather.GetChannels()->GetItem(0), weather.GetLabel());
  const TSeriesList& curves = view.findChild<TKorvalGraph*>()->GetDataPanel()->GetSeriesList();
  ASSERT_EQ(curves.Count(), 3);
  for (int curve = 0; curve < 3; ++curve) {
    int index = 0;
    TCoordinate point;
    TCoordinate extent;
    std::vector<double> values;
    while (curves.Get(curve)->DataSource(index, point, extent)) values.push_back(point.Y);
    // The first row has no length, and the second begins the second that the third completes.
    EXPECT_EQ(std::ranges::count(values, 8.0), 8 + 10);
    ASSERT_EQ(values.size(), 8u + 1u + 10u);  // the newest first
    EXPECT_TRUE(std::isnan(values[10]));
  }
}

TEST(FittingLabel, LeavesOutTheMiddleOfWhatHasNoRoom) {
  TFittingLabel label(2);
  label.resize(200, label.height());
  label.show();
  label.SetText("short");
  EXPECT_EQ(label.text(), "short");
  EXPECT_EQ(label.toolTip(), "");

  const QString path = "Cannot open " + QString("/a/folder").repeated(200) + "/device: why";
  label.SetText(path);
  EXPECT_EQ(label.toolTip(), path);
  EXPECT_LE(label.heightForWidth(label.width()), label.height());
  EXPECT_TRUE(label.text().startsWith("Cannot open "));
  EXPECT_THAT(label.text().toStdString(), HasSubstr("\u2026"));
  EXPECT_TRUE(label.text().endsWith("why"));

  label.resize(100'000, label.height());
  EXPECT_EQ(label.toolTip(), "");
}

#ifdef Q_OS_UNIX

/// A window, and the two programs that it listens to.
class Monitor : public testing::Test {
 protected:
  void TearDown() override {
    panel.reset();
    for (QProcess* process : {&device, &server}) {
      process->kill();
      process->waitForFinished();
    }
  }

  /// Each returns once the program can be talked to.
  void StartDevice(const QStringList& faults = {}) {
    device.start(BuiltFile("examples/device-simulator/device-simulator"),
                 QStringList({"--link", Link()}) + faults);
    ASSERT_TRUE(device.waitForReadyRead());
  }
  void StartServer() {
    server.start(BuiltFile("examples/package-server/package-server"),
                 {"--port", QString::number(port)});
    ASSERT_TRUE(server.waitForReadyRead());
    const QString line = QString::fromUtf8(server.readLine()).trimmed();
    port = line.section(' ', -1).toInt();
    ASSERT_GT(port, 0) << line.toStdString();
  }
  static void Kill(QProcess& process) {
    process.kill();  // SIGKILL: no farewell of any kind
    ASSERT_TRUE(process.waitForFinished());
  }
  void Open() {
    options.Device = Link();
    options.Port = port;
    panel = std::make_unique<TMonitorPanel>(options);
    panel->show();
  }
  void StartAll() {
    StartDevice();
    StartServer();
    Open();
  }

  static QString Link() { return TestFolder() + "/device"; }

  template <class T>
  T& Find(const char* name) {
    T* child = panel->findChild<T*>(QLatin1String(name));
    if (!child) throw std::runtime_error(name);
    return *child;
  }
  QString State(const char* box) { return Find<QWidget>(box).findChild<QLabel*>("state")->text(); }
  QString Detail(const char* box) {
    return Find<QWidget>(box).findChild<TFittingLabel*>("detail")->Text();
  }
  /// The texts of the cards, such as "Weather: Wind speed", with their values.
  std::map<QString, QString> Cards() {
    std::map<QString, QString> cards;
    for (TValueCard* card : panel->findChildren<TValueCard*>()) {
      const auto labels = card->findChildren<QLabel*>();
      cards[labels[0]->text()] = labels[1]->text();
    }
    return cards;
  }
  std::string News() { return Find<QPlainTextEdit>("events").toPlainText().toStdString(); }
  TChannelTable& Table() { return Find<TChannelTable>("table"); }
  int Row(const QString& channel) {
    for (int row = 0; row < Table().rowCount(); ++row) {
      if (Cell(row, TChannelTable::kChannel) == channel) return row;
    }
    return -1;
  }
  QString Cell(int row, int column) { return Table().item(row, column)->text(); }
  QString Cell(const QString& channel, int column) { return Cell(Row(channel), column); }
  /// A text "-1.234 V" as a number.
  double Number(const QString& channel, int column) {
    return Cell(channel, column).section(' ', 0, 0).toDouble();
  }
  TChannelSet& Set(TMonitoredSet set) { return *panel->GetSource().GetSets()->GetItem(set); }
  double Counted(TMonitoredSet set) {
    return Summary(*Set(set).GetChannels()->GetItem(0)->GetStats(), si1_Year).Count;
  }
  bool IsReceiving(const char* box) { return State(box).startsWith("Receiving "); }
  void ExpectNothingClipped();

  TMonitorOptions options;
  int port = 0;
  QProcess device;
  QProcess server;
  std::unique_ptr<TMonitorPanel> panel;
};

TEST_F(Monitor, ShowsWhatBothSourcesSend) {
  StartAll();
  EXPECT_EQ(Cards()["Weather: Wind speed"], "<0.0 m/s>") << "no value has come";
  ASSERT_TRUE(PassUntil([&] {
    for (const auto& [caption, value] : Cards()) {
      if (value.startsWith('<')) return false;
    }
    return IsReceiving("deviceBox") && IsReceiving("serverBox") && Counted(kWeather) > 1.0 &&
           Find<QWidget>("historyGraph").isVisible();
  })) << News();
  EXPECT_EQ(Cards().size(), 6u);
  const QString wind = Cards()["Weather: Wind speed"];
  EXPECT_TRUE(wind.endsWith(" m/s"));
  EXPECT_NEAR(wind.chopped(4).toDouble(), 8.5, 2.5 + 1.2 + 0.1);
  // The server's wind blows about 8.5 m/s, 2.5 more or less and gusts of 1.2; the device's waves
  // take half the range of 10 V.
  for (const int column :
       {TChannelTable::kValue, TChannelTable::kMin, TChannelTable::kMax, TChannelTable::kAverage}) {
    EXPECT_NEAR(Number("Wind speed", column), 8.5, 2.5 + 1.2 + 0.1) << column;
    EXPECT_NEAR(Number("Input 2", column), 0.0, 5.001) << column;
  }
  EXPECT_TRUE(Cell("Wind speed", TChannelTable::kValue).endsWith(" m/s"));
  EXPECT_LT(Number("Top, along", TChannelTable::kMin), Number("Top, along", TChannelTable::kMax));
  EXPECT_EQ(Cell("Input 2", TChannelTable::kStatus), "Normal");
  EXPECT_THAT(State("serverBox").toStdString(), ContainsRegex("^Receiving [0-9]+ rows/s$"));
  EXPECT_THAT(Detail("deviceBox").toStdString(), ContainsRegex("^[0-9]+ rows since "));

  // The device counts its packets in the first input: the one before the window streams is lost.
  const TStatSet counted = Summary(*Set(kMachine).GetChannels()->GetItem(0)->GetStats(), si1_Year);
  EXPECT_GE(counted.Max, counted.Count - 10.0);
  EXPECT_LE(Number("Packets", TChannelTable::kMax), counted.Max);  // made five times a second
}

TEST_F(Monitor, ColoursAStatusByTheLimits) {
  StartAll();
  TLimitLevels& limits = *Set(kMachine).GetChannels()->GetItem(1)->GetStats()->GetLimits();
  const auto status = [this] { return Cell("Input 2", TChannelTable::kStatus); };
  const auto ground = [this] {
    return Table().item(Row("Input 2"), TChannelTable::kStatus)->background().color();
  };
  // A wave of 5 V, once a second.
  ASSERT_TRUE(PassUntil([&] { return status() == "Normal"; }));
  const QColor green = ground();
  limits.SetLimitMax(5.2);
  ASSERT_TRUE(PassUntil([&] { return status() == "Warning"; }));
  const QColor yellow = ground();
  limits.SetLimitMax(4.0);
  ASSERT_TRUE(PassUntil([&] { return status() == "Alarm"; }));
  const QColor red = ground();
  EXPECT_GT(green.green(), green.red());
  EXPECT_LT(yellow.blue(), yellow.green());
  EXPECT_GT(red.red(), red.green());
  // An alarm lasts until the value is half a warning level, 0.5 V, below the limit.
  limits.SetLimitMax(5.2);
  QTest::qWait(2200);
  EXPECT_EQ(status(), "Alarm");
  limits.SetLimitMax(5.8);
  ASSERT_TRUE(PassUntil([&] { return status() == "Warning"; }));
}

TEST_F(Monitor, GoesOnWithAServerThatWasKilledAndStartedAgain) {
  StartAll();
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("serverBox") && Counted(kMast) > 100.0; }));
  Kill(server);
  ASSERT_TRUE(PassUntil([&] { return State("serverBox") == "Not connected"; }));
  ASSERT_TRUE(PassUntil([&] { return Detail("serverBox").contains("refused"); }));
  EXPECT_EQ(Detail("serverBox"), QString("Cannot connect to 127.0.0.1 port : %1: Connection "
                                         "refused. Trying again ...")
                                     .arg(port));
  EXPECT_THAT(News(), ContainsRegex("Package server: connection lost after [0-9]+ rows, trying "
                                    "again\n"));
  ASSERT_TRUE(PassUntil([&] { return Cell("Wind speed", TChannelTable::kStatus) == "No data"; }));
  const double before = Counted(kMast);
  const QString minimum = Cell("Top, across", TChannelTable::kMin);
  EXPECT_NE(minimum, "\u2013") << "what was measured stays";
  // The device does not mind.
  EXPECT_TRUE(IsReceiving("deviceBox"));

  StartServer();
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("serverBox") && Counted(kMast) > before + 50; }));
  EXPECT_THAT(News(), ContainsRegex("Package server: receiving rows again, after [0-9]+ s "
                                    "without"));
  EXPECT_LE(Number("Top, across", TChannelTable::kMin), minimum.section(' ', 0, 0).toDouble());
}

TEST_F(Monitor, GoesOnWithADeviceThatWasKilledAndStartedAgain) {
  StartAll();
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("deviceBox") && Counted(kMachine) > 100.0; }));
  Kill(device);
  ASSERT_TRUE(PassUntil([&] { return State("deviceBox") == "Not connected"; }));
  ASSERT_TRUE(PassUntil([&] { return Detail("deviceBox").startsWith("Cannot open "); }));
  EXPECT_THAT(Detail("deviceBox").toStdString(), HasSubstr("No such file or directory"));
  EXPECT_THAT(News(), ContainsRegex("Serial device: .* has gone: "));
  EXPECT_THAT(News(), ContainsRegex("Serial device: connection lost after [0-9]+ rows, trying "
                                    "again\n"));
  const double before = Counted(kMachine);
  EXPECT_GT(before, 100.0);

  StartDevice();
  ASSERT_TRUE(
      PassUntil([&] { return IsReceiving("deviceBox") && Counted(kMachine) > before + 50; }));
  EXPECT_THAT(News(), ContainsRegex("Serial device: receiving rows again, after [0-9]+ s "
                                    "without"));
}

TEST_F(Monitor, OpensADeviceAnewThatIsConnectedAndSilent) {
  options.SilenceLimitMs = 1000;
  StartDevice();
  // As one that is switched off: its line is there, and it does not hear what it is asked.
  ::kill(static_cast<pid_t>(device.processId()), SIGSTOP);
  Open();
  ASSERT_TRUE(PassUntil([&] { return State("deviceBox") == "Connected"; }));
  EXPECT_EQ(Detail("deviceBox"), "No rows yet");
  ::kill(static_cast<pid_t>(device.processId()), SIGCONT);
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("deviceBox"); })) << News();
}

TEST_F(Monitor, DoesNotTakeNoiseForMeasurements) {
  StartDevice({"--noise"});
  Open();
  ASSERT_TRUE(PassUntil([&] { return Counted(kMachine) > 10.0; })) << News();
  EXPECT_EQ(State("deviceBox"), "Only noise comes");
  EXPECT_THAT(Detail("deviceBox").toStdString(),
              ContainsRegex("^No rows yet, [0-9]+ gaps, [0-9]+ kB skipped$"));
  EXPECT_EQ(Cell("Input 2", TChannelTable::kStatus), "No data");
  Kill(device);
  StartDevice({"--garbage", "0.05"});
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("deviceBox"); })) << News();
  ASSERT_TRUE(PassUntil([&] { return Detail("deviceBox").endsWith(" skipped"); }));
  EXPECT_TRUE(IsReceiving("deviceBox"));
}

TEST_F(Monitor, DisconnectsOnlyByHandForGood) {
  StartAll();
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("serverBox"); }));
  QPushButton& button = *Find<QWidget>("serverBox").findChild<QPushButton*>("connect");
  EXPECT_EQ(button.text(), "Disconnect");
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(State("serverBox"), "Not connected");
  EXPECT_EQ(Detail("serverBox"), "Disconnected by hand");
  EXPECT_EQ(button.text(), "Connect");
  QTest::qWait(500);  // longer than it takes to connect again
  EXPECT_EQ(State("serverBox"), "Not connected");
  QTest::mouseClick(&button, Qt::LeftButton);
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("serverBox"); }));
}

TEST_F(Monitor, StoresStatisticsIntoAFolder) {
  StartServer();
  Open();
  const QString folder = TestFolder() + "/statistics";
  Find<QLineEdit>("folder").setText(folder);
  QTest::mouseClick(&Find<QPushButton>("store"), Qt::LeftButton);
  EXPECT_EQ(Find<QPushButton>("store").text(), "Stop storing");
  ASSERT_TRUE(PassUntil([&] { return Counted(kMast) > 100.0; }));
  QTest::mouseClick(&Find<QPushButton>("store"), Qt::LeftButton);
  EXPECT_EQ(Find<QPushButton>("store").text(), "Start storing");

  const QStringList files = QDir(folder).entryList({"Mast_*.csv"}, QDir::Files);
  ASSERT_EQ(files.size(), 1);
  TStatsContent content;
  QString error;
  ASSERT_TRUE(ReadStatsFile(folder + '/' + files[0], content, &error)) << error.toStdString();
  ASSERT_EQ(content.Layouts.size(), 1u);
  EXPECT_EQ(content.Layouts[0][0], (TStatsColumn{"Top, along", "m/s\u00b2"}));
  double stored = 0.0;
  for (const TStatsBlock& block : content.Blocks) stored += block.Channels[0].Count;
  EXPECT_NEAR(stored, Counted(kMast), 20.0);  // all but what came before and behind the clicks
}

TEST_F(Monitor, SaysThatAFolderCannotBeWritten) {
  StartServer();
  Open();
  Find<QLineEdit>("folder").setText(WriteTestFile("file", "") + "/below");
  QTest::mouseClick(&Find<QPushButton>("store"), Qt::LeftButton);
  ASSERT_TRUE(PassUntil([&] { return Counted(kMast) > 50.0; }));
  QTest::mouseClick(&Find<QPushButton>("store"), Qt::LeftButton);  // writes what there is
  ASSERT_TRUE(PassUntil(
      [&] { return News().find("Statistics files: Cannot write ") != std::string::npos; }));
}

TEST_F(Monitor, ShowsTheHistoryThatTheUserPicks) {
  StartAll();
  ASSERT_TRUE(PassUntil([&] { return Find<QWidget>("historyGraph").isVisible(); }));
  Find<QComboBox>("interval").setCurrentText("Last year");
  EXPECT_FALSE(Find<QWidget>("historyGraph").isVisible());
  Find<QComboBox>("interval").setCurrentText("Last minute");
  EXPECT_TRUE(Find<QWidget>("historyGraph").isVisible());
  Table().selectRow(Row("Temperature"));
  EXPECT_EQ(Find<TKorvalGraph>("historyGraph").GetVerticalAx()->GetTitle()->GetCaption(),
            QStringLiteral("Temperature [\u00b0C]"));
}

void Monitor::ExpectNothingClipped() {
  QCoreApplication::processEvents();
  for (QWidget* child : panel->findChildren<QWidget*>()) {
    if (!child->isVisible()) continue;
    const bool isText = qobject_cast<QLabel*>(child) || qobject_cast<QPushButton*>(child) ||
                        qobject_cast<QComboBox*>(child);
    const QString text = child->property("text").toString();
    SCOPED_TRACE((child->objectName() + " '" + text + '\'').toStdString());
    EXPECT_TRUE(child->parentWidget()->rect().contains(child->geometry()) ||
                !child->parentWidget()->inherits("QGroupBox"));
    if (!isText || (text.isEmpty() && !qobject_cast<QComboBox*>(child))) continue;
    const auto* label = qobject_cast<QLabel*>(child);
    if (label && label->wordWrap()) {
      EXPECT_LE(label->heightForWidth(label->width()), label->height());
    } else {
      EXPECT_LE(child->minimumSizeHint().width(), child->width());
      EXPECT_LE(child->minimumSizeHint().height(), child->height());
    }
  }
  for (int column = 0; column < Table().columnCount(); ++column) {
    EXPECT_LE(Table().horizontalHeader()->sectionSizeHint(column), Table().columnWidth(column));
  }
  EXPECT_LE(Table().horizontalHeader()->length(), Table().viewport()->width());
}

TEST_F(Monitor, ClipsNothingAtAnySizeWhateverHappens) {
  StartAll();
  const auto checkSizes = [this] {
    for (const QSize size : {QSize(1, 1), QSize(1200, 800), QSize(2500, 1500), QSize(3000, 1)}) {
      SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
      panel->resize(size);
      ExpectNothingClipped();
    }
    // Fits on a small notebook.
    panel->resize(1, 1);
    EXPECT_LE(panel->width(), 1024);
    EXPECT_LE(panel->height(), 720);
  };
  checkSizes();
  ASSERT_TRUE(PassUntil([&] { return IsReceiving("deviceBox") && IsReceiving("serverBox"); }));
  checkSizes();
  Kill(server);
  Kill(device);
  ASSERT_TRUE(PassUntil([&] {
    return Detail("serverBox").contains("refused") && Detail("deviceBox").contains("No such file");
  }));
  checkSizes();
}

TEST_F(Monitor, DrawsItsWindowIntoAPicture) {
  StartDevice();
  StartServer();
  QProcess monitor;
  const QString picture = TestFolder() + "/monitor.png";
  monitor.start(BuiltFile("examples/monitor/monitor"),
                {"--device", Link(), "--server", QString("127.0.0.1:%1").arg(port), "--render",
                 picture, "--after", "2", "--ratio", "2"});
  ASSERT_TRUE(monitor.waitForFinished(60'000));
  EXPECT_EQ(monitor.exitCode(), 0) << monitor.readAllStandardError().toStdString();
  EXPECT_EQ(QImage(picture).size(), QSize(2400, 1600));
}

#endif

}  // namespace
