#pragma once

/// The series of a graph and the panel that shows them.

#include "components/graphing/Datapanel.h"     // IWYU pragma: export
#include "components/graphing/Dataseries.h"    // IWYU pragma: export
#include "components/graphing/Graphseries.h"   // IWYU pragma: export
#include "components/graphing/Serieslist.h"    // IWYU pragma: export
#include "components/graphing/Sliderseries.h"  // IWYU pragma: export
