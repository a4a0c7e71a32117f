#include "components/graphing/editors/Axiseditor.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <tuple>

#include "components/graphing/editors/Pickers.h"

namespace {

/// The published properties of an object and of its sub-objects by their dotted names.
QStringList PublishedNames(const QObject& object, const QString& prefix = {}) {
  QStringList names;
  const QMetaObject& meta = *object.metaObject();
  for (int i = QObject::staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i) {
    const QMetaProperty property = meta.property(i);
    if (!property.isStored()) continue;
    const QString name = prefix + property.name();
    if (const auto* part = property.read(&object).value<QObject*>()) {
      names += PublishedNames(*part, name + '.');
    } else {
      names << name;
    }
  }
  return names;
}

class AxisEditor : public testing::Test {
 protected:
  AxisEditor() { before.Assign(&axis); }

  template <typename T>
  T& Find(const char* name) {
    T* widget = editor.findChild<T*>(name);
    if (!widget) throw std::runtime_error(name);
    return *widget;
  }
  void Choose(const char* name, int index) { Find<QComboBox>(name).setCurrentIndex(index); }
  void Enter(const char* name, const char* text) {
    auto& edit = Find<QLineEdit>(name);
    edit.selectAll();
    QTest::keyClicks(&edit, text);
    QTest::keyClick(&edit, Qt::Key_Return);
  }
  void Push(QDialogButtonBox::StandardButton button) {
    editor.findChild<QDialogButtonBox*>()->button(button)->click();
  }

  TAxis axis;
  TAxis before;
  TAxisEditor editor{axis};
};

TEST_F(AxisEditor, HasAFieldForEveryPublishedProperty) {
  const QStringList names = PublishedNames(axis);
  EXPECT_EQ(names.size(), 23);
  for (const QString& name : names) {
    EXPECT_NE(editor.findChild<QWidget*>(name), nullptr) << name.toStdString();
  }
}

TEST_F(AxisEditor, ChangesTheAxisAtOnce) {
  QSignalSpy repaints(&axis, &TAxis::OnRepaint);
  Choose("Scale", TAxis::asLog);
  EXPECT_EQ(axis.GetScale(), TAxis::asLog);
  EXPECT_EQ(repaints.count(), 1);
  Choose("MajorTick.Pos", TTick::tpCross);
  EXPECT_EQ(axis.GetMajorTick()->GetPos(), TTick::tpCross);
  Find<QSpinBox>("MinorTick.Size").setValue(9);
  EXPECT_EQ(axis.GetMinorTick()->GetSize(), 9);
  Choose("Label.Spacing", TTickLabel::lsMinMax);
  EXPECT_EQ(axis.GetLabel()->GetSpacing(), TTickLabel::lsMinMax);
  Choose("Label.Pos", TTickLabel::lpNone);
  EXPECT_EQ(axis.GetLabel()->GetPos(), TTickLabel::lpNone);
  Choose("Label.NumFormat.Format", TNumberFormat::ffFixed);
  EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetFormat(), TNumberFormat::ffFixed);
  Find<QSpinBox>("Label.NumFormat.Digits").setValue(4);
  EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetDigits(), 4);
  Find<QSpinBox>("Label.NumFormat.Precision").setValue(7);
  EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetPrecision(), 7);
  Find<QCheckBox>("Label.NumFormat.IsTimeFormat").click();
  EXPECT_TRUE(axis.GetLabel()->GetNumFormat()->GetIsTimeFormat());
  Enter("Label.NumFormat.TimeFormatStr", "hh:nn");
  EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetTimeFormatStr(), "hh:nn");
  Enter("Title.Caption", "Speed [rpm]");
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Speed [rpm]");
  Choose("Title.Pos", TAxisTitle::tiLeft);
  EXPECT_EQ(axis.GetTitle()->GetPos(), TAxisTitle::tiLeft);
  emit Find<TColorPicker>("LineColor").OnPick(TColor::None());
  EXPECT_TRUE(axis.GetLineColor().IsNone());
  emit Find<TColorPicker>("Title.FontColor").OnPick(TColor::Green());
  EXPECT_EQ(axis.GetTitle()->GetFontColor(), TColor::Green());
  emit Find<TFontPicker>("Label.Font").OnPick(QFont("Arial", 14));
  EXPECT_EQ(axis.GetLabel()->GetFont().pointSize(), 14);
  EXPECT_EQ(repaints.count(), 13 + 5 + 11) << "each key of a text shows at once";
}

