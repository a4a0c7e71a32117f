#include "shapes/Orbits.h"

#include <cmath>

#include "shapes/Phasor.h"

namespace {

void Split(double amplitude, double angle, double& inPhase, double& quadrature) {
  const std::complex<double> value = Phasor(amplitude, angle);
  inPhase = value.real();
  quadrature = value.imag();
}

TOrbit OrbitOf(const TNode& node) {
  if (!node.Link) return {node.Position, {}, {}};
  TOrbit orbit = {node.Link->Position, {}, {}};
  Split(node.Position.x, node.Angles.x, orbit.InPhase.x, orbit.Quadrature.x);
  Split(node.Position.y, node.Angles.y, orbit.InPhase.y, orbit.Quadrature.y);
  Split(node.Position.z, node.Angles.z, orbit.InPhase.z, orbit.Quadrature.z);
  return orbit;
}

}  // namespace

TVertex TOrbit::At(double phase) const {
  return Centre + InPhase * std::cos(phase) - Quadrature * std::sin(phase);
}

TVertex TOrbit::VelocityAt(double phase) const {
  return TVertex{} - InPhase * std::sin(phase) - Quadrature * std::cos(phase);
}

double TOrbit::Amplitude() const {
  // The square of the distance from the centre is mean + reach cos(2w + some angle).
  const double p = SquaredLength(InPhase);
  const double q = SquaredLength(Quadrature);
  const double across =
      InPhase.x * Quadrature.x + InPhase.y * Quadrature.y + InPhase.z * Quadrature.z;
  return std::sqrt(0.5 * (p + q) + std::hypot(0.5 * (p - q), across));
}

std::vector<TOrbit> OrbitsOf(const TDataNodeList& list) {
  std::vector<TOrbit> orbits;
  orbits.reserve(list.Count());
  for (const TNode* node : list) orbits.push_back(OrbitOf(*node));
  return orbits;
}
