#include "model/Animation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

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

void TAnimation::Show(const TMeasuredData& data, TModel& model) const {
  if (ScaleType == TScaleType::Sum) data.Shown.AddTogether(model.Display, Time);
  for (TDataNodeList* list : data.Shown) list->Phase = Phase;
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

namespace {

/// Adds the displacements of a list's nodes from `first` on to `sums`, as far as both reach.
void AddMotion(const TDataNodeList& list, double w, std::size_t first, std::span<TVertex> sums) {
  if (list.Motions().Count() == list.Count()) {
    list.Motions().AddTo(sums, first, w);
    return;
  }
  for (std::size_t i = 0; i < sums.size() && first + i < list.Count(); ++i) {
    sums[i] += Displacement(*list.Get(first + i), w);
  }
}

}  // namespace

double TNodesSet::Step(TDataNodeList& display, double time) const {
  double highest = 0.0;
  for (const TDataNodeList* list : members_) highest = std::max(highest, list->Frequency);
  // The second test keeps a frequency next to nothing from making the time infinite for ever.
  if (highest == 0.0 || !std::isfinite(time + 0.1 / highest)) return time;
  time += 0.1 / highest;
  AddTogether(display, time);
  return time;
}

void TNodesSet::AddTogether(TDataNodeList& display, double time) const {
  // A piece of the sum at a time, which stays in the processor while all sets are added to it.
  // A node that a set lacks gets nothing from it.
  std::array<TVertex, 256> piece;
  for (std::size_t first = 0; first < display.Count(); first += piece.size()) {
    const std::span<TVertex> sums(piece.data(), std::min(piece.size(), display.Count() - first));
    std::fill(sums.begin(), sums.end(), TVertex{});
    for (const TDataNodeList* list : members_) {
      AddMotion(*list, TAnimation::kFullCycle * list->Frequency * time, first, sums);
    }
    for (std::size_t i = 0; i < sums.size(); ++i) display.Get(first + i)->Position = sums[i];
  }
}

namespace {

/// ScaleComplexNode for all nodes of a list whose motions are not ready. The cosine that nodes
/// without angles share is taken once, so that the display list needs no more than that.
void PlaceOneByOne(const TDataNodeList& list, std::vector<TVertex>& positions) {
  const double c = std::cos(list.Phase);
  for (std::size_t i = 0; i < list.Count(); ++i) {
    const TNode& node = *list.Get(i);
    positions[i] = node.Link && node.Angles == TVertex{}
                       ? node.Position * c * list.DrawScale + node.Link->Position
                       : ScaleComplexNode(node, list.Phase, list.DrawScale);
  }
}

}  // namespace

void PlaceNodes(const TDataNodeList& list, std::vector<TVertex>& positions) {
  positions.resize(list.Count());
  if (list.Motions().Count() == list.Count()) {
    list.Motions().Place(positions, list.Phase, list.DrawScale);
  } else {
    PlaceOneByOne(list, positions);
  }
}
