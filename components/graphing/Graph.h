#pragma once

#include <QMargins>
#include <QPixmap>
#include <QWidget>
#include <functional>
#include <memory>
#include <utility>

#include "components/controls/Korvaltools.h"
#include "components/graphing/Anchoring.h"
#include "components/graphing/Axis.h"
#include "components/graphing/Datapanel.h"
#include "model/Color.h"

/// A graph: two axes along the sides of a plot rectangle, and a data panel with the series in it.
///
/// Everything is painted into a back buffer, at the device pixel ratio of the screen; a paint event
/// copies it, or draws directly on a device that shows more than the buffer, such as paper. The
/// left mouse button drags sliders and, if the data panel allows it, a selection; a double click
/// opens the editor of what lies under it. GUI thread only.
class TKorvalGraph : public QWidget {
  Q_OBJECT
  Q_PROPERTY(TDataPanel* DataPanel READ GetDataPanel WRITE SetDataPanel)
  Q_PROPERTY(TAxis* HorizontalAx READ GetHorizontalAx WRITE SetHAx)
  Q_PROPERTY(TAxis* VerticalAx READ GetVerticalAx WRITE SetVAx)
  Q_PROPERTY(TColor Color READ GetColor WRITE SetColor)
  Q_PROPERTY(TColor BorderColor READ GetBorderColor WRITE SetBorderColor)
  Q_PROPERTY(TBevel::TBevelKind BorderStyle READ GetBorderStyle WRITE SetBorderStyle)
  Q_PROPERTY(int Height READ height WRITE SetHeight STORED false)
  Q_PROPERTY(int Width READ width WRITE SetWidth STORED false)
  Q_PROPERTY(TAnchoring::TAlign Align READ GetAlign WRITE SetAlign)
  Q_PROPERTY(TAnchoring::TAnchors Anchors READ GetAnchors WRITE SetAnchors)
  Q_PROPERTY(bool ShowCoordinates READ GetShowCoordinates WRITE SetShowCoordinates)

 public:
  explicit TKorvalGraph(QWidget* parent = nullptr);
  ~TKorvalGraph() override;

  TDataPanel* GetDataPanel() const { return dataPanel_.get(); }
  TAxis* GetHorizontalAx() const { return horizontalAx_.get(); }
  TAxis* GetVerticalAx() const { return verticalAx_.get(); }
  /// These copy the settings of their argument and keep nothing of it; null is ignored.
  void SetDataPanel(const TDataPanel* panel);
  void SetHAx(const TAxis* axis);
  void SetVAx(const TAxis* axis);

  TColor GetColor() const { return color_; }
  TColor GetBorderColor() const { return borderColor_; }
  TBevelKind GetBorderStyle() const { return borderStyle_; }
  void SetColor(TColor color);  ///< of the background; None() leaves it as it is
  /// Of a plain frame, drawn where the border style draws no bevel; None() draws none.
  void SetBorderColor(TColor color);
  void SetBorderStyle(TBevelKind style);

  void SetHeight(int height);  ///< pixels; negative values are ignored
  void SetWidth(int width);
  /// How the graph follows the size of its parent, where that has no Qt layout.
  TAnchoring::TAlign GetAlign() const { return anchoring_->GetAlign(); }
  TAnchoring::TAnchors GetAnchors() const { return anchoring_->GetAnchors(); }
  void SetAlign(TAnchoring::TAlign align) { anchoring_->SetAlign(align); }
  void SetAnchors(TAnchoring::TAnchors anchors) { anchoring_->SetAnchors(anchors); }

  /// Shows the values under the mouse in a corner of the plot while the mouse is inside it.
  bool GetShowCoordinates() const { return showCoordinates_; }
  void SetShowCoordinates(bool show);
  /// The values under a pixel as text, as exact as a pixel of this graph is; empty outside the
  /// plot.
  QString CoordinateText(QPoint pixel) const;

  /// The rectangle shared by both axes and the data panel; right and bottom are one past the last
  /// pixel.
  QRect PlotRect() const { return plotRect_; }
  /// Margins of the plot rectangle: what the axes need outside of it.
  QMargins Overlap() const { return overlap_; }

  /// Opens the editor of an axis modally. Unset: the axis editor dialog.
  std::function<void(TAxis& axis)> EditAxis;

  /// Paints the graph in its own size, in logical pixels, on any device. Lays it out first if its
  /// size has changed since it was last.
  void Draw(QPainter& painter);
  /// The graph as a picture of its size, `ratio` device pixels to a logical one; null if that
  /// were more than 67 million pixels.
  QImage Picture(double ratio = 1.0);
  /// Puts the picture on the clipboard.
  void CopyToClipboardAsBitmap();

  /// The automatic range of an axis: that of the visible series, or the axis's own working range
  /// while a slider is dragged, since the axes must not rescale under the mouse.
  void UpdateRangeX(double& minimum, double& maximum);
  void UpdateRangeY(double& minimum, double& maximum);

  /// To be called once the properties have been read from a form.
  void Loaded();
  /// Copies size, axes and data panel into another graph and draws that anew; null is ignored.
  void AssignTo(TKorvalGraph* destination) const;

  QSize sizeHint() const override { return {160, 160}; }

 public slots:
  /// Lays the graph out: automatic ranges, then the plot rectangle.
  void UpdateGraph();
  /// Makes the picture anew. Redraws between two paint events draw once.
  void Redraw();
  /// Lays out and draws.
  void Replay();
  void RedrawGraph(QObject* sender);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void SetUpAxis(TAxis& axis);
  void Resize();
  void LayOut();
  QSize BufferSize() const;
  bool HasBufferOfItsSize() const;
  void CalculateOverlap();
  void AdjustOrigin();
  void DrawFrame(QPainter& painter) const;
  void DrawOpaque(QPainter& painter);
  void DrawBuffer();
  void DrawCoordinates(QPainter& painter) const;
  void HoverAt(QPoint pixel);
  void LetGo(Qt::KeyboardModifiers modifiers, QPoint at);

  /// Working ranges of the horizontal and the vertical axis.
  using TShown = std::pair<std::pair<double, double>, std::pair<double, double>>;

  QPixmap backBuffer_;  ///< null for a graph too large for one, which is painted directly
  std::unique_ptr<TAxis> verticalAx_;
  std::unique_ptr<TAxis> horizontalAx_;
  std::unique_ptr<TDataPanel> dataPanel_;
  QRect plotRect_;
  QMargins overlap_;
  TShown shown_;  ///< after the last layout
  TColor color_ = TColor::White();
  TColor borderColor_ = TColor::None();
  TBevelKind borderStyle_ = TBevel::bvRaised;
  bool ready_ = false;  ///< nothing is laid out or drawn before the constructor ends
  bool showCoordinates_ = false;
  bool updating_ = false;  ///< the axes and the panel answer to a layout, they do not ask for one
  bool stale_ = true;      ///< the back buffer is not the current picture
  QPoint hover_ = kNowhere;
  std::unique_ptr<TAnchoring> anchoring_;

  static constexpr QPoint kNowhere{-1, -1};
};
