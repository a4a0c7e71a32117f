#pragma once

#include <string_view>

#include "exchange/Findings.h"
#include "exchange/Job.h"
#include "model/Loadreport.h"

/// Whether a text begins like a universal file: a line with -1 in columns 5 and 6, then a type.
/// Looks at the first lines only.
bool IsUniversal(std::string_view start);

/// Reads the data sets of a universal file into the job: types 15, 18, 55, 58, 58b, 82, 151, 164,
/// 780, 781, 2411, 2412, 2414 and 2420; others are noted. What is damaged is noted and left out,
/// the rest is kept. `findings` is at the file. Any thread. Throws std::bad_alloc.
void ReadUniversal(std::string_view text, TJob& job, TFindings& findings,
                   const TLoadProgress& progress = {});
