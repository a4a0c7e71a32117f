#pragma once

#include <QLine>
#include <QPoint>
#include <QRect>
#include <cfloat>
#include <cstdint>
#include <span>

#include "components/graphing/painting/Pixelscale.h"
#include "components/links/Objlists.h"

/// A grid position of any size.
struct TPlace {
  std::int64_t x = 0;
  std::int64_t y = 0;
  friend bool operator==(const TPlace&, const TPlace&) = default;
};

/// The box between two places has no pixel of the rectangle.
bool Misses(const TPlace& a, const TPlace& b, const QRect& rect);

/// Cuts a straight line to what lies within `reach` pixels of a rectangle; false if the line misses
/// the rectangle. The cut ends are rounded to pixels, so that the farther the reach, the less does
/// the part inside the rectangle move.
bool CutLine(TPlace from, TPlace to, const QRect& rect, int reach, QLine& line);

/// Takes the pieces of a line in pixels. The end of a piece is the start of the next one.
class TLineSink {
 public:
  virtual ~TLineSink() = default;
  /// A straight piece.
  virtual void Join(const QLine& line) = 0;
  /// A walk inside one pixel column: from `first` over both extremes, in whichever order, to
  /// `last`.
  struct TSpan {
    int column = 0;
    int first = 0, low = 0, high = 0, last = 0;  ///< rows; "low" is the low value, so the high row
    bool lowIsFirst = true;
  };
  virtual void Span(const TSpan& span) = 0;
  virtual void Finish() = 0;
};

/// Turns the values of a curve into the pieces of a line, merging points that follow each other in
/// one pixel column: first, lowest, highest and last show the same pixels as all of them.
///
/// A point inside the present column costs a few comparisons; values become pixels once per column.
/// What lies outside the visible pixels is left out. A point that is not finite makes a gap.
class TLinePath {
 public:
  /// `visible`: the pixels that matter, with room for the width of the line. `reach`: how far out
  /// of them a coordinate may lie, see CutLine.
  TLinePath(const TPixelScale& x, const TPixelScale& y, const QRect& visible, int reach,
            TLineSink& sink);

  void Add(double x, double y) {
    if (x >= xLow_ && x <= xHigh_ && y > yFloor_ && y <= DBL_MAX) {
      Extend(x, y);
    } else {
      AddOutside(x, y);
    }
  }
  /// The same for many points, faster.
  void Add(std::span<const TCoordinate> points);
  void Finish();

 private:
  /// One more point of the present column.
  void Extend(double x, double y) {
    if (y < yLow_) {
      yLow_ = y;
      lowIsFirst_ = false;
    } else if (y > yHigh_) {
      yHigh_ = y;
      lowIsFirst_ = true;
    }
    lastX_ = x;
    lastY_ = y;
    several_ = true;
  }
  void AddOutside(double x, double y);
  void Break();
  void StartColumn(double x, double y, std::int64_t column);
  void WidenTowards(double x);
  void TakeAside();
  void FlushColumn();
  void EmitSpan(std::int64_t first, std::int64_t last);
  void EmitJoin(const TPlace& from, const TPlace& to);

  const TPixelScale x_;
  const TPixelScale y_;
  const double yFloor_;  ///< values up to it must be replaced first
  const QRect visible_;
  const int right_;   ///< one past the last visible column
  const int bottom_;  ///< one past the last visible row
  const int reach_;
  TLineSink& sink_;

  // The column being filled: the values that surely fall into it, and the extremes met in it.
  double xLow_ = 1.0, xHigh_ = 0.0;
  double yLow_ = 0.0, yHigh_ = 0.0;
  double firstY_ = 0.0;
  double lastX_ = 0.0, lastY_ = 0.0;
  std::int64_t column_ = 0;
  bool open_ = false;       ///< there is a column
  bool several_ = false;    ///< more than one point so far
  bool aside_ = false;      ///< the "column" is all that lies left, or right, of the visible pixels
  bool lowIsFirst_ = true;  ///< the present lowest was met before the present highest

  bool hasPrevious_ = false;
  TPlace previous_;  ///< where the line has come to
};
