#include "examples/monitor/Monitoroptions.h"

#include <QFileInfo>
#include <QRegularExpression>

bool IsPortName(const QString& device) {
  static const QRegularExpression name(QStringLiteral("^COM([1-9]|1[0-6])$"),
                                       QRegularExpression::CaseInsensitiveOption);
  return name.match(device).hasMatch();
}

QString TakeDevice(const QString& text, TMonitorOptions& options) {
  if (text.isEmpty()) return QStringLiteral("--device needs a port, such as COM1 or /dev/ttyUSB0");
  const QFileInfo file(text);
  if (!IsPortName(text) && (file.isDir() || file.isFile())) {
    return QStringLiteral("--device %1: that is a %2, not a serial port")
        .arg(text, file.isDir() ? QStringLiteral("folder") : QStringLiteral("file"));
  }
  // What exists is meant from the present folder; any other name is one of the system's devices.
  options.Device = !IsPortName(text) && file.exists() ? file.absoluteFilePath() : text;
  return {};
}

QString TakeServer(const QString& text, TMonitorOptions& options) {
  static const QRegularExpression form(
      QStringLiteral(R"(^(?:\[([0-9A-Fa-f:.]+)\]|([^\s:\[\]]+))(?::([0-9]+))?$)"));
  const auto match = form.match(text);
  if (!match.hasMatch()) {
    return QStringLiteral("--server %1: a server is given as host:port, such as 127.0.0.1:4001")
        .arg(text);
  }
  const QString number = match.captured(3);
  const int port = number.isEmpty() ? options.Port : number.toInt();
  if (port < 1 || port > 65535) {
    return QStringLiteral("--server %1: the port is a number from 1 to 65535").arg(text);
  }
  options.Host = match.captured(1) + match.captured(2);
  options.Port = port;
  return {};
}

QString TakeFolder(const QString& text, TMonitorOptions& options) {
  const QFileInfo file(text);
  if (text.isEmpty()) return QStringLiteral("--store needs a folder");
  if (file.exists() && !file.isDir()) {
    return QStringLiteral("--store %1: that is a file, not a folder").arg(text);
  }
  options.Folder = text;
  return {};
}
