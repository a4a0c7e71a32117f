#pragma once

#include <QStringView>
#include <cmath>
#include <span>

#include "components/sources/macro/Macroitem.h"

/// The functions and operators of the macro language, each a plain function, so that two nodes
/// compute the same if they hold the same address. Any thread, but for RandomUniform and
/// RandomNormal, which draw from the generator of the C library.
namespace Macrofunctions {

inline double Negate(double a) { return -a; }
inline double Sine(double a) { return std::sin(a); }
inline double Cosine(double a) { return std::cos(a); }
inline double Tangent(double a) { return std::tan(a); }
inline double Absolute(double a) { return std::fabs(a); }

inline double Add(double a, double b) { return a + b; }
inline double Subtract(double a, double b) { return a - b; }
inline double Multiply(double a, double b) { return a * b; }
inline double Divide(double a, double b) { return a / b; }
inline double Power(double a, double b) { return std::pow(a, b); }
/// b unless a is greater: b too if one of them is not a number.
inline double Maximum(double a, double b) { return a > b ? a : b; }
/// b unless a is less.
inline double Minimum(double a, double b) { return a < b ? a : b; }
inline double Equal(double a, double b) { return a == b ? 1.0 : 0.0; }
inline double NotEqual(double a, double b) { return a != b ? 1.0 : 0.0; }
inline double Greater(double a, double b) { return a > b ? 1.0 : 0.0; }
inline double Less(double a, double b) { return a < b ? 1.0 : 0.0; }
inline double GreaterOrEqual(double a, double b) { return a >= b ? 1.0 : 0.0; }
inline double LessOrEqual(double a, double b) { return a <= b ? 1.0 : 0.0; }

/// Uniform from a to b, both included, in 32768 steps.
double RandomUniform(double a, double b);
/// A normal deviate with mean a and standard deviation b (Box-Muller), in single precision.
double RandomNormal(double a, double b);

}  // namespace Macrofunctions

/// A name of the language with what it stands for: a constant, or a function of one or two
/// arguments.
struct TMacroName {
  QStringView name;
  TMacroItem::TData data;
  /// For people: "larger of a and b".
  const char* meaning;
};

std::span<const TMacroName> MacroNames();
/// Null for a name that the language does not have. Case counts.
const TMacroName* FindMacroName(QStringView name);
