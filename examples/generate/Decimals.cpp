#include "examples/generate/Decimals.h"

#include <charconv>

void AppendReal(std::string& text, double value, int decimals, std::size_t width) {
  char buffer[64];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals).ptr;
  std::string digits(buffer, end);
  if (digits[0] == '-' && digits.find_first_not_of("-0.") == std::string::npos) digits.erase(0, 1);
  text.append(digits.size() < width ? width - digits.size() : 1, ' ');
  text += digits;
}
