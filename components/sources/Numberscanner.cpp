#include "components/sources/Numberscanner.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

/// Where a number is so far beyond what a double holds that no more digits bring it back.
constexpr std::int64_t kFarExponent = std::int64_t{1} << 60;

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

/// Reads a number in the form that nearly all have, with white space behind it: without anything to
/// be skipped. Returns the position behind that, or null for another form.
inline const char* ReadPlainNumber(const char* first, const char* end, double& value) {
  const char* digits = first;
  if (digits != end && (*digits == '-' || *digits == '+')) ++digits;
  // The conversion takes words such as "inf", too, and no "+".
  if (digits == end || !(IsDigit(*digits) || *digits == '.')) return nullptr;
  const char* const start = *first == '+' ? digits : first;
  const auto result = fast_float::from_chars(start, end, value);
  if (result.ec != std::errc() || result.ptr == end || !IsBlank(*result.ptr)) return nullptr;
  return std::isfinite(value) ? result.ptr + 1 : nullptr;
}

}  // namespace

// TNumberToken

void TNumberToken::Append(char c) {
  if (state_.length < static_cast<std::int64_t>(kText)) {
    text_[static_cast<std::size_t>(state_.length)] = c;
  }
  ++state_.length;
  state_.last = c;
}

void TNumberToken::AddDigit(char digit) {
  Append(digit);
  if (!state_.hasExponent) {
    AddMantissaDigit(digit);
  } else {
    state_.exponentDigit = true;
    state_.exponent = std::min(state_.exponent * 10 + (digit - '0'), kFarExponent / 16);
  }
}

void TNumberToken::AddMantissaDigit(char digit) {
  state_.digit = true;
  const bool leadingZero = digit == '0' && state_.count == 0;
  const bool kept = !leadingZero && state_.count < kDigits;
  if (kept) {
    digits_[state_.count++] = digit;
  } else if (digit != '0') {
    state_.more = true;
  }
  // A digit before the point that is left out makes the others worth more, one behind it that is
  // kept (or a zero before all others) makes them worth less.
  if (!state_.point && !kept && !leadingZero) ++state_.scale;
  if (state_.point && (kept || leadingZero)) --state_.scale;
}

void TNumberToken::AddPoint() {
  if (state_.point) return;
  Append('.');
  state_.point = true;
  state_.pointInExponent = state_.hasExponent;
}

bool TNumberToken::AddExponent() {
  if (state_.hasExponent || Empty()) return false;
  Append('E');
  state_.hasExponent = true;
  return true;
}

void TNumberToken::AddSign(char sign) {
  if (!Empty() && state_.last != 'E') return;
  (state_.hasExponent ? state_.negativeExponent : state_.negative) = sign == '-';
  Append(sign);
}

bool TNumberToken::Convert(double& value) const {
  const bool exponentComplete = !state_.hasExponent || state_.exponentDigit;
  if (!state_.digit || state_.pointInExponent || !exponentComplete) return false;
  std::array<char, kDigits + 32> text;
  char* behind = std::copy_n(digits_.begin(), state_.count, text.begin());
  *behind++ = state_.more ? '1' : '0';
  *behind++ = 'e';
  const std::int64_t written = state_.negativeExponent ? -state_.exponent : state_.exponent;
  constexpr std::int64_t kLimit = 99'999;
  const std::int64_t exponent = std::clamp(written + state_.scale - 1, -kLimit, kLimit);
  behind = std::to_chars(behind, text.data() + text.size(), exponent).ptr;
  double magnitude = 0.0;
  fast_float::from_chars(text.data(), behind, magnitude);
  if (!std::isfinite(magnitude)) return false;
  value = state_.negative ? -magnitude : magnitude;
  return true;
}

std::string TNumberToken::Text() const {
  const auto length = static_cast<std::size_t>(state_.length);
  std::string text(text_.data(), std::min(length, kText));
  if (length > kText) text += "...";
  return text;
}

// TNumberScanner

void TNumberScanner::DropToken() {
  token_.Clear();
  wordLength_ = 0;
}

void TNumberScanner::EndLine() {
  DropToken();
  bad_ = false;
  if (skip_ == TSkip::Line) skip_ = TSkip::None;
}

/// Goes behind the character that ends what is being skipped, or to the end.
const char* TNumberScanner::Skip(const char* first, const char* end) {
  const char last = skip_ == TSkip::Tag ? '>' : '\n';
  const void* found =
      first == end ? nullptr : std::memchr(first, last, static_cast<std::size_t>(end - first));
  if (!found) return end;
  skip_ = TSkip::None;
  return static_cast<const char*>(found) + 1;
}

void TNumberScanner::TakeCharacter(char c) {
  ++wordLength_;
  if (IsDigit(c)) {
    token_.AddDigit(c);
  } else if (c == '.') {
    token_.AddPoint();
  } else if (c == '+' || c == '-') {
    token_.AddSign(c);
  } else if (c == 'E' || c == 'e') {
    if (!token_.AddExponent()) DropToken();
  } else {
    DropToken();
    // The line feed that would end the skipping cannot be here: it is white space.
    skip_ = c == '<' ? TSkip::Tag : TSkip::Line;
  }
}

TNumberScanner::TResult TNumberScanner::EndWord(double& value) {
  bad_ = !token_.Convert(value);
  if (bad_) {
    ++wordLength_;
    return TResult::Bad;
  }
  DropToken();
  return TResult::Number;
}

TNumberScanner::TResult TNumberScanner::ScanValue(std::string_view piece, std::size_t& position,
                                                  double& value) {
  if (std::exchange(bad_, false)) DropToken();
  const char* const end = piece.data() + piece.size();
  const char* next = piece.data() + position;
  const auto stop = [&](TResult result) {
    position = static_cast<std::size_t>(next - piece.data());
    return result;
  };
  while (next != end) {
    if (skip_ != TSkip::None) {
      next = Skip(next, end);
    } else if (!token_.Empty() && IsBlank(*next)) {
      ++next;
      return stop(EndWord(value));
    } else if (token_.Empty() && IsBlank(*next)) {
      ++next;
    } else if (const char* behind = token_.Empty() ? ReadPlainNumber(next, end, value) : nullptr) {
      next = behind;
      return stop(TResult::Number);
    } else {
      do TakeCharacter(*next++);
      while (next != end && skip_ == TSkip::None && !IsBlank(*next));
    }
  }
  return stop(TResult::End);
}
