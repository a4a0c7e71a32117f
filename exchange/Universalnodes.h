#pragma once

#include "exchange/Universalreading.h"

// Nodes and local systems of universal files: types 15, 781, 2411, 18 and 2420.
// The reading is at the line with the type.

void ReadNodes15(TUniversalReading& reading);
void ReadNodes2411(TUniversalReading& reading);
void ReadSystems18(TUniversalReading& reading);
void ReadSystems2420(TUniversalReading& reading);
