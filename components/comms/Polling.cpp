#include "components/comms/Polling.h"

bool TPolling::Tick() {
  constexpr int kMostRequests = 2;
  constexpr int kMostSkipped = 21;
  constexpr int kMostBusy = 100;
  if (skippedTicks_ >= kMostSkipped) {
    outstanding_ = skippedTicks_ = 0;
    heldUp_ = false;
    busyTicks_ = kMostBusy;  // where answers were lost, the next one may be, too
  } else if (outstanding_ == 0) {
    heldUp_ = false;
    busyTicks_ = 0;
  }
  ++busyTicks_;
  const bool runsEmpty = heldUp_ && busyTicks_ > kMostBusy;
  if (outstanding_ >= (runsEmpty ? 1 : kMostRequests)) {
    ++skippedTicks_;
    heldUp_ = true;
    return false;
  }
  ++outstanding_;
  skippedTicks_ = 0;
  return true;
}

void TPolling::TakeAnswer() {
  if (outstanding_ > 0) --outstanding_;
}
