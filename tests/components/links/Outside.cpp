#include "components/links/Outside.h"

#include <QDirIterator>
#include <QTcpServer>
#include <QTcpSocket>

#include "components/channels/Channelset.h"
#include "components/channels/Statsstorage.h"
#include "components/channels/Variable.h"
#include "components/comms/Qlxmaster.h"
#include "components/comms/Qlxxml.h"
#include "components/controls/Hyperlink.h"
#include "components/sources/Datalogger.h"
#include "model/Oneline.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/components/panels/Panelforms.h"

namespace {

using testing::ElementsAre;

QString Text(const QString& name, const QString& value) {
  return PropertyOf(name, "string", value);
}
QString On(const QString& name) { return PropertyOf(name, "bool", "true"); }
QString Names(const QString& name, const QString& value) {
  return PropertyOf(name, "stringlist", "<string>" + value + "</string>");
}

/// A folder "panel" with a form in it, beside it a folder "outside", and a server.
struct Outside : testing::Test {
  Outside() {
    for (const char* name : {"panel", "outside"}) QDir(TestFolder()).mkdir(name);
    WriteTestFile("outside/x", "kept");
    EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
  }

  void Load(const QString& widgets) {
    faults.clear();
    panel = TPanel::Load(WriteForm("panel/p.ui", widgets), &faults);
    ASSERT_TRUE(panel);
  }
  static QString In(const QString& name) { return TestFolder() + '/' + name; }
  template <class T>
  T& It(const char* name = "it") const {
    return Child<T>(*panel->Root(), name);
  }
  QStringList WishTexts() const {
    QStringList texts;
    for (const TWish& wish : panel->Wishes()) texts << wish.Text;
    return texts;
  }
  /// All files with what they hold.
  static QStringList Files() {
    QStringList files;
    QDirIterator all(TestFolder(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext()) {
      const QString name = all.next();
      files << name + ": " + QString::fromUtf8(Contents(name));
    }
    files.sort();
    return files;
  }
  static void LetTimePass() {
    for (int i = 0; i < 100; ++i) {
      if (TTimerServer::Instance()) Tick();
      QCoreApplication::processEvents();
    }
  }

  QTcpServer server;
  QStringList faults;
  std::unique_ptr<TPanel> panel;
};

TEST_F(Outside, ANameIsShownSoThatNothingHidesInIt) {
  const std::pair<QString, QString> cases[] = {
      {"log/pump.csv", "log/pump.csv"},
      {"my log.csv", "\"my log.csv\""},
      {QString::fromUtf8("Prüfstand.csv"), QString::fromUtf8("Prüfstand.csv")},
      {"a\nconnect to b", "\"a\\u{a}connect to b\""},
      {QString::fromUtf8("x\u202Evsc.exe"), "x\\u{202e}vsc.exe"},
      {QString::fromUtf8("a\u00A0b\u200B"), "a\\u{a0}b\\u{200b}"},
      {QString("a").repeated(500) + QString("z").repeated(80),
       QString("a").repeated(120) + "..." + QString("z").repeated(80)},
  };
  for (const auto& [name, shown] : cases) EXPECT_EQ(ShownName(name), shown);
}

TEST_F(Outside, LinksAreFollowedEvenToWhatIsNotThere) {
  ASSERT_TRUE(QFile::link(In("outside"), In("panel/out")));
  ASSERT_TRUE(QFile::link(In("outside/new"), In("panel/dangling")));
  ASSERT_TRUE(QFile::link(In("panel/loop"), In("panel/loop")));
  EXPECT_EQ(RealPath(In("panel/out/x")), In("outside/x"));
  EXPECT_EQ(RealPath(In("panel/out/made/later")), In("outside/made/later"));
  EXPECT_EQ(RealPath(In("panel/dangling")), In("outside/new"));
  EXPECT_EQ(RealPath(In("panel/out/../panel/y")), In("panel/y"));
  EXPECT_NE(RealPath(In("panel/loop")), "");
  EXPECT_TRUE(IsBelow("/a/b", "/a"));
  EXPECT_FALSE(IsBelow("/ab", "/a"));
  EXPECT_TRUE(IsBelow("/a", "/"));
}

/// Each class with all that it has switched on, and every name leading outside.
TEST_F(Outside, AtRestNoClassReachesOutsideOrForgetsWhatItWants) {
  ASSERT_TRUE(qputenv("VELMORA_COM1", In("outside/x").toLocal8Bit()));
  static const QRegularExpression place("(File|Files|FileName|Dir|Folder|Path|URL|Address|Host)$");
  for (const TComponentClass& component : ComponentClasses()) {
    SCOPED_TRACE(component.Name.toStdString());
    const std::unique_ptr<QWidget> fresh(component.Make(nullptr));
    QString properties;
    QStringList places;
    ForEachStored(*fresh, [&](const TPublished& published) {
      const QString& path = published.Path;
      const int type = published.Property.typeId();
      const bool isHost = path.endsWith("Address") || path.endsWith("Host");
      const QString value = isHost ? QString("127.0.0.1") : In("outside/x");
      if (type == QMetaType::Bool) properties += On(path);
      if (path.endsWith("Port")) {
        properties += PropertyOf(path, "number", QString::number(server.serverPort()));
      }
      if (!place.match(path).hasMatch()) return;
      places << value;
      if (type == QMetaType::QString) properties += Text(path, value);
      if (type == QMetaType::QStringList) properties += Names(path, value);
    });
    Load(WidgetOf(component.Name, "it", properties) +
         WidgetOf("TVariable", "v", Names("ClientControls.Components", "it")));
    const QStringList before = Files();
    const std::string settings = panel->Settings().toStdString();
    EXPECT_TRUE(panel->IsAtRest());
    for (const QString& one : places) {
      EXPECT_THAT(WishTexts().join('\n').toStdString(), testing::HasSubstr(one.toStdString()));
    }
    auto& it = It<QWidget>();
    const auto switches = {"Active", "Logging", "AutoConnect"};
    for (const char* name : switches) {
      if (it.metaObject()->indexOfProperty(name) >= 0) it.setProperty(name, true);
    }
    QTest::mouseClick(&it, Qt::LeftButton);
    QTest::mouseClick(&it, Qt::LeftButton);
    for (int i = 0; i < 3; ++i) It<TVariable>("v").SetValue(i);
    LetTimePass();
    EXPECT_FALSE(server.hasPendingConnections());
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(panel->Settings().toStdString(), settings);
    // What the form has switched on is still to be done, and saved.
    for (const char* name : switches) {
      EXPECT_TRUE(places.empty() || it.property(name) != QVariant(false)) << name;
    }
    TakeMessages();
  }
  qunsetenv("VELMORA_COM1");
}

TEST_F(Outside, StartedComponentsDoWhatTheirPropertiesSay) {
  WriteTestFile("panel/record.log", "earlier\n");
  Load(WidgetOf("TQLXXMLClient", "it",
                On("Active") + On("Logging") + Text("LogFile", "record.log") +
                    Text("Socket.Host", "127.0.0.1") +
                    PropertyOf("Socket.Port", "number", QString::number(server.serverPort()))) +
       WidgetOf("TVariable", "v") +
       WidgetOf("TDataLogger", "logger",
                On("Active") + Text("FileName", "log/../pump.csv") + Text("Separator", ";") +
                    Names("Controls.Components", "v")));
  EXPECT_THAT(faults, ElementsAre());
  EXPECT_THAT(WishTexts(),
              ElementsAre(QString("write record.log beside the panel"),
                          QString("connect to 127.0.0.1 port %1").arg(server.serverPort()),
                          QString("write pump.csv beside the panel")));
  It<TVariable>("v").SetValue(1.0);
  EXPECT_FALSE(QFile::exists(In("panel/pump.csv")));
  panel->Start();
  ASSERT_TRUE(server.waitForNewConnection(5000));
  QTcpSocket& peer = *server.nextPendingConnection();
  ASSERT_TRUE(QTest::qWaitFor([this] { return It<TQLXXMLClient>().GetActive(); }, 10'000));
  // What was recorded before is continued.
  peer.write("<data/>");
  EXPECT_TRUE(
      QTest::qWaitFor([] { return Contents(In("panel/record.log")).size() == 15; }, 10'000));
  // Below the folder, whatever the way there; the folder "log" is not made for it.
  QDir(In("panel")).mkdir("log");
  It<TVariable>("v").SetValue(2.0);
  EXPECT_TRUE(It<TDataLogger>("logger").GetStatusText().startsWith("Writing "));
  EXPECT_TRUE(QFile::exists(In("panel/pump.csv")));
}

TEST_F(Outside, OtherPlacesAreWrittenOnlyIfTheListNamedThem) {
  ASSERT_TRUE(QFile::link(In("outside"), In("panel/link")));
  double value = 0.0;
  const auto log = [&] { It<TVariable>("v").SetValue(++value); };
  const auto load = [&](const char* fileName) {
    Load(WidgetOf("TVariable", "v") +
         WidgetOf("TDataLogger", "it",
                  On("Active") + Names("Controls.Components", "v") + Text("FileName", fileName)));
  };
  for (const char* name : {"../outside/a.csv", "link/a.csv"}) {
    load(name);
    EXPECT_THAT(WishTexts(), ElementsAre("write " + In("outside/a.csv")));
    panel->Start();
    log();
    EXPECT_TRUE(QFile::remove(In("outside/a.csv"))) << name;
  }
  // A name that comes later was in no list.
  auto& logger = It<TDataLogger>();
  logger.SetActive(false);
  logger.SetFileName("../outside/b.csv");
  logger.SetActive(true);
  log();
  EXPECT_EQ(logger.GetStatusText(), "Cannot write " + In("panel/../outside/b.csv") +
                                        ": it lies outside the folder of the panel; "
                                        "1 row is missing");
  // Nor does a link that is laid later lead out.
  load("c.csv");
  EXPECT_THAT(WishTexts(), ElementsAre(QString("write c.csv beside the panel")));
  panel->Start();
  ASSERT_TRUE(QFile::link(In("outside/x"), In("panel/c.csv")));
  log();
  EXPECT_EQ(Contents(In("outside/x")), "kept");
  EXPECT_FALSE(QFile::exists(In("outside/b.csv")));
}

TEST_F(Outside, AStorageWritesBesideThePanelUnlessItsFolderWasNamed) {
  Load(WidgetOf("TStatsStorage", "it", On("Active")));
  EXPECT_THAT(WishTexts(), ElementsAre(QString("write files into the folder of the panel")));
  auto& storage = It<TStatsStorage>();
  storage.SetSaveInterval(0);
  const auto store = [&storage] {
    TChannelSet set;
    set.SetStorage(&storage);
    for (int i = 0; i < 100; ++i) {
      const double row[] = {45000.0 + i, 1.0 * i};
      set.SetRow(row, 0, 2);
    }
  };
  const QStringList before = Files();
  store();
  EXPECT_EQ(Files(), before);
  panel->Start();
  store();
  const QStringList stored = Files();
  EXPECT_GT(stored.size(), before.size());
  storage.SetRootDir("../outside");
  store();
  EXPECT_EQ(Files(), stored);
}

TEST_F(Outside, APortAtRestAsksForNoDriver) {
  QWidget form;
  BeginForm(form, TestFolder());
  int drivers = 0;
  auto* client = new TQLXMasterClient(&form, [&] {
    ++drivers;
    return MakeSystemDriver();
  });
  client->GetPort()->Open();
  client->GetPort()->SetAutoRun(true);
  EXPECT_EQ(client->GetPort()->TryDevice(*client->GetPort()),
            "Cannot open COM1: the panel has not been started.");
  EXPECT_EQ(drivers, 0);
}

TEST_F(Outside, ALinkAtRestOpensNothingAndAFileOnlyIfItWasNamed) {
  Load(WidgetOf("THyperlink", "it", Text("URL", "x.pdf")));
  WriteTestFile("panel/x.pdf", "");
  EXPECT_THAT(WishTexts(),
              ElementsAre(QString("open x.pdf beside the panel when its link is clicked")));
  It<THyperlink>().Open();
  panel->Start();
  WriteTestFile("panel/y.pdf", "");
  It<THyperlink>().SetURL("y.pdf");
  It<THyperlink>().Open();
  EXPECT_THAT(TakeMessages(),
              ElementsAre(QString("Cannot open x.pdf: the panel has not been started"),
                          QString("Cannot open y.pdf: nobody was asked about it")));
}

}  // namespace
