#pragma once

#include <QJsonObject>
#include <QLine>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "components/graphing/Seriesstyle.h"
#include "components/graphing/Utilclasses.h"
#include "components/graphing/painting/Curvepainter.h"
#include "components/graphing/painting/Pixelscale.h"
#include "components/links/Objlists.h"
#include "components/links/Propclasses.h"
#include "model/Color.h"

class QPainter;
class TAxis;
class TDataPanel;

/// Yields the point at `index`, moves the index on and returns true; false at the end. A bar style
/// takes the bar's size from `extent`: a psXBar reaches from X - extent.X to X, a psYBar from
/// Y - extent.Y to Y. `extent` comes in as zeros to a bar style.
using TProvideGraphData = std::function<bool(int& index, TCoordinate& point, TCoordinate& extent)>;

/// Fills `points` from the point at `index` on and returns how many it gave, 0 at the end. For
/// sources that have their points side by side: a call for each costs more than drawing it.
using TProvideGraphBlock = std::function<int(int index, std::span<TCoordinate> points)>;

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
  TDataPanel* Panel() const { return panel_; }

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
  /// Compares the published properties.
  bool SameAs(const TPersistent* other) const override;

 protected:
  /// Reports the change and asks the graph for a new picture.
  void Changed();

  TRange rangeX_{this};
  TRange rangeY_{this};

 private:
  friend class TSeriesList;
  TDataPanel* panel_ = nullptr;
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

/// A curve whose points are pulled from its data source.
///
/// A point that is not finite makes a gap in the line. Every point gets its marker or bar; one
/// without either that has no neighbours is drawn as a dot.
class TSeries : public TCustomDataSeries {
  Q_OBJECT
  Q_PROPERTY(TSeriesStyle* Style READ GetStyle WRITE SetStyle)

 public:
  explicit TSeries(QObject* owner = nullptr);

  TSeriesStyle* GetStyle() const { return static_cast<TSeriesStyle*>(BasicStyle()); }
  /// Copies the style; null changes nothing.
  void SetStyle(const TSeriesStyle* style) { GetStyle()->Assign(style); }

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;
};

/// A curve of a fixed number of points that it holds itself.
class TArraySeries : public TCustomDataSeries {
  Q_OBJECT
  Q_PROPERTY(TSeriesStyle* Style READ GetStyle WRITE SetStyle)

 public:
  static constexpr int kMaxPoints = 1 << 24;

  /// The points begin as zeros; a count outside 0 to kMaxPoints is brought to the nearer bound.
  explicit TArraySeries(int pointCount = 0, QObject* owner = nullptr);

  TSeriesStyle* GetStyle() const { return static_cast<TSeriesStyle*>(BasicStyle()); }
  void SetStyle(const TSeriesStyle* style) { GetStyle()->Assign(style); }

  int PointCount() const { return static_cast<int>(points_.size()); }
  /// Zero outside the array.
  TCoordinate GetPoint(int index) const;
  /// Ignored outside the array. Draws nothing anew: call Redraw after the last one.
  void SetPoint(int index, const TCoordinate& point);
  void Redraw() { Changed(); }

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;

  void WriteSeries(QJsonObject& record) const override;
  [[nodiscard]] bool ReadSeries(const QJsonObject& record, QString* error) override;
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  std::vector<TCoordinate> points_;
};

/// A cross-hair at one position, dragged by itself or by one of its grid lines; a grid line moves
/// its own coordinate alone.
class TSliderSeries : public TCustomGraphSeries {
  Q_OBJECT
  Q_PROPERTY(double PositionX READ GetPositionX WRITE SetPositionX)
  Q_PROPERTY(double PositionY READ GetPositionY WRITE SetPositionY)
  Q_PROPERTY(bool Active READ GetActive WRITE SetActive)
  Q_PROPERTY(bool ShowGridX READ GetShowGridX WRITE SetShowGridX)
  Q_PROPERTY(bool ShowGridY READ GetShowGridY WRITE SetShowGridY)

