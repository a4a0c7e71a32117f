#include "viewer/scene/Solids.h"

#include <cmath>
#include <numbers>

namespace {

/// Corners of a regular polygon, the first one up, then towards the right.
struct TCorners {
  explicit TCorners(int slices) {
    for (int i = 0; i < slices; ++i) {
      const double angle = 2.0 * std::numbers::pi * i / slices;
      across.push_back(static_cast<float>(std::sin(angle)));
      upward.push_back(static_cast<float>(std::cos(angle)));
    }
  }
  std::vector<float> across, upward;
};

const TCorners& CornersOf(int slices) {
  static const TCorners few(4), some(10), many(20);
  return slices == 4 ? few : slices == 10 ? some : many;
}

TPoint Radial(const TCylinderFrame& frame, const TCorners& corners, int corner) {
  const auto i = static_cast<std::size_t>(corner);
  return frame.right * corners.across[i] + frame.up * corners.upward[i];
}

/// Whether the side that follows a corner faces the viewer.
bool SideFaces(const TCylinderFrame& frame, const TCorners& corners, int corner, int slices,
               const TPoint& toViewer) {
  return Dot(Radial(frame, corners, corner) + Radial(frame, corners, (corner + 1) % slices),
             toViewer) > 0.0f;
}

void AddSides(TMesh& mesh, const TCylinderFrame& frame, const TPoint& a, const TPoint& b,
              float radius, int slices, const TPoint& toViewer, TRgba color) {
  const TCorners& corners = CornersOf(slices);
  bool joined = false;  // the last two vertices are this corner's
  for (int i = 0; i < slices; ++i) {
    if (!SideFaces(frame, corners, i, slices, toViewer)) {
      joined = false;
      continue;
    }
    for (int corner = joined ? i + 1 : i; corner <= i + 1; ++corner) {
      const TPoint normal = Radial(frame, corners, corner % slices);
      mesh.vertices.push_back({a + normal * radius, TNormal(normal), color});
      mesh.vertices.push_back({b + normal * radius, TNormal(normal), color});
    }
    joined = true;
    const auto next = static_cast<std::uint32_t>(mesh.vertices.size());
    for (std::uint32_t k : {4u, 3u, 2u, 3u, 1u, 2u}) mesh.indices.push_back(next - k);
  }
}

/// `sense`: 1 for a cap that looks along the cylinder, -1 for one that looks back.
void AddCap(TMesh& mesh, const TCylinderFrame& frame, const TPoint& center, float radius,
            int slices, int sense, TRgba color) {
  const TCorners& corners = CornersOf(slices);
  const auto first = static_cast<std::uint32_t>(mesh.vertices.size());
  const TNormal normal(frame.along * static_cast<float>(sense));
  for (int i = 0; i < slices; ++i) {
    const int corner = sense > 0 ? slices - 1 - i : i;
    mesh.vertices.push_back({center + Radial(frame, corners, corner) * radius, normal, color});
  }
  for (std::uint32_t i = 2; i < static_cast<std::uint32_t>(slices); ++i) {
    mesh.indices.insert(mesh.indices.end(), {first, first + i - 1, first + i});
  }
}

}  // namespace

TCylinderFrame::TCylinderFrame(const TPoint& a, const TPoint& b) {
  const double dx = double(b.x) - a.x, dy = double(b.y) - a.y, dz = double(b.z) - a.z;
  length = std::sqrt(dx * dx + dy * dy + dz * dz);
  if (length == 0.0) return;
  const double x = dx / length, y = dy / length, z = dz / length;
  along = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  const double level = x * x + y * y;
  if (level == 0.0) {
    // Straight up needs no tilt; straight down is tilted by 180 degrees about the y axis.
    right = {z < 0.0 ? -1.0f : 1.0f, 0.0f, 0.0f};
    up = {0.0f, 1.0f, 0.0f};
    return;
  }
  // The tilt's 1 - cos over the square of its sine, in the form that keeps its digits.
  const double k = z < 0.0 ? (1.0 - z) / level : 1.0 / (1.0 + z);
  right = {static_cast<float>(1.0 - k * x * x), static_cast<float>(-k * x * y),
           static_cast<float>(-x)};
  up = {static_cast<float>(-k * x * y), static_cast<float>(1.0 - k * y * y),
        static_cast<float>(-y)};
}

void AddCylinder(TMesh& mesh, const TPoint& a, const TPoint& b, float radius, int slices,
                 const TPoint& toViewer, TRgba color, TCaps caps) {
  const TCylinderFrame frame(a, b);
  if (frame.length == 0.0) return;
  AddSides(mesh, frame, a, b, radius, slices, toViewer, color);
  const float facing = Dot(frame.along, toViewer);
  if (caps.start && facing < 0.0f) AddCap(mesh, frame, a, radius, slices, -1, color);
  if (caps.end && facing > 0.0f) AddCap(mesh, frame, b, radius, slices, 1, color);
}

void AddPrism(std::vector<TMeshVertex>& prisms, const TCylinderFrame& frame, const TPoint& a,
              const TPoint& b, float radius, const TPoint& toViewer, TRgba color) {
  const float right = Dot(frame.right, toViewer);
  const float up = Dot(frame.up, toViewer);
  const bool rightFirst = std::abs(right) >= std::abs(up);
  const float sense = (rightFirst ? right : up) < 0.0f ? -1.0f : 1.0f;
  const TPoint middle = (rightFirst ? frame.right : frame.up) * sense;
  const TPoint before = (rightFirst ? frame.up : frame.right) * (rightFirst ? sense : -sense);
  const TPoint m = middle * radius, s = before * radius;
  const TNormal mn(middle), sn(before), tn(before * -1.0f);
  const std::size_t first = prisms.size();
  prisms.resize(first + kPrismVertices);
  TMeshVertex* v = prisms.data() + first;
  v[0] = {a + s, sn, color};
  v[1] = {b + s, sn, color};
  v[2] = {a + m, mn, color};
  v[3] = {b + m, mn, color};
  v[4] = {a - s, tn, color};
  v[5] = {b - s, tn, color};
}
