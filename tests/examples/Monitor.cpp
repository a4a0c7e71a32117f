// The monitoring example with the real programs at the other ends of its lines.

#include "components/graphing/Graph.h"
#include "examples/monitor/Channeltable.h"
#include "examples/monitor/Fittinglabel.h"
#include "examples/monitor/Historyview.h"
#include "examples/monitor/Monitoredsets.h"
#include "examples/monitor/Monitorpanel.h"
#include "examples/monitor/Valuecard.h"
#include "tests/support/Testing.h"

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

TEST(MonitorOptions, TakeAServerOrSayWhatIsWrongAndChangeNothing) {
  const QString file = WriteTestFile("file", "text");
  const QString form = ": a server is given as host:port, such as 127.0.0.1:4001";
  const QString port = ": the port is a number from 1 to 65535";
  const std::pair<QString, std::pair<QString, int>> servers[] = {
      {"10.0.0.7:5000", {"10.0.0.7", 5000}},
      {"mast.local", {"mast.local", 4001}},
      {"[::1]:65535", {"::1", 65535}}};
  for (const auto& [text, server] : servers) {
    TMonitorOptions options;
    EXPECT_EQ(TakeServer(text, options), "");
    EXPECT_EQ(std::pair(options.Host, options.Port), server);
  }
  const std::tuple<QString (*)(const QString&, TMonitorOptions&), QString, QString> faults[] = {
      {TakeServer, "", "--server " + form},
      {TakeServer, "::1", "--server ::1" + form},
      {TakeServer, "a host:1", "--server a host:1" + form},
      {TakeServer, "host:0", "--server host:0" + port},
      {TakeServer, "host:65536", "--server host:65536" + port},
      {TakeDevice, "", "--device needs a port, such as COM1 or /dev/ttyUSB0"},
      {TakeDevice, file, "--device " + file + ": that is a file, not a serial port"},
      {TakeDevice, "/", "--device /: that is a folder, not a serial port"},
      {TakeFolder, file, "--store " + file + ": that is a file, not a folder"}};
  for (const auto& [take, text, message] : faults) {
    TMonitorOptions options;
    EXPECT_EQ(take(text, options), message);
    EXPECT_EQ(options.Device + ' ' + options.Host + ' ' + options.Folder, "COM1 127.0.0.1 ");
    EXPECT_EQ(options.Port, 4001);
  }
}

// What the sets say of their values

/// The sets of the monitor.
struct TMonitoredSets : testing::Test {
  /// Gives the wind speed a value, so many seconds after the first.
  void Blow(double seconds, double value) {
    const double row[] = {45413.5 + seconds / 86400.0, value};
    weather.SetRow(row, 0, 2);
  }

  static TChannelSet& WeatherOf(TChannelSource& source) {
    AddMonitoredSets(source, 100.0);
    return *source.GetSets()->GetItem(kWeather);
  }

  TChannelSource source;
  TChannelSet& weather = WeatherOf(source);
  TChannel& speed = *weather.GetChannels()->GetItem(0);
};

TEST_F(TMonitoredSets, SumUpWhatHistoriesHoldAndWhatIsUnderWay) {
  for (int i = 0; i <= 1000; ++i) Blow(i, i);
  // A block of one row has no length before the second row, so that the first one does not count.
  const TStatSet hour = Summary(*speed.GetStats(), si1_Minute);
  EXPECT_EQ(std::tuple(hour.Count, hour.Min, hour.Max), std::tuple(1000, 1.0, 1000.0));
  EXPECT_DOUBLE_EQ(hour.Mean, 500.5);
  // The present second, and the 60 that the history of seconds keeps.
  const TStatSet minute = Summary(*speed.GetStats(), si1_Second);
  EXPECT_EQ(minute.Max, 1000.0);
  EXPECT_THAT(minute.Count, testing::AllOf(testing::Ge(60.0), testing::Le(122.0)));
  EXPECT_EQ(minute.Min, 1001.0 - minute.Count) << "the newest ones, all of them";
  EXPECT_EQ(LatestValue(weather, speed), 1000.0);
  EXPECT_EQ(ValueText(speed, -1e300), "-1e+300 m/s");
  EXPECT_EQ(LimitsText(speed), "Alarm above 11.5 m/s, warning from 10.0 m/s on");
}

