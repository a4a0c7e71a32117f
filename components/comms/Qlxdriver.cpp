#include "components/comms/Qlxdriver.h"

#include <QSerialPort>
#include <QThread>
#include <algorithm>

#include "components/comms/Qlxserver.h"

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

/// False with the reason in the port.
bool SetUp(QSerialPort& port, const TLineSettings& line) {
  constexpr int kHandshake = 2;
  // Handshake over DTR, and an RTS that follows the output queue, are not to be had; the line is
  // kept high, which is how such a device can be talked to.
  const bool handshake = line.controlRTS == kHandshake;
  const bool taken =
      port.setBaudRate(line.baudRate) &&
      port.setDataBits(static_cast<QSerialPort::DataBits>(line.dataBits)) &&
      port.setParity(ParityOf(line.parity)) && port.setStopBits(StopBitsOf(line.stopBits)) &&
      port.setFlowControl(handshake ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
  if (!taken) return false;
  port.setDataTerminalReady(line.controlDTR != 0);
  if (!handshake) port.setRequestToSend(line.controlRTS != 0);
  return true;
}

void TakeError(QSerialPort& port, QSerialPort::SerialPortError error, const TQLXServer::TEnd& end) {
  if (!port.isOpen()) return;
  if (error == QSerialPort::ReadError) {
    // A line that was hung up reads as an end of file, and so, once, does one that was purged. Only
    // a line that is there takes a setting: a refusal reports the ResourceError.
    port.setBreakEnabled(false);
    return;
  }
  if (error != QSerialPort::ResourceError) return;
  end(QStringLiteral("%1 has gone: %2").arg(port.portName(), port.errorString()));
  // It would report its end again and again. The caller is the port itself.
  QMetaObject::invokeMethod(&port, &QSerialPort::close, Qt::QueuedConnection);
}

std::unique_ptr<QIODevice> MakePort(const TQLXServer::TEnd& end) {
  auto port = std::make_unique<QSerialPort>();
  QObject::connect(port.get(), &QSerialPort::errorOccurred, port.get(),
                   [port = port.get(), end](QSerialPort::SerialPortError error) {
                     TakeError(*port, error, end);
                   });
  return port;
}

class TSystemDriver final : public TSerialDriver {
 public:
  /// `device` is what every port name stands for; empty: what SystemDevice says.
  explicit TSystemDriver(const QString& device = {}) : device_(device) {}

  bool Open(const QString& portName) override;
  bool SetLine(const TLineSettings& line) override;
  void SetQueueSizes(int input, int output) override;
  int Read(std::span<char> buffer) override;
  TArrival LastArrival() const override { return arrival_; }
  int Write(std::span<const char> bytes) override;
  void Purge(bool input, bool output) override;
  int InputCount() override { return static_cast<int>(server_.Count()); }
  int OutputCount() override;
  bool IsLost() const override { return server_.HasEnded() && server_.Count() == 0; }
  void Wait(int milliseconds) override {
    QThread::msleep(static_cast<unsigned long>(std::max(milliseconds, 0)));
  }
  QString ErrorText() const override { return error_.isEmpty() ? server_.EndReason() : error_; }

 private:
  template <class TQuestion>
  auto Ask(TQuestion question) {
    return server_.Ask([question = std::move(question)](QIODevice& port) {
      return question(static_cast<QSerialPort&>(port));
    });
  }

  QString device_;
  TQLXServer server_{MakePort};
  TArrival arrival_;
  QString error_;
  int outputSize_ = 0;
};

bool TSystemDriver::Open(const QString& portName) {
  if (device_.isEmpty()) device_ = SystemDevice(portName);
  const auto reason = Ask([device = device_](QSerialPort& port) {
    port.setPortName(device);
    return port.open(QIODevice::ReadWrite) ? QString() : port.errorString();
  });
  if (reason && reason->isEmpty()) return true;
  error_ =
      QStringLiteral("Cannot open %1: %2").arg(device_, reason ? *reason : server_.EndReason());
  return false;
}

bool TSystemDriver::SetLine(const TLineSettings& line) {
  const auto reason =
      Ask([line](QSerialPort& port) { return SetUp(port, line) ? QString() : port.errorString(); });
  if (reason && reason->isEmpty()) return true;
  error_ =
      QStringLiteral("Cannot set up %1: %2").arg(device_, reason ? *reason : server_.EndReason());
  return false;
}

void TSystemDriver::SetQueueSizes(int input, int output) {
  constexpr int kLeast = 1024;  // less would cut a packet, and 0 means no limit
  outputSize_ = std::max(output, kLeast);
  server_.Do([size = std::max(input, kLeast)](QIODevice& port) {
    static_cast<QSerialPort&>(port).setReadBufferSize(size);
  });
}

int TSystemDriver::Read(std::span<char> buffer) {
  const TQLXServer::TReceived received = server_.Read(buffer);
  arrival_ = {received.Age, received.LostBefore};
  return received.Count;
}

int TSystemDriver::Write(std::span<const char> bytes) {
  const QByteArray text(bytes.data(), static_cast<qsizetype>(bytes.size()));
  const auto written = Ask([text, room = outputSize_](QSerialPort& port) -> qint64 {
    if (port.bytesToWrite() + text.size() > room) return 0;
    const qint64 count = port.write(text);
    port.flush();
    return count;
  });
  return server_.HasEnded() ? 0 : static_cast<int>(std::max<qint64>(0, written.value_or(0)));
}

int TSystemDriver::OutputCount() {
  return Ask([](QSerialPort& port) { return static_cast<int>(port.bytesToWrite()); }).value_or(0);
}

void TSystemDriver::Purge(bool input, bool output) {
  QSerialPort::Directions directions;
  directions.setFlag(QSerialPort::Input, input);
  directions.setFlag(QSerialPort::Output, output);
  if (directions) {
    server_.Do(
        [directions](QIODevice& port) { static_cast<QSerialPort&>(port).clear(directions); });
  }
  if (input) server_.Clear();
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
