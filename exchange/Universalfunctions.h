#pragma once

#include "exchange/Universalreading.h"

// Functions of universal files: type 58 and, with values in binary, 58b.
// The reading is at the line with the type.

void ReadFunction58(TUniversalReading& reading);
void ReadFunction58b(TUniversalReading& reading);
