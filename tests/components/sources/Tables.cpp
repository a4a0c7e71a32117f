#include "components/sources/Tables.h"

#include "components/graphing/Formatsettings.h"
#include "components/sources/Datalogger.h"
#include "components/sources/Datasheet.h"
#include "model/Filesync.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kNoon = 46'000.5;  // 9 December 2025, 12:00

/// Two controls, and what samples them.
struct TTwoControls {
  explicit TTwoControls(TKorvalCompList* list) {
    a.setObjectName("a");
    b.setObjectName("b");
    list->Add(&a);
    list->Add(&b);
  }
  void Row(double time, double first, double second) {
    a.SetTimeAndValue(time, first);
    b.SetTimeAndValue(time, second);
  }
  TDataControl a;
  TDataControl b;
};

/// A table of two controls.
struct DataTable : testing::Test {
  std::vector<double> Column(int column) const {
    std::vector<double> values;
    for (int row = 0; row < table.RowCount(); ++row) values.push_back(table.GetValue(row, column));
    return values;
  }
  TDataTable table;
  TTwoControls controls{table.GetControls()};
};

TEST_F(DataTable, TakesARowWithEachValueOfTheLastControl) {
  table.SetMaxRows(3);
  QSignalSpy added(&table, &TDataTable::OnRowAdded);
  for (int i = 0; i < 4; ++i) controls.Row(kNoon + i, i, 10 * i);
  controls.a.SetValue(99.0);  // completes no row
  EXPECT_THAT(Column(0), ElementsAre(kNoon + 1, kNoon + 2, kNoon + 3));
  EXPECT_THAT(Column(1), ElementsAre(1, 2, 3));
  EXPECT_THAT(Column(2), ElementsAre(10, 20, 30));
  EXPECT_EQ(table.ColName(0), "Time");
  EXPECT_EQ(table.ColName(2), "b");
  table.SetRecording(false);
  controls.Row(kNoon, 0, 0);
  EXPECT_EQ(added.count(), 4);
}

TEST_F(DataTable, LivesOnWhenItsControlsGo) {
  {
    TTwoControls others(table.GetControls());
    for (TDataControl* control : {&controls.a, &controls.b, &others.b}) {
      table.GetControls()->DeleteComponent(control);
    }
    others.a.SetTimeAndValue(kNoon, 5.0);  // the only one now
    EXPECT_THAT(Column(1), ElementsAre(5));
  }
  EXPECT_EQ(table.ColCount(), 1);
  EXPECT_EQ(table.RowCount(), 0);
}

TEST_F(DataTable, LetsGoOfTheOldestRowsWhenItGetsSmaller) {
  for (int i = 0; i < 5; ++i) controls.Row(kNoon + i, i, i);
  QSignalSpy changes(&table, &TDataTable::OnChange);
  table.SetMaxRows(2);
  EXPECT_EQ(changes.count(), 1);
  EXPECT_THAT(Column(1), ElementsAre(3, 4));
  table.SetDataValues("1 10 10\n2 20 20\n3 30 30\n");
  EXPECT_THAT(Column(0), ElementsAre(2, 3));

  TKorvalCompList others(nullptr, &TDataControl::staticMetaObject);
  for (TDataControl* control : {&controls.b, &controls.a}) others.Add(control);
  table.SetControls(&others);
  EXPECT_EQ(table.RowCount(), 0) << "the rows are of other columns";
}

TEST_F(DataTable, IsCopiedAndPastedAsSpreadsheetsDo) {
  for (int i = 0; i < 3; ++i) controls.Row(kNoon, 0.1 + i, -i);
  TDataSheet sheet;
  sheet.SetTable(&table);
  const auto at = [&](int row, int column) { return sheet.model()->index(row, column); };
  sheet.selectionModel()->select({at(0, 1), at(1, 2)}, QItemSelectionModel::ClearAndSelect);
  QTest::keyClick(&sheet, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "0.1\t0\n1.1\t-1\n");

  sheet.setCurrentIndex(at(2, 1));
  QTest::keyClick(&sheet, Qt::Key_V, Qt::ControlModifier);
  EXPECT_THAT(Column(1), ElementsAre(0.1, 1.1, 0.1, 1.1));
  EXPECT_THAT(Column(2), ElementsAre(0, -1, 0, -1));

  QApplication::clipboard()->setText("7\nseven\n");
  sheet.Paste();
  EXPECT_THAT(TakeMessages(),
              ElementsAre(QString("Cannot paste \"seven\" in line 2: it is not a number.")));
  sheet.SetReadOnly(true);
  QApplication::clipboard()->setText("7");
  sheet.Paste();
  sheet.DeleteSelectedRows();
  EXPECT_THAT(Column(1), ElementsAre(0.1, 1.1, 0.1, 1.1));
}

