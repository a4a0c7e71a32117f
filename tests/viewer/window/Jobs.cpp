#include "exchange/Openjob.h"
#include "exchange/Savejob.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"
#include "viewer/Viewwnd.h"
#include "viewer/window/Converting.h"
#include "viewer/window/Reportdialog.h"

namespace {

/// Three nodes in a line far from the origin, the middle one unmeasured, in one normal mode.
const QByteArray kGeometry =
    "    -1\n  2411\n"
    "         1         1         1        11\n"
    "   1.0000000000000000E+03   0.0000000000000000E+00   0.0000000000000000E+00\n"
    "         2         1         1        11\n"
    "   1.0010000000000000E+03   0.0000000000000000E+00   0.0000000000000000E+00\n"
    "         3         1         1        11\n"
    "   1.0020000000000000E+03   0.0000000000000000E+00   0.0000000000000000E+00\n"
    "    -1\n    -1\n    82\n"
    "         1         3         1\nline\n         1         2         3\n    -1\n";
const QByteArray kShapes =
    "    -1\n    55\nfirst\nNONE\n<b>third</b>\nNONE\nNONE\n"
    "         1         2         2         8         2         3\n"
    "         2         4         0         1\n"
    "  1.25000E+01  1.00000E+00  2.00000E-02  0.00000E+00\n"
    "         1\n  0.00000E+00  1.00000E+00  0.00000E+00\n"
    "         3\n  0.00000E+00  3.00000E+00  0.00000E+00\n    -1\n"
    "    -1\n  1710\nwhat nobody knows\n    -1\n";

/// One function and nothing else.
const QByteArray kFunction =
    "    -1\n    58\nNONE\nNONE\nNONE\nNONE\nNONE\n"
    "    1         0    0         0       NONE         1   3       NONE         0   0\n"
    "         2         2         1  0.00000E+00  1.00000E-02  0.00000E+00\n"
    "        17    0    0    0                 NONE                 NONE\n"
    "         8    0    0    0                 NONE                 NONE\n"
    "         0    0    0    0                 NONE                 NONE\n"
    "         0    0    0    0                 NONE                 NONE\n"
    "  1.00000E+00  2.00000E+00\n    -1\n";

/// Closes the report that is about to open and returns its text through the clipboard.
void CopyReport() {
  QTimer::singleShot(0, [] {
    auto& report = dynamic_cast<TReportDialog&>(*QApplication::activeModalWidget());
    Child<QPushButton>(report, "CopyReport").click();
    report.close();
  });
}

class Jobs : public testing::Test {
 protected:
  Jobs() { Open(); }

  void Open() {
    window.reset();
    const QString ini = TestFolder() + "/velmora.ini";
    if (!QFileInfo::exists(ini)) WriteTestFile("velmora.ini", "");
    window = std::make_unique<TViewWnd>(ini);
    window->Dialogs.LoadDelayMs = 1'000'000;
  }
  void Trigger(const char* name) { Child<QAction>(*window, name).trigger(); }
  QString JobLine() { return Child<QToolButton>(*window, "JobButton").text(); }
  bool SaysWhatWasThere() { return !Child<QToolButton>(*window, "JobButton").isHidden(); }
  TMeasuredData& Data() { return window->Legend().Data; }
  double MiddleAmplitude() { return Data().All.Get(0)->Get(1)->Position.y; }

