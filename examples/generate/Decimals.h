#pragma once

#include <cstddef>
#include <string>

/// Appends a number with a fixed count of decimals, right-aligned in `width` characters or behind
/// one space: '.' in any locale, no "-0.000".
void AppendReal(std::string& text, double value, int decimals, std::size_t width);
