#include "components/channels/Statsstorage.h"

#include "model/Filesync.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

constexpr double kSecond = 1.0 / kSecondsPerDay;
const double kDay = static_cast<double>(QDate(1899, 12, 30).daysTo(QDate(2024, 5, 31)));

/// A set of one channel, "Load" in kN, whose blocks of two rows go to a storage in the test's
/// folder.
struct TStored {
  explicit TStored(int seconds = 0) {
    storage->SetSaveInterval(seconds);
    storage->SetRootDir(TestFolder() + "/stats");
    storage->SetActive(true);
    set->SetCount(1);
    set->SetRows(2);
    set->SetLabel("Crane");
    Channel().SetLabel("Load");
    Channel().SetUnits("kN");
    set->SetStorage(storage.get());
  }
  TChannel& Channel() const { return *set->GetChannels()->GetItem(0); }
  /// Two rows half a second apart that end so many seconds after midnight, of value - 1 and value
  /// + 1.
  void Block(double seconds, double value) const {
    for (const double half : {-1.0, 1.0}) {
      const double row[] = {kDay + (seconds + 0.25 * (half - 1.0)) * kSecond, value + half};
      set->SetRow(row, 0, 2);
    }
  }
  static QString File(const char* name = "Crane_20240531.csv") {
    return TestFolder() + "/stats/" + name;
  }
  std::unique_ptr<TStatsStorage> storage = std::make_unique<TStatsStorage>();
  std::unique_ptr<TChannelSet> set = std::make_unique<TChannelSet>();
};

TStatsContent Content(const QString& name = TStored::File()) {
  TStatsContent content;
  QString error;
  EXPECT_TRUE(ReadStatsFile(name, content, &error)) << error.toStdString();
  return content;
}

/// Of the first channel, line by line: one figure after the other.
std::vector<double> Figures(double TStatSet::*figure, const QString& name) {
  std::vector<double> figures;
  for (const TStatsBlock& block : Content(name).Blocks)
    figures.push_back(block.Channels[0].*figure);
  return figures;
}
std::vector<double> Means(const QString& name = TStored::File()) {
  return Figures(&TStatSet::Mean, name);
}
std::vector<double> Counts(const QString& name = TStored::File()) {
  return Figures(&TStatSet::Count, name);
}

const QByteArray kHeader =
    "Time,\"Load Mean [kN]\",\"Load Max [kN]\",\"Load Min [kN]\",\"Load StDev [kN]\","
    "\"Load Count\",Cells\n";

TEST(TStatsStorage, AppendsALinePerIntervalToTheFileOfTheDay) {
  TStored stored(10);
  stored.Block(1, 10.0);
  stored.Block(5, 20.0);
  EXPECT_FALSE(QFile::exists(stored.File()));
  stored.Block(10.5, 30.0);
  const QByteArray text = Contents(stored.File());
  const QByteArray start = kHeader + "2024-05-31 00:00:10.500,20,31,9,";
  ASSERT_TRUE(text.startsWith(start)) << text.toStdString();
  EXPECT_NEAR(text.mid(start.size()).split(',')[0].toDouble(), std::sqrt(81.2), 1e-12);
  EXPECT_TRUE(text.endsWith(",6,6\n"));
  stored.Block(86401, 1.0);  // the day after
  stored.Block(86412, 1.0);
  EXPECT_EQ(Means(stored.File("Crane_20240601.csv")).size(), 1u);
  EXPECT_EQ(stored.storage->GetStatus(), "Saving to " + stored.File("Crane_20240601.csv"));
}

