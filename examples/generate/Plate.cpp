#include "examples/generate/Plate.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "examples/generate/Beam.h"

namespace {

constexpr int kAlong = 20;   ///< fields of the mesh along the plate
constexpr int kAcross = 10;  ///< and across it

constexpr std::int32_t kTop = Rgb(150, 205, 255);
constexpr std::int32_t kBottom = Rgb(255, 176, 96);
constexpr std::int32_t kEdge = Rgb(255, 255, 255);
constexpr std::int32_t kVice = Rgb(160, 166, 178);

int PlateNode(int i, int j) { return 100 * (i + 1) + j + 1; }

/// Integral over xi from 0 to 1 by Simpson's rule.
template <class Function>
double Integral(Function f) {
  constexpr int kSteps = 400;
  double sum = f(0.0) + f(1.0);
  for (int i = 1; i < kSteps; ++i) sum += (i % 2 ? 4.0 : 2.0) * f(double(i) / kSteps);
  return sum / (3.0 * kSteps);
}

struct TBeamIntegrals {
  explicit TBeamIntegrals(const TBeamShape& s)
      : square(Integral([&](double xi) { return s.Value(xi) * s.Value(xi); })),
        slope(Integral([&](double xi) { return s.Slope(xi) * s.Slope(xi); })),
        curvature(Integral([&](double xi) { return s.Curvature(xi) * s.Curvature(xi); })),
        mixed(Integral([&](double xi) { return s.Value(xi) * s.Curvature(xi); })) {}

  double square, slope, curvature, mixed;
};

/// Plate and vice in m: x along the plate, y up, z across, the origin amid the plate.
TStructure PlateStructure(const TPlate& plate) {
  TStructure s;
  s.NodeRadius = 0.0018;
  s.ElementRadius = 0.001;
  const double length = plate.length, width = plate.width;
  const double jaw = 0.022, depth = 0.040, overhang = 0.012;

  // The jaws hold the plate from behind its first row of nodes.
  const double x0 = -0.5 * length, z0 = 0.5 * width + overhang;
  int id = 0;
  for (const double y : {-jaw, jaw}) {
    s.AddNode(++id, {x0 - depth, y, z0});
    s.AddNode(++id, {x0, y, z0});
    s.AddNode(++id, {x0, y, -z0});
    s.AddNode(++id, {x0 - depth, y, -z0});
  }
  for (int i = 0; i <= kAlong; ++i) {
    for (int j = 0; j <= kAcross; ++j) {
      s.AddNode(PlateNode(i, j),
                {x0 + length * i / kAlong, 0.0, width * (0.5 - double(j) / kAcross)});
    }
  }

  s.AddBox({1, 2, 3, 4, 5, 6, 7, 8}, kVice);
  for (int i = 0; i < kAlong; ++i) {
    for (int j = 0; j < kAcross; ++j) {
      s.AddTwoSidedFace(
          {PlateNode(i, j), PlateNode(i + 1, j), PlateNode(i + 1, j + 1), PlateNode(i, j + 1)},
          kTop, kBottom);
    }
  }
  for (int i = 0; i < kAlong; ++i) {
    s.AddBar(PlateNode(i, 0), PlateNode(i + 1, 0), kEdge);
    s.AddBar(PlateNode(i, kAcross), PlateNode(i + 1, kAcross), kEdge);
  }
  for (int j = 0; j < kAcross; ++j) {
    s.AddBar(PlateNode(kAlong, j), PlateNode(kAlong, j + 1), kEdge);
  }
  return s;
}

/// The mode over the plate's nodes, scaled to the same peak velocity for every mode, as an exciter
/// under velocity control leaves them: higher modes move less.
TShape PlateMode(const TPlate& plate, int along, int across) {
  const double peakVelocity = 250.0;  // mm/s
  const TBeamShape x = TBeamShape::ClampedFree(along), z = TBeamShape::FreeFree(across);
  TShape shape{PlateFrequency(plate, along, across), {}};

  std::vector<double> values;
  for (int i = 0; i <= kAlong; ++i) {
    for (int j = 0; j <= kAcross; ++j) {
      values.push_back(x.Value(double(i) / kAlong) * z.Value(double(j) / kAcross));
    }
  }
  double largest = 0.0;
  for (const double value : values) largest = std::max(largest, std::abs(value));
  const double factor = peakVelocity / (2.0 * std::numbers::pi * shape.frequency * largest);

  shape.motions.resize(8);  // the vice stands still
  for (const double value : values) shape.motions.push_back({0.0, factor * value, 0.0});
  return shape;
}

}  // namespace

double PlateFrequency(const TPlate& plate, int along, int across) {
  const TBeamIntegrals x(TBeamShape::ClampedFree(along)), z(TBeamShape::FreeFree(across));
  const double a = plate.length, b = plate.width, nu = plate.poisson;
  const double bendingStiffness =
      plate.modulus * std::pow(plate.thickness, 3) / (12.0 * (1.0 - nu * nu));
  const double strain =
      x.curvature * z.square / (a * a * a * a) + x.square * z.curvature / (b * b * b * b) +
      (2.0 * nu * x.mixed * z.mixed + 2.0 * (1.0 - nu) * x.slope * z.slope) / (a * a * b * b);
  const double omegaSquared =
      bendingStiffness * strain / (plate.density * plate.thickness * x.square * z.square);
  return std::sqrt(omegaSquared) / (2.0 * std::numbers::pi);
}

TExample MakePlate() {
  const TPlate plate;
  const TStructure structure = PlateStructure(plate);
  const int modes[][2] = {{1, 0}, {1, 1}, {2, 0}, {2, 1}, {1, 2}, {3, 0}};
  std::vector<TShape> shapes;
  for (const auto& [along, across] : modes) shapes.push_back(PlateMode(plate, along, across));
  std::sort(shapes.begin(), shapes.end(),
            [](const TShape& a, const TShape& b) { return a.frequency < b.frequency; });
  return {"plate", structure.ModelText(), DataText(structure, shapes, TRecordForm::Real)};
}
