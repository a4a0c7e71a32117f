#pragma once

#include <QPoint>
#include <QRect>
#include <memory>
#include <utility>

#include "components/graphing/Graphseries.h"
#include "components/graphing/Serieslist.h"
#include "components/graphing/Utilclasses.h"
#include "components/graphing/painting/Pixelscale.h"
#include "model/Color.h"

class QPainter;
class TAxis;

/// The plot area of a graph: its series, their common ranges, the mapping between values and
/// pixels, the rubber band and the dragging of sliders. Pixels are the painter's logical ones. A
/// member of its graph; GUI thread only.
class TDataPanel : public TSeriesPanel {
  Q_OBJECT
  Q_PROPERTY(TColor LineColor READ GetLineColor WRITE SetLineColor)
  Q_PROPERTY(TColor FillColor READ GetFillColor WRITE SetFillColor)
  Q_PROPERTY(QString SeriesData READ GetSeriesData WRITE SetSeriesData DESIGNABLE false)

 public:
  /// The axes are not owned and outlive the panel.
  TDataPanel(const TAxis* horizontal, const TAxis* vertical, QObject* owner = nullptr);
  ~TDataPanel() override;

  /// Frame and background; None() is not painted.
  TColor GetLineColor() const { return lineColor_; }
  TColor GetFillColor() const { return fillColor_; }
  void SetLineColor(TColor color);
  void SetFillColor(TColor color);

  QRect Rect() const override { return rect_; }
  void SetOrigin(const QRect& rect);

  TSeriesList& GetSeriesList() { return list_; }
  const TSeriesList& GetSeriesList() const { return list_; }
  /// The panel takes the series.
  template <class T>
  T* AddSeries(std::unique_ptr<T> series) {
    return list_.Add(std::move(series));
  }
  /// The panel shows the series of a link, which keeps them.
  void AddSeries(const TSeriesList& list) { list_.Borrow(list); }
  void RemoveSeries(const TSeriesList& list) override { list_.Return(list); }
  /// Frees the series if the panel owns it; an index outside the list is ignored.
  void DeleteSeries(int index) { list_.Delete(index); }
  std::unique_ptr<TCustomGraphSeries> RemoveSeries(TCustomGraphSeries* series) override {
    return list_.Remove(series);
  }
  /// Lets go of the series if it is the slider being dragged.
  void SeriesLeft(const TCustomGraphSeries& series) override;

  /// The panel's own series as forms keep them. A damaged text is ignored.
  QString GetSeriesData() const { return list_.WriteProperties(); }
  void SetSeriesData(const QString& text);

  /// The values of all visible series; nothing happens without a series.
  void UpdateRangeX();
  void UpdateRangeY();
  const TRange& RangeX() const { return rangeX_; }
  const TRange& RangeY() const { return rangeY_; }
  bool ShowsTimeX() const override;
  bool ShowsTimeY() const override;

  void LocateValue(QPoint& point, TCoordinate& value) const override;
  void LocateValue(QLine& bar, TCoordinate& value, TCoordinate& base) const override;
  void LocateCoordinate(QPoint point, TCoordinate& value) const override;
  TPlotArea PlotArea(double grid) const override;

  bool GetAllowSelection() const { return allowSelection_; }
  void SetAllowSelection(bool allow);
  bool IsSelecting() const { return selecting_; }
  /// Anchor and moving corner.
  QPoint SelectionAnchor() const { return anchor_; }
  QPoint SelectionCorner() const { return corner_; }
  void StartSelection(Qt::KeyboardModifiers shift, int x, int y);
  /// The corner follows the mouse, but not out of the panel.
  void MoveSelection(Qt::KeyboardModifiers shift, int x, int y);
  void EndSelection(Qt::KeyboardModifiers shift, int x, int y);
  void ClearSelection();
  /// To be called once the axes show other values: a selection of pixels that no longer mean what
  /// they did goes away, unless it is still being dragged.
  void AxesChanged();
  /// Left X, upper Y, right X and lower Y of the selection. False, and nothing is written, if
  /// selecting is not allowed or the selection does not exceed 3 pixels both ways.
  [[nodiscard]] bool SelectionValues(double& x1, double& y1, double& x2, double& y2) const;

  /// Takes hold of the topmost active slider at the pixel; false if there is none.
  bool GetSelSlider(Qt::KeyboardModifiers shift, int x, int y);
  /// The held slider follows the mouse inside the panel; true if it moved.
  bool MoveSelSlider(Qt::KeyboardModifiers shift, int x, int y);
  void ReleaseSelSlider(Qt::KeyboardModifiers shift, int x, int y);
  /// The slider being dragged, or null. The axes keep their ranges meanwhile.
  TCustomGraphSeries* SelSlider() const { return selSlider_; }

  /// Background, frame, the visible series in list order, then the selection. Nothing is drawn
  /// outside the panel.
  void Draw(QPainter* painter);

  /// Copies colours, AllowSelection and the panel's own series.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 signals:
  /// The user has completed a selection; IsSelecting is still true.
  void OnSelection(QObject* sender);

 private:
  void Changed();
  /// The mappings of the axes, on a grid of so many steps per pixel.
  TPixelScale ScaleX(double grid = 1.0) const;
  TPixelScale ScaleY(double grid = 1.0) const;
  void DrawSeries(QPainter* painter);
  void DrawSelection(QPainter* painter) const;
  QPoint Inside(int x, int y) const;

  TRange rangeX_{this};
  TRange rangeY_{this};
  TSeriesList list_{*this};
  const TAxis* horizontal_;
  const TAxis* vertical_;
  QRect rect_;
  TColor lineColor_ = TColor::None();
  TColor fillColor_ = TColor::None();
  TCustomGraphSeries* selSlider_ = nullptr;
  QPoint anchor_;
  QPoint corner_;
  bool selecting_ = false;
  bool allowSelection_ = false;
  bool axesChanged_ = false;  ///< while the end of a selection was reported
};
