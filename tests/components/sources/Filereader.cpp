#include "components/sources/Filereader.h"

#include <sys/stat.h>

#include "tests/components/sources/Providerfixture.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A reader with a client, and the files that it began and ended.
struct TReading : TFeeding<TFileReader> {
  TReading() {
    QObject::connect(this, &TFileReader::OnNewFile, &client,
                     [this](QObject*, auto& name) { events << "new " + name.section('/', -1); });
    QObject::connect(this, &TFileReader::OnEndOfFile, &client, [this] { events << "end"; });
  }
  void ReadList(const QStringList& files, TReadMode mode = rmUntilFileListEnd) {
    SetUseList(true);
    SetReadMode(mode);
    SetFiles(files);
  }
  QStringList events;
};

/// Lines "0" to "count - 1", eight bytes each.
QByteArray Lines(int count) {
  QByteArray text;
  for (int i = 0; i < count; ++i) text += QByteArray::number(i).rightJustified(7) + '\n';
  return text;
}

TEST(TFileReader, ReadsAFileToItsEndEachTimeAndLosesNoLineToAByteOrderMark) {
  const QByteArray mark = "\xEF\xBB\xBF";
  const std::pair<QByteArray, std::vector<double>> cases[] = {
      {"Time Value\n1 2\n3 4", {1, 2, 3}},  // nothing ends the 4
      {mark + "1 2\n3\n", {1, 2, 3}},
      {mark + "Time\n3\n", {3}},
      {mark, {}}};
  for (const auto& [text, values] : cases) {
    TReading reader;
    reader.SetFileName(WriteTestFile("a.txt", text));
    for (int run = 0; run < 2; ++run) EXPECT_EQ(reader.Run(), values);
    EXPECT_EQ(reader.events, QStringList({"new a.txt", "end", "end"}));
    EXPECT_EQ(reader.GetErrorText(), QString());
  }
}

TEST(TFileReader, ReadsTheFilesOfAListAsTheModeSays) {
  using TReader = TCustomDataProvider;
  const QStringList all = {"new a", "end", "new b", "end", "new c", "end"};
  const std::tuple<TReader::TReadMode, std::vector<std::vector<double>>, QStringList> cases[] = {
      {TReader::rmUntilFileListEnd, {{1, 2, 3}, {1, 2, 3}}, all + all},
      {TReader::rmUntilEnd, {{1, 2}, {3}, {}, {1, 2}}, all + all.first(2)},
      {TReader::rmReadPage, {{1, 2, 3, 1, 2}}, all + all.first(1)},
  };
  for (const auto& [mode, runs, events] : cases) {
    SCOPED_TRACE(mode);
    TReading reader;
    reader.ReadList(
        {WriteTestFile("a", "1\n2\n"), WriteTestFile("b", "3\n"), WriteTestFile("c", "")}, mode);
    reader.events.clear();
    reader.SetPageSize(5);
    for (const std::vector<double>& run : runs) EXPECT_EQ(reader.Run(), run);
    EXPECT_EQ(reader.events, events);
  }
}

/// Nor does it wait for a pipe, or read a device for ever.
TEST(TFileReader, SkipsAFileOfTheListThatCannotBeOpened) {
  const QString pipe = TestFolder() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.toLocal8Bit(), 0600), 0);
  const std::pair<QString, const char*> cases[] = {
      {TestFolder() + "/missing", "No such file or directory"},
      {pipe, "it is no file"},
      {"/dev/zero", "it is no file"}};
  for (const auto& [name, why] : cases) {
    const QString fault = "Cannot open " + name + ": " + why;
    TReading reader;
    reader.SetFileName(name);
    EXPECT_EQ(reader.GetFileName(), QString());
    reader.ReadList({WriteTestFile("a", "1\n"), name, WriteTestFile("c", "2\n")});
    EXPECT_THAT(reader.Run(), ElementsAre(1));
    EXPECT_EQ(reader.GetErrorText(), fault);
    EXPECT_THAT(reader.Run(), ElementsAre(2));
    reader.SetFiles({WriteTestFile("a", "1\n"), name});  // now it is the last one
    for (int run = 0; run < 3; ++run) {
      EXPECT_THAT(reader.Run(), ElementsAre(1));
      EXPECT_EQ(reader.GetErrorText(), fault);
    }
  }
}