 public:
  static constexpr int kArm = 7;           ///< half the size of the cross-hair, logical pixels
  static constexpr int kHitTolerance = 4;  ///< of a grid line, logical pixels

  using TCustomGraphSeries::TCustomGraphSeries;

  TCoordinate GetPosition() const { return position_; }
  double GetPositionX() const { return position_.X; }
  double GetPositionY() const { return position_.Y; }
  bool GetActive() const { return active_; }
  bool GetShowGridX() const { return showGridX_; }
  bool GetShowGridY() const { return showGridY_; }

  /// A position that is not finite is ignored.
  void SetPosition(const TCoordinate& position);
  void SetPositionX(double x) { SetPosition({x, position_.Y}); }
  void SetPositionY(double y) { SetPosition({position_.X, y}); }
  /// Only an active slider can be dragged.
  void SetActive(bool active);
  /// The line through the position at constant X, over the height of the panel.
  void SetShowGridX(bool show);
  /// The line through the position at constant Y, over the width of the panel.
  void SetShowGridY(bool show);

  /// Moves to the values under a pixel of the panel; nothing without a panel.
  void SetSliderPos(QPoint pixel);

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;
  bool Grab(QPoint pixel) override;
  bool Drag(QPoint pixel) override;
  void Release() override { hold_ = THold::kNone; }

 signals:
  /// The user has dragged the slider; its position is the new one.
  void OnDragged(QObject* sender);

 private:
  enum class THold { kNone, kBoth, kX, kY };
  THold HoldAt(QPoint pixel) const;
  QPoint Pixel() const;

  TCoordinate position_;
  bool active_ = true;
  bool showGridX_ = false;
  bool showGridY_ = false;
  THold hold_ = THold::kNone;
  QPoint grip_;  ///< from the mouse to the slider's pixel
};

/// Series in drawing order. A list owns what was added to it; a panel's list also shows series of
/// graph links, which it borrows.
class TSeriesList : public TPersistent {
  Q_OBJECT

 public:
  using TPersistent::TPersistent;
  ~TSeriesList() override;

  int Count() const { return static_cast<int>(entries_.size()); }
  bool Empty() const { return entries_.empty(); }
  /// Null outside the list.
  TCustomGraphSeries* Get(int index) const;
  /// -1 if the list does not hold it.
  int IndexOf(const TCustomGraphSeries* series) const;
  bool IsOwner(int index) const;

  /// Takes the series at the end of the list; null is ignored.
  template <class T>
  T* Add(std::unique_ptr<T> series) {
    T* added = series.get();
    AddOwned(std::move(series));
    return added;
  }
  /// Shows the series of a link's list, which still owns them. One that is there already stays; the
  /// series of another panel stay in that one.
  void Borrow(const TSeriesList& owner);
  /// Takes out what was borrowed from another list, all at once: nobody asks one of them for points
  /// any more.
  void Return(const TSeriesList& owner);
  /// Takes the series out and frees it if the list owns it; other indices are ignored.
  void Delete(int index);
  /// Takes the series out; the caller gets it if the list owned it.
  std::unique_ptr<TCustomGraphSeries> Remove(TCustomGraphSeries* series);
  void Clear();

  /// Opens the series editor if one has been supplied.
  void ShowEditor();
  /// Supplied by whoever knows the editor dialog.
  std::function<void(TSeriesList& list)> Editor;

  /// A class whose records ReadProperties can make anew; `T` needs no constructor argument.
  /// TSeries, TArraySeries and TSliderSeries are known.
  template <class T>
  static void RegisterClass() {
    Factories()[T::staticMetaObject.className()] = [] { return std::make_unique<T>(); };
  }

