#include "components/panels/Panelwindow.h"

#include <filesystem>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Graph.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using TAnswer = TPanelWindow::TAnswer;

/// The window of a panel with a channel and a graph, and how often it asks what to do.
struct TOpenPanel {
  TOpenPanel()
      : file(WriteForm("panel.ui",
                       "<widget class=\"TDataChannel\" name=\"c\"/>\n"
                       "<widget class=\"TVariable\" name=\"v\"/>\n"
                       "<widget class=\"TKorvalGraph\" name=\"g\"/>\n")),
        window(OpenPanel(file)) {
    window.Ask = [this](const QString& question, const QList<TAnswer>& answers) {
      questions.append(question);
      EXPECT_TRUE(answers.contains(answer));
      return answer;
    };
    window.show();
  }

  TDataChannel& Channel() const { return Child<TDataChannel>(window); }
  /// The scale factor in the file.
  double Saved() const {
    return Child<TDataChannel>(*TPanel::Load(file, nullptr)->Root()).GetScaleFactor();
  }

  const QString file;
  TPanelWindow window;
  TAnswer answer = TAnswer::Cancel;
  QStringList questions;
};

QAction* MenuItem(const TPanelWindow& window, const QString& text) {
  for (QAction* action : window.menuBar()->actions()[0]->menu()->actions()) {
    if (action->text().remove('&') == text) return action;
  }
  return nullptr;
}

TEST(Panelwindow, ItsMenuShowsComponentsWithoutAFaceAndSavesSettingsAndSamples) {
  TOpenPanel open;
  EXPECT_TRUE(Child<TKorvalGraph>(open.window).isVisible());
  for (const bool shown : {false, true, false}) {
    EXPECT_EQ(open.Channel().isVisible(), shown);
    MenuItem(open.window, "Show components")->trigger();
  }
  open.Channel().SetScaleFactor(2.5);
  open.Channel().SetTimeAndValue(1.0, 4.0);
  MenuItem(open.window, "Save")->trigger();
  EXPECT_EQ(open.Saved(), 2.5);
  const auto again = TPanel::Load(open.file, nullptr);
  const TFloatList& data = *Child<TDataChannel>(*again->Root()).GetData();
  ASSERT_EQ(data.Count(), 1);
  EXPECT_EQ(data.GetValues(0, TFloatList::kValue), 10.0);
  EXPECT_TRUE(open.window.close());
  EXPECT_THAT(open.questions, ElementsAre());
}

TEST(Panelwindow, AsksOnlyAboutSettingsAndKeepsToTheAnswer) {
  const std::tuple<TAnswer, bool, double> cases[] = {
      {TAnswer::Cancel, false, 1.0}, {TAnswer::Discard, true, 1.0}, {TAnswer::Save, true, 3.0}};
  for (const auto& [answer, closes, saved] : cases) {
    TOpenPanel open;
    open.answer = answer;
    // Values come by themselves.
    open.Channel().SetValue(7.0);
    Child<TVariable>(open.window).SetValue(8.0);
    EXPECT_TRUE(open.window.close());
    EXPECT_THAT(open.questions, ElementsAre());

    open.window.show();
    open.Channel().SetScaleFactor(3.0);
    EXPECT_EQ(open.window.close(), closes);
    EXPECT_THAT(open.questions,
                ElementsAre("Settings of " + open.file + " have been changed. Save them?"));
    EXPECT_EQ(open.Saved(), saved);
  }
}

TEST(Panelwindow, SavesChangedSettingsWithTheSession) {
  TOpenPanel open;
  const QDateTime before = QFileInfo(open.file).lastModified();
  EndSession();
  EXPECT_EQ(QFileInfo(open.file).lastModified(), before);
  open.Channel().SetScaleFactor(3.0);
  EndSession();
  EXPECT_EQ(open.Saved(), 3.0);
  EXPECT_TRUE(open.window.close());
  EXPECT_THAT(open.questions, ElementsAre());
}

