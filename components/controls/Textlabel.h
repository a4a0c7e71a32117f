#pragma once

#include "components/controls/Textcontrol.h"

/// A text on a form.
class TTextLabel : public TCustomTextControl {
  Q_OBJECT
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
  Q_PROPERTY(TAlignment Alignment READ GetAlignment WRITE SetAlignment)
  Q_PROPERTY(TTextLayout Layout READ GetLayout WRITE SetLayout)
  Q_PROPERTY(bool AutoSize READ GetAutoSize WRITE SetAutoSize)
  Q_PROPERTY(bool WordWrap READ GetWordWrap WRITE SetWordWrap)
  Q_PROPERTY(double Angle READ GetAngle WRITE SetAngle)
  Q_PROPERTY(TColor FontColor READ GetFontColor WRITE SetFontColor)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  using TCustomTextControl::TCustomTextControl;
};
