#include "components/comms/Qlxport.h"

#include "tests/components/comms/Memorydriver.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

class TQLXPortTest : public testing::Test {
 protected:
  TQLXPortTest() { MakePort(); }

  void MakePort() {
    owned = std::make_unique<TQLXPort>(
        nullptr, [this] { return std::make_unique<TFakeDriver>(line); },
        TTimeSource{[this] { return TDateTime(wall); }, [this] { return elapsed; }});
    QObject::connect(&port(), &TQLXPort::OnOpen, [this] { line.log << "OnOpen"; });
    QObject::connect(&port(), &TQLXPort::OnClose, [this] { line.log << "OnClose"; });
    port().SetOnData([this](QObject*, const double* values, int count) {
      rows.emplace_back(values, values + count);
      if (onRow) onRow();
    });
  }

  TQLXPort& port() { return *owned; }
  void Tick(int times = 1) {
    for (int i = 0; i < times; ++i) {
      wall += 0.01 / kSecondsPerDay;
      elapsed += 10'000'000;
      ::Tick();
    }
  }
  /// A probed port in AutoRun whose packets have two inputs of 24 bits.
  void Run(TQLXSettings::TQLXFlowControl mode) {
    port().SetControlQLX(mode);
    probeAnswer = QByteArray("\6------", 7);
    port().SetAutoRun(true);
    probeAnswer.clear();
    line.incoming.clear();
    line.log.clear();
  }
  /// A packet of two inputs, the first as given and the second 0.
  static QByteArray Packet(char low = '\xf8') {
    return QByteArray("\6\x7f\xff", 3) + low + QByteArray("\x7f\xff\xf8", 3);
  }
  inline static const QByteArray kMarker = QByteArray("\3T..", 4);

  TTimerClient keepsTheServer;
  TFakeLine line;
  QByteArray& probeAnswer = line.answers["mr\r"];
  std::vector<std::vector<double>> rows;
  std::function<void()> onRow;
  double wall = 45413.5;     ///< the wall clock, in days
  std::int64_t elapsed = 0;  ///< nanoseconds
  std::unique_ptr<TQLXPort> owned;
};

TEST_F(TQLXPortTest, OpensAndClosesInOrder) {
  port().SetBaudRate(TQLXPort::brs57600);
  port().SetStopBits(TQLXPort::sbTwoStopBits);
  port().SetDataBits(TQLXPort::dbSeven);
  port().SetParity(TQLXPort::prSpace);
  port().SetControlDTR(TQLXPort::dtrHandshake);
  port().SetControlRTS(TQLXPort::rtsToggle);
  port().Open();
  port().Open();
  EXPECT_THAT(line.TakeLog(),
              ElementsAre("open COM1", "line 57600 7 2 4 2 3", "queues 1200 1200", "OnOpen"));
  EXPECT_TRUE(port().GetConnected());
  port().SetResolution(TQLXPort::rs16bits);  // not meanwhile
  EXPECT_EQ(port().GetResolution(), TQLXPort::rs24bits);
  port().SetConnected(false);
  port().SetConnected(false);
  EXPECT_THAT(line.TakeLog(), ElementsAre("purge in out", "close", "OnClose"));
  port().SetResolution(TQLXPort::rs16bits);
  EXPECT_EQ(port().GetResolution(), TQLXPort::rs16bits);
}

TEST_F(TQLXPortTest, APortThatCannotBeOpenedIsClosedWithItsEvent) {
  line.exists = false;
  port().Open();
  EXPECT_THAT(line.TakeLog(), ElementsAre("open COM1", "close", "OnClose"));
  EXPECT_FALSE(port().GetConnected());
  EXPECT_EQ(port().GetErrorText(), "Cannot open it");
  // Neither a probe that waits for nobody nor a second try.
  port().SetAutoRun(true);
  EXPECT_THAT(line.TakeLog(), ElementsAre("open COM1", "close", "OnClose"));
  EXPECT_FALSE(port().GetAutoRun());

  line.exists = true;
  line.takesSettings = false;
  port().SetAutoRun(true);
  EXPECT_THAT(line.TakeLog(), ElementsAre("open COM1", "line 38400 8 0 0 0 1", "close", "OnClose"));
  EXPECT_FALSE(port().GetConnected());
  Tick(3);
  EXPECT_TRUE(line.log.isEmpty());
}

