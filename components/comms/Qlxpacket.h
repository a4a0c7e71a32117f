#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

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

  /// How many bytes one packet has after its length byte; 0 expects none. What is left of 255 /
  /// bytes per sample is not read.
  void SetPacketLength(std::uint8_t length) { packetLength_ = length; }
  std::uint8_t PacketLength() const { return packetLength_; }
  /// 2 or 3.
  void SetBytesPerSample(int bytes) { wide_ = bytes == 3; }

  /// The stamp of the next packet, in days since 30 December 1899.
  void SetMarkerTime(double days) { markerTime_ = days; }
  double MarkerTime() const { return markerTime_; }
  /// By how many days the stamp moves on with each packet; 0 while the device is polled.
  void SetTimeIncrement(double days) { timeIncrement_ = days; }

  /// Takes as many of the bytes as there is room for and returns their count. There is room for a
  /// byte at least once Next has said Nothing.
  std::size_t Append(std::span<const std::uint8_t> bytes);
  /// Decodes up to the end of the next packet or marker. A byte that is dropped moves the stamp on
  /// as a packet does.
  TItem Next();
  /// Forgets the bytes that are not decoded yet.
  void Clear() { read_ = write_ = 0; }

  /// The stamp and behind it the samples of the last packet, -8,388,600 to 8,388,615 each.
  const double* Values() const { return values_.data(); }
  /// Bytes that wait for the rest of their packet.
  std::size_t Waiting() const { return write_ - read_; }
  /// More than half of the room is taken.
  bool IsCrowded() const { return Waiting() > kRoom / 2; }

 private:
  static constexpr std::size_t kRoom = 4096;  ///< several of the longest packet

  void DecodeSamples(const std::uint8_t* bytes);

  std::array<double, kMaxValues> values_{};
  std::array<std::uint8_t, kRoom> bytes_;
  std::size_t read_ = 0;
  std::size_t write_ = 0;
  double markerTime_ = 0.0;
  double timeIncrement_ = 0.0;
  std::uint8_t packetLength_ = 0;
  bool wide_ = true;  ///< three bytes per sample
};
