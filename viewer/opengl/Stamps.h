#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "viewer/scene/Scene.h"

/// The half of a unit solid that faces the viewer: a solid of size 1 about the origin.
struct TStamp {
  struct TCorner {
    TPoint position;
    TNormal normal;
  };
  std::vector<TCorner> corners;
  std::vector<std::uint16_t> indices;
};

/// The three sides of a cube of edge 1, parallel to the axes, that face the viewer.
TStamp CubeStamp(const TPoint& toViewer);

/// Half a sphere of radius 1 whose rim, seen by the viewer, is a polygon of `sides` corners.
TStamp SphereStamp(const TPoint& toViewer, int sides);

/// How many corners the rim of a sphere of this radius in pixels needs to look round.
int SphereSides(double pixelRadius);

/// Draws marks as tessellated solids with OpenGL 1.1, many of them in one call. The vertex arrays
/// of the current context are left set to the stamps' own.
class TStamper {
 public:
  void DrawCubes(std::span<const TMark> marks, const TPoint& toViewer);
  /// `pixelsPerUnit` decides how finely each sphere is divided.
  void DrawSpheres(std::span<const TMark> marks, const TPoint& toViewer, double pixelsPerUnit);

 private:
  void Draw(std::span<const TMark> marks, const TStamp& stamp);
  void Repeat(const TStamp& stamp, std::size_t count);

  std::map<int, TStamp> spheres_;  ///< by sides, for the direction below
  TPoint spheresToViewer_;
  std::vector<TMeshVertex> vertices_;
  std::vector<std::uint16_t> indices_;
};
