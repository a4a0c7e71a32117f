#pragma once

#include <QByteArray>
#include <QColor>
#include <QRectF>
#include <QString>
#include <utility>
#include <vector>

class QPainter;

/// A colour by the name that stands for it in a picture, such as "red", and what is drawn instead.
using TPictureColors = std::vector<std::pair<QByteArray, QColor>>;

/// Draws the picture `name`, the resource file ":/velmora/NAME.svg", over the whole of `box`. It is
/// read once for each choice of colours, and sharp in every size. Whoever adds such a resource adds
/// a picture. False, and nothing is drawn, if there is none. GUI thread only.
bool DrawSvgPicture(QPainter& painter, const QRectF& box, const QString& name,
                    const TPictureColors& colors = {});
