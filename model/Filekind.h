#pragma once

#include <QString>
#include <functional>
#include <string>
#include <string_view>

#include "model/Loadreport.h"

/// What a file is by its content, whatever its name: in a model file there is a header of a model's
/// sections, in a data file a section with a record of a node or the name of a frequency.
enum class TFileKind { Model, Data };

/// The first part of a file, which shows its kind; nothing of a file that cannot be read.
std::string StartOf(const QString& fileName);
/// Whether a text that begins so is a model file or a data file.
bool IsModelText(std::string_view start);
bool IsDataText(std::string_view start);

/// Why a text is none of this kind; empty if it is one.
QString ObjectionTo(TFileKind kind, std::string_view text);

/// Whether a file is a model file, by its first part. A file that cannot be read is none.
bool IsModelFile(const QString& fileName);

/// Whether two names lead to one file; false if one of the two is missing.
bool AreSameFile(const QString& a, const QString& b);

/// Reads a model file or a data file and hands its text to `load`. A file that cannot be read, is
/// of another kind or holds nothing to show is not handed on: the report says why.
TLoadReport LoadFileOf(
    TFileKind kind, const QString& fileName, const TLoadProgress& progress,
    const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& load);
