#include "components/sources/Numberscanner.h"

#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using TResult = TNumberScanner::TResult;

using TBad = std::function<void(const TNumberScanner&, std::size_t position)>;

/// The numbers of a text that comes in pieces of `size` bytes. Calls `bad` behind each word that is
/// none.
std::vector<double> Scan(
    const std::string& text, std::size_t size = std::string::npos,
    const TBad& bad = [](auto&, auto) {}) {
  TNumberScanner scanner;
  std::vector<double> values;
  for (std::size_t start = 0; start < text.size(); start += std::min(size, text.size())) {
    const std::string_view piece = std::string_view(text).substr(start, size);
    std::size_t position = 0;
    for (;;) {
      double value = 0.0;
      const TResult result = scanner.ScanValue(piece, position, value);
      if (result == TResult::End) break;
      if (result == TResult::Number) values.push_back(value);
      if (result == TResult::Bad) bad(scanner, start + position);
    }
    EXPECT_EQ(position, piece.size());
  }
  return values;
}

TEST(TNumberScanner, TakesNumbersBetweenWhiteSpaceAndSkipsTheRest) {
  const std::pair<const char*, std::vector<double>> cases[] = {
      {"1 2 3\n", {1, 2, 3}},
      {"7", {}},  // nothing ends it
      {"1.5e3 1.5E-3 +2 -.5 5. +.25E+1 ", {1500, 0.0015, 2, -0.5, 5, 2.5}},
      {"1.2.3 ", {1.23}},
      {"--5 +-5 -+5 5-3 5+ 1E--2 ", {-5, 5, -5, 53, 5, 0.01}},
      {"e5 E 1e5e2 ", {5, 2}},
      {"7<tag> 8\n", {8}},
      {"<tag> 7 ", {7}},
      {"<a b=\"1 2\"\n3>4\n5<never 6\n7", {4}},
      {"Time Value\n1 2\n", {1, 2}},
      {"1,2,3\n3;4\n5\n", {5}},
      {"inf nan 0x10\n-inf\n1\n", {1}},
      {"\xff 1\n2\n", {2}},
      {"-0 0.0 -0e5 ", {0, 0, 0}},
      {"9007199254740993 0.1 2.2250738585072011e-308 4.9e-324 1e-400 ",
       {9007199254740992.0, 0.1, 2.2250738585072011e-308, 4.9e-324, 0}},
  };
  for (const auto& [text, values] : cases) {
    SCOPED_TRACE(text);
    for (const std::size_t size : {1, 2, 3, 5, 1000}) EXPECT_EQ(Scan(text, size), values);
  }
  EXPECT_TRUE(std::signbit(Scan("-0 ")[0]));
  EXPECT_THAT(Scan(std::string("1\0 2\n3\n", 7)), ElementsAre(3));
}

TEST(TNumberScanner, ReportsWordsThatAreNoNumber) {
  for (const std::string word :
       {"-", ".", "-.", "1E", "1E+", "1E-", ".E5", "-E5", "1E5.3", "1E.", "1E400", "-1E400",
        "1E99999999999999999999", "1E55555555555555555555555555555555555555555555555555"}) {
    for (const std::size_t size : {std::size_t{1}, std::string::npos}) {
      SCOPED_TRACE(word);
      int bad = 0;
      const auto check = [&](const TNumberScanner& scanner, std::size_t position) {
        ++bad;
        EXPECT_EQ(scanner.BadText(), word.size() > 40 ? word.substr(0, 40) + "..." : word);
        EXPECT_EQ(scanner.BadLength(), static_cast<std::int64_t>(word.size()) + 1);
        EXPECT_EQ(position, word.size() + 3);
      };
      EXPECT_THAT(Scan("1 " + word + "\n2 ", size, check), ElementsAre(1, 2));
      EXPECT_EQ(bad, 1);
    }
  }
}

TEST(TNumberScanner, RoundsNumbersOfAnyLengthAsTheyAreWritten) {
  const std::string million(1'000'000, '0');
  const std::string half = "9007199254740993";  // lies in the middle of two doubles
  const std::pair<std::string, double> cases[] = {
      {"0." + std::string(1'000'000, '3'), 1.0 / 3.0},
      {million + "7", 7.0},
      {"0." + million + "5E1000001", 5.0},
      {"0." + million + "5E1000000", 0.5},
      {"25" + million + "E-1000001", 2.5},
      {half + "." + million + "1", 9007199254740994.0},
      {half + "." + million, 9007199254740992.0},
      {half + million + "1E-1000001", 9007199254740994.0},
      {"1E" + million + "2", 100.0},
      {"1E-" + std::string(1'000'000, '9'), 0.0},
      {std::string(1'000'000, '-') + "3", -3.0},
  };
  for (const auto& [text, value] : cases) {
    SCOPED_TRACE(text.substr(0, 30));
    for (const std::size_t size : {std::string::npos, std::size_t{65536}}) {
      EXPECT_THAT(Scan(text + ' ', size), ElementsAre(value));
    }
  }
}

/// The rules word for word, for a text as a whole.
std::vector<double> ScanByTheBook(const std::string& text) {
  std::vector<double> values;
  std::string token;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool hasE = token.find('E') != std::string::npos;
    if (c >= '0' && c <= '9') {
      token += c;
    } else if (c == '.') {
      if (token.find('.') == std::string::npos) token += c;
    } else if (c == 'E' || c == 'e') {
      token = hasE || token.empty() ? "" : token + 'E';
    } else if (c == '+' || c == '-') {
      if (token.empty() || token.back() == 'E') token += c;
    } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      char* end = nullptr;
      const double value = ReferenceNumber(token.c_str(), &end);
      if (!token.empty() && *end == '\0' && std::isfinite(value)) values.push_back(value);
      token.clear();
    } else {
      token.clear();
      i = std::min(text.find(c == '<' ? '>' : '\n', i), text.size() - 1);
    }
  }
  return values;
}

TEST(TNumberScanner, KeepsToTheRulesInRandomTextsCutAnywhere) {
  std::mt19937 random(12);
  const std::string alphabet = "0123456789012345..eE+-   \n\n\t\r<>x,";
  for (int round = 0; round < 20'000; ++round) {
    std::string text(random() % 60, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    const std::vector<double> expected = ScanByTheBook(text);
    for (const std::size_t size : {std::string::npos, 1 + random() % 8}) {
      ASSERT_EQ(Scan(text, size), expected) << text;
    }
  }
}

TEST(TNumberScanner, LosesANumberAtALinesEndButNotATag) {
  TNumberScanner scanner;
  const std::tuple<const char*, TResult, double> pieces[] = {
      {"12", TResult::End, 0},    {"3 ", TResult::Number, 3}, {"head", TResult::End, 0},
      {"4 ", TResult::Number, 4}, {"<a\n", TResult::End, 0},  {"5 > 6 ", TResult::Number, 6}};
  double value = 0.0;
  for (const auto& [piece, result, expectedValue] : pieces) {
    std::size_t position = 0;
    EXPECT_EQ(scanner.ScanValue(piece, position, value), result) << piece;
    if (result == TResult::Number) {
      EXPECT_EQ(value, expectedValue);
    }
    if (result == TResult::End) scanner.EndLine();
  }
}

}  // namespace
