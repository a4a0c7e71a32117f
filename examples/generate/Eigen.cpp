#include "examples/generate/Eigen.h"

#include <algorithm>
#include <cmath>

namespace {

struct TRotation {
  double cosine, sine;
};

/// The rotation of rows and columns p and q that clears element (p, q).
TRotation Clearing(const TSquareMatrix& a, std::size_t p, std::size_t q) {
  const double tau = (a(q, q) - a(p, p)) / (2.0 * a(p, q));
  const double t = std::copysign(1.0 / (std::abs(tau) + std::hypot(1.0, tau)), tau);
  const double cosine = 1.0 / std::hypot(1.0, t);
  return {cosine, t * cosine};
}

void RotateColumns(TSquareMatrix& a, std::size_t p, std::size_t q, const TRotation& r) {
  for (std::size_t i = 0; i < a.Size(); ++i) {
    const double x = a(i, p), y = a(i, q);
    a(i, p) = r.cosine * x - r.sine * y;
    a(i, q) = r.sine * x + r.cosine * y;
  }
}

void RotateRows(TSquareMatrix& a, std::size_t p, std::size_t q, const TRotation& r) {
  for (std::size_t i = 0; i < a.Size(); ++i) {
    const double x = a(p, i), y = a(q, i);
    a(p, i) = r.cosine * x - r.sine * y;
    a(q, i) = r.sine * x + r.cosine * y;
  }
}

}  // namespace

std::vector<TEigenpair> SymmetricEigenpairs(TSquareMatrix a) {
  constexpr int kSweeps = 20;  // convergence is quadratic, ten are plenty
  const std::size_t n = a.Size();
  TSquareMatrix vectors(n);
  for (std::size_t i = 0; i < n; ++i) vectors(i, i) = 1.0;
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    for (std::size_t p = 0; p + 1 < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) {
        if (a(p, q) == 0.0) continue;
        const TRotation rotation = Clearing(a, p, q);
        RotateColumns(a, p, q, rotation);
        RotateRows(a, p, q, rotation);
        RotateColumns(vectors, p, q, rotation);
      }
    }
  }
  std::vector<TEigenpair> pairs;
  for (std::size_t k = 0; k < n; ++k) {
    pairs.push_back({a(k, k), {}});
    for (std::size_t i = 0; i < n; ++i) pairs.back().vector.push_back(vectors(i, k));
  }
  std::sort(pairs.begin(), pairs.end(),
            [](const TEigenpair& x, const TEigenpair& y) { return x.value < y.value; });
  return pairs;
}