TEST(TStatsStorage, ReadsBackWhatItHasWritten) {
  TStored stored;
  stored.storage->SetUseDoubleTime(true);
  stored.set->SetCount(2);
  stored.set->GetChannels()->GetItem(0)->SetLabel("a \"b\", c\nMean [x] Count");
  stored.set->GetChannels()->GetItem(1)->SetUnits(QString::fromUtf8("µm/m, [1]"));
  for (int i = 1; i < 9; ++i) {
    const double row[] = {kDay + i * kSecond, 0.1 * i, -1e-300 * i};
    stored.set->SetRow(row, 0, 3);
  }
  const TStatsContent content = Content();
  ASSERT_EQ(content.Layouts.size(), 1u);
  EXPECT_EQ(content.Layouts[0][0], (TStatsColumn{"a \"b\", c Mean [x] Count", "kN"}));
  EXPECT_EQ(content.Layouts[0][1].Units, QString::fromUtf8("µm/m, [1]"));
  EXPECT_EQ(content.Skipped, 0);
  ASSERT_GE(content.Blocks.size(), 2u);
  std::vector<TStatSet> last;
  ASSERT_TRUE(stored.set->CopyBlockStats(last));
  const TStatsBlock& block = content.Blocks.back();
  EXPECT_EQ(block.Channels[0].Max, last[0].Max);
  EXPECT_EQ(block.Channels[1].Min, last[1].Min);
  EXPECT_DOUBLE_EQ(block.Channels[0].Sum, last[0].Sum);
  EXPECT_DOUBLE_EQ(block.Channels[0].SqSum, last[0].SqSum);
  EXPECT_NEAR(block.Time, last[0].Time, 1e-8);
}

TEST(TStatsStorage, ALineThatACrashHasCutIsSkippedAndNothingElse) {
  TStored stored;
  stored.Block(1, 1.0);
  stored.Block(2, 12345.678);
  const QByteArray whole = Contents(stored.File());
  for (qsizetype length = whole.lastIndexOf('\n', -2) + 1; length <= whole.size(); ++length) {
    SCOPED_TRACE(length);
    WriteTestFile("stats/Crane_20240531.csv", whole.left(length));
    std::vector<double> means = {1.0};
    if (length == whole.size()) means.push_back(12345.678);
    EXPECT_EQ(Means(), means);
    TStored().Block(3, 3.0);  // the program is started anew
    // The cut line may have all but the end of its line.
    if (length == whole.size() - 1) means.push_back(12345.678);
    means.push_back(3.0);
    EXPECT_EQ(Means(), means);
  }
}

#ifdef Q_OS_UNIX

TEST(TStatsStorage, WaitsForAFullDisk) {
  TStored stored;
  stored.Block(1, 1.0);
  const QByteArray before = Contents(stored.File());
  {
    const TFullDisk full(before.size() + 20);  // half a line fits
    stored.Block(2, 2.0);
    stored.Block(3, 3.0);
  }
  EXPECT_TRUE(stored.storage->GetStatus().startsWith("Cannot write " + stored.File() + ": "));
  EXPECT_EQ(Contents(stored.File()), before);
  stored.Block(4, 4.0);
  EXPECT_THAT(Means(), ElementsAre(1.0, 3.0));
  EXPECT_THAT(Counts(), ElementsAre(2.0, 6.0));  // what could not be written is in the next line
  EXPECT_EQ(stored.storage->GetStatus(), "Saving to " + stored.File());
  EXPECT_EQ(Content().Skipped, 0);
}

#endif

TEST(TStatsStorage, TellsTheLoggerOfItsForm) {
  QWidget form;
  auto* log = new QPlainTextEdit(&form);
  log->setObjectName("Log");
  TStored stored;
  stored.storage->setParent(&form);
  stored.storage->SetLoggerName("Log");
  stored.storage->Loaded();
  stored.storage->SetRootDir("/proc/none");
  stored.Block(1, 1.0);
  QCoreApplication::processEvents();
  EXPECT_TRUE(log->toPlainText().startsWith("Cannot write /proc/none/Crane_20240531.csv: "))
      << log->toPlainText().toStdString();
}

