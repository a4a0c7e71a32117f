// The port on a real serial line of the system, with the simulated device at its other end.

#include "components/comms/Qlxport.h"
#include "tests/support/Testing.h"

#ifdef Q_OS_UNIX

#include "examples/device-simulator/Devicesimulator.h"
#include "examples/device-simulator/Pty.h"
#include "model/Datetime.h"

namespace {

/// A device on a line, and the time as the test has it.
struct TBench {
  TPty line;
  TDeviceSimulator device;
  double now = 0.0;
  int expected = 0;  ///< bytes under way to the device

  /// Returns how many bytes the device has sent meanwhile.
  int Pass(double seconds) {
    now += seconds;
    Receive();
    const std::string sent = device.Send(now);
    line.Write(sent);
    return line.HasPeer() ? static_cast<int>(sent.size()) : 0;
  }

 private:
  // The system delivers when it finds the time.
  void Receive() {
    const QDeadlineTimer patience(5000);
    do {
      if (expected > 0) line.Wait(10);
      const std::string bytes = line.Read();
      expected -= static_cast<int>(bytes.size());
      device.Receive(bytes, now);
    } while (expected > 0 && !patience.hasExpired());
    expected = 0;
  }
};

/// Waits until the other end has so many bytes.
void Settle(int bytes, const std::function<int()>& inputCount) {
  const QDeadlineTimer patience(5000);
  while (inputCount() < bytes && !patience.hasExpired()) QThread::yieldCurrentThread();
}

/// The system's driver, whose waiting passes the time of the device.
class TBenchDriver : public TSerialDriver {
 public:
  explicit TBenchDriver(TBench& bench) : bench_(bench) {}
  bool Open(const QString& portName) override { return system_->Open(portName); }
  bool SetLine(const TLineSettings& line) override { return system_->SetLine(line); }
  void SetQueueSizes(int input, int output) override { system_->SetQueueSizes(input, output); }
  int Read(std::span<char> buffer) override { return system_->Read(buffer); }
  int Write(std::span<const char> bytes) override {
    const int written = system_->Write(bytes);
    bench_.expected += written;
    return written;
  }
  void Purge(bool input, bool output) override {
    system_->Purge(input, output);
    if (output) bench_.expected = 0;
  }
  int InputCount() override { return system_->InputCount(); }
  int OutputCount() override { return system_->OutputCount(); }
  bool IsLost() const override { return system_->IsLost(); }
  void Wait(int milliseconds) override {
    system_->Wait(0);
    Settle(bench_.Pass(milliseconds / 1000.0), [this] { return InputCount(); });
  }
  QString ErrorText() const override { return system_->ErrorText(); }

 private:
  TBench& bench_;
  std::unique_ptr<TSerialDriver> system_ = MakeSystemDriver();
};

class SerialDevice : public testing::Test {
 protected:
  SerialDevice() {
    qputenv("VELMORA_COM2", bench.line.Path().c_str());
    port.SetPortNum("COM2");
    port.SetOnData([this](QObject*, const double* values, int count) {
      rows.emplace_back(values, values + count);
    });
  }
  ~SerialDevice() override { qunsetenv("VELMORA_COM2"); }

  /// Ticks of 10 ms.
  void Tick(int times) {
    for (int i = 0; i < times; ++i) {
      StandStill(1);
      ::Tick();
    }
  }
  /// The time of so many ticks passes for the device alone.
  void StandStill(int ticks) {
    for (int i = 0; i < ticks; ++i) {
      const int waiting = port.GetInputCount();
      Settle(waiting + bench.Pass(0.01), [this] { return port.GetInputCount(); });
    }
  }
  /// The numbers of the packets, as the device counts them in its first input.
  std::vector<int> Numbers() const {
    const int step = port.BytesPerSample() == 3 ? 1 : 256;
    std::vector<int> numbers;
    for (const auto& row : rows) numbers.push_back(static_cast<int>(row[1] + 8388600) / step);
    return numbers;
  }
  static int Gaps(const std::vector<int>& numbers) {
    int gaps = 0;
    for (std::size_t i = 1; i < numbers.size(); ++i) gaps += numbers[i] != numbers[i - 1] + 1;
    return gaps;
  }

