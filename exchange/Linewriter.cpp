#include "exchange/Linewriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

using TBuffer = std::array<char, 64>;

std::string_view Scientific(TBuffer& buffer, double value, int decimals) {
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::scientific, decimals)
                       .ptr;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  if (const std::size_t letter = text.find('e'); letter != text.npos) buffer[letter] = 'E';
  return text;
}

/// The same with the shortest form of the exponent: "1.5E-6".
std::string_view ShortScientific(TBuffer& buffer, double value, int decimals) {
  const std::string_view text = Scientific(buffer, value, decimals);
  const std::size_t letter = text.find('E');
  if (letter == text.npos) return text;
  std::size_t to = letter + 1;
  std::size_t from = letter + 2;
  if (text[letter + 1] == '-') buffer[to++] = '-';
  while (from + 1 < text.size() && buffer[from] == '0') ++from;
  while (from < text.size()) buffer[to++] = buffer[from++];
  return {buffer.data(), to};
}

}  // namespace

void TLineWriter::RightAligned(std::string_view text, int width) {
  const auto columns = static_cast<std::size_t>(width);
  if (text.size() < columns) text_.append(columns - text.size(), ' ');
  text_ += text;
}

void TLineWriter::Int(std::int64_t value, int width) {
  TBuffer buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  RightAligned({buffer.data(), static_cast<std::size_t>(end - buffer.data())}, width);
}

void TLineWriter::Exponent(double value, int width, int decimals) {
  TBuffer buffer;
  RightAligned(Scientific(buffer, value, decimals), width);
}

void TLineWriter::Packed(double value) {
  constexpr int kWidth = 13;
  if (value == 0.0) return RightAligned("0.00000E+00", kWidth);
  // Decimals and the width that they may take; the last is there for every exponent.
  constexpr std::array<std::array<std::size_t, 2>, 4> kForms = {
      {{7, 12}, {6, 12}, {6, 13}, {5, 13}}};
  TBuffer buffer;
  std::string_view text;
  for (const auto& [decimals, width] : kForms) {
    text = ShortScientific(buffer, value, static_cast<int>(decimals));
    if (text.size() <= width) break;
  }
  RightAligned(text, kWidth);
}

void TLineWriter::Shortest(double value) {
  TBuffer buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  text_.append(buffer.data(), end);
}

TCoordinates::TCoordinates(double centre, double reach) : centre_(centre), scale_(0.0) {
  const double largest = std::abs(centre) + reach;
  if (centre == 0.0 || !(largest > 0.0) || !std::isfinite(largest)) return;
  constexpr int kDigits = 15;
  constexpr int kMostExact = 22;  // larger powers of ten are no exact doubles
  const int decimals = kDigits - static_cast<int>(std::ceil(std::log10(largest)));
  if (decimals >= 0 && decimals <= kMostExact) scale_ = std::pow(10.0, decimals);
}

double TCoordinates::Of(double position) const {
  const double value = position + centre_;
  return scale_ == 0.0 ? value : std::round(value * scale_) / scale_;
}
