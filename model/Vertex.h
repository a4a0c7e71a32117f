#pragma once

#include <array>
#include <cmath>

/// A point or vector in space, in the units of the model file.
struct TVertex {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  friend constexpr bool operator==(const TVertex&, const TVertex&) = default;

  constexpr TVertex& operator+=(const TVertex& v) { return *this = *this + v; }
  constexpr TVertex& operator-=(const TVertex& v) { return *this = *this - v; }

  friend constexpr TVertex operator+(const TVertex& a, const TVertex& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend constexpr TVertex operator-(const TVertex& a, const TVertex& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr TVertex operator*(const TVertex& v, double f) {
    return {v.x * f, v.y * f, v.z * f};
  }
  friend constexpr TVertex operator*(double f, const TVertex& v) { return v * f; }

  /// A zero divisor yields the zero vector.
  friend constexpr TVertex operator/(const TVertex& v, double divisor) {
    if (divisor == 0.0) return {};
    return {v.x / divisor, v.y / divisor, v.z / divisor};
  }
};

/// Three directions at a point, as unit vectors.
using TAxes = std::array<TVertex, 3>;

/// Square of Length; the largest of many lengths is the root of the largest square.
constexpr double SquaredLength(const TVertex& v) { return v.x * v.x + v.y * v.y + v.z * v.z; }

/// Euclidean distance of a vertex from the origin.
inline double Length(const TVertex& v) { return std::sqrt(SquaredLength(v)); }

/// Euclidean distance between two vertices.
inline double Length(const TVertex& a, const TVertex& b) { return Length(b - a); }
