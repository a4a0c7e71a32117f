#pragma once

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

/// Natural frequency in Hz of the mode with shape `along` (1, 2, ...: cantilever beam) times
/// `across` (0 even, 1 torsion, 2, ... bending: free beam).
///
/// Rayleigh's quotient with products of beam functions: G. B. Warburton, The vibration of
/// rectangular plates, Proc. IMechE 168 (1954); strain energy of the plate as in A. W. Leissa,
/// Vibration of Plates, NASA SP-160 (1969), chapter 1. An upper bound, within a few per cent.
double PlateFrequency(const TPlate& plate, int along, int across);

/// A steel plate in a vice with its first six modes, real shapes.
TExample MakePlate();
