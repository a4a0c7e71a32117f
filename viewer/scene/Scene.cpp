#include "viewer/scene/Scene.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "viewer/scene/Polygon.h"

namespace {

constexpr int kOwnRadiusSlices = 20;
constexpr int kListRadiusSlices = 4;
constexpr int kShaftSlices = 10;

/// Larger numbers are left out, so that sums and products of a few stay finite as float.
constexpr double kLargest = 1e30;

bool CanDrawLength(double length) { return length > 0.0 && length <= kLargest; }

TPoint ToPoint(const TVertex& v) {
  if (std::abs(v.x) <= kLargest && std::abs(v.y) <= kLargest && std::abs(v.z) <= kLargest) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
  }
  return {std::numeric_limits<float>::quiet_NaN(), 0.0f, 0.0f};
}

TPoint Between(const TPoint& a, const TPoint& b, double fraction) {
  return a + (b - a) * static_cast<float>(fraction);
}

}  // namespace

/// What the list being added lends to its elements.
struct TScene::TStyle {
  explicit TStyle(const TDataNodeList& list)
      : elementColor(list.ElementColor),
        edgeColor(list.EdgeColor),
        radius(list.ElementRadius),
        hidingRadius(HidingRadius(list)) {
    if (radius < hidingRadius) {
      hiddenLength = 2.0 * std::sqrt(hidingRadius * hidingRadius - radius * radius);
    }
  }

  /// Radius of a ball around each node that its symbol covers; 0 if there is none.
  static double HidingRadius(const TDataNodeList& list) {
    if (!list.ShowNodes || !CanDrawLength(list.NodeRadius)) return 0.0;
    return list.NodeShape == TNodeShape::Cube ? 0.5 * list.NodeRadius : list.NodeRadius;
  }

  TColor elementColor, edgeColor;
  double radius;
  double hidingRadius;
  double hiddenLength = 0.0;  ///< a bar up to this length lies inside the symbols of its nodes
};

void TScene::Begin(const TVertex& toViewer) {
  toViewer_ = ToPoint(toViewer);
  spheres_.clear();
  cubes_.clear();
  prisms_.clear();
  cylinders_.Clear();
  faces_.Clear();
  outlines_.clear();
}

void TScene::AddList(const TDataNodeList& list) {
  measured_.clear();
  NoteGuesses(list);
  Add(list);
}

void TScene::AddSum(const TDataNodeList& display, const TNodesSet& parts) {
  measured_.clear();
  for (const TDataNodeList* list : parts) NoteGuesses(*list);
  Add(display);
}

void TScene::NoteGuesses(const TDataNodeList& list) {
  if (list.IsInterpolated) measured_.push_back(&list.Measured);
}

bool TScene::IsGuessed(std::size_t node) const {
  return std::ranges::any_of(measured_, [node](const std::vector<bool>* measured) {
    return node < measured->size() && !(*measured)[node];
  });
}

TRgba TScene::ColorOf(const TElement& element, const TStyle& style) const {
  const TColor color = element.Color.IsInherited() ? style.elementColor : element.Color;
  const bool isGuessed =
      !measured_.empty() && std::ranges::any_of(element.Nodes(), [this](std::int32_t node) {
        return IsGuessed(static_cast<std::size_t>(node));
      });
  return TRgba(isGuessed ? color.HalfGrey() : color);
}

void TScene::Add(const TDataNodeList& list) {
  const bool withElements = list.ShowElements && list.Elements;
  if (!withElements && !list.ShowNodes) return;
  PlaceNodes(list, positions_);
  points_.resize(positions_.size());
  std::transform(positions_.begin(), positions_.end(), points_.begin(), ToPoint);
  if (withElements) {
    const TStyle style(list);
    for (const TElement* element : *list.Elements) AddElement(*element, style);
  }
  if (list.ShowNodes) AddNodes(list);
}

bool TScene::CanDraw(std::int32_t node) const {
  return node >= 0 && static_cast<std::size_t>(node) < points_.size() && !std::isnan(At(node).x);
}

void TScene::AddElement(const TElement& element, const TStyle& style) {
  const auto nodes = element.Nodes();
  if (!std::all_of(nodes.begin(), nodes.end(), [this](std::int32_t n) { return CanDraw(n); })) {
    return;
  }
  switch (element.Type) {
    case TElement::kBar:
      if (nodes.size() == 2) AddBar(element, style);
      break;
    case TElement::kRoll:
      if (nodes.size() == 2) AddRoll(element, style);
      break;
    case TElement::kFace:
      if (nodes.size() >= 3) AddFace(element, style);
      break;
    default:
      AddPoint(element, style);
  }
}

void TScene::AddBar(const TElement& element, const TStyle& style) {
  if (element.Radius == 0.0) return AddListBar(element, style);
  if (!CanDrawLength(element.Radius)) return;
  const bool caps = element.Radius > style.hidingRadius;
  AddCylinder(cylinders_, At(element.Nodes()[0]), At(element.Nodes()[1]),
              static_cast<float>(element.Radius), kOwnRadiusSlices, toViewer_,
              ColorOf(element, style), {caps, caps});
}

