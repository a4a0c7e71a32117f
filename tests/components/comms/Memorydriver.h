#pragma once

#include "components/comms/Qlxdriver.h"

#include "tests/support/Testing.h"

/// A line in memory that takes everything. What waits in a test's `incoming` comes in.
class TMemoryDriver : public TSerialDriver {
 public:
  explicit TMemoryDriver(QByteArray& incoming) : incoming_(incoming) {}
  bool Open(const QString&) override { return true; }
  bool SetLine(const TLineSettings&) override { return true; }
  void SetQueueSizes(int, int) override {}
  int Read(std::span<char> buffer) override {
    const QByteArray bytes = incoming_.left(static_cast<qsizetype>(buffer.size()));
    std::copy(bytes.begin(), bytes.end(), buffer.begin());
    incoming_.remove(0, bytes.size());
    return static_cast<int>(bytes.size());
  }
  int Write(std::span<const char> bytes) override { return static_cast<int>(bytes.size()); }
  void Purge(bool input, bool) override {
    if (input) incoming_.clear();
  }
  int InputCount() override { return static_cast<int>(incoming_.size()); }
  int OutputCount() override { return 0; }
  bool IsLost() const override { return false; }
  void Wait(int) override {}
  QString ErrorText() const override { return {}; }

 private:
  QByteArray& incoming_;
};
