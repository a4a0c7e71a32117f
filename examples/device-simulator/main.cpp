#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>

#include "examples/device-simulator/Devicesimulator.h"
#include "examples/device-simulator/Pty.h"

namespace {

volatile std::sig_atomic_t stopped = 0;

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
  QCommandLineOption late{"late", "Send everything so much later.", "MS", "0"};
  QCommandLineOption silentAfter{"silent-after", "Send nothing any more after so long.", "S", "-1"};
  QCommandLineOption seconds{"seconds", "End after so long.", "S", "-1"};
};

void SetUp(TDeviceSimulator& device, const QCommandLineParser& parser, const TOptions& options) {
  device.Inputs = parser.value(options.inputs).toInt();
  device.RateHz = std::clamp(parser.value(options.rate).toDouble(), 0.001, 100'000.0);
  device.MarkerEvery = parser.value(options.markers).toInt();
  device.Faults.dropRate = parser.value(options.drop).toDouble();
  device.Faults.garbageRate = parser.value(options.garbage).toDouble();
  device.Faults.lateSeconds = parser.value(options.late).toDouble() / 1000.0;
}

void Run(TDeviceSimulator& device, TPty& line, double silentAfter, double seconds) {
  while (!stopped && (seconds < 0.0 || Seconds() < seconds)) {
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
                     options.late, options.silentAfter, options.seconds});
  parser.process(application);

  TPty line;
  if (line.Path().empty()) {
    std::fprintf(stderr, "Cannot make a pseudo terminal\n");
    return 1;
  }
  std::printf("%s\n", line.Path().c_str());
  std::fflush(stdout);
  std::signal(SIGINT, [](int) { stopped = 1; });
  std::signal(SIGTERM, [](int) { stopped = 1; });

  TDeviceSimulator device;
  SetUp(device, parser, options);
  Run(device, line, parser.value(options.silentAfter).toDouble(),
      parser.value(options.seconds).toDouble());
  std::printf("%llu packets, %llu markers, %llu requests, %llu bytes lost on a full line\n",
              static_cast<unsigned long long>(device.PacketsSent()),
              static_cast<unsigned long long>(device.MarkersSent()),
              static_cast<unsigned long long>(device.RequestsTaken()),
              static_cast<unsigned long long>(line.BytesLost()));
  return 0;
}
