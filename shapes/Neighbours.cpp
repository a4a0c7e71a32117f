#include "shapes/Neighbours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <numbers>
#include <unordered_map>

#include "shapes/Paths.h"
#include "shapes/Pointtree.h"

namespace {

/// How an unmeasured node takes part in the motions of measured ones.
struct TShares {
  std::int32_t Node;
  std::array<std::int32_t, TNearest::kMost> Sources;  ///< -1: none
  std::array<double, TNearest::kMost> Weights;        ///< their sum is 1
};

TShares SharesOf(std::int32_t node, const TNearest& nearest) {
  // In proportion to that of the nearest: a node at the place of another moves with it alone.
  const double least = nearest.Entries()[0].Distance;
  TShares shares = {node, {}, {}};
  double sum = 0.0;
  for (std::size_t i = 0; i < TNearest::kMost; ++i) {
    const auto& [distance, source] = nearest.Entries()[i];
    shares.Sources[i] = source;
    shares.Weights[i] = source < 0 ? 0.0 : distance == least ? 1.0 : least / distance;
    sum += shares.Weights[i];
  }
  for (double& weight : shares.Weights) weight /= sum;
  return shares;
}

/// The shares of all unmeasured nodes.
std::vector<TShares> SharesFor(const TModel& model, const TPaths& paths,
                               const std::vector<bool>& measured) {
  std::vector<TPointTree::TPoint> points;
  for (std::size_t i = 0; i < measured.size(); ++i) {
    if (measured[i]) {
      points.push_back({model.Nodes.Get(i)->Position, static_cast<std::int32_t>(i)});
    }
  }
  const std::vector<TNearest> along = paths.NearestOf(measured);
  const TPointTree tree(std::move(points));
  std::vector<TShares> all;
  for (std::size_t i = 0; i < measured.size(); ++i) {
    if (measured[i]) continue;
    all.push_back(
        SharesOf(static_cast<std::int32_t>(i),
                 along[i].Empty() ? tree.NearestTo(model.Nodes.Get(i)->Position) : along[i]));
  }
  return all;
}

/// One component of the mean motion; a motion without quadrature part keeps its sign.
void SetMean(double inPhase, double quadrature, double& amplitude, double& angle) {
  const bool isReal = quadrature == 0.0;
  amplitude = isReal ? inPhase : std::hypot(inPhase, quadrature);
  angle = isReal ? 0.0 : std::atan2(quadrature, inPhase);
}

void Apply(const std::vector<TShares>& all, TDataNodeList& list) {
  constexpr double kQuarterBefore = -std::numbers::pi / 2;
  for (const TShares& shares : all) {
    TVertex inPhase;
    TVertex quadrature;
    for (std::size_t i = 0; i < TNearest::kMost; ++i) {
      if (shares.Sources[i] < 0) continue;
      const TNode& source = *list.Get(static_cast<std::size_t>(shares.Sources[i]));
      inPhase += shares.Weights[i] * Displacement(source, 0.0);
      if (source.Angles == TVertex{}) continue;
      quadrature += shares.Weights[i] * Displacement(source, kQuarterBefore);
    }
    TNode& node = *list.Get(static_cast<std::size_t>(shares.Node));
    SetMean(inPhase.x, quadrature.x, node.Position.x, node.Angles.x);
    SetMean(inPhase.y, quadrature.y, node.Position.y, node.Angles.y);
    SetMean(inPhase.z, quadrature.z, node.Position.z, node.Angles.z);
  }
}

/// Whether a set has measured and unmeasured nodes, aligned to the model.
bool IsPartial(const TDataNodeList& list, const TModel& model) {
  const auto& measured = list.Measured;
  return measured.size() == list.Count() && list.Count() == model.Nodes.Count() &&
         std::ranges::find(measured, true) != measured.end() &&
         std::ranges::find(measured, false) != measured.end();
}

/// The largest amplitude stays: no mean is larger than the largest of its parts.
void Finish(TDataNodeList& list, bool isInterpolated) {
  list.IsInterpolated = isInterpolated;
  list.NodesChanged();
}

}  // namespace

TNeighbours::TOutcome TNeighbours::Follow(TMeasuredData& data, const TLoadProgress& progress) {
  TOutcome outcome = TOutcome::Cancelled;
  try {
    if (Move(data, progress)) return TOutcome::Done;
  } catch (const std::bad_alloc&) {
    outcome = TOutcome::NoMemory;
  }
  Rest(data);
  return outcome;
}

/// False if the user has cancelled.
bool TNeighbours::Move(TMeasuredData& data, const TLoadProgress& progress) {
  std::unordered_map<std::vector<bool>, std::vector<TDataNodeList*>> setsOf;
  for (TDataNodeList* list : data.All) {
    if (IsPartial(*list, model_)) setsOf[list->Measured].push_back(list);
  }
  if (setsOf.empty()) return true;
  const TPaths paths(model_);
  const auto all = static_cast<double>(setsOf.size());
  double done = 0.0;
  for (const auto& [measured, lists] : setsOf) {
    if (progress && !progress(done++ / all)) return false;
    const std::vector<TShares> shares = SharesFor(model_, paths, measured);
    for (TDataNodeList* list : lists) {
      Apply(shares, *list);
      Finish(*list, true);
    }
  }
  return true;
}

void TNeighbours::Rest(TMeasuredData& data) {
  for (TDataNodeList* list : data.All) {
    if (!list->IsInterpolated) continue;
    for (std::size_t i = 0; i < list->Count(); ++i) {
      if (!list->Measured[i]) list->Get(i)->Position = list->Get(i)->Angles = {};
    }
    Finish(*list, false);
  }
}
