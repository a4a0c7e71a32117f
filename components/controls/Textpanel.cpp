#include "components/controls/Textpanel.h"

#include <QPainter>

TTextPanel::TTextPanel(QWidget* parent) : TCustomTextControl(parent) {
  constexpr QSize kDefaultSize(185, 41);
  SetAlignment(taCenter);
  resize(kDefaultSize);
}

void TTextPanel::SetBevelOuter(TBevelKind kind) {
  if (kind == outer_ || kind < TBevel::bvNone || kind > TBevel::bvSpace) return;
  outer_ = kind;
  TextChanged();
}

void TTextPanel::SetBevelInner(TBevelKind kind) {
  if (kind == inner_ || kind < TBevel::bvNone || kind > TBevel::bvSpace) return;
  inner_ = kind;
  TextChanged();
}

void TTextPanel::SetBevelWidth(int width) {
  if (width == bevelWidth_ || width < 1 || width > kMaxWidth) return;
  bevelWidth_ = width;
  TextChanged();
}

void TTextPanel::SetBorderWidth(int width) {
  if (width == borderWidth_ || width < 0 || width > kMaxWidth) return;
  borderWidth_ = width;
  TextChanged();
}

int TTextPanel::RoomOf(TBevelKind kind) const { return kind == TBevel::bvNone ? 0 : bevelWidth_; }

QMargins TTextPanel::Frame() const {
  const int room = RoomOf(outer_) + borderWidth_ + RoomOf(inner_) + 1;
  return {room, room, room, room};
}

void TTextPanel::Paint(QPainter& painter) {
  TCustomTextControl::Paint(painter);
  QRect box = rect();
  const auto bevel = [&](TBevelKind kind) {
    for (int i = 0; i < RoomOf(kind); ++i, box.adjust(1, 1, -1, -1)) DrawBevel(painter, box, kind);
  };
  bevel(outer_);
  box.adjust(borderWidth_, borderWidth_, -borderWidth_, -borderWidth_);
  bevel(inner_);
}
