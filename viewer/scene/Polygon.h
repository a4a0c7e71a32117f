#pragma once

#include <cstdint>

#include "viewer/scene/Solids.h"

/// Corners of the largest polygon that may have dents; a larger one is filled as if it had none,
/// since the search takes time with the cube of this number in every frame.
inline constexpr std::uint32_t kMostDentedCorners = 16;

/// Appends the triangles that fill a polygon: the mesh's vertices from `first` to its last, in
/// order. `normal` is the polygon's mean normal, about which the corners run counterclockwise.
/// Corners may lie somewhat off a plane. A polygon that crosses itself is filled somehow.
void FillPolygon(TMesh& mesh, std::uint32_t first, const TPoint& normal);
