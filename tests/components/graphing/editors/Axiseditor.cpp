#include "components/graphing/editors/Axiseditor.h"

#include "components/graphing/editors/Pickers.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testing.h"

namespace {

class AxisEditor : public testing::Test {
 protected:
  AxisEditor() { before.Assign(&axis); }

  template <typename T>
  T& Find(const char* name) {
    return Child<T>(editor, name);
  }
  void Choose(const char* name, int index) { Find<QComboBox>(name).setCurrentIndex(index); }
  void Enter(const char* name, const char* text) { EnterText(Find<QLineEdit>(name), text); }
  void Push(QDialogButtonBox::StandardButton button) { ButtonOf(editor, button).click(); }

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
  const std::pair<const char*, int> choices[] = {{"Scale", TAxis::asLog},
                                                 {"MajorTick.Pos", TTick::tpCross},
                                                 {"Label.Pos", 0},
                                                 {"Label.Spacing", TTickLabel::lsMinMax},
                                                 {"Title.Pos", 1},
                                                 {"Label.NumFormat.Format", TNumberFormat::ffFixed},
                                                 {"MinorTick.Size", 9},
                                                 {"Label.NumFormat.Digits", 4},
                                                 {"Label.NumFormat.Precision", 7}};
  for (const auto& [name, value] : choices) {
    QObject* owner = &axis;
    QStringList path = QString(name).split('.');
    while (path.size() > 1) {
      owner = owner->property(path.takeFirst().toLatin1()).value<QObject*>();
    }
    auto* box = editor.findChild<QComboBox*>(name);
    box ? box->setCurrentIndex(value) : Find<QSpinBox>(name).setValue(value);
    EXPECT_EQ(owner->property(path[0].toLatin1()).toInt(), value) << name;
  }
  EXPECT_EQ(repaints.count(), 9);
  Find<QCheckBox>("Label.NumFormat.IsTimeFormat").click();
  EXPECT_TRUE(axis.GetLabel()->GetNumFormat()->GetIsTimeFormat());
  Enter("Label.NumFormat.TimeFormatStr", "hh:nn");
  EXPECT_EQ(axis.GetLabel()->GetNumFormat()->GetTimeFormatStr(), "hh:nn");
  Enter("Title.Caption", "Speed [rpm]");
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Speed [rpm]");
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
    EXPECT_EQ(BoundsOf(axis), TMinMax(min, max));
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
      GiveRange(drawn, min, max);
      drawn.SetScale(scale);
      drawn.UpdateAxis();
      QObject::connect(&drawn, &TAxis::OnChange, &drawn, &TAxis::UpdateAxis);  // as its graph does
      const double from = drawn.WorkingMin();
      const double to = drawn.WorkingMax();
      TAxisEditor editorOfIt(drawn);
      for (const bool second : {false, true}) {
        editorOfIt.findChild<QCheckBox*>(kBoth[second != maxFirst])->click();
        EXPECT_EQ(DrawnBounds(drawn), TMinMax(from, to));
      }
      EXPECT_EQ(BoundsOf(drawn), TMinMax(from, to));
    }
  }
}

TEST_F(AxisEditor, CancelRestoresWhatWasEditedSinceTheLastApply) {
  Enter("Title.Caption", "Kept");
  Push(QDialogButtonBox::Apply);
  before.Assign(&axis);
  Choose("Scale", TAxis::asLog);
  Enter("Title.Caption", "Lost");
  Push(QDialogButtonBox::Cancel);
  EXPECT_TRUE(axis.SameAs(&before));
}

TEST_F(AxisEditor, KeepsEverythingOnOk) {
  Enter("Title.Caption", "Kept");
  Push(QDialogButtonBox::Ok);
  EXPECT_EQ(editor.result(), QDialog::Accepted);
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Kept");
}

}  // namespace
