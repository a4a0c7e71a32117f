// What a device may send: any bytes in any pieces, decoded by a port in either mode. The values do
// not depend on the pieces.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "components/comms/Qlxpacket.h"

namespace {

std::vector<double> Decode(std::span<const std::uint8_t> bytes, std::uint8_t length, bool wide,
                           std::size_t piece) {
  TQLXDecoder decoder;
  decoder.SetPacketLength(length);
  decoder.SetBytesPerSample(wide ? 3 : 2);
  decoder.SetTimeIncrement(1.0);
  const std::size_t count = length / (wide ? 3U : 2U);
  std::vector<double> values;
  while (!bytes.empty()) {
    bytes = bytes.subspan(decoder.Append(bytes.first(std::min(piece, bytes.size()))));
    for (auto item = decoder.Next(); item != TQLXDecoder::TItem::Nothing; item = decoder.Next()) {
      if (item == TQLXDecoder::TItem::Marker) {
        values.push_back(-1.0);
      } else {
        values.insert(values.end(), decoder.Values(), decoder.Values() + 1 + count);
      }
    }
    if (decoder.Waiting() > 255) std::abort();
  }
  return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const std::span<const std::uint8_t> bytes(data + 3, size - 3);
  const std::uint8_t length = data[0];
  const bool wide = data[1] % 2 != 0;
  const std::size_t piece = 1U + data[2];
  const std::vector<double> whole = Decode(bytes, length, wide, 4096);
  if (Decode(bytes, length, wide, piece) != whole) std::abort();
  for (const double value : whole) {
    if (!(std::abs(value) <= 8388615.0)) std::abort();
  }
  return 0;
}
