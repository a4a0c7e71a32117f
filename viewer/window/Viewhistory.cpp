#include "viewer/window/Viewhistory.h"

TViewHistory::TView TViewHistory::ViewOf(const TViewTransform& view) {
  return {view.Rotation, view.Zoom, view.PanPosX, view.PanPosY};
}

void TViewHistory::Begin(const TViewTransform& view) {
  *this = {};
  present_ = ViewOf(view);
}

void TViewHistory::Note(const TViewTransform& view, std::int64_t ms) {
  constexpr std::int64_t kOneStep = 500;
  constexpr std::size_t kMostSteps = 100;
  const TView next = ViewOf(view);
  if (next == present_) return;
  const bool goesOn = changed_ && ms - *changed_ < kOneStep;
  if (!goesOn) {
    earlier_.push_back(present_);
    if (earlier_.size() > kMostSteps) earlier_.erase(earlier_.begin());
    later_.clear();
  }
  present_ = next;
  changed_ = ms;
}

void TViewHistory::NoteWhole(const TViewTransform& view) {
  changed_.reset();
  Note(view, 0);
  changed_.reset();
}

void TViewHistory::Undo(TViewTransform& view) { Move(earlier_, later_, view); }

void TViewHistory::Redo(TViewTransform& view) { Move(later_, earlier_, view); }

void TViewHistory::Move(std::vector<TView>& from, std::vector<TView>& to, TViewTransform& view) {
  if (from.empty()) return;
  to.push_back(present_);
  present_ = from.back();
  from.pop_back();
  changed_.reset();
  view.Rotation = present_.rotation;
  view.Zoom = present_.zoom;
  view.PanPosX = present_.panX;
  view.PanPosY = present_.panY;
}
