#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// The length of the device's packets, from its answer to a data request: the first byte, behind
/// marker packets. Nothing for an empty answer.
std::optional<std::uint8_t> PacketLengthOf(std::span<const std::uint8_t> answer);

/// Takes the bytes of a measuring device apart into packets, whatever the pieces in which they
/// come.
///
/// A packet is a length byte and that many bytes of samples, most significant byte first; a marker
/// packet is the length 3, the letter "T" and two more bytes. A packet of another length than the
/// expected one is no packet: its first byte is dropped and the next one is tried, so that after
/// garbage the decoder finds the packets again. Works on memory of fixed size and allocates
/// nothing. Any thread, one at a time.
class TQLXDecoder {
 public:
  /// Samples of the longest packet, and the time stamp before them.
  static constexpr std::size_t kMaxValues = 1 + 255 / 2;

  enum class TItem {
    Nothing,  ///< no whole packet is there
    Packet,   ///< Values() holds its values
    Marker,
  };

  /// What was no packet since the decoder was made or the counts were reset.
  struct TSkipped {
    std::uint64_t Gaps = 0;   ///< places in the stream
    std::uint64_t Bytes = 0;  ///< in them
  };

  /// How many bytes one packet has after its length byte; 0 expects none. What is left of 255 /
  /// bytes per sample is not read.
  void SetPacketLength(std::uint8_t length) { packetLength_ = length; }
  std::uint8_t PacketLength() const { return packetLength_; }
  /// 2 or 3.
  void SetBytesPerSample(int bytes) { wide_ = bytes == 3; }

  /// The stamp of the next packet, in days since 30 December 1899.
  void SetMarkerTime(double days);
  double MarkerTime() const { return markerTime_ + steps_ * timeIncrement_; }
  /// By how many days the stamp moves on with each packet; 0 while the device is polled.
  void SetTimeIncrement(double days);

  /// Takes as many of the bytes as there is room for and returns their count. There is room for a
  /// byte at least once Next has said Nothing.
  std::size_t Append(std::span<const std::uint8_t> bytes);
  /// Decodes up to the end of the next packet or marker. A byte that is dropped moves the stamp on
  /// as a packet does.
  TItem Next();
  /// Forgets the bytes that are not decoded yet.
  void Clear() { read_ = write_ = 0; }
  /// Same, since bytes behind them have been lost: the gap counts, and what follows is a new start.
  void Break(std::uint64_t lostBytes);

  const TSkipped& Skipped() const { return skipped_; }
  void ResetSkipped() { skipped_ = {}; }

  /// The stamp and behind it the samples of the last packet, -8,388,600 to 8,388,615 each.
  const double* Values() const { return values_.data(); }
  /// Bytes that wait for the rest of their packet.
  std::size_t Waiting() const { return write_ - read_; }
  /// More than half of the room is taken.
  bool IsCrowded() const { return Waiting() > kRoom / 2; }

 private:
  static constexpr std::size_t kRoom = 4096;  ///< several of the longest packet

  /// Moves to the start of the next item, or to where bytes are missing.
  TItem SkipToItem();
  void Skip(std::size_t bytes);
  void DecodeSamples(const std::uint8_t* bytes);

  std::array<double, kMaxValues> values_{};
  std::array<std::uint8_t, kRoom> bytes_;
  std::size_t read_ = 0;
  std::size_t write_ = 0;
  double markerTime_ = 0.0;
  double timeIncrement_ = 0.0;
  double steps_ = 0.0;  ///< increments since then: added one by one, they would lose microseconds
  TSkipped skipped_;
  bool inGap_ = false;  ///< the last byte was skipped
  std::uint8_t packetLength_ = 0;
  bool wide_ = true;  ///< three bytes per sample
};

/// Distinguishes a line that brings packets from one that brings noise, in which a packet is found
/// now and then, too: of its last few thousand bytes, more than a quarter has been skipped.
class TNoiseMeter {
 public:
  void Take(std::uint64_t bytes, std::uint64_t skipped) {
    bytes_ += bytes;
    skipped_ += skipped;
    for (; bytes_ > kMemory; bytes_ /= 2) skipped_ /= 2;
  }
  bool IsNoisy() const { return 4 * skipped_ > bytes_; }

 private:
  static constexpr std::uint64_t kMemory = 4096;

  std::uint64_t bytes_ = 0;
  std::uint64_t skipped_ = 0;
};
