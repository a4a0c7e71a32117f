#include <cmath>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "components/sources/Numberscanner.h"

namespace {

using TResult = TNumberScanner::TResult;

struct TFound {
  std::vector<double> values;
  std::size_t bad = 0;

  bool operator==(const TFound&) const = default;
};

/// What is in a text that comes in pieces.
TFound Scan(std::string_view text, std::size_t size) {
  TFound found;
  TNumberScanner scanner;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, size);
    text.remove_prefix(piece.size());
    std::size_t position = 0;
    for (;;) {
      const std::size_t before = position;
      double value = 0.0;
      const TResult result = scanner.ScanValue(piece, position, value);
      if (position > piece.size() || position < before) std::abort();
      if (result == TResult::End) break;
      if (position == before) std::abort();
      if (result == TResult::Bad && scanner.BadText().empty()) std::abort();
      if (result == TResult::Bad) ++found.bad;
      if (result == TResult::Number) found.values.push_back(value);
    }
    if (position != piece.size()) std::abort();
  }
  return found;
}

}  // namespace

/// Any bytes as a text of numbers: the same numbers whole and in pieces, all of them finite.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  const TFound whole = Scan(text, size);
  if (Scan(text, 1 + bytes[0]) != whole) std::abort();
  for (const double value : whole.values) {
    if (!std::isfinite(value)) std::abort();
  }
  return 0;
}
