#include "model/Textscanner.h"

#include <locale.h>

#include <bit>
#include <cstdio>

#include "tests/support/Testing.h"

namespace {

struct TReadCase {
  const char* text;
  bool read;
  double value;
  std::size_t position;
};

TEST(TTextScanner, ReadsIntegersAsFormattedInputDoes) {
  const TReadCase cases[] = {{"42", true, 42, 2},
                             {" \t\r\n\v\f-7 ", true, -7, 8},
                             {"+0012x", true, 12, 5},
                             {"1.5", true, 1, 1},
                             {"2147483647", true, 2147483647, 10},
                             {"2147483648", true, 2147483647, 10},
                             {"-99999999999999999999999", true, -2147483648.0, 24},
                             {"-x", false, 0, 1},
                             {"  -", false, 0, 3},
                             {"- 5", false, 0, 1},
                             {" [Nodes]", false, 0, 1},
                             {"", false, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    TTextScanner scanner(c.text);
    std::int32_t value = 99;
    EXPECT_EQ(scanner.ReadInt(value), c.read);
    EXPECT_EQ(value, c.read ? c.value : 99);
    EXPECT_EQ(scanner.Position(), c.position);
  }
}

TEST(TTextScanner, TellsWhenAnIntegerHadToBeCut) {
  TTextScanner scanner("7 -2147483648 4294967296 7");
  std::int32_t value = 0;
  for (const bool cut : {false, false, true, false}) {
    bool outOfRange = false;
    EXPECT_TRUE(scanner.ReadInt(value, &outOfRange));
    EXPECT_EQ(outOfRange, cut) << value;
  }
}

TEST(TTextScanner, ReadsRealsAsFormattedInputDoes) {
  const TReadCase cases[] = {{"3", true, 3, 1},
                             {" -0.5e1x", true, -5, 7},
                             {"+.25", true, 0.25, 4},
                             {"5.", true, 5, 2},
                             {"1.5.5", true, 1.5, 3},
                             {"1,5", true, 1, 1},
                             {"1e", true, 1, 2},
                             {"1e+ 2", true, 1, 3},
                             {"0x1.8p3", true, 12, 7},
                             {"-0X.8", true, -0.5, 5},
                             {"0x", false, 0, 2},
                             {"0xg", false, 0, 2},
                             {"10x", true, 10, 2},
                             {"1e999", true, kInfinity, 5},
                             {"inf", true, kInfinity, 3},
                             {"-INFINITY9", true, -kInfinity, 9},
                             {"infix", false, 0, 4},
                             {"nax", false, 0, 2},
                             {".e5", false, 0, 1},
                             {"-", false, 0, 1},
                             {"--1", false, 0, 1},
                             {" x", false, 0, 1},
                             {"", false, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    TTextScanner scanner(c.text);
    double value = 99;
    EXPECT_EQ(scanner.ReadReal(value), c.read);
    EXPECT_EQ(value, c.read ? c.value : 99);
    EXPECT_EQ(scanner.Position(), c.position);
  }
  TTextScanner nan("NaN(1)");
  double value = 0;
  EXPECT_TRUE(nan.ReadReal(value));
  EXPECT_TRUE(std::isnan(value));
  EXPECT_EQ(nan.Position(), 3u);
}

#ifdef __GLIBC__
/// What "%lf" makes of a text: whether it reads, the bits of the value, the characters it takes.
bool ScanWithLibrary(std::string& text, double& value, long& position) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  const locale_t users = uselocale(plain);
  std::FILE* file = fmemopen(text.data(), text.size(), "r");
  const bool read = std::fscanf(file, "%lf", &value) == 1;
  uselocale(users);
  position = std::ftell(file);
  std::fclose(file);
  return read;
}

TEST(TTextScanner, AgreesWithTheLibraryOnRandomNumbers) {
  std::mt19937 random(7);
  const std::string alphabet = "0123456789012345678901234567890123456789..--+eExXpPaf ,\n";
  for (int round = 0; round < 200'000; ++round) {
    std::string text;
    for (std::size_t n = 1 + random() % 24; n > 0; --n)
      text += alphabet[random() % alphabet.size()];
    SCOPED_TRACE(text);
    double expected = 99, value = 99;
    long position = 0;
    const bool read = ScanWithLibrary(text, expected, position);
    TTextScanner scanner(text);
    ASSERT_EQ(scanner.ReadReal(value), read);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected));
    ASSERT_EQ(scanner.Position(), static_cast<std::size_t>(position));
  }
}
#endif

