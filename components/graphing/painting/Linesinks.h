#pragma once

#include <QPen>
#include <QRect>
#include <memory>

#include "components/graphing/painting/Linepath.h"

class QPainter;

/// The painter's units are the pixels of its device.
bool IsOnPixels(const QPainter& painter);

/// A sink that draws with `pen`, whose width is whole. Thin solid lines (width 1, not antialiased,
/// on a plain pixel grid) come out pixel for pixel as if each piece between two points had been
/// drawn by itself. Wide ones on devices made of pixels cover what a disc covers that follows thin
/// ones. `visible` is that of the TLinePath.
std::unique_ptr<TLineSink> MakeLineSink(QPainter& painter, const QPen& pen, const QRect& visible);

/// How far out of the visible pixels a line drawn with `pen` may begin or end: as far as a painter
/// keeps its pixels (thin lines) or its dashes (others).
int LineReach(const QPen& pen);
