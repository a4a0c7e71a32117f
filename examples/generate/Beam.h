#pragma once

#include <vector>

/// Natural shape of a uniform Euler-Bernoulli beam over its length, xi from 0 to 1, and its
/// derivatives with respect to xi. The mean square is 1, and the shapes of one beam are orthogonal.
/// After Blevins, Formulas for Natural Frequency and Mode Shape,
/// table 8-1; Meirovitch, Fundamentals of Vibrations, chapter 8.
class TBeamShape {
 public:
  /// Clamped at 0, free at 1; n = 1, 2, ... The tip moves by 2 (n odd) or -2 (n even).
  static TBeamShape ClampedFree(int n);
  /// Free at both ends: n = 0 is the translation, n = 1 the rotation, n = 2 the first bending.
  static TBeamShape FreeFree(int n);

  double Value(double xi) const;
  double Slope(double xi) const;
  double Curvature(double xi) const;

  /// Root of the frequency equation: omega = Beta^2 sqrt(E I / (m L^4)). 0 for a rigid shape.
  double Beta() const { return beta_; }

 private:
  /// cosh(beta xi) + sign cos(beta xi) - sigma (sinh(beta xi) + sign sin(beta xi)).
  TBeamShape(double beta, double sign, double sigma) : beta_(beta), sign_(sign), sigma_(sigma) {}

  double beta_, sign_, sigma_;
  double offset_ = 0.0, tilt_ = 0.0;  ///< of a rigid shape: offset + tilt (2 xi - 1)
};

/// Natural frequency in Hz of a simply supported beam, shape sin(n pi xi): Blevins, table 8-1.
/// Stiffness E I in N m2, mass per length in kg/m, length in m.
double SimplySupportedFrequency(int n, double stiffness, double massPerLength, double length);
