#pragma once

#include <QFont>
#include <QRect>
#include <QString>
#include <functional>

#include "components/graphing/Utilclasses.h"
#include "components/links/Propclasses.h"
#include "model/Color.h"
#include "model/Datetime.h"

class QPainter;
class TAxis;

enum class TAxisOrientation : unsigned char { aoHorizontal, aoVertical };
enum class TAxisAlign : unsigned char { Left, Top, Right, Bottom };
enum class TAxisShape : unsigned char { Line, Frame };

/// Room needed outside the plot rectangle, in pixels per side.
struct TOverlap {
  int left = 0, top = 0, right = 0, bottom = 0;
};

/// Sketch: TTick, TTickLabel, TAxisTitle and TAxis go here. Pixel positions are in the logical
/// pixels of the painter, so that one drawing code serves screen, print, PNG, SVG and PDF.
