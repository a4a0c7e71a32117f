#include "viewer/scene/Fitting.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <vector>

namespace {

constexpr double kShare = 0.9;
constexpr double kSmallestZoom = 1e-6;  ///< below, there is but a point or a line seen from its end

double Dot(const TVertex& a, const TVertex& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// The largest displacement of a node along a direction over a cycle: each axis swings with a phase
/// of its own, so their sum is one of complex numbers.
double LargestAlong(const TVertex& direction, const TNode& node) {
  const TVertex& a = node.Position;
  const TVertex& p = node.Angles;
  return std::abs(std::polar(1.0, p.x) * (direction.x * a.x) +
                  std::polar(1.0, p.y) * (direction.y * a.y) +
                  std::polar(1.0, p.z) * (direction.z * a.z));
}

/// How far points reach from the middle of the picture, to the right or left and up or down.
class TReach {
 public:
  explicit TReach(const TViewTransform& view) {
    constexpr double kToRadians = std::numbers::pi / 180.0;
    const double x = view.Rotation.x * kToRadians;
    const double y = view.Rotation.y * kToRadians;
    right_ = {std::cos(y), 0.0, std::sin(y)};
    up_ = {std::sin(x) * std::sin(y), std::cos(x), -std::sin(x) * std::cos(y)};
  }

  /// A node at `rest` that moves by up to `scale` times the amplitudes of the others.
  void Add(const TVertex& rest, std::span<const TNode* const> moving, double scale) {
    double across = 0.0;
    double along = 0.0;
    for (const TNode* node : moving) {
      across += LargestAlong(right_, *node);
      along += LargestAlong(up_, *node);
    }
    Widen(across_, std::abs(Dot(right_, rest)) + std::abs(scale) * across);
    Widen(along_, std::abs(Dot(up_, rest)) + std::abs(scale) * along);
  }

  /// The zoom of a view volume with these half-extents; 0 if there is nothing.
  double Zoom(double halfWidth, double halfHeight) const {
    return std::max(across_ / halfWidth, along_ / halfHeight) / kShare;
  }

 private:
  /// What cannot be drawn does not count.
  static void Widen(double& reach, double value) {
    if (value <= 1e30) reach = std::max(reach, value);
  }

  TVertex right_, up_;  ///< the axes of the picture, in model coordinates
  double across_ = 0.0;
  double along_ = 0.0;
};

/// Each data set by itself. A node without a place in the model stands still where it is drawn.
void AddSet(TReach& reach, const TDataNodeList& list) {
  for (const TNode* node : list) {
    if (node->Link) {
      reach.Add(node->Link->Position, std::span(&node, 1), list.DrawScale);
    } else {
      reach.Add(node->Position * list.DrawScale, {}, 0.0);
    }
  }
}

void AddSum(TReach& reach, const TModel& model, const TMeasuredData& data) {
  std::vector<const TNode*> moving;
  for (std::size_t i = 0; i < model.Display.Count(); ++i) {
    const TNode& shown = *model.Display.Get(i);
    moving.clear();
    for (const TDataNodeList* list : data.Shown) {
      if (i < list->Count()) moving.push_back(list->Get(i));
    }
    reach.Add(shown.Link ? shown.Link->Position : TVertex{}, moving, model.Display.DrawScale);
  }
}

}  // namespace

void FitToShown(TViewTransform& view, const TModel& model, const TMeasuredData& data,
                TScaleType scaleType, bool showModel) {
  TReach reach(view);
  if (showModel || data.Shown.Empty()) {
    for (const TNode* node : model.Nodes) reach.Add(node->Position, {}, 0.0);
  }
  if (scaleType == TScaleType::Sum) {
    if (!data.Shown.Empty()) AddSum(reach, model, data);
  } else {
    for (const TDataNodeList* list : data.Shown) AddSet(reach, *list);
  }
  const double zoom = reach.Zoom(view.ModelSize * view.ScaleX, view.ModelSize * view.ScaleY);
  if (!(zoom > kSmallestZoom) || !std::isfinite(zoom)) return;
  view.Zoom = zoom;
  view.PanPosX = view.PanPosY = 0.0;
}
