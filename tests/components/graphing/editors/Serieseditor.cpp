#include "components/graphing/editors/Serieseditor.h"

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "components/graphing/Sliderseries.h"
#include "components/graphing/editors/Pickers.h"
#include "tests/support/Testing.h"

namespace {

class SeriesEditor : public testing::Test {
 protected:
  SeriesEditor() {
    curve = list.Add(std::make_unique<TSeries>());
    curve->SetLabel(QStringLiteral("Curve"));
    slider = list.Add(std::make_unique<TSliderSeries>());
    editor = std::make_unique<TSeriesEditor>(list);
  }

  QSpinBox& Weight() { return Find<QSpinBox>(0, "LineWeight"); }
  /// The editor of a property on the page of a series.
  template <class T>
  T& Find(int page, const char* property) {
    return Child<T>(*Child<QStackedWidget>(*editor).widget(page), property);
  }
  void Push(QDialogButtonBox::StandardButton button) { ButtonOf(*editor, button).click(); }

  TSeriesList list;
  TSeries* curve;
  TSliderSeries* slider;
  std::unique_ptr<TSeriesEditor> editor;
};

TEST_F(SeriesEditor, ChangesEveryPublishedPropertyAtOnce) {
  EnterText(Find<QLineEdit>(0, "Label"), "Velocity");
  EXPECT_EQ(curve->GetLabel(), QStringLiteral("Velocity"));
  EXPECT_EQ(editor->findChild<QListWidget*>("Names")->item(0)->text(), QStringLiteral("Velocity"));
  Find<QCheckBox>(0, "Visible").click();
  EXPECT_FALSE(curve->GetVisible());
  Weight().setValue(5);
  EXPECT_EQ(curve->GetStyle()->GetLineWeight(), 5);
  Find<QComboBox>(0, "LineStyle").setCurrentText(QStringLiteral("Dash dot"));
  EXPECT_EQ(curve->GetStyle()->GetLineStyle(), TSeriesStyle::psDashDot);
  Find<QComboBox>(0, "PointStyle").setCurrentText(QStringLiteral("XBar"));
  EXPECT_EQ(curve->GetStyle()->GetPointStyle(), TSeriesStyle::psXBar);
  for (const char* color : {"LineColor", "FillColor", "PointColor"}) {
    emit Find<TColorPicker>(0, color).OnPick(TColor::Green());
    EXPECT_EQ(curve->GetStyle()->property(color).value<TColor>(), TColor::Green()) << color;
  }
  EnterText(Find<QLineEdit>(1, "PositionX"), "2.5");
  Find<QCheckBox>(1, "ShowGridX").click();
  EXPECT_EQ(slider->GetPositionX(), 2.5);
  EXPECT_TRUE(slider->GetShowGridX());
}

TEST_F(SeriesEditor, ShowsWhatTheSeriesMakesOfAnEdit) {
  Weight().setValue(-3);
  EXPECT_EQ(Weight().value(), 1);
  QSignalSpy changes(curve->GetStyle(), &TSeriesStyle::OnChange);
  Weight().selectAll();
  QTest::keyClicks(&Weight(), "34\r");
  EXPECT_EQ(changes.count(), 1);
  curve->GetStyle()->SetLineWeight(4);
  EXPECT_EQ(Weight().value(), 4);
  auto& position = Find<QLineEdit>(1, "PositionX");
  EnterText(position, "far");
  EXPECT_EQ(position.text(), "0");
  for (const double x : {7.25, 0.1}) {
    slider->SetPosition({x, 0.0});
    EXPECT_EQ(position.text(), QString::number(x));
  }
}

TEST_F(SeriesEditor, CancelRestoresWhatWasEditedSinceTheLastApplyAndOkKeepsIt) {
  Weight().setValue(2);
  Push(QDialogButtonBox::Apply);
  Weight().setValue(3);
  Weight().setValue(4);
  Find<QComboBox>(0, "PointStyle").setCurrentText(QStringLiteral("Cross"));
  slider->SetPosition({1.0, 1.0});  // not by the dialog: stays
  Push(QDialogButtonBox::Cancel);
  EXPECT_EQ(curve->GetStyle()->GetLineWeight(), 2);
  EXPECT_EQ(curve->GetStyle()->GetPointStyle(), TSeriesStyle::psCircle);
  EXPECT_EQ(slider->GetPositionX(), 1.0);
  EXPECT_EQ(editor->result(), QDialog::Rejected);
  Weight().setValue(3);
  Push(QDialogButtonBox::Ok);
  EXPECT_EQ(curve->GetStyle()->GetLineWeight(), 3);
  EXPECT_EQ(editor->result(), QDialog::Accepted);
}

TEST_F(SeriesEditor, CancelDropsATextThatIsBeingTyped) {
  editor->show();
  editor->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(editor.get()));
  auto& label = Find<QLineEdit>(0, "Label");
  label.setFocus();
  QTest::keyClicks(&label, QStringLiteral("half"));
  QTest::keyClick(&label, Qt::Key_Escape);
  EXPECT_FALSE(editor->isVisible());
  EXPECT_EQ(curve->GetLabel(), QStringLiteral("Curve"));
}

TEST_F(SeriesEditor, ASeriesThatGoesMeanwhileIsLeftAlone) {
  Weight().setValue(3);
  list.Delete(0);
  EXPECT_FALSE(Weight().isEnabled());
  Weight().setValue(9);
  Push(QDialogButtonBox::Cancel);
  EXPECT_EQ(list.Count(), 1);
}

TEST(SeriesList, ADoubleClickOnThePlotOpensTheEditorOfTheGraph) {
  TKorvalGraph graph;
  graph.resize(300, 200);
  TSeries* series = graph.GetDataPanel()->AddSeries(std::make_unique<TSeries>());
  graph.show();
  bool seen = false;
  QTimer::singleShot(0, [&] {
    auto* editor = qobject_cast<TSeriesEditor*>(QApplication::activeModalWidget());
    ASSERT_TRUE(editor);
    seen = true;
    editor->findChild<QSpinBox*>("LineWeight")->setValue(6);
    editor->accept();
  });
  QTest::mouseDClick(&graph, Qt::LeftButton, {}, graph.PlotRect().center());
  EXPECT_TRUE(seen);
  EXPECT_EQ(series->GetStyle()->GetLineWeight(), 6);
}

}  // namespace
