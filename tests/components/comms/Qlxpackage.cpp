#include "components/comms/Qlxpackage.h"

#include "model/Datetime.h"
#include "tests/components/comms/Rowrecorder.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using TRows = TRowRecorder::TRows;

constexpr double kDay = 45413.0;  // 1 May 2024, as spreadsheets count

/// A set of three channels for "w" packages and one for "data" packages, both with the id "a".
class TQLXPackageTest : public testing::Test {
 protected:
  TQLXPackageTest() {
    recorder.Add("w", "a", 3);
    recorder.Add("data", "a", 2);
  }
  /// Forgets what has come, and takes the next package.
  void ExpectReady() {
    recorder.Clear();
    package.Parse("<w id=\"a\">1 2 3</w>");
    EXPECT_EQ(recorder.Rows(0).size(), 1u) << "not ready for the next package";
    recorder.Clear();
  }
  TRowRecorder recorder;
  TQLXPackage package{recorder.Sets()};
};

TEST_F(TQLXPackageTest, TakesTheLinesOfABodyAsRows) {
  // Time and three channels, which begin at 0.
  const std::pair<const char*, TRows> cases[] = {
      {"1 2 3\r\n4 5 6\r\n", {{kDay, 1, 2, 3}, {kDay, 4, 5, 6}}},
      {"\r\n\r\n1 2 3\n\n\r\n\n4 5 6\n", {{kDay, 1, 2, 3}, {kDay, 4, 5, 6}}},
      {" \t-1.5e3   .25\t+7 \t\r\n", {{kDay, -1500, 0.25, 7}}},
      {"1 2 3\r\n4 5 6", {{kDay, 1, 2, 3}, {kDay, 4, 5, 6}}},  // the closing tag ends a line, too
      {"5", {{kDay, 5, 0, 0}}},
      {"5\r\n-6\n\n7", {{kDay, 5, 0, 0}, {kDay, -6, 0, 0}, {kDay, 7, 0, 0}}},
      {"1 2 3 4 5\r\n6 7\r\n", {{kDay, 1, 2, 3}, {kDay, 6, 7, 3}}},
      {"1 2 \r\n3 4 5\r\n", {{kDay, 1, 2, 0}, {kDay, 3, 4, 5}}},
      {"1 <b2 <<3\r\n", {{kDay, 1, 2, 3}}},  // "<" takes the next byte along
      {"1 2 3<\n4\r\n", {{kDay, 1, 2, 34}}},
      {"1 2\r3\r\n", {{kDay, 1, 23, 0}}},  // carriage returns do not count
      {"1 2 x 3\r\n4 5 6\r\n", {{kDay, 1, 2, 0}, {kDay, 4, 5, 6}}},
      {"1,5 2 3\r\n", {{kDay, 1, 0, 0}}},
      {"abc\r\n   \r\n1 2 3\r\n", {{kDay, 1, 2, 3}}},
      {"", {}},
      {"\r\n", {}},
  };
  for (const auto& [body, rows] : cases) {
    SCOPED_TRACE(body);
    TRowRecorder fresh;
    fresh.Add("w", "a", 3);
    TQLXPackage parser(fresh.Sets());
    parser.Parse(std::string("<w id=\"a\" time=\"20240501 000000000\">") + body + "</w>");
    EXPECT_EQ(fresh.Rows(0), rows);
  }
}

TEST_F(TQLXPackageTest, StampsTheRowsOfDataPackagesLineByLine) {
  // The third has no time, the fourth is too short to have values.
  QByteArray text = R"(<data id="a" time="19990101 000000000">
20240501 120000000 1 2
20240501T180000000;3 4
2024050x 120000000 5 6
20240501 1200
20240502 000000000
20240502 060000000 -7 -8
</data>)";
  QBuffer stream(&text);
  ASSERT_TRUE(stream.open(QIODevice::ReadOnly));
  stream.seek(7);
  package.Parse(stream);  // from its start
  EXPECT_THAT(recorder.Rows(1),
              ElementsAre(ElementsAre(kDay + 0.5, 1, 2), ElementsAre(kDay + 0.75, 3, 4),
                          ElementsAre(0, 5, 6), ElementsAre(kDay + 1.25, -7, -8)));
}

TEST_F(TQLXPackageTest, ChoosesTheSetByClosingNameAndId) {
  recorder.Add(QStringLiteral("w"), QString(), 1);
  recorder.Add("w", "a", 1);  // in vain: the first one has it
  recorder.Add(QStringLiteral("wänd"), QStringLiteral("ö"), 1);
  // The set that gets the row 1; -1 for none.
  const std::pair<const char*, int> cases[] = {
      {"<w id=\"a\">1</w>", 0},
      {"<other id=\"a\">1</w>", 0},
      {"<w id=\"a>1</w>", 2},  // no closing quote: no id
      {"<w>1</w>", 2},
      {"<wid=\"a\">1</w>", 2},
      {"<w\tid=\"a\">1</w>", 2},
      {"<w id='a'>1</w>", 2},
      {"<wänd x=\"1\" id=\"ö\">1</wänd>", 4},
      {"<w id=\"b\">1</w>", -1},
      {"<w id=\"a\">1</W>", -1},
      {"<w id=\"a\">1</w >", -1},
      {"rubbish > <w id=\"a\">1</w> rubbish", 0},
  };
  for (const auto& [text, set] : cases) {
    SCOPED_TRACE(text);
    recorder.Clear();
    package.Parse(text);
    for (int i = 0; i < static_cast<int>(recorder.AllRows().size()); ++i) {
      EXPECT_EQ(recorder.Rows(static_cast<std::size_t>(i)).size(), i == set ? 1u : 0u) << i;
    }
    package.Reset();
    ExpectReady();
    package.Reset();
  }
}