  TBench bench;
  TQLXPort port{nullptr, [this] { return std::make_unique<TBenchDriver>(bench); }};
  std::vector<std::vector<double>> rows;
};

TEST_F(SerialDevice, DeliversEveryPacketInBothModesAndAllResolutions) {
  for (const auto mode : {TQLXPort::sfcHardware, TQLXPort::sfcSoftware}) {
    for (const auto resolution : {TQLXPort::rs16bits, TQLXPort::rs24bits, TQLXPort::rs16bitsOld}) {
      SCOPED_TRACE(testing::Message() << "mode " << mode << ", resolution " << resolution);
      rows.clear();
      port.SetControlQLX(mode);
      port.SetResolution(resolution);
      port.SetAutoRun(true);
      ASSERT_TRUE(port.GetAutoRun()) << port.GetErrorText().toStdString();
      EXPECT_EQ(port.GetValueCount(), 17);
      EXPECT_EQ(bench.device.IsPolledLoop(), mode == TQLXPort::sfcSoftware);
      Tick(100);
      // A packet per tick: the rate of the stream, and of polling.
      EXPECT_THAT(rows.size(), testing::AllOf(testing::Ge(97u), testing::Le(101u)));
      EXPECT_EQ(Gaps(Numbers()), 0);
      EXPECT_EQ(port.GetSkipped().Gaps, 0u);
      // Inputs 2 to 17 are waves around 0 of half the range.
      for (const auto& row : rows) {
        for (std::size_t i = 2; i < 17; ++i) EXPECT_LE(std::abs(row[i]), 0x400000 + 8 + 256);
      }
      port.SetAutoRun(false);
      EXPECT_TRUE(bench.device.IsPolledLoop());
      EXPECT_FALSE(bench.device.IsStreaming() || bench.device.IsLoopReadOn());
      EXPECT_FALSE(bench.line.HasPeer());
    }
  }
}

TEST_F(SerialDevice, LosesNothingToMarkersAndLateAnswers) {
  bench.device.MarkerEvery = 3;
  bench.device.RateHz = 800;
  port.SetAutoRun(true);
  Tick(200);
  port.SetAutoRun(false);
  EXPECT_GT(bench.device.MarkersSent(), 500u);
  EXPECT_GT(rows.size(), 1500u);
  EXPECT_EQ(Gaps(Numbers()), 0);

  rows.clear();
  bench.device.Faults.lateSeconds = 0.05;
  port.SetControlQLX(TQLXPort::sfcSoftware);
  port.SetAutoRun(true);
  Tick(200);
  EXPECT_GT(rows.size(), 50u);
  EXPECT_EQ(Gaps(Numbers()), 0);
}

TEST_F(SerialDevice, FindsThePacketsAgainAmongLostBytesAndGarbageAndKnowsNoise) {
  port.SetAutoRun(true);
  bench.device.Faults.dropRate = 0.001;
  bench.device.Faults.garbageRate = 0.05;
  Tick(1000);
  EXPECT_GT(rows.size(), 700u);
  EXPECT_GT(Gaps(Numbers()), 10);
  EXPECT_GT(port.GetSkipped().Gaps, 10u);
  EXPECT_FALSE(port.IsNoisy());
  // Samples that look like a length byte keep it astray for some packets.
  bench.device.Faults = {};
  Tick(100);
  rows.clear();
  Tick(100);
  EXPECT_EQ(rows.size(), 100u);
  EXPECT_EQ(Gaps(Numbers()), 0);

  const auto skipped = port.GetSkipped().Bytes;
  bench.device.Faults.noise = true;
  Tick(500);
  EXPECT_GT(rows.size(), 110u) << "some noise looks like packets";
  EXPECT_TRUE(port.IsNoisy());
  EXPECT_GT(port.GetSkipped().Bytes, skipped + 500u * 49 / 2);
  bench.device.Faults.noise = false;
  Tick(500);
  EXPECT_FALSE(port.IsNoisy());
}

TEST_F(SerialDevice, AWindowThatStandsStillForTenSecondsLosesNothing) {
  bench.device.RateHz = 800;
  port.SetQLXSampleRate(800);
  port.SetAutoRun(true);
  StandStill(1000);
  EXPECT_EQ(bench.line.BytesLost(), 0u);
  Tick(20);
  EXPECT_GE(rows.size(), 8000u);
  EXPECT_EQ(Gaps(Numbers()), 0);
  EXPECT_NEAR((rows[8000][0] - rows[0][0]) * kSecondsPerDay, 10.0, 1e-5);
}

TEST_F(SerialDevice, PollsASilentDeviceSlowlyAndAtOnceAgainWhenItAnswers) {
  port.SetControlQLX(TQLXPort::sfcSoftware);
  port.SetAutoRun(true);
  bench.device.Faults.silent = true;
  auto requests = [this, taken = bench.device.RequestsTaken()](int ticks) mutable {
    Tick(ticks);
    return bench.device.RequestsTaken() - std::exchange(taken, bench.device.RequestsTaken());
  };
  EXPECT_LE(requests(101), 10u);
  bench.device.Faults.silent = false;
  requests(30);
  EXPECT_GE(requests(100), 99u);
}

TEST_F(SerialDevice, OpensALineThatKnowsLittleOfItsSettingsAndClosesItWhenTheCableIsPulledOut) {
  port.SetStopBits(TQLXPort::sbOne5StopBits);
  port.SetParity(TQLXPort::prMark);
  port.SetDataBits(TQLXPort::dbFive);
  port.SetControlDTR(TQLXPort::dtrHandshake);
  port.SetControlRTS(TQLXPort::rtsHandshake);
  port.SetAutoRun(true);
  EXPECT_TRUE(port.GetConnected());
  Tick(10);
  QSignalSpy closed(&port, &TQLXPort::OnClose);
  bench.line.Unplug();
  const QDeadlineTimer patience(5000);
  while (port.GetConnected() && !patience.hasExpired()) ::Tick();
  EXPECT_EQ(closed.count(), 1);
  EXPECT_THAT(port.GetErrorText().toStdString(), testing::HasSubstr("has gone"));
  port.SetAutoRun(true);
  EXPECT_EQ(closed.count(), 2);
  EXPECT_FALSE(port.GetAutoRun());
  EXPECT_THAT(port.GetErrorText().toStdString(), testing::StartsWith("Cannot open /dev/"));
}

TEST_F(SerialDevice, ATrialReportsWhatIsThere) {
  TQLXSettings settings;
  settings.SetPortNum("COM2");
  EXPECT_EQ(port.TryDevice(settings), "The device on COM2 sends packets of 48 bytes: 16 inputs.");
  EXPECT_FALSE(port.GetConnected());
  bench.device.Faults.silent = true;
  EXPECT_EQ(port.TryDevice(settings), "COM2 is open, but no device answers.");
  qputenv("VELMORA_COM2", "/nowhere/tty");
  EXPECT_THAT(port.TryDevice(settings).toStdString(),
              testing::StartsWith("Cannot open /nowhere/tty: "));
}

}  // namespace

#endif
