#pragma once

#include "model/Nodeindex.h"
#include "model/Records.h"

/// Brings the nodes of a data set into the order of a model's nodes, then sorts them by ID.
///
/// The list is first lengthened to the model's count by nodes with ID -1. Then, for each index in
/// turn, the first node of the whole list with the model node's ID changes places with the one at
/// the index; if there is none, a node with the model node's ID and with its coordinates as the
/// amplitude is inserted there. What is left over at the end is deleted.
/// Takes n log n time at worst, and linear time if neither list has an ID twice.
void AlignNodes(TNodeList& nodes, const TNodeList& model, const TNodeIndex& index);
