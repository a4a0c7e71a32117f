#include "components/comms/Qlxpacket.h"

#include "tests/support/Testing.h"

namespace {

using TBytes = std::vector<std::uint8_t>;

/// All rows that a decoder makes of bytes given in pieces of these sizes, over and over. A row is
/// the time stamp and `inputs` values; a marker is an empty row.
std::vector<std::vector<double>> Rows(TQLXDecoder& decoder, const TBytes& bytes, int inputs,
                                      const std::vector<std::size_t>& pieces) {
  std::vector<std::vector<double>> rows;
  std::span<const std::uint8_t> rest(bytes);
  for (std::size_t i = 0; !rest.empty(); ++i) {
    std::span<const std::uint8_t> piece =
        rest.first(std::min(rest.size(), pieces[i % pieces.size()]));
    rest = rest.subspan(piece.size());
    while (!piece.empty()) {
      piece = piece.subspan(decoder.Append(piece));
      for (auto item = decoder.Next(); item != TQLXDecoder::TItem::Nothing; item = decoder.Next()) {
        const double* values = decoder.Values();
        const bool isMarker = item == TQLXDecoder::TItem::Marker;
        rows.emplace_back(values, isMarker ? values : values + 1 + inputs);
      }
    }
  }
  return rows;
}

TEST(TQLXDecoder, ReadsSamplesMostSignificantByteFirstAroundTheDevicesZero) {
  const std::tuple<int, TBytes, std::vector<double>> cases[] = {
      {3, {3, 0x7F, 0xFF, 0xF8}, {0}},
      {3, {3, 0x00, 0x00, 0x00}, {-8388600}},
      {3, {3, 0xFF, 0xFF, 0xFF}, {8388615}},
      {3, {6, 0x80, 0x00, 0x01, 0x01, 0x02, 0x03}, {9, 66051 - 8388600.0}},
      {2, {2, 0x80, 0x00}, {8}},
      {2, {4, 0x00, 0x00, 0x00, 0x01}, {-8388600, -8388344}},
      {3, {5, 0x7F, 0xFF, 0xF8, 0x11, 0x22}, {0}},  // two bytes are no sample
      {2, {3, 0x80, 0x00, 0x11}, {8}},
  };
  for (const auto& [bytesPerSample, packet, values] : cases) {
    TQLXDecoder decoder;
    decoder.SetBytesPerSample(bytesPerSample);
    decoder.SetPacketLength(packet[0]);
    decoder.SetMarkerTime(45000.5);
    std::vector<double> row = {45000.5};
    row.insert(row.end(), values.begin(), values.end());
    EXPECT_EQ(Rows(decoder, packet, static_cast<int>(values.size()), {256}),
              std::vector<std::vector<double>>{row});
    EXPECT_EQ(decoder.Waiting(), 0u);
  }
}

TEST(TQLXDecoder, DropsBytesUntilAPacketFitsAndMovesTheStampOnForEach) {
  const std::tuple<std::uint8_t, TBytes, std::vector<std::vector<double>>, std::size_t, std::size_t,
                   std::size_t>
      cases[] = {
          {2, {0, 0, 2, 0x80, 0}, {{2.0, 8}}, 0, 1, 2},
          {2, {1, 1, 1, 2, 0x80, 0, 0}, {{3.0, 8}}, 0, 2, 4},
          {2, {2, 0x80}, {}, 2, 0, 0},        // the rest has not come
          {2, {9, 2, 0x80, 0}, {}, 4, 0, 0},  // could be the start of nine bytes
          {2, {3, 'T', 0, 0, 2, 0x80, 0}, {{}, {0.0, 8}}, 0, 0, 0},
          {2, {0, 3, 'T', 0, 0, 0, 2, 0x80, 0}, {{}, {2.0, 8}}, 0, 2, 2},
          {3, {3, 'T', 0, 0}, {{}}, 0, 0, 0},  // a marker, whatever is expected
          {2, {3, 'T', 0}, {}, 3, 0, 0},
          {0, {0, 0, 2, 0x80, 0}, {}, 2, 1, 3},  // nothing is expected
      };
  for (const auto& [length, bytes, rows, waiting, gaps, skipped] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    TQLXDecoder decoder;
    decoder.SetBytesPerSample(2);
    decoder.SetPacketLength(length);
    decoder.SetTimeIncrement(1.0);
    EXPECT_EQ(Rows(decoder, bytes, 1, {256}), rows);
    EXPECT_EQ(decoder.Waiting(), waiting);
    EXPECT_EQ(decoder.Skipped().Gaps, gaps);
    EXPECT_EQ(decoder.Skipped().Bytes, skipped);
  }
}

/// Packets, markers and garbage.
TBytes Recording(std::mt19937& random) {
  TBytes bytes;
  for (int i = 0; i < 400; ++i) {
    const unsigned kind = random() % 10;
    const std::size_t count = kind == 0 ? random() % 40 : 48;
    if (kind == 1) bytes.insert(bytes.end(), {3, 'T', 1, 2});
    if (kind > 1) bytes.push_back(48);
    for (std::size_t k = 0; kind != 1 && k < count; ++k) {
      bytes.push_back(static_cast<std::uint8_t>(random()));
    }
  }
  return bytes;
}

TEST(TQLXDecoder, MakesTheSameRowsOfAnyPieces) {
  std::mt19937 random(7);
  const TBytes bytes = Recording(random);
  const auto rows = [&](const std::vector<std::size_t>& pieces) {
    TQLXDecoder decoder;
    decoder.SetPacketLength(48);
    decoder.SetTimeIncrement(0.25);
    return Rows(decoder, bytes, 16, pieces);
  };
  const auto whole = rows({bytes.size()});
  ASSERT_GT(whole.size(), 200u);
  for (const std::size_t size : {1, 48, 1024}) EXPECT_EQ(rows({size}), whole);
  std::vector<std::size_t> pieces(100);
  for (std::size_t& piece : pieces) piece = 1 + random() % 300;
  EXPECT_EQ(rows(pieces), whole);
}

TEST(TQLXDecoder, FindsThePacketsAgainAfterAByteIsLost) {
  TBytes bytes;
  for (std::uint8_t i = 0; i < 20; ++i) {
    bytes.push_back(4);
    bytes.insert(bytes.end(), {0x90, i, 0xA0, 0x11});
  }
  bytes.erase(bytes.begin() + 7 * 5 + 2);
  bytes.resize(bytes.size() + 300);  // until here, 0x90 could be the length of a packet
  TQLXDecoder decoder;
  decoder.SetBytesPerSample(2);
  decoder.SetPacketLength(4);
  const auto rows = Rows(decoder, bytes, 2, {7});
  // The hurt packet takes the length byte of the next one for its last, which spoils that one too.
  std::vector<double> counters;
  for (const auto& row : rows) counters.push_back((row[1] + 8388600 - 0x900000) / 256);
  EXPECT_EQ(counters, (std::vector<double>{0, 1, 2, 3, 4, 5, 6, 0xA0, 9, 10, 11, 12, 13, 14, 15, 16,
                                           17, 18, 19}));
}

TEST(PacketLengthOf, IsTheFirstByteBehindMarkers) {
  const std::pair<TBytes, std::optional<std::uint8_t>> cases[] = {
      {{}, {}},
      {{48, 1, 2}, 48},
      {{0}, 0},
      {{3, 'T', 0, 0, 48}, 48},
      {{3, 'T', 0, 0, 3, 'T', 9, 9, 6, 1}, 6},
      {{3, 'T', 0, 0}, 3},  // a packet of three bytes
      {{3}, 3},
  };
  for (const auto& [answer, length] : cases) EXPECT_EQ(PacketLengthOf(answer), length);
}

}  // namespace
