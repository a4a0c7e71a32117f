#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "viewer/scene/Viewtransform.h"

/// The views that were looked at, to go back and forth in: rotation, zoom and pan. The model's size
/// and the window's shape are not part of it. Changes that follow each other within half a second,
/// as those of a drag do, are one step. Keeps the last hundred.
class TViewHistory {
 public:
  /// Begins anew from this view.
  void Begin(const TViewTransform& view);

  /// The view has changed at this time, in milliseconds of any clock that does not go back.
  void Note(const TViewTransform& view, std::int64_t ms);
  /// The view has changed at once, by a button: a step of its own.
  void NoteWhole(const TViewTransform& view);

  bool CanUndo() const { return !earlier_.empty(); }
  bool CanRedo() const { return !later_.empty(); }
  /// Sets the view to the one before or after; does nothing if there is none.
  void Undo(TViewTransform& view);
  void Redo(TViewTransform& view);

 private:
  struct TView {
    TVertex rotation;
    double zoom = 1.0;
    double panX = 0.0;
    double panY = 0.0;
    friend bool operator==(const TView&, const TView&) = default;
  };
  static TView ViewOf(const TViewTransform& view);
  void Move(std::vector<TView>& from, std::vector<TView>& to, TViewTransform& view);

  TView present_;
  std::vector<TView> earlier_;
  std::vector<TView> later_;
  std::optional<std::int64_t> changed_;  ///< when; none once a step has ended
};
