#include "viewer/opengl/Stamps.h"

#include <qopengl.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "viewer/scene/Vertexarrays.h"

namespace {

constexpr int kFewestSides = 6;
constexpr int kMostSides = 128;
/// How far, in pixels, the rim may lie from the circle, on either side.
constexpr double kRimError = 0.125;
/// Vertices of one call: few enough for 16-bit indices and the processor's cache.
constexpr std::size_t kVerticesPerCall = 8192;

}  // namespace

TStamp CubeStamp(const TPoint& toViewer) {
  const float sx = toViewer.x < 0.0f ? -1.0f : 1.0f;
  const float sy = toViewer.y < 0.0f ? -1.0f : 1.0f;
  const float sz = toViewer.z < 0.0f ? -1.0f : 1.0f;
  // Per side its outward normal and two edges that, in this order, turn counterclockwise.
  const TPoint x{sx, 0, 0}, y{0, sy, 0}, z{0, 0, sz};
  const bool even = sx * sy * sz > 0.0f;
  TStamp stamp;
  for (const auto& [normal, first, second] :
       {std::array{x, y, z}, std::array{y, z, x}, std::array{z, x, y}}) {
    const TPoint a = (even ? first : second) * 0.5f, b = (even ? second : first) * 0.5f;
    const TPoint center = normal * 0.5f;
    const auto k = static_cast<std::uint16_t>(stamp.corners.size());
    for (const TPoint& p : {center - a - b, center + a - b, center + a + b, center - a + b}) {
      stamp.corners.push_back({p, TNormal(normal)});
    }
    for (const int i : {0, 1, 2, 0, 2, 3}) {
      stamp.indices.push_back(static_cast<std::uint16_t>(k + i));
    }
  }
  return stamp;
}

TStamp SphereStamp(const TPoint& toViewer, int sides) {
  const TCylinderFrame frame({}, toViewer);
  const int rings = std::max(2, sides / 4);
  // The rim covers as much as the circle: its corners lie outside as its chords lie inside.
  const double angle = 2.0 * std::numbers::pi / sides;
  const double widened = std::sqrt(angle / std::sin(angle));
  TStamp stamp;
  stamp.corners.push_back({frame.along, TNormal(frame.along)});
  for (int ring = 1; ring <= rings; ++ring) {
    const double polar = 0.5 * std::numbers::pi * ring / rings;
    for (int side = 0; side < sides; ++side) {
      const double azimuth = angle * side;
      const TPoint p = frame.along * static_cast<float>(std::cos(polar)) +
                       frame.right * static_cast<float>(std::sin(polar) * std::cos(azimuth)) +
                       frame.up * static_cast<float>(std::sin(polar) * std::sin(azimuth));
      stamp.corners.push_back({ring < rings ? p : p * static_cast<float>(widened), TNormal(p)});
    }
  }
  const auto corner = [sides](int ring, int side) {
    return static_cast<std::uint16_t>(ring == 0 ? 0 : 1 + (ring - 1) * sides + side % sides);
  };
  for (int ring = 0; ring < rings; ++ring) {
    for (int side = 0; side < sides; ++side) {
      const std::uint16_t a = corner(ring, side), b = corner(ring + 1, side),
                          c = corner(ring + 1, side + 1), d = corner(ring, side + 1);
      stamp.indices.insert(stamp.indices.end(), {a, b, c});
      if (ring > 0) stamp.indices.insert(stamp.indices.end(), {a, c, d});
    }
  }
  return stamp;
}

int SphereSides(double pixelRadius) {
  if (!(pixelRadius > 2.0 * kRimError)) return kFewestSides;
  const double exact = std::numbers::pi / std::acos(1.0 - 2.0 * kRimError / pixelRadius);
  if (!(exact < kMostSides)) return kMostSides;
  return std::max(kFewestSides, 2 * static_cast<int>(std::ceil(0.5 * exact)));
}

void TStamper::DrawCubes(std::span<const TMark> marks, const TPoint& toViewer) {
  if (!marks.empty()) Draw(marks, CubeStamp(toViewer));
}

void TStamper::DrawSpheres(std::span<const TMark> marks, const TPoint& toViewer,
                           double pixelsPerUnit) {
  if (toViewer != spheresToViewer_) spheres_.clear();
  spheresToViewer_ = toViewer;
  const auto sidesOf = [pixelsPerUnit](const TMark& mark) {
    return SphereSides(mark.size * std::abs(pixelsPerUnit));
  };
  for (std::size_t first = 0; first < marks.size();) {
    const int sides = sidesOf(marks[first]);
    std::size_t end = first + 1;
    while (end < marks.size() &&
           (marks[end].size == marks[first].size || sidesOf(marks[end]) == sides)) {
      ++end;
    }
    TStamp& stamp = spheres_[sides];
    if (stamp.indices.empty()) stamp = SphereStamp(toViewer, sides);
    Draw(marks.subspan(first, end - first), stamp);
    first = end;
  }
}

void TStamper::Draw(std::span<const TMark> marks, const TStamp& stamp) {
  const std::size_t perCall = std::max<std::size_t>(1, kVerticesPerCall / stamp.corners.size());
  Repeat(stamp, std::min(perCall, marks.size()));
  for (; !marks.empty(); marks = marks.subspan(std::min(perCall, marks.size()))) {
    const auto some = marks.first(std::min(perCall, marks.size()));
    vertices_.clear();
    for (const TMark& mark : some) {
      for (const TStamp::TCorner& corner : stamp.corners) {
        vertices_.push_back({mark.center + corner.position * mark.size, corner.normal, mark.color});
      }
    }
    PointTo(vertices_);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(some.size() * stamp.indices.size()),
                   GL_UNSIGNED_SHORT, indices_.data());
  }
}

void TStamper::Repeat(const TStamp& stamp, std::size_t count) {
  indices_.clear();
  for (std::size_t i = 0; i < count; ++i) {
    for (const std::uint16_t index : stamp.indices) {
      indices_.push_back(static_cast<std::uint16_t>(index + i * stamp.corners.size()));
    }
  }
}