TEST_F(AxisEditor, TakesBoundsAsNumbersOrDates) {
  EXPECT_FALSE(Find<QLineEdit>("Min").isEnabled()) << "an automatic bound is not the user's";
  Find<QCheckBox>("AutoMin").click();
  Find<QCheckBox>("AutoMax").click();
  EXPECT_FALSE(axis.GetAutoMin());
  const auto refusal = [this] { return Find<QLabel>("Refusal").text().toStdString(); };
  const auto expect = [&](double min, double max, const char* reason) {
    EXPECT_EQ(axis.GetMin(), min);
    EXPECT_EQ(axis.GetMax(), max);
    EXPECT_EQ(refusal(), reason);
  };
  Enter("Min", "1.5");  // above the old maximum, but the new one follows
  expect(0.0, 1.0, "The minimum must be less than the maximum");
  EXPECT_EQ(Find<QLineEdit>("Min").text(), "1.5");
  Push(QDialogButtonBox::Ok);
  EXPECT_NE(editor.result(), QDialog::Accepted);
  Enter("Max", "2.5");
  expect(1.5, 2.5, "");
  Enter("Max", "abc");
  expect(1.5, 2.5, "\"abc\" is no number");
  Enter("Max", "inf");
  expect(1.5, 2.5, "\"inf\" is no number");
  Enter("Max", "1.5");
  expect(1.5, 2.5, "The minimum must be less than the maximum");
  Choose("Scale", TAxis::asLog);
  Enter("Min", "-1");
  expect(1.5, 2.5, "A logarithmic axis shows values above 0 only");

  Choose("Scale", TAxis::asTime);
  EXPECT_EQ(refusal(), "");
  EXPECT_EQ(Find<QLineEdit>("Max").text(), "1900-01-01 12:00:00.000");
  Enter("Max", "soon");
  expect(1.5, 2.5, "\"soon\" is no date and time");
  Enter("Max", "1900-01-09 06:00");
  EXPECT_EQ(axis.GetMax(), 10.25);
}

TEST_F(AxisEditor, ABoundThatIsNoLongerAutomaticStaysWhereItIsDrawn) {
  const char* const kBoth[] = {"AutoMin", "AutoMax"};
  for (const auto& [scale, min, max] :
       {std::tuple(TAxis::asLinear, 0.95, 10.85),  // shows 0..11
        std::tuple(TAxis::asLog, 3.0, 70.0), std::tuple(TAxis::asTime, 45000.2, 45000.9)}) {
    for (const bool maxFirst : {false, true}) {
      SCOPED_TRACE(testing::Message() << scale << maxFirst);
      TAxis drawn;
      drawn.OnQueryRange = [min = min, max = max](double& low, double& high) {
        low = min;
        high = max;
      };
      drawn.SetScale(scale);
      drawn.UpdateAxis();
      QObject::connect(&drawn, &TAxis::OnChange, &drawn, &TAxis::UpdateAxis);  // as its graph does
      const double from = drawn.WorkingMin();
      const double to = drawn.WorkingMax();
      TAxisEditor editorOfIt(drawn);
      for (const bool second : {false, true}) {
        editorOfIt.findChild<QCheckBox*>(kBoth[second != maxFirst])->click();
        EXPECT_EQ(drawn.WorkingMin(), from);
        EXPECT_EQ(drawn.WorkingMax(), to);
      }
      EXPECT_EQ(drawn.GetMin(), from);
      EXPECT_EQ(drawn.GetMax(), to);
    }
  }
}

TEST_F(AxisEditor, RestoresTheAxisOnCancel) {
  Choose("Scale", TAxis::asLog);
  Enter("Title.Caption", "Lost");
  Push(QDialogButtonBox::Cancel);
  EXPECT_TRUE(axis.SameAs(&before));
}

TEST_F(AxisEditor, KeepsWhatWasAppliedBeforeCancel) {
  Enter("Title.Caption", "Kept");
  Push(QDialogButtonBox::Apply);
  Enter("Title.Caption", "Lost");
  Push(QDialogButtonBox::Cancel);
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Kept");
}

TEST_F(AxisEditor, KeepsEverythingOnOk) {
  Enter("Title.Caption", "Kept");
  Push(QDialogButtonBox::Ok);
  EXPECT_EQ(editor.result(), QDialog::Accepted);
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Kept");
}

}  // namespace