/// A folder of the panel's name lets no file take its place, a full disk takes a part of one.
TEST(Panelwindow, AFailureToWriteIsSaidAndLosesNothing) {
  for (const bool disk : {false, true}) {
    SCOPED_TRACE(disk);
    TOpenPanel open;
    open.Channel().SetScaleFactor(3.0);
    open.answer = TAnswer::Save;
    const QByteArray before = Contents(open.file);
    const QString old = disk ? open.file : TestFolder() + "/old";
    ASSERT_TRUE(disk || (QFile::rename(open.file, old) && QDir().mkdir(open.file)));
    {
      const auto full = disk ? std::make_unique<TFullDisk>(before.size() / 2) : nullptr;
      EXPECT_FALSE(open.window.close());
    }
    EXPECT_TRUE(open.window.isVisible());
    EXPECT_THAT(TakeMessages().join('\n').toStdString(),
                StartsWith(("Cannot write " + open.file + ": ").toStdString()));
    EXPECT_EQ(open.Channel().GetScaleFactor(), 3.0);
    EXPECT_EQ(Contents(old), before);
    EXPECT_EQ(QDir(TestFolder()).entryList(QDir::Files).size(), 1) << "nothing is left behind";
    // Once there is room, the same panel is written.
    ASSERT_TRUE(disk || QDir().rmdir(open.file));
    EXPECT_TRUE(open.window.close());
    EXPECT_EQ(open.Saved(), 3.0);
    QFile::remove(old);
  }
}

TEST(Panelwindow, ReloadBringsTheFileBackAndKeepsThePanelIfThatIsSpoilt) {
  TOpenPanel open;
  open.Channel().SetScaleFactor(3.0);
  open.window.Reload();
  EXPECT_EQ(open.Channel().GetScaleFactor(), 3.0);
  open.answer = TAnswer::Reload;
  open.window.Reload();
  EXPECT_EQ(open.Channel().GetScaleFactor(), 1.0);
  open.window.Reload();  // nothing would go
  EXPECT_THAT(open.questions, testing::SizeIs(2));
  open.Channel().SetValue(4.0);
  open.window.Reload();
  EXPECT_THAT(open.questions, testing::SizeIs(3));
  open.Channel().SetScaleFactor(4.0);
  WriteTestFile("panel.ui", "<ui>");
  open.window.Reload();
  EXPECT_EQ(TakeMessages().size(), 1);
  EXPECT_EQ(open.Channel().GetScaleFactor(), 4.0);
}

/// Else closing any panel that has run would ask.
TEST(Panelwindow, RunningChangesNoSettingOfAnyClass) {
  for (const TComponentClass& component : ComponentClasses()) {
    SCOPED_TRACE(component.Name.toStdString());
    const auto panel = LoadForm(
        QStringLiteral("<widget class=\"%1\" name=\"it\"/>\n"
                       "<widget class=\"TKorvalGraph\" name=\"plot\"/>\n"
                       "<widget class=\"TDataChannel\" name=\"source\">\n"
                       " <property name=\"ClientControls.Components\"><stringlist><string>it"
                       "</string></stringlist></property>\n"
                       " <property name=\"GraphLink.Graph\"><string>plot</string></property>\n"
                       "</widget>\n")
            .arg(component.Name),
        nullptr);
    ASSERT_TRUE(panel);
    const std::string before = panel->Settings().toStdString();
    auto& source = Child<TDataChannel>(*panel->Root(), "source");
    for (int i = 0; i < 300; ++i) source.SetTimeAndValue(i, i % 7 * 1000.0);
    panel->Root()->grab();
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->Settings().toStdString(), before);
  }
}

TEST(Panelwindow, SaysWhyAPictureCannotBeWritten) {
  const QString file = WriteForm("p.ui", "<widget class=\"TVariable\" name=\"v\"/>\n");
  const QString picture = TestFolder() + "/none/p.png";
  EXPECT_FALSE(RunPanel(file, {0.0, picture, {}, {}}));
  EXPECT_THAT(TakeMessages(),
              ElementsAre("Cannot write " + picture + ": No such file or directory"));
  // An earlier picture is not written over, but replaced.
  const std::filesystem::path earlier(WriteTestFile("q.png", "earlier").toStdString());
  const std::string kept = TestFolder().toStdString() + "/kept";
  std::filesystem::create_hard_link(earlier, kept);
  EXPECT_TRUE(RunPanel(file, {0.0, TestFolder() + "/q.png", {}, {}}));
  EXPECT_EQ(std::filesystem::file_size(kept), 7u);
  EXPECT_FALSE(QImage(TestFolder() + "/q.png").isNull());
}

TEST(Panelwindow, APanelLargerThanTheScreenScrolls) {
  TPanelWindow window(
      OpenPanel(WriteForm("large.ui",
                          "<property name=\"geometry\"><rect><x>0</x><y>0</y><width>9000</width>"
                          "<height>8000</height></rect></property>\n")));
  window.show();
  EXPECT_LE(window.width(), window.screen()->availableSize().width());
  EXPECT_EQ(window.Panel().Root()->size(), QSize(9000, 8000));
}

