#include "components/sources/Filereader.h"

#include <gmock/gmock.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QSignalSpy>

#include "tests/components/sources/Providerfixture.h"
#include "tests/support/Testsupport.h"

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A reader with a client, and what it told.
struct TReading {
  TReading() {
    reader.GetClientControls()->Add(&client);
    QObject::connect(&reader, &TFileReader::OnNewFile, &client,
                     [this](QObject*, auto& name) { events << "new " + name.section('/', -1); });
    QObject::connect(&reader, &TFileReader::OnEndOfFile, &client, [this] { events << "end"; });
  }
  TFileReader reader;
  TRecorder client;
  QStringList events;
};

/// Lines "0" to "count - 1", eight bytes each.
QByteArray Lines(int count) {
  QByteArray text;
  for (int i = 0; i < count; ++i) text += QByteArray::number(i).rightJustified(7) + '\n';
  return text;
}

TEST(TFileReader, ReadsAFileToItsEndEachTime) {
  TReading t;
  t.reader.SetFileName(WriteTestFile("a.txt", "Time Value\n1 2\n3 4"));
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_THAT(t.client.given, ElementsAre(1, 2, 3));  // nothing ends the 4
  EXPECT_EQ(t.events, QStringList({"new a.txt", "end"}));
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_THAT(t.client.given, ElementsAre(1, 2, 3, 1, 2, 3));
  EXPECT_EQ(t.reader.GetErrorText(), QString());
}

TEST(TFileReader, ReadsTheFilesOfAListAsTheModeSays) {
  using TReader = TCustomDataProvider;
  const struct {
    TReader::TReadMode mode;
    std::vector<std::vector<double>> runs;
    QStringList events;
  } cases[] = {
      {TReader::rmUntilFileListEnd,
       {{1, 2, 3}, {1, 2, 3}},
       {"new a", "end", "new b", "end", "new c", "end", "new a", "end", "new b", "end", "new c",
        "end"}},
      {TReader::rmUntilEnd,
       {{1, 2}, {3}, {}, {1, 2}},
       {"new a", "end", "new b", "end", "new c", "end", "new a", "end"}},
      {TReader::rmReadPage,
       {{1, 2, 3, 1, 2}},
       {"new a", "end", "new b", "end", "new c", "end", "new a"}},
  };
  const QStringList files = {WriteTestFile("a", "1\n2\n"), WriteTestFile("b", "3\n"),
                             WriteTestFile("c", "")};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mode);
    TReading t;
    t.reader.SetUseList(true);
    t.reader.SetFiles(files);
    t.events.clear();
    t.reader.SetReadMode(c.mode);
    t.reader.SetPageSize(5);
    for (const std::vector<double>& run : c.runs) {
      t.client.given.clear();
      ASSERT_TRUE(RunToStop(t.reader));
      EXPECT_EQ(t.client.given, run);
    }
    EXPECT_EQ(t.events, c.events);
  }
}

TEST(TFileReader, SkipsAFileOfTheListThatCannotBeOpened) {
  TReading t;
  t.reader.SetUseList(true);
  t.reader.SetReadMode(TCustomDataProvider::rmUntilFileListEnd);
  const QString missing = TestFolder() + "/missing";
  t.reader.SetFiles({WriteTestFile("a", "1\n"), missing, WriteTestFile("c", "2\n")});
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_EQ(t.reader.GetErrorText(), "Cannot open " + missing + ": No such file or directory");
  EXPECT_THAT(t.client.given, ElementsAre(1));
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_THAT(t.client.given, ElementsAre(1, 2));
}

TEST(TFileReader, GivesUpOnAListWithoutANumber) {
  TReading t;
  t.reader.SetUseList(true);
  t.reader.SetReadMode(TCustomDataProvider::rmContinuous);
  t.reader.SetFiles({WriteTestFile("a", ""), WriteTestFile("b", "header\n")});
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_NE(t.reader.GetErrorText(), QString());
  t.reader.SetFiles({});
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_EQ(t.reader.GetErrorText(), "Cannot read: there is no file");
}

TEST(TFileReader, TakesOnlyNamesOfFilesThatCanBeRead) {
  TReading t;
  const QString file = WriteTestFile("a.txt", "1\n");
  QSignalSpy errors(&t.reader, &TThreadProvider::OnError);
  t.reader.SetFileName(file);
  EXPECT_EQ(t.reader.GetFileName(), file);
  EXPECT_EQ(errors.count(), 0);
  t.reader.SetFileName(TestFolder() + "/missing");
  EXPECT_EQ(t.reader.GetFileName(), QString());
  EXPECT_EQ(errors.count(), 1);
  t.reader.SetFileName(file);
  t.reader.SetFileName(TestFolder());
  EXPECT_EQ(t.reader.GetFileName(), QString());
  EXPECT_EQ(t.reader.GetErrorText(), "Cannot open " + TestFolder() + ": it is a folder");
  t.reader.SetFileName(file);
  t.reader.SetFileName({});
  EXPECT_EQ(t.reader.GetFileName(), QString());
  EXPECT_EQ(errors.count(), 2);
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_EQ(t.reader.GetErrorText(), "Cannot read: there is no file");
}

