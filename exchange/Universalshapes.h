#pragma once

#include "exchange/Universalreading.h"

// Data at nodes of universal files: types 55 and 2414.
// The reading is at the line with the type.

void ReadShape55(TUniversalReading& reading);
void ReadShape2414(TUniversalReading& reading);
