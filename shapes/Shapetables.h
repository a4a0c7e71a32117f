#pragma once

#include <QString>

#include "shapes/Mac.h"

// Figures of shapes as tables with tabs between the columns, as spreadsheets take them. Numbers
// have a point, whatever the locale.

/// The matrix with the frequencies of rows and columns, the pairs above 0.8, and why some pairs
/// have no value.
QString MacTable(const TMac& mac);

/// MPC and MPD of each set.
QString ComplexityTable(const TNodesSet& sets);
