#include "components/graphing/Graph.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "components/graphing/editors/Axiseditor.h"
#include "components/graphing/editors/Serieseditor.h"
#include "components/graphing/painting/Curvepainter.h"
#include "components/graphing/painting/Plotfont.h"
#include "model/Datetime.h"

namespace {

constexpr int kBevel = 1;                ///< pixels of a frame on each side
constexpr qint64 kMostPixels = 1 << 26;  ///< of a picture or a buffer, four bytes each

/// Largest of the two on each side.
QMargins Largest(const QMargins& a, const QMargins& b) {
  return {std::max(a.left(), b.left()), std::max(a.top(), b.top()), std::max(a.right(), b.right()),
          std::max(a.bottom(), b.bottom())};
}

/// A value that the mouse shows, to the digit that changes from one pixel to the next.
QString ValueText(const TAxis& axis, double value, double nextPixel) {
  const double resolution = std::abs(nextPixel - value);
  if (axis.GetScale() == TAxis::asTime) {
    TNumberFormat format;
    format.SetIsTimeFormat(true);
    format.SetTimeFormatStr(
        resolution * kSecondsPerDay < 1.0    ? QStringLiteral("yyyy-mm-dd hh:nn:ss.zzz")
        : resolution * kSecondsPerDay < 60.0 ? QStringLiteral("yyyy-mm-dd hh:nn:ss")
                                             : QStringLiteral("yyyy-mm-dd hh:nn"));
    return format.FormatedValue(value);
  }
  if (!(resolution > 0.0) || !std::isfinite(value)) return QString::number(value);
  const double largest = std::max(std::abs(value), resolution);
  const int digits =
      static_cast<int>(std::floor(std::log10(largest)) - std::floor(std::log10(resolution))) + 1;
  // Within its own rounding to a pixel, a value near 0 is 0.
  const double shown =
      std::abs(value) < 0.5 * resolution && axis.GetScale() == TAxis::asLinear ? 0.0 : value;
  return QString::number(shown, 'g', std::clamp(digits, 1, 15));
}

/// A logarithmic axis begins at the least value that it can show.
void TakeRange(const TRange& range, const TAxis& axis, double& minimum, double& maximum) {
  const bool hasGap = axis.GetScale() == TAxis::asLog && range.LeastPositive() > 0.0;
  minimum = hasGap ? range.LeastPositive() : range.GetMin();
  maximum = range.GetMax();
}

/// What an axis shows.
std::pair<double, double> Shown(const TAxis& axis) {
  return {axis.WorkingMin(), axis.WorkingMax()};
}

bool Fits(QSize pixels) { return qint64{pixels.width()} * pixels.height() <= kMostPixels; }

/// Runs a dialog modally. It survives its parent's end, which takes the dialog along.
void Execute(QDialog* dialog) {
  const QPointer<QDialog> alive(dialog);
  dialog->exec();
  delete alive;
}

/// The painter's device shows more than a pixmap holds: paper, a file, a larger picture.
bool IsFiner(const QPainter& painter, const QPixmap& buffer) {
  return DeviceGrid(painter) > 1.01 * buffer.devicePixelRatio();
}

}  // namespace

TKorvalGraph::TKorvalGraph(QWidget* parent)
    : QWidget(parent),
      verticalAx_(std::make_unique<TAxis>(this)),
      horizontalAx_(std::make_unique<TAxis>(this)),
      dataPanel_(std::make_unique<TDataPanel>(horizontalAx_.get(), verticalAx_.get(), this)),
      anchoring_(std::make_unique<TAnchoring>(this)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

  verticalAx_->SetOrientation(TAxis::aoVertical);
  verticalAx_->SetAlign(TAxis::alLeft);
  verticalAx_->GetTitle()->SetCaption(QStringLiteral("Y-axis"));
  verticalAx_->OnQueryRange = [this](double& min, double& max) { UpdateRangeY(min, max); };
  SetUpAxis(*verticalAx_);

  horizontalAx_->GetTitle()->SetCaption(QStringLiteral("X-axis"));
  horizontalAx_->OnQueryRange = [this](double& min, double& max) { UpdateRangeX(min, max); };
  SetUpAxis(*horizontalAx_);

  dataPanel_->SetFillColor(TColor::None());
  dataPanel_->GetSeriesList().Editor = [this](TSeriesList& list) {
    Execute(new TSeriesEditor(list, this));
  };
  connect(dataPanel_.get(), &TDataPanel::OnChange, this, &TKorvalGraph::UpdateGraph);
  connect(dataPanel_.get(), &TDataPanel::OnRepaint, this, &TKorvalGraph::Redraw);

  resize(160, 160);
  ready_ = true;
}

