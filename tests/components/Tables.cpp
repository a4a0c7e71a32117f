#include "components/sources/Tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include "components/sources/Datalogger.h"
#include "components/sources/Datasheet.h"
#include "tests/support/Testsupport.h"

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

TEST(TDataTable, TakesARowWithEachValueOfTheLastControl) {
  TDataTable table;
  TTwoControls controls(table.GetControls());
  table.SetMaxRows(3);
  QSignalSpy added(&table, &TDataTable::OnRowAdded);
  for (int i = 0; i < 4; ++i) controls.Row(kNoon + i, i, 10 * i);
  controls.a.SetValue(99.0);  // completes no row
  EXPECT_EQ(added.count(), 4);
  ASSERT_EQ(table.RowCount(), 3);
  EXPECT_EQ(table.GetValue(0, 0), kNoon + 1);
  EXPECT_EQ(table.GetValue(2, 1), 3.0);
  EXPECT_EQ(table.GetValue(2, 2), 30.0);
  EXPECT_EQ(table.ColName(0), "Time");
  EXPECT_EQ(table.ColName(2), "b");
  table.SetRecording(false);
  controls.Row(kNoon, 0, 0);
  EXPECT_EQ(added.count(), 4);
}

TEST(TDataTable, LivesOnWhenItsControlsGo) {
  TDataTable table;
  {
    TTwoControls controls(table.GetControls());
    controls.Row(kNoon, 1, 2);
    table.GetControls()->DeleteComponent(&controls.b);
    controls.a.SetTimeAndValue(kNoon, 5.0);  // the last one now
    ASSERT_EQ(table.RowCount(), 1);
    EXPECT_EQ(table.GetValue(0, 1), 5.0);
  }
  EXPECT_EQ(table.ColCount(), 1);
  EXPECT_EQ(table.RowCount(), 0);
}

TEST(TDataSheet, CopiesAndPastesAsSpreadsheetsDo) {
  TDataTable table;
  TTwoControls controls(table.GetControls());
  for (int i = 0; i < 3; ++i) controls.Row(kNoon, 0.1 + i, -i);
  TDataSheet sheet;
  sheet.SetTable(&table);
  sheet.setCurrentIndex(sheet.model()->index(0, 1));
  sheet.selectionModel()->select(
      QItemSelection(sheet.model()->index(0, 1), sheet.model()->index(1, 2)),
      QItemSelectionModel::ClearAndSelect);
  QTest::keyClick(&sheet, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "0.1\t0\n1.1\t-1\n");

  sheet.setCurrentIndex(sheet.model()->index(2, 1));
  QTest::keyClick(&sheet, Qt::Key_V, Qt::ControlModifier);
  ASSERT_EQ(table.RowCount(), 4);
  EXPECT_EQ(table.GetValue(3, 1), 1.1);
  EXPECT_EQ(table.GetValue(3, 2), -1.0);

  QApplication::clipboard()->setText("7\nseven\n");
  sheet.Paste();
  EXPECT_THAT(TakeMessages(),
              ElementsAre(QString("Cannot paste \"seven\" in line 2: it is not a number.")));
  EXPECT_EQ(table.GetValue(2, 1), 0.1);

  sheet.SetReadOnly(true);
  QApplication::clipboard()->setText("7");
  sheet.Paste();
  sheet.DeleteSelectedRows();
  EXPECT_EQ(table.GetValue(2, 1), 0.1);
  EXPECT_EQ(table.RowCount(), 4);
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

QString Contents(const QString& name) {
  QFile file(name);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST(TDataLogger, WritesOneFilePerNameAndEachRowAtOnce) {
  TDataLogger logger;
  TTwoControls controls(logger.GetControls());
  const QString folder = TestFolder();
  logger.SetFileName(folder + "/log-%Y%m%d.txt");
  controls.Row(kNoon, 1, 2);  // not yet
  logger.SetActive(true);
  controls.Row(kNoon, 0.5, -2);
  controls.Row(kNoon + 0.25, 1e300, 3);
  EXPECT_EQ(Contents(folder + "/log-20251209.txt"),
            "Time\ta\tb\n2025-12-09 12:00:00.000\t0.5\t-2\n2025-12-09 18:00:00.000\t1e+300\t3\n");
  controls.Row(kNoon + 1, 4, 5);
  EXPECT_EQ(Contents(folder + "/log-20251210.txt"), "Time\ta\tb\n2025-12-10 12:00:00.000\t4\t5\n");
  logger.SetActive(false);
  controls.Row(kNoon + 1, 6, 7);
  logger.SetActive(true);
  controls.Row(kNoon + 1, 8, 9);
  EXPECT_EQ(Contents(folder + "/log-20251210.txt"),
            "Time\ta\tb\n2025-12-10 12:00:00.000\t4\t5\n2025-12-10 12:00:00.000\t8\t9\n");
}

TEST(TDataLogger, NumbersFilesAndTriesAgainAfterAFailure) {
  TDataLogger logger;
  TTwoControls controls(logger.GetControls());
  const QString folder = TestFolder() + "/numbered";
  logger.SetFileName(folder + "/run-%N.txt");
  logger.SetHeader(false);
  logger.SetActive(true);
  controls.Row(kNoon, 1, 2);
  EXPECT_THAT(logger.GetStatusText().toStdString(), HasSubstr("Cannot write "));
  QDir().mkpath(folder);
  controls.Row(kNoon, 3, 4);
  EXPECT_EQ(Contents(folder + "/run-0001.txt"), "2025-12-09 12:00:00.000\t3\t4\n");
  logger.SetActive(false);
  logger.SetActive(true);
  controls.Row(kNoon, 5, 6);
  EXPECT_EQ(logger.CurrentFile(), folder + "/run-0002.txt");
}

}  // namespace
