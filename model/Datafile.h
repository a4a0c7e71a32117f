#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "model/Datareader.h"

/// The most that is read of data files: data sets, and nodes of all of them together.
struct TDataLimits {
  std::size_t Sets;
  std::size_t Nodes;
};

/// Notes if the nodes of a model do not stand in the order that data sets are brought into.
void NoteOrder(const TNodeIndex& index, TLoadReport& report);

/// Appends all data sets of a data file, each aligned to the model; those that are there already
/// count for the limits. False if cancelled.
[[nodiscard]] bool ReadDataSets(std::string_view text, const TModelNodes& model,
                                const TDataLimits& limits, std::vector<TDataSet>& sets,
                                TLoadReport& report, const TLoadProgress& progress);
