#pragma once

class QFile;
class QString;

/// The one place that asks the operating system which file is which.

enum class TNameHolder { Itself, Another, Nobody };

/// Whether the open file still has the name by which it was opened. Where the system keeps the name
/// of an open file (Windows) it has.
[[nodiscard]] TNameHolder WhoHasName(const QFile& file, const QString& name);