TEST(TDataSheet, ShowsManyNewRowsAtOnceAndOutlivesTheTable) {
  TDataSheet sheet;
  {
    TDataTable table;
    TTwoControls controls(table.GetControls());
    sheet.SetTable(&table);
    QSignalSpy inserted(sheet.model(), &QAbstractItemModel::rowsInserted);
    for (int i = 0; i < 100; ++i) controls.Row(kNoon, i, i);
    QCoreApplication::processEvents();
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(sheet.model()->rowCount(), 100);
    EXPECT_EQ(sheet.model()->index(5, 0).data().toString(), "2025-12-09 12:00:00.000");
  }
  EXPECT_EQ(sheet.model()->rowCount(), 0);
}

/// A sheet of three rows, and the editor of one of its cells.
struct DataSheet : DataTable {
  DataSheet() {
    for (int i = 0; i < 3; ++i) controls.Row(kNoon + i, i, 10 * i);
    sheet.resize(500, 300);
    sheet.SetTable(&table);
    sheet.show();
  }
  ~DataSheet() override { SetFormatLocale(QLocale::system()); }
  QLineEdit* Edit(int row, int column) {
    sheet.setCurrentIndex(sheet.model()->index(row, column));
    sheet.edit(sheet.currentIndex());
    return &Child<QLineEdit>(sheet);
  }
  void Paste(const QString& text, int row, int column) {
    sheet.setCurrentIndex(sheet.model()->index(row, column));
    QApplication::clipboard()->setText(text);
    QTest::keyClick(&sheet, Qt::Key_V, Qt::ControlModifier);
  }

  TDataSheet sheet;
};

TEST_F(DataSheet, IsEditedWhileRowsComeInAndMakeRoom) {
  table.SetMaxRows(3);
  QCoreApplication::processEvents();
  QLineEdit* editor = Edit(1, 1);
  EnterText(*editor, "7.5", false);
  controls.Row(kNoon + 3, 3, 30);  // the first row goes: the one that is edited is the first now
  QCoreApplication::processEvents();
  ASSERT_EQ(sheet.findChild<QLineEdit*>(), editor);
  EXPECT_EQ(editor->text(), "7.5");
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_THAT(Column(1), ElementsAre(7.5, 2, 3));
  for (int i = 0; i < 100; ++i) controls.Row(kNoon + 4 + i, i, i);
  QCoreApplication::processEvents();
  EXPECT_EQ(sheet.model()->rowCount(), 3);
  EXPECT_EQ(sheet.model()->index(2, 1).data().toString(), "99");
}

