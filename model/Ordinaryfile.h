#pragma once

#include <QFile>
#include <QString>

/// Opens a file that somebody else has named. True only for an ordinary file: opening never waits,
/// as it would for a pipe or a device, and what is open is what was looked at, whoever changes the
/// folder meanwhile. A file to write is made if there is none, and emptied only with Truncate.
/// Otherwise false, and why. Any thread.
[[nodiscard]] bool OpenOrdinaryFile(QFile& file, QIODevice::OpenMode mode, QString* why);