TEST(TStatsStorage, NewChannelsGetANewHeaderAndANewSetAnotherFile) {
  TStored stored(3600);
  stored.Block(1, 1.0);
  stored.Channel().SetLabel("Force");  // what is collected is written first
  stored.Block(2, 2.0);
  stored.set->SetLabel("Hoist");
  stored.Block(3, 3.0);
  stored.storage->SetActive(false);
  stored.Block(4, 4.0);
  const TStatsContent content = Content();
  ASSERT_EQ(content.Layouts.size(), 2u);
  EXPECT_EQ(content.Layouts[1][0].Label, "Force");
  EXPECT_THAT(Means(), ElementsAre(1.0, 2.0));
  EXPECT_EQ(content.Blocks[1].Layout, 1);
  EXPECT_THAT(Means(stored.File("Hoist_20240531.csv")), ElementsAre(3.0));
}

/// How many rows are written once the folder is there again, by what happened to the set meanwhile.
TEST(TStatsStorage, DropsNothingOfAFolderThatWasAwayWhateverChanges) {
  const std::tuple<const char*, double, void (*)(TStored&)> changes[] = {
      {"nothing", 6, [](TStored&) {}},
      {"label", 6, [](TStored& stored) { stored.set->SetLabel("Hoist"); }},
      {"channel label", 6, [](TStored& stored) { stored.Channel().SetLabel("Force"); }},
      {"unit", 6, [](TStored& stored) { stored.Channel().SetUnits("N"); }},
      {"count", 6, [](TStored& stored) { stored.set->SetCount(2); }},
      {"storage", 2, [](TStored& stored) { stored.set->SetStorage(nullptr); }},
      {"set", 2, [](TStored& stored) { stored.set = std::make_unique<TChannelSet>(); }},
      {"switch", 2, [](TStored& stored) { stored.storage->SetActive(false); }},
  };
  for (const auto& [name, rows, change] : changes) {
    SCOPED_TRACE(name);
    WriteTestFile("stats", "a file where the folder is to be");
    TStored stored(60);
    stored.Block(1, 1.0);
    for (int again = 0; again < 2; ++again) {
      change(stored);
      stored.Block(2 + again, 2.0);
      stored.set->SetLabel("Crane");
      stored.set->SetStorage(stored.storage.get());
    }
    ASSERT_TRUE(QFile::remove(TestFolder() + "/stats"));
    stored.storage.reset();
    double count = 0.0;
    for (const QFileInfo& file : QDir(TestFolder() + "/stats").entryInfoList(QDir::Files)) {
      for (const double written : Counts(file.filePath())) count += written;
    }
    EXPECT_EQ(count, rows);
    ASSERT_TRUE(QDir(TestFolder() + "/stats").removeRecursively());
  }
}

/// Blocks of a second, as a clock stamps them whose seconds are not ours; the first has no line of
/// its own, as nobody knows when it began.
TEST(TStatsStorage, AnIntervalOfABlockHasALinePerBlock) {
  for (const double phase : {0.0, 0.3, 0.9999}) {
    SCOPED_TRACE(phase);
    TStored stored(1);
    for (int second = 1; second <= 600; ++second) stored.Block(second + phase, second);
    EXPECT_GE(Counts().size(), 599u);
    EXPECT_THAT(Counts(), testing::Each(2.0));
    QFile::remove(stored.File());
  }
}

TEST(TStatsStorage, WritesTheRestWhenEitherSideOrTheSessionGoes) {
  const std::function<void(TStored&)> ends[] = {
      [](TStored& stored) {
        stored.storage.reset();
        stored.Block(2, 2.0);
      },
      [](TStored& stored) { stored.set.reset(); },
      [](TStored&) { EndSession(); },
  };
  for (const auto& end : ends) {
    SCOPED_TRACE(&end - ends);
    TStored stored(60);
    stored.Block(1, 1.0);
    end(stored);
    EXPECT_TRUE(TFileSync::Instance().Waiting().contains(TStored::File()));
    EXPECT_THAT(Means(), ElementsAre(1.0));
    QFile::remove(TStored::File());
  }
}

