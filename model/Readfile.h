#pragma once

#include <QString>
#include <string_view>
#include <vector>

#include "model/Largememory.h"
#include "model/Loadreport.h"

/// The bytes of a file in memory.
using TFileText = std::vector<char, TLargeAllocator<char>>;

inline std::string_view View(const TFileText& text) { return {text.data(), text.size()}; }

/// Why this is no file to read: it is missing, a folder, a pipe or a device, or larger than the
/// memory that is left. Empty if nothing speaks against it. Opens nothing.
QString WhyNotReadable(const QString& fileName);

/// Reads a regular file whole, in pieces, with the progress of the reading alone in [0, 1]. False
/// if it was cancelled or could not be read, which the report then says. Any thread.
[[nodiscard]] bool ReadFile(const QString& fileName, TFileText& text, TLoadReport& report,
                            const TLoadProgress& progress = {});

/// Reads a file, then hands its text to `parse` with the progress that is left for it.
void ReadAndParse(const QString& fileName, TLoadReport& report, const TLoadProgress& progress,
                  const std::function<void(std::string_view, const TLoadProgress&)>& parse);
