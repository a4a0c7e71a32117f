#include "examples/generate/Bridge.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

#include "examples/generate/Beam.h"

namespace {

using TComplex = std::complex<double>;
using std::numbers::pi;

constexpr TComplex kI{0.0, 1.0};

constexpr int kPanels = 16;
constexpr double kPanel = 4.0;                ///< m
constexpr double kLength = kPanels * kPanel;  ///< span, m
constexpr double kWidth = 8.0;                ///< m between the two trusses
constexpr double kPortalHeight = 6.5;         ///< m, of the top chord at its ends
constexpr double kMiddleHeight = 11.0;        ///< m, at mid-span
constexpr double kMeanHeight = 9.4;           ///< m, of the parabola between them

constexpr double kModulus = 2.1e11;          ///< Young's modulus, N/m2
constexpr double kChordArea = 0.025;         ///< m2, of each of the four chords
constexpr double kMassPerLength = 9.0e3;     ///< kg/m, deck included
constexpr double kGyration = 0.36 * kWidth;  ///< m, radius of gyration of a cross-section

constexpr std::int32_t kChord = Rgb(226, 98, 52);
constexpr std::int32_t kVertical = Rgb(236, 176, 84);
constexpr std::int32_t kDiagonal = Rgb(148, 214, 255);
constexpr std::int32_t kBracing = Rgb(128, 176, 212);
constexpr std::int32_t kCrossBeam = Rgb(150, 156, 168);
constexpr std::int32_t kRoad = Rgb(120, 128, 144);
constexpr std::int32_t kUnderside = Rgb(92, 98, 110);
constexpr std::int32_t kConcrete = Rgb(196, 190, 178);

/// Where the nodes of a row start to count; the panel point is added.
enum TRow { kBottomLeft = 100, kBottomRight = 200, kDeck = 300, kTopLeft = 600, kTopRight = 700 };
constexpr int kDeckRows = 3;  ///< between the trusses: 300, 400, 500
constexpr int kAbutments = 800;

double X(int panelPoint) { return kPanel * panelPoint; }

double TopHeight(int panelPoint) {
  const double t = 2.0 * (panelPoint - 1) / (kPanels - 2) - 1.0;  // -1 to 1 along the top chord
  return kMiddleHeight - (kMiddleHeight - kPortalHeight) * t * t;
}

void AddTrussNodes(TStructure& s) {
  for (int i = 0; i <= kPanels; ++i) s.AddNode(kBottomLeft + i, {X(i), 0.0, 0.5 * kWidth});
  for (int i = 0; i <= kPanels; ++i) s.AddNode(kBottomRight + i, {X(i), 0.0, -0.5 * kWidth});
  for (int row = 0; row < kDeckRows; ++row) {
    for (int i = 0; i <= kPanels; ++i) {
      s.AddNode(kDeck + 100 * row + i, {X(i), 0.0, kWidth * (0.25 - 0.25 * row)});
    }
  }
  for (int i = 1; i < kPanels; ++i) {
    s.AddNode(kTopLeft + i, {X(i), TopHeight(i), 0.5 * kWidth});
  }
  for (int i = 1; i < kPanels; ++i) {
    s.AddNode(kTopRight + i, {X(i), TopHeight(i), -0.5 * kWidth});
  }
}

/// Parker truss: chords, posts, diagonals that fall towards mid-span.
void AddTruss(TStructure& s, int bottom, int top) {
  const double chordRadius = 0.28, postRadius = 0.2;
  for (int i = 0; i < kPanels; ++i) s.AddBar(bottom + i, bottom + i + 1, kChord, chordRadius);
  for (int i = 1; i < kPanels - 1; ++i) s.AddBar(top + i, top + i + 1, kChord, chordRadius);
  s.AddBar(bottom, top + 1, kChord, chordRadius);
  s.AddBar(bottom + kPanels, top + kPanels - 1, kChord, chordRadius);
  for (int i = 1; i < kPanels; ++i) s.AddBar(bottom + i, top + i, kVertical, postRadius);
  for (int i = 1; i < kPanels - 1; ++i) {
    const bool leftHalf = i < kPanels / 2;
    s.AddBar(leftHalf ? top + i : bottom + i, leftHalf ? bottom + i + 1 : top + i + 1, kDiagonal);
  }
}

void AddTopBracing(TStructure& s) {
  for (int i = 1; i < kPanels; ++i) s.AddBar(kTopLeft + i, kTopRight + i, kBracing);
  for (int i = 1; i < kPanels - 1; ++i) {
    s.AddBar(kTopLeft + i, kTopRight + i + 1, kBracing);
    s.AddBar(kTopRight + i, kTopLeft + i + 1, kBracing);
  }
}

void AddDeck(TStructure& s) {
  const int rows[] = {kBottomLeft, kDeck, kDeck + 100, kDeck + 200, kBottomRight};
  for (int row = 0; row < 4; ++row) {
    const int a = rows[row], b = rows[row + 1];
    for (int i = 0; i <= kPanels; ++i) s.AddBar(a + i, b + i, kCrossBeam);
    for (int i = 0; i < kPanels; ++i) {
      s.AddTwoSidedFace({a + i, a + i + 1, b + i + 1, b + i}, kRoad, kUnderside);
    }
  }
}

/// A block of concrete below one end, with a bearing under each truss.
void AddAbutment(TStructure& s, int firstNode, int end, double inner, double outer) {
  const double top = -1.6, bottom = -8.0, z = 0.5 * kWidth + 1.5;
  const double left = std::min(inner, outer), right = std::max(inner, outer);
  int n[8], id = firstNode;
  for (const double y : {bottom, top}) {
    for (const auto& [px, pz] : {std::pair{left, z}, {right, z}, {right, -z}, {left, -z}}) {
      n[id - firstNode] = s.AddNode(id, {px, y, pz});
      ++id;
    }
  }
  s.AddBox(n, kConcrete);
  for (const int truss : {kBottomLeft, kBottomRight}) {
    const double side = truss == kBottomLeft ? 0.5 : -0.5;
    s.AddNode(id, {X(end), top, side * kWidth});
    s.AddBar(id++, truss + end, kCrossBeam, 0.45);
  }
}

/// Coordinates in m: x along, y up, z across. The origin is put amid the structure.
TStructure BridgeStructure() {
  TStructure s;
  s.NodeRadius = 0.3;
  s.ElementRadius = 0.12;
  AddTrussNodes(s);
  AddAbutment(s, kAbutments, 0, 1.2, -3.0);
  AddAbutment(s, kAbutments + 100, kPanels, kLength - 1.2, kLength + 3.0);
  AddDeck(s);
  AddTruss(s, kBottomLeft, kTopLeft);
  AddTruss(s, kBottomRight, kTopRight);
  AddTopBracing(s);
  s.Move({-0.5 * kLength, -1.5, 0.0});
  return s;
}

/// A lattice of chords with distance d bends like a beam with I = 2 A (d / 2)^2 per pair of chords
/// (Timoshenko, Strength of Materials); the web's shear flexibility is left out.
double BendingStiffness(double chordDistance) {
  return kModulus * 4.0 * kChordArea * 0.25 * chordDistance * chordDistance;
}
double VerticalFrequency(int n) {
  return SimplySupportedFrequency(n, BendingStiffness(kMeanHeight), kMassPerLength, kLength);
}
double LateralFrequency(int n) {
  return SimplySupportedFrequency(n, BendingStiffness(kWidth), kMassPerLength, kLength);
}
/// The two trusses bend against each other: lever kWidth / 2 for the stiffness, the radius of
/// gyration for the mass.
double TorsionFrequency(int n) { return VerticalFrequency(n) * 0.5 * kWidth / kGyration; }

/// A deflection along the span and its derivative along it.
struct TDeflection {
  TComplex value, slope;
};

TDeflection Sine(int n, double x) {
  const double k = n * pi / kLength;
  return {std::sin(k * x), k * std::cos(k * x)};
}

/// Vertical mode n with a viscous damper at a quarter of the span that gives mode 2 a tenth of
/// critical damping. Such damping is not proportional, and the mode takes in a share of the others
/// a quarter of a cycle out of phase: J. Woodhouse, Linear damping models for structural vibration,
/// J. Sound Vib. 215 (1998), first-order perturbation.
TDeflection DampedMode(int n, double x) {
  constexpr int kModes = 8;
  const double damperX = 0.25 * kLength, dampingRatio = 0.1;
  const auto omega = [](int k) { return 2.0 * pi * VerticalFrequency(k); };
  const auto atDamper = [=](int k) { return Sine(k, damperX).value.real(); };
  const double strength = 2.0 * dampingRatio * omega(2) / (atDamper(2) * atDamper(2));

  TDeflection mode = Sine(n, x);
  for (int k = 1; k <= kModes; ++k) {
    if (k == n) continue;
    const double coupling = strength * atDamper(k) * atDamper(n);
    const TComplex share = kI * omega(n) * coupling / (omega(n) * omega(n) - omega(k) * omega(k));
    const TDeflection other = Sine(k, x);
    mode.value += share * other.value;
    mode.slope += share * other.slope;
  }
  return mode;
}

/// Bending wave in a long beam, exp(i (omega t - k x)) with k^4 = omega^2 m / (E I): Cremer, Heckl,
/// Structure-Borne Sound, chapter 2. The ends stand on soft bearings that reflect nothing.
TDeflection TravellingWave(double frequency, double x) {
  const double omega = 2.0 * pi * frequency;
  const double k = std::pow(omega * omega * kMassPerLength / BendingStiffness(kMeanHeight), 0.25);
  const TComplex value = std::exp(-kI * k * x);
  return {value, -kI * k * value};
}

using TSection =
    std::function<TMotion(const TVertex& place)>;  ///< x from the left end, y from deck

/// Cross-sections stay plane and normal to the axis at half the mean height.
TMotion VerticalMotion(const TDeflection& w, const TVertex& at) {
  return {-(at.y - 0.5 * kMeanHeight) * w.slope, w.value, 0.0};
}
TMotion LateralMotion(const TDeflection& v, const TVertex& at) {
  return {-at.z * v.slope, 0.0, v.value};
}
/// Turning about the bridge's axis at deck level, each truss bending in its plane.
TMotion TorsionMotion(const TDeflection& angle, const TVertex& at) {
  return {(at.y - 0.5 * kMeanHeight) * at.z * angle.slope, -at.z * angle.value, at.y * angle.value};
}

/// The abutments stand still; the largest motion of a truss node becomes `amplitude` in mm.
TShape BridgeShape(const TStructure& s, double frequency, double amplitude,
                   const TSection& section) {
  TShape shape{frequency, {}};
  const TVertex start = s.Nodes().front().position;  // of the left truss: deck level, left end
  double largest = 0.0;
  for (const TStructure::TPlace& node : s.Nodes()) {
    TMotion motion;
    if (node.id < kAbutments) {
      const TVertex& p = node.position;
      motion = section({p.x - start.x, p.y - start.y, p.z});
    }
    largest = std::max(largest, Magnitude(motion));
    shape.motions.push_back(motion);
  }
  for (TMotion& motion : shape.motions) motion = amplitude / largest * motion;
  return shape;
}

}  // namespace

TExample MakeBridge() {
  const TStructure s = BridgeStructure();
  const auto vertical = [](int n) {
    return [n](const TVertex& at) { return VerticalMotion(DampedMode(n, at.x), at); };
  };
  const double waveFrequency = 32.0;
  const std::vector<TShape> shapes = {
      BridgeShape(s, LateralFrequency(1), 3.0,
                  [](const TVertex& at) { return LateralMotion(Sine(1, at.x), at); }),
      BridgeShape(s, VerticalFrequency(1), 4.0, vertical(1)),
      BridgeShape(s, TorsionFrequency(1), 2.5,
                  [](const TVertex& at) { return TorsionMotion(Sine(1, at.x), at); }),
      BridgeShape(s, VerticalFrequency(2), 2.0, vertical(2)),
      BridgeShape(s, VerticalFrequency(3), 1.2, vertical(3)),
      BridgeShape(s, waveFrequency, 1.5,
                  [=](const TVertex& at) {
                    return VerticalMotion(TravellingWave(waveFrequency, at.x), at);
                  }),
  };
  return {"bridge", s.ModelText(), DataText(s, shapes, TRecordForm::Complex)};
}
