#pragma once

#include <QFont>

/// The font in which a plot draws `font`: its points at 96 per inch, so that a layout is the same
/// on every screen, in files and in print, where the painter's scale does the rest.
inline QFont PlotFont(QFont font) {
  if (font.pointSizeF() > 0.0) font.setPixelSize(qMax(1, qRound(font.pointSizeF() * 96.0 / 72.0)));
  return font;
}
