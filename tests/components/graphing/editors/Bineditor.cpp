#include "components/graphing/editors/Bineditor.h"

#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testing.h"

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

  TBinList bins;
  std::unique_ptr<TBinEditor> editor = std::make_unique<TBinEditor>(bins);
};

TEST_F(BinEditor, ShowsTheBinsWhileTheyFill) {
  EXPECT_EQ(Text("Summary"), "0 in 0 bins");
  for (const double value : {0.5, 2.5, 2.5, 1e300}) bins.AddValues(1.0, value);
  EXPECT_EQ(Table().rowCount(), 0) << "not for every value";
  Wait();
  EXPECT_EQ(Table().rowCount(), 3);
  EXPECT_EQ(Cell(2, 0), "2");
  EXPECT_EQ(Cell(2, 1), "3");
  EXPECT_EQ(Cell(2, 2), "2");
  EXPECT_EQ(Text("Summary"), "3 in 3 bins, 1 outside");
  bins.AddValues(1.0, 2.5);
  QSignalSpy refreshed(editor.get(), &TBinEditor::OnRefresh);
  Wait();
  EXPECT_EQ(Cell(2, 2), "3");
  Wait();
  EXPECT_EQ(refreshed.count(), 1) << "only if something has changed";
}

TEST_F(BinEditor, DrawsTheBarsInTheColoursGiven) {
  TSeriesStyle style;
  const QColor colour(10, 120, 30);
  style.SetFillColor(TColor::FromQColor(colour));
  style.SetPointColor(TColor::FromQColor(colour));
  editor->SetColors(style);
  for (const double value : {0.5, 1.5}) bins.AddValues(1.0, value);
  Wait();
  auto& preview = *editor->findChild<TKorvalGraph*>();
  preview.resize(300, 200);
  preview.Replay();
  const QRect plot = preview.PlotRect();
  EXPECT_GT(CountPixels(preview.Picture(), colour, plot), plot.width() * plot.height() / 2);
}

TEST_F(BinEditor, TakesAnotherGridOnlyWhenItIsConfirmed) {
  bins.AddValues(1.0, 0.5);
  Enter("Step", "0.5");
  Enter("Anchor", "-0.25");
  EXPECT_EQ(Text("Hint"), "Another grid empties the bins.");
  EXPECT_EQ(bins.GetStep(), 1.0);
  EXPECT_EQ(bins.Count(), 1);
  Button(QDialogButtonBox::Apply).click();
  EXPECT_EQ(bins.GetStep(), 0.5);
  EXPECT_EQ(bins.GetAnchor(), -0.25);
  EXPECT_TRUE(bins.Empty());
  EXPECT_EQ(Text("Hint"), "");

  bins.AddValues(1.0, 0.5);
  Enter("Step", "3");
  Button(QDialogButtonBox::Cancel).click();
  EXPECT_EQ(bins.GetStep(), 0.5);
  EXPECT_EQ(bins.Count(), 1) << "nothing was confirmed, nothing is lost";
  Button(QDialogButtonBox::Ok).click();
  EXPECT_EQ(bins.GetStep(), 3.0);
}

TEST_F(BinEditor, RefusesWhatIsNoGrid) {
  for (const char* text : {"0", "-1", "inf", "1,5", " ", "nan", "x"}) {
    SCOPED_TRACE(text);
    const bool isStep = text[0] != 'n' && text[0] != 'x';
    editor = std::make_unique<TBinEditor>(bins);
    Enter(isStep ? "Step" : "Anchor", text);
    EXPECT_EQ(Text("Hint"),
              isStep ? "The step must be a number above 0." : "The anchor must be a number.");
    EXPECT_FALSE(Button(QDialogButtonBox::Ok).isEnabled());
    EXPECT_FALSE(Button(QDialogButtonBox::Apply).isEnabled());
    editor->accept();
    EXPECT_EQ(bins.GetStep(), 1.0);
    EXPECT_EQ(bins.GetAnchor(), 0.0);
  }
}

TEST_F(BinEditor, AGridThatComesFromElsewhereShowsUnlessOneIsBeingEntered) {
  bins.SetStep(0.125);
  EXPECT_EQ(Find<QLineEdit>("Step").text(), "0.125");
  Enter("Step", "7");
  bins.SetStep(2.0);
  EXPECT_EQ(Find<QLineEdit>("Step").text(), "7");
}

TEST_F(BinEditor, ResetEmptiesTheBins) {
  bins.AddValues(1.0, 0.5);
  Wait();
  Button(QDialogButtonBox::Reset).click();
  EXPECT_TRUE(bins.Empty());
  EXPECT_EQ(Table().rowCount(), 0);
}

/// A histogram with occurrences adds its own.
class HistogramEditor : public BinEditor {
 protected:
  /// Of a new histogram, which owns it.
  void Open() {
    static_cast<void>(editor.release());
    histogram = std::make_unique<TOccurrenceHistogram>();
    histogram->ShowEditor();
    editor.reset(histogram->findChild<TBinEditor*>());
  }
  HistogramEditor() { editor.reset(); }
  ~HistogramEditor() override { static_cast<void>(editor.release()); }

  std::unique_ptr<TOccurrenceHistogram> histogram;
};

TEST_F(HistogramEditor, ShowsStatisticsAndSetsTheAddMode) {
  Open();
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

TEST_F(HistogramEditor, MayLoseItsHistogramToAButton) {
  for (const auto button : {QDialogButtonBox::Reset, QDialogButtonBox::Ok}) {
    Open();
    TValueLink link([&](double) {
      static_cast<void>(editor.release());
      histogram.reset();
    });
    histogram->AddLink(&link, false);
    Enter("Step", "5");
    Button(button).click();
    EXPECT_FALSE(histogram);
  }
}

}  // namespace
