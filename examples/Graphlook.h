#pragma once

#include "components/graphing/Axis.h"
#include "model/Color.h"

/// The colours of the examples' graphs.

inline constexpr TColor kBlue = TColor::FromRgb(31, 90, 180);
inline constexpr TColor kRed = TColor::FromRgb(200, 50, 40);
inline constexpr TColor kGreen = TColor::FromRgb(30, 130, 70);
inline constexpr TColor kLightBlue = TColor::FromRgb(150, 190, 235);
inline constexpr TColor kAxis = TColor::FromRgb(70, 75, 85);
inline constexpr TColor kBorder = TColor::FromRgb(205, 208, 214);

inline void ColorAxis(TAxis& axis) {
  axis.SetLineColor(kAxis);
  axis.GetLabel()->SetFontColor(kAxis);
  axis.GetTitle()->SetFontColor(kAxis);
}
