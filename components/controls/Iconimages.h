#pragma once

#include <QRectF>
#include <QString>
#include <functional>

class QPainter;

/// The pictures of components by name, such as "ChannelImage". They are drawings, not bitmaps, and
/// so sharp in every size. GUI thread only.

/// Draws within the square (0, 0) to (24, 24); the caller has scaled it to its place.
using TIconPainter = std::function<void(QPainter& painter)>;

/// Adds a picture, or replaces the one of this name.
void RegisterIconImage(const QString& name, const TIconPainter& draw);
/// Adds a picture if there is none of this name, and returns the name.
QString ProvideIconImage(const QString& name, const TIconPainter& draw);
bool HasIconImage(const QString& name);

/// Draws a picture into the largest square in the middle of `box`. A name that ends in "Active",
/// "Idle" or "Down" and has no picture of its own is the picture of the rest of the name with a
/// lamp in the colour of the state. A name that nobody registered gets a tile with its first
/// letter, so that every component can be seen and recognised. No name draws nothing.
void DrawIconImage(QPainter& painter, const QRectF& box, const QString& name);
