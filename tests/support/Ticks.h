#pragma once

#include "model/Timer.h"

/// Time passes: the timer service ticks so often, as it does every 10 ms.
inline void Tick(int times = 1) {
  for (int i = 0; i < times; ++i) TTimerServer::Instance()->Timer();
}
