#pragma once

#include "examples/generate/Structure.h"

/// A through truss bridge on two abutments: bending and torsion modes with the phases that a
/// damper brings, and a bending wave that runs along the bridge.
TExample MakeBridge();
