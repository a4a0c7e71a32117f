#pragma once

#include <vector>

#include "model/Animmodel.h"

/// The ellipse that a node runs through in one cycle: at phase w it is at
/// Centre + InPhase cos w - Quadrature sin w. InPhase and Quadrature are two conjugate half
/// diameters; of a node that moves along a line they are parallel. As read, not as scaled for
/// drawing.
struct TOrbit {
  TVertex Centre;
  TVertex InPhase;
  TVertex Quadrature;

  TVertex At(double phase) const;
  /// Change of the place per radian; times 2 pi x frequency it is the velocity.
  TVertex VelocityAt(double phase) const;
  /// Half of the largest diameter.
  double Amplitude() const;
};

/// The orbits of all nodes of a data set, in its order. A node that is linked to none of the model
/// rests where it is.
std::vector<TOrbit> OrbitsOf(const TDataNodeList& list);
