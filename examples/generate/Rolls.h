#pragma once

#include "examples/generate/Structure.h"

/// The dryer section of a paper machine: seven dryer cylinders and nine felt rolls in their frame,
/// with the whirl that unbalance, unequal stiffness and two loose bearings bring.
TExample MakeRolls();
