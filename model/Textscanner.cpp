#include "model/Textscanner.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsSign(char c) { return c == '-' || c == '+'; }
constexpr char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// Value of a hexadecimal digit, or -1.
constexpr int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = Lower(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Takes the digits from `first` on into `number`, which wraps around beyond 19 of them, and
/// returns the position behind them.
inline const char* TakeDigits(const char* first, const char* end, std::uint64_t& number) {
  for (; first != end && IsDigit(*first); ++first) {
    number = number * 10 + static_cast<std::uint64_t>(*first - '0');
  }
  return first;
}

constexpr int kMostDigits = 15;
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::uint64_t kWholePowersOfTen[] = {1,      10,      100,      1000,     10000,
                                               100000, 1000000, 10000000, 100000000};

/// TakeDigits for up to eight digits at once, without a branch per digit: the eight bytes are taken
/// as one number, whose bytes are then added in pairs, the pairs in fours, the fours in eights.
inline const char* TakeEightDigits(const char* first, std::uint64_t& number) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, first, sizeof bytes);
  bytes ^= '0' * kEach;  // a digit becomes its value, anything else more than 9
  const std::uint64_t others = ((bytes + 0x76 * kEach) | bytes) & 0x80 * kEach;
  const int count = std::countr_zero(others) / 8;
  if (count == 0) return first;
  bytes <<= 64 - 8 * count;  // the first digit has the lowest address: zeros go before it
  bytes = bytes * 10 + (bytes >> 8);
  bytes = ((bytes & 0x000000FF000000FF) * 0x000F424000000064 +
           (bytes >> 16 & 0x000000FF000000FF) * 0x0000271000000001) >>
          32;
  number = number * kWholePowersOfTen[count] + bytes;
  return first + count;
}

/// Takes the digits behind a point.
inline const char* TakeFraction(const char* first, const char* end, std::uint64_t& number) {
  if (std::endian::native == std::endian::little && end - first >= 8) {
    first = TakeEightDigits(first, number);
  }
  return TakeDigits(first, end, number);
}

/// Reads the usual form without sign and exponent, "12.345" with at most 15 digits, whose digits
/// and power of ten are exact doubles, so that their quotient is rounded only once. Returns the
/// position behind it, or null if the number has another form.
inline const char* ReadShortDecimal(const char* first, const char* end, double& value) {
  static_assert(FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1, "doubles are rounded to double");
  std::uint64_t digits = 0;
  const char* behind = TakeDigits(first, end, digits);
  std::ptrdiff_t count = behind - first;
  std::ptrdiff_t fraction = 0;
  if (behind != end && *behind == '.') {
    const char* const point = behind;
    behind = TakeFraction(point + 1, end, digits);
    fraction = behind - point - 1;
    count += fraction;
  }
  if (count == 0 || count > kMostDigits) return nullptr;
  // An "e" without digits and the "x" of "0x" belong to the number for formatted input.
  if (behind != end && (Lower(*behind) == 'e' || Lower(*behind) == 'x')) return nullptr;
  value = static_cast<double>(digits) / kPowersOfTen[fraction];
  return behind;
}

/// How much of `word` begins `text`, in any case.
std::size_t CommonPrefix(std::string_view text, std::string_view word) {
  std::size_t n = 0;
  while (n < word.size() && n < text.size() && Lower(text[n]) == word[n]) ++n;
  return n;
}

/// Length of what formatted input takes as a number without sign and words: digits with at most
/// one point, and an exponent whose digits may be missing.
std::size_t NumberLength(std::string_view text, bool hex) {
  const char exponentLetter = hex ? 'p' : 'e';
  std::size_t n = hex ? 2 : 0;
  bool digits = false, point = false, exponent = false;
  for (; n < text.size(); ++n) {
    const char c = text[n];
    if (IsDigit(c) || (hex && !exponent && HexDigit(c) >= 0)) {
      digits = true;
    } else if (digits && !exponent && Lower(c) == exponentLetter) {
      exponent = point = true;
    } else if (c == '.' && !point) {
      point = true;
    } else if (!(exponent && IsSign(c) && Lower(text[n - 1]) == exponentLetter)) {
      break;
    }
  }
  return n;
}

/// Decimal exponent digits behind an optional sign, limited far outside the range of a double.
long ExponentValue(std::string_view text) {
  const bool negative = !text.empty() && text[0] == '-';
  long value = 0;
  for (const char c : text.substr(!text.empty() && IsSign(text[0]) ? 1 : 0)) {
    value = std::min(value * 10 + (c - '0'), 100'000'000'000L);
  }
  return negative ? -value : value;
}

/// Value of a hexadecimal number behind its "0x". What lies beyond 60 bits only decides the
/// rounding, so one bit stands for all of it.
double HexValue(std::string_view text) {
  std::uint64_t mantissa = 0;
  long exponent = 0;
  bool point = false;
  std::size_t i = 0;
  for (; i < text.size() && Lower(text[i]) != 'p'; ++i) {
    if (text[i] == '.') {
      point = true;
      continue;
    }
    const auto digit = static_cast<std::uint64_t>(HexDigit(text[i]));
    if (mantissa >> 59) {
      mantissa |= digit != 0;
      exponent += point ? 0 : 4;
    } else {
      mantissa = mantissa << 4 | digit;
      exponent -= point ? 4 : 0;
    }
  }
  if (i < text.size()) exponent += ExponentValue(text.substr(i + 1));
  const long kLimit = 1'000'000;
  return std::ldexp(static_cast<double>(mantissa),
                    static_cast<int>(std::clamp(exponent, -kLimit, kLimit)));
}

}  // namespace

void TTextScanner::SkipWhiteSpace() {
  while (position_ < text_.size() && IsSpace(text_[position_])) ++position_;
}

