#include "shapes/Complexity.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace {

/// Sum of the squares of the components as complex numbers. Its amount is the difference of the two
/// eigenvalues, and half its angle the direction of the larger one's vector.
std::complex<double> ComplexSquares(const TPhasors& shape) {
  double real = 0.0;
  double imaginary = 0.0;
  for (std::size_t i = 0; i < shape.Real.size(); ++i) {
    real += shape.Real[i] * shape.Real[i] - shape.Imaginary[i] * shape.Imaginary[i];
    imaginary += 2.0 * shape.Real[i] * shape.Imaginary[i];
  }
  return {real, imaginary};
}

/// In degrees.
double MeanDeviation(const TPhasors& shape, double phase) {
  const std::complex<double> back = std::polar(1.0, -phase);
  double sum = 0.0;
  double weights = 0.0;
  for (std::size_t i = 0; i < shape.Real.size(); ++i) {
    const std::complex<double> value = back * std::complex(shape.Real[i], shape.Imaginary[i]);
    const double weight = std::abs(value);
    sum += weight * std::atan2(std::abs(value.imag()), std::abs(value.real()));
    weights += weight;
  }
  return sum / weights * 180.0 / std::numbers::pi;
}

}  // namespace

double SumOfSquares(const TPhasors& shape) {
  double sum = 0.0;
  for (std::size_t i = 0; i < shape.Real.size(); ++i) {
    sum += shape.Real[i] * shape.Real[i] + shape.Imaginary[i] * shape.Imaginary[i];
  }
  return sum;
}

std::optional<TComplexity> ComplexityOf(const TPhasors& shape) {
  const double squares = SumOfSquares(shape);
  if (!WhyNoShape(squares).isEmpty()) return {};
  const double ratio = std::abs(ComplexSquares(shape)) / squares;
  return TComplexity{ratio * ratio, MeanDeviation(shape, MeanPhase(shape))};
}

double MeanPhase(const TPhasors& shape) { return 0.5 * std::arg(ComplexSquares(shape)); }

void MakeReal(TNodeList& nodes, double phase) {
  for (TNode* node : nodes) {
    node->Position = Displacement(*node, -phase);
    node->Angles = {};
  }
}