TKorvalGraph::~TKorvalGraph() {
  ready_ = false;
  // An open editor goes before what it edits.
  if (auto* editor = findChild<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
    editor->hide();
    delete editor;
  }
}

/// What both axes have in common.
void TKorvalGraph::SetUpAxis(TAxis& axis) {
  axis.SetShape(TAxis::shLine);
  axis.SetFixedOrigin(true);
  axis.GetTitle()->SetPos(TAxisTitle::tiRight);
  axis.OnQueryPlotRect = [this] { return plotRect_; };
  connect(&axis, &TAxis::OnChange, this, &TKorvalGraph::UpdateGraph);
  connect(&axis, &TAxis::OnRepaint, this, &TKorvalGraph::Redraw);
}

// Properties

void TKorvalGraph::SetDataPanel(const TDataPanel* panel) {
  if (!panel) return;
  const QPointer<TKorvalGraph> self(this);
  dataPanel_->Assign(panel);
  if (self) Redraw();
}

void TKorvalGraph::SetHAx(const TAxis* axis) {
  if (!axis) return;
  const QPointer<TKorvalGraph> self(this);
  horizontalAx_->Assign(axis);
  if (self) UpdateGraph();
}

void TKorvalGraph::SetVAx(const TAxis* axis) {
  if (!axis) return;
  const QPointer<TKorvalGraph> self(this);
  verticalAx_->Assign(axis);
  if (self) UpdateGraph();
}

void TKorvalGraph::SetColor(TColor color) {
  if (color == color_) return;
  color_ = color;
  Redraw();
}

void TKorvalGraph::SetBorderColor(TColor color) {
  if (color == borderColor_) return;
  borderColor_ = color;
  Redraw();
}

void TKorvalGraph::SetBorderStyle(TBevelKind style) {
  if (style == borderStyle_ || style < TBevel::bvNone || style > TBevel::bvSpace) return;
  borderStyle_ = style;
  Redraw();
}

void TKorvalGraph::SetHeight(int pixels) {
  if (pixels >= 0) resize(width(), pixels);
}

void TKorvalGraph::SetWidth(int pixels) {
  if (pixels >= 0) resize(pixels, height());
}

void TKorvalGraph::SetShowCoordinates(bool show) {
  if (show == showCoordinates_) return;
  showCoordinates_ = show;
  setMouseTracking(show);
  update();
}

// Layout

void TKorvalGraph::UpdateGraph() {
  if (!ready_ || updating_) return;
  const QPointer<TKorvalGraph> self(this);
  updating_ = true;
  LayOut();
  if (self) updating_ = false;
}

/// A listener of the axes may destroy the graph.
void TKorvalGraph::LayOut() {
  if (!HasBufferOfItsSize()) {
    const QSize pixels = BufferSize();
    backBuffer_ = Fits(pixels) ? QPixmap(pixels) : QPixmap();
    backBuffer_.setDevicePixelRatio(devicePixelRatioF());
    stale_ = true;
  }
  const QPointer<TKorvalGraph> self(this);
  horizontalAx_->UpdateAxis();
  if (self) verticalAx_->UpdateAxis();
  if (!self) return;
  AdjustOrigin();
  const TShown shown{Shown(*horizontalAx_), Shown(*verticalAx_)};
  if (std::exchange(shown_, shown) != shown) dataPanel_->AxesChanged();
}

void TKorvalGraph::UpdateRangeX(double& minimum, double& maximum) {
  if (dataPanel_->SelSlider()) {
    minimum = horizontalAx_->WorkingMin();
    maximum = horizontalAx_->WorkingMax();
    return;
  }
  dataPanel_->UpdateRangeX();
  TakeRange(dataPanel_->RangeX(), *horizontalAx_, minimum, maximum);
}

void TKorvalGraph::UpdateRangeY(double& minimum, double& maximum) {
  if (dataPanel_->SelSlider()) {
    minimum = verticalAx_->WorkingMin();
    maximum = verticalAx_->WorkingMax();
    return;
  }
  dataPanel_->UpdateRangeY();
  TakeRange(dataPanel_->RangeY(), *verticalAx_, minimum, maximum);
}

