#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <vector>

/// A place and direction on a structure.
struct TDegreeOfFreedom {
  QString Entity;         ///< name of the point; may be empty
  std::int32_t Node = 0;  ///< 0 for none
  int Direction = 0;  ///< 1 to 3 along x to z, 4 to 6 about them, negative the other way; 0 scalar
};

/// What one axis of a function measures.
struct TFunctionAxis {
  int Quantity = 0;  ///< specific type of universal files: 18 frequency, 12 acceleration, ...
  int LengthExponent = 0;
  int ForceExponent = 0;
  int TemperatureExponent = 0;
  QString Label;
  QString Unit;
};

/// By the numbers that universal files give them.
enum class TFunctionKind : std::uint8_t {
  Unknown = 0,
  TimeResponse = 1,
  AutoSpectrum = 2,
  CrossSpectrum = 3,
  FrequencyResponse = 4,
  Transmissibility = 5,
  Coherence = 6,
  PowerSpectralDensity = 9,
  Spectrum = 12,
};

/// A function of time or frequency measured at one degree of freedom. Values have the precision of
/// the file: either Single or Double is filled, complex ones as pairs of real and imaginary part.
struct TMeasuredFunction {
  TFunctionKind Kind = TFunctionKind::Unknown;
  int KindNumber = 0;  ///< as the file gives it
  TDegreeOfFreedom Response;
  TDegreeOfFreedom Reference;
  std::int32_t LoadCase = 0;
  bool IsComplex = false;
  double First = 0.0;             ///< first abscissa of evenly spaced values
  double Step = 0.0;              ///< of evenly spaced values
  std::vector<double> Abscissas;  ///< one per value if they are not evenly spaced, else empty
  std::vector<float> Single;
  std::vector<double> Double;
  TFunctionAxis Abscissa;
  TFunctionAxis Ordinate;
  TFunctionAxis Denominator;
  std::array<QString, 5> Lines;  ///< identification lines

  std::size_t Count() const { return (Single.size() + Double.size()) / (IsComplex ? 2 : 1); }
};
