#pragma once

#include <QFont>
#include <QPoint>
#include <QRect>
#include <QString>
#include <functional>

#include "components/graphing/Utilclasses.h"
#include "components/links/Propclasses.h"
#include "model/Color.h"
#include "model/Datetime.h"

class QPainter;

/// One side of a plot: owns the value range shown along it, chooses round tick positions for the
/// range, maps values to pixels and draws line, ticks, labels and title. Pixels are the painter's
/// logical ones, so one drawing code serves screen, print and files. GUI thread only.
/// (TTick, TTickLabel and TAxisTitle join it in this file.)
class TAxis : public TPersistent {
  Q_OBJECT

 public:
  enum TAxisScale { asLinear, asLog, asTime };
  Q_ENUM(TAxisScale)
  enum TAxisOrientation { aoHorizontal, aoVertical };
  enum TAxisAlign { alLeft, alTop, alRight, alBottom };

  using TPersistent::TPersistent;

  TAxisScale GetScale() const { return scale_; }
  TAxisOrientation GetOrientation() const { return orientation_; }

  /// The range that is drawn; widened to whole tick steps.
  double WorkingMin() const { return workingMin_; }
  double WorkingMax() const { return workingMax_; }
  /// Pixels per value unit, per decade on a logarithmic axis.
  double ScaleFactor() const { return scaleFactor_; }
  /// The plot rectangle along which the axis lies; right and bottom are one past the last pixel.
  QRect ClientRect() const { return clientRect_; }

 signals:
  /// The picture, and not the layout, must be made anew. Follows each OnChange.
  void OnRepaint(QObject* sender);

 private:
  TAxisScale scale_ = asLinear;
  TAxisOrientation orientation_ = aoHorizontal;
  double workingMin_ = 0.0;
  double workingMax_ = 1.0;
  double scaleFactor_ = 1.0;
  QRect clientRect_;
};
