#include "components/controls/Valueedit.h"

#include "components/channels/Variable.h"
#include "components/graphing/Formatsettings.h"
#include "tests/support/Testing.h"

namespace {

/// A form with a value edit that has the focus, and a field beside it.
struct ValueEdit : testing::Test {
  ValueEdit() {
    edit.setGeometry(10, 10, 120, 26);
    other.setGeometry(10, 50, 120, 26);
    edit.SetMin(0.0);
    edit.SetMax(100.0);
    edit.SetValue(20.0);
    form.show();
    QApplication::setActiveWindow(&form);
    edit.setFocus();
    field.selectAll();
  }
  ~ValueEdit() override { SetFormatLocale(QLocale::system()); }

  void Type(const QString& text) {
    field.selectAll();
    QTest::keyClicks(&edit, text);
  }

  QWidget form;
  TValueEdit edit{&form};
  QLineEdit other{&form};
  QLineEdit& field = *edit.findChild<QLineEdit*>();
};

TEST_F(ValueEdit, ChecksWhileOneTypesAndTakesOnEnter) {
  edit.SetUnits("mm");
  QSignalSpy finished(&edit, &TValueEdit::editingFinished);
  const std::tuple<const char*, const char*, double> cases[] = {
      {"5", "", 5.0},
      {" 7.25 ", "", 7.25},
      {"1e1 mm", "", 10.0},
      {"0", "", 0.0},
      {"100", "", 100.0},
      {"101", "Must lie between 0 and 100", 100.0},
      {"-1", "Must lie between 0 and 100", 100.0},
      {"", "Not a number", 100.0},
      {"3,5", "Not a number", 100.0},
      {"five", "Not a number", 100.0},
      {"1e999", "Not a number", 100.0},
      {"nan", "Not a number", 100.0},
      {"42", "", 42.0}};
  for (const auto& [text, fault, value] : cases) {
    SCOPED_TRACE(text);
    Type(text);
    if (!*text) QTest::keyClick(&edit, Qt::Key_Delete);
    EXPECT_EQ(edit.Fault(), fault);
    EXPECT_EQ(field.toolTip(), fault);
    const QColor base = field.palette().color(QPalette::Base);
    EXPECT_EQ(base == QColor(255, 214, 214), *fault != 0);
    finished.clear();
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(finished.count(), *fault ? 0 : 1);
    EXPECT_EQ(edit.GetValue(), value);
    if (*fault) {
      EXPECT_EQ(field.text(), text);  // to be mended
    }
  }
  EXPECT_EQ(field.text(), "42");
}

TEST_F(ValueEdit, EscapeBringsTheValueBackAndLeavingTakesWhatIsRight) {
  QSignalSpy changes(&edit, &TValueEdit::OnChange);
  for (const char* text : {"55", "x"}) {
    Type(text);
    QTest::keyClick(&edit, Qt::Key_Escape);
    EXPECT_EQ(field.text(), "20");
  }
  EXPECT_EQ(edit.Fault(), "");
  EXPECT_EQ(changes.count(), 0);
  for (const char* text : {"55", "555"}) {
    edit.setFocus();
    Type(text);
    other.setFocus();
    EXPECT_EQ(edit.GetValue(), 55.0);
    EXPECT_EQ(field.text(), "55");
  }
  EXPECT_EQ(edit.Fault(), "");
}

TEST_F(ValueEdit, StepsByKeysAndWheelWithinItsLimits) {
  edit.SetStep(0.1);
  edit.SetStep(0.0);  // ignored
  const auto wheel = [this](int notches) {
    const QPointF place(5, 5);
    QWheelEvent event(place, edit.mapToGlobal(place), {}, {0, 120 * notches}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&edit, &event);
  };
  const std::tuple<const char*, Qt::Key, double> cases[] = {
      // behind what is typed
      {"", Qt::Key_Up, 20.1},       {"", Qt::Key_Up, 20.2},      {"", Qt::Key_Up, 20.3},
      {"", Qt::Key_Down, 20.2},     {"", Qt::Key_PageUp, 21.2},  {"", Qt::Key_PageDown, 20.2},
      {"99.95", Qt::Key_Up, 100.0}, {"", Qt::Key_Up, 100.0},  // at the limit
      {"no", Qt::Key_Down, 99.9},   {"500", Qt::Key_Down, 100.0}};
  for (const auto& [typed, key, value] : cases) {
    SCOPED_TRACE(value);
    if (*typed) Type(typed);
    QTest::keyClick(&edit, key);
    EXPECT_EQ(edit.GetValue(), value);  // without the noise of sums
    EXPECT_EQ(edit.Fault(), "");
  }
  wheel(-2);
  EXPECT_EQ(edit.GetValue(), 99.8);
  wheel(1);
  EXPECT_EQ(edit.GetValue(), 99.9);
  edit.setReadOnly(true);
  QTest::keyClick(&edit, Qt::Key_Down);
  wheel(-1);
  EXPECT_EQ(edit.GetValue(), 99.9);
}

TEST_F(ValueEdit, ShowsItsFormatAndEditsAPlainNumber) {
  SetFormatLocale(QLocale("en_US"));
  edit.SetMax(0.0);  // no limits
  edit.GetFormat()->SetFormat(TNumberFormat::ffNumber);
  edit.SetValue(1234567.5);
  EXPECT_EQ(field.text(), "1234567.50");
  other.setFocus();
  EXPECT_EQ(field.text(), "1,234,567.50");
  edit.GetFormat()->SetIsTimeFormat(true);
  edit.GetFormat()->SetTimeFormatStr("hh:nn");
  edit.SetValue(1.5);
  EXPECT_EQ(field.text(), "12:00");
  edit.setFocus();
  EXPECT_EQ(field.text(), "1899-12-31 12:00:00.000");
  Type("1900-01-01 06:00");
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(edit.GetValue(), 2.25);
  Type("1900-13-01");
  EXPECT_EQ(edit.Fault(), "Not a date and time");
}

TEST_F(ValueEdit, ShowsNoNumberWithoutItsLastDigitsAndRoundsNoneThatIsOnlyLookedAt) {
  edit.SetMax(0.0);
  edit.SetValue(12345.75);
  edit.SetUnits("mm");
  QTest::keyClick(&edit, Qt::Key_Return);
  other.setFocus();
  EXPECT_EQ(field.text(), "12346");
  edit.resize(edit.minimumSizeHint());
  EXPECT_TRUE(field.text().endsWith(QChar(0x2026))) << field.text().toStdString();
  edit.setFocus();
  EXPECT_EQ(field.text(), "12346");
  other.setFocus();
  EXPECT_EQ(edit.GetValue(), 12345.75);
  edit.resize(200, 26);
  EXPECT_EQ(field.text(), "12346");
}

TEST_F(ValueEdit, FeedsAControlAndRefusesWhatItsOwnerRefuses) {
  TVariable target(&form);
  edit.GetOutput()->SetDataControl(&target);
  edit.OnValidate = [](double value) { return value != 13.0; };
  QObject::connect(&edit, &TValueEdit::OnChange, &target,
                   [&] { EXPECT_EQ(target.GetValue(), edit.GetValue()); });
  Type("30");
  EXPECT_EQ(target.GetValue(), 20.0);  // not yet
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(target.GetValue(), 30.0);
  QTest::keyClick(&edit, Qt::Key_Up);
  EXPECT_EQ(target.GetValue(), 31.0);
  Type("13");
  EXPECT_EQ(edit.Fault(), "Not allowed");
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(target.GetValue(), 31.0);
  // One control at both ports: the field shows what came of it.
  edit.GetInput()->SetDataControl(&target);
  Type("50");
  QTest::keyClick(&edit, Qt::Key_Return);
  QApplication::processEvents();
  EXPECT_EQ(target.GetValue(), 50.0);
  EXPECT_EQ(field.text(), "50");
}

TEST_F(ValueEdit, ShowsAControlButNotOverWhatIsTyped) {
  TVariable source(&form);
  edit.GetInput()->SetDataControl(&source);
  QSignalSpy changes(&edit, &TValueEdit::OnChange);
  source.SetValue(40.0);
  source.SetValue(41.0);
  QApplication::processEvents();
  EXPECT_EQ(field.text(), "41");
  EXPECT_EQ(changes.count(), 2);
  Type("5");
  source.SetValue(42.0);
  QApplication::processEvents();
  EXPECT_EQ(field.text(), "5");
  QTest::keyClick(&edit, Qt::Key_Escape);
  EXPECT_EQ(field.text(), "42");
  source.SetValue(420.0);  // beyond the limits, but that is what it is
  QApplication::processEvents();
  EXPECT_EQ(field.text(), "420");
  EXPECT_EQ(edit.Fault(), "Must lie between 0 and 100");
  source.SetValue(kNan);
  QApplication::processEvents();
  EXPECT_EQ(field.text(), "NAN");
  EXPECT_EQ(edit.Fault(), "Not a number");
  EXPECT_EQ(edit.GetValue(), 420.0);
}

TEST(TValueEdit, MayBeDestroyedByItsValue) {
  auto* edit = new TValueEdit;
  const QPointer<TValueEdit> alive(edit);
  QObject::connect(edit, &TValueEdit::OnChange, [](QObject* sender) { delete sender; });
  edit->stepBy(1);
  EXPECT_FALSE(alive);
}

}  // namespace
