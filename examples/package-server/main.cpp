#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <cstdio>

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
  const QCommandLineOption rate("rate", "Lets time run this many times as fast.", "factor", "1");
  const QCommandLineOption chunk("chunk", "Sends at most so many bytes at once.", "bytes", "0");
  const QCommandLineOption cut("cut-after", "Closes each connection after so many bytes.", "bytes",
                               "-1");
  const QCommandLineOption fault(
      "fault",
      "Does this wrong with the first package: cut, half, tag, name, body, garbage, silence.",
      "name");
  const QCommandLineOption replay("replay", "Sends a recorded file over and over.", "file");
  const QCommandLineOption record("record", "Writes what it would send into a file, and ends.",
                                  "file");
  const QCommandLineOption seconds("seconds", "Length of the record.", "number", "60");
  const QCommandLineOption start("start", "Time of the first row of the record.",
                                 "YYYYMMDD HHMMSS");
  parser.addOptions({address, port, rate, chunk, cut, fault, replay, record, seconds, start});
  parser.process(app);

  if (parser.isSet(record)) {
    return Record(parser.value(record), parser.value(start), parser.value(seconds).toDouble());
  }
  TPackageServer server;
  server.SetRateFactor(parser.value(rate).toDouble());
  server.Chunk = parser.value(chunk).toInt();
  server.CutAfter = parser.value(cut).toLongLong();
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
    server.Replay = file.readAll();
  }
  if (!server.Listen(QHostAddress(parser.value(address)), parser.value(port).toUShort())) {
    return Fail(QStringLiteral("cannot listen at %1 port %2: %3")
                    .arg(parser.value(address), parser.value(port), server.ErrorString()));
  }
  std::printf("Listening at %s port %d\n", qPrintable(parser.value(address)), server.Port());
  std::fflush(stdout);
  return app.exec();
}