void TScene::AddListBar(const TElement& element, const TStyle& style) {
  if (!CanDrawLength(style.radius)) return;
  const TPoint &a = At(element.Nodes()[0]), &b = At(element.Nodes()[1]);
  const auto radius = static_cast<float>(style.radius);
  if (style.radius > style.hidingRadius) {
    AddCylinder(cylinders_, a, b, radius, kListRadiusSlices, toViewer_, ColorOf(element, style));
    return;
  }
  const TCylinderFrame frame(a, b);
  if (frame.length <= style.hiddenLength) return;
  AddPrism(prisms_, frame, a, b, radius, toViewer_, ColorOf(element, style));
}

void TScene::AddRoll(const TElement& element, const TStyle& style) {
  if (element.Radius == 0.0) return AddListBar(element, style);
  const TPoint &a = At(element.Nodes()[0]), &b = At(element.Nodes()[1]);
  const double share = element.RollParam2;
  if (!(std::abs(share) <= kLargest)) return;
  const TPoint p1 = Between(a, b, share), p2 = Between(a, b, 1.0 - share);
  if (!(std::abs(p1.x) + std::abs(p1.y) + std::abs(p1.z) <= kLargest)) return;
  const TRgba color = ColorOf(element, style);
  if (CanDrawLength(element.RollParam1)) {
    const auto shaft = static_cast<float>(element.RollParam1);
    AddCylinder(cylinders_, a, p1, shaft, kShaftSlices, toViewer_, color);
    AddCylinder(cylinders_, p2, b, shaft, kShaftSlices, toViewer_, color);
  }
  if (CanDrawLength(element.Radius)) {
    AddCylinder(cylinders_, p1, p2, static_cast<float>(element.Radius), kOwnRadiusSlices, toViewer_,
                color);
  }
}

std::optional<TPoint> TScene::FaceNormal(std::span<const std::int32_t> nodes) const {
  double x = 0.0, y = 0.0, z = 0.0;
  const TPoint origin = At(nodes[0]);
  TPoint last = At(nodes.back()) - origin;
  for (const std::int32_t node : nodes) {
    const TPoint p = At(node) - origin;
    x += (double(last.y) - p.y) * (double(last.z) + p.z);
    y += (double(last.z) - p.z) * (double(last.x) + p.x);
    z += (double(last.x) - p.x) * (double(last.y) + p.y);
    last = p;
  }
  const double length = std::sqrt(x * x + y * y + z * z);
  if (length == 0.0) return std::nullopt;
  return TPoint{static_cast<float>(x / length), static_cast<float>(y / length),
                static_cast<float>(z / length)};
}

void TScene::AddFace(const TElement& element, const TStyle& style) {
  const auto nodes = element.Nodes();
  if (const auto normal = FaceNormal(nodes)) {
    const TRgba color = ColorOf(element, style);
    const auto first = static_cast<std::uint32_t>(faces_.vertices.size());
    const bool isBack = element.IsTwoSided && Dot(*normal, toViewer_) < 0.0f;
    const TPoint front = isBack ? *normal * -1.0f : *normal;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::int32_t node = nodes[isBack ? nodes.size() - 1 - i : i];
      faces_.vertices.push_back({At(node), TNormal(front), color});
    }
    FillPolygon(faces_, first, front);
  }
  const TRgba edge(style.edgeColor);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    outlines_.push_back({At(nodes[i]), edge});
    outlines_.push_back({At(nodes[(i + 1) % nodes.size()]), edge});
  }
}

void TScene::AddPoint(const TElement& element, const TStyle& style) {
  const double radius = element.Radius != 0.0 ? element.Radius : style.radius;
  if (!CanDrawLength(radius)) return;
  spheres_.push_back({At(element.Nodes()[0]), static_cast<float>(radius), ColorOf(element, style)});
}

void TScene::AddNodes(const TDataNodeList& list) {
  if (!CanDrawLength(list.NodeRadius)) return;
  std::vector<TMark>& marks = list.NodeShape == TNodeShape::Cube ? cubes_ : spheres_;
  const auto size = static_cast<float>(list.NodeRadius);
  const TRgba color(list.NodeColor);
  const TRgba guessed(list.NodeColor.HalfGrey());
  for (std::size_t i = 0; i < points_.size(); ++i) {
    if (std::isnan(points_[i].x)) continue;
    marks.push_back({points_[i], size, IsGuessed(i) ? guessed : color});
  }
}

void BuildScene(TScene& scene, const TVertex& toViewer, const TModel& model,
                const TMeasuredData& data, TScaleType scaleType, bool showModel) {
  scene.Begin(toViewer);
  if (showModel && model.Loaded) scene.AddList(model.Nodes);
  if (data.Shown.Empty()) return;
  if (scaleType == TScaleType::Sum) {
    scene.AddSum(model.Display, data.Shown);
    return;
  }
  for (const TDataNodeList* list : data.Shown) scene.AddList(*list);
}
