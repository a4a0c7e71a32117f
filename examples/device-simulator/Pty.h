#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// One end of a pseudo terminal; programs open the other end by its path as if it were a serial
/// port. The one file that needs a POSIX system.
class TPty {
 public:
  /// A line that could not be made has no path.
  TPty();
  ~TPty() { Unplug(); }
  TPty(const TPty&) = delete;
  TPty& operator=(const TPty&) = delete;

  /// What the other end is opened by, for example /dev/pts/3; empty if there is none.
  const std::string& Path() const { return path_; }
  /// Whether a program has the other end open.
  bool HasPeer() const;

  /// Waits for bytes, at most so long.
  void Wait(int milliseconds) const;
  /// What has come; never waits.
  std::string Read();
  /// Sends what the line takes at once. The rest is lost, as everything is while nobody listens.
  void Write(std::string_view bytes);
  /// Bytes that were lost because the line was full.
  std::uint64_t BytesLost() const { return bytesLost_; }
  /// Pulls the cable out: the other end's device is gone.
  void Unplug();

 private:
  int master_ = -1;
  std::string path_;
  std::uint64_t bytesLost_ = 0;
};
