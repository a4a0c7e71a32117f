#pragma once

/// The controls that show channels of a channel source.

#include "components/controls/Linkedgraph.h"  // IWYU pragma: export
#include "components/controls/Linkedlabel.h"  // IWYU pragma: export
