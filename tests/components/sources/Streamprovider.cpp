#include "components/sources/Streamprovider.h"

#include <gmock/gmock.h>

#include <QBuffer>

#include "components/panels/Published.h"
#include "components/sources/Filereader.h"
#include "components/sources/Simulator.h"
#include "components/sources/Stringreader.h"
#include "tests/components/sources/Providerfixture.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(TFileReader, ShowsAFormWhatItWasToldBeforeItStarts) {
  TFileReader reader;
  TRecorder client;
  reader.GetClientControls()->Add(&client);
  reader.BeginLoading();
  reader.setProperty("Active", true);
  reader.setProperty("StreamPosition", 4);
  reader.setProperty("FileName", WriteTestFile("a.txt", "1\n2\n3\n4\n"));
  EXPECT_TRUE(reader.property("Active").toBool());
  EXPECT_EQ(reader.property("StreamPosition").toInt(), 4);
  EXPECT_FALSE(reader.GetActive());
  EXPECT_EQ(reader.GetStreamPosition(), 0);
  reader.Loaded();
  ASSERT_TRUE(RunUntil([&] { return !reader.GetActive(); }));
  EXPECT_THAT(client.given, ElementsAre(3, 4));
  EXPECT_FALSE(reader.property("Active").toBool());
  EXPECT_EQ(reader.property("StreamPosition").toInt(), 0);
}

TEST(TCustomDataProvider, PublishesItsSwitchOnce) {
  TStringReader reader;
  QStringList paths;
  ForEachStored(reader, [&](const TPublished& published) { paths << published.Path; });
  EXPECT_EQ(paths.count("Active"), 1);
  EXPECT_LT(paths.indexOf("PageSize"), paths.indexOf("Active"));
}

TEST(TFileReader, BeginsAgainWhenTheLastFileOfItsListHasVanished) {
  TFileReader reader;
  TRecorder client;
  reader.GetClientControls()->Add(&client);
  reader.SetUseList(true);
  reader.SetReadMode(TCustomDataProvider::rmUntilFileListEnd);
  const QString missing = TestFolder() + "/missing";
  reader.SetFiles({WriteTestFile("a", "1\n"), missing});
  for (std::size_t run = 1; run <= 3; ++run) {
    ASSERT_TRUE(RunToStop(reader));
    EXPECT_THAT(client.given, SizeIs(run));
    EXPECT_EQ(reader.GetErrorText(), "Cannot open " + missing + ": No such file or directory");
  }
}

TEST(TStreamProvider, MayBeSwitchedOnAgainByWhomItTellsOfAFailure) {
  TStreamProvider provider;
  provider.SetStream(std::make_unique<QBuffer>());  // not open
  int failures = 0;
  QObject::connect(&provider, &TStateControl::OnActiveChanged, &provider, [&] {
    if (!provider.GetActive() && ++failures < 5) provider.SetActive(true);
  });
  ASSERT_TRUE(RunToStop(provider));
  EXPECT_EQ(failures, 5);
}

TEST(TStreamProvider, TellsTheNameOfItsTextAsItIs) {
  TStringReader reader;
  reader.setObjectName("50%1");
  reader.SetDataStrings({"1E+"});
  ASSERT_TRUE(RunToStop(reader));
  EXPECT_EQ(reader.GetErrorText(), R"(Cannot read the text of 50%1: "1E+" at byte 0 is no number)");
}

TEST(TThreadProvider, GivesNothingToAClientThatIsBeingDestroyed) {
  TSignalSimulator simulator;
  TRecorder first;
  auto* second = new TRecorder;
  // Told before the list is: the client is a bare widget in it by then.
  QObject::connect(second, &QObject::destroyed, &first, [&] {
    const std::size_t before = first.given.size();
    EXPECT_TRUE(RunUntil([&] { return first.given.size() > before + 10; }));
  });
  simulator.GetClientControls()->Add(&first);
  simulator.GetClientControls()->Add(second);
  simulator.SetActive(true);
  delete second;
  EXPECT_EQ(simulator.GetClientControls()->Count(), 1);
}

}  // namespace
