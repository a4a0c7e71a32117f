#include "exchange/Fields.h"

#include "tests/support/Testing.h"

using testing::ElementsAre;

namespace {

struct TRow {
  int Count;
  std::array<std::int32_t, 4> Ints;
  std::array<double, 3> Reals;
  bool operator==(const TRow&) const = default;
};

TRow Read(std::string_view line) {
  TRow row = {};
  row.Count = ReadColumns(line, {.Ints = 4, .Reals = 3}, row.Ints.data(), row.Reals.data());
  return row;
}

TEST(Fields, HoldNumbersByColumnsAndElseByBlanks) {
  const struct {
    const char* line;
    TRow row;
  } rows[] = {
      {"         3         1         0         1  1.00000E+00 -2.50000E-01  0.00000E+00",
       {7, {3, 1, 0, 1}, {1.0, -0.25, 0.0}}},
      {"3 1 0 1 1.0 -0.25 5", {7, {3, 1, 0, 1}, {1.0, -0.25, 5.0}}},
      {"         3         1         0         1            1            0            0",
       {7, {3, 1, 0, 1}, {1.0, 0.0, 0.0}}},
      {"1234567890         1         0         1 1.111E+00-1.111E+00  2.5",
       {7, {1234567890, 1, 0, 1}, {1.111, -1.111, 2.5}}},
      {"         3         1         0         1-1.11111E+00-1.11111E+00-1.11111E+00",
       {7, {3, 1, 0, 1}, {-1.11111, -1.11111, -1.11111}}},
      {"         3         1         0         1  1.00000D+00  1.00000d-01    1.0-103",
       {7, {3, 1, 0, 1}, {1.0, 0.1, 1e-103}}},
      {"         3                             1  1.00000E+00", {5, {3, 0, 0, 1}, {1.0}}},
      {"         3         1   ", {2, {3, 1}, {}}},
      {"         3       1.5", {1, {3}, {}}},
      {"9999999999 1", {0, {}, {}}},  // beyond 32 bits
      {"", {0, {}, {}}},
  };
  for (const auto& [line, row] : rows) EXPECT_EQ(Read(line), row) << line;
}

TEST(Fields, LinesEndInAnyWay) {
  for (const std::string_view text :
       {"a\nb\n\nc", "a\r\nb\r\n\r\nc\r\n", "a\rb\r\rc\r", "a\r\r\nb\r\r\n\r\r\nc"}) {
    TLineScanner lines(text);
    std::vector<std::string> found;
    while (lines.Next()) found.emplace_back(lines.Line());
    EXPECT_THAT(found, ElementsAre("a", "b", "", "c")) << text;
    EXPECT_EQ(lines.Number(), 4U);
  }
}

}  // namespace
