#pragma once

#include <vector>

#include "examples/generate/Structure.h"

/// A rectangular plate of even thickness, clamped along one edge, and its surroundings' material.
struct TPlate {
  double length = 0.480;     ///< m, from the clamped edge to the free end
  double width = 0.240;      ///< m
  double thickness = 0.003;  ///< m
  double modulus = 2.1e11;   ///< Young's modulus in N/m2
  double density = 7850.0;   ///< kg/m3
  double poisson = 0.3;      ///< Poisson's ratio
};

/// A natural mode: a sum of products of the shapes of a cantilever beam along the plate and of a
/// free beam across it.
class TPlateMode {
 public:
  TPlateMode(double frequency, std::vector<double> weights);

  double Frequency() const { return frequency_; }  ///< Hz
  /// Deflection at a place: `along` from 0 at the clamped edge to 1, `across` from 0 to 1.
  /// Positive at the corner (1, 0).
  double Value(double along, double across) const;

 private:
  double frequency_;
  std::vector<double> weights_;
};

/// All modes that 6 x 6 such products give, the lowest first; the first dozen is accurate.
///
/// Method: D. Young, Vibration of rectangular plates by the Ritz method, J. Appl. Mech. 17 (1950);
/// strain energy of the plate as in A. W. Leissa, Vibration of Plates, NASA SP-160 (1969).
std::vector<TPlateMode> PlateModes(const TPlate& plate);

/// A steel plate in a vice with its first six modes, real shapes.
TExample MakePlate();
