// All programs are told to end by a signal, while they are at work.

#include "components/channels/Statsfile.h"
#include "components/panels/Panel.h"
#include "tests/support/Testing.h"

#ifdef Q_OS_LINUX

#include <csignal>

namespace {

/// A program in the test's folder.
class TProgram {
 public:
  TProgram(const QString& name, const QStringList& arguments, const QString& platform) {
    // A shell lets what it runs in the background ignore the first of them.
    process_.setChildProcessModifier([] { std::signal(SIGINT, SIG_DFL); });
    StartProgram(process_, name, arguments,
                 {{"QT_QPA_PLATFORM", platform}, {"DISPLAY", qEnvironmentVariable("DISPLAY")}});
    EXPECT_TRUE(process_.waitForStarted()) << process_.errorString().toStdString();
  }
  ~TProgram() {
    process_.kill();
    process_.waitForFinished();
  }

  /// Waits until it takes signals and something else is so.
  [[nodiscard]] bool Works(const std::function<bool()>& ready = [] { return true; }) const {
    return QTest::qWaitFor([&] { return TakesSignals() && ready(); }, 60'000);
  }
  /// Its exit status; -1 if the signal has killed it.
  int End(int signal) {
    ::kill(static_cast<pid_t>(process_.processId()), signal);
    EXPECT_TRUE(process_.waitForFinished(60'000));
    errors = QString::fromUtf8(process_.readAllStandardError());
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
  }

  QString errors;

 private:
  bool TakesSignals() const {
    const QByteArray status = Contents(QString("/proc/%1/status").arg(process_.processId()));
    const QString caught = QString::fromLatin1(status).section("SigCgt:", 1).section('\n', 0, 0);
    return caught.trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1;
  }

  QProcess process_;
};

TEST(ProgramEnds, EachEndsInGoodOrderOnASignal) {
  const std::pair<const char*, QStringList> programs[] = {
      {"examples/gallery/gallery", {}},
      {"examples/values/values", {}},
      {"examples/monitor/monitor", {"--device", "/none"}},
      {"examples/monitor/monitor", {"--device", "/none", "--render", "m.png", "--after", "3600"}},
      {"examples/package-server/package-server", {"--port", "0"}},
      {"examples/device-simulator/device-simulator", {"--link", "device"}},
      {"velmora-animator", {"--panel", SourceFile("examples/panels/signal.ui")}}};
  for (const auto& [name, arguments] : programs) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
      SCOPED_TRACE(testing::Message()
                   << name << ' ' << arguments.join(' ').toStdString() << ' ' << signal);
      TProgram run(name, arguments, "offscreen");
      ASSERT_TRUE(run.Works());
      EXPECT_EQ(run.End(signal), 0) << run.errors.toStdString();
    }
  }
  EXPECT_EQ(QImage(TestFolder() + "/m.png").size(), QSize(1200, 800));
  EXPECT_FALSE(QFileInfo(TestFolder() + "/device").isSymbolicLink());
}

/// Recorded packages go into a set, whose statistics are stored with an hour a line and whose
/// blocks are logged with a row each.
const char kPanel[] = R"(<ui version="4.0"><widget class="QWidget" name="Panel">
<widget class="TChannelSource" name="source"><property name="Sets.Items" stdset="0"><string>
[{"Label": "Mast", "XMLTag": "data", "SetID": "mast", "Storage": "store", "ChannelCount": 4,
"Channels": [{"Label": "Top"}, {}, {}, {}]}]</string></property></widget>
<widget class="TStatsStorage" name="store">
<property name="RootDir"><string>stats</string></property>
<property name="SaveInterval"><number>3600</number></property>
<property name="Active"><bool>true</bool></property></widget>
<widget class="TXMLFileClient" name="file">
<property name="FileName"><string>mast.packages</string></property>
<property name="ChannelSource"><string>source</string></property>
<property name="Active"><bool>true</bool></property></widget>
<widget class="TChannelValue" name="top">
<property name="ChannelLink.ChannelSource" stdset="0"><string>source</string></property>
<property name="ChannelLink.ChannelSet.Item" stdset="0"><string>Mast</string></property>
<property name="ChannelLink.Channel.Item" stdset="0"><string>Top</string></property></widget>
<widget class="TDataLogger" name="logger">
<property name="FileName"><string>rows.txt</string></property>
<property name="Header"><bool>false</bool></property>
<property name="Controls.Components" stdset="0"><stringlist><string>top</string></stringlist></property>
<property name="Active"><bool>true</bool></property></widget>
</widget></ui>)";

TEST(ProgramEnds, APanelLosesNothingThatItHasMeasured) {
  ASSERT_TRUE(QFile::copy(SourceFile("examples/mast.packages"), TestFolder() + "/mast.packages"));
  TProgram run("velmora-animator",
               {"--panel", WriteTestFile("panel.ui", kPanel), "--trust", "--save", "saved.ui",
                "--after", "3600"},
               "offscreen");
  const auto rows = [] { return Contents(TestFolder() + "/rows.txt").count('\n'); };
  ASSERT_TRUE(run.Works([&] { return rows() > 3; }));
  EXPECT_EQ(run.End(SIGTERM), 0) << run.errors.toStdString();
  TStatsContent stored;
  QString error;
  ASSERT_TRUE(ReadStatsFile(TestFolder() + "/stats/Mast_20240501.csv", stored, &error))
      << error.toStdString();
  ASSERT_EQ(stored.Blocks.size(), 1u);
  EXPECT_GE(stored.Blocks[0].Channels[0].Count, 10.0 * static_cast<double>(rows()));
  QStringList faults;
  EXPECT_TRUE(TPanel::Load(TestFolder() + "/saved.ui", &faults));
  EXPECT_EQ(faults, QStringList());
}

TEST(GlProgramEnds, TheWindowSavesItsSettings) {
  const QString ini = WriteTestFile("a.ini", "");
  TProgram run("velmora-animator", {SourceFile("examples/plate.mod"), "--settings", ini}, "xcb");
  ASSERT_TRUE(run.Works());
  EXPECT_EQ(run.End(SIGTERM), 0) << run.errors.toStdString();
  EXPECT_TRUE(Contents(ini).contains("ModelFile=" + SourceFile("examples/plate.mod").toUtf8()));
}

TEST(GlProgramEnds, APictureIsWholeOrNotThere) {
  TProgram run("velmora-animator",
               {SourceFile("examples/plate.mod"), SourceFile("examples/plate.dat"), "--render",
                "p.png", "--frames", "100000", "--size", "80x60"},
               "offscreen");
  ASSERT_TRUE(run.Works([] { return QFile::exists(TestFolder() + "/p-000003.png"); }));
  EXPECT_EQ(run.End(SIGINT), 1);
  const QStringList pictures = QDir(TestFolder()).entryList(QDir::Files | QDir::Hidden);
  EXPECT_EQ(run.errors, QString("Ended before picture %1 of 100000.\n").arg(pictures.size() + 1));
  for (const QString& name : pictures) {
    EXPECT_EQ(QImage(TestFolder() + '/' + name).size(), QSize(80, 60)) << name.toStdString();
  }
}

}  // namespace

#endif
