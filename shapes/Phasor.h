#pragma once

#include <cmath>
#include <complex>

/// One component of a motion, amplitude x cos(w + angle), as the complex number of which it is the
/// real part at phase 0. Without an angle it is the amplitude to the last bit, and real.
inline std::complex<double> Phasor(double amplitude, double angle) {
  if (angle == 0.0) return amplitude;
  return {amplitude * std::cos(angle), amplitude * std::sin(angle)};
}
