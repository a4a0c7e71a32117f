#pragma once

#include <optional>

#include "shapes/Components.h"

/// How far a shape is from a real one, whose components all move in phase or against each other.
/// Neither figure depends on a complex factor of the shape.
struct TComplexity {
  /// Modal phase collinearity, without a unit: ((l1 - l2) / (l1 + l2))^2 of the larger and the
  /// smaller eigenvalue of the matrix of the products of real and imaginary parts (R. S. Pappa,
  /// K. B. Elliott, A. Schenk, "Consistent-mode indicator for the eigensystem realization
  /// algorithm", Journal of Guidance, Control, and Dynamics 16(5), 1993). 1 for a real shape, 0 for
  /// one that rotates.
  double Mpc;
  /// Mean phase deviation in degrees: the mean, weighted by amplitudes, of the angles between the
  /// components and the line through the origin that lies closest to them, the first right singular
  /// vector of their real and imaginary parts (E. Reynders, J. Houbrechts, G. De Roeck, "Fully
  /// automated (operational) modal analysis", Mechanical Systems and Signal Processing 29, 2012).
  /// 0 for a real shape, 45 if the phases are spread evenly, and below 90.
  double MpdDeg;
};

/// Sum of the squares of all amplitudes.
double SumOfSquares(const TPhasors& shape);

/// Nothing for a shape that WhyNoShape refuses by its sum of squares.
std::optional<TComplexity> ComplexityOf(const TPhasors& shape);

/// The phase of the line closest to the components, radians in (-pi/2, pi/2]: turned back by it,
/// the real part is as large as it can be. 0 for a shape without a motion.
double MeanPhase(const TPhasors& shape);

/// Turns the motions back by a phase in radians and drops what is left of their quadrature part.
/// With their MeanPhase that is the nearest real shape.
void MakeReal(TNodeList& nodes, double phase);
