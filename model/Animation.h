#pragma once

#include <vector>

#include "model/Animmodel.h"

enum class TScaleType : std::uint8_t { Absolute = 0, Relative = 1, Sum = 2 };

/// Where the animation stands, and the arithmetic that moves it. Needs no window. GUI thread only.
class TAnimation {
 public:
  static constexpr double kFullCycle = 6.283185307179586;
  static constexpr double kPhaseStep = 0.6283185307179586;  ///< ten frames per cycle

  TScaleType ScaleType = TScaleType::Absolute;
  double ViewScale = 0.25;  ///< 0.05 to 1: the share of a quarter of the model's size
  double Phase = 0.0;       ///< radians in [0, 2 pi]; of the absolute and relative types
  double Time = 0.0;        ///< of the sum type, in the reciprocal unit of the frequencies

  /// Sets the DrawScale of every list that this scale type draws.
  void UpdateScale(const TMeasuredData& data, TModel& model) const;

  /// Brings what is shown to the frame where the animation stands: after a load, and after a change
  /// of the scale type or of what is shown.
  void Show(const TMeasuredData& data, TModel& model) const;

  /// One frame on, or back; the sum type knows no back. Returns whether there is anything new to
  /// draw: false, and nothing moved, without a visible data set. Allocates nothing.
  bool Step(const TMeasuredData& data, TModel& model, bool back = false);
};

/// ScaleComplexNode with the list's own Phase and DrawScale for all its nodes. `positions` gets as
/// many entries as the list has nodes and keeps its capacity, so that nothing is allocated from
/// the second frame on.
void PlaceNodes(const TDataNodeList& list, std::vector<TVertex>& positions);
