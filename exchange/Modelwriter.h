#pragma once

#include <QString>
#include <string>

#include "exchange/Findings.h"
#include "model/Animmodel.h"

/// The text of a model file: coordinates as they were before the model was centred, faces that show
/// from both sides as two. Reading it gives the same to every printed digit. Throws std::bad_alloc.
std::string WriteModelText(const TModel& model);

/// The text of a data file, with phases where a set has any. Nodes that the model lacks are left
/// out, so is what the format has no place for, and names that occur again get a number, for a data
/// file holds one set of each. All of it is noted. Throws std::bad_alloc.
std::string WriteDataText(const TMeasuredData& data, TFindings& findings);
