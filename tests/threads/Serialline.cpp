// The system's driver, whose line is received on a thread, with a real line under it.

#include "components/comms/Qlxport.h"

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "examples/device-simulator/Devicesimulator.h"
#include "examples/device-simulator/Pty.h"
#include "tests/support/Testing.h"

namespace {

TEST(ThreadsSerialLine, IsClosedAndDestroyedAtAnyMoment) {
  std::mt19937 random(5);
  auto line = std::make_unique<TPty>();
  const auto make = [&line] { return MakeDeviceDriver(QString::fromStdString(line->Path())); };
  std::unique_ptr<TQLXPort> port;
  int events = 0;
  int lines = 0;
  for (int round = 0; round < 3000; ++round) {
    if (!port) {
      port = std::make_unique<TQLXPort>(nullptr, make);
      QObject::connect(port.get(), &TQLXPort::OnTraffic, [&] {
        ++events;
        if (random() % 10 == 0) port->Close();
        if (random() % 20 == 0) port.reset();
      });
    }
    port->Open();
    if (random() % 2) port->SendQLXCommand("mr\r");
    line->Write("what a device sends");
    if (random() % 3) QThread::yieldCurrentThread();
    if (port && random() % 20 == 0) port->ClearBuffer(true, true);
    if (random() % 100 == 0) {
      ++lines;
      line = std::make_unique<TPty>();
    }
    if (port) port->ReadPort();
    if (port && random() % 10 == 0) port->Close();
    if (random() % 20 == 0) port.reset();
    line->Read();
  }
  EXPECT_GT(events, 1000);
  EXPECT_GT(lines, 10);
}

/// What the line's own end sees; it takes eight bits without parity whatever it is asked.
TEST(ThreadsSerialLine, IsSetUpAsItIsAsked) {
  constexpr int kOne = 0, kTwo = 2, kDisable = 0, kEnable = 1, kHandshake = 2;
  const std::tuple<int, int, int, speed_t, tcflag_t> cases[] = {
      {9600, kOne, kEnable, B9600, 0},
      {115200, kTwo, kEnable, B115200, CSTOPB},
      {38400, kOne, kHandshake, B38400, CRTSCTS},
      {9600, 7, kDisable, B9600, CSTOPB},
      {9600, -1, kDisable, B9600, 0}};
  const TPty line;
  const auto driver = MakeDeviceDriver(QString::fromStdString(line.Path()));
  ASSERT_TRUE(driver->Open({}));
  for (const auto& [baudRate, stopBits, controlRTS, speed, flags] : cases) {
    SCOPED_TRACE(testing::Message() << baudRate << ' ' << stopBits);
    ASSERT_TRUE(
        driver->SetLine({.baudRate = baudRate, .stopBits = stopBits, .controlRTS = controlRTS}));
    const int end = open(line.Path().c_str(), O_RDWR | O_NOCTTY);
    termios set{};
    EXPECT_EQ(tcgetattr(end, &set), 0);
    close(end);
    EXPECT_EQ(cfgetospeed(&set), speed);
    EXPECT_EQ(set.c_cflag & (CSTOPB | CRTSCTS), flags);
  }
}

}  // namespace

#endif
