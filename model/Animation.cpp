#include "model/Animation.h"

#include <algorithm>
#include <cmath>

namespace {

/// a x cos(w + angle) per axis.
TVertex Moved(const TNode& node, double w) {
  const TVertex& a = node.Position;
  const TVertex& angle = node.Angles;
  return {a.x * std::cos(w + angle.x), a.y * std::cos(w + angle.y), a.z * std::cos(w + angle.z)};
}

}  // namespace

void TAnimation::UpdateScale(const TMeasuredData& data, TModel& model) const {
  switch (ScaleType) {
    case TScaleType::Absolute:
      for (TDataNodeList* list : data.Shown) list->DrawScale = ViewScale * data.All.GetScale();
      break;
    case TScaleType::Relative:
      for (TDataNodeList* list : data.Shown) list->DrawScale = ViewScale * list->Scale;
      break;
    case TScaleType::Sum:
      model.Display.DrawScale = ViewScale * data.Shown.GetScale();
      break;
  }
}

bool TAnimation::Step(const TMeasuredData& data, TModel& model, bool back) {
  if (data.Shown.Empty()) return false;
  if (ScaleType == TScaleType::Sum) {
    Time = data.Shown.Step(model.Display, Time);
    return true;
  }
  Phase += back ? -kPhaseStep : kPhaseStep;
  if (Phase >= kFullCycle) {
    Phase = 0.0;
  } else if (Phase < 0.0) {
    Phase = kFullCycle;
  }
  for (TDataNodeList* list : data.Shown) list->Phase = Phase;
  return true;
}

double TNodesSet::Step(TDataNodeList& display, double time) const {
  double highest = 0.0;
  for (const TDataNodeList* list : members_) highest = std::max(highest, list->Frequency);
  if (highest == 0.0) return time;
  time += 0.1 / highest;
  for (TNode* node : display) node->Position = {};
  for (const TDataNodeList* list : members_) {
    const double w = TAnimation::kFullCycle * list->Frequency * time;
    const std::size_t count = std::min(list->Count(), display.Count());
    for (std::size_t i = 0; i < count; ++i) display.Get(i)->Position += Moved(*list->Get(i), w);
  }
  return time;
}

TVertex ScaleComplexNode(const TNode& node, double phase, double drawScale) {
  if (!node.Link) return drawScale * node.Position;
  return drawScale * Moved(node, phase) + node.Link->Position;
}

void PlaceNodes(const TDataNodeList& list, std::vector<TVertex>& positions) {
  positions.resize(list.Count());
  for (std::size_t i = 0; i < list.Count(); ++i) {
    positions[i] = ScaleComplexNode(*list.Get(i), list.Phase, list.DrawScale);
  }
}
