#include "components/graphing/editors/Bineditor.h"

#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

class BinEditor : public testing::Test {
 protected:
  template <class T>
  T& Find(const char* name) {
    return Child<T>(*editor, name);
  }
  QAbstractButton& Button(QDialogButtonBox::StandardButton button) {
    return ButtonOf(*editor, button);
  }
  void Enter(const char* name, const char* text) { EnterText(Find<QLineEdit>(name), text, false); }
  const QAbstractItemModel& Table() { return *Find<QTableView>("Bins").model(); }
  QString Cell(int row, int column) { return Table().data(Table().index(row, column)).toString(); }
  QString Text(const char* label) { return Find<QLabel>(label).text(); }
  /// The tenth of a second after which the editor looks at the bins again.
  static void Wait() { Tick(10); }

  void Open() {
    own = std::make_unique<TBinEditor>(bins);
    editor = own.get();
  }
  /// A histogram with occurrences, which owns its editor and adds to it.
  void OpenOfHistogram() {
    histogram = std::make_unique<TOccurrenceHistogram>();
    histogram->ShowEditor();
    editor = &Child<TBinEditor>(*histogram);
  }
  BinEditor() { Open(); }

  TBinList bins;
  std::unique_ptr<TBinEditor> own;
  std::unique_ptr<TOccurrenceHistogram> histogram;
  TBinEditor* editor;
};

TEST_F(BinEditor, ShowsTheBinsWhileTheyFillAndEmptiesThemOnReset) {
  EXPECT_EQ(Text("Summary"), "0 in 0 bins");
  for (const double value : {0.5, 2.5, 2.5, 1e300}) bins.AddValues(1.0, value);
  EXPECT_EQ(Table().rowCount(), 0) << "not for every value";
  Wait();
  EXPECT_EQ(Table().rowCount(), 3);
  EXPECT_EQ(Cell(2, 0) + ' ' + Cell(2, 1) + ' ' + Cell(2, 2), "2 3 2");
  EXPECT_EQ(Text("Summary"), "3 in 3 bins, 1 outside");
  bins.AddValues(1.0, 2.5);
  QSignalSpy refreshed(editor, &TBinEditor::OnRefresh);
  Wait();
  EXPECT_EQ(Cell(2, 2), "3");
  Wait();
  EXPECT_EQ(refreshed.count(), 1) << "only if something has changed";
  Button(QDialogButtonBox::Reset).click();
  EXPECT_TRUE(bins.Empty());
  EXPECT_EQ(Table().rowCount(), 0);
}

TEST_F(BinEditor, DrawsTheBarsInTheColoursGiven) {
  TSeriesStyle style;
  style.SetFillColor(TColor::Green());
  style.SetPointColor(TColor::Green());
  editor->SetColors(style);
  for (const double value : {0.5, 1.5}) bins.AddValues(1.0, value);
  Wait();
  auto& preview = Child<TKorvalGraph>(*editor);
  preview.resize(300, 200);
  preview.Replay();
  const QRect plot = preview.PlotRect();
  EXPECT_GT(CountPixels(preview.Picture(), Qt::green, plot), plot.width() * plot.height() / 2);
}

TEST_F(BinEditor, TakesAnotherGridOnlyWhenItIsConfirmed) {
  const auto expectGrid = [this](double step, double anchor, int count) {
    EXPECT_EQ(std::tuple(bins.GetStep(), bins.GetAnchor(), bins.Count()),
              std::tuple(step, anchor, count));
  };
  bins.AddValues(1.0, 0.5);
  Enter("Step", "0.5");
  Enter("Anchor", "-0.25");
  EXPECT_EQ(Text("Hint"), "Another grid empties the bins.");
  expectGrid(1.0, 0.0, 1);
  Button(QDialogButtonBox::Apply).click();
  expectGrid(0.5, -0.25, 0);
  EXPECT_EQ(Text("Hint"), "");

  bins.AddValues(1.0, 0.5);
  Enter("Step", "3");
  Button(QDialogButtonBox::Cancel).click();
  expectGrid(0.5, -0.25, 1);  // nothing was confirmed, nothing is lost
  Button(QDialogButtonBox::Ok).click();
  expectGrid(3.0, -0.25, 0);
}

TEST_F(BinEditor, RefusesWhatIsNoGrid) {
  for (const char* text : {"0", "-1", "inf", "1,5", " ", "nan", "x"}) {
    SCOPED_TRACE(text);
    const bool isStep = text[0] != 'n' && text[0] != 'x';
    Open();
    Enter(isStep ? "Step" : "Anchor", text);
    EXPECT_EQ(Text("Hint"),
              isStep ? "The step must be a number above 0." : "The anchor must be a number.");
    EXPECT_FALSE(Button(QDialogButtonBox::Ok).isEnabled());
    EXPECT_FALSE(Button(QDialogButtonBox::Apply).isEnabled());
    editor->accept();
    EXPECT_EQ(std::pair(bins.GetStep(), bins.GetAnchor()), std::pair(1.0, 0.0));
  }
}

TEST_F(BinEditor, AGridThatComesFromElsewhereShowsUnlessOneIsBeingEntered) {
  const auto expectStep = [this](double elsewhere, const char* shown) {
    bins.SetStep(elsewhere);
    EXPECT_EQ(Find<QLineEdit>("Step").text(), shown);
  };
  expectStep(0.125, "0.125");
  Enter("Step", "7");
  expectStep(2.0, "7");
  Button(QDialogButtonBox::Apply).click();
  expectStep(3.0, "3");
}

TEST_F(BinEditor, ShowsTheStatisticsOfAHistogramAndSetsItsAddMode) {
  OpenOfHistogram();
  for (const double value : {0.5, 1.5, 1.5, 1.5}) histogram->SetValue(value);
  Wait();
  EXPECT_EQ(Text("Statistics"), "mean 1.25, standard deviation 0.5");
  Find<QComboBox>("AddMode").setCurrentIndex(1);
  EXPECT_EQ(histogram->GetAddMode(), TOccurrenceHistogram::amAddAll);
  Button(QDialogButtonBox::Apply).click();
  EXPECT_EQ(histogram->GetAddMode(), TOccurrenceHistogram::amAddIfBinChanged);
  EXPECT_EQ(histogram->GetBins()->Count(), 2) << "the grid is the same";
  Button(QDialogButtonBox::Reset).click();
  EXPECT_EQ(Text("Statistics"), "mean 0, standard deviation 0");
}

TEST_F(BinEditor, MayLoseItsHistogramToAButton) {
  for (const auto button : {QDialogButtonBox::Reset, QDialogButtonBox::Ok}) {
    OpenOfHistogram();
    TValueLink link([&](double) { histogram.reset(); });
    histogram->AddLink(&link, false);
    Enter("Step", "5");
    Button(button).click();
    EXPECT_FALSE(histogram);
  }
}

}  // namespace