bool TTextScanner::ReadInt(std::int32_t& value, bool* outOfRange) {
  SkipWhiteSpace();
  bool negative = false;
  if (!AtEnd() && IsSign(text_[position_])) negative = text_[position_++] == '-';
  if (AtEnd() || !IsDigit(text_[position_])) return false;

  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  std::int64_t magnitude = 0;
  for (; position_ < text_.size() && IsDigit(text_[position_]); ++position_) {
    if (magnitude <= kLargest + 1) magnitude = magnitude * 10 + (text_[position_] - '0');
  }
  const std::int64_t bound = negative ? kLargest + 1 : kLargest;
  if (magnitude > bound && outOfRange) *outOfRange = true;
  magnitude = std::min(magnitude, bound);
  value = static_cast<std::int32_t>(negative ? -magnitude : magnitude);
  return true;
}

bool TTextScanner::ReadReal(double& value) {
  SkipWhiteSpace();
  const char* const end = text_.data() + text_.size();
  const char* first = text_.data() + position_;
  const bool negative = first != end && *first == '-';
  first += first != end && IsSign(*first);
  double magnitude = 0.0;
  const char* const behind = ReadShortDecimal(first, end, magnitude);
  if (!behind) return ReadAnyReal(value);
  // A factor instead of a branch: signs come at random, and the processor guesses half of them
  // wrong.
  constexpr double kSigns[] = {1.0, -1.0};
  value = magnitude * kSigns[negative];
  position_ = static_cast<std::size_t>(behind - text_.data());
  return true;
}

/// All forms: words, hexadecimal numbers, numbers of any length, numbers cut short.
bool TTextScanner::ReadAnyReal(double& value) {
  std::string_view rest = text_.substr(std::min(position_, text_.size()));
  const bool negative = !rest.empty() && rest[0] == '-';
  const std::size_t sign = !rest.empty() && IsSign(rest[0]) ? 1 : 0;
  rest.remove_prefix(sign);
  position_ += sign;

  double magnitude = 0.0;
  bool valid = false;
  std::size_t taken = 0;
  if (const std::size_t word = CommonPrefix(rest, "infinity"); word > 0) {
    taken = word;
    valid = word == 3 || word == 8;
    magnitude = std::numeric_limits<double>::infinity();
  } else if (const std::size_t nan = CommonPrefix(rest, "nan"); nan > 0) {
    taken = nan;
    valid = nan == 3;
    magnitude = std::numeric_limits<double>::quiet_NaN();
  } else if (CommonPrefix(rest, "0x") == 2) {
    taken = NumberLength(rest, true);
    valid = taken > 2;
    if (valid) magnitude = HexValue(rest.substr(2, taken - 2));
  } else {
    taken = NumberLength(rest, false);
    valid = fast_float::from_chars(rest.data(), rest.data() + taken, magnitude).ec == std::errc();
  }
  position_ += taken;
  if (valid) value = negative ? -magnitude : magnitude;
  return valid;
}

bool TTextScanner::AtDecimalComma() const {
  return position_ + 1 < text_.size() && text_[position_] == ',' && IsDigit(text_[position_ + 1]);
}

std::size_t TTextScanner::LineAt(std::size_t position) const {
  const auto before = text_.substr(0, position);
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

namespace {

/// A search that holds nothing back: what it has matched so far is all it remembers.
class TForwardSearch {
 public:
  explicit TForwardSearch(std::string_view wanted) : wanted_(wanted) {}

  /// Goes on in `text` from `from` to `to`. Returns the position behind the match, or npos.
  std::size_t Run(std::string_view text, std::size_t from, std::size_t to) {
    std::size_t i = from;
    while (i < to) {
      if (matched_ == 0) {
        const void* found = std::memchr(text.data() + i, wanted_[0], to - i);
        if (!found) break;
        i = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
      }
      matched_ = text[i] == wanted_[matched_] ? matched_ + 1 : 0;
      ++i;
      if (matched_ == wanted_.size()) return i;
    }
    return std::string_view::npos;
  }

 private:
  std::string_view wanted_;
  std::size_t matched_ = 0;
};

}  // namespace

bool SearchString(TTextScanner& scanner, std::string_view text, const std::function<bool()>& goOn) {
  if (text.empty()) return true;
  constexpr std::size_t kPiece = std::size_t{1} << 23;
  const std::string_view all = scanner.Text();
  const std::size_t start = std::min(scanner.Position(), all.size());
  const std::size_t ranges[2][2] = {{start, all.size()}, {0, start}};
  for (const auto& [from, to] : ranges) {
    TForwardSearch search(text);
    for (std::size_t piece = from; piece < to; piece += kPiece) {
      const std::size_t behind = search.Run(all, piece, std::min(to, piece + kPiece));
      if (behind != std::string_view::npos) {
        scanner.SetPosition(behind);
        return true;
      }
      if (goOn && !goOn()) return false;
    }
  }
  return false;
}

bool HasAngleData(const TTextScanner& scanner) {
  constexpr std::size_t kAtLeast = 6;
  TTextScanner record = scanner;
  std::int32_t id = 0;
  if (!record.ReadInt(id)) return false;
  for (int i = 0; i < 6; ++i) {
    double value = 0.0;
    if (!record.ReadReal(value)) return false;
  }
  // The line that counts ends with the first line feed at or behind its sixth character; the
  // numbers must lie before that line feed, and it must exist.
  const std::string_view numbers =
      scanner.Text().substr(scanner.Position(), record.Position() - scanner.Position());
  return numbers.find('\n', kAtLeast - 1) == std::string_view::npos &&
         scanner.LastLineFeed() != std::string_view::npos &&
         scanner.LastLineFeed() >= record.Position();
}