TEST_F(TQLXPortTest, OtherSettingsGoToARunningDeviceTogether) {
  Run(TQLXPort::sfcHardware);
  TQLXSettings settings;
  settings.SetBaudRate(TQLXPort::brs115200);
  settings.SetPortNum("COM2");
  settings.SetOutBufSize(50);
  settings.SetControlQLX(TQLXPort::sfcSoftware);
  port().Assign(&settings);
  const QStringList log = line.TakeLog();
  const qsizetype reopened = log.indexOf("open COM2");
  EXPECT_THAT(log.first(reopened), testing::Contains("sloop1<CR>"));
  EXPECT_THAT(log.mid(reopened),
              testing::IsSupersetOf({"line 115200 8 0 0 0 1", "queues 1200 50", "sloop1<CR>"}));
  EXPECT_TRUE(port().GetAutoRun());
}

TEST_F(TQLXPortTest, AModeThatIsSetMeanwhileCountsFromTheNextAutoRunOn) {
  Run(TQLXPort::sfcHardware);
  port().SetControlQLX(TQLXPort::sfcSoftware);
  line.incoming = Packet() + Packet();
  Tick(3);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_GT(rows[1][0], rows[0][0]);  // a stream goes on
  EXPECT_TRUE(line.TakeLog().isEmpty());
  port().SetAutoRun(false);
  line.log.clear();
  port().SetAutoRun(true);
  EXPECT_THAT(line.TakeLog(), testing::Contains("sloop1<CR>"));
  // Two requests wait for answers. A packet is one, and so is a marker.
  for (const QByteArray& answers : {QByteArray(), Packet() + kMarker}) {
    line.incoming = answers;
    Tick(3);
    EXPECT_THAT(line.TakeLog(), ElementsAre("mr<CR>", "mr<CR>"));
  }
  EXPECT_EQ(rows.size(), 3u);
}

TEST_F(TQLXPortTest, SendsCommandsAndReadsAnswers) {
  EXPECT_EQ(port().SendQLXCommand("mr\r"), 0);
  EXPECT_EQ(port().GetAnswerToQLXCommand("mr\r", 100), QByteArray());
  EXPECT_TRUE(line.log.isEmpty());

  port().Open();
  line.log.clear();
  line.incoming = "old";
  probeAnswer = QByteArray(200, 'x');
  EXPECT_EQ(port().GetAnswerToQLXCommand("mr\r", 30), QByteArray(128, 'x'));
  EXPECT_EQ(port().GetInputCount(), 72);
  EXPECT_EQ(port().GetOutputCount(), 7);
  EXPECT_EQ(port().SendQLXCommand("lron\r", 50), 5);
  port().ClearBuffer(false, true);
  port().ClearPort();
  EXPECT_THAT(line.TakeLog(), ElementsAre("purge in out", "mr<CR>", "30 ms", "lron<CR>", "50 ms",
                                          "purge out", "<BEL><CR>"));
  line.lost = true;
  EXPECT_EQ(port().SendQLXCommand("lron\r", 50), 0);
  EXPECT_EQ(port().GetAnswerToQLXCommand("mr\r", 30), QByteArray());
  EXPECT_THAT(line.TakeLog(), ElementsAre("purge in out"));  // and nothing was waited for
}

TEST_F(TQLXPortTest, AutoRunProbesTheDeviceAndStartsTheStream) {
  probeAnswer = QByteArray("\6------", 7);
  port().SetAutoRun(true);
  EXPECT_THAT(
      line.TakeLog(),
      ElementsAre("open COM1", "line 38400 8 0 0 0 1", "queues 1200 1200", "OnOpen",  //
                  "purge in out", "lroff<CR>", "100 ms", "purge in out", "<BEL><CR>", "100 ms",
                  "purge in out", "mr<CR>", "100 ms",                            //
                  "sloop0<CR>", "100 ms", "lron<CR>", "100 ms", "purge in out",  //
                  "purge in out", "close", "OnClose",                            //
                  "open COM1", "line 38400 8 0 0 0 1", "queues 1200 1200", "OnOpen", "mr<CR>"));
  EXPECT_EQ(port().GetPacketLength(), 6);
  EXPECT_EQ(port().GetValueCount(), 3);

  port().SetAutoRun(true);
  EXPECT_TRUE(line.log.isEmpty());
  const QStringList quiet = {"purge in out", "<BEL><CR>",  "100 ms", "lroff<CR>",
                             "100 ms",       "sloop1<CR>", "100 ms", "purge in out"};
  port().SetAutoRun(false);
  EXPECT_EQ(line.TakeLog(), quiet + QStringList({"purge in out", "close", "OnClose"}));
  port().SetAutoRun(true);
  line.log.clear();
  owned.reset();
  EXPECT_EQ(line.TakeLog(), quiet + QStringList("close"));
}

