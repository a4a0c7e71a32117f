#include "components/comms/Qlxpacket.h"

#include <algorithm>
#include <cstring>

namespace {

// Eight less than half the range of 24 bits, as the device has it.
constexpr double kZero = 8'388'600.0;

constexpr std::size_t kMarkerLength = 4;

/// Of a marker, or of something that begins like one.
bool BeginsMarker(const std::uint8_t* bytes) { return bytes[0] == 3 && bytes[1] == 'T'; }

}  // namespace

std::optional<std::uint8_t> PacketLengthOf(std::span<const std::uint8_t> answer) {
  while (answer.size() > kMarkerLength && BeginsMarker(answer.data())) {
    answer = answer.subspan(kMarkerLength);
  }
  if (answer.empty()) return {};
  return answer[0];
}

void TQLXDecoder::SetMarkerTime(double days) {
  markerTime_ = days;
  steps_ = 0.0;
}

void TQLXDecoder::SetTimeIncrement(double days) {
  if (days == timeIncrement_) return;
  SetMarkerTime(MarkerTime());
  timeIncrement_ = days;
}

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
  const std::size_t first = read_;
  const TItem item = SkipToItem();
  if (read_ > first) Skip(read_ - first);
  // The device has spent a sample's time on each byte that is dropped, too.
  steps_ += static_cast<double>(read_ - first);
  if (item == TItem::Nothing) return item;
  inGap_ = false;
  if (item == TItem::Marker) {
    read_ += kMarkerLength;
    return item;
  }
  values_[0] = MarkerTime();
  ++steps_;
  DecodeSamples(bytes_.data() + read_ + 1);
  read_ += std::size_t{1} + packetLength_;
  return item;
}

TQLXDecoder::TItem TQLXDecoder::SkipToItem() {
  for (; read_ < write_; ++read_) {
    const std::uint8_t* const packet = bytes_.data() + read_;
    const std::size_t length = packet[0];
    if (Waiting() < 1 + length) break;
    if (BeginsMarker(packet)) return TItem::Marker;
    if (length > 0 && length == packetLength_) return TItem::Packet;
  }
  return TItem::Nothing;
}

void TQLXDecoder::Skip(std::size_t bytes) {
  skipped_.Bytes += bytes;
  skipped_.Gaps += !inGap_;
  inGap_ = true;
}

void TQLXDecoder::Break(std::uint64_t lostBytes) {
  Skip(Waiting() + lostBytes);
  Clear();
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
