#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "model/Color.h"
#include "model/Vertex.h"

/// A point or direction as OpenGL gets it.
struct TPoint {
  float x = 0.0f;
  float y = 0.0f;
  float z = 0.0f;

  friend constexpr bool operator==(const TPoint&, const TPoint&) = default;

  friend constexpr TPoint operator+(const TPoint& a, const TPoint& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend constexpr TPoint operator-(const TPoint& a, const TPoint& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
  }
  friend constexpr TPoint operator*(const TPoint& a, float f) {
    return {a.x * f, a.y * f, a.z * f};
  }
};

constexpr float Dot(const TPoint& a, const TPoint& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

constexpr TPoint Cross(const TPoint& a, const TPoint& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Red, green, blue and an opaque alpha, one byte each.
struct TRgba {
  TRgba() = default;
  explicit TRgba(TColor color)
      : red(static_cast<std::uint8_t>(color.RedPart())),
        green(static_cast<std::uint8_t>(color.GreenPart())),
        blue(static_cast<std::uint8_t>(color.BluePart())) {}

  friend constexpr bool operator==(const TRgba&, const TRgba&) = default;

  std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
};

/// A unit normal in steps of 1/127: 4 bytes, and no further off than half a degree.
struct TNormal {
  TNormal() = default;
  explicit TNormal(const TPoint& n) : x(Step(n.x)), y(Step(n.y)), z(Step(n.z)) {}

  static std::int8_t Step(float v) {
    return static_cast<std::int8_t>(v * 127.0f + (v < 0.0f ? -0.5f : 0.5f));
  }

  std::int8_t x = 0, y = 0, z = 0, unused = 0;
};

struct TMeshVertex {
  TPoint position;
  TNormal normal;
  TRgba color;
};

/// Lit triangles, three indices each, counterclockwise seen from outside.
struct TMesh {
  std::vector<TMeshVertex> vertices;
  std::vector<std::uint32_t> indices;

  void Clear() {
    vertices.clear();
    indices.clear();
  }
};

/// The axes of a cylinder: `along` is its direction; `right` and `up` are where the x and y axes go
/// when the z axis is tilted onto it in the plane of both, so that a corner of a prism stands where
/// a cylinder that was made along z and turned onto the direction has it.
struct TCylinderFrame {
  TCylinderFrame(const TPoint& a, const TPoint& b);

  double length = 0.0;  ///< 0: no direction, the axes mean nothing
  TPoint right, up, along;
};

/// What of a cylinder is drawn besides its sides.
struct TCaps {
  bool start = true;
  bool end = true;
};

/// Appends the half of a closed cylinder that faces the viewer: its sides with radial normals and
/// the cap that is seen. Nothing for a cylinder without length.
void AddCylinder(TMesh& mesh, const TPoint& a, const TPoint& b, float radius, int slices,
                 const TPoint& toViewer, TRgba color, TCaps caps = {});

/// Vertices of one prism of AddPrism, and the triangles they form.
inline constexpr std::uint32_t kPrismVertices = 6;
inline constexpr std::array<std::uint32_t, 12> kPrismIndices = {0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4};

/// Appends the two sides of a four-sided cylinder that face the viewer: of three neighbouring edges
/// the start and the end each, the middle edge being the nearest to the viewer. The frame has a
/// length.
void AddPrism(std::vector<TMeshVertex>& prisms, const TCylinderFrame& frame, const TPoint& a,
              const TPoint& b, float radius, const TPoint& toViewer, TRgba color);
