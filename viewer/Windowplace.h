#pragma once

#include <QList>
#include <QRect>

/// Bounds for a window so that the user can see and reach all of it: `wanted` if it lies within the
/// screens, else moved into the screen it overlaps most (the first one if none) and cut to its
/// size. Never smaller than `minimum`, unless the screen is. Takes any numbers.
QRect FitToScreens(const QRect& wanted, const QList<QRect>& screens, QSize minimum);
