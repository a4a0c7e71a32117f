#include "components/package/Panelwindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMenuBar>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Graph.h"
#include "tests/components/Panelforms.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;
using TAnswer = TPanelWindow::TAnswer;

/// The window of a panel with a channel and a graph, and how often it asks what to do.
struct TOpenPanel {
  TOpenPanel()
      : file(WriteTestFile("panel.ui", FormOf("<widget class=\"TDataChannel\" name=\"c\"/>\n"
                                              "<widget class=\"TVariable\" name=\"v\"/>\n"
                                              "<widget class=\"TKorvalGraph\" name=\"g\"/>\n")
                                           .toUtf8())),
        window(OpenPanel(file)) {
    window.AskToSave = [this](const QString& question) {
      questions.append(question);
      return answer;
    };
    window.show();
  }

  template <class T>
  T* Find(const char* name) {
    return window.Panel().Root()->findChild<T*>(name);
  }
  std::unique_ptr<TPanel> Reread() const { return TPanel::Load(file, nullptr); }

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

TEST(Panelwindow, ItsMenuSavesSettingsAndSamples) {
  TOpenPanel open;
  auto* channel = open.Find<TDataChannel>("c");
  channel->SetScaleFactor(2.5);
  channel->SetTimeAndValue(1.0, 4.0);
  MenuItem(open.window, "Save")->trigger();
  const auto again = open.Reread();
  const auto* saved = again->Root()->findChild<TDataChannel*>("c");
  EXPECT_EQ(saved->GetScaleFactor(), 2.5);
  ASSERT_EQ(saved->GetData()->Count(), 1);
  EXPECT_EQ(saved->GetData()->GetValues(0, TFloatList::kValue), 10.0);
  EXPECT_TRUE(open.window.close());
  EXPECT_THAT(open.questions, ElementsAre());
}

TEST(Panelwindow, AsksOnlyAboutSettingsAndKeepsToTheAnswer) {
  const struct {
    TAnswer answer;
    bool closes;
    double saved;
  } cases[] = {
      {TAnswer::Cancel, false, 1.0}, {TAnswer::Discard, true, 1.0}, {TAnswer::Save, true, 3.0}};
  for (const auto& c : cases) {
    TOpenPanel open;
    open.answer = c.answer;
    // Values come by themselves.
    open.Find<TDataChannel>("c")->SetValue(7.0);
    open.Find<TVariable>("v")->SetValue(8.0);
    EXPECT_TRUE(open.window.close());
    EXPECT_THAT(open.questions, ElementsAre());

    open.window.show();
    open.Find<TDataChannel>("c")->SetScaleFactor(3.0);
    EXPECT_EQ(open.window.close(), c.closes);
    EXPECT_THAT(open.questions,
                ElementsAre("Settings of " + open.file + " have been changed. Save them?"));
    EXPECT_EQ(open.Reread()->Root()->findChild<TDataChannel*>("c")->GetScaleFactor(), c.saved);
  }
}

TEST(Panelwindow, SavesChangedSettingsWithTheSession) {
  TOpenPanel open;
  const QDateTime before = QFileInfo(open.file).lastModified();
  EndSession();
  EXPECT_EQ(QFileInfo(open.file).lastModified(), before);
  open.Find<TDataChannel>("c")->SetScaleFactor(3.0);
  EndSession();
  EXPECT_EQ(open.Reread()->Root()->findChild<TDataChannel*>("c")->GetScaleFactor(), 3.0);
  EXPECT_TRUE(open.window.close());
  EXPECT_THAT(open.questions, ElementsAre());
}

TEST(Panelwindow, AFailureToWriteIsSaidAndLosesNothing) {
  TOpenPanel open;
  open.Find<TDataChannel>("c")->SetScaleFactor(3.0);
  open.answer = TAnswer::Save;
  // A folder of that name lets no file take its place.
  ASSERT_TRUE(QFile::rename(open.file, open.file + ".old"));
  ASSERT_TRUE(QDir().mkdir(open.file));
  EXPECT_FALSE(open.window.close());
  EXPECT_TRUE(open.window.isVisible());
  const QStringList messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1);
  EXPECT_THAT(messages[0].toStdString(), StartsWith(("Cannot write " + open.file).toStdString()));
  EXPECT_EQ(open.Find<TDataChannel>("c")->GetScaleFactor(), 3.0);
  EXPECT_THAT(QDir(TestFolder()).entryList(QDir::Files), ElementsAre(QString("panel.ui.old")));
  // Once there is room, the same panel is written.
  ASSERT_TRUE(QDir().rmdir(open.file));
  EXPECT_TRUE(open.window.close());
  EXPECT_EQ(open.Reread()->Root()->findChild<TDataChannel*>("c")->GetScaleFactor(), 3.0);
}

TEST(Panelwindow, ReloadBringsTheFileBackAndKeepsThePanelIfThatIsSpoilt) {
  TOpenPanel open;
  open.Find<TDataChannel>("c")->SetScaleFactor(3.0);
  open.window.Reload();
  EXPECT_EQ(open.Find<TDataChannel>("c")->GetScaleFactor(), 1.0);
  open.Find<TDataChannel>("c")->SetScaleFactor(4.0);
  WriteTestFile("panel.ui", "<ui>");
  open.window.Reload();
  EXPECT_EQ(TakeMessages().size(), 1);
  EXPECT_EQ(open.Find<TDataChannel>("c")->GetScaleFactor(), 4.0);
}

TEST(Panelwindow, ShowsComponentsWithoutAFaceOnRequest) {
  TOpenPanel open;
  auto* channel = open.Find<TDataChannel>("c");
  EXPECT_FALSE(channel->isVisible());
  EXPECT_TRUE(open.Find<TKorvalGraph>("g")->isVisible());
  MenuItem(open.window, "Show components")->trigger();
  EXPECT_TRUE(channel->isVisible());
  MenuItem(open.window, "Show components")->trigger();
  EXPECT_FALSE(channel->isVisible());
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
    auto* source = panel->Root()->findChild<TDataChannel*>("source");
    for (int i = 0; i < 300; ++i) source->SetTimeAndValue(i, i % 7 * 1000.0);
    panel->Root()->grab();
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->Settings().toStdString(), before);
  }
}

TEST(Panelwindow, SaysWhyAPictureCannotBeWritten) {
  const QString file =
      WriteTestFile("p.ui", FormOf("<widget class=\"TVariable\" name=\"v\"/>\n").toUtf8());
  const QString picture = TestFolder() + "/none/p.png";
  EXPECT_FALSE(RunPanel(file, {0.0, picture, {}, {}}));
  EXPECT_EQ(
      TakeMessages().join('\n').toStdString(),
      ("Cannot write " + picture + ": Cannot open device for writing: No such file or directory")
          .toStdString());
  EXPECT_TRUE(RunPanel(file, {0.0, TestFolder() + "/p.png", {}, {}}));
}

TEST(Panelwindow, APanelLargerThanTheScreenScrolls) {
  const QString file = WriteTestFile(
      "large.ui", FormOf("<property name=\"geometry\"><rect><x>0</x><y>0</y><width>9000</width>"
                         "<height>8000</height></rect></property>\n")
                      .toUtf8());
  TPanelWindow window(OpenPanel(file));
  window.show();
  EXPECT_LE(window.width(), window.screen()->availableSize().width());
  EXPECT_EQ(window.Panel().Root()->size(), QSize(9000, 8000));
}

}  // namespace