  QString geometry = WriteTestFile("geometry.unv", kGeometry);
  QString shapes = WriteTestFile("shapes.txt", kShapes);
  std::unique_ptr<TViewWnd> window;
};

TEST_F(Jobs, FilesOpenedTogetherMakeOneModelAndComeBack) {
  window->Dialogs.Files = [this](auto...) { return QStringList{shapes, geometry}; };
  Trigger("OpenMenu");
  EXPECT_EQ(TakeMessages(), QStringList());
  EXPECT_EQ(JobLine(), "3 nodes, 2 bars, 1 normal mode at 12.5 Hz; 2 things to know");
  EXPECT_TRUE(window->windowTitle().endsWith(" : geometry.unv + shapes.txt"));
  EXPECT_EQ(window->Model().Size, 1.0);
  const QListWidgetItem& label = *Child<QListWidget>(window->Legend(), "Labels").item(0);
  EXPECT_EQ(label.text(), "F = 12.5, mode 1, 2 %");
  EXPECT_TRUE(label.toolTip().contains("&lt;b&gt;third"));

  Open();  // with the settings that it saved
  EXPECT_EQ(JobLine(), "3 nodes, 2 bars, 1 normal mode at 12.5 Hz; 2 things to know");
  window->OpenModel(WriteTestFile("a.mod", "[Nodes]\n1 0 0 0\n"));
  EXPECT_FALSE(SaysWhatWasThere());
  EXPECT_TRUE(Data().All.Empty());
}

TEST_F(Jobs, WhatIsUnloadedStaysAwayAndWhatIsMissingIsRemembered) {
  const QString more = WriteTestFile("more.unv", QByteArray(kShapes).replace("1.25", "2.25"));
  window->OpenFiles({shapes, more, geometry});
  ASSERT_EQ(Data().All.Count(), 2U);
  QFile::rename(more, more + '~');
  Open();
  EXPECT_EQ(Data().All.Count(), 1U);
  EXPECT_EQ(window->CurrentSettings().MoreFiles, QStringList(more));
  QFile::rename(more + '~', more);
  Open();
  EXPECT_EQ(Data().All.Count(), 2U);
  window->OpenData(shapes);  // in place of both
  EXPECT_EQ(window->CurrentSettings().MoreFiles, QStringList());
  Trigger("UnloadDataMenu");
  EXPECT_FALSE(SaysWhatWasThere());
  Open();
  EXPECT_EQ(JobLine(), "3 nodes, 2 bars");
}

TEST_F(Jobs, FunctionsAreListedAndLeaveTheModelAlone) {
  window->OpenFiles({geometry, shapes});
  window->OpenFiles({WriteTestFile("function.uff", kFunction)});
  EXPECT_EQ(TakeMessages(), QStringList());
  EXPECT_EQ(JobLine(), "1 function");
  EXPECT_EQ(Data().All.Count(), 1U);
}

TEST_F(Jobs, TheReportCanBeReadAndCopied) {
  window->OpenFiles({geometry, shapes});
  CopyReport();
  Child<QToolButton>(*window, "JobButton").click();
  const QString text = QGuiApplication::clipboard()->text();
  for (const char* const part : {"geometry.unv", "2411", "1710", "line 17"}) {
    EXPECT_TRUE(text.contains(part)) << part << '\n' << text.toStdString();
  }
}

TEST_F(Jobs, UnmeasuredNodesRestOrFollow) {
  window->OpenFiles({geometry, shapes});
  EXPECT_EQ(MiddleAmplitude(), 0.0);
  Trigger("FollowMenu");
  EXPECT_DOUBLE_EQ(MiddleAmplitude(), 2.0);
  window->OpenData(shapes);  // shapes alone, for the model that is there
  EXPECT_DOUBLE_EQ(MiddleAmplitude(), 2.0);
  Open();
  EXPECT_DOUBLE_EQ(MiddleAmplitude(), 2.0);
  Trigger("RestMenu");
  EXPECT_EQ(MiddleAmplitude(), 0.0);
}

TEST_F(Jobs, WhatCannotBeReadLeavesEverythingAsItWas) {
  window->OpenFiles({geometry, shapes});
  const QString line = JobLine();
  window->OpenFiles({WriteTestFile("cut.unv", kGeometry.left(40))});
  EXPECT_EQ(TakeMessages().size(), 1);
  EXPECT_EQ(JobLine(), line);
  EXPECT_EQ(window->Model().Nodes.Count(), 3U);
  EXPECT_EQ(Data().All.Count(), 1U);
}

TEST_F(Jobs, AFormGoesToWhoShowsPanels) {
  const QString form = WriteTestFile("f.xml", "<?xml version=\"1.0\"?>\n<ui version=\"4.0\"/>\n");
  QStringList opened;
  window->OpenForm = [&](const QString& name) { opened << name; };
  window->OpenFiles({form, geometry, shapes});
  EXPECT_EQ(opened, QStringList(form));
  EXPECT_EQ(window->Model().Nodes.Count(), 3U);
}

TEST_F(Jobs, SavedFilesHoldTheSame) {
  window->OpenFiles({geometry, shapes});
  WriteTestFile("saved.dat", "of somebody else");
  bool overwrites = false;
  window->Dialogs.Overwrite = [&](auto, const QString& name) {
    EXPECT_TRUE(name.endsWith("/saved.dat")) << name.toStdString();
    return std::exchange(overwrites, true);
  };
  for (const QString name : {"saved", "saved.mod", "saved.unv"}) {
    const QString path = TestFolder() + '/' + name;
    window->Dialogs.JobFile = [path](auto...) { return path; };
    if (overwrites && !IsUniversalName(name)) CopyReport();  // of what a data file does not hold
    Trigger("SaveJobMenu");
    EXPECT_EQ(TakeMessages(), QStringList());
    if (name == "saved") {
      EXPECT_EQ(Contents(TestFolder() + "/saved.dat"), "of somebody else");
      EXPECT_FALSE(QFile::exists(TestFolder() + "/saved.mod"));
      continue;
    }
    TModel model;
    TMeasuredData data;
    QStringList files{path};
    if (!IsUniversalName(path)) files << DataFileBeside(path);
    const TOpenedJob job = OpenJob(files, model, data);
    EXPECT_TRUE(job.HasModel && job.HasData) << name.toStdString();
    EXPECT_EQ(model.Nodes.Get(2)->Position.x + model.Centre.x, 1002.0);
    EXPECT_EQ(data.All.Get(0)->Get(2)->Position.y, 3.0);
    EXPECT_EQ(data.All.Get(0)->Frequency, 12.5);
  }
}

TEST_F(Jobs, ConvertingSaysWhatWasLostAndWritesNoEmptyModel) {
  const QString data = WriteTestFile("own.dat", "[F = 1]\n1 0 1 0\n");
  const QString own = WriteTestFile("own.mod", "[Nodes]\n1 0 0 0\n[Elements]\n1\n1 1 0 -1 2 1 9\n");
  const QString function = WriteTestFile("function.uff", kFunction);
  const QString out = TestFolder() + "/out.mod";
  const struct {
    QStringList files;
    const char* says;
    bool isGood, isWritten;
  } cases[] = {{{data}, "out.mod: there is no model.", false, false},
               {{function}, "out.mod: there is no model.", false, false},
               {{shapes}, "shapes.txt: there is no model for the shapes.", false, false},
               {{own}, "own.mod, line 5: element 1 names node 9", false, true},
               {{geometry, shapes}, "4 things to know (--report tells which)", true, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.says);
    QFile::remove(out);
    bool good = false;
    ConvertFiles(
        ParseCommandLine(QStringList{"velmora-animator", "--convert"} + c.files + QStringList{out}),
        good);
    EXPECT_TRUE(TakeMessages().join('\n').contains(c.says));
    EXPECT_EQ(good, c.isGood);
    EXPECT_EQ(QFile::exists(out), c.isWritten);
  }
#ifdef Q_OS_UNIX
  bool good = true;
  {
    const TFullDisk disk(20);
    ConvertFiles(ParseCommandLine({"velmora-animator", "--convert", geometry, shapes, out}), good);
  }
  // The reason is the system's, in its user's language.
  const QStringList messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1);
  EXPECT_TRUE(messages[0].startsWith("Cannot write out.dat: ")) << messages[0].toStdString();
  EXPECT_FALSE(good);
#endif
}