void TKorvalGraph::CalculateOverlap() {
  overlap_ = Largest(horizontalAx_->Overlap(), verticalAx_->Overlap());
}

void TKorvalGraph::AdjustOrigin() {
  const QRect before = plotRect_;
  CalculateOverlap();
  plotRect_ = rect().marginsRemoved(overlap_);
  plotRect_.setSize(plotRect_.size().expandedTo({0, 0}));
  if (plotRect_ == before) return;
  stale_ = true;
  dataPanel_->SetOrigin(plotRect_);
  for (TAxis* axis : {horizontalAx_.get(), verticalAx_.get()}) {
    axis->SetOrigin(plotRect_);
    axis->SetBounds(rect().adjusted(kBevel, kBevel, -kBevel, -kBevel));
    axis->AdjustOrigin();
  }
}

/// In device pixels.
QSize TKorvalGraph::BufferSize() const {
  return (QSizeF(size()) * devicePixelRatioF()).toSize().expandedTo({1, 1});
}

bool TKorvalGraph::HasBufferOfItsSize() const {
  return backBuffer_.size() == BufferSize() &&
         backBuffer_.devicePixelRatio() == devicePixelRatioF();
}

void TKorvalGraph::Resize() {
  if (!HasBufferOfItsSize()) UpdateGraph();
}

void TKorvalGraph::Loaded() { UpdateGraph(); }

void TKorvalGraph::AssignTo(TKorvalGraph* destination) const {
  if (!destination || destination == this) return;
  const QPointer<TKorvalGraph> other(destination);
  other->resize(size());
  if (other) other->SetHAx(horizontalAx_.get());
  if (other) other->SetVAx(verticalAx_.get());
  if (other) other->SetDataPanel(dataPanel_.get());
  if (other) other->Replay();
}

// Drawing

void TKorvalGraph::Redraw() {
  if (!ready_) return;
  stale_ = true;
  update();
}

void TKorvalGraph::Replay() {
  const QPointer<TKorvalGraph> self(this);
  UpdateGraph();
  if (self) Redraw();
}

void TKorvalGraph::RedrawGraph(QObject*) { Replay(); }

void TKorvalGraph::Draw(QPainter& painter) {
  Resize();
  painter.setFont(PlotFont(QFont(QStringLiteral("Arial"), 8)));  // of what has no font of its own
  if (!color_.IsNone()) painter.fillRect(rect(), color_.ToQColor());
  DrawFrame(painter);
  dataPanel_->Draw(&painter);
  horizontalAx_->Draw(painter);
  verticalAx_->Draw(painter);
}

void TKorvalGraph::DrawFrame(QPainter& painter) const {
  if (borderStyle_ == TBevel::bvLowered || borderStyle_ == TBevel::bvRaised) {
    DrawBevel(painter, rect(), borderStyle_);
  } else if (!borderColor_.IsNone()) {
    const QColor color = borderColor_.ToQColor();
    painter.fillRect(0, 0, width(), kBevel, color);
    painter.fillRect(0, height() - kBevel, width(), kBevel, color);
    painter.fillRect(0, 0, kBevel, height(), color);
    painter.fillRect(width() - kBevel, 0, kBevel, height(), color);
  }
}

QImage TKorvalGraph::Picture(double ratio) {
  const QSize pixels = (QSizeF(size()) * ratio).toSize().expandedTo({1, 1});
  QImage picture(Fits(pixels) ? pixels : QSize(), QImage::Format_RGB32);
  if (picture.isNull()) return picture;
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::white);
  QPainter painter(&picture);
  Draw(painter);
  return picture;
}

void TKorvalGraph::CopyToClipboardAsBitmap() {
  QApplication::clipboard()->setImage(Picture(devicePixelRatioF()));
}

/// A background that is not painted shows what lies below the graph.
void TKorvalGraph::DrawOpaque(QPainter& painter) {
  if (color_.IsNone()) painter.fillRect(rect(), palette().color(backgroundRole()));
  Draw(painter);
}

void TKorvalGraph::DrawBuffer() {
  if (!stale_) return;
  stale_ = false;
  QPainter painter(&backBuffer_);
  DrawOpaque(painter);
}

