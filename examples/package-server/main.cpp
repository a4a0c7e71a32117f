#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <cstdio>

#include "examples/Numberoption.h"
#include "examples/package-server/Packageserver.h"

namespace {

int Fail(const QString& text) {
  std::fprintf(stderr, "package-server: %s\n", qPrintable(text));
  return EXIT_FAILURE;
}

int Record(const QString& fileName, const QString& startText, double seconds) {
  const QDateTime start = startText.isEmpty()
                              ? QDateTime::currentDateTime()
                              : QDateTime::fromString(startText, QStringLiteral("yyyyMMdd HHmmss"));
  if (!start.isValid()) return Fail(QStringLiteral("--start is not of the form YYYYMMDD HHMMSS"));
  QFile file(fileName);
  const QByteArray text = Recording(MastAndWeather(), TDateTime::FromQDateTime(start), seconds);
  if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()) {
    return Fail(QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString()));
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Sends packages of measured rows to every client that connects and says open: "
                     "a swaying mast and the weather around it."));
  parser.addHelpOption();
  const QCommandLineOption address("address", "Listens at this address only.", "address",
                                   "127.0.0.1");
  const QCommandLineOption port("port", "Listens at this port.", "number", "4001");
  const QCommandLineOption speed(
      {"rate", "speed"},
      "Lets time run this many times as fast, for the simulated sets and for a recorded file.",
      "factor", "1");
  const QCommandLineOption chunk("chunk", "Sends at most so many bytes at once.", "bytes", "0");
  const QCommandLineOption cut("cut-after", "Closes each connection after so many bytes.", "bytes",
                               "-1");
  const QCommandLineOption fault(
      "fault",
      "Does this wrong with the first package: cut, half, tag, name, body, garbage, silence.",
      "name");
  const QCommandLineOption replay(
      "replay", "Sends a recorded file over and over, each package at the time of its stamps.",
      "file");
  const QCommandLineOption byteRate(
      "byte-rate",
      "Sends the recorded file at so many bytes per second and not at its times; 0: at its times.",
      "number", "0");
  const QCommandLineOption record("record", "Writes what it would send into a file, and ends.",
                                  "file");
  const QCommandLineOption seconds("seconds", "Length of the record.", "number", "60");
  const QCommandLineOption start("start", "Time of the first row of the record.",
                                 "YYYYMMDD HHMMSS");
  parser.addOptions(
      {address, port, speed, chunk, cut, fault, replay, byteRate, record, seconds, start});
  parser.process(app);

  if (parser.isSet(record)) {
    return Record(parser.value(record), parser.value(start),
                  NumberOption(parser, seconds, 0.0, 1e6));
  }
  TPackageServer server;
  server.SetRateFactor(NumberOption(parser, speed, 0.0, TPackageServer::kMaxRateFactor));
  server.Chunk = static_cast<int>(NumberOption(parser, chunk, 0.0, 1e9));
  server.CutAfter = static_cast<qint64>(NumberOption(parser, cut, -1.0, 1e15));
  if (parser.isSet(fault)) {
    const auto wanted = FaultFromName(parser.value(fault).toLatin1());
    if (!wanted) return Fail(QStringLiteral("there is no fault %1").arg(parser.value(fault)));
    server.SetFault(*wanted);
  }
  if (parser.isSet(replay)) {
    QFile file(parser.value(replay));
    if (!file.open(QIODevice::ReadOnly)) {
      return Fail(QStringLiteral("cannot read %1: %2").arg(file.fileName(), file.errorString()));
    }
    server.Replay = TReplay(file.readAll(), NumberOption(parser, byteRate, 0.0, 1e9));
  }
  const auto portNumber = static_cast<quint16>(NumberOption(parser, port, 0.0, 65535.0));
  if (!server.Listen(QHostAddress(parser.value(address)), portNumber)) {
    return Fail(QStringLiteral("cannot listen at %1 port %2: %3")
                    .arg(parser.value(address), parser.value(port), server.ErrorString()));
  }
  std::printf("Listening at %s port %d\n", qPrintable(parser.value(address)), server.Port());
  std::fflush(stdout);
  return app.exec();
}
