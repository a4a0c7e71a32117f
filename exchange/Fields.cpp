#include "exchange/Fields.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\0'; }
constexpr bool IsSign(char c) { return c == '-' || c == '+'; }

constexpr bool IsExponent(char c) { return c == 'E' || c == 'e' || c == 'D' || c == 'd'; }

/// Whether a "-" or "+" at `at` begins a number that touches the one before it: no letter of an
/// exponent stands there.
bool BeginsNumber(std::string_view text, std::size_t at) {
  if (!IsSign(text[at]) || at == 0) return false;
  return !IsExponent(text[at - 1]);
}

/// A real in a form that the plain reader does not take: with D, or with an exponent without
/// letter.
bool ToOldReal(std::string_view text, double& value) {
  std::array<char, 80> plain;
  std::size_t size = 0;
  bool exponent = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (size + 2 > plain.size()) return false;
    const char c = text[i];
    if (c == 'D' || c == 'd') {
      plain[size++] = 'E';
      exponent = true;
      continue;
    }
    if (IsSign(c) && i > 0 && !exponent && BeginsNumber(text, i)) {
      plain[size++] = 'E';
      exponent = true;
    }
    plain[size++] = c;
  }
  const char* const end = plain.data() + size;
  const auto [behind, error] = fast_float::from_chars(plain.data(), end, value);
  return behind == end && (error == std::errc() || error == std::errc::result_out_of_range);
}

/// Blocks whose counts fit a byte are counted many characters at once.
std::size_t CountOf(char wanted, std::string_view text) {
  constexpr std::size_t kBlock = 255;
  std::size_t count = 0;
  while (!text.empty()) {
    const std::string_view block = text.substr(0, kBlock);
    std::uint8_t found = 0;
    for (const char c : block) found = static_cast<std::uint8_t>(found + (c == wanted));
    count += found;
    text.remove_prefix(block.size());
  }
  return count;
}

/// Cuts the next number off a text whose numbers stand between blanks; reals may touch.
std::string_view NextToken(std::string_view& text, bool real) {
  std::size_t begin = 0;
  while (begin < text.size() && IsBlank(text[begin])) ++begin;
  std::size_t end = begin;
  bool exponent = false;
  while (end < text.size() && !IsBlank(text[end])) {
    // "1.0-103" is one number, "1.0E+00-1.0E+00" are two.
    if (end > begin && (!real || exponent) && BeginsNumber(text, end)) break;
    exponent |= IsExponent(text[end]);
    ++end;
  }
  const std::string_view token = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return token;
}

/// A number without sign that ends the field, as nearly all do.
bool ToPlainInt(std::string_view field, std::int32_t& value) {
  constexpr std::size_t kMostDigits = 9;
  if (field.empty() || field.size() > kMostDigits) return false;
  std::int32_t number = 0;
  for (const char c : field) {
    if (c < '0' || c > '9') return false;
    number = 10 * number + (c - '0');
  }
  value = number;
  return true;
}

/// Of the field without blanks in front.
bool ToNumber(std::string_view field, std::int32_t& value) {
  return ToPlainInt(field, value) || ToInt(field, value);
}
bool ToNumber(std::string_view field, double& value) { return ToReal(field, value); }

/// Reads fields of one width off a line. `blanks` counts those that may turn out to be the missing
/// end of the line. False if a field holds something else than one number.
template <class T>
bool TakeColumns(std::string_view& line, int fields, int width, T* values, int& count,
                 int& blanks) {
  for (int i = 0; i < fields && !line.empty(); ++i) {
    std::string_view field = line.substr(0, static_cast<std::size_t>(width));
    line.remove_prefix(field.size());
    while (!field.empty() && IsBlank(field.front())) field.remove_prefix(1);
    if (field.empty()) {
      values[i] = T();
      ++blanks;
      continue;
    }
    if (!ToNumber(field, values[i])) return false;
    count += blanks + 1;
    blanks = 0;
  }
  return true;
}