void TKorvalGraph::paintEvent(QPaintEvent*) {
  Resize();
  QPainter painter(this);
  if (backBuffer_.isNull() || IsFiner(painter, backBuffer_)) {
    DrawOpaque(painter);
  } else {
    DrawBuffer();
    painter.drawPixmap(0, 0, backBuffer_);
  }
  if (showCoordinates_) DrawCoordinates(painter);
}

void TKorvalGraph::resizeEvent(QResizeEvent*) { Resize(); }

bool TKorvalGraph::event(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && color_.IsNone()) Redraw();
  // A menu or a dialog is about to be given the release that ends the drag.
  const bool losesMouse =
      event->type() == QEvent::ContextMenu || event->type() == QEvent::WindowBlocked;
  if (losesMouse && dataPanel_->SelSlider()) LetGo(Qt::NoModifier, hover_);
  return QWidget::event(event);
}

// Coordinates under the mouse

QString TKorvalGraph::CoordinateText(QPoint pixel) const {
  if (!plotRect_.contains(pixel)) return {};
  TCoordinate here;
  TCoordinate next;
  dataPanel_->LocateCoordinate(pixel, here);
  dataPanel_->LocateCoordinate(pixel + QPoint(1, 1), next);
  return QStringLiteral("x = %1   y = %2")
      .arg(ValueText(*horizontalAx_, here.X, next.X), ValueText(*verticalAx_, here.Y, next.Y));
}

void TKorvalGraph::DrawCoordinates(QPainter& painter) const {
  const QString text = CoordinateText(hover_);
  if (text.isEmpty()) return;
  const QFont font = PlotFont(QFont(QStringLiteral("Arial"), 8));
  const QFontMetrics metrics(font);
  const QSize size(metrics.horizontalAdvance(text) + 10, metrics.height() + 4);
  const QRect box(QPoint(plotRect_.right() - size.width() - 3, plotRect_.top() + 4), size);
  painter.setFont(font);
  painter.fillRect(box, QColor(255, 255, 225, 230));
  painter.setPen(QColor(160, 160, 160));
  painter.drawRect(box.adjusted(0, 0, -1, -1));
  painter.setPen(Qt::black);
  painter.drawText(box, Qt::AlignCenter, text);
}

void TKorvalGraph::HoverAt(QPoint pixel) {
  if (pixel == hover_) return;
  hover_ = pixel;
  if (showCoordinates_) update();
}

void TKorvalGraph::leaveEvent(QEvent*) { HoverAt(kNowhere); }

// Mouse

void TKorvalGraph::mousePressEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (event->button() != Qt::LeftButton || !plotRect_.contains(at)) return;
  if (dataPanel_->GetSelSlider(event->modifiers(), at.x(), at.y())) {
    Replay();
  } else if (dataPanel_->GetAllowSelection()) {
    dataPanel_->StartSelection(event->modifiers(), at.x(), at.y());
    Redraw();
  }
}

void TKorvalGraph::mouseMoveEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  HoverAt(at);
  if (dataPanel_->SelSlider()) {
    if (dataPanel_->MoveSelSlider(event->modifiers(), at.x(), at.y())) Redraw();
  } else if (dataPanel_->GetAllowSelection() && event->buttons().testFlag(Qt::LeftButton)) {
    dataPanel_->MoveSelection(event->modifiers(), at.x(), at.y());
    Redraw();
  }
}

void TKorvalGraph::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (event->button() != Qt::LeftButton) return;
  if (dataPanel_->SelSlider()) {
    LetGo(event->modifiers(), at);
  } else if (dataPanel_->GetAllowSelection()) {
    dataPanel_->EndSelection(event->modifiers(), at.x(), at.y());
    Redraw();
  }
}

/// Releases the slider; the axes may take their automatic ranges again.
void TKorvalGraph::LetGo(Qt::KeyboardModifiers modifiers, QPoint at) {
  dataPanel_->ReleaseSelSlider(modifiers, at.x(), at.y());
  Replay();
}

void TKorvalGraph::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (event->button() != Qt::LeftButton) return;
  for (TAxis* axis : {horizontalAx_.get(), verticalAx_.get()}) {
    if (!axis->GetClientRect().contains(at)) continue;
    if (EditAxis) {
      EditAxis(*axis);
    } else {
      Execute(new TAxisEditor(*axis, this));
    }
    return;
  }
  if (plotRect_.contains(at)) dataPanel_->GetSeriesList().ShowEditor();
}
