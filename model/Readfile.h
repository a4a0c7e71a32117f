#pragma once

#include <QString>
#include <memory>
#include <string_view>

#include "model/Loadreport.h"

/// The bytes of a file in memory.
struct TFileText {
  std::unique_ptr<char[]> Bytes;
  std::size_t Size = 0;

  std::string_view View() const { return {Bytes.get(), Size}; }
};

/// Reads a regular file whole, in pieces, with the progress of the reading alone in [0, 1]. False
/// if it was cancelled or could not be read, which the report then tells. Any thread.
[[nodiscard]] bool ReadFile(const QString& fileName, TFileText& text, TLoadReport& report,
                            const TLoadProgress& progress = {});

/// Reads a file, then hands its text to `parse` with the progress that is left for it. Memory that
/// runs out on the way becomes a failure of the report.
TLoadReport ReadAndParse(
    const QString& fileName, const TLoadProgress& progress,
    const std::function<TLoadReport(std::string_view, const TLoadProgress&)>& parse);
