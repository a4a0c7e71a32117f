#pragma once

#include "exchange/Universalreading.h"

// Head of universal files: types 151 and 164.
// The reading is at the line with the type.

void ReadHeader(TUniversalReading& reading);
void ReadUnits(TUniversalReading& reading);
