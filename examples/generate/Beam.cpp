#include "examples/generate/Beam.h"

#include <cmath>
#include <numbers>

namespace {

using std::numbers::pi;

/// Root of cos(beta) cosh(beta) = rightSide near `guess`, by bisection. Divided by cosh, so that
/// nothing large is subtracted.
double FrequencyRoot(double rightSide, double guess) {
  const auto equation = [=](double beta) { return std::cos(beta) - rightSide / std::cosh(beta); };
  double low = guess - 0.5, high = guess + 0.5;
  const bool lowIsPositive = equation(low) > 0.0;
  for (int i = 0; i < 60; ++i) {
    const double middle = 0.5 * (low + high);
    ((equation(middle) > 0.0) == lowIsPositive ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

}  // namespace

TBeamShape TBeamShape::ClampedFree(int n) {
  const double beta = FrequencyRoot(-1.0, (n - 0.5) * pi);
  const double sigma = (std::sinh(beta) - std::sin(beta)) / (std::cosh(beta) + std::cos(beta));
  return {beta, -1.0, sigma};
}

TBeamShape TBeamShape::FreeFree(int n) {
  if (n < 2) {
    TBeamShape rigid(0.0, 0.0, 0.0);
    n == 0 ? rigid.offset_ = 1.0 : rigid.tilt_ = std::numbers::sqrt3;
    return rigid;
  }
  const double beta = FrequencyRoot(1.0, (n - 0.5) * pi);
  const double sigma = (std::cosh(beta) - std::cos(beta)) / (std::sinh(beta) - std::sin(beta));
  return {beta, 1.0, sigma};
}

double TBeamShape::Value(double xi) const {
  if (beta_ == 0.0) return offset_ + tilt_ * (2.0 * xi - 1.0);
  const double b = beta_ * xi;
  return std::cosh(b) + sign_ * std::cos(b) - sigma_ * (std::sinh(b) + sign_ * std::sin(b));
}

double TBeamShape::Slope(double xi) const {
  if (beta_ == 0.0) return 2.0 * tilt_;
  const double b = beta_ * xi;
  return beta_ *
         (std::sinh(b) - sign_ * std::sin(b) - sigma_ * (std::cosh(b) + sign_ * std::cos(b)));
}

double TBeamShape::Curvature(double xi) const {
  if (beta_ == 0.0) return 0.0;
  const double b = beta_ * xi;
  return beta_ * beta_ *
         (std::cosh(b) - sign_ * std::cos(b) - sigma_ * (std::sinh(b) - sign_ * std::sin(b)));
}

double SimplySupportedFrequency(int n, double stiffness, double massPerLength, double length) {
  return 0.5 * pi * n * n / (length * length) * std::sqrt(stiffness / massPerLength);
}