  /// The owned series as text, and back in place of the present owned ones. A damaged text is
  /// refused with a reason and leaves the list as it is.
  QString WriteProperties() const;
  [[nodiscard]] bool ReadProperties(const QString& text, QString* error = nullptr);
  /// Gives the series of the list the properties of those in a text that have the same place and
  /// class. The series stay, with their sources. A damaged text changes nothing.
  void RestoreProperties(const QString& text);

  /// Gives the destination copies of the owned series in place of its own.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  friend class TDataPanel;
  struct TEntry {
    TCustomGraphSeries* series = nullptr;
    std::unique_ptr<TCustomGraphSeries> owned;  ///< null for a borrowed series
  };
  using TFactory = std::function<std::unique_ptr<TCustomGraphSeries>()>;
  static std::map<std::string, TFactory>& Factories();

  static std::unique_ptr<TCustomGraphSeries> Make(const QString& className);

  void AddOwned(std::unique_ptr<TCustomGraphSeries> series);
  void Leave(TCustomGraphSeries& series);
  void ReplaceOwned(std::vector<TEntry> entries);
  void Changed();

  TDataPanel* panel_ = nullptr;  ///< the panel whose list this is; null for a link's
  std::vector<TEntry> entries_;
};

/// The plot area of a graph: its series, their common ranges, the mapping between values and
/// pixels, the rubber band and the dragging of sliders. Pixels are the painter's logical ones. A
/// member of its graph; GUI thread only.
class TDataPanel : public TPersistent {
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

  /// The panel's rectangle. Right and bottom, in the words of this class, are one past the last
  /// pixel: left + width and top + height.
  QRect Rect() const { return rect_; }
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
  void RemoveSeries(const TSeriesList& list) { list_.Return(list); }
  /// Frees the series if the panel owns it; an index outside the list is ignored.
  void DeleteSeries(int index) { list_.Delete(index); }
  /// Hands the series over if the panel owned it.
  std::unique_ptr<TCustomGraphSeries> RemoveSeries(TCustomGraphSeries* series) {
    return list_.Remove(series);
  }

  /// The panel's own series as forms keep them. A damaged text is ignored.
  QString GetSeriesData() const { return list_.WriteProperties(); }
  void SetSeriesData(const QString& text);

  /// The values of all visible series; nothing happens without a series.
  void UpdateRangeX();
  void UpdateRangeY();
  const TRange& RangeX() const { return rangeX_; }
  const TRange& RangeY() const { return rangeY_; }
  bool ShowsTimeX() const;
  bool ShowsTimeY() const;

  /// The pixel of a value. On a logarithmic axis a non-positive value becomes 1.0e-6, or the
  /// beginning of an axis that begins below it, in the caller's coordinate too, on purpose: the
  /// series goes on with the value that is drawn. A value far outside keeps its direction, not its
  /// distance.
  void LocateValue(QPoint& point, TCoordinate& value) const;
  /// A value (p1) and the base of its bar (p2) at once.
  void LocateValue(QLine& bar, TCoordinate& value, TCoordinate& base) const;
  /// The values under a pixel.
  void LocateCoordinate(QPoint point, TCoordinate& value) const;
  /// The mappings behind LocateValue, on a grid of so many steps per pixel.
  TPixelScale ScaleX(double grid = 1.0) const;
  TPixelScale ScaleY(double grid = 1.0) const;
  TPlotArea PlotArea(double grid) const;

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
  /// The picture, and not the layout, must be made anew. Follows each OnChange.
  void OnRepaint(QObject* sender);
  /// The user has completed a selection; IsSelecting is still true.
  void OnSelection(QObject* sender);

 private:
  friend class TCustomGraphSeries;
  friend class TSeriesList;
  void Changed();
  void DrawSeries(QPainter* painter);
  void DrawSelection(QPainter* painter) const;
  QPoint Inside(int x, int y) const;

  TRange rangeX_{this};
  TRange rangeY_{this};
  TSeriesList list_{this};
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