TEST(TTextScanner, ReadsNumbersOfAMillionDigits) {
  std::string text = "0." + std::string(1'000'000, '3') + " -" + std::string(1'000'000, '9') + " 5";
  TTextScanner scanner(text);
  double third = 0, end = 0;
  std::int32_t number = 0;
  ASSERT_TRUE(scanner.ReadReal(third));
  ASSERT_TRUE(scanner.ReadInt(number));
  ASSERT_TRUE(scanner.ReadReal(end));
  EXPECT_EQ(third, 1.0 / 3.0);
  EXPECT_EQ(number, std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(end, 5.0);
}

TEST(TTextScanner, CountsLinesFromOne) {
  const TTextScanner scanner("a\nb\r\n\nc");
  EXPECT_EQ(scanner.LineAt(0), 1u);
  EXPECT_EQ(scanner.LineAt(1), 1u);
  EXPECT_EQ(scanner.LineAt(2), 2u);
  EXPECT_EQ(scanner.LineAt(6), 4u);
}

TEST(SearchString, GoesForwardWrapsAroundAndNeverBacksUp) {
  const std::tuple<const char*, std::size_t, bool, std::size_t> cases[] = {
      {"[Nodes]", 0, true, 7},
      {"..[Nodes][Nodes]", 3, true, 16},  // forward first
      {"..[Nodes]..", 9, true, 9},        // from the top
      {"..[Nodes]..", 5, false, 5},       // given up after as many characters as there are
      {"..[Nodes]", 9, true, 9},          // from the end
      {"[Node", 2, false, 2},             // stays
      {"[[Nodes]", 0, false, 0},          // the second bracket fails, and is spent
      {"[[[Nodes]", 0, true, 9},          // the third begins anew
      {"[No[Nodes]", 0, false, 0},        //
      {"[No [Nodes]", 0, true, 11},       //
      {"des]....[No", 8, false, 8},       // end and top are no neighbours
      {"", 0, false, 0}};
  for (const auto& [text, from, found, position] : cases) {
    SCOPED_TRACE(text);
    TTextScanner scanner(text);
    scanner.SetPosition(from);
    EXPECT_EQ(SearchString(scanner, "[Nodes]"), found);
    EXPECT_EQ(scanner.Position(), position);
  }
}

TEST(SearchString, AsksOnLongTextsWhetherToGoOn) {
  const std::string text(64 << 20, '[');
  int asked = 0;
  TTextScanner scanner(text);
  EXPECT_FALSE(SearchString(scanner, "[Nodes]", [&] { return ++asked < 3; }));
  EXPECT_EQ(asked, 3);
  EXPECT_FALSE(SearchString(scanner, "[Nodes]"));
}

TEST(HasAngleData, WantsSevenNumbersOnTheLineThatEndsBehindSixCharacters) {
  const std::pair<const char*, bool> cases[] = {
      {"\n1 2 3 4 5 6 7\n", true},
      {"\r\n1 2 3 4 5 6 7\r\n", true},
      {"\n1 2 3 4\n5 6 7\n", false},
      {"\n1 2 3 4\n5 6 7 8 9 10 11\n", false},
      {"\n1 2 3 4 5 6 7", false},         // no line end before the end of the file
      {"\n1 2 3 4 5 6 x\n", false},       //
      {"    \n1 2 3 4 5 6 7\n", true},    // the first line ends within five characters
      {"     \n1 2 3 4 5 6 7\n", false},  // the first line ends with the sixth
      {"\n1\n2\n3 4 5 6 7\n", true},      // short lines count together
      {"\n1 2\n\n3 4 5 6 7\n", false},    // the sixth character ends the third line
      {"[F = 2]\n", false},
      {"", false}};
  for (const auto& [text, angles] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(HasAngleData(TTextScanner(text)), angles);
  }
}

}  // namespace
