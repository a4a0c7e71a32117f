#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "examples/Numberoption.h"
#include "examples/package-server/Packageserver.h"
#include "model/Ending.h"
#include "model/Wholefile.h"

namespace {

struct TOptions {
  QCommandLineOption address{"address", "Listens at this address only.", "address", "127.0.0.1"};
  QCommandLineOption port{"port", "Listens at this port.", "number", "4001"};
  QCommandLineOption speed{
      {"rate", "speed"},
      "Lets time run this many times as fast, for the simulated sets and for a recorded file.",
      "factor",
      "1"};
  QCommandLineOption chunk{"chunk", "Sends at most so many bytes at once.", "bytes", "0"};
  QCommandLineOption cut{"cut-after", "Closes each connection after so many bytes.", "bytes", "-1"};
  QCommandLineOption fault{
      "fault",
      "Does this wrong with the first package: cut, half, tag, name, body, garbage, silence.",
      "name"};
  QCommandLineOption replay{
      "replay", "Sends a recorded file over and over, each package at the time of its stamps.",
      "file"};
  QCommandLineOption byteRate{
      "byte-rate",
      "Sends the recorded file at so many bytes per second and not at its times; 0: at its times.",
      "number", "0"};
  QCommandLineOption record{"record", "Writes what it would send into a file, and ends.", "file"};
  QCommandLineOption seconds{"seconds", "Length of the record.", "number", "60"};
  QCommandLineOption start{"start", "Time of the first row of the record.", "YYYYMMDD HHMMSS"};
};

int Fail(const QString& text) {
  std::fprintf(stderr, "package-server: %s\n", qPrintable(text));
  return EXIT_FAILURE;
}

int Record(const QString& fileName, const QString& startText, double seconds) {
  const QDateTime start = startText.isEmpty()
                              ? QDateTime::currentDateTime()
                              : QDateTime::fromString(startText, QStringLiteral("yyyyMMdd HHmmss"));
  if (!start.isValid()) return Fail(QStringLiteral("--start is not of the form YYYYMMDD HHMMSS"));
  const QByteArray text = Recording(MastAndWeather(), TDateTime::FromQDateTime(start), seconds);
  const QString why = WriteWholeFile(fileName, text);
  if (!why.isEmpty()) return Fail(QStringLiteral("cannot write %1: %2").arg(fileName, why));
  return EXIT_SUCCESS;
}

/// What is wrong with the file; empty if nothing is.
QString SetReplay(TPackageServer& server, const QString& fileName, double byteRate) {
  QFile file(fileName);
  if (file.exists() && !QFileInfo(fileName).isFile()) {
    return QStringLiteral("cannot read %1: it is no file").arg(fileName);
  }
  if (!file.open(QIODevice::ReadOnly)) {
    return QStringLiteral("cannot read %1: %2").arg(fileName, file.errorString());
  }
  server.Replay = TReplay(file.readAll(), byteRate);
  return server.Replay.IsEmpty() ? QStringLiteral("%1 is empty").arg(fileName) : QString();
}

/// What is wrong with the options; empty if nothing is.
QString SetUp(TPackageServer& server, const QCommandLineParser& parser, const TOptions& options) {
  server.SetRateFactor(NumberOption(parser, options.speed, 0.0, TPackageServer::kMaxRateFactor));
  server.Chunk = static_cast<int>(NumberOption(parser, options.chunk, 0.0, 1e9));
  server.CutAfter = static_cast<qint64>(NumberOption(parser, options.cut, -1.0, 1e15));
  if (parser.isSet(options.fault)) {
    const QString name = parser.value(options.fault);
    const auto wanted = FaultFromName(name.toLatin1());
    if (!wanted) return QStringLiteral("there is no fault %1").arg(name);
    server.SetFault(*wanted);
  }
  const double byteRate = NumberOption(parser, options.byteRate, 0.0, 1e9);
  if (!parser.isSet(options.replay)) return {};
  return SetReplay(server, parser.value(options.replay), byteRate);
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Sends packages of measured rows to every client that connects and says open: "
                     "a swaying mast and the weather around it."));
  parser.addHelpOption();
  const TOptions options;
  parser.addOptions({options.address, options.port, options.speed, options.chunk, options.cut,
                     options.fault, options.replay, options.byteRate, options.record,
                     options.seconds, options.start});
  parser.process(app);

  if (parser.isSet(options.record)) {
    return Record(parser.value(options.record), parser.value(options.start),
                  NumberOption(parser, options.seconds, 0.0, 1e6));
  }
  TEnding::Instance().TakeSignals();
  TPackageServer server;
  if (const QString wrong = SetUp(server, parser, options); !wrong.isEmpty()) return Fail(wrong);
  const QString name = parser.value(options.address);
  const QHostAddress address(name);
  if (address.isNull()) return Fail(QStringLiteral("--address: %1 is no address").arg(name));
  const auto port = static_cast<quint16>(NumberOption(parser, options.port, 0.0, 65535.0));
  if (!server.Listen(address, port)) {
    return Fail(QStringLiteral("cannot listen at %1 port %2: %3")
                    .arg(name)
                    .arg(port)
                    .arg(server.ErrorString()));
  }
  std::printf("Listening at %s port %d\n", qPrintable(name), server.Port());
  std::fflush(stdout);
  return app.exec();
}
