#include "examples/generate/Rolls.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "examples/generate/Beam.h"

namespace {

using TComplex = std::complex<double>;
using std::numbers::pi;

constexpr TComplex kI{0.0, 1.0};

// Lengths in m. x runs with the paper, y up, z across the machine: the tending side at positive z,
// the drive side at negative z.
constexpr double kBearingZ = 2.1;
constexpr double kFrameZ = 2.4;
constexpr double kFrameEnd = 4.0;                           ///< the frame reaches from -x to x
constexpr std::array kLevels = {0.0, 0.6, 1.9, 3.4, 4.85};  ///< floor and beams, y
constexpr double kHeight = kLevels.back();
/// Below the middle: the view is as deep as the distance from the origin to the farthest node, and
/// corners that sway need some depth more.
constexpr double kOriginHeight = 1.4;
enum TLevel { kLowerFelt = 1, kLowerDryers, kUpperDryers, kUpperFelt };

constexpr double kPaperSpeed = 22.0;  ///< m/s
constexpr double kDryerRadius = 0.75;
constexpr double kFeltRollRadius = 0.15;
constexpr int kFeltRollNodes = 7;

constexpr double kModulus = 2.1e11;           ///< N/m2
constexpr double kDensity = 7850.0;           ///< kg/m3
constexpr double kDryerBearingMass = 4000.0;  ///< kg carried by each bearing of a dryer
constexpr double kFeltBearingMass = 250.0;    ///< kg, of a felt roll
constexpr double kFrameMass = 45.0e3;         ///< kg on each side of the frame, rolls included
constexpr double kColumnSide = 0.40;          ///< outer side of a square column
constexpr double kColumnWall = 0.012;
constexpr int kColumns = 5;        ///< on each side
constexpr double kDamping = 0.04;  ///< of critical, everywhere

constexpr std::int32_t kUpperDryer = Rgb(206, 212, 220);
constexpr std::int32_t kLowerDryer = Rgb(170, 186, 204);
constexpr std::int32_t kFeltRoll = Rgb(232, 150, 62);
constexpr std::int32_t kFrame = Rgb(86, 176, 164);
constexpr std::int32_t kTie = Rgb(120, 150, 172);
constexpr std::int32_t kHousing = Rgb(240, 208, 70);
constexpr std::int32_t kLooseHousing = Rgb(232, 48, 40);

/// Natural frequencies, in Hz, of a bearing's share of the roll on its bearing, along x and y.
struct TBearing {
  double alongX, alongY;
};
constexpr TBearing kDryerBearing = {9.0, 11.0}, kLooseDryerBearing = {2.8, 3.2};
constexpr TBearing kFeltBearing = {38.0, 46.0}, kLooseFeltBearing = {14.0, 17.0};

struct TRoll {
  bool dryer;
  int column;  ///< half steps between the frame's columns, -4 to 4: x in m
  TLevel level;
  int firstNode;                         ///< on the tending side
  std::array<double, 2> unbalanceAngle;  ///< rad, tending and drive side
  std::array<bool, 2> loose = {false, false};

