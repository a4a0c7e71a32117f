#pragma once

#include "components/comms/Qlxdriver.h"

#include "tests/support/Testing.h"

/// A line in memory that keeps a log of what is asked of it.
struct TFakeLine {
  QByteArray incoming;                       ///< waits to be read
  std::map<QByteArray, QByteArray> answers;  ///< come in after these commands
  bool exists = true;
  bool takesSettings = true;
  bool lost = false;
  TSerialDriver::TArrival arrival;
  QStringList log;

  QStringList TakeLog() { return std::exchange(log, {}); }
};

/// A driver of such a line.
class TFakeDriver : public TSerialDriver {
 public:
  explicit TFakeDriver(TFakeLine& line) : line_(line) {}
  ~TFakeDriver() override { line_.log << QStringLiteral("close"); }

  bool Open(const QString& portName) override {
    line_.log << "open " + portName;
    return line_.exists;
  }
  bool SetLine(const TLineSettings& l) override {
    line_.log << "line";
    for (const int number :
         {l.baudRate, l.dataBits, l.stopBits, l.parity, l.controlDTR, l.controlRTS}) {
      line_.log.last() += ' ' + QString::number(number);
    }
    return line_.takesSettings;
  }
  void SetQueueSizes(int input, int output) override {
    line_.log << QStringLiteral("queues %1 %2").arg(input).arg(output);
  }
  int Read(std::span<char> buffer) override {
    const QByteArray bytes = line_.incoming.left(static_cast<qsizetype>(buffer.size()));
    std::copy(bytes.begin(), bytes.end(), buffer.begin());
    line_.incoming.remove(0, bytes.size());
    return static_cast<int>(bytes.size());
  }
  TArrival LastArrival() const override { return line_.arrival; }
  int Write(std::span<const char> bytes) override {
    if (line_.lost) return 0;
    const QByteArray command(bytes.data(), static_cast<qsizetype>(bytes.size()));
    line_.log << QString::fromLatin1(command).replace('\r', "<CR>").replace('\a', "<BEL>");
    line_.incoming += line_.answers[command];
    return static_cast<int>(bytes.size());
  }
  void Purge(bool input, bool output) override {
    line_.log << QStringLiteral("purge%1%2").arg(input ? " in" : "", output ? " out" : "");
    if (input) line_.incoming.clear();
  }
  int InputCount() override { return static_cast<int>(line_.incoming.size()); }
  int OutputCount() override { return 7; }
  bool IsLost() const override { return line_.lost; }
  void Wait(int milliseconds) override { line_.log << QString::number(milliseconds) + " ms"; }
  QString ErrorText() const override { return QStringLiteral("Cannot open it"); }

 private:
  TFakeLine& line_;
};