TEST_F(TQLXPortTest, APolledDeviceIsProbedIntoItsOwnLoop) {
  port().SetControlQLX(TQLXPort::sfcSoftware);
  port().InitAutoRunParameters();  // no answer
  EXPECT_EQ(line.log.filter("<CR>"),
            QStringList({"lroff<CR>", "<BEL><CR>", "mr<CR>", "sloop1<CR>", "lroff<CR>"}));
  EXPECT_EQ(port().GetPacketLength(), 0);
  probeAnswer = QByteArray("\3T..\60ab", 7);  // a marker packet comes first
  for (int probe = 0; probe < 2; ++probe) {
    port().InitAutoRunParameters();
    EXPECT_FALSE(port().GetConnected() || port().GetAutoRun());
    EXPECT_EQ(port().GetPacketLength(), 48);
    EXPECT_EQ(port().GetValueCount(), 17);
    probeAnswer.clear();
  }
}

TEST_F(TQLXPortTest, StreamedPacketsAreSpacedByTheSampleRateFromTheLastMarker) {
  port().SetQLXSampleRate(50);
  Run(TQLXPort::sfcHardware);
  const double start = wall;
  const QByteArray packets = Packet('\xf9') + Packet('\xfa');
  line.incoming = packets.left(10);
  Tick();
  ASSERT_EQ(rows.size(), 1u);
  line.incoming = packets.mid(10) + kMarker + Packet('\xfb');
  Tick();
  ASSERT_EQ(rows.size(), 2u);  // what follows a marker waits for the next bytes
  line.incoming = Packet('\xfc');
  Tick();
  ASSERT_EQ(rows.size(), 4u);
  const double seconds[] = {0.0, 0.02, 0.02, 0.04};  // the marker came with the second tick
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_THAT(std::vector(rows[i].begin() + 1, rows[i].end()), ElementsAre(i + 1, 0));
    EXPECT_NEAR((rows[i][0] - start) * kSecondsPerDay, seconds[i], 1e-5);
  }
}

TEST_F(TQLXPortTest, StampsFollowTheWallClockWhenItJumps) {
  for (const auto mode : {TQLXPort::sfcHardware, TQLXPort::sfcSoftware}) {
    rows.clear();
    Run(mode);
    QSignalSpy jumps(&port(), &TQLXPort::OnClockJump);
    constexpr double kSecond = 1.0 / kSecondsPerDay;
    for (const double change : {0.0, 1.5, -3600.0, 7200.0}) {
      wall += change * kSecond;
      Tick(2);
      line.incoming = Packet();
      Tick();
      EXPECT_NEAR(rows.back()[0], wall - (change == 1.5 ? 1.5 * kSecond : 0.0), 0.1 * kSecond);
    }
    ASSERT_EQ(jumps.count(), 2);
    EXPECT_NEAR(jumps[0][1].toDouble(), -3598.5, 0.01);
    EXPECT_NEAR(jumps[1][1].toDouble(), 7200.0, 0.01);
    port().SetAutoRun(false);
  }
}