TEST_F(TMonitoredSets, LeaveAGapInTheHistoryWhereNothingWasMeasured) {
  for (const double start : {0.0, 100.0}) {
    for (int i = 0; i < 10; ++i) Blow(start + 1.5 * i, 8.0);
  }
  THistoryView view;
  view.SetChannel(&speed, weather.GetLabel());
  const TSeriesList& curves = Child<TKorvalGraph>(view).GetDataPanel()->GetSeriesList();
  ASSERT_EQ(curves.Count(), 3);
  for (int curve = 0; curve < 3; ++curve) {
    int index = 0;
    TCoordinate point, extent;
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
  EXPECT_THAT(label.text().toStdString(), ContainsRegex("^Cannot open .*\u2026.*why$"));
  label.resize(100'000, label.height());
  EXPECT_EQ(label.toolTip(), "");
}

#ifdef Q_OS_UNIX

/// A window, and the two programs that it listens to.
class Monitor : public testing::Test {
 protected:
  void StartDevice() {
    device.emplace("examples/device-simulator/device-simulator", QStringList{"--link", Link()});
  }
  void StartServer() {
    server.emplace("examples/package-server/package-server",
                   QStringList{"--port", QString::number(port)});
    port = server->FirstLine.section(' ', -1).toInt();
    ASSERT_GT(port, 0) << server->FirstLine.toStdString();
  }
  void StartAll() {
    StartDevice();
    StartServer();
    TMonitorOptions options;
    options.Device = Link();
    options.Port = port;
    panel = std::make_unique<TMonitorPanel>(options);
    panel->show();
  }
  static QString Link() { return TestFolder() + "/device"; }

  template <class T>
  T& Find(const char* name) {
    return Child<T>(*panel, name);
  }
  QString State(const char* box) { return Child<QLabel>(Find<QWidget>(box), "state").text(); }
  QString Detail(const char* box) {
    return Child<TFittingLabel>(Find<QWidget>(box), "detail").Text();
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

  int port = 0;
  std::optional<TStartedProgram> device, server;
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
  EXPECT_THAT(State("serverBox").toStdString(), ContainsRegex("^Receiving [0-9]+ rows/s$"));
  EXPECT_THAT(Detail("deviceBox").toStdString(), ContainsRegex("^[0-9]+ rows since "));

  // The device counts its packets in the first input: the one before the window streams is lost.
  const TStatSet counted = Summary(*Set(kMachine).GetChannels()->GetItem(0)->GetStats(), si1_Year);
  EXPECT_GE(counted.Max, counted.Count - 10.0);
  EXPECT_LE(Number("Packets", TChannelTable::kMax), counted.Max);  // made five times a second

  Find<QComboBox>("interval").setCurrentText("Last year");
  EXPECT_FALSE(Find<QWidget>("historyGraph").isVisible());
  Find<QComboBox>("interval").setCurrentText("Last minute");
  EXPECT_TRUE(Find<QWidget>("historyGraph").isVisible());
  Table().selectRow(Row("Temperature"));
  EXPECT_EQ(Find<TKorvalGraph>("historyGraph").GetVerticalAx()->GetTitle()->GetCaption(),
            QStringLiteral("Temperature [\u00b0C]"));

  // A wave of 5 V, once a second.
  std::vector<QColor> grounds;
  TLimitLevels& limits = *Set(kMachine).GetChannels()->GetItem(1)->GetStats()->GetLimits();
  for (const auto& [limit, status] :
       {std::pair(1e3, "Normal"), std::pair(5.2, "Warning"), std::pair(4.0, "Alarm")}) {
    limits.SetLimitMax(limit);
    ASSERT_TRUE(PassUntil(
        [&, wanted = status] { return Cell("Input 2", TChannelTable::kStatus) == wanted; }));
    grounds.push_back(Table().item(Row("Input 2"), TChannelTable::kStatus)->background().color());
  }
  EXPECT_GT(grounds[0].green(), grounds[0].red());
  EXPECT_LT(grounds[1].blue(), grounds[1].green());
  EXPECT_GT(grounds[2].red(), grounds[2].green());
}

TEST_F(Monitor, GoesOnWithSourcesThatWereKilledAndStartedAgainAndClipsNothing) {
  StartAll();
  ExpectNothingClipped();
  ASSERT_TRUE(PassUntil([&] {
    return IsReceiving("serverBox") && IsReceiving("deviceBox") && Counted(kMast) > 100.0 &&
           Counted(kMachine) > 100.0;
  }));
  ExpectNothingClipped();
  server.reset();
  ASSERT_TRUE(PassUntil([&] { return Detail("serverBox").contains("refused"); }));
  EXPECT_EQ(State("serverBox"), "Not connected");
  EXPECT_EQ(Detail("serverBox"), QString("Cannot connect to 127.0.0.1 port : %1: Connection "
                                         "refused. Trying again ...")
                                     .arg(port));
  ASSERT_TRUE(PassUntil([&] { return Cell("Wind speed", TChannelTable::kStatus) == "No data"; }));
  EXPECT_TRUE(IsReceiving("deviceBox")) << "the device does not mind";
  device.reset();
  ASSERT_TRUE(PassUntil([&] { return Detail("deviceBox").startsWith("Cannot open "); }));
  EXPECT_EQ(State("deviceBox"), "Not connected");
  EXPECT_THAT(Detail("deviceBox").toStdString(), HasSubstr("No such file or directory"));
  EXPECT_THAT(News(), ContainsRegex("Serial device: .* has gone: "));
  for (const std::string source : {"Package server", "Serial device"}) {
    EXPECT_THAT(News(), ContainsRegex(source + ": connection lost after [0-9]+ rows, trying "
                                               "again\n"));
  }
  const double mast = Counted(kMast), machine = Counted(kMachine);
  const QString minimum = Cell("Top, across", TChannelTable::kMin);
  EXPECT_NE(minimum, "\u2013") << "what was measured stays";
  ExpectNothingClipped();

  StartServer();
  StartDevice();
  ASSERT_TRUE(PassUntil([&] {
    return IsReceiving("serverBox") && Counted(kMast) > mast + 50 && IsReceiving("deviceBox") &&
           Counted(kMachine) > machine + 50;
  }));
  for (const std::string source : {"Package server", "Serial device"}) {
    EXPECT_THAT(News(), ContainsRegex(source + ": receiving rows again, after [0-9]+ s without"));
  }
  EXPECT_LE(Number("Top, across", TChannelTable::kMin), minimum.section(' ', 0, 0).toDouble());
}

void Monitor::ExpectNothingClipped() {
  for (const QSize size : {QSize(1, 1), QSize(1200, 800), QSize(2500, 1500), QSize(3000, 1)}) {
    SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
    panel->resize(size);
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
    const QHeaderView& header = *Table().horizontalHeader();
    for (int column = 0; column < Table().columnCount(); ++column) {
      EXPECT_LE(header.sectionSizeHint(column), Table().columnWidth(column));
    }
    EXPECT_LE(header.length(), Table().viewport()->width());
  }
  // Fits on a small notebook.
  panel->resize(1, 1);
  EXPECT_LE(panel->width(), 1024);
  EXPECT_LE(panel->height(), 720);
}

#endif

}  // namespace