  int NodeCount() const { return dryer ? 2 : kFeltRollNodes; }
  double Y() const { return kLevels[static_cast<std::size_t>(level)]; }
  TBearing Bearing(std::size_t side) const {
    if (dryer) return loose[side] ? kLooseDryerBearing : kDryerBearing;
    return loose[side] ? kLooseFeltBearing : kFeltBearing;
  }
  double BearingMass() const { return dryer ? kDryerBearingMass : kFeltBearingMass; }
};

/// Rolls in the order of their node numbers. They turn at their own pace, so the angles of their
/// unbalance have nothing to do with each other; the ends of one roll differ less.
std::vector<TRoll> Rolls() {
  std::vector<TRoll> rolls;
  const auto add = [&](bool dryer, int column, TLevel level, int firstNode) {
    const double angle = 2.4 * static_cast<double>(rolls.size());  // spreads evenly over a circle
    const double twist = rolls.size() % 3 == 1 ? 2.6 : 0.5;        // every third one is conical
    rolls.push_back({dryer, column, level, firstNode, {angle, angle + twist}});
  };
  for (int i = 0; i < 4; ++i) add(true, -3 + 2 * i, kUpperDryers, 10 * (i + 1));
  for (int i = 0; i < 3; ++i) add(true, -2 + 2 * i, kLowerDryers, 10 * (i + 5));
  for (int i = 0; i < 5; ++i) add(false, -4 + 2 * i, kUpperFelt, 100 * (i + 1));
  for (int i = 0; i < 4; ++i) add(false, -3 + 2 * i, kLowerFelt, 100 * (i + 6));
  rolls[2].loose[0] = true;  // third upper dryer, tending side
  rolls[8].loose[0] = true;  // second upper felt roll, tending side
  return rolls;
}

int FrameNode(std::size_t side, std::size_t level, int column) {
  return 2000 + 1000 * static_cast<int>(side) + 100 * static_cast<int>(level) + column + 4;
}

void AddRollNodes(TStructure& s, const TRoll& roll) {
  for (int i = 0; i < roll.NodeCount(); ++i) {
    const double z = kBearingZ * (1.0 - 2.0 * i / (roll.NodeCount() - 1));
    s.AddNode(roll.firstNode + i, {double(roll.column), roll.Y(), z});
  }
}

/// A dryer is one rigid roll element; a felt roll bends, so it is a chain of bars.
void AddRollElements(TStructure& s, const TRoll& roll) {
  const int first = roll.firstNode, last = first + roll.NodeCount() - 1;
  if (roll.dryer) {
    s.AddRoll(first, last, roll.level == kUpperDryers ? kUpperDryer : kLowerDryer, kDryerRadius,
              0.14, 0.06);
  } else {
    for (int i = first; i < last; ++i) s.AddBar(i, i + 1, kFeltRoll, kFeltRollRadius);
  }
  const double housing = roll.dryer ? 0.24 : 0.17;
  for (const std::size_t side : {0u, 1u}) {
    s.AddBar(side == 0 ? first : last, FrameNode(side, roll.level, roll.column),
             roll.loose[side] ? kLooseHousing : kHousing, housing);
  }
}

void AddFrameNodes(TStructure& s, std::size_t side) {
  for (std::size_t level = 0; level < kLevels.size(); ++level) {
    for (int column = -4; column <= 4; column += level == 0 ? 2 : 1) {
      s.AddNode(FrameNode(side, level, column),
                {double(column), kLevels[level], side == 0 ? kFrameZ : -kFrameZ});
    }
  }
}

void AddFrameElements(TStructure& s, std::size_t side) {
  const double columnRadius = 0.08, beamRadius = 0.06;
  for (std::size_t level = 1; level < kLevels.size(); ++level) {
    for (int column = -4; column < 4; ++column) {
      s.AddBar(FrameNode(side, level, column), FrameNode(side, level, column + 1), kFrame,
               beamRadius);
    }
    for (int column = -4; column <= 4; column += 2) {
      s.AddBar(FrameNode(side, level - 1, column), FrameNode(side, level, column), kFrame,
               columnRadius);
    }
  }
}

/// Ties the two sides of the frame together at both ends of the machine.
void AddTies(TStructure& s) {
  for (const int column : {-4, 4}) {
    for (const std::size_t level : {0u, 2u, 3u}) {
      s.AddBar(FrameNode(0, level, column), FrameNode(1, level, column), kTie);
    }
  }
}

TStructure RollsStructure(const std::vector<TRoll>& rolls) {
  TStructure s;
  s.NodeRadius = 0.09;
  s.ElementRadius = 0.05;
  for (const TRoll& roll : rolls) AddRollNodes(s, roll);
  for (const std::size_t side : {0u, 1u}) AddFrameNodes(s, side);
  for (const TRoll& roll : rolls) AddRollElements(s, roll);
  for (const std::size_t side : {0u, 1u}) AddFrameElements(s, side);
  AddTies(s);
  s.Move({0.0, -kOriginHeight, 0.0});
  return s;
}

double RotationFrequency(double rollRadius) { return kPaperSpeed / (2.0 * pi * rollRadius); }

double Omega(double frequency) { return 2.0 * pi * frequency; }

/// Displacement per acceleration of a damped oscillator, s2: Meirovitch, Fundamentals of
/// Vibrations, chapter 3.
TComplex Receptance(double natural, double frequency) {
  const double w0 = Omega(natural), w = Omega(frequency);
  return 1.0 / TComplex(w0 * w0 - w * w, 2.0 * kDamping * w0 * w);
}

/// A force that turns forward, from x towards y: y lags x by a quarter of a cycle. Unequal
/// stiffness along x and y makes an ellipse of the circle.
TMotion ForwardWhirl(TComplex acceleration, const TBearing& natural, double frequency) {
  return {acceleration * Receptance(natural.alongX, frequency),
          -kI * acceleration * Receptance(natural.alongY, frequency), 0.0};
}

/// Centrifugal acceleration of a mass centre that is off the axis by `offset` in mm: Jeffcott, The
/// lateral vibration of loaded shafts, Phil. Mag. 37 (1919); Genta, Dynamics of Rotating Systems.
TComplex Unbalance(double offset, double angle, double frequency) {
  return offset * Omega(frequency) * Omega(frequency) * std::exp(kI * angle);
}

/// First bending frequency in Hz of a thin tube between its bearings: E I / m = E r^2 / (2 rho).
double FeltRollBending() {
  const double r = kFeltRollRadius;
  return SimplySupportedFrequency(1, kModulus * 0.5 * r * r, kDensity, 2.0 * kBearingZ);
}

/// A shaft of unequal stiffness that sags under its weight is pushed around twice a turn. With the
/// relative difference mu, r'' + w0^2 r = -i mu g exp(2 i W t) to first order; Genta, chapter 6.
TComplex SagOfUnequalShaft(double angle) {
  const double gravity = 9810.0, difference = 0.04;  // mm/s2; 1
  return -kI * difference * gravity * std::exp(2.0 * kI * angle);
}

/// A loose journal falls back once a turn: a train of impacts, whose Fourier series has the same
/// acceleration at every harmonic. It strikes upwards and a little along x.
TMotion Impacts(const TBearing& natural, double frequency) {
  const double acceleration = 2500.0;  // mm/s2
  return {0.5 * acceleration * Receptance(natural.alongX, frequency),
          acceleration * Receptance(natural.alongY, frequency), 0.0};
}

/// Motion of a roll against the frame: of its two ends, and of its middle beyond their mean.
struct TRollMotion {
  std::array<TMotion, 2> ends;  ///< tending and drive side
  TMotion bend;

