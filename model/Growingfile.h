#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// How files are opened to which AppendLines appends.
inline constexpr auto kGrowing = QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered;

/// Appends lines, each with its line feed, to a file that is open in the mode kGrowing: whole, and
/// handed to the system, or not at all. False, with a reason, if the disk is full or gone; a part
/// of them is then taken back. A last line that was cut, when the program or the system broke off,
/// is closed first. What was appended is on the disk within half a minute; nobody waits for that.
[[nodiscard]] bool AppendLines(QFile& file, const QByteArray& lines, QString& reason);
