#pragma once

#include <QRectF>
#include <QString>

class QPainter;

/// Draws the picture of a component, such as "ChannelImage", into the largest square in the middle
/// of `box`: the resource file ":/velmora/icons/NAME.svg". A name that ends in "Active", "Idle" or
/// "Down" and has no picture of its own is the picture of the rest of the name with a lamp in the
/// colour of the state. A name without a picture gets a tile with its first letter, so that every
/// component is seen and differs from others. No name draws nothing. GUI thread only.
void DrawIconImage(QPainter& painter, const QRectF& box, const QString& name);