  /// `along`: 0 on the tending side to 1 on the drive side. The bending shape is that of a simply
  /// supported beam.
  TMotion At(double along) const {
    return (1.0 - along) * ends[0] + along * ends[1] + std::sin(pi * along) * bend;
  }
};

using TRollMotions = std::vector<TRollMotion>;  ///< one per roll

TRollMotions DryersOnce(const std::vector<TRoll>& rolls, double frequency) {
  TRollMotions motions(rolls.size());
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    if (!rolls[i].dryer) continue;
    for (const std::size_t side : {0u, 1u}) {
      motions[i].ends[side] =
          ForwardWhirl(Unbalance(0.20, rolls[i].unbalanceAngle[side], frequency),
                       rolls[i].Bearing(side), frequency);
    }
  }
  return motions;
}

TRollMotions FeltRollsOnce(const std::vector<TRoll>& rolls, double frequency) {
  const TBearing bending = {FeltRollBending(), FeltRollBending()};
  TRollMotions motions(rolls.size());
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    const TRoll& roll = rolls[i];
    if (roll.dryer) continue;
    for (const std::size_t side : {0u, 1u}) {
      motions[i].ends[side] = ForwardWhirl(Unbalance(0.10, roll.unbalanceAngle[side], frequency),
                                           roll.Bearing(side), frequency);
    }
    motions[i].bend =
        ForwardWhirl(Unbalance(0.15, roll.unbalanceAngle[0], frequency), bending, frequency);
  }
  return motions;
}

TRollMotions FeltRollsTwice(const std::vector<TRoll>& rolls, double frequency) {
  const TBearing bending = {FeltRollBending(), FeltRollBending()};
  TRollMotions motions(rolls.size());
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    const TRoll& roll = rolls[i];
    if (roll.dryer) continue;
    motions[i].bend = ForwardWhirl(SagOfUnequalShaft(roll.unbalanceAngle[0]), bending, frequency);
    for (const std::size_t side : {0u, 1u}) {
      if (roll.loose[side]) motions[i].ends[side] = Impacts(roll.Bearing(side), frequency);
    }
  }
  return motions;
}

TRollMotions FeltRollsThrice(const std::vector<TRoll>& rolls, double frequency) {
  const TBearing bending = {FeltRollBending(), FeltRollBending()};
  TRollMotions motions(rolls.size());
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    const TRoll& roll = rolls[i];
    for (const std::size_t side : {0u, 1u}) {
      if (roll.dryer || !roll.loose[side]) continue;
      motions[i].ends[side] = Impacts(roll.Bearing(side), frequency);
      motions[i].bend = Impacts(bending, frequency);
    }
  }
  return motions;
}

