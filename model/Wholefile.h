#pragma once

#include <QByteArray>
#include <QString>

/// Writes a file and replaces an earlier one only once all is written. Returns an empty string, or
/// why it cannot be written; the earlier file then stays.
[[nodiscard]] QString WriteWholeFile(const QString& fileName, const QByteArray& bytes);
