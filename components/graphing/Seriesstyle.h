#pragma once

#include <Qt>

#include "components/links/Propclasses.h"
#include "model/Color.h"

/// Line and fill of a series. Every setter reports a change, unless an update is open: then the end
/// of the update reports once. A member of its series; GUI thread only.
class TBasicSeriesStyle : public TPersistent {
  Q_OBJECT

 public:
  enum TPenStyle : int { psSolid, psDash, psDot, psDashDot, psDashDotDot, psClear };
  Q_ENUM(TPenStyle)

  using TPersistent::TPersistent;

  void BeginUpdate() { updating_ = true; }
  /// Reports, whether or not anything changed.
  void EndUpdate();

  TColor GetLineColor() const { return lineColor_; }
  TColor GetFillColor() const { return fillColor_; }
  TPenStyle GetLineStyle() const { return lineStyle_; }
  int GetLineWeight() const { return lineWeight_; }

  void SetLineColor(TColor color) { Set(lineColor_, color); }
  /// None() leaves markers and bars hollow.
  void SetFillColor(TColor color) { Set(fillColor_, color); }
  /// psClear draws no line.
  void SetLineStyle(TPenStyle style);
  static constexpr int kMaxWeight = 100;
  /// Logical pixels, 1 to kMaxWeight.
  void SetLineWeight(int weight);

  /// The line style as painters take it.
  Qt::PenStyle QtLineStyle() const;
  /// No line is visible with this style.
  bool IsLineClear() const { return lineStyle_ == psClear || lineColor_.IsNone(); }

 protected:
  /// The body of every setter.
  template <class T>
  void Set(T& field, const T& value) {
    if (field == value) return;
    field = value;
    if (!updating_) emit OnChange(this);
  }

 private:
  bool updating_ = false;
  TColor lineColor_ = TColor::Blue();
  TColor fillColor_ = TColor::Yellow();
  TPenStyle lineStyle_ = psSolid;
  int lineWeight_ = 1;
};

/// Style of a series of points.
class TSeriesStyle : public TBasicSeriesStyle {
  Q_OBJECT

 public:
  enum TPointStyle : int { psNone, psCircle, psRectangle, psCross, psXBar, psYBar };
  Q_ENUM(TPointStyle)

 private:
  Q_PROPERTY(TColor LineColor READ GetLineColor WRITE SetLineColor)
  Q_PROPERTY(TColor FillColor READ GetFillColor WRITE SetFillColor)
  Q_PROPERTY(TPenStyle LineStyle READ GetLineStyle WRITE SetLineStyle)
  Q_PROPERTY(int LineWeight READ GetLineWeight WRITE SetLineWeight)
  Q_PROPERTY(TColor PointColor READ GetPointColor WRITE SetPointColor)
  Q_PROPERTY(TPointStyle PointStyle READ GetPointStyle WRITE SetPointStyle)

 public:
  using TBasicSeriesStyle::TBasicSeriesStyle;

  TColor GetPointColor() const { return pointColor_; }
  TPointStyle GetPointStyle() const { return pointStyle_; }
  /// Neither a line nor a marker is visible.
  bool IsInvisible() const { return pointStyle_ == psNone && IsLineClear(); }
  bool IsBar() const { return pointStyle_ == psXBar || pointStyle_ == psYBar; }

  void SetPointColor(TColor color) { Set(pointColor_, color); }
  void SetPointStyle(TPointStyle style);

 private:
  TColor pointColor_ = TColor::Black();
  TPointStyle pointStyle_ = psCircle;
};
