#include "components/comms/Qlxmaster.h"

#include "components/comms/Qlxxml.h"
#include "model/Datetime.h"
#include "tests/components/comms/Memorydriver.h"
#include "tests/components/comms/Rowrecorder.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

/// A device with two inputs that answers each data request, for drivers that come and go.
class TQLXMasterClientTest : public testing::Test {
 protected:
  TQLXMasterClientTest() {
    line.answers["mr\r"] = kPacket;
    client.SetChannelSource(recorder.Source());
    recorder.Add("data", "a", 2);
    recorder.Add("data", "b", 2);
    QObject::connect(&client, &TQLXClient::OnStatusChanged,
                     [this] { statuses << client.GetStatus(); });
    QObject::connect(&client, &TQLXClient::OnActiveChanged,
                     [this] { active.push_back(client.GetActive()); });
  }

  void SendPacket(int count = 1) { line.incoming += kPacket.repeated(count); }
  void LogRows() {
    client.SetLogFile(TestFolder() + "/rows");
    client.SetLogging(true);
  }

  /// 0 and 1 at an offset of 8,388,600.
  inline static const QByteArray kPacket = QByteArray("\x06\x7F\xFF\xF8\x7F\xFF\xF9", 7);

  TRowRecorder recorder;
  TFakeLine line;
  double wall = 45413.5;  ///< the clock on the wall, in days
  QStringList statuses;
  std::vector<bool> active;
  TDriverFactory makeDriver = [this] { return std::make_unique<TFakeDriver>(line); };
  TQLXMasterClient client{
      nullptr, makeDriver,
      TTimeSource{[this] { return TDateTime(wall); }, [] { return std::int64_t{0}; }}};
};

TEST_F(TQLXMasterClientTest, WritesPacketsIntoTheSelectedSet) {
  EXPECT_EQ(client.GetChSet()->Items(), QStringList({"ChannelSet1", "ChannelSet2"}));
  client.GetChSet()->SetItem(QStringLiteral("ChannelSet2"));
  client.SetActive(true);
  SendPacket();
  Tick();
  EXPECT_TRUE(recorder.Rows(0).empty());
  // One was asked for.
  EXPECT_THAT(recorder.Rows(1), testing::SizeIs(2));
  EXPECT_THAT(recorder.Rows(1).back(), ElementsAre(testing::_, 0, 1));

  client.SetActive(false);
  EXPECT_EQ(client.GetStatus(), "Disconnected from COM1");
  EXPECT_THAT(active, ElementsAre(true, false));
  for (int i = 0; i < 2; ++i) client.GetMiniCom()->Click();
  EXPECT_EQ(client.findChildren<TQLXMiniCom*>().size(), 1);
  EXPECT_THAT(line.log.filter("<CR>").last(2), ElementsAre("lroff<CR>", "sloop1<CR>"));
}

TEST_F(TQLXMasterClientTest, LogsRowsThatAFileClientPlaysAgain) {
  recorder.Sets()->GetItem(1)->SetXMLTag(QStringLiteral("w"));
  TXMLFileClient file;
  file.SetChannelSource(recorder.Source());
  for (const int set : {0, 1}) {
    recorder.Clear();
    client.GetChSet()->SetIndex(set);
    LogRows();
    client.SetActive(true);
    SendPacket();
    Tick();
    client.SetActive(false);
    client.SetLogging(false);
    const auto rows = recorder.Rows(static_cast<std::size_t>(set));
    ASSERT_EQ(rows.size(), 2u);

    recorder.Clear();
    file.SetFileName(client.GetLogFile());
    file.SetReadInterval(10);
    file.SetActive(true);
    Tick();
    const auto& again = recorder.Rows(static_cast<std::size_t>(set));
    ASSERT_EQ(again.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      // Stamps have milliseconds.
      EXPECT_THAT(again[i], ElementsAre(testing::DoubleNear(rows[i][0], 0.6e-3 / kSecondsPerDay),
                                        rows[i][1], rows[i][2]));
    }
  }
}

