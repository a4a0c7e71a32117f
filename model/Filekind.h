#pragma once

#include <QString>
#include <functional>
#include <string_view>

#include "model/Loadreport.h"

/// What a file is by its content, whatever its name: in a model file there is a header of a model's
/// sections, in a data file a section with a record of a node or the name of a frequency.
enum class TFileKind { Model, Data };

/// Whether a file is a model file, by its first part. A file that cannot be read is none.
bool IsModelFile(const QString& fileName);

/// Whether two names lead to one file; false if one of the two is missing.
bool AreSameFile(const QString& a, const QString& b);

/// Reads a model file or a data file and hands its text to `load`. A file that cannot be read, is
/// of another kind or holds nothing to show is not handed on: the report says why.
TLoadReport LoadFileOf(
    TFileKind kind, const QString& fileName, const TLoadProgress& progress,
    const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& load);
