#include "components/comms/Qlxdriver.h"

#include <QDeadlineTimer>
#include <QSerialPort>
#include <QThread>
#include <algorithm>

namespace {

QSerialPort::Parity ParityOf(int code) {
  constexpr QSerialPort::Parity kParities[] = {QSerialPort::NoParity, QSerialPort::OddParity,
                                               QSerialPort::EvenParity, QSerialPort::MarkParity,
                                               QSerialPort::SpaceParity};
  return kParities[std::clamp(code, 0, 4)];
}

QSerialPort::StopBits StopBitsOf(int code) {
  constexpr QSerialPort::StopBits kStopBits[] = {QSerialPort::OneStop, QSerialPort::OneAndHalfStop,
                                                 QSerialPort::TwoStop};
  return kStopBits[std::clamp(code, 0, 2)];
}

class TSystemDriver final : public TSerialDriver {
 public:
  /// `device` is what every port name stands for; empty: what SystemDevice says.
  explicit TSystemDriver(const QString& device = {}) : device_(device) {
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                     [this](QSerialPort::SerialPortError error) { TakeError(error); });
  }

  bool Open(const QString& portName) override {
    const QString device = device_.isEmpty() ? SystemDevice(portName) : device_;
    port_.setPortName(device);
    if (port_.open(QIODevice::ReadWrite)) return true;
    error_ = QStringLiteral("Cannot open %1: %2").arg(device, port_.errorString());
    return false;
  }

  bool SetLine(const TLineSettings& line) override;
  void SetQueueSizes(int input, int output) override;
  int Read(std::span<char> buffer) override;
  int Write(std::span<const char> bytes) override;

  void Purge(bool input, bool output) override {
    QSerialPort::Directions directions;
    directions.setFlag(QSerialPort::Input, input);
    directions.setFlag(QSerialPort::Output, output);
    if (directions && !lost_) port_.clear(directions);
  }

  int InputCount() override {
    if (!lost_) port_.waitForReadyRead(0);
    return static_cast<int>(port_.bytesAvailable());
  }
  int OutputCount() override { return static_cast<int>(port_.bytesToWrite()); }
  bool IsLost() const override { return lost_; }
  void Wait(int milliseconds) override;
  QString ErrorText() const override { return error_; }

 private:
  void TakeError(QSerialPort::SerialPortError error);

  QString device_;
  QSerialPort port_;
  QString error_;
  int outputSize_ = 0;
  bool lost_ = false;
};

bool TSystemDriver::SetLine(const TLineSettings& line) {
  constexpr int kHandshake = 2;
  // Handshake over DTR, and an RTS that follows the output queue, are not to be had; the line is
  // kept high, which is how such a device can be talked to.
  const bool handshake = line.controlRTS == kHandshake;
  const bool taken =
      port_.setBaudRate(line.baudRate) &&
      port_.setDataBits(static_cast<QSerialPort::DataBits>(line.dataBits)) &&
      port_.setParity(ParityOf(line.parity)) && port_.setStopBits(StopBitsOf(line.stopBits)) &&
      port_.setFlowControl(handshake ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
  if (!taken) {
    error_ = QStringLiteral("Cannot set up %1: %2").arg(port_.portName(), port_.errorString());
    return false;
  }
  port_.setDataTerminalReady(line.controlDTR != 0);
  if (!handshake) port_.setRequestToSend(line.controlRTS != 0);
  return true;
}

void TSystemDriver::SetQueueSizes(int input, int output) {
  constexpr int kLeast = 1024;  // less would cut a packet, and 0 means no limit
  port_.setReadBufferSize(std::max(input, kLeast));
  outputSize_ = std::max(output, kLeast);
}

int TSystemDriver::Read(std::span<char> buffer) {
  const auto room = static_cast<qint64>(buffer.size());
  // What came since the event loop ran last is still in the system's own queue.
  if (!lost_ && port_.bytesAvailable() < room) port_.waitForReadyRead(0);
  return static_cast<int>(std::max<qint64>(0, port_.read(buffer.data(), room)));
}

int TSystemDriver::Write(std::span<const char> bytes) {
  const auto count = static_cast<qint64>(bytes.size());
  if (lost_ || port_.bytesToWrite() + count > outputSize_) return 0;
  const qint64 written = port_.write(bytes.data(), count);
  port_.flush();
  return lost_ ? 0 : static_cast<int>(std::max<qint64>(0, written));
}

void TSystemDriver::Wait(int milliseconds) {
  const QDeadlineTimer end(milliseconds);
  while (!lost_ && port_.bytesToWrite() > 0 && !end.hasExpired()) {
    port_.waitForBytesWritten(static_cast<int>(end.remainingTime()));
  }
  QThread::msleep(static_cast<unsigned long>(end.remainingTime()));
}

void TSystemDriver::TakeError(QSerialPort::SerialPortError error) {
  if (lost_ || !port_.isOpen()) return;
  if (error == QSerialPort::ReadError) {
    // A line that was hung up reads as an end of file, and so, once, does one that was purged. Only
    // a line that is there takes a setting: a refusal reports the ResourceError.
    port_.setBreakEnabled(false);
    return;
  }
  if (error != QSerialPort::ResourceError) return;
  lost_ = true;
  error_ = QStringLiteral("%1 has gone: %2").arg(port_.portName(), port_.errorString());
}

}  // namespace

std::unique_ptr<TSerialDriver> MakeSystemDriver() { return std::make_unique<TSystemDriver>(); }

std::unique_ptr<TSerialDriver> MakeDeviceDriver(const QString& device) {
  return std::make_unique<TSystemDriver>(device);
}

QString SystemDevice(const QString& portName) {
  const QString named = qEnvironmentVariable(("VELMORA_" + portName.toUpper()).toLatin1());
  if (!named.isEmpty()) return named;
#ifdef Q_OS_WIN
  return portName;
#else
  return QStringLiteral("/dev/ttyS%1").arg(portName.mid(3).toInt() - 1);
#endif
}
