#include "components/sources/macro/Macrofunctions.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "components/links/Random.h"

namespace Macrofunctions {

double RandomUniform(double a, double b) { return a + Random15() * ((b - a) / kRandom15Max); }

double RandomNormal(double a, double b) {
  double u1 = 0.0;
  while (u1 <= 0.0) u1 = static_cast<double>(Random15()) / kRandom15Max;
  const double u2 = static_cast<double>(Random15()) / kRandom15Max;
  const double deviate = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * std::numbers::pi * u2);
  return static_cast<float>(a + b * deviate);
}

}  // namespace Macrofunctions

std::span<const TMacroName> MacroNames() {
  using namespace Macrofunctions;
  static const TMacroName names[] = {
      {u"PI", 3.141592653589793, "3.14159..."},
      {u"E", 2.718281828459045, "2.71828..."},
      {u"SIN", Sine, "sine of a, in radians"},
      {u"COS", Cosine, "cosine of a, in radians"},
      {u"TAN", Tangent, "tangent of a, in radians"},
      {u"ABS", Absolute, "a without its sign"},
      {u"MAX", Maximum, "the larger of a and b"},
      {u"MIN", Minimum, "the smaller of a and b"},
      {u"RAND", RandomUniform, "random, uniform from a to b"},
      {u"RNDG", RandomNormal, "random, normal: mean a, deviation b"},
      {u"EQ", Equal, "1 if a = b, else 0"},
      {u"NEQ", NotEqual, "1 if a and b differ, else 0"},
      {u"GT", Greater, "1 if a > b, else 0"},
      {u"GOET", GreaterOrEqual, "1 if a >= b, else 0"},
      {u"LT", Less, "1 if a < b, else 0"},
      {u"LOET", LessOrEqual, "1 if a <= b, else 0"},
  };
  return names;
}

const TMacroName* FindMacroName(QStringView name) {
  const auto found = std::ranges::find(MacroNames(), name, &TMacroName::name);
  return found == MacroNames().end() ? nullptr : &*found;
}
