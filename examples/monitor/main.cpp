// Shows what a serial device and a package server measure, as it comes. With --render OUT.png it
// measures for some seconds and draws the window into a picture instead, without a display.

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <cstdio>

#include "examples/Numberoption.h"
#include "examples/Rendering.h"
#include "examples/monitor/Monitorpanel.h"
#include "model/Datetime.h"
#include "model/Ending.h"

namespace {

int Fail(const QString& text) {
  std::fprintf(stderr, "monitor: %s\n", qPrintable(text));
  return EXIT_FAILURE;
}

struct TCommandLine {
  QCommandLineOption device{"device", "Serial port: COM1 to COM16, or its path; initially COM1.",
                            "port", "COM1"};
  QCommandLineOption rate{"rate",
                          "Packets per second that the device sends, 40 to 800; initially 100.",
                          "hertz", "100"};
  QCommandLineOption server{"server", "Package server; initially 127.0.0.1:4001.", "host:port",
                            "127.0.0.1:4001"};
  QCommandLineOption store{"store", "Store statistics into this folder from the start.", "folder"};
  QCommandLineOption render{"render", "Draw into a PNG file and end.", "file"};
  QCommandLineOption after{"after", "With --render: measure so long, 0 to 86400.", "seconds", "5"};
  QCommandLineOption ratio{"ratio", "With --render: device pixels to a logical one, 1 to 4.",
                           "number", "1"};
  QCommandLineParser parser;

  TCommandLine() {
    parser.setApplicationDescription(
        QStringLiteral("Shows what a serial device and a package server measure, as it comes."));
    parser.addHelpOption();
    parser.addOptions({device, rate, server, store, render, after, ratio});
  }
  /// Empty if all is well.
  QString Take(TMonitorOptions& options) const;
};

QString TCommandLine::Take(TMonitorOptions& options) const {
  if (!parser.positionalArguments().isEmpty()) {
    return QStringLiteral("unexpected argument %1; see --help")
        .arg(parser.positionalArguments().first());
  }
  using TTake = QString (*)(const QString&, TMonitorOptions&);
  const std::pair<const QCommandLineOption*, TTake> takes[] = {
      {&device, TakeDevice}, {&server, TakeServer}, {&store, TakeFolder}};
  for (const auto& [option, take] : takes) {
    if (!parser.isSet(*option)) continue;
    if (const QString wrong = take(parser.value(*option), options); !wrong.isEmpty()) return wrong;
  }
  return {};
}

int Render(TMonitorPanel& panel, const QString& file, double seconds, double ratio) {
  QTimer::singleShot(static_cast<int>(1000.0 * seconds), qApp, &QCoreApplication::quit);
  QApplication::exec();
  Picture(panel, ratio);  // lays out what was never shown
  QCoreApplication::processEvents();
  return WritePicture(Picture(panel, ratio), file);
}

}  // namespace

int main(int argc, char** argv) {
  RenderWithoutDisplay(argc, argv);
  QApplication application(argc, argv);
  TCommandLine line;
  line.parser.process(application);
  TMonitorOptions options;
  if (const QString wrong = line.Take(options); !wrong.isEmpty()) return Fail(wrong);

  options.DeviceRate = NumberOption(line.parser, line.rate, 40.0, 800.0);
  const double seconds = NumberOption(line.parser, line.after, 0.0, kSecondsPerDay);
  const double ratio = NumberOption(line.parser, line.ratio, 1.0, 4.0);

  TEnding::Instance().TakeSignals();
  TMonitorPanel panel(options);
  if (line.parser.isSet(line.render)) {
    return Render(panel, line.parser.value(line.render), seconds, ratio);
  }
  panel.show();
  return QApplication::exec();
}
