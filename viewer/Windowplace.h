#pragma once

#include <QList>
#include <QRect>

/// Bounds for a window so that the user can see and reach all of it: the place and size wanted if
/// they lie within the screens, else moved into the screen they overlap most (the first one if
/// none) and cut to its size. Never smaller than `minimum`, unless the screen is. Takes any
/// numbers.
QRect FitToScreens(QPoint place, QSize size, const QList<QRect>& screens, QSize minimum);