TEST_F(TQLXMasterClientTest, SaysThatItHasNoSource) {
  client.SetChannelSource(nullptr);
  EXPECT_EQ(client.GetChSet()->Text(), "ChannelSource not defined!");
  client.SetActive(true);
  EXPECT_EQ(client.GetStatus(), "ChannelSource not defined!");
  const auto told = statuses.size();
  SendPacket(5);
  Tick();
  EXPECT_EQ(statuses.size(), told) << "told once, not per packet";
  client.SetChannelSource(recorder.Source());
  recorder.DestroySource();
  EXPECT_EQ(client.GetChSet()->Text(), "ChannelSource not defined!");
  SendPacket();
  Tick();
  EXPECT_EQ(client.GetStatus(), "ChannelSource not defined!");
}

TEST_F(TQLXMasterClientTest, FindsADeviceThatComesBackWhenItsFormIsComplete) {
  client.BeginLoading();
  client.SetAutoConnect(true);
  Tick(100);
  client.Loaded();
  Tick(19);
  EXPECT_THAT(statuses, testing::IsEmpty());
  Tick();
  line.lost = true;
  line.exists = false;
  Tick(61);
  EXPECT_THAT(statuses, ElementsAre("Connected to COM1", "Disconnected from COM1", "Cannot open it",
                                    "Cannot open it", "Cannot open it"));
  line.lost = false;
  line.exists = true;
  Tick(20);
  EXPECT_EQ(client.GetStatus(), "Connected to COM1");
  EXPECT_THAT(active, ElementsAre(true, false, true));
  // Another number is another device.
  statuses.clear();
  client.GetPort()->SetPortNum("COM2");
  EXPECT_THAT(statuses, ElementsAre("Disconnected from COM1", "Connected to COM2"));
}

TEST_F(TQLXMasterClientTest, CountsWhatItHasToSkip) {
  client.SetActive(true);
  const std::tuple<int, int, QStringList> cases[] = {
      {0, 100, {}},
      {3, 100, {"Connected to COM1, 1 gap, 3 bytes skipped"}},
      {0, 100, {}},
      {211'997, 1, {"Connected to COM1, but only noise comes: 2 gaps, 212 kB skipped"}},
      {0, 4000, {"Connected to COM1, 2 gaps, 212 kB skipped"}},
  };
  for (const auto& [noise, packets, expectedStatuses] : cases) {
    statuses.clear();
    line.incoming += QByteArray(noise, '\0');
    SendPacket(packets);
    Tick(100);
    EXPECT_EQ(statuses, expectedStatuses);
    EXPECT_EQ(client.IsNoisy(), noise > 1000);
  }
  client.SetActive(false);
  EXPECT_EQ(client.GetSkippedText(), "");
}

TEST_F(TQLXMasterClientTest, TellsOfAClockThatJumpsAndLogsALine) {
  client.GetChSet()->SetIndex(0);
  LogRows();
  client.SetActive(true);
  statuses.clear();
  wall -= 1.0 / 24.0;
  Tick(3);
  EXPECT_EQ(statuses, QStringList({"The clock was set back by 3600.0 s", "Connected to COM1"}));
  client.SetLogging(false);
  const QByteArray text = Contents(client.GetLogFile());
  EXPECT_EQ(text.count("The clock was set back by 3600.0 s\r\n"), 1);
  EXPECT_LT(text.indexOf("The clock"), text.indexOf('<'));
}

TEST_F(TQLXMasterClientTest, MayBeDestroyedByASubscriber) {
  auto other = std::make_unique<TQLXMasterClient>(nullptr, makeDriver);
  other->SetChannelSource(recorder.Source());
  other->GetChSet()->SetIndex(0);
  recorder.OnRow = [&] { other.reset(); };
  other->SetActive(true);
  SendPacket(3);
  Tick();
  EXPECT_FALSE(other);
  EXPECT_EQ(recorder.Rows(0).size(), 1u);
  recorder.OnRow = nullptr;

  for (const auto signal : {&TQLXClient::OnStatusChanged, &TQLXClient::OnActiveChanged}) {
    other = std::make_unique<TQLXMasterClient>(nullptr, makeDriver);
    QObject::connect(other.get(), signal, [&] { other.reset(); });
    other->SetActive(true);
    EXPECT_FALSE(other);
  }
}

}  // namespace