TEST(TFileReader, GivesUpOnAListWithoutANumber) {
  TReading reader;
  reader.ReadList({WriteTestFile("a", ""), WriteTestFile("b", "header\n")},
                  TCustomDataProvider::rmContinuous);
  EXPECT_THAT(reader.Run(), IsEmpty());
  EXPECT_NE(reader.GetErrorText(), QString());
  reader.SetFiles({});
  EXPECT_THAT(reader.Run(), IsEmpty());
  EXPECT_EQ(reader.GetErrorText(), "Cannot read: there is no file");
}

TEST(TFileReader, TakesOnlyNamesOfFilesThatCanBeRead) {
  TReading reader;
  const QString file = WriteTestFile("a.txt", "1\n");
  QSignalSpy errors(&reader, &TThreadProvider::OnError);
  const std::tuple<QString, QString, int> cases[] = {
      {file, file, 0}, {TestFolder() + "/missing", {}, 1},
      {file, file, 1}, {TestFolder(), {}, 2},
      {file, file, 2}, {{}, {}, 2}};
  for (const auto& [name, taken, expectedErrors] : cases) {
    reader.SetFileName(name);
    EXPECT_EQ(reader.GetFileName(), taken);
    ASSERT_EQ(errors.count(), expectedErrors);
  }
  EXPECT_EQ(errors[1][1], "Cannot open " + TestFolder() + ": it is a folder");
}

TEST(TFileReader, KnowsThePositionBehindTheDeliveredValue) {
  TReading reader;
  reader.SetFileName(WriteTestFile("a.txt", Lines(1000)));
  reader.client.OnGiven = [&](double value) {
    ASSERT_EQ(reader.GetStreamPosition(), 8 * (value + 1));
    if (value == 600) reader.SetActive(false);
  };
  EXPECT_THAT(reader.Run(), SizeIs(601));
  EXPECT_EQ(reader.GetStreamPosition(), 4808);
  EXPECT_EQ(reader.GetStreamPosPercent(), 60);
  EXPECT_THAT(reader.Run(), SizeIs(1000 - 601));
  EXPECT_EQ(reader.GetStreamPosition(), 0);
}

