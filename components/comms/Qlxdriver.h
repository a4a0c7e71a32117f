#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

/// Line settings as numbers: baud, data bits, and the codes of ParityBitsToByte and its siblings.
struct TLineSettings {
  int baudRate = 38400;
  int dataBits = 8;
  int stopBits = 0;
  int parity = 0;
  int controlDTR = 0;
  int controlRTS = 1;
};

/// What a port asks of the serial line below it. No call waits, except Wait. A lost line answers
/// every call and transfers nothing. GUI thread only.
class TSerialDriver {
 public:
  virtual ~TSerialDriver() = default;

  /// Opens an existing device for reading and writing, shared with nobody. False with the reason in
  /// ErrorText.
  virtual bool Open(const QString& portName) = 0;
  /// Sets the line; all other flow control and error handling is switched off. False with the
  /// reason in ErrorText if the device refuses; one without DTR and RTS does not.
  [[nodiscard]] virtual bool SetLine(const TLineSettings& line) = 0;
  /// A recommendation, in bytes.
  virtual void SetQueueSizes(int input, int output) = 0;

  /// Reads what is there, at most the size of the buffer, and returns the count of bytes. Fewer
  /// than there is room for may be followed by more; none: that was all.
  virtual int Read(std::span<char> buffer) = 0;
  /// What is known of the bytes that Read has returned last.
  struct TArrival {
    std::int64_t Age = 0;         ///< nanoseconds since they came
    std::int64_t LostBefore = 0;  ///< bytes before them for which there was no room
  };
  virtual TArrival LastArrival() const { return {}; }
  /// Returns the count of bytes taken; 0 if the output queue is full.
  virtual int Write(std::span<const char> bytes) = 0;
  /// Drops what waits in the queues.
  virtual void Purge(bool input, bool output) = 0;
  virtual int InputCount() = 0;
  virtual int OutputCount() = 0;
  /// The device has gone, and all that it sent has been read. It does not come back; the driver can
  /// only be destroyed.
  virtual bool IsLost() const = 0;
  /// Blocks the thread, while the driver sends and receives.
  virtual void Wait(int milliseconds) = 0;

  /// Why the device could not be opened or set up, or was lost.
  virtual QString ErrorText() const = 0;
};

using TDriverFactory = std::function<std::unique_ptr<TSerialDriver>()>;

/// A driver of the system's serial ports. It receives on a thread of its own.
std::unique_ptr<TSerialDriver> MakeSystemDriver();
/// A driver of one device, such as "/dev/ttyUSB0", whatever the name of the port.
std::unique_ptr<TSerialDriver> MakeDeviceDriver(const QString& device);

/// The system's device behind "COM3": what the environment variable VELMORA_COM3 names, else
/// /dev/ttyS2, or COM3 itself on Windows.
QString SystemDevice(const QString& portName);
