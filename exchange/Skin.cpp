#include "exchange/Skin.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint8_t kNone = 255;

struct TSolidShape {
  std::uint8_t corners;
  std::uint8_t faceCount;
  std::array<std::array<std::uint8_t, 4>, 6> faces;  ///< a triangle ends in kNone
};

constexpr TSolidShape kTetrahedron = {
    4, 4, {{{0, 2, 1, kNone}, {0, 1, 3, kNone}, {1, 2, 3, kNone}, {2, 0, 3, kNone}}}};
constexpr TSolidShape kWedge = {
    6, 5, {{{0, 2, 1, kNone}, {3, 4, 5, kNone}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}}}};
constexpr TSolidShape kBrick = {
    8, 6, {{{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}}};
constexpr TSolidShape kPyramid = {
    5, 5, {{{0, 3, 2, 1}, {0, 1, 4, kNone}, {1, 2, 4, kNone}, {2, 3, 4, kNone}, {3, 0, 4, kNone}}}};

const TSolidShape* ShapeOf(TElementShape shape) {
  switch (shape) {
    case TElementShape::Tetrahedron:
      return &kTetrahedron;
    case TElementShape::Wedge:
      return &kWedge;
    case TElementShape::Brick:
      return &kBrick;
    case TElementShape::Pyramid:
      return &kPyramid;
    case TElementShape::Bar:
    case TElementShape::Face:
      break;
  }
  return nullptr;
}

}  // namespace

std::size_t CornersOf(TElementShape solid) {
  const TSolidShape* shape = ShapeOf(solid);
  return shape ? shape->corners : 0;
}

std::size_t DropRepeated(std::span<std::int32_t> corners) {
  auto end = std::unique(corners.begin(), corners.end());
  while (end - corners.begin() > 1 && *(end - 1) == corners.front()) --end;
  return static_cast<std::size_t>(end - corners.begin());
}

void TSkin::Add(std::uint32_t solid, TElementShape shape, std::span<const std::int32_t> corners) {
  const TSolidShape& table = *ShapeOf(shape);
  for (std::size_t i = 0; i < table.faceCount; ++i) {
    const auto& places = table.faces[i];
    const std::size_t places4 = places[3] == kNone ? 3 : 4;
    TFace face = {{-1, -1, -1, -1}, {{}, 0, solid}};
    for (std::size_t j = 0; j < places4; ++j) face.face.Corners[j] = corners[places[j]];
    const std::size_t count = DropRepeated(std::span(face.face.Corners).first(places4));
    if (count < 3) continue;
    face.face.Count = static_cast<std::uint8_t>(count);
    std::copy_n(face.face.Corners.begin(), count, face.sorted.begin());
    std::ranges::sort(face.sorted);
    faces_.push_back(face);
  }
}

std::vector<TSolidFace> TSkin::Take() {
  TLarge<TFace> faces = std::move(faces_);
  std::ranges::sort(faces, {}, &TFace::sorted);
  std::vector<TSolidFace> outer;
  for (auto at = faces.begin(); at != faces.end();) {
    const auto next =
        std::find_if(at, faces.end(), [&](const TFace& face) { return face.sorted != at->sorted; });
    if (next - at == 1) outer.push_back(at->face);
    at = next;
  }
  std::ranges::sort(outer, {},
                    [](const TSolidFace& face) { return std::pair(face.Solid, face.Corners); });
  return outer;
}
