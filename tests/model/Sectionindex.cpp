#include "model/Sectionindex.h"

#include "model/Textscanner.h"
#include "tests/support/Testing.h"

namespace {

std::string Names(std::string_view text) {
  std::string names;
  for (const std::string_view name : ReadSectionNames(text, 100))
    names.append("<").append(name).append(">");
  return names;
}

TEST(ReadSectionNames, TakesWhatStandsBetweenBrackets) {
  EXPECT_EQ(Names("[F = 2.5]\n1 2 3 4\n[F = 7]"), "<F = 2.5><F = 7>");
  EXPECT_EQ(Names("a]b[ c ]d]e[f"), "< c >");
  EXPECT_EQ(Names("[[x][]"), "<[x><>");
  EXPECT_EQ(Names("[two\nlines]"), "<two\nlines>");
  EXPECT_EQ(Names(""), "");
  EXPECT_EQ(ReadSectionNames("[a][b][c]", 2).size(), 2u);
}

/// Each section's records must begin where a search from the top for its header ends.
void ExpectAgreementWithSearch(const std::string& text) {
  SCOPED_TRACE(text);
  for (const TSection& section : ReadSectionIndex(text, 1000)) {
    TTextScanner scanner(text);
    ASSERT_TRUE(SearchString(scanner, std::string("[").append(section.Name).append("]")));
    ASSERT_EQ(section.Records, scanner.Position()) << section.Name;
  }
}

TEST(ReadSectionIndex, AgreesWithASearchFromTheTopOnRandomBrackets) {
  std::mt19937 random(11);
  const std::string alphabet = "[[[]]ab";
  for (int round = 0; round < 30'000; ++round) {
    std::string text;
    for (std::size_t n = random() % 40; n > 0; --n) text += alphabet[random() % alphabet.size()];
    ExpectAgreementWithSearch(text);
    if (HasFailure()) return;
  }
}

TEST(ReadSectionIndex, TakesLinearTimeOnBrackets) {
  // Names that are ends of one another, in regions that never hold the whole of any.
  std::string nested;
  for (std::size_t i = 1; i < 2000; ++i) nested.append(i, '[').append("]");
  for (int i = 0; i < 4000; ++i)
    nested.append("[").append(std::to_string(i)).append(8000, '[').append("]");
  std::string empty;
  for (int i = 0; i < 16 << 20; ++i) empty += "[]";
  for (const std::string& text : {std::string(64 << 20, '[') + "]", nested, empty}) {
    EXPECT_FALSE(ReadSectionIndex(text, 100'000).empty());
  }
}

}  // namespace
