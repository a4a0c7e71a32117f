#include "viewer/Modellist.h"

#include "tests/support/Testing.h"

namespace {

const char* const kModel = "[Nodes]\n1 0 0 0\n2 4 0 0\n[Elements]\n1\n1 1 0 -1 2 1 2\n";

QByteArray DataSets(int count) {
  QByteArray text;
  for (int i = 1; i <= count; ++i) {
    text += "[F = " + QByteArray::number(i) + ".5]\n1 0 0 " + QByteArray::number(i) + "\n2 0 0 0\n";
  }
  return text;
}

class Modellist : public testing::Test {
 protected:
  Modellist() { EXPECT_TRUE(model.LoadFromMemory(kModel).Ok()); }

  void Load(const QByteArray& text, const QString& checked) {
    legend.Data.CheckedLabels = checked;
    const TLoadReport report = legend.LoadFromFile(WriteTestFile("a.dat", text), model);
    EXPECT_EQ(report.Ok(), !text.isEmpty()) << report.Sentence("a.dat").toStdString();
  }
  QString Selected() const {
    QString text;
    for (int i = 0; i < labels->count(); ++i) text += labels->item(i)->isSelected() ? '1' : '0';
    return text;
  }
  void Click(int row, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(labels->viewport(), Qt::LeftButton, modifiers,
                      labels->visualItemRect(labels->item(row)).center());
  }

  TModel model;
  TModelListWnd legend;
  QListWidget* labels = &Child<QListWidget>(legend, "Labels");
};

}  // namespace

TEST_F(Modellist, TheCheckStringSaysWhatIsShownAfterALoad) {
  const std::tuple<int, const char*, const char*, const char*> cases[] = {
      {3, "010", "010", "010"}, {4, "101", "1010", "1010"}, {1, "111", "1", "1"},
      {3, "", "000", "000"},    {3, "1x2", "100", "100"},   {0, "010", "", "1"}};
  for (const auto& [sets, checked, selected, saved] : cases) {
    SCOPED_TRACE(checked);
    Load(DataSets(sets), checked);
    EXPECT_EQ(Selected(), selected);
    EXPECT_EQ(legend.MakeCheckString(), saved);
    for (const TDataNodeList* list : legend.Data.Shown) {
      EXPECT_TRUE(list->ShowNodes && list->ShowElements && list->GetVisible());
    }
    EXPECT_EQ(legend.Data.Shown.Count(), QString(selected).count('1'));
  }
}

TEST_F(Modellist, ListsTheSectionsAsTheFileNamesThem) {
  Load("[F = 2.5]\n1 1 1 1\n2 1 1 1\n[ rest ]\n[]\n[a\n\x1b[1m[*]\n", "111");
  QStringList names;
  for (int i = 0; i < labels->count(); ++i) names << labels->item(i)->text();
  EXPECT_EQ(names, QStringList({"F = 2.5", " rest ", "", "a\ufffd\ufffd[1m[*"}));  // on one line
}

TEST_F(Modellist, AClickOrAKeyShowsAndHidesADataSet) {
  Load(DataSets(3), "100");
  legend.show();
  const QImage picture = labels->viewport()->grab().toImage();
  const auto right = [&](int row) {
    const QRect item = labels->visualItemRect(labels->item(row));
    return picture.pixelColor(item.right() - 4, item.center().y());
  };
  EXPECT_EQ(right(1), QColor(Qt::black));
  EXPECT_GT(right(0).lightness(), 80) << "a selected one stands out";
  QSignalSpy shows(&legend, &TModelListWnd::OnShowHide);
  Click(2);
  EXPECT_EQ(legend.MakeCheckString(), "101");
  EXPECT_EQ(legend.Data.Shown.Get(1), legend.Data.All.Get(2));
  EXPECT_TRUE(legend.Data.All.Get(2)->ShowNodes);
  Click(0);
  EXPECT_EQ(legend.MakeCheckString(), "001");
  EXPECT_FALSE(legend.Data.All.Get(0)->ShowElements);
  ASSERT_EQ(shows.count(), 2);
  EXPECT_TRUE(shows[0][1].toBool());
  labels->setCurrentRow(1, QItemSelectionModel::NoUpdate);
  QTest::keyClick(labels, Qt::Key_Space);
  EXPECT_EQ(legend.MakeCheckString(), "011");
  QTest::keyClick(labels, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(legend.MakeCheckString(), "111");
}

TEST_F(Modellist, ThousandsOfDataSetsComeAndGo) {
  constexpr int kSets = 5000;
  Load(DataSets(kSets), QString("10").repeated(kSets / 2));
  EXPECT_EQ(labels->selectedItems().size(), kSets / 2);
  labels->clearSelection();
  EXPECT_TRUE(legend.Data.Shown.Empty());
  labels->selectAll();
  EXPECT_EQ(legend.Data.Shown.Count(), kSets);
  QSignalSpy shows(&legend, &TModelListWnd::OnShowHide);
  legend.Clear();
  EXPECT_EQ(labels->count(), 0);
  EXPECT_TRUE(legend.Data.All.Empty() && legend.Data.Shown.Empty());
  EXPECT_EQ(legend.MakeCheckString(), "1");
  EXPECT_EQ(shows.count(), 0);
}
