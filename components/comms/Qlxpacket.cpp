#include "components/comms/Qlxpacket.h"

#include <algorithm>
#include <cstring>

namespace {

// Eight less than half the range of 24 bits, as the device has it.
constexpr double kZero = 8'388'600.0;

}  // namespace

std::size_t TQLXDecoder::Append(std::span<const std::uint8_t> bytes) {
  if (read_ > 0) {
    std::memmove(bytes_.data(), bytes_.data() + read_, Waiting());
    write_ -= read_;
    read_ = 0;
  }
  const std::size_t count = std::min(bytes.size(), kRoom - write_);
  if (count > 0) std::memcpy(bytes_.data() + write_, bytes.data(), count);
  write_ += count;
  return count;
}

TQLXDecoder::TItem TQLXDecoder::Next() {
  while (read_ < write_) {
    const std::uint8_t* const packet = bytes_.data() + read_;
    const std::size_t length = packet[0];
    if (Waiting() < 1 + length) break;
    if (length == 3 && packet[1] == 'T') {
      read_ += 4;
      return TItem::Marker;
    }
    // The device has spent a sample's time on a byte that is dropped below, too.
    values_[0] = markerTime_;
    markerTime_ += timeIncrement_;
    if (length == 0 || length != packetLength_) {
      ++read_;
      continue;
    }
    DecodeSamples(packet + 1);
    read_ += 1 + length;
    return TItem::Packet;
  }
  return TItem::Nothing;
}

void TQLXDecoder::DecodeSamples(const std::uint8_t* bytes) {
  double* value = values_.data() + 1;
  const auto length = static_cast<std::size_t>(packetLength_);
  if (wide_) {
    for (const std::uint8_t* const end = bytes + length / 3 * 3; bytes < end; bytes += 3) {
      *value++ = static_cast<double>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]) - kZero;
    }
  } else {
    for (const std::uint8_t* const end = bytes + length / 2 * 2; bytes < end; bytes += 2) {
      *value++ = static_cast<double>(bytes[0] << 16 | bytes[1] << 8) - kZero;
    }
  }
}