TEST_F(TQLXPackageTest, GoesOnBehindWhatIsTooLong) {
  const std::string name63(63, 'n');
  constexpr std::size_t kMostRows = TQLXPackage::kMaxBody / 7;
  const auto withRows = [](std::size_t count) {
    const QByteArray rows = QByteArray("1 2 3\r\n").repeated(static_cast<qsizetype>(count));
    return "<w id=\"a\">" + rows.toStdString() + "</w>";
  };
  recorder.Add(QString::fromStdString(name63), QStringLiteral("a"), 1);
  const std::tuple<const char*, std::string, std::size_t, std::size_t, std::size_t> cases[] = {
      {"closing name of 63", "<w id=\"a\">1</" + name63 + ">", 0, 1, 0},
      {"closing name of 64", "<w id=\"a\">1</" + name63 + "n>", 0, 0, 1},
      {"id ends at 256", "<w " + std::string(247, 'x') + " id=\"a\">1</w>", 1, 0, 0},
      {"id ends at 257", "<w " + std::string(248, 'x') + " id=\"a\">1</w>", 0, 0, 0},
      {"longest body", withRows(kMostRows), kMostRows, 0, 0},
      {"body too long", withRows(kMostRows + 1), 0, 0, 1},
  };
  for (const auto& [what, text, rows, named, abandoned] : cases) {
    SCOPED_TRACE(what);
    recorder.Clear();
    const auto before = package.Counts().Abandoned;
    package.Parse(text);
    EXPECT_EQ(recorder.Rows(0).size(), rows);
    EXPECT_EQ(recorder.Rows(2).size(), named);
    EXPECT_EQ(package.Counts().Abandoned - before, abandoned);
    ExpectReady();
  }
}

/// Memory of this process in bytes; 0 where the system does not say.
double ResidentBytes() {
  QFile file(QStringLiteral("/proc/self/statm"));
  if (!file.open(QIODevice::ReadOnly)) return 0.0;
  constexpr double kPage = 4096.0;
  return file.readAll().split(' ').value(1).toDouble() * kPage;
}

TEST_F(TQLXPackageTest, KeepsItsMemoryWhateverNeverEnds) {
  const std::string tag = "<w id=\"a\">";
  const std::pair<std::string, std::string> cases[] = {
      {"", "rubbish "},      {"<", "t"},        {tag, "1 2 3\r\n"}, {tag, "1 2 3 "}, {tag, "<<"},
      {tag, tag + "1\n2\n"}, {tag + "1</", "n"}};
  constexpr double kMega = 1e6, kSent = 128 * kMega;
  for (const auto& [start, more] : cases) {
    SCOPED_TRACE(start + more);
    std::string piece;
    while (piece.size() < kMega) piece += more;
    const double before = ResidentBytes();
    package.Parse(start);
    for (double sent = 0; sent < kSent; sent += kMega) package.Parse(piece);
    EXPECT_LT(ResidentBytes() - before, kSent / 2);
    package.Reset();
    ExpectReady();
  }
}

TEST_F(TQLXPackageTest, EndsThePackageAtTheValueBehind256) {
  recorder.Add(QStringLiteral("wide"), QString(), 300);
  std::string values256, values257;
  for (int i = 1; i <= 256; ++i) values256 += std::to_string(i) + ' ';
  values257 = values256 + "257";
  package.Parse("<wide>" + values256 + "\r\n" + values257 + "\r\n" + values256 + "\r\n</wide>");
  ASSERT_EQ(recorder.Rows(2).size(), 1u);
  EXPECT_EQ(recorder.Rows(2)[0][256], 256.0);
  EXPECT_EQ(recorder.Rows(2)[0][257], 0.0);
  package.Parse("<wide>9 8 7</wide>");
  EXPECT_EQ(recorder.Rows(2).size(), 2u);
}

TEST(TQLXPackage, ReadsTimeStamps) {
  const std::pair<const char*, double> cases[] = {
      {"20240501 000000000", 45413.0}, {"20240501_120000000", 45413.5},
      {"19000101 060000000", 2.25},    {"18991229 000000000", -1.0},
      {"20240501 235960000", 45414.0},  // a leap second
      {"20240501T180000", 45413.75},   {"20240229 235959999", 45351.0 + 86399.999 / kSecondsPerDay},
  };
  for (const auto& [text, days] : cases) {
    EXPECT_DOUBLE_EQ(TQLXPackage::ExtractTime(text).Days(), days) << text;
  }
  for (const char* none : {"20240501 1800", "20240501", "", "2024050", "20230229 000000000",
                           "20241301 000000000", "20240501 240000000", "20240501 006000000",
                           "00000101 000000000", "yesterday", "-0240501 000000000"}) {
    EXPECT_EQ(TQLXPackage::ExtractTime(none).Days(), 0.0) << none;
  }
}

