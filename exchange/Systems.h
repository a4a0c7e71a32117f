#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "exchange/Findings.h"
#include "exchange/Job.h"

/// The local systems of a job, resolved to the global one, in whatever order they refer to each
/// other. Noted: systems that refer to themselves in a circle, which count as global; references to
/// a system that is missing, which mean the global one; axes that are not at right angles or not of
/// length 1, which are made so, the first axis kept and the second kept in its plane, since scaled
/// or skewed axes would change what was measured; numbers that come again with another meaning, of
/// which the first counts.
class TSystems {
 public:
  TSystems(std::span<const TLocalSystem> systems, TFindings& findings);

  /// Whether a number means the global system: 0, or one that no system has.
  bool IsGlobal(std::int32_t number) const { return !Find(number); }
  /// Whether a number means anything. Writers use 1 for the global system without defining it.
  bool IsDefined(std::int32_t number) const {
    return number == 0 || number == 1 || defined_.contains(number);
  }

  /// Global Cartesian coordinates of a point given in a system: x y z, r phi z or r theta phi,
  /// angles in degrees. Its lengths are those of the systems divided by `unit`.
  TVertex ToGlobal(std::int32_t number, const TVertex& coordinates, double unit = 1.0) const;

  /// The directions in which a system measures at a global point: its own axes, or radial and
  /// tangential ones. On the axis of a cylindrical or spherical system, where none is radial, they
  /// are those at the angle 0.
  TAxes AxesAt(std::int32_t number, const TVertex& point) const;

 private:
  /// A system in terms of the global one.
  struct TResolved {
    TSystemKind kind = TSystemKind::Cartesian;
    TAxes axes = {TVertex{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    TVertex origin;

    TVertex Turned(const TVertex& v) const { return v.x * axes[0] + v.y * axes[1] + v.z * axes[2]; }
    bool IsGlobal() const;
  };
  class TResolving;

  const TResolved* Find(std::int32_t number) const {
    const auto found = resolved_.find(number);
    return found == resolved_.end() ? nullptr : &found->second;
  }

  std::unordered_map<std::int32_t, TResolved> resolved_;  ///< those that differ from the global one
  std::unordered_set<std::int32_t> defined_;
};
