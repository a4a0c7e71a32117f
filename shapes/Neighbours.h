#pragma once

#include "model/Animmodel.h"

/// Moves the unmeasured nodes of data sets with the measured ones around them: the mean of the
/// nearest, weighted by the inverse of their distance, along bars and edges of faces as far as
/// those lead to measured nodes, else straight through space (D. Shepard, 1968). In-phase and
/// quadrature parts are averaged, so phases are kept. Measured nodes are never touched. A set
/// without unmeasured or without measured nodes stays as it is.
class TNeighbours {
 public:
  /// The model is not owned.
  explicit TNeighbours(const TModel& model) : model_(model) {}

  enum class TOutcome { Done, NoMemory, Cancelled };

  /// Gives the unmeasured nodes of all sets their motions. What is worked out for one pattern of
  /// measured nodes serves all sets that have it; the progress is told before each pattern. If
  /// memory does not suffice, or the user cancels, all rest.
  TOutcome Follow(TMeasuredData& data, const TLoadProgress& progress = {});
  /// Lets them rest again.
  static void Rest(TMeasuredData& data);

 private:
  bool Move(TMeasuredData& data, const TLoadProgress& progress);

  const TModel& model_;
};