#ifdef Q_OS_UNIX
TEST(TFileReader, DoesNotWaitForAPipeOrReadADeviceForEver) {
  const QString pipe = TestFolder() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.toLocal8Bit(), 0600), 0);
  for (const QString& name : {pipe, QStringLiteral("/dev/zero")}) {
    TReading t;
    t.reader.SetFileName(name);
    EXPECT_EQ(t.reader.GetFileName(), QString());
    t.reader.SetUseList(true);
    t.reader.SetFiles({name});
    ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_EQ(t.reader.GetErrorText(), "Cannot open " + name + ": it is no file");
  }
}
#endif

TEST(TFileReader, KnowsThePositionBehindTheDeliveredValue) {
  TReading t;
  t.reader.SetFileName(WriteTestFile("a.txt", Lines(1000)));
  std::vector<qint64> positions;
  t.client.OnGiven = [&](double value) {
    positions.push_back(t.reader.GetStreamPosition());
    if (value == 600) t.reader.SetActive(false);
  };
  ASSERT_TRUE(RunToStop(t.reader));
  ASSERT_THAT(positions, SizeIs(601));
  for (std::size_t i = 0; i < positions.size(); ++i) ASSERT_EQ(positions[i], 8 * (i + 1));
  EXPECT_EQ(t.reader.GetStreamPosition(), 4808);
  EXPECT_EQ(t.reader.GetStreamPosPercent(), 60);
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_THAT(t.client.given, SizeIs(1000));
  EXPECT_EQ(t.reader.GetStreamPosition(), 0);
}

TEST(TFileReader, GoesOnAtTheLineOfAPosition) {
  const QString file = WriteTestFile("a.txt", Lines(100));
  const struct {
    qint64 position;
    double first;
  } cases[] = {{0, 0}, {1, 0}, {7, 0}, {8, 1}, {405, 50}, {799, 99}, {800, 0}, {5'000'000'000, 0}};
  for (const bool opened : {false, true}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.position);
      TReading t;
      t.reader.SetReadMode(TCustomDataProvider::rmReadPage);
      t.reader.SetPageSize(1);
      t.reader.SetFileName(file);
      if (opened) {
        ASSERT_TRUE(RunToStop(t.reader));
        t.client.given.clear();
      }
      t.reader.SetStreamPosition(c.position);
      t.reader.SetStreamPosition(-1);
      EXPECT_EQ(t.reader.GetStreamPosition(), opened ? c.position : 0);
      ASSERT_TRUE(RunToStop(t.reader));
      EXPECT_THAT(t.client.given, ElementsAre(c.first));
    }
  }
}

TEST(TFileReader, MovesWhileItReads) {
  TReading t;
  t.reader.SetFileName(WriteTestFile("a.txt", Lines(1000)));
  t.client.OnGiven = [&](double value) {
    if (value == 10) t.reader.SetStreamPosition(8 * 990 + 3);
  };
  ASSERT_TRUE(RunToStop(t.reader));
  EXPECT_THAT(t.client.given, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 990, 991, 992, 993, 994,
                                          995, 996, 997, 998, 999));
}

