#pragma once

#include <QPen>
#include <QRect>
#include <memory>

#include "components/graphing/Linepath.h"

class QPainter;

/// A sink that draws with `pen`. Thin solid lines (width 1, not antialiased, on a plain pixel grid)
/// come out pixel for pixel as if each piece between two points had been drawn by itself.
/// `visible` is that of the TLinePath.
std::unique_ptr<TLineSink> MakeLineSink(QPainter& painter, const QPen& pen, const QRect& visible);

/// How far out of the visible pixels a line drawn with `pen` may begin or end: as far as a painter
/// keeps its pixels (thin lines) or its dashes (others).
int LineReach(const QPen& pen);