TEST_F(TQLXPackageTest, MovesARecordToTheLocalClockWithItsDistances) {
  package.UseLocalTime = true;
  for (int record = 0; record < 2; ++record) {
    recorder.Clear();
    const double before = TDateTime::Now().Days();
    package.Parse(
        "<data id=\"a\">\r\n20010101 000000000 1 1\r\n20010101 000003500 2 2\r\n</data>"
        "<w id=\"a\">7 8 9</w>"
        "<data id=\"a\">\r\n20010101 000030000 3 3\r\n</data>"
        "<w id=\"a\" time=\"20010101 000010000\">1 2 3\r\n4 5 6\r\n</w>");
    package.EndRecord();
    const double after = TDateTime::Now().Days();
    const TRows &data = recorder.Rows(1), &others = recorder.Rows(0);
    ASSERT_EQ(data.size(), 3u);
    ASSERT_EQ(others.size(), 3u);
    for (const double first : {data[0][0], others[0][0]}) {  // the other one has no time of its own
      EXPECT_GE(first, before);
      EXPECT_LE(first, after);
    }
    const auto seconds = [&](const auto& row) { return (row[0] - data[0][0]) * kSecondsPerDay; };
    EXPECT_NEAR(seconds(data[1]), 3.5, 1e-5);
    EXPECT_NEAR(seconds(data[2]), 30.0, 1e-5);
    EXPECT_NEAR(seconds(others[1]), 10.0, 1e-5);
    EXPECT_NEAR(seconds(others[2]), 10.0, 1e-5);
  }
}

TEST_F(TQLXPackageTest, SurvivesWhatARowDoes) {
  const std::string text = "<w id=\"a\">1 2 3\r\n4 5 6\r\n</w><w id=\"a\">7 8 9</w>";
  using TAct = std::function<void(TRowRecorder&, std::unique_ptr<TQLXPackage>&)>;
  const std::pair<TAct, std::size_t> cases[] = {
      {[](auto&, auto& parser) { parser->Reset(); }, 1},
      {[](auto&, auto& parser) { parser.reset(); }, 1},
      {[](auto& rows, auto&) { rows.Sets()->Clear(); }, 1},
      {[](auto& rows, auto&) { rows.DestroySource(); }, 1},
      {[](auto&, auto& parser) { parser->SetChannelSets(nullptr); }, 2},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(&each - cases);
    TRowRecorder fresh;
    fresh.Add("w", "a", 3);
    auto parser = std::make_unique<TQLXPackage>(fresh.Sets());
    fresh.OnRow = [&] {
      if (fresh.Rows(0).size() == 1) each.first(fresh, parser);
    };
    parser->Parse(text);
    EXPECT_EQ(fresh.Rows(0).size(), each.second);
  }
}

/// Text that is a package here and nearly one there.
std::string Rubbish(std::mt19937& random, int pieces) {
  static const QByteArrayList kPieces =
      QByteArray(
          "<data id=\"a\">|<w id=\"a\" time=\"20240501 010203004\">|</data>|</w>|<|>|/|\r\n|\n|\r|"
          "\n\n| |\t|20240501 101112131 |1|-2.5|3.25 4|17.125 |x|\"| id=\"|a|<b|</|"
          "0.001 -4 5.5 6\r\n|data|1 2 3\r\n|\xff")
          .split('|') +
      QByteArrayList{QByteArray(1, '\0'), QByteArray(70, 'n'), QByteArray(300, 't')};
  std::uniform_int_distribution<qsizetype> pick(0, kPieces.size() - 1);
  std::string text;
  for (int i = 0; i < pieces; ++i) text += kPieces[pick(random)].toStdString();
  return text;
}

TEST(TQLXPackage, GivesTheSameRowsHoweverTheTextIsCut) {
  std::mt19937 random(20240501);
  std::size_t rows = 0;
  for (int run = 0; run < 3000; ++run) {
    const std::string text = Rubbish(random, 120);
    TRowRecorder whole, cut;
    for (TRowRecorder* recorder : {&whole, &cut}) {
      recorder->Add("data", "a", 4);
      recorder->Add("w", "a", 3);
    }
    TQLXPackage(whole.Sets()).Parse(text);
    TQLXPackage package(cut.Sets());
    std::uniform_int_distribution<std::size_t> chunk(1, run % 3 == 0 ? 1 : 1 << (run % 9));
    for (std::size_t i = 0, size = 0; i < text.size(); i += size) {
      size = std::min(chunk(random), text.size() - i);
      package.Parse(std::string_view(text).substr(i, size));
    }
    ASSERT_EQ(cut.AllRows(), whole.AllRows()) << "run " << run;
    rows += cut.Rows(0).size() + cut.Rows(1).size();
  }
  EXPECT_GT(rows, 2000u) << "the text must have rows to be lost";
}

}  // namespace
