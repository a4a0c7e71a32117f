#include <QApplication>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "components/comms/Qlxport.h"

namespace {

/// A device that answers with these bytes, a few at each call.
class TAnsweringDriver : public TSerialDriver {
 public:
  TAnsweringDriver(std::span<const std::uint8_t> bytes, std::size_t piece)
      : bytes_(bytes), piece_(piece) {}

  bool Open(const QString&) override { return true; }
  bool SetLine(const TLineSettings&) override { return true; }
  void SetQueueSizes(int, int) override {}
  int Read(std::span<char> buffer) override {
    const std::size_t count = std::min({buffer.size(), bytes_.size(), piece_});
    std::copy_n(bytes_.begin(), count, buffer.begin());
    bytes_ = bytes_.subspan(count);
    return static_cast<int>(count);
  }
  int Write(std::span<const char> bytes) override { return static_cast<int>(bytes.size()); }
  void Purge(bool, bool) override {}
  int InputCount() override { return static_cast<int>(std::min(bytes_.size(), piece_)); }
  int OutputCount() override { return 0; }
  bool IsLost() const override { return bytes_.empty(); }
  void Wait(int) override {}
  QString ErrorText() const override { return QStringLiteral("gone"); }

 private:
  std::span<const std::uint8_t> bytes_;
  const std::size_t piece_;
};

}  // namespace

/// What a device answers while it is asked for the length of its packets, started, polled and
/// stopped: values, all of them finite, or nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static int argc = 1;
  static char name[] = "fuzz";
  static char* argv[] = {name, nullptr};
  static const auto* const application = new QCoreApplication(argc, argv);
  Q_UNUSED(application)
  const std::span<const std::uint8_t> bytes(data + 2, size - 2);
  const std::size_t piece = 1U + data[1];
  TQLXPort port(nullptr, [&] { return std::make_unique<TAnsweringDriver>(bytes, piece); });
  port.SetControlQLX(data[0] % 2 != 0 ? TQLXPort::sfcHardware : TQLXPort::sfcSoftware);
  port.SetOnData([](QObject*, const double* values, int count) {
    for (int i = 0; i < count; ++i) {
      if (!std::isfinite(values[i])) std::abort();
    }
  });
  port.SetAutoRun(true);
  for (int i = 0; i < 50 && port.GetConnected(); ++i) {
    port.AskForData();
    port.ReadPort();
  }
  port.SetAutoRun(false);
  return 0;
}
