#include "components/sources/macro/Macroeditor.h"

#include "components/sources/Macro.h"
#include "tests/support/Testing.h"

namespace {

class MacroEditor : public testing::Test {
 protected:
  MacroEditor() {
    for (const auto& [variable, name] : {std::pair(&speed, "Speed"), std::pair(&load, "Load")}) {
      variable->SetName(QLatin1String(name));
      variable->SetValue(4.0);
      list.Add(variable);
    }
  }

  void Open(const char* text) {
    editor = std::make_unique<TMacroEditor>(QLatin1String(text), list);
    applied = std::make_unique<QSignalSpy>(editor.get(), &TMacroEditor::OnApply);
  }
  QPlainTextEdit& Text() { return Child<QPlainTextEdit>(*editor, "Text"); }
  QString Label(const char* name) { return Child<QLabel>(*editor, name).text(); }
  /// What is underlined.
  std::string Marked() {
    const auto marks = Text().extraSelections();
    return marks.size() == 1 ? marks[0].cursor.selectedText().toStdString() : "none";
  }
  void Push(QDialogButtonBox::StandardButton button) { ButtonOf(*editor, button).click(); }
  /// A double click on the entry of a list that begins with `text`.
  void Choose(const char* name, const char* text) {
    auto* entries = editor->findChild<QListWidget*>(name);
    const auto found = entries->findItems(QLatin1String(text), Qt::MatchStartsWith);
    ASSERT_FALSE(found.isEmpty()) << text;
    emit entries->itemActivated(found[0]);
  }

  TVariable speed, load;
  TKorvalCompList list{nullptr, &TVariable::staticMetaObject};
  std::unique_ptr<TMacroEditor> editor;
  std::unique_ptr<QSignalSpy> applied;
};

TEST_F(MacroEditor, SaysAtOnceWhatIsWrongAndWhatIsTheValue) {
  Open("[Speed]*2");
  EXPECT_EQ(Label("Error"), "No errors");
  EXPECT_EQ(Label("Value"), "= 8");
  EXPECT_TRUE(Text().extraSelections().isEmpty());
  QTest::keyClicks(&Text(), "+%");
  EXPECT_EQ(Label("Error"), "Illegal character");
  EXPECT_EQ(Label("Value"), "");
  EXPECT_EQ(Marked(), "%");
}

TEST_F(MacroEditor, PutsTheCursorWhereTheErrorIsAndMarksIt) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"1+%2", 2, "%"},     {"2 3", 2, "3"},           {"(1+2", 4, "2"},  // the text ends too early
      {"1+", 2, "+"},       {"1+[Weight]*2", 10, "]"},                    // behind a wrong name
      {"1+LOG(2)", 5, "G"}, {"1+sin(1)", 2, "s"},      {"sin(1)", 0, "s"}, {"MAX(1)", 6, ")"},
      {" ", 1, " "},        {"[Speed]", 7, "none"},
  };
  for (const auto& [text, cursor, marked] : cases) {
    SCOPED_TRACE(text);
    Open(text);
    EXPECT_EQ(Text().textCursor().position(), cursor);
    EXPECT_EQ(Marked(), marked);
  }
}

TEST_F(MacroEditor, ShowsAnErrorFarDown) {
  Open(("1" + QString(" + 1").repeated(2000) + '%').toLatin1());
  editor->show();
  QApplication::processEvents();
  EXPECT_TRUE(Text().viewport()->rect().contains(Text().cursorRect()));
}

TEST_F(MacroEditor, ClosesWithOkOnlyOverATextWithoutErrors) {
  Open("1");
  editor->show();
  Text().setPlainText("1+*2");
  Push(QDialogButtonBox::Ok);
  EXPECT_TRUE(editor->isVisible());
  EXPECT_EQ(applied->count(), 0);
  EXPECT_EQ(Text().textCursor().position(), 2);
  Push(QDialogButtonBox::Apply);
  EXPECT_EQ(applied->takeFirst()[0].toString(), "1+*2");
  Text().setPlainText("1+2");
  Push(QDialogButtonBox::Ok);
  EXPECT_FALSE(editor->isVisible());
  EXPECT_EQ(applied->takeFirst()[0].toString(), "1+2");
  Open("1");
  Push(QDialogButtonBox::Cancel);
  EXPECT_EQ(applied->count(), 0);
}

TEST_F(MacroEditor, WritesVariablesAndFunctionsAndFollowsTheList) {
  Open("");
  Choose("Functions", "MAX");
  Choose("Variables", "Load");
  Text().moveCursor(QTextCursor::NextCharacter);
  Choose("Functions", "PI");
  EXPECT_EQ(Text().toPlainText(), "MAX([Load];PI)");
  EXPECT_EQ(Label("Value"), "= 4");
  Text().selectAll();
  Choose("Functions", "ABS");
  Choose("Variables", "Speed");
  EXPECT_EQ(Text().toPlainText(), "ABS([Speed])");
  Text().setPlainText("[Late]");
  TVariable late;
  late.SetName("Late");
  list.Add(&late);
  EXPECT_EQ(Label("Error"), "No errors");
  Choose("Variables", "Late");
  EXPECT_EQ(Text().toPlainText(), "[Late][Late]");
}

TEST_F(MacroEditor, OpensOnADoubleClickOnTheMacro) {
  TMacro macro;
  macro.GetVariables()->Add(&speed);
  QTimer::singleShot(0, [] {
    auto* opened = qobject_cast<TMacroEditor*>(QApplication::activeModalWidget());
    ASSERT_TRUE(opened);
    opened->findChild<QPlainTextEdit*>("Text")->setPlainText("[Speed]^2");
    opened->accept();
  });
  QTest::mouseDClick(&macro, Qt::LeftButton);
  EXPECT_EQ(macro.GetMacroText(), "[Speed]^2");
  EXPECT_EQ(macro.GetValue(), 16.0);
  // The editor goes with its macro.
  auto* brief = new TMacro;
  QTimer::singleShot(0, [brief] { delete brief; });
  QTest::mouseDClick(brief, Qt::LeftButton);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