TEST(TFileReader, ReadsAFileThatShrinksOrVanishesMeanwhile) {
  for (const bool vanishes : {false, true}) {
    TReading t;
    const QString file = WriteTestFile("a.txt", Lines(400'000));  // 3.2 MB, four chunks
    t.reader.SetFileName(file);
    t.client.OnGiven = [&](double value) {
      if (value != 200'000 || !QFile::exists(file)) return;
      EXPECT_TRUE(vanishes ? QFile::remove(file) : QFile::resize(file, 100));
    };
    ASSERT_TRUE(RunToStop(t.reader));
    // What is in memory is delivered; a file that is open can be read on without its name.
    EXPECT_THAT(t.client.given, SizeIs(vanishes ? 400'000 : 262'146));
    EXPECT_EQ(t.reader.GetErrorText(), QString());
    ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_THAT(t.client.given, SizeIs(vanishes ? 400'000 : 262'146 + 12));
    EXPECT_EQ(t.reader.GetErrorText().startsWith("Cannot open"), vanishes);
  }
}

/// Puts another file in the place of one, as programs do that write it anew.
void Replace(const QString& file, const QByteArray& text) {
  const QString other = WriteTestFile("other", text);
  ASSERT_TRUE(QFile::remove(file) && QFile::rename(other, file));
}

TEST(TFileReader, ReadsTheFileThatHasTheNameNow) {
  for (const bool useList : {false, true}) {
    TReading t;
    const QString file = WriteTestFile("a.txt", Lines(10));
    t.reader.SetReadMode(TCustomDataProvider::rmUntilFileListEnd);
    if (!useList) t.reader.SetReadMode(TCustomDataProvider::rmUntilEnd);
    t.reader.SetUseList(useList);
    t.reader.SetFiles({file});
    t.reader.SetFileName(file);
    ASSERT_TRUE(RunToStop(t.reader));
    Replace(file, "100\n101\n");
    t.client.given.clear();
    ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_THAT(t.client.given, ElementsAre(100, 101));

    // Stopped in the middle it goes on there, in the same file only.
    t.client.OnGiven = [&](double value) {
      if (value == 100) t.reader.SetActive(false);
    };
    t.client.given.clear();
    for (int run = 0; run < 2; ++run) ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_THAT(t.client.given, ElementsAre(100, 101));
    ASSERT_TRUE(RunToStop(t.reader));
    Replace(file, "200\n201\n");
    t.client.given.clear();
    ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_THAT(t.client.given, ElementsAre(200, 201));
  }
}

TEST(TFileReader, GoesOnInTheFileOfItsListThatAFormNames) {
  const QStringList files = {WriteTestFile("a", "1\n2\n"), WriteTestFile("b", "3\n4\n5\n"),
                             WriteTestFile("c", "6\n")};
  for (const double stop : {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}) {
    SCOPED_TRACE(stop);
    TReading saved;
    saved.reader.SetUseList(true);
    saved.reader.SetFiles(files);
    saved.reader.SetReadMode(TCustomDataProvider::rmUntilFileListEnd);
    saved.client.OnGiven = [&](double value) {
      if (value == stop) saved.reader.SetActive(false);
    };
    ASSERT_TRUE(RunToStop(saved.reader));
    for (const bool backwards : {false, true}) {
      TReading loaded;
      loaded.reader.BeginLoading();
      QStringList names = {"UseList", "Files", "ReadMode", "StreamPosition", "ItemIndex"};
      if (backwards) std::reverse(names.begin(), names.end());
      for (const QString& name : names) {
        loaded.reader.setProperty(name.toLatin1(), saved.reader.property(name.toLatin1()));
      }
      loaded.reader.Loaded();
      ASSERT_TRUE(RunToStop(loaded.reader));
      std::vector<double> rest;
      for (double value = stop + 1.0; value <= 6.0; ++value) rest.push_back(value);
      EXPECT_EQ(loaded.client.given, rest);
    }
  }
}

TEST(TFileReader, LosesNoLineToAByteOrderMark) {
  for (const QByteArray& rest : {QByteArray("1 2\n3\n"), QByteArray("Time\n3\n"), QByteArray()}) {
    TReading t;
    t.reader.SetFileName(WriteTestFile("a.txt", "\xEF\xBB\xBF" + rest));
    std::vector<double> expected = {3};
    if (rest.startsWith("1")) expected = {1, 2, 3};
    if (rest.isEmpty()) expected = {};
    ASSERT_TRUE(RunToStop(t.reader));
    EXPECT_EQ(t.client.given, expected);
  }
}

TEST(TFileReader, StartsWithItsListWhenTheFormIsComplete) {
  TReading t;
  t.reader.BeginLoading();
  t.reader.SetActive(true);
  t.reader.SetUseList(true);
  t.reader.SetFiles({WriteTestFile("a", "1\n")});
  EXPECT_FALSE(t.reader.GetActive());
  t.reader.Loaded();
  ASSERT_TRUE(RunUntil([&] { return !t.reader.GetActive(); }));
  EXPECT_THAT(t.client.given, ElementsAre(1));
}

TEST(TFileReader, ReportsProgressAboutTenTimesInAChunk) {
  TReading t;
  constexpr int kLines = 400'000;  // 3.2 MB, four chunks
  t.reader.SetFileName(WriteTestFile("a.txt", Lines(kLines)));
  std::vector<int> percents;
  QObject::connect(&t.reader, &TStreamProvider::OnProgress, &t.client,
                   [&] { percents.push_back(t.reader.GetStreamPosPercent()); });
  ASSERT_TRUE(RunToStop(t.reader));
  ASSERT_THAT(t.client.given, SizeIs(kLines));
  for (int i = 0; i < kLines; ++i) ASSERT_EQ(t.client.given[static_cast<std::size_t>(i)], i);
  EXPECT_GE(percents.size(), 40u);
  EXPECT_LE(percents.size(), 50u);
  // The last two are of the end: reached, and left for the beginning.
  EXPECT_EQ(percents.back(), 0);
  percents.pop_back();
  EXPECT_EQ(percents.back(), 100);
  EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
}

TEST(TFileReader, BeginsARoundOfClientsWithEachChunkOfWholeLines) {
  QByteArray text = "0\n";
  while (text.size() < 1'048'580) text += "1 2 3\n";
  const auto before = static_cast<std::size_t>(text.size() - 2) / 2 + 1;
  ASSERT_EQ(text.size(), 1'048'580);
  text += "7 8 9\n";  // the chunk goes on behind its size, to the end of this line
  text += "5 6\n";
  TReading t;
  TRecorder second;
  t.reader.GetClientControls()->Add(&second);
  t.reader.SetFileName(WriteTestFile("a.txt", text));
  ASSERT_TRUE(RunToStop(t.reader));
  const std::size_t chunk = before + 3;
  ASSERT_EQ(chunk % 2, 1u) << "the second client is next";
  EXPECT_THAT(t.client.given, SizeIs(chunk / 2 + 2));
  EXPECT_THAT(second.given, SizeIs(chunk / 2 + 1));
  EXPECT_EQ(t.client.given.back(), 5.0);
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
  provider.SetReadMode(TCustomDataProvider::rmReadPage);
  const auto count = static_cast<std::size_t>(size / text.size()) * 3;
  provider.SetPageSize(static_cast<int>(count));
  ASSERT_TRUE(RunToStop(provider));
  const double cycle[] = {12345, -6.78, 9};
  for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(clients[i % 2].given[i / 2], cycle[i % 3]);
  EXPECT_EQ(provider.GetStreamPosition(), size);
}

TEST(TStreamProvider, FindsTheBeginningOfALongLine) {
  QByteArray text = "1 2\nword" + QByteArray(10'000'000, ' ') + "3\n4\n";
  auto buffer = std::make_unique<QBuffer>();
  buffer->setData(text);
  buffer->open(QIODevice::ReadOnly);
  TStreamProvider provider;
  TRecorder client;
  provider.GetClientControls()->Add(&client);
  provider.SetStream(std::move(buffer));
  provider.SetStreamPosition(9'000'000);
  provider.SetReadMode(TCustomDataProvider::rmReadPage);
  provider.SetPageSize(1);
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_THAT(client.given, ElementsAre(4));  // the line is one of a word
}

TEST(TStreamProvider, EndsWhereTheStreamShrinks) {
  TStreamProvider provider;
  TRecorder client;
  provider.GetClientControls()->Add(&client);
  provider.SetStream(std::make_unique<TStrangeDevice>("1 2 3\n", 6'000'000'000, 12));
  provider.SetReadMode(TCustomDataProvider::rmReadPage);
  provider.SetPageSize(7);
  provider.SetStreamPosition(5'000'000'000);
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_THAT(client.given, ElementsAre(1, 2, 3, 1, 2, 3, 1));
}

TEST(TStreamProvider, StopsWhereTheStreamFails) {
  auto made = std::make_unique<TStrangeDevice>("1 2 3\n", 6, 6);
  TStrangeDevice& device = *made;
  TStreamProvider provider;
  provider.SetStream(std::move(made));
  device.failing = true;
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_EQ(provider.GetErrorText(), "Cannot read the stream: the disk is gone");
  provider.SetStream(std::make_unique<QBuffer>());
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_EQ(provider.GetErrorText(),
            "Cannot read the stream: it is not open, or offers no positions");
}

TEST(TStreamProvider, GoesOnWithAnotherStreamFromWhereItStands) {
  TStreamProvider provider;
  TRecorder client;
  provider.GetClientControls()->Add(&client);
  provider.SetReadMode(TCustomDataProvider::rmReadPage);
  provider.SetPageSize(5);
  provider.SetStream(std::make_unique<TStrangeDevice>("1\n2\n", 4, 4));
  client.OnGiven = [&](double) {
    if (client.given.size() != 3) return;
    auto other = std::make_unique<TStrangeDevice>("7\n8\n9\n", 6, 6);
    other->seek(2);
    provider.SetStream(std::move(other));
  };
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_THAT(client.given, ElementsAre(1, 2, 1, 8, 9));
  EXPECT_THAT(provider.GetStreamPosition(), 6);
}

TEST(TStreamProvider, StopsWithoutAStream) {
  TStreamProvider provider;
  EXPECT_EQ(provider.GetStreamPosPercent(), 100);
  EXPECT_EQ(provider.GetStreamPosition(), 0);
  EXPECT_TRUE(RunToStop(provider));
}

}  // namespace