/// By the columns; -1 if one of them holds something else than one number.
int ByColumns(std::string_view line, const TColumns& columns, std::int32_t* ints, double* reals) {
  int count = 0;
  int blanks = 0;
  const bool good = TakeColumns(line, columns.Ints, columns.IntWidth, ints, count, blanks) &&
                    TakeColumns(line, columns.Reals, columns.RealWidth, reals, count, blanks);
  return good ? count : -1;
}

int ByBlanks(std::string_view line, const TColumns& columns, std::int32_t* ints, double* reals) {
  int count = 0;
  for (; count < columns.Ints + columns.Reals; ++count) {
    const bool isInt = count < columns.Ints;
    const std::string_view token = NextToken(line, !isInt);
    if (!(isInt ? ToInt(token, ints[count]) : ToReal(token, reals[count - columns.Ints]))) break;
  }
  return count;
}

/// Whether the line has more numbers than its columns hold, so that the columns have cut some.
bool GoesOn(std::string_view line, const TColumns& columns) {
  const int columnCount = columns.Ints * columns.IntWidth + columns.Reals * columns.RealWidth;
  const auto width = static_cast<std::size_t>(columnCount);
  if (line.size() <= width) return false;
  const char last = line[width - 1];
  const char next = line[width];
  return !IsBlank(last) && !IsBlank(next) && !IsSign(next);
}

}  // namespace

TLineScanner::TLineScanner(std::string_view text) : text_(text), end_('\n') {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) behind_ = kByteOrderMark.size();
  const std::size_t end = text.find_first_of("\r\n");
  const bool loneReturn = end != text.npos && text[end] == '\r' && text.substr(end + 1, 1) != "\n";
  // Returns in front of a line feed, however many, are the end of one line.
  if (loneReturn && text.substr(end).find_first_not_of('\r') != text.npos &&
      text[text.find_first_not_of('\r', end)] != '\n') {
    end_ = '\r';
  }
}

bool TLineScanner::Next() {
  if (behind_ >= text_.size()) return false;
  begin_ = behind_;
  const void* const found = std::memchr(text_.data() + begin_, end_, text_.size() - begin_);
  const std::size_t end =
      found ? static_cast<std::size_t>(static_cast<const char*>(found) - text_.data())
            : text_.size();
  behind_ = std::min(end + 1, text_.size());
  line_ = text_.substr(begin_, end - begin_);
  while (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  ++number_;
  return true;
}

void TLineScanner::SkipTo(std::size_t position) {
  const std::size_t to = std::clamp(position, behind_, text_.size());
  number_ += CountOf(end_, text_.substr(behind_, to - behind_));
  behind_ = to;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool ToInt(std::string_view field, std::int32_t& value) {
  field = Trimmed(field);
  if (field.size() > 1 && field[0] == '+' && !IsSign(field[1])) field.remove_prefix(1);
  const char* const end = field.data() + field.size();
  std::int32_t number = 0;
  const auto [behind, error] = std::from_chars(field.data(), end, number);
  if (field.empty() || behind != end || error != std::errc()) return false;
  value = number;
  return true;
}

bool ToReal(std::string_view field, double& value) {
  const auto isWhole = [&] {
    const char* const end = field.data() + field.size();
    const auto [behind, error] = fast_float::from_chars(field.data(), end, value);
    return behind == end && (error == std::errc() || error == std::errc::result_out_of_range);
  };
  if (isWhole()) return true;
  field = Trimmed(field);
  if (field.size() > 1 && field[0] == '+' && !IsSign(field[1])) field.remove_prefix(1);
  return !field.empty() && (isWhole() || ToOldReal(field, value));
}

int ReadColumns(std::string_view line, const TColumns& columns, std::int32_t* ints, double* reals) {
  const int count = GoesOn(line, columns) ? -1 : ByColumns(line, columns, ints, reals);
  return count >= 0 ? count : ByBlanks(line, columns, ints, reals);
}
