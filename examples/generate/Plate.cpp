#include "examples/generate/Plate.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "examples/generate/Beam.h"
#include "examples/generate/Eigen.h"

namespace {

using std::numbers::pi;

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

constexpr int kTerms = 6;  ///< beam shapes along the plate, and as many across

using TShapes = std::vector<TBeamShape>;

/// The shapes along the plate and across it. Their order is that of the weights of a mode: all
/// shapes across for the first shape along, and so on.
struct TBasis {
  TBasis() {
    for (int n = 0; n < kTerms; ++n) {
      along.push_back(TBeamShape::ClampedFree(n + 1));
      across.push_back(TBeamShape::FreeFree(n));
    }
  }
  TShapes along, across;
};

/// Integrals over products of a derivative of one shape and a derivative of another.
struct TIntegrals {
  explicit TIntegrals(const TShapes& shapes)
      : bending(shapes.size()), slopes(shapes.size()), mixed(shapes.size()) {
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      for (std::size_t j = 0; j < shapes.size(); ++j) {
        const TBeamShape &f = shapes[i], &g = shapes[j];
        bending(i, j) = Integral([&](double xi) { return f.Curvature(xi) * g.Curvature(xi); });
        slopes(i, j) = Integral([&](double xi) { return f.Slope(xi) * g.Slope(xi); });
        mixed(i, j) = Integral([&](double xi) { return f.Value(xi) * g.Curvature(xi); });
      }
    }
  }
  TSquareMatrix bending, slopes;
  TSquareMatrix mixed;  ///< value of the row's shape, curvature of the column's
};

/// Strain energy of the products over their kinetic energy, in 1/s2. The shapes are orthogonal with
/// mean square 1, so the mass matrix is the plate's mass times the unit matrix.
TSquareMatrix StiffnessPerMass(const TPlate& plate, const TBasis& basis) {
  const TIntegrals x(basis.along), z(basis.across);
  const double a2 = plate.length * plate.length, b2 = plate.width * plate.width;
  const double nu = plate.poisson;
  const double scale =
      plate.modulus * plate.thickness * plate.thickness / (12.0 * (1.0 - nu * nu) * plate.density);
  TSquareMatrix k(std::size_t{kTerms} * kTerms);
  for (std::size_t row = 0; row < k.Size(); ++row) {
    const std::size_t m = row / kTerms, i = row % kTerms;
    for (std::size_t column = 0; column < k.Size(); ++column) {
      const std::size_t n = column / kTerms, j = column % kTerms;
      const double along = i == j ? x.bending(m, n) / (a2 * a2) : 0.0;
      const double across = m == n ? z.bending(i, j) / (b2 * b2) : 0.0;
      const double poisson = x.mixed(n, m) * z.mixed(i, j) + x.mixed(m, n) * z.mixed(j, i);
      const double twist = x.slopes(m, n) * z.slopes(i, j);
      k(row, column) =
          scale * (along + across + (nu * poisson + 2.0 * (1.0 - nu) * twist) / (a2 * b2));
    }
  }
  return k;
}

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
TShape ShapeOf(const TPlateMode& mode) {
  const double peakVelocity = 250.0;  // mm/s
  std::vector<double> values;
  for (int i = 0; i <= kAlong; ++i) {
    for (int j = 0; j <= kAcross; ++j) {
      values.push_back(mode.Value(double(i) / kAlong, double(j) / kAcross));
    }
  }
  double largest = 0.0;
  for (const double value : values) largest = std::max(largest, std::abs(value));
  const double factor = peakVelocity / (2.0 * pi * mode.Frequency() * largest);

  TShape shape{mode.Frequency(), {}};
  shape.motions.resize(8);  // the vice stands still
  for (const double value : values) shape.motions.push_back({0.0, factor * value, 0.0});
  return shape;
}

}  // namespace

TPlateMode::TPlateMode(double frequency, std::vector<double> weights)
    : frequency_(frequency), weights_(std::move(weights)) {
  if (Value(1.0, 0.0) < 0.0) {
    for (double& weight : weights_) weight = -weight;
  }
}

double TPlateMode::Value(double along, double across) const {
  static const TBasis basis;
  double sum = 0.0;
  for (std::size_t k = 0; k < weights_.size(); ++k) {
    sum +=
        weights_[k] * basis.along[k / kTerms].Value(along) * basis.across[k % kTerms].Value(across);
  }
  return sum;
}

std::vector<TPlateMode> PlateModes(const TPlate& plate) {
  std::vector<TPlateMode> modes;
  for (TEigenpair& pair : SymmetricEigenpairs(StiffnessPerMass(plate, TBasis()))) {
    modes.emplace_back(std::sqrt(pair.value) / (2.0 * pi), std::move(pair.vector));
  }
  return modes;
}

TExample MakePlate() {
  const TPlate plate;
  const TStructure structure = PlateStructure(plate);
  const std::vector<TPlateMode> modes = PlateModes(plate);
  std::vector<TShape> shapes;
  for (std::size_t i = 0; i < 6; ++i) shapes.push_back(ShapeOf(modes[i]));
  return {"plate", structure.ModelText(), DataText(structure, shapes, TRecordForm::Real)};
}
