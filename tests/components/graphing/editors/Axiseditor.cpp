#include "components/graphing/editors/Axiseditor.h"

#include "components/graphing/editors/Pickers.h"
#include "tests/components/graphing/Panelfixture.h"

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

TEST_F(AxisEditor, HasAFieldForEveryPublishedPropertyAndChangesTheAxisAtOnce) {
  const QStringList names = PublishedNames(axis);
  EXPECT_EQ(names.size(), 23);
  for (const QString& name : names)
    EXPECT_TRUE(editor.findChild<QWidget*>(name)) << name.toStdString();

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
  const TNumberFormat& format = *axis.GetLabel()->GetNumFormat();
  Find<QCheckBox>("Label.NumFormat.IsTimeFormat").click();
  EXPECT_TRUE(format.GetIsTimeFormat());
  Enter("Label.NumFormat.TimeFormatStr", "hh:nn");
  EXPECT_EQ(format.GetTimeFormatStr(), "hh:nn");
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
  const auto enter = [this](const char* bound, const char* text, TMinMax bounds, const char* why) {
    Enter(bound, text);
    EXPECT_EQ(BoundsOf(axis), bounds);
    EXPECT_EQ(Find<QLabel>("Refusal").text(), why);
  };
  const char* const notLess = "The minimum must be less than the maximum";
  enter("Min", "1.5", {0.0, 1.0}, notLess);  // above the old maximum, but the new one follows
  EXPECT_EQ(Find<QLineEdit>("Min").text(), "1.5");
  Push(QDialogButtonBox::Ok);
  EXPECT_NE(editor.result(), QDialog::Accepted);
  enter("Max", "2.5", {1.5, 2.5}, "");
  enter("Max", "abc", {1.5, 2.5}, "\"abc\" is no number");
  enter("Max", "inf", {1.5, 2.5}, "\"inf\" is no number");
  enter("Max", "1.5", {1.5, 2.5}, notLess);
  Choose("Scale", TAxis::asLog);
  enter("Min", "-1", {1.5, 2.5}, "A logarithmic axis shows values above 0 only");

  Choose("Scale", TAxis::asTime);
  EXPECT_EQ(Find<QLabel>("Refusal").text(), "");
  EXPECT_EQ(Find<QLineEdit>("Max").text(), "1900-01-01 12:00:00.000");
  enter("Max", "soon", {1.5, 2.5}, "\"soon\" is no date and time");
  enter("Max", "1900-01-09 06:00", {1.5, 10.25}, "");
}

TEST_F(AxisEditor, ABoundThatIsNoLongerAutomaticStaysWhereItIsDrawn) {
  const char* const kBoth[] = {"AutoMin", "AutoMax"};
  for (const auto& [scale, min, max] : {std::tuple(TAxis::asLinear, 0.95, 10.85),  // shows 0..11
                                        {TAxis::asLog, 3.0, 70.0},
                                        {TAxis::asTime, 45000.2, 45000.9}}) {
    for (const bool maxFirst : {false, true}) {
      SCOPED_TRACE(testing::Message() << scale << maxFirst);
      TAxis drawn;
      GiveRange(drawn, min, max);
      drawn.SetScale(scale);
      drawn.UpdateAxis();
      QObject::connect(&drawn, &TAxis::OnChange, &drawn, &TAxis::UpdateAxis);  // as its graph does
      const TMinMax shown = DrawnBounds(drawn);
      TAxisEditor editorOfIt(drawn);
      for (const bool second : {false, true}) {
        Child<QCheckBox>(editorOfIt, kBoth[second != maxFirst]).click();
        EXPECT_EQ(DrawnBounds(drawn), shown);
      }
      EXPECT_EQ(BoundsOf(drawn), shown);
    }
  }
}

TEST_F(AxisEditor, CancelRestoresWhatWasEditedSinceTheLastApplyAndOkKeepsIt) {
  Enter("Title.Caption", "Kept");
  Push(QDialogButtonBox::Apply);
  before.Assign(&axis);
  Choose("Scale", TAxis::asLog);
  Enter("Title.Caption", "Lost");
  Push(QDialogButtonBox::Cancel);
  EXPECT_TRUE(axis.SameAs(&before));
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "Kept");
  Enter("Title.Caption", "New");
  Push(QDialogButtonBox::Ok);
  EXPECT_EQ(editor.result(), QDialog::Accepted);
  EXPECT_EQ(axis.GetTitle()->GetCaption(), "New");
}

}  // namespace
