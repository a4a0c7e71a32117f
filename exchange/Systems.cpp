#include "exchange/Systems.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "model/Reading.h"

namespace {

/// How far products of axes may be from those of unit vectors at right angles.
constexpr double kAxesTolerance = 1e-4;

constexpr double Inner(const TVertex& a, const TVertex& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr TVertex Outer(const TVertex& a, const TVertex& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

bool IsFinite(const TVertex& v) { return IsUsable(v.x) && IsUsable(v.y) && IsUsable(v.z); }

bool AreOrthonormal(const TAxes& axes) {
  const auto [x, y, z] = axes;
  const double faults[] = {Inner(x, x) - 1, Inner(y, y) - 1, Inner(z, z) - 1,
                           Inner(x, y),     Inner(y, z),     Inner(z, x)};
  return std::ranges::all_of(faults, [](double f) { return std::abs(f) <= kAxesTolerance; });
}

/// Makes axes unit vectors at right angles and keeps their handedness; false if they span no space.
bool Orthonormalise(TAxes& axes) {
  for (TVertex& axis : axes) axis = axis / Length(axis);
  auto& [x, y, z] = axes;
  y -= Inner(x, y) * x;
  y = y / Length(y);
  const TVertex normal = Outer(x, y);
  z = Inner(normal, z) < 0.0 ? -1.0 * normal : normal;
  return AreOrthonormal(axes);
}

struct TTurn {
  double cos = 1.0;
  double sin = 0.0;
};

/// Exact at multiples of a right angle, so that a point at 90 degrees lies on the axis.
TTurn TurnOf(double degrees) {
  int quarters = 0;
  const double rest = std::remquo(degrees, 90.0, &quarters) * std::numbers::pi / 180.0;
  const double c = std::cos(rest);
  const double s = std::sin(rest);
  switch (quarters & 3) {
    case 0:
      return {c, s};
    case 1:
      return {-s, c};
    case 2:
      return {-c, -s};
    default:
      return {s, -c};
  }
}

/// Cartesian coordinates along a system's own axes.
TVertex ToCartesian(TSystemKind kind, const TVertex& p) {
  if (kind == TSystemKind::Cartesian) return p;
  const TTurn first = TurnOf(p.y);
  if (kind == TSystemKind::Cylindrical) return {p.x * first.cos, p.x * first.sin, p.z};
  const TTurn second = TurnOf(p.z);
  return {p.x * first.sin * second.cos, p.x * first.sin * second.sin, p.x * first.cos};
}

/// The direction of (x, y); that of the angle 0 if both are no more than rounding.
TTurn DirectionOf(double x, double y, double rounding) {
  const double r = std::hypot(x, y);
  return r <= rounding ? TTurn{} : TTurn{x / r, y / r};
}

}  // namespace

bool TSystems::TResolved::IsGlobal() const {
  const TResolved global;
  return kind == global.kind && axes == global.axes && origin == global.origin;
}

/// Follows references until all systems are resolved.
class TSystems::TResolving {
 public:
  TResolving(std::span<const TLocalSystem> systems, TSystems& result, TFindings& findings)
      : systems_(systems), states_(systems.size()), result_(result), findings_(findings) {}

  void Resolve() {
    Number();
    for (std::size_t i = 0; i < systems_.size(); ++i) {
      if (systems_[i].Number != 0 && places_.at(systems_[i].Number) == i) Follow(i);
    }
  }

 private:
  enum class TState : std::uint8_t { Untouched, OnTheWay, Done };

  void Note(const TLocalSystem& system, const QString& what) {
    findings_.ReturnTo(system.Place.File);
    findings_.Warn(system.Place.SetOr(QStringLiteral("systems")), system.Place.Line,
                   QStringLiteral("system %1 ").arg(system.Number) + what);
  }

  /// Finds the place of each number.
  void Number() {
    for (std::size_t i = 0; i < systems_.size(); ++i) {
      const TLocalSystem& system = systems_[i];
      const auto [first, isNew] = places_.emplace(system.Number, i);
      result_.defined_.insert(system.Number);
      if (isNew) continue;
      const TLocalSystem& same = systems_[first->second];
      if (same.Kind == system.Kind && same.Reference == system.Reference &&
          same.Axes == system.Axes && same.Origin == system.Origin) {
        continue;
      }
      Note(system, QStringLiteral("is defined again in another way; the first definition counts"));
    }
  }

  /// Resolves a system after those that it refers to.
  void Follow(std::size_t start) {
    std::vector<std::size_t> way;
    for (std::size_t at = start; states_[at] == TState::Untouched;) {
      states_[at] = TState::OnTheWay;
      way.push_back(at);
      const TLocalSystem& system = systems_[at];
      if (system.Reference == 0) break;
      const auto next = places_.find(system.Reference);
      if (next == places_.end()) {
        NoteMissing(system);
        break;
      }
      at = next->second;
      if (states_[at] == TState::OnTheWay) BreakCircle(at, way);
    }
    for (; !way.empty(); way.pop_back()) {
      if (states_[way.back()] == TState::OnTheWay) Place(systems_[way.back()]);
      states_[way.back()] = TState::Done;
    }
  }

  void NoteMissing(const TLocalSystem& system) {
    if (system.Reference == 1) return;
    Note(system, QStringLiteral("refers to system %1, which is missing; it is taken as given in "
                                "the global system")
                     .arg(system.Reference));
  }

  /// The systems of the way from `at` on count as global.
  void BreakCircle(std::size_t at, const std::vector<std::size_t>& way) {
    for (auto member = std::ranges::find(way, at); member != way.end(); ++member) {
      states_[*member] = TState::Done;
      Note(systems_[*member],
           QStringLiteral("refers to itself in a circle; it is taken as the global one"));
    }
  }

  /// What the system that it refers to is in terms of the global one, so is then the system itself.
  void Place(const TLocalSystem& system) {
    TResolved own{system.Kind, system.Axes, system.Origin};
    if (!IsFinite(own.origin) || !std::ranges::all_of(own.axes, IsFinite)) {
      Note(system, QStringLiteral("has a value that is no number or beyond 1e30; it is taken as "
                                  "the global one"));
      return;
    }
    if (!AreOrthonormal(own.axes) && !MakeOrthonormal(system, own)) return;
    if (const TResolved* reference = result_.Find(system.Reference)) {
      for (TVertex& axis : own.axes) axis = reference->Turned(axis);
      own.origin = reference->origin + reference->Turned(own.origin);
    }
    if (!own.IsGlobal()) result_.resolved_.emplace(system.Number, own);
  }

  /// False, and noted, if the axes span no space.
  bool MakeOrthonormal(const TLocalSystem& system, TResolved& own) {
    const bool spans = Orthonormalise(own.axes);
    Note(system, spans ? QStringLiteral("has a matrix that is not orthonormal; its axes were made "
                                        "unit vectors at right angles")
                       : QStringLiteral("has axes that span no space; it is taken as the global "
                                        "one"));
    return spans;
  }

  std::span<const TLocalSystem> systems_;
  std::vector<TState> states_;
  std::unordered_map<std::int32_t, std::size_t> places_;
  TSystems& result_;
  TFindings& findings_;
};

TSystems::TSystems(std::span<const TLocalSystem> systems, TFindings& findings) {
  TResolving(systems, *this, findings).Resolve();
}

TVertex TSystems::ToGlobal(std::int32_t number, const TVertex& coordinates, double unit) const {
  const TResolved* system = Find(number);
  if (!system) return coordinates * unit;
  return system->origin + system->Turned(ToCartesian(system->kind, coordinates) * unit);
}

TAxes TSystems::AxesAt(std::int32_t number, const TVertex& point) const {
  const TResolved* system = Find(number);
  if (!system) return TResolved().axes;
  if (system->kind == TSystemKind::Cartesian) return system->axes;
  constexpr double kRounding = 1e-12;
  const double rounding = kRounding * (Length(point) + Length(system->origin));
  const TVertex from = point - system->origin;
  const double x = Inner(from, system->axes[0]);
  const double y = Inner(from, system->axes[1]);
  const TTurn phi = DirectionOf(x, y, rounding);
  const TVertex tangent = system->Turned({-phi.sin, phi.cos, 0.0});
  if (system->kind == TSystemKind::Cylindrical) {
    return {system->Turned({phi.cos, phi.sin, 0.0}), tangent, system->axes[2]};
  }
  const TTurn theta = DirectionOf(Inner(from, system->axes[2]), std::hypot(x, y), rounding);
  return {system->Turned({theta.sin * phi.cos, theta.sin * phi.sin, theta.cos}),
          system->Turned({theta.cos * phi.cos, theta.cos * phi.sin, -theta.sin}), tangent};
}
