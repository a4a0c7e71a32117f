#include "model/Textscanner.h"

#include <locale.h>

#include <bit>
#include <cstdio>

#include "tests/support/Testing.h"

namespace {

/// The value, or "none", and where the scanner stands behind it.
std::string Described(bool isRead, double value, const TTextScanner& scanner) {
  const QString text = isRead ? QString::number(value, 'g', 10) : "none";
  return text.toStdString() + ' ' + std::to_string(scanner.Position());
}

TEST(TTextScanner, ReadsIntegersAsFormattedInputDoes) {
  const std::pair<const char*, const char*> cases[] = {
      {"42", "42 2"},
      {" \t\r\n\v\f-7 ", "-7 8"},
      {"+0012x", "12 5"},
      {"1.5", "1 1"},
      {"2147483647", "2147483647 10"},
      {"2147483648", "2147483647 10 cut"},
      {"-2147483648", "-2147483648 11"},
      {"-99999999999999999999999", "-2147483648 24 cut"},
      {"-x", "none 1"},
      {"  -", "none 3"},
      {"- 5", "none 1"},
      {" [Nodes]", "none 1"},
      {"", "none 0"}};
  for (const auto& [text, read] : cases) {
    TTextScanner scanner(text);
    std::int32_t value = 99;
    bool isCut = false;
    const bool isRead = scanner.ReadInt(value, &isCut);
    EXPECT_EQ(Described(isRead, value, scanner) + (isCut ? " cut" : ""), read) << text;
    EXPECT_TRUE(isRead || value == 99);
  }
}

TEST(TTextScanner, ReadsRealsAsFormattedInputDoes) {
  const std::pair<const char*, const char*> cases[] = {
      {"3", "3 1"},        {" -0.5e1x", "-5 7"}, {"+.25", "0.25 4"}, {"5.", "5 2"},
      {"1.5.5", "1.5 3"},  {"1,5", "1 1"},       {"1e", "1 2"},      {"1e+ 2", "1 3"},
      {"0x1.8p3", "12 7"}, {"-0X.8", "-0.5 5"},  {"0x", "none 2"},   {"0xg", "none 2"},
      {"10x", "10 2"},     {"1e999", "inf 5"},   {"inf", "inf 3"},   {"-INFINITY9", "-inf 9"},
      {"NaN(1)", "nan 3"}, {"infix", "none 4"},  {"nax", "none 2"},  {".e5", "none 1"},
      {"-", "none 1"},     {"--1", "none 1"},    {" x", "none 1"},   {"", "none 0"}};
  for (const auto& [text, read] : cases) {
    TTextScanner scanner(text);
    double value = 99;
    const bool isRead = scanner.ReadReal(value);
    EXPECT_EQ(Described(isRead, value, scanner), read) << text;
    EXPECT_TRUE(isRead || value == 99);
  }
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

TEST(TTextScanner, CountsLinesFromOneAndReadsNumbersOfAMillionDigits) {
  for (const auto& [position, line] : {std::pair(0u, 1u), {1u, 1u}, {2u, 2u}, {6u, 4u}}) {
    EXPECT_EQ(TTextScanner("a\nb\r\n\nc").LineAt(position), line) << position;
  }

  const std::string text =
      "0." + std::string(1'000'000, '3') + " -" + std::string(1'000'000, '9') + " 5";
  TTextScanner scanner(text);
  double third = 0, end = 0;
  std::int32_t number = 0;
  EXPECT_TRUE(scanner.ReadReal(third) && scanner.ReadInt(number) && scanner.ReadReal(end));
  EXPECT_EQ(std::tuple(third, number, end), std::tuple(1.0 / 3.0, INT_MIN, 5.0));
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
  const std::string text(64 << 20, '[');
  int asked = 0;
  TTextScanner scanner(text);
  EXPECT_FALSE(SearchString(scanner, "[Nodes]", [&] { return ++asked < 3; }));
  EXPECT_EQ(asked, 3) << "whether to go on";
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
    EXPECT_EQ(HasAngleData(TTextScanner(text)), angles) << text;
  }
}

}  // namespace
