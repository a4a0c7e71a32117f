#pragma once

#include "exchange/Universalreading.h"

// Lines and elements of universal files: types 82, 780 and 2412.
// The reading is at the line with the type.

void ReadTraceLine(TUniversalReading& reading);
void ReadElements780(TUniversalReading& reading);
void ReadElements2412(TUniversalReading& reading);
