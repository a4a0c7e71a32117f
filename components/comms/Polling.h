#pragma once

/// Decides in which ticks a polled device is asked for a packet: in every one, but at most two
/// requests are in flight, and a lost answer is given up after 21 ticks.
///
/// One answer looks like another, so that a lost one keeps its place in the count as long
/// as others come. Polling that has been held up is therefore let run empty once a second.
class TPolling {
 public:
  /// A tick has passed. True if the device is to be asked now, which counts as done.
  [[nodiscard]] bool Tick();
  /// An answer has come.
  void TakeAnswer();

 private:
  int outstanding_ = 0;   ///< requests without an answer
  int skippedTicks_ = 0;  ///< since the last request
  int busyTicks_ = 0;     ///< since all requests had been answered, or more
  bool heldUp_ = false;   ///< a tick has been skipped since then
};
