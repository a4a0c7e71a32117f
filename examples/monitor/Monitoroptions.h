#pragma once

#include <QString>

/// What the command line of the monitor says.
struct TMonitorOptions {
  QString Device = QStringLiteral("COM1");  ///< "COM1" to "COM16", or the path of a terminal
  double DeviceRate = 100.0;  ///< packets per second that the device sends, 40 to 800 Hz
  QString Host = QStringLiteral("127.0.0.1");
  int Port = 4001;
  QString Folder;               ///< where statistics are stored from the start; empty: nowhere
  int SilenceLimitMs = 10'000;  ///< a device that sends nothing for so long is opened anew
};

// Each takes the text of one option. An empty result says that all is well; otherwise it is a
// sentence that says what is wrong, and nothing has changed.

/// A port by its name or path. One that does not exist may come later; a file is no port.
QString TakeDevice(const QString& text, TMonitorOptions& options);
/// "host:port", "host" or "[IPv6 address]:port".
QString TakeServer(const QString& text, TMonitorOptions& options);
/// A folder, which may not exist yet.
QString TakeFolder(const QString& text, TMonitorOptions& options);

/// Whether the device is given by the name of a port, and not by its path.
bool IsPortName(const QString& device);
