#include "components/graphing/Datapanel.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPen>
#include <QPointer>
#include <algorithm>
#include <cstdlib>

#include "components/graphing/Axis.h"
#include "components/graphing/painting/Curvepainter.h"

namespace {

constexpr TColor kSelectionColor = TColor::FromRgb(128, 128, 128);
constexpr int kLeastSelection = 3;  // a selection must exceed it in both directions

TPixelScale::TAxisRange RangeOf(const TAxis& axis) {
  return {axis.GetScale() == TAxis::asLog, axis.WorkingMin(), axis.ScaleFactor()};
}

/// The common range of the visible series, each brought up to date first.
template <auto kUpdate, auto kRange>
void Collect(const TSeriesList& list, TRange& range) {
  if (list.Empty()) return;
  range.SetReset(true);
  for (int i = 0; i < list.Count(); ++i) {
    TCustomGraphSeries* series = list.Get(i);
    if (!series->GetVisible()) continue;
    (series->*kUpdate)();
    const TRange& own = (series->*kRange)();
    // A series without a finite value covers nothing.
    if (!own.GetReset()) range.GetBounds(&own);
  }
}

}  // namespace

TDataPanel::TDataPanel(const TAxis* horizontal, const TAxis* vertical, QObject* owner)
    : TSeriesPanel(owner), horizontal_(horizontal), vertical_(vertical) {}

TDataPanel::~TDataPanel() {
  // Nobody hears of it any more: the graph that would draw is going too.
  blockSignals(true);
  list_.Clear();
}

void TDataPanel::Changed() {
  const QPointer<TDataPanel> self(this);
  emit OnChange(this);
  if (self) emit OnRepaint(this);
}

void TDataPanel::SetLineColor(TColor color) {
  if (lineColor_ == color) return;
  lineColor_ = color;
  Changed();
}

void TDataPanel::SetFillColor(TColor color) {
  if (fillColor_ == color) return;
  fillColor_ = color;
  Changed();
}

void TDataPanel::SetOrigin(const QRect& rect) { rect_ = rect; }

void TDataPanel::SeriesLeft(const TCustomGraphSeries& series) {
  if (selSlider_ == &series) selSlider_ = nullptr;
}

void TDataPanel::SetSeriesData(const QString& text) {
  static_cast<void>(list_.ReadProperties(text));
}

void TDataPanel::UpdateRangeX() {
  Collect<&TCustomGraphSeries::UpdateRangeX, &TCustomGraphSeries::RangeX>(list_, rangeX_);
}

void TDataPanel::UpdateRangeY() {
  Collect<&TCustomGraphSeries::UpdateRangeY, &TCustomGraphSeries::RangeY>(list_, rangeY_);
}

bool TDataPanel::ShowsTimeX() const { return horizontal_->GetScale() == TAxis::asTime; }
bool TDataPanel::ShowsTimeY() const { return vertical_->GetScale() == TAxis::asTime; }

TPixelScale TDataPanel::ScaleX(double grid) const {
  return TPixelScale::Rightwards(RangeOf(*horizontal_), rect_.left(), grid);
}

TPixelScale TDataPanel::ScaleY(double grid) const {
  return TPixelScale::Upwards(RangeOf(*vertical_), rect_.top() + rect_.height(), grid);
}

TPlotArea TDataPanel::PlotArea(double grid) const {
  const QRectF scaled(rect_.x() * grid, rect_.y() * grid, rect_.width() * grid,
                      rect_.height() * grid);
  return {scaled.toAlignedRect(), ScaleX(grid), ScaleY(grid), grid};
}

void TDataPanel::LocateValue(QPoint& point, TCoordinate& value) const {
  const TPixelScale x = ScaleX();
  const TPixelScale y = ScaleY();
  value = {x.Clamped(value.X), y.Clamped(value.Y)};
  point = {x.Pixel(value.X), y.Pixel(value.Y)};
}

void TDataPanel::LocateValue(QLine& bar, TCoordinate& value, TCoordinate& base) const {
  QPoint top;
  QPoint foot;
  LocateValue(top, value);
  LocateValue(foot, base);
  bar = QLine(top, foot);
}

void TDataPanel::LocateCoordinate(QPoint point, TCoordinate& value) const {
  value = {ScaleX().Value(point.x()), ScaleY().Value(point.y())};
}

void TDataPanel::SetAllowSelection(bool allow) {
  if (allowSelection_ == allow) return;
  allowSelection_ = allow;
  Changed();
}

/// The nearest point between the panel's borders, of which right and bottom are one past the last
/// pixel: a selection can hold the whole panel.
QPoint TDataPanel::Inside(int x, int y) const {
  return {std::max(rect_.left(), std::min(x, rect_.left() + rect_.width())),
          std::max(rect_.top(), std::min(y, rect_.top() + rect_.height()))};
}

void TDataPanel::StartSelection(Qt::KeyboardModifiers, int x, int y) {
  anchor_ = corner_ = {x, y};
  selecting_ = true;
}

