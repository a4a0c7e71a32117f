#pragma once

#include <QString>
#include <array>
#include <complex>
#include <cstdint>

// What a laboratory's file says of its numbers. The program draws without it; it is kept to be
// shown and to be written again.

/// The units of a file. A length of the file divided by Length is metres, and so on.
struct TUnits {
  int Code = 0;  ///< of universal files: 1 SI to 10; 0 if the file does not say
  QString Name;
  int TemperatureMode = 2;  ///< 1 absolute, 2 relative
  double Length = 1.0;
  double Force = 1.0;
  double Temperature = 1.0;
  double TemperatureOffset = 0.0;

  bool IsGiven() const { return Code != 0; }
};

/// By the numbers that universal files give them.
enum class TShapeKind : std::uint8_t {
  Unknown = 0,
  Static = 1,
  NormalMode = 2,
  ComplexMode = 3,  ///< complex eigenvalue of first order
  Transient = 4,
  Response = 5,  ///< frequency response
  Buckling = 6,
  ComplexModeSecondOrder = 7,
};

/// What is known of one data set beside its motions.
struct TShapeInfo {
  TShapeKind Kind = TShapeKind::Unknown;
  bool IsComplex = false;
  int Quantity =
      8;  ///< specific type of universal files: 8 displacement, 11 velocity, 12 acceleration
  int LoadCase = 0;
  int Mode = 0;                          ///< number of the mode or step from 1; 0 for none
  double Time = 0.0;                     ///< of a transient set, seconds
  double Damping = 0.0;                  ///< viscous, as a ratio of the critical
  double HystereticDamping = 0.0;        ///< loss factor
  double ModalMass = 0.0;                ///< in the units of the file
  std::complex<double> Eigenvalue = {};  ///< rad/s
  std::complex<double> ModalA = {};
  std::complex<double> ModalB = {};
  std::array<QString, 5> Lines = {};  ///< identification lines
};