TEST(TFileReader, GoesOnAtTheLineOfAPosition) {
  const QString file = WriteTestFile("a.txt", Lines(100));
  const std::pair<qint64, double> cases[] = {{0, 0},    {1, 0},    {7, 0},   {8, 1},
                                             {405, 50}, {799, 99}, {800, 0}, {5'000'000'000, 0}};
  for (const bool opened : {false, true}) {
    for (const auto& [position, first] : cases) {
      SCOPED_TRACE(position);
      TReading reader;
      SetPages(reader, 1);
      reader.SetFileName(file);
      if (opened) reader.Run();
      reader.SetStreamPosition(position);
      reader.SetStreamPosition(-1);
      EXPECT_EQ(reader.GetStreamPosition(), opened ? position : 0);
      EXPECT_THAT(reader.Run(), ElementsAre(first));
    }
  }
}

TEST(TFileReader, ReadsAFileThatShrinksOrVanishesMeanwhile) {
  for (const bool vanishes : {false, true}) {
    TReading reader;
    const QString file = WriteTestFile("a.txt", Lines(400'000));  // 3.2 MB, four chunks
    reader.SetFileName(file);
    reader.client.OnGiven = [&](double value) {
      if (value != 200'000 || !QFile::exists(file)) return;
      EXPECT_TRUE(vanishes ? QFile::remove(file) : QFile::resize(file, 100));
    };
    // What is in memory is delivered; a file that is open can be read on without its name.
    EXPECT_THAT(reader.Run(), SizeIs(vanishes ? 400'000 : 262'146));
    EXPECT_EQ(reader.GetErrorText(), QString());
    EXPECT_THAT(reader.Run(), SizeIs(vanishes ? 0 : 12));
    EXPECT_EQ(reader.GetErrorText().startsWith("Cannot open"), vanishes);
  }
}

/// Puts another file in the place of one, as programs do that write it anew.
void Replace(const QString& file, const QByteArray& text) {
  const QString other = WriteTestFile("other", text);
  ASSERT_TRUE(QFile::remove(file) && QFile::rename(other, file));
}

TEST(TFileReader, ReadsTheFileThatHasTheNameNow) {
  for (const bool useList : {false, true}) {
    TReading reader;
    const QString file = WriteTestFile("a.txt", Lines(10));
    reader.ReadList({file}, useList ? TReading::rmUntilFileListEnd : TReading::rmUntilEnd);
    reader.SetUseList(useList);
    reader.SetFileName(file);
    EXPECT_THAT(reader.Run(), SizeIs(10));
    Replace(file, "100\n101\n");
    EXPECT_THAT(reader.Run(), ElementsAre(100, 101));

    // Stopped in the middle it goes on there, in the same file only.
    reader.client.OnGiven = [&](double value) {
      if (value == 100) reader.SetActive(false);
    };
    for (const double value : {100, 101, 100}) EXPECT_THAT(reader.Run(), ElementsAre(value));
    Replace(file, "200\n201\n");
    EXPECT_THAT(reader.Run(), ElementsAre(200, 201));
  }
}

/// It shows what its form says, and starts when that is complete.
TEST(TFileReader, GoesOnInTheFileOfItsListThatAFormNames) {
  const QStringList files = {WriteTestFile("a", "1\n2\n"), WriteTestFile("b", "3\n4\n5\n"),
                             WriteTestFile("c", "6\n")};
  for (const double stop : {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}) {
    SCOPED_TRACE(stop);
    TReading saved;
    saved.ReadList(files);
    saved.client.OnGiven = [&](double value) {
      if (value == stop) saved.SetActive(false);
    };
    ASSERT_TRUE(RunToStop(saved));
    for (const bool backwards : {false, true}) {
      TReading loaded;
      loaded.BeginLoading();
      loaded.SetActive(true);
      QStringList names = {"UseList", "Files", "ReadMode", "StreamPosition", "ItemIndex"};
      if (backwards) std::reverse(names.begin(), names.end());
      for (const QString& name : names) {
        loaded.setProperty(name.toLatin1(), saved.property(name.toLatin1()));
        EXPECT_EQ(loaded.property(name.toLatin1()), saved.property(name.toLatin1()));
      }
      EXPECT_TRUE(loaded.property("Active").toBool());
      EXPECT_FALSE(loaded.GetActive());
      EXPECT_EQ(loaded.GetStreamPosition(), 0);
      loaded.Loaded();
      ASSERT_TRUE(RunUntil([&] { return !loaded.GetActive(); }));
      std::vector<double> rest;
      for (double value = stop + 1.0; value <= 6.0; ++value) rest.push_back(value);
      EXPECT_EQ(loaded.given(), rest);
      EXPECT_FALSE(loaded.property("Active").toBool());
      EXPECT_EQ(loaded.property("StreamPosition").toInt(), 0);
    }
  }
}

TEST(TFileReader, ReportsProgressAboutTenTimesInAChunk) {
  TReading reader;
  reader.SetFileName(WriteTestFile("a.txt", Lines(400'000)));  // 3.2 MB, four chunks
  std::vector<int> percents;
  QObject::connect(&reader, &TStreamProvider::OnProgress, &reader.client,
                   [&] { percents.push_back(reader.GetStreamPosPercent()); });
  const std::vector<double> given = reader.Run();
  EXPECT_THAT(given, SizeIs(400'000));
  ExpectCounting(given);
  EXPECT_GE(percents.size(), 40u);
  EXPECT_LE(percents.size(), 50u);
  // The last two are of the end: reached, and left for the beginning.
  EXPECT_EQ(percents.back(), 0);
  percents.pop_back();
  EXPECT_EQ(percents.back(), 100);
  EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
}

TEST(TFileReader, BeginsARoundOfClientsWithEachChunkOfWholeLines) {
  QByteArray text = "0\n" + QByteArray("1 2 3\n").repeated(174'763);
  ASSERT_EQ(text.size(), 1'048'580);
  text += "7 8 9\n";  // the chunk goes on behind its size, to the end of this line
  text += "5 6\n";
  TReading reader;
  TRecorder second;
  reader.GetClientControls()->Add(&second);
  reader.SetFileName(WriteTestFile("a.txt", text));
  const std::size_t chunk = 1 + 3 * 174'764;
  ASSERT_EQ(chunk % 2, 1u) << "the second client is next";
  EXPECT_THAT(reader.Run(), SizeIs(chunk / 2 + 2));
  EXPECT_THAT(second.given, SizeIs(chunk / 2 + 1));
  EXPECT_EQ(reader.client.given.back(), 5.0);
  EXPECT_EQ(second.given.back(), 6.0);
}

/// A device that gives text without end, or whose text shrinks or fails, and counts what is read.
class TStrangeDevice : public QIODevice {
 public:
  TStrangeDevice(QByteArray text, qint64 repeated, qint64 gives)
      : text_(std::move(text)), size_(repeated), gives_(gives) {
    open(ReadOnly | Unbuffered);
  }
  qint64 size() const override { return size_; }
  bool failing = false;

 protected:
  qint64 readData(char* data, qint64 most) override {
    if (failing) {
      setErrorString("the disk is gone");
      return -1;
    }
    const qint64 count = std::max<qint64>(0, std::min(most, gives_ - pos()));
    for (qint64 i = 0; i < count; ++i) {
      data[i] = text_[static_cast<qsizetype>((pos() + i) % text_.size())];
    }
    return count;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  QByteArray text_;
  qint64 size_;
  qint64 gives_;
};

TEST(TStreamProvider, ReadsALineOfAnyLengthInPieces) {
  // A number, a tag and a point to skip stand across every cut somewhere.
  const QByteArray text = "<tag 5> 12345 --6.7.8 e9 ";
  const qint64 size = 11'000'000 / text.size() * text.size();
  TStreamProvider provider;
  TRecorder clients[2];
  for (TRecorder& client : clients) provider.GetClientControls()->Add(&client);
  provider.SetStream(std::make_unique<TStrangeDevice>(text, size, size));
  const auto count = static_cast<std::size_t>(size / text.size()) * 3;
  SetPages(provider, static_cast<int>(count));
  ASSERT_TRUE(RunToStop(provider));
  const double cycle[] = {12345, -6.78, 9};
  for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(clients[i % 2].given[i / 2], cycle[i % 3]);
  EXPECT_EQ(provider.GetStreamPosition(), size);
}

TEST(TStreamProvider, FindsTheBeginningOfALongLine) {
  QByteArray text = "1 2\nword" + QByteArray(10'000'000, ' ') + "3\n4\n";
  auto buffer = std::make_unique<QBuffer>(&text);
  buffer->open(QIODevice::ReadOnly);
  TFeeding<TStreamProvider> provider;
  provider.SetStream(std::move(buffer));
  provider.SetStreamPosition(9'000'000);
  SetPages(provider, 1);
  EXPECT_THAT(provider.Run(), ElementsAre(4));  // the line is one of a word
}

TEST(TStreamProvider, StopsWhereTheStreamFails) {
  auto made = std::make_unique<TStrangeDevice>("1 2 3\n", 6, 6);
  TStrangeDevice& device = *made;
  TStreamProvider provider;
  EXPECT_EQ(provider.GetStreamPosPercent(), 100);
  EXPECT_TRUE(RunToStop(provider));  // without a stream
  provider.SetStream(std::move(made));
  device.failing = true;
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_EQ(provider.GetErrorText(), "Cannot read the stream: the disk is gone");
  provider.SetStream(std::make_unique<QBuffer>());  // not open
  int failures = 0;
  QObject::connect(&provider, &TStateControl::OnActiveChanged, &provider, [&] {
    if (!provider.GetActive() && ++failures < 5) provider.SetActive(true);
  });
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_EQ(failures, 5);
  EXPECT_EQ(provider.GetErrorText(),
            "Cannot read the stream: it is not open, or offers no positions");
}

TEST(TStreamProvider, EndsWhereItsStreamShrinksAndGoesOnWithAnotherFromWhereItStands) {
  TFeeding<TStreamProvider> provider;
  provider.SetStream(std::make_unique<TStrangeDevice>("1 2 3\n", 6'000'000'000, 12));
  SetPages(provider, 7);
  provider.SetStreamPosition(5'000'000'000);
  EXPECT_THAT(provider.Run(), ElementsAre(1, 2, 3, 1, 2, 3, 1));
  SetPages(provider, 5);
  provider.SetStream(std::make_unique<TStrangeDevice>("1\n2\n", 4, 4));
  provider.client.OnGiven = [&](double) {
    if (provider.given().size() != 3) return;
    auto other = std::make_unique<TStrangeDevice>("7\n8\n9\n", 6, 6);
    other->seek(2);
    provider.SetStream(std::move(other));
  };
  EXPECT_THAT(provider.Run(), ElementsAre(1, 2, 1, 8, 9));
  EXPECT_EQ(provider.GetStreamPosition(), 6);
}

}  // namespace