void TDataPanel::MoveSelection(Qt::KeyboardModifiers, int x, int y) {
  if (selecting_) corner_ = Inside(x, y);
}

void TDataPanel::EndSelection(Qt::KeyboardModifiers, int x, int y) {
  if (!selecting_) return;
  corner_ = Inside(x, y);
  axesChanged_ = false;
  emit OnSelection(this);
  selecting_ = false;
  if (axesChanged_) ClearSelection();
}

void TDataPanel::AxesChanged() {
  axesChanged_ = true;
  if (!selecting_) ClearSelection();
}

void TDataPanel::ClearSelection() {
  if (anchor_ == corner_) return;
  anchor_ = corner_ = QPoint();
  emit OnRepaint(this);
}

bool TDataPanel::SelectionValues(double& x1, double& y1, double& x2, double& y2) const {
  const QPoint size = corner_ - anchor_;
  if (!allowSelection_ || std::abs(size.x()) <= kLeastSelection ||
      std::abs(size.y()) <= kLeastSelection) {
    return false;
  }
  TCoordinate upperLeft;
  TCoordinate lowerRight;
  LocateCoordinate({std::min(anchor_.x(), corner_.x()), std::min(anchor_.y(), corner_.y())},
                   upperLeft);
  LocateCoordinate({std::max(anchor_.x(), corner_.x()), std::max(anchor_.y(), corner_.y())},
                   lowerRight);
  x1 = upperLeft.X;
  y1 = upperLeft.Y;
  x2 = lowerRight.X;
  y2 = lowerRight.Y;
  return true;
}

bool TDataPanel::GetSelSlider(Qt::KeyboardModifiers, int x, int y) {
  selSlider_ = nullptr;
  for (int i = list_.Count() - 1; i >= 0 && !selSlider_; --i) {
    TCustomGraphSeries* series = list_.Get(i);
    if (series->GetVisible() && series->Grab({x, y})) selSlider_ = series;
  }
  return selSlider_ != nullptr;
}

bool TDataPanel::MoveSelSlider(Qt::KeyboardModifiers, int x, int y) {
  return selSlider_ && selSlider_->Drag({x, y});
}

void TDataPanel::ReleaseSelSlider(Qt::KeyboardModifiers, int, int) {
  if (selSlider_) selSlider_->Release();
  selSlider_ = nullptr;
}

void TDataPanel::Draw(QPainter* painter) {
  painter->save();
  painter->setClipRect(rect_, Qt::IntersectClip);
  if (!fillColor_.IsNone()) painter->fillRect(rect_, fillColor_.ToQColor());
  if (!lineColor_.IsNone()) {
    painter->setPen(QPen(lineColor_.ToQColor(), 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(rect_.adjusted(0, 0, -1, -1));
  }
  DrawSeries(painter);
  if (allowSelection_) DrawSelection(painter);
  painter->restore();
}

void TDataPanel::DrawSeries(QPainter* painter) {
  int drawn = 0;
  for (int i = 0; i < list_.Count(); ++i) {
    TCustomGraphSeries* series = list_.Get(i);
    if (!series->GetVisible()) continue;
    painter->save();
    series->Draw(painter);
    painter->restore();
    ++drawn;
  }
  if (drawn > 0) return;
  const QString text = QStringLiteral("No data");
  const QFontMetrics metrics(painter->font(), painter->device());
  const int left = (2 * rect_.left() + rect_.width() - metrics.horizontalAdvance(text)) / 2;
  const int top = (2 * rect_.top() + rect_.height() - metrics.height()) / 2;
  painter->setPen(Qt::black);
  painter->drawText(left, top + metrics.ascent(), text);
}

void TDataPanel::DrawSelection(QPainter* painter) const {
  if (anchor_ == corner_) return;
  painter->setPen(QPen(kSelectionColor.ToQColor(), 1, Qt::DashLine));
  painter->setBrush(Qt::NoBrush);
  const QPoint upperLeft(std::min(anchor_.x(), corner_.x()), std::min(anchor_.y(), corner_.y()));
  const QPoint size(std::abs(anchor_.x() - corner_.x()), std::abs(anchor_.y() - corner_.y()));
  // The last row and column belong to the rectangle, so that it shows on the panel's borders.
  painter->drawRect(QRect(upperLeft, QSize(std::max(0, size.x() - 1), std::max(0, size.y() - 1))));
}

void TDataPanel::AssignTo(TPersistent* destination) const {
  auto* panel = qobject_cast<TDataPanel*>(destination);
  if (!panel || panel == this) return;
  CopyInSteps(
      panel, [&] { panel->SetLineColor(lineColor_); }, [&] { panel->SetFillColor(fillColor_); },
      [&] { panel->SetAllowSelection(allowSelection_); }, [&] { panel->list_.Assign(&list_); });
}

bool TDataPanel::SameAs(const TPersistent* other) const {
  const auto* panel = qobject_cast<const TDataPanel*>(other);
  return panel && lineColor_ == panel->lineColor_ && fillColor_ == panel->fillColor_ &&
         allowSelection_ == panel->allowSelection_ && list_.SameAs(&panel->list_);
}