TEST_F(DataSheet, EditsTimesAsDates) {
  table.SetValue(0, 0, kNoon + 1e-9);
  QCoreApplication::processEvents();
  QLineEdit* editor = Edit(0, 0);
  EXPECT_EQ(editor->text(), "2025-12-09 12:00:00.000");
  QTest::keyClick(editor, Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_EQ(table.GetValue(0, 0), kNoon + 1e-9);  // only looked at
  Paste("2025-12-10 18:00\t5\n46000.25\t6\n", 1, 0);
  EXPECT_THAT(Column(0), ElementsAre(kNoon + 1e-9, kNoon + 1.25, 46'000.25));
  EXPECT_THAT(Column(1), ElementsAre(0, 5, 6));
  Paste("2025-12-10", 1, 1);
  EXPECT_THAT(TakeMessages(),
              ElementsAre(QString("Cannot paste \"2025-12-10\" in line 1: it is not a number.")));
}

TEST_F(DataSheet, PastesAllOrNothingAndNumbersOfTheLocaleButNotTheirThousands) {
  table.SetMaxRows(4);
  Paste("1\n2\n3\n", 2, 1);
  Paste("1\t2\n3\n", 0, 2);
  EXPECT_THAT(TakeMessages(),
              ElementsAre("Cannot paste 3 rows of 1 values: there is room for 2 rows of 2.",
                          "Cannot paste 2 rows of 2 values: there is room for 4 rows of 1."));
  EXPECT_THAT(Column(1), ElementsAre(0, 1, 2));
  Paste("1\n2\n", 2, 1);
  EXPECT_THAT(Column(1), ElementsAre(0, 1, 1, 2));
  SetFormatLocale(QLocale("de_DE"));
  Paste("3,5\t4.25", 0, 1);
  Paste("1.234,5", 0, 1);
  EXPECT_EQ(TakeMessages().size(), 1);
  EXPECT_EQ(table.GetValue(0, 1), 3.5);
  EXPECT_EQ(table.GetValue(0, 2), 4.25);
}

TEST_F(DataSheet, InsertsAndDeletesRowsByKey) {
  sheet.setCurrentIndex(sheet.model()->index(1, 1));
  QTest::keyClick(&sheet, Qt::Key_Insert);
  EXPECT_THAT(Column(1), ElementsAre(0, 0, 1, 2));
  EXPECT_GT(table.GetValue(1, 0), kNoon);
  QCoreApplication::processEvents();
  // The first two and the last one, cell by cell.
  QItemSelection cells;
  for (const int row : {3, 0, 1}) {
    const QModelIndex cell = sheet.model()->index(row, 2);
    cells.merge({cell, cell}, QItemSelectionModel::Select);
  }
  sheet.selectionModel()->select(cells, QItemSelectionModel::ClearAndSelect);
  QTest::keyClick(&sheet, Qt::Key_Delete);
  EXPECT_THAT(Column(1), ElementsAre(1));
  table.SetMaxRows(1);
  QTest::keyClick(&sheet, Qt::Key_Insert);
  EXPECT_THAT(TakeMessages(), ElementsAre("Cannot insert a row: the table is full."));
}

/// A logger of two controls.
struct DataLogger : testing::Test {
  /// Logs into a file of the test's folder.
  void Start(const QString& file) {
    logger.SetFileName(TestFolder() + '/' + file);
    logger.SetActive(true);
  }
  static QString Log(const QString& name) { return Contents(TestFolder() + '/' + name); }

  TDataLogger logger;
  TTwoControls controls{logger.GetControls()};
};

TEST_F(DataLogger, WritesOneFilePerNameAndEachRowAtOnce) {
  controls.Row(kNoon, 1, 2);  // not yet
  Start("log-%Y%m%d.txt");
  controls.Row(kNoon, 0.5, -2);
  controls.Row(kNoon + 0.25, 1e300, 3);
  EXPECT_TRUE(TFileSync::Instance().Waiting().contains(TestFolder() + "/log-20251209.txt"));
  EXPECT_EQ(Log("log-20251209.txt"),
            "Time\ta\tb\n2025-12-09 12:00:00.000\t0.5\t-2\n2025-12-09 18:00:00.000\t1e+300\t3\n");
  controls.Row(kNoon + 1, 4, 5);
  const QString next = "Time\ta\tb\n2025-12-10 12:00:00.000\t4\t5\n";
  EXPECT_EQ(Log("log-20251210.txt"), next);
  logger.SetActive(false);
  controls.Row(kNoon + 1, 6, 7);
  logger.SetActive(true);
  controls.Row(kNoon + 1, 8, 9);
  EXPECT_EQ(Log("log-20251210.txt"), next + "2025-12-10 12:00:00.000\t8\t9\n");
}

/// A time that is none would make lines without one, and files of the year 0.
TEST_F(DataLogger, TakesThePresentTimeForOneThatIsNone) {
  Start("log-%Y.txt");
  controls.Row(kNan, 1, 2);
  controls.Row(1e300, 3, 4);
  const QString year = QString::number(QDate::currentDate().year());
  const QStringList lines = QString(Contents(logger.CurrentFile())).split('\n');
  ASSERT_EQ(lines.size(), 4);
  EXPECT_TRUE(lines[1].startsWith(year) || lines[2].startsWith(year)) << lines[1].toStdString();
  EXPECT_EQ(lines[2].section('\t', 1), "3\t4");
}

TEST_F(DataLogger, NumbersFilesAndTriesAgainAfterAFailure) {
  logger.SetHeader(false);
  Start("numbered/run-%N.txt");
  controls.Row(kNoon, 1, 2);
  EXPECT_THAT(logger.GetStatusText().toStdString(), HasSubstr("Cannot write "));
  QDir(TestFolder()).mkpath("numbered");
  controls.Row(kNoon, 3, 4);
  EXPECT_EQ(Log("numbered/run-0001.txt"), "2025-12-09 12:00:00.000\t3\t4\n");
  logger.SetActive(false);
  logger.SetActive(true);
  controls.Row(kNoon, 5, 6);
  EXPECT_EQ(logger.CurrentFile(), TestFolder() + "/numbered/run-0002.txt");
  // A crash may have cut a line.
  logger.SetActive(false);
  WriteTestFile("cut.txt", "2025-12-09 11:0");
  Start("cut.txt");
  controls.Row(kNoon, 1, 2);
  EXPECT_EQ(Log("cut.txt"), "2025-12-09 11:0\n2025-12-09 12:00:00.000\t1\t2\n");
}

TEST_F(DataLogger, LeavesNoTornLineOnAFullDiskAndSaysWhatIsMissing) {
  Start("run-%N.txt");
  const auto row = [](int hour) { return QString("2025-12-09 %1:00:00.000\t1\t2\n").arg(hour); };
  const auto send = [this](int hour) { controls.Row(kNoon + (hour - 12) / 24.0, 1, 2); };
  QString expected = "Time\ta\tb\n" + row(12);
  for (const qint64 fits : {0, 1, 20, 27}) {  // of the next row's 28 bytes
    SCOPED_TRACE(fits);
    QFile::remove(TestFolder() + "/run-0001.txt");
    logger.SetActive(false);
    logger.SetActive(true);
    send(12);
    {
      const TFullDisk full(expected.size() + fits);
      send(13);
      send(14);
    }
    EXPECT_THAT(logger.GetStatusText().toStdString(),
                AllOf(HasSubstr("Cannot write "), HasSubstr("; 2 rows are missing")));
    EXPECT_EQ(Log("run-0001.txt"), expected);
    send(15);
    EXPECT_EQ(Log("run-0001.txt"), expected + row(15));
    EXPECT_EQ(logger.GetStatusText(), "Writing " + logger.CurrentFile() + "; 2 rows are missing");
    EXPECT_EQ(QDir(TestFolder()).entryList({"run-*"}), QStringList("run-0001.txt"));
  }
}

}  // namespace
