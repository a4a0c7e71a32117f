#include "components/graphing/editors/Bineditor.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "tests/components/graphing/Panelfixture.h"

namespace {

class BinEditor : public testing::Test {
 protected:
  template <class T>
  T& Find(const char* name) {
    T* widget = editor->findChild<T*>(name);
    if (!widget) throw std::runtime_error(name);
    return *widget;
  }
  QAbstractButton& Button(QDialogButtonBox::StandardButton button) {
    return *editor->findChild<QDialogButtonBox*>()->button(button);
  }
  void Enter(const char* name, const char* text) {
    auto& line = Find<QLineEdit>(name);
    line.selectAll();
    QTest::keyClicks(&line, QLatin1String(text));
  }
  QString Cell(int row, int column) {
    const QAbstractItemModel& model = *Find<QTableView>("Bins").model();
    return model.data(model.index(row, column)).toString();
  }
  QString Summary() { return Find<QLabel>("Summary").text(); }
  QString Hint() { return Find<QLabel>("Hint").text(); }
  /// The tenth of a second after which the editor looks at the bins again.
  static void Wait() {
    for (int tick = 0; tick < 10; ++tick) TTimerServer::Instance()->Timer();
  }

  TBinList bins;
  std::unique_ptr<TBinEditor> editor = std::make_unique<TBinEditor>(bins);
};

TEST_F(BinEditor, ShowsTheBinsWhileTheyFill) {
  EXPECT_EQ(Summary(), "0 in 0 bins");
  for (const double value : {0.5, 2.5, 2.5, 1e300}) bins.AddValues(1.0, value);
  EXPECT_EQ(Find<QTableView>("Bins").model()->rowCount(), 0) << "not for every value";
  Wait();
  EXPECT_EQ(Find<QTableView>("Bins").model()->rowCount(), 3);
  EXPECT_EQ(Cell(2, 0), "2");
  EXPECT_EQ(Cell(2, 1), "3");
  EXPECT_EQ(Cell(2, 2), "2");
  EXPECT_EQ(Summary(), "3 in 3 bins, 1 outside");
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
  EXPECT_EQ(Hint(), "Another grid empties the bins.");
  EXPECT_EQ(bins.GetStep(), 1.0);
  EXPECT_EQ(bins.Count(), 1);
  Button(QDialogButtonBox::Apply).click();
  EXPECT_EQ(bins.GetStep(), 0.5);
  EXPECT_EQ(bins.GetAnchor(), -0.25);
  EXPECT_TRUE(bins.Empty());
  EXPECT_EQ(Hint(), "");

  bins.AddValues(1.0, 0.5);
  Enter("Step", "3");
  Button(QDialogButtonBox::Cancel).click();
  EXPECT_EQ(bins.GetStep(), 0.5);
  EXPECT_EQ(bins.Count(), 1) << "nothing was confirmed, nothing is lost";
  Button(QDialogButtonBox::Ok).click();
  EXPECT_EQ(bins.GetStep(), 3.0);
}

TEST_F(BinEditor, RefusesWhatIsNoGrid) {
  const struct {
    const char *line, *text, *hint;
  } cases[] = {
      {"Step", "0", "The step must be a number above 0."},
      {"Step", "-1", "The step must be a number above 0."},
      {"Step", "inf", "The step must be a number above 0."},
      {"Step", "1,5", "The step must be a number above 0."},
      {"Step", " ", "The step must be a number above 0."},
      {"Anchor", "nan", "The anchor must be a number."},
      {"Anchor", "x", "The anchor must be a number."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    editor = std::make_unique<TBinEditor>(bins);
    Enter(c.line, c.text);
    EXPECT_EQ(Hint(), c.hint);
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
  EXPECT_EQ(Find<QTableView>("Bins").model()->rowCount(), 0);
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
  EXPECT_EQ(Find<QLabel>("Statistics").text(), "mean 1.25, standard deviation 0.5");
  Find<QComboBox>("AddMode").setCurrentIndex(1);
  EXPECT_EQ(histogram->GetAddMode(), TOccurrenceHistogram::amAddAll);
  Button(QDialogButtonBox::Apply).click();
  EXPECT_EQ(histogram->GetAddMode(), TOccurrenceHistogram::amAddIfBinChanged);
  EXPECT_EQ(histogram->GetBins()->Count(), 2) << "the grid is the same";
  Button(QDialogButtonBox::Reset).click();
  EXPECT_EQ(Find<QLabel>("Statistics").text(), "mean 0, standard deviation 0");
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
