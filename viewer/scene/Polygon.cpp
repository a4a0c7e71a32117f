#include "viewer/scene/Polygon.h"

#include <algorithm>
#include <array>

namespace {

/// The corners of a polygon that are left to be filled, seen along its normal.
class TRemainder {
 public:
  TRemainder(TMesh& mesh, std::uint32_t first, const TPoint& normal)
      : mesh_(mesh), normal_(normal) {
    while (first < mesh.vertices.size()) corners_[count_++] = first++;
  }

  std::uint32_t Count() const { return count_; }

  /// Cuts off one triangle that holds no other corner and no dent. False if there is none.
  bool CutEar() {
    for (std::uint32_t i = 0; i < count_; ++i) {
      if (!IsEar(i)) continue;
      Cut(i);
      return true;
    }
    return false;
  }
  void Cut(std::uint32_t i) {
    mesh_.indices.insert(mesh_.indices.end(), {Before(i), corners_[i], After(i)});
    std::copy(corners_.begin() + i + 1, corners_.begin() + count_, corners_.begin() + i);
    --count_;
  }

 private:
  std::uint32_t Before(std::uint32_t i) const { return corners_[(i + count_ - 1) % count_]; }
  std::uint32_t After(std::uint32_t i) const { return corners_[(i + 1) % count_]; }

  /// Twice the area of a triangle of corners; negative where they run clockwise.
  float Turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
    const TPoint& p = mesh_.vertices[a].position;
    return Dot(Cross(mesh_.vertices[b].position - p, mesh_.vertices[c].position - p), normal_);
  }

  bool IsEar(std::uint32_t i) const {
    const std::uint32_t a = Before(i), b = corners_[i], c = After(i);
    if (!(Turn(a, b, c) > 0.0f)) return false;
    return std::none_of(corners_.begin(), corners_.begin() + count_, [&](std::uint32_t p) {
      return p != a && p != b && p != c && Turn(a, b, p) >= 0.0f && Turn(b, c, p) >= 0.0f &&
             Turn(c, a, p) >= 0.0f;
    });
  }

  TMesh& mesh_;
  const TPoint normal_;
  std::array<std::uint32_t, kMostDentedCorners> corners_;
  std::uint32_t count_ = 0;
};

/// Whether the outline turns right at any corner.
bool HasDents(const TMesh& mesh, std::uint32_t first, const TPoint& normal) {
  const auto count = static_cast<std::uint32_t>(mesh.vertices.size()) - first;
  const auto at = [&](std::uint32_t i) { return mesh.vertices[first + i % count].position; };
  for (std::uint32_t i = 0; i < count; ++i) {
    if (Dot(Cross(at(i + 1) - at(i), at(i + 2) - at(i + 1)), normal) < 0.0f) return true;
  }
  return false;
}

}  // namespace

void FillPolygon(TMesh& mesh, std::uint32_t first, const TPoint& normal) {
  const auto end = static_cast<std::uint32_t>(mesh.vertices.size());
  const std::uint32_t count = end - first;
  if (count == 3 || count > kMostDentedCorners || !HasDents(mesh, first, normal)) {
    for (std::uint32_t i = first + 2; i < end; ++i) {
      mesh.indices.insert(mesh.indices.end(), {first, i - 1, i});
    }
    return;
  }
  TRemainder rest(mesh, first, normal);
  while (rest.Count() > 3 && rest.CutEar()) continue;
  while (rest.Count() >= 3) rest.Cut(1);
}