TEST(TStatsStorage, WhatCameBeforeAPauseHasALineInTheFileOfItsDay) {
  TStored stored(3600);
  stored.storage->SetEndTime(kDay + 3.0);
  stored.Block(61000, 1.0);
  stored.Block(500, 2.0);  // set back: the line of before is written as it stands
  stored.Block(2 * kSecondsPerDay + 100, 3.0);
  stored.Block(3 * kSecondsPerDay + 100, 4.0);  // too late
  stored.storage->SetActive(false);
  EXPECT_THAT(Means(), ElementsAre(1.0));
  EXPECT_THAT(Means(stored.File("Crane_20240602.csv")), ElementsAre(3.0));
}

TEST(TStatsStorage, CountsIntervalsFromMidnight) {
  TStored stored(50000);
  // The second ends the first interval, and the day the other.
  for (const double at : {40000.0, 50001.0, 80000.0, 86400.5, 86400.0 + 49999.0}) {
    stored.Block(at, 1.0);
    EXPECT_EQ(QFile::exists(stored.File()), at > 50000.0);
  }
  EXPECT_EQ(Means(stored.File("Crane_20240601.csv")).size(), 1u);
}

TEST(TStatsStorage, NamesFilesSoThatEverySystemTakesThem) {
  const std::pair<const char*, const char*> cases[] = {{"Crane 1", "Crane 1"},
                                                       {"../../etc/passwd", "_._.._etc_passwd"},
                                                       {"a:b*c?\"<>|\\\n", "a_b_c_______"},
                                                       {"", ""}};
  for (const auto& [label, safe] : cases) EXPECT_EQ(SafeFileName(label), safe);
  EXPECT_LE(SafeFileName(QString(1000, QChar(0x4e2d))).toUtf8().size(), 120);
  TStored stored;
  stored.storage->SetAutoPrefix(false);
  stored.storage->SetFilePrefix("x/");
  stored.storage->SetFileExt(".txt");
  stored.Block(1, 1.0);
  EXPECT_TRUE(QFile::exists(stored.File("x_20240531.txt")));
}

TEST(ReadStatsFile, RefusesWhatIsNoFile) {
  TStatsContent content;
  QString error;
  EXPECT_FALSE(ReadStatsFile(TestFolder(), content, &error));
  EXPECT_TRUE(error.endsWith(": it is a folder.")) << error.toStdString();
  EXPECT_FALSE(ReadStatsFile("/dev/zero", content, &error));
  EXPECT_EQ(error, "Cannot read zero: it is not a regular file.");
}

TEST(ParseStats, SkipsWhatIsNoBlock) {
  const QByteArray line = "2024-05-31 00:00:10.500,20,31,9,9,6,6\n";
  const std::tuple<QByteArray, std::size_t, int> cases[] = {
      {"", 0, 0},
      {line, 0, 1},  // no header
      {kHeader + line + line, 2, 0},
      {kHeader + "2024-13-31 00:00:10.500,20,31,9,9,6,6\n" + line, 1, 1},
      {kHeader + "45000.5,20,31,9,9,6,6\r\n", 1, 0},
      {kHeader + "45000.5,20,31,9,nan,6,6\n", 0, 1},
      {kHeader + "45000.5,20,31,9,9,-6,6\n", 0, 1},
      {kHeader + "45000.5,20,31,9,9,6,7\n", 0, 1},
      {kHeader + "Time,\"x,Cells\n" + line, 1, 1},
      {kHeader + QByteArray(1000, '\0') + '\n' + line, 1, 1},
      {"Time" + QByteArray(1'000'000, ',') + "\n" + kHeader + line, 1, 1},
      {"Time,Cells\n45000.5,1\n", 1, 0}};
  for (const auto& [text, blocks, skipped] : cases) {
    SCOPED_TRACE(text.toStdString());
    const TStatsContent content = ParseStats(text);
    EXPECT_EQ(content.Blocks.size(), blocks);
    EXPECT_EQ(content.Skipped, skipped);
  }
}

}  // namespace
