#pragma once

#include "components/controls/Korvaltools.h"
#include "components/controls/Textcontrol.h"

/// A bevelled panel with a caption, and with other controls in it if the form says so.
class TTextPanel : public TCustomTextControl {
  Q_OBJECT
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(TAlignment Alignment READ GetAlignment WRITE SetAlignment)
  Q_PROPERTY(TTextLayout Layout READ GetLayout WRITE SetLayout)
  Q_PROPERTY(bool AutoSize READ GetAutoSize WRITE SetAutoSize)
  Q_PROPERTY(bool WordWrap READ GetWordWrap WRITE SetWordWrap)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)
  Q_PROPERTY(TBevel::TBevelKind BevelOuter READ GetBevelOuter WRITE SetBevelOuter)
  Q_PROPERTY(TBevel::TBevelKind BevelInner READ GetBevelInner WRITE SetBevelInner)
  Q_PROPERTY(int BevelWidth READ GetBevelWidth WRITE SetBevelWidth)
  Q_PROPERTY(int BorderWidth READ GetBorderWidth WRITE SetBorderWidth)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  static constexpr bool kIsContainer = true;
  /// Of a bevel and of a border, in pixels.
  static constexpr int kMaxWidth = 100;

  explicit TTextPanel(QWidget* parent = nullptr);

  TBevelKind GetBevelOuter() const { return outer_; }
  void SetBevelOuter(TBevelKind kind);
  TBevelKind GetBevelInner() const { return inner_; }
  void SetBevelInner(TBevelKind kind);
  /// Of each bevel, 1 to kMaxWidth pixels; others are ignored.
  int GetBevelWidth() const { return bevelWidth_; }
  void SetBevelWidth(int width);
  /// Between the two bevels, 0 to kMaxWidth pixels; others are ignored.
  int GetBorderWidth() const { return borderWidth_; }
  void SetBorderWidth(int width);

 protected:
  QMargins Frame() const override;
  void Paint(QPainter& painter) override;

 private:
  int RoomOf(TBevelKind kind) const;

  TBevelKind outer_ = TBevel::bvRaised;
  TBevelKind inner_ = TBevel::bvNone;
  int bevelWidth_ = 1;
  int borderWidth_ = 0;
};
