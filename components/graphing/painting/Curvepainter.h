#pragma once

#include <QBrush>
#include <QImage>
#include <QPen>
#include <QRect>
#include <memory>
#include <optional>
#include <span>

#include "components/graphing/Seriesstyle.h"
#include "components/graphing/painting/Linepath.h"
#include "components/graphing/painting/Linesinks.h"
#include "components/graphing/painting/Pixelscale.h"
#include "components/links/Objlists.h"

class QPainter;

/// Where a curve is drawn: the panel's rectangle and its mappings, all on one pixel grid.
struct TPlotArea {
  QRect rect;  ///< grid pixels
  TPixelScale x;
  TPixelScale y;
  double grid = 1.0;  ///< steps per logical pixel
};

/// Grid steps per logical pixel that a painter's device can show: its device pixel ratio on screens
/// and pictures, 8 in files that keep lines as lines.
double DeviceGrid(const QPainter& painter);

/// Draws the points of one curve as they are handed in: lines, markers or bars. Scales the painter
/// to the grid until it is destroyed. Drawing is clipped by the caller, and here
/// where the device cannot.
class TCurvePainter {
 public:
  TCurvePainter(QPainter& painter, const TSeriesStyle& style, const TPlotArea& area);
  TCurvePainter(const TCurvePainter&) = delete;
  TCurvePainter& operator=(const TCurvePainter&) = delete;
  /// Draws what has been merged so far.
  ~TCurvePainter();

  /// The next points. One that is not finite makes a gap.
  void Add(std::span<const TCoordinate> points);
  /// The next point with the size of its bar.
  void AddBar(const TCoordinate& point, const TCoordinate& extent) { AddMarked(point, extent); }

 private:
  void AddMarked(const TCoordinate& point, const TCoordinate& extent);
  void DrawPiece(const TPlace& from, const TPlace& to);
  void MakeStamp();
  void DrawMarker(QPoint centre);
  void PaintMarker(QPainter& painter, QPoint centre) const;
  void DrawBar(const TCoordinate& point, const TCoordinate& extent);
  void UsePointPen(QPainter& painter) const;

  QPainter& painter_;
  const TSeriesStyle& style_;
  const TPlotArea area_;
  const QPen linePen_;
  const QPen pointPen_;
  const QBrush pointBrush_;  ///< of markers and bars
  const int markerReach_;    ///< grid pixels
  const bool clips_;         ///< the device leaves out what lies outside the panel
  const QRect lineRect_;     ///< where a piece of the line can be seen
  const QRect markerRect_;   ///< where the centre of a marker can be seen from
  const QRect barRect_;      ///< to which bars are cut
  const int lineReach_;      ///< see CutLine

  std::unique_ptr<TLineSink> sink_;
  std::optional<TLinePath> path_;  ///< merges points without markers
  QImage stamp_;                   ///< a marker; null where it is painted as a shape

  bool hasPrevious_ = false;
  bool settled_ = false;  ///< the previous point has its marker and a line to it: drawing it again
                          ///< changes nothing
  TPlace previous_;
};