TEST_F(TQLXPortTest, BytesThatWaitedAreStampedByTheTimeTheyCame) {
  Run(TQLXPort::sfcHardware);
  const QByteArray marked = kMarker + Packet();
  for (const double seconds : {9.0, 5.0, 1.0}) {
    line.incoming = marked;
    line.arrival.Age = static_cast<std::int64_t>(seconds * 1e9);
    Tick();
    port().ReadSignal("", 0);  // what waited behind the marker
    EXPECT_NEAR((wall - rows.back()[0]) * kSecondsPerDay, seconds, 1e-4);
  }
  // Behind a gap the stream is taken up where it has come to, marker or not.
  line.incoming = Packet().left(3);
  Tick();
  line.incoming = Packet();
  line.arrival = {2'000'000'000, 1000};
  Tick();
  EXPECT_NEAR((wall - rows.back()[0]) * kSecondsPerDay, 2.0, 1e-4);
  EXPECT_EQ(port().GetSkipped().Gaps, 1u);
  EXPECT_EQ(port().GetSkipped().Bytes, 1003u);
  EXPECT_FALSE(port().IsNoisy());
}

TEST_F(TQLXPortTest, AFloodIsSpreadOverTicksAndNothingOfItIsLost) {
  Run(TQLXPort::sfcHardware);
  line.incoming = Packet().repeated(30'000);
  Tick();
  EXPECT_GT(rows.size(), 1000u);
  EXPECT_LT(rows.size(), 15'000u);
  Tick(10);
  EXPECT_EQ(rows.size(), 30'000u);
  line.incoming = (kMarker + Packet()).repeated(5000);  // markers faster than the ticks
  Tick(10);
  for (int i = 0; i < 10'000; ++i) port().ReadSignal("", 0);
  EXPECT_EQ(rows.size(), 35'000u);
}

TEST_F(TQLXPortTest, ALineThatIsLostClosesThePort) {
  Run(TQLXPort::sfcSoftware);
  line.lost = true;
  line.incoming = Packet();
  Tick();
  EXPECT_THAT(line.TakeLog(), ElementsAre("purge in out", "close", "OnClose"));
  EXPECT_EQ(rows.size(), 1u);  // what came before is still taken
  EXPECT_FALSE(port().GetConnected());
  EXPECT_FALSE(port().GetAutoRun());
  Tick(5);
  EXPECT_TRUE(line.log.isEmpty());
}

TEST_F(TQLXPortTest, SurvivesWhatItsEventsDoToIt) {
  const std::pair<std::function<void()>, std::size_t> cases[] = {
      {[this] { port().Close(); }, 1},
      {[this] { owned.reset(); }, 1},
      {[this] { port().SetAutoRun(false); }, 1},
      {[this] { port().ClearPort(); }, 1},
      {[this] { port().SetPortNum(port().GetPortNum() == "COM1" ? "2" : "1"); }, 1},
      {[this] { port().ReadPort(); }, 3},
      {[this] { port().SetOnData(nullptr); }, 1},
  };
  for (const auto& each : cases) {
    for (const bool atOpen : {false, true}) {
      SCOPED_TRACE(testing::Message() << &each - cases << (atOpen ? " at open" : " at data"));
      MakePort();
      rows.clear();
      int opened = 0;
      onRow = atOpen ? [] {} : each.first;
      QObject::connect(&port(), &TQLXPort::OnOpen, [&] {
        if (atOpen && ++opened < 4) each.first();
      });
      Run(TQLXPort::sfcHardware);
      line.incoming = Packet().repeated(3);
      Tick();
      EXPECT_TRUE(atOpen || rows.size() == each.second) << rows.size();
    }
  }
}

TEST(TQLXSettings, KeepTheirBoundsAndReportRealChanges) {
  TQLXSettings settings;
  QSignalSpy changes(&settings, &TPersistent::OnChange);
  for (const auto& [rate, stored] :
       {std::pair(39.0, 100.0), {801, 100}, {kNan, 100}, {40, 40}, {40, 40}, {800, 800}}) {
    settings.SetQLXSampleRate(rate);
    EXPECT_EQ(settings.GetQLXSampleRate(), stored);
  }
  EXPECT_EQ(changes.count(), 2);
  settings.SetInBufSize(-1);
  settings.SetBaudRate(static_cast<TQLXSettings::TQLXBaudRate>(5));
  settings.SetResolution(static_cast<TQLXSettings::TQLXResolution>(-1));
  EXPECT_EQ(changes.count(), 2);
}

TEST(TQLXSettings, NameThePortWhateverIsTyped) {
  const std::pair<const char*, const char*> cases[] = {
      {"com3", "COM3"},   {"7", "COM7"},   {"COM17", "COM1"},       {"COMx", "COM1"},
      {"Com16", "COM16"}, {"0", "COM1"},   {"-2", "COM1"},          {"", "COM1"},
      {"co3", "COM1"},    {"COM", "COM1"}, {"99999999999", "COM1"},
  };
  for (const auto& [typed, name] : cases) EXPECT_EQ(TQLXSettings::ComString(typed), name) << typed;
}

TEST(TQLXSettings, ConvertToTheDriversNumbers) {
  for (const auto& [rate, number] :
       {std::pair(br110, 110), {br14400, 14400}, {br256000, 256000}, {TBaudRate(15), 0}}) {
    EXPECT_EQ(BaudRateToInt(rate), number);
  }
  const auto rates = QMetaEnum::fromType<TQLXSettings::TQLXBaudRate>();
  for (int i = 0; i < rates.keyCount(); ++i) {
    const int rate = QLXBaudRateToInt(static_cast<TQLXSettings::TQLXBaudRate>(rates.value(i)));
    EXPECT_EQ("brs" + QByteArray::number(rate), rates.key(i));
  }
}

}  // namespace
