// Decoding of a device's packets: megabytes per second of the bare decoder, in blocks as the port
// reads them, clean and with garbage between the packets.
//
//   bench_packets [--quick]

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "bench/Bench.h"
#include "components/comms/Qlxpacket.h"

namespace {

constexpr int kInputs = 16;

struct TRecording {
  std::vector<std::uint8_t> bytes;
  double packets = 0;
};

TRecording Record(int bytesPerSample, std::size_t size, bool garbage) {
  const auto length = static_cast<std::uint8_t>(kInputs * bytesPerSample);
  std::mt19937 random(1);
  TRecording recording;
  recording.bytes.reserve(size + 512);
  while (recording.bytes.size() < size) {
    // Bytes that are no length of a packet, and short enough to be seen through at once.
    for (std::size_t i = garbage ? random() % 20 : 0; i > 0; --i) recording.bytes.push_back(1);
    recording.bytes.push_back(length);
    for (int i = 0; i < length; ++i) {
      recording.bytes.push_back(static_cast<std::uint8_t>(random()));
    }
    ++recording.packets;
  }
  recording.bytes.insert(recording.bytes.end(), 256, 0);
  return recording;
}

void Decode(TBench& bench, const char* what, int bytesPerSample, bool garbage) {
  constexpr std::size_t kBlock = 1024;
  const std::size_t size = bench.Quick() ? 1'000'000 : 100'000'000;
  const TRecording recording = Record(bytesPerSample, size, garbage);
  double packets = 0;
  double sum = 0;
  const double seconds = bench.Seconds(5, [&] {
    TQLXDecoder decoder;
    decoder.SetBytesPerSample(bytesPerSample);
    decoder.SetPacketLength(static_cast<std::uint8_t>(kInputs * bytesPerSample));
    packets = sum = 0;
    std::span<const std::uint8_t> rest(recording.bytes);
    while (!rest.empty()) {
      std::span<const std::uint8_t> block = rest.first(std::min(rest.size(), kBlock));
      rest = rest.subspan(decoder.Append(block));
      for (auto item = decoder.Next(); item != TQLXDecoder::TItem::Nothing; item = decoder.Next()) {
        if (item == TQLXDecoder::TItem::Packet) ++packets;
        sum += decoder.Values()[kInputs];
      }
    }
  });
  bench.Row(what, static_cast<double>(recording.bytes.size()) / seconds / 1e6, "MB/s");
  bench.Check(packets == recording.packets, "packets lost");
  bench.Check(std::abs(sum / packets) < 1e5, "samples are not around zero");
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  Decode(bench, "16 inputs of 24 bits", 3, false);
  Decode(bench, "16 inputs of 24 bits, garbage between the packets", 3, true);
  Decode(bench, "16 inputs of 16 bits", 2, false);
  return bench.Result();
}
