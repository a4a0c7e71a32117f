#pragma once

#include <QString>
#include <QStringList>

#include "exchange/Findings.h"
#include "exchange/Universalwriter.h"

/// The data file that belongs beside a model file: its name with "dat" for the suffix.
QString DataFileBeside(const QString& modelFile);

/// Whether the suffix names a universal file (unv, uff) and not a model file (mod).
bool IsUniversalName(const QString& fileName);

/// The name with "mod" behind it unless its suffix names one of the formats.
QString WithJobSuffix(const QString& fileName);

/// What SaveJob writes under that name.
QStringList FilesToWrite(const QString& fileName, const TMeasuredData& data);

/// Writes a model and its data: as a universal file, or as a model file with its data file beside
/// it if there are data sets. The suffix of the name says which. Earlier files are replaced only
/// once all is written. What the format cannot hold is noted. Returns an empty string, or one
/// sentence that says what could not be written; without a model nothing is.
[[nodiscard]] QString SaveJob(const TModel& model, const TMeasuredData& data,
                              const QString& fileName, const TUniversalOptions& options,
                              TFindings& findings);
