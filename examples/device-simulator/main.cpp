#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <chrono>
#include <cstdio>
#include <optional>

#include "examples/Numberoption.h"
#include "examples/device-simulator/Devicesimulator.h"
#include "examples/device-simulator/Pty.h"
#include "model/Ending.h"

namespace {

double Seconds() {
  using TClock = std::chrono::steady_clock;
  static const auto start = TClock::now();
  return std::chrono::duration<double>(TClock::now() - start).count();
}

struct TOptions {
  QCommandLineOption inputs{"inputs", "Inputs of the device, 1 to 127.", "N", "16"};
  QCommandLineOption rate{"rate", "Packets per second while streaming.", "HZ", "100"};
  QCommandLineOption markers{"markers", "A marker packet every N packets.", "N", "0"};
  QCommandLineOption drop{"drop", "Lose a byte with probability P.", "P", "0"};
  QCommandLineOption garbage{"garbage", "Garbage before a packet with probability P.", "P", "0"};
  QCommandLineOption noise{"noise", "Send random bytes in place of the packets."};
  QCommandLineOption late{"late", "Send everything so much later.", "MS", "0"};
  QCommandLineOption silentAfter{"silent-after", "Send nothing any more after so long.", "S", "-1"};
  QCommandLineOption seconds{"seconds", "End after so long.", "S", "-1"};
  QCommandLineOption machine{"machine",
                             "Measure a machine: speed, vibration at both ends, temperature, oil "
                             "pressure."};
  QCommandLineOption link{
      "link", "Make a link to the terminal, to be found by the same name after each start.",
      "FILE"};
};

/// A name for the terminal while the program runs. One that a killed program has left is replaced.
class TLink {
 public:
  TLink(const QString& name, const QString& target) : name_(name) {
    if (QFileInfo(name).isSymbolicLink()) QFile::remove(name);
    made_ = QFile::link(target, name);
  }
  ~TLink() {
    if (made_) QFile::remove(name_);
  }
  TLink(const TLink&) = delete;
  TLink& operator=(const TLink&) = delete;
  bool IsMade() const { return made_; }

 private:
  QString name_;
  bool made_ = false;
};

int Fail(const QString& sentence) {
  std::fprintf(stderr, "%s\n", qPrintable(sentence));
  return EXIT_FAILURE;
}

void SetUp(TDeviceSimulator& device, const QCommandLineParser& parser, const TOptions& options) {
  const auto number = [&parser](const QCommandLineOption& option, double least, double most) {
    return NumberOption(parser, option, least, most);
  };
  device.Inputs = static_cast<int>(number(options.inputs, 1.0, 127.0));
  device.RateHz = number(options.rate, 0.001, 100'000.0);
  device.MarkerEvery = static_cast<int>(number(options.markers, 0.0, 1e9));
  if (parser.isSet(options.machine)) {
    device.Waves = MachineWaves();
    if (!parser.isSet(options.inputs)) device.Inputs = static_cast<int>(device.Waves.size());
  }
  device.Faults.dropRate = number(options.drop, 0.0, 1.0);
  device.Faults.garbageRate = number(options.garbage, 0.0, 1.0);
  device.Faults.noise = parser.isSet(options.noise);
  device.Faults.lateSeconds = number(options.late, 0.0, 1e6) / 1000.0;
}

void Run(TDeviceSimulator& device, TPty& line, double silentAfter, double seconds) {
  while (!TEnding::IsAsked() && (seconds < 0.0 || Seconds() < seconds)) {
    line.Wait(device.IsStreaming() ? 1 : 10);
    device.Faults.silent = silentAfter >= 0.0 && Seconds() >= silentAfter;
    device.Receive(line.Read(), Seconds());
    line.Write(device.Send(Seconds()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "A measuring device on a pseudo terminal. Prints the path of the terminal; start the program "
      "that is to measure with VELMORA_COM1 set to it.");
  parser.addHelpOption();
  const TOptions options;
  parser.addOptions({options.inputs, options.rate, options.markers, options.drop, options.garbage,
                     options.noise, options.late, options.silentAfter, options.seconds,
                     options.machine, options.link});
  parser.process(application);

  TEnding::Instance().TakeSignals();
  TDeviceSimulator device;
  SetUp(device, parser, options);
  const double silentAfter = NumberOption(parser, options.silentAfter, -1.0, 1e9);
  const double seconds = NumberOption(parser, options.seconds, -1.0, 1e9);
  TPty line;
  if (line.Path().empty()) return Fail(QStringLiteral("Cannot make a pseudo terminal"));
  std::optional<TLink> link;
  if (parser.isSet(options.link)) {
    const QString name = parser.value(options.link);
    link.emplace(name, QString::fromStdString(line.Path()));
    if (!link->IsMade()) return Fail(QStringLiteral("Cannot make the link %1").arg(name));
  }
  std::printf("%s\n", line.Path().c_str());
  std::fflush(stdout);

  Run(device, line, silentAfter, seconds);
  std::printf("%llu packets, %llu markers, %llu requests, %llu bytes lost on a full line\n",
              static_cast<unsigned long long>(device.PacketsSent()),
              static_cast<unsigned long long>(device.MarkersSent()),
              static_cast<unsigned long long>(device.RequestsTaken()),
              static_cast<unsigned long long>(line.BytesLost()));
  return EXIT_SUCCESS;
}
