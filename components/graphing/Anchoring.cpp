#include "components/graphing/Anchoring.h"

#include <QEvent>
#include <algorithm>
#include <utility>

namespace {

/// The near edge and the extent of a control along one direction, after its parent has grown.
std::pair<int, int> Followed(int near, int extent, int growth, bool keepNear, bool keepFar) {
  if (keepNear && keepFar) return {near, std::max(0, extent + growth)};
  if (keepNear) return {near, extent};
  if (keepFar) return {near + growth, extent};
  return {near + growth / 2, extent};
}

}  // namespace

TAnchoring::TAnchoring(QWidget* control) : control_(control) {
  control_->installEventFilter(this);
  WatchParent();
}

void TAnchoring::SetAlign(TAlign align) {
  if (align == align_ || align < alNone || align > alClient) return;
  align_ = align;
  Dock();
}

void TAnchoring::SetAnchors(TAnchors anchors) {
  anchors_ = anchors;
  followed_ = QRect();
}

bool TAnchoring::eventFilter(QObject* watched, QEvent* event) {
  if (watched == control_ && event->type() == QEvent::ParentChange) WatchParent();
  if (watched == parent_ && event->type() == QEvent::Resize) {
    const QSize before = std::exchange(parentSize_, parent_->size());
    if (!parent_->layout()) {
      if (align_ == alNone) Follow(before);
      Dock();
    }
  }
  return QObject::eventFilter(watched, event);
}

void TAnchoring::WatchParent() {
  if (parent_) parent_->removeEventFilter(this);
  parent_ = control_->parentWidget();
  if (!parent_) return;
  parentSize_ = parent_->size();
  followed_ = QRect();
  parent_->installEventFilter(this);
  Dock();
}

void TAnchoring::Dock() {
  if (!parent_ || parent_->layout()) return;
  const QRect room = parent_->rect();
  QRect place = room;
  switch (align_) {
    case alNone:
      return;
    case alClient:
      break;
    case alTop:
      place.setHeight(control_->height());
      break;
    case alLeft:
      place.setWidth(control_->width());
      break;
    case alBottom:
      place.setTop(room.bottom() + 1 - control_->height());
      break;
    case alRight:
      place.setLeft(room.right() + 1 - control_->width());
      break;
  }
  control_->setGeometry(place);
}

void TAnchoring::Follow(QSize before) {
  if (control_->geometry() != followed_) {
    home_ = control_->geometry();
    homeParentSize_ = before;
  }
  const QSize growth = parentSize_ - homeParentSize_;
  const auto [x, width] = Followed(home_.x(), home_.width(), growth.width(),
                                   anchors_.testFlag(akLeft), anchors_.testFlag(akRight));
  const auto [y, height] = Followed(home_.y(), home_.height(), growth.height(),
                                    anchors_.testFlag(akTop), anchors_.testFlag(akBottom));
  control_->setGeometry(x, y, width, height);
  followed_ = control_->geometry();
}