/// A window of a panel whose logger is switched on.
struct TWantingPanel {
  explicit TWantingPanel(const QString& name = "panel.ui", bool trusted = false)
      : window(OpenPanel(TestFolder() + '/' + name, trusted), trusted) {
    window.show();
  }
  static void Write(const QString& log) {
    WriteForm("panel.ui", QStringLiteral(R"(<widget class="TVariable" name="v"/>
<widget class="TDataLogger" name="l">
<property name="Active"><bool>true</bool></property>
<property name="FileName"><string>%1</string></property>
<property name="Controls.Components"><stringlist><string>v</string></stringlist></property>
</widget>
)")
                              .arg(log));
  }
  void Push(const QString& text) const {
    for (auto* button : Child<TWishBar>(window).findChildren<QPushButton*>()) {
      if (button->text() == text) return button->click();
    }
    ADD_FAILURE() << text.toStdString();
  }
  bool IsAtRest() const { return window.Panel().IsAtRest(); }
  /// Whether a value gets into the log.
  bool Logs(const QString& log) const {
    Child<TVariable>(window).SetValue(1.0);
    return QFile::exists(TestFolder() + '/' + log);
  }

  TPanelWindow window;
};

TEST(Panelwindow, APanelThatWantsSomethingAsksUntilItIsAllowed) {
  TWantingPanel::Write("log.txt");
  {
    TWantingPanel open;
    EXPECT_THAT(open.window.windowTitle().toStdString(), HasSubstr("(at rest)"));
    EXPECT_EQ(Child<QPlainTextEdit>(open.window).toPlainText(),
              QString::fromUtf8("\u2022 write log.txt beside the panel"));
    EXPECT_FALSE(open.Logs("log.txt"));
    open.Push("Leave off");
    EXPECT_FALSE(open.Logs("log.txt"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(open.window.findChild<TWishBar*>());
    MenuItem(open.window, "Start...")->trigger();
    open.Push("Start");
    EXPECT_TRUE(open.Logs("log.txt"));
    EXPECT_THAT(open.window.windowTitle().toStdString(), testing::Not(HasSubstr("(at rest)")));
    // The same again in this window needs no answer, in another it does.
    open.window.Ask = [](const QString&, const QList<TAnswer>&) { return TAnswer::Reload; };
    open.window.Reload();
    EXPECT_FALSE(open.IsAtRest());
  }
  {
    TWantingPanel open;
    open.Push("Always for this file");
    EXPECT_FALSE(open.IsAtRest());
    EXPECT_THAT(TakeMessages(), IsEmpty());
    // What the program itself saves stays allowed.
    Child<TVariable>(open.window).SetValue(7.0);
    open.window.Save();
  }
  EXPECT_FALSE(TWantingPanel().IsAtRest());
  TWantingPanel::Write("log2.txt");
  EXPECT_TRUE(TWantingPanel().IsAtRest());
  EXPECT_FALSE(TWantingPanel("panel.ui", true).IsAtRest());
  TWantingPanel().Push("Always in this folder");
  TWantingPanel::Write("log3.txt");
  EXPECT_FALSE(TWantingPanel().IsAtRest());
}

TEST(Panelwindow, AnswersAreForTheFileThatWasShownAndForThePlacesItLedTo) {
  ASSERT_TRUE(QDir(TestFolder()).mkdir("log"));
  TWantingPanel::Write("log/a.txt");
  TWantingPanel open;
  TWantingPanel::Write("../b.txt");  // while the question stands
  open.Push("Always for this file");
  EXPECT_TRUE(TWantingPanel().IsAtRest());
  TWantingPanel::Write("log/a.txt");
  EXPECT_FALSE(TWantingPanel().IsAtRest());
  ASSERT_TRUE(QDir(TestFolder()).rmdir("log"));
  ASSERT_TRUE(QFile::link("/", TestFolder() + "/log"));
  EXPECT_TRUE(TWantingPanel().IsAtRest());
}

TEST(Panelwindow, SavingOverAnotherProgramsChangesAsks) {
  TOpenPanel open;
  const auto change = [&] {
    QFile file(open.file);
    EXPECT_TRUE(file.open(QIODevice::Append));
    file.write("<!-- another -->\n");
  };
  const auto isChanged = [&] { return Contents(open.file).contains("<!-- another -->"); };
  open.Channel().SetScaleFactor(3.0);
  change();
  open.window.Save();
  EXPECT_THAT(open.questions,
              ElementsAre("Another program has changed " + open.file + " since it was read."));
  EXPECT_TRUE(isChanged());
  open.answer = TAnswer::SaveAs;
  open.window.AskFileName = [] { return TestFolder() + "/copy.ui"; };
  open.window.Save();
  EXPECT_TRUE(isChanged());
  EXPECT_TRUE(QFile::exists(TestFolder() + "/copy.ui"));
  // From now on it is the copy that is saved.
  EXPECT_EQ(open.window.Panel().FileName(), TestFolder() + "/copy.ui");
  WriteForm("copy.ui", "<widget class=\"TDataChannel\" name=\"c\"/>\n");
  open.answer = TAnswer::Overwrite;
  open.window.Save();
  EXPECT_EQ(TPanel::Load(TestFolder() + "/copy.ui", nullptr)->Components().size(), 3u);
  WriteForm("copy.ui", "<widget class=\"TDataChannel\" name=\"c\"/>\n");
  open.answer = TAnswer::Reload;
  open.window.Save();
  EXPECT_EQ(open.window.Panel().Components().size(), 1u);
  EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST(Panelwindow, WithoutADisplayAnotherProgramsChangesAreKeptUnlessForced) {
  for (const bool force : {false, true}) {
    const QString file = WriteForm("p.ui", "<widget class=\"TVariable\" name=\"v\"/>\n");
    // Another program writes while the panel runs.
    QTimer::singleShot(0, [] { WriteTestFile("p.ui", "<other/>"); });
    TPanelRun run{0.05, {}, file, {}};
    run.Overwrites = force;
    EXPECT_EQ(RunPanel(file, run), force);
    EXPECT_EQ(TakeMessages().size(), force ? 0 : 1);
    EXPECT_EQ(TPanel::Load(file, nullptr) != nullptr, force);
  }
}

/// Every property that names a file, and a picture of the toolkit's.
TEST(Panelwindow, FilesMeanTheSameWhenThePanelIsSavedInAnotherFolder) {
  for (const char* folder : {"a", "b", "b/c"}) ASSERT_TRUE(QDir(TestFolder()).mkdir(folder));
  QPixmap picture(4, 4);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(TestFolder() + "/a/dot.png"));
  WriteTestFile("a/x.txt", "1\n");
  QString widgets =
      "<widget class=\"QLabel\" name=\"label\"><property name=\"pixmap\"><pixmap>dot.png</pixmap>"
      "</property><property name=\"styleSheet\"><string>QLabel { background: "
      "url(&quot;dot.png&quot;) }</string></property></widget>\n"
      "<widget class=\"QPushButton\" name=\"button\"><property name=\"icon\"><iconset>"
      "<normaloff>dot.png</normaloff>dot.png</iconset></property></widget>\n";
  static const QRegularExpression names("(File|Files|FileName|Dir|Folder|Path|URL)$");
  QStringList paths;
  for (const TComponentClass& component : ComponentClasses()) {
    QString properties;
    const std::unique_ptr<QWidget> fresh(component.Make(nullptr));
    ForEachStored(*fresh, [&](const TPublished& published) {
      if (!names.match(published.Path).hasMatch()) return;
      const int type = published.Property.typeId();
      const QString name = "<string>x.txt</string>";
      if (type != QMetaType::QString && type != QMetaType::QStringList) return;
      paths << component.Name + ' ' + published.Path;
      const QString value =
          type == QMetaType::QString ? name : "<stringlist>" + name + "</stringlist>";
      properties += "<property name=\"" + published.Path + "\">" + value + "</property>";
    });
    widgets += QStringLiteral("<widget class=\"%1\" name=\"it%1\">%2</widget>\n")
                   .arg(component.Name, properties);
  }
  EXPECT_GE(paths.size(), 9) << paths.join('\n').toStdString();
  const auto first = TPanel::Load(WriteForm("a/p.ui", widgets), nullptr);
  QString error;
  ASSERT_TRUE(first->Save(TestFolder() + "/b/c/p.ui", &error));
  const QByteArray text = Contents(TestFolder() + "/b/c/p.ui");
  EXPECT_EQ(text.count("<string>../../a/x.txt</string>"), paths.size());
  EXPECT_EQ(text.count("../../a/dot.png"), 4);
  // Back again it is what it was.
  ASSERT_TRUE(first->Save(TestFolder() + "/a/p.ui", &error));
  EXPECT_EQ(Contents(TestFolder() + "/a/p.ui").count("<string>x.txt</string>"), paths.size());
}

}  // namespace