/// Side sway of the frame: columns clamped at the floor and guided by the beams above, stiffness
/// 12 E I / H^3 each; Roark's Formulas for Stress and Strain, frames. In Hz.
double SwayFrequency() {
  const double inner = kColumnSide - 2.0 * kColumnWall;
  const double inertia = (std::pow(kColumnSide, 4) - std::pow(inner, 4)) / 12.0;
  const double stiffness = kColumns * 12.0 * kModulus * inertia / std::pow(kHeight, 3);
  return std::sqrt(stiffness / kFrameMass) / (2.0 * pi);
}

/// Deflection of such a column at height y, 1 at the top.
double SwayShape(double y) {
  const double s = y / kHeight;
  return s * s * (3.0 - 2.0 * s);
}

using TSway = std::array<TComplex, 2>;  ///< along x at the top, tending and drive side

/// What the forces in the bearings do to each side of the frame. The rolls do not feel it back.
TSway SwayFromBearings(const std::vector<TRoll>& rolls, const TRollMotions& motions,
                       double frequency) {
  TSway sway{};
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    for (const std::size_t side : {0u, 1u}) {
      const double w0 = Omega(rolls[i].Bearing(side).alongX);
      const TComplex force =
          rolls[i].BearingMass() * w0 * w0 * motions[i].ends[side].x * SwayShape(rolls[i].Y());
      sway[side] += force / kFrameMass * Receptance(SwayFrequency(), frequency);
    }
  }
  return sway;
}

/// The frame shaken at its sway frequency by the drive, which stands on the drive side: the sway
/// resonates, the yaw of the two sides against each other does not yet. Its frequency is higher by
/// half the width over the radius of gyration of an even mass, sqrt(3).
TSway SwayFromDrive(double frequency) {
  const double acceleration = 40.0;  // mm/s2
  const TComplex sway = acceleration * Receptance(SwayFrequency(), frequency);
  const TComplex yaw =
      3.0 * acceleration * Receptance(std::numbers::sqrt3 * SwayFrequency(), frequency);
  return {sway - yaw, sway + yaw};
}

/// Rolls ride on the frame; floor nodes stand still. Motions in the order of the nodes.
TShape RollsShape(const std::vector<TRoll>& rolls, double frequency, const TRollMotions& motions,
                  const TSway& sway) {
  TShape shape{frequency, {}};
  for (std::size_t i = 0; i < rolls.size(); ++i) {
    for (int node = 0; node < rolls[i].NodeCount(); ++node) {
      const double along = double(node) / (rolls[i].NodeCount() - 1);
      TMotion motion = motions[i].At(along);
      motion.x += SwayShape(rolls[i].Y()) * ((1.0 - along) * sway[0] + along * sway[1]);
      shape.motions.push_back(motion);
    }
  }
  for (const std::size_t side : {0u, 1u}) {
    for (std::size_t level = 0; level < kLevels.size(); ++level) {
      const TMotion motion = {SwayShape(kLevels[level]) * sway[side], 0.0, 0.0};
      for (int column = -4; column <= 4; column += level == 0 ? 2 : 1) {
        shape.motions.push_back(motion);
      }
    }
  }
  return shape;
}

}  // namespace

TExample MakeRolls() {
  const std::vector<TRoll> rolls = Rolls();
  const TStructure structure = RollsStructure(rolls);
  const double dryer = RotationFrequency(kDryerRadius), felt = RotationFrequency(kFeltRollRadius);

  std::vector<TShape> shapes;
  const auto add = [&](double frequency, const TRollMotions& motions) {
    shapes.push_back(
        RollsShape(rolls, frequency, motions, SwayFromBearings(rolls, motions, frequency)));
  };
  add(dryer, DryersOnce(rolls, dryer));
  shapes.push_back(RollsShape(rolls, SwayFrequency(), TRollMotions(rolls.size()),
                              SwayFromDrive(SwayFrequency())));
  add(felt, FeltRollsOnce(rolls, felt));
  add(2.0 * felt, FeltRollsTwice(rolls, 2.0 * felt));
  add(3.0 * felt, FeltRollsThrice(rolls, 3.0 * felt));
  return {"rolls", structure.ModelText(), DataText(structure, shapes, TRecordForm::Complex)};
}
