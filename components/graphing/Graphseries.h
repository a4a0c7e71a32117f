#pragma once

#include <QJsonObject>
#include <QLine>
#include <QPoint>
#include <QRect>
#include <functional>
#include <memory>
#include <span>

#include "components/graphing/Seriesstyle.h"
#include "components/graphing/Utilclasses.h"
#include "components/links/Objlists.h"
#include "components/links/Propclasses.h"

class QPainter;
class TCustomGraphSeries;
class TSeriesList;
struct TPlotArea;

/// Yields the point at `index`, moves the index on and returns true; false at the end. A bar style
/// takes the bar's size from `extent`: a psXBar reaches from X - extent.X to X, a psYBar from
/// Y - extent.Y to Y. `extent` comes in as zeros to a bar style.
using TProvideGraphData = std::function<bool(int& index, TCoordinate& point, TCoordinate& extent)>;

/// Fills `points` from the point at `index` on and returns how many it gave, 0 at the end. For
/// sources that have their points side by side: a call for each costs more than drawing it.
using TProvideGraphBlock = std::function<int(int index, std::span<TCoordinate> points)>;

/// What a series and a list of series know of the panel that shows them.
class TSeriesPanel : public TPersistent {
  Q_OBJECT

 public:
  using TPersistent::TPersistent;

  /// The panel's rectangle. Right and bottom, in the words of this class, are one past the last
  /// pixel: left + width and top + height.
  virtual QRect Rect() const = 0;
  virtual bool ShowsTimeX() const = 0;
  virtual bool ShowsTimeY() const = 0;

  /// The pixel of a value. On a logarithmic axis a non-positive value becomes 1.0e-6, or the
  /// beginning of an axis that begins below it, in the caller's coordinate too, on purpose: the
  /// series goes on with the value that is drawn. A value far outside keeps its direction, not its
  /// distance.
  virtual void LocateValue(QPoint& point, TCoordinate& value) const = 0;
  /// A value (p1) and the base of its bar (p2) at once.
  virtual void LocateValue(QLine& bar, TCoordinate& value, TCoordinate& base) const = 0;
  /// The values under a pixel.
  virtual void LocateCoordinate(QPoint point, TCoordinate& value) const = 0;
  /// The rectangle and the mappings behind LocateValue, on a grid of so many steps per pixel.
  virtual TPlotArea PlotArea(double grid) const = 0;

  /// The panel no longer shows the series of a link, which keeps them.
  virtual void RemoveSeries(const TSeriesList& list) = 0;
  /// Hands the series over if the panel owned it.
  virtual std::unique_ptr<TCustomGraphSeries> RemoveSeries(TCustomGraphSeries* series) = 0;
  /// The panel's list calls it for each series that goes.
  virtual void SeriesLeft(const TCustomGraphSeries& series) = 0;

 signals:
  /// The picture, and not the layout, must be made anew. Follows each OnChange.
  void OnRepaint(QObject* sender);
};

/// One curve of a data panel. Whoever made a series owns it: the panel those added to it, a graph
/// link its own; a series that is freed leaves the panel that shows it. GUI thread only.
class TCustomGraphSeries : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QString Label READ GetLabel WRITE SetLabel)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  using TPersistent::TPersistent;
  ~TCustomGraphSeries() override;

  /// The panel that shows the series; null while none does. Not owned.
  TSeriesPanel* Panel() const { return panel_; }

  const QString& GetLabel() const { return label_; }
  bool GetVisible() const { return visible_; }
  void SetLabel(const QString& label);
  /// An invisible series is not drawn and does not count in the automatic ranges.
  void SetVisible(bool visible);

  /// The values covered when the ranges were last updated.
  const TRange& RangeX() const { return rangeX_; }
  const TRange& RangeY() const { return rangeY_; }

  /// Points of the series; a series without a source has none.
  TProvideGraphData DataSource;
  /// The same points in blocks, beside DataSource and used in its place where no extents are
  /// needed.
  TProvideGraphBlock BlockSource;
  /// Copies them from a series of the same class.
  virtual void TakeSources(const TCustomGraphSeries& other);

  virtual void Draw(QPainter* painter) { Q_UNUSED(painter) }
  virtual void UpdateRangeX() {}
  virtual void UpdateRangeY() {}

  /// The series as a record, without its data source, and back. A record that does not fit is
  /// refused with a reason; the series is then to be thrown away.
  virtual void WriteSeries(QJsonObject& record) const;
  [[nodiscard]] virtual bool ReadSeries(const QJsonObject& record, QString* error);

  /// A slider answers these: takes hold at a pixel, follows the mouse (true if it moved), lets go.
  virtual bool Grab(QPoint pixel);
  virtual bool Drag(QPoint pixel);
  virtual void Release() {}

  /// Copies the published properties and the data sources.
  void AssignTo(TPersistent* destination) const override;

 protected:
  /// Reports the change and asks the graph for a new picture.
  void Changed();

  TRange rangeX_{this};
  TRange rangeY_{this};

 private:
  friend class TSeriesList;
  TSeriesPanel* panel_ = nullptr;
  QString label_;
  bool visible_ = true;
};

/// A series with a style: redrawn whenever the style changes.
class TCustomDataSeries : public TCustomGraphSeries {
  Q_OBJECT

 public:
  TBasicSeriesStyle* BasicStyle() const { return style_.get(); }

 protected:
  TCustomDataSeries(std::unique_ptr<TBasicSeriesStyle> style, QObject* owner);

 private:
  std::unique_ptr<TBasicSeriesStyle> style_;
};