TEST_F(Jobs, TheProgramConvertsAndReportsWithoutADisplay) {
  const QMap<QString, QString> noDisplay{{"DISPLAY", ":9871"}};
  const QString unv = TestFolder() + "/out.unv";
  const TRun run = RunProgram(
      "velmora-animator",
      {"--convert", "--report", shapes, geometry, unv, "--lines", "82", "--shapes", "55"},
      noDisplay);
  EXPECT_EQ(run.Status, 0) << run.Errors.toStdString();
  EXPECT_TRUE(run.Out.contains("3 nodes, 2 bars, 1 normal mode at 12.5 Hz"))
      << run.Out.toStdString();
  const QByteArray text = Contents(unv);
  EXPECT_TRUE(text.contains("\n    82\n") && text.contains("\n    55\n"));

  const QString mod = TestFolder() + "/out.mod";
  EXPECT_EQ(RunProgram("velmora-animator", {"--convert", unv, mod}, noDisplay).Status, 0);
  EXPECT_TRUE(Contents(TestFolder() + "/out.dat").startsWith("[F = 12.5]\n"));
  // The files that were written hold the one shape that was read.
  const TRun compared =
      RunProgram("velmora-animator", {"--mac", "--complexity", geometry, shapes, unv}, noDisplay);
  EXPECT_TRUE(compared.Out.startsWith("MAC\t12.5\n12.5\t1.0000\n\nPairs above 0.8\n") &&
              compared.Out.contains("\n12.5\t12.5\t1.0000\t0.00\n") &&
              compared.Out.contains("\n12.5\t1.0000\t0.00\n"))
      << compared.Out.toStdString();
  const TRun alone = RunProgram("velmora-animator", {"--mac", geometry}, noDisplay);
  EXPECT_EQ(alone.Status, 1);
  EXPECT_TRUE(alone.Errors.contains("There are no data sets in geometry.unv."))
      << alone.Errors.toStdString();
  const TRun none =
      RunProgram("velmora-animator", {"--report", WriteTestFile("x.unv", "x")}, noDisplay);
  EXPECT_EQ(none.Status, 1);
  EXPECT_TRUE(none.Errors.contains("x.unv")) << none.Errors.toStdString();
}

}  // namespace
