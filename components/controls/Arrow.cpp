#include "components/controls/Arrow.h"

#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <algorithm>

#include "components/controls/Designmode.h"
#include "components/controls/Korvaltools.h"
#include "components/controls/Sharppen.h"

namespace {

constexpr int kHeadLength = 8;
constexpr int kHeadHalfWidth = 3;

/// Sides of a rectangle as coordinates: right and bottom are one past the last pixel.
struct TSides {
  qint64 left, top, right, bottom;
};

TSides SidesOf(QPoint origin, QSize size) {
  return {origin.x(), origin.y(), qint64{origin.x()} + size.width(),
          qint64{origin.y()} + size.height()};
}

/// Where a widget's upper left corner lies in another one.
QPoint OriginIn(const QWidget* widget, const QWidget* where) {
  if (!where) return widget->mapToGlobal(QPoint());
  if (where == widget || where->isAncestorOf(widget)) return widget->mapTo(where, QPoint());
  return where->mapFromGlobal(widget->mapToGlobal(QPoint()));
}

bool Holds(const QWidget& widget, const QWidget* other) {
  return &widget == other || widget.isAncestorOf(other);
}

/// Kept where sums of pixels cannot overflow.
QPoint Point(qint64 x, qint64 y) {
  constexpr qint64 kFar = 1 << 28;
  return {static_cast<int>(std::clamp(x, -kFar, kFar)),
          static_cast<int>(std::clamp(y, -kFar, kFar))};
}

}  // namespace

// TArrowEnd

TArrowEnd::TArrowEnd(TArrow* arrow) : TPersistent(arrow), arrow_(arrow), control_(arrow) {
  control_.OnBeforeChange = [](QObject* item, TListAction action, bool& allow) {
    if (action == laAdded) allow = !qobject_cast<TArrow*>(item);
  };
  connect(&control_, &TKorvalCompList::OnChange, this, &TArrowEnd::ControlChanged);
}

void TArrowEnd::SetStyle(TArrowStyle style) {
  if (style == style_ || style < asNone || style > asCircle) return;
  style_ = style;
  arrow_->update();
  emit OnChange(this);
}

void TArrowEnd::SetAttachTo(TAttachPos side) {
  if (side == attachTo_ || side < apControlLeft || side > apControlBottom) return;
  attachTo_ = side;
  arrow_->EndMoved(*this);
  emit OnChange(this);
}

void TArrowEnd::ControlChanged() {
  TrapControlPos(GetControl());
  arrow_->EndMoved(*this);
  emit OnChange(this);
}

void TArrowEnd::TrapControlPos(QWidget* control) {
  for (const QPointer<QWidget>& widget : watched_) {
    if (widget) widget->removeEventFilter(this);
  }
  watched_.clear();
  if (!control) return;
  // A control that lies in other widgets moves with them, and so does the arrow.
  QWidget* parent = arrow_->parentWidget();
  Watch(control);
  WatchUpTo(parent, control->isWindow() ? nullptr : control->parentWidget());
  WatchUpTo(control, parent);
}

/// Watches a widget and those in which it lies, without the ones that hold the other one as well.
void TArrowEnd::WatchUpTo(const QWidget* other, QWidget* widget) {
  for (; widget && !Holds(*widget, other); widget = widget->parentWidget()) {
    Watch(widget);
    if (widget->isWindow()) break;
  }
}

void TArrowEnd::Watch(QWidget* widget) {
  watched_.emplace_back(widget);
  widget->installEventFilter(this);
}

bool TArrowEnd::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ParentChange:
      TrapControlPos(GetControl());
      [[fallthrough]];
    case QEvent::Move:
    case QEvent::Resize:
      arrow_->EndMoved(*this);
      break;
    default:
      break;
  }
  return TPersistent::eventFilter(watched, event);
}

void TArrowEnd::DefinePos() {
  const QWidget* control = GetControl();
  const bool own = !control;
  const TSides box = own ? SidesOf(arrow_->pos(), arrow_->size())
                         : SidesOf(OriginIn(control, arrow_->parentWidget()), control->size());
  const qint64 middleX = (box.left + box.right) / 2;
  const qint64 middleY = (box.top + box.bottom) / 2;
  switch (attachTo_) {
    case apControlLeft:
      pos_ = Point(own ? box.right : box.left, middleY);
      break;
    case apControlTop:
      pos_ = Point(middleX, own ? box.bottom : box.top);
      break;
    case apControlRight:
      pos_ = Point(own ? box.left : box.right, middleY);
      break;
    case apControlBottom:
      pos_ = Point(middleX, own ? box.top : box.bottom);
      break;
  }
}

void TArrowEnd::DrawArrow(QPainter& painter) const {
  const QPoint tip = pos_ - shift_;
  const TSharpPen pen(painter, painter.pen().color(), 1);
  if (style_ == asCircle) {
    painter.setBrush(painter.pen().color());
    painter.drawEllipse(pen.Map(tip), kHeadHalfWidth, kHeadHalfWidth);
    painter.setBrush(Qt::NoBrush);
  }
  if (style_ != asArrow) return;
  // From the tip to the middle between the wings: away from the control.
  const bool level = attachTo_ == apControlLeft || attachTo_ == apControlRight;
  const int back =
      attachTo_ == apControlLeft || attachTo_ == apControlTop ? -kHeadLength : kHeadLength;
  for (const int side : {-kHeadHalfWidth, kHeadHalfWidth}) {
    const QPoint wing = tip + (level ? QPoint(back, side) : QPoint(side, back));
    painter.drawLine(pen.Map(tip), pen.Map(wing));
  }
}

void TArrowEnd::AssignTo(TPersistent* destination) const {
  auto* end = qobject_cast<TArrowEnd*>(destination);
  if (!end || end == this) return;
  CopyInSteps(
      end, [&] { end->SetStyle(style_); }, [&] { end->SetAttachTo(attachTo_); },
      [&] { end->control_.Assign(&control_); });
}

bool TArrowEnd::SameAs(const TPersistent* other) const {
  const auto* end = qobject_cast<const TArrowEnd*>(other);
  return end && style_ == end->style_ && attachTo_ == end->attachTo_ &&
         control_.SameAs(&end->control_);
}

// TArrow

TArrow::TArrow(QWidget* parent) : TComponentControl(parent) {
  resize(TArrow::sizeHint());
  SetFace(true);
  TakeMouse();
  BoundsChanged();
}

void TArrow::SetColor(TColor color) {
  if (color == color_) return;
  color_ = color;
  update();
}

void TArrow::EndMoved(TArrowEnd& end) {
  if (changing_) return;
  DefineFreeEnds();
  end.DefinePos();
  AdjustBounds();
}

void TArrow::BoundsChanged() {
  if (changing_ || geometry() == ownBounds_) return;
  DefineFreeEnds();
  AdjustBounds();
}

/// Free ends move with the arrow if somebody else moves it, but not when it takes its own bounds.
void TArrow::DefineFreeEnds() {
  if (geometry() == ownBounds_) return;
  for (TArrowEnd* end : {&start_, &end_}) {
    if (!end->GetControl()) end->DefinePos();
  }
}

void TArrow::AdjustBounds() {
  points_.Clear();
  points_.Add(start_.GetPos());
  points_.Add(end_.GetPos());
  if (IsAttached() && !IsLoading()) {
    const QRect box = points_.Bounds();
    const QScopedValueRollback<bool> changing(changing_, true);
    setGeometry(box.x() - kMargin, box.y() - kMargin, box.width() + 2 * kMargin,
                box.height() + 2 * kMargin);
    ownBounds_ = geometry();
  }
  start_.SetShift(pos());
  end_.SetShift(pos());
  update();
}

void TArrow::Loaded() {
  start_.Loaded();
  end_.Loaded();
  TComponentControl::Loaded();
  start_.DefinePos();
  end_.DefinePos();
  RestoreFreeEnd();
  AdjustBounds();
}

/// A form holds the box that the arrow took about its line. Where the attached end lies in a corner
/// of that line's box, the free one lay in the opposite corner; found from the sides of the larger
/// box, it would move away each time the form is saved and read.
void TArrow::RestoreFreeEnd() {
  if (!start_.GetControl() == !end_.GetControl()) return;
  TArrowEnd& free = start_.GetControl() ? end_ : start_;
  const QPoint held = (start_.GetControl() ? start_ : end_).GetPos();
  const QSize line = size() - QSize(2 * kMargin, 2 * kMargin);
  const QPoint near = pos() + QPoint(kMargin, kMargin);
  const QPoint far = near + QPoint(line.width(), line.height());
  if ((held.x() == near.x() || held.x() == far.x()) &&
      (held.y() == near.y() || held.y() == far.y())) {
    free.SetPos(near + far - held);
  }
}

void TArrow::TakeMouse() { setAttribute(Qt::WA_TransparentForMouseEvents, !IsDesignMode(this)); }

bool TArrow::event(QEvent* event) {
  const bool handled = TComponentControl::event(event);
  if (event->type() == TDesignModeEvent::Kind()) TakeMouse();
  if (event->type() == QEvent::Move || event->type() == QEvent::Resize) BoundsChanged();
  if (event->type() == QEvent::ParentChange) {
    for (TArrowEnd* end : {&start_, &end_}) {
      end->TrapControlPos(end->GetControl());
      EndMoved(*end);
    }
  }
  return handled;
}

void TArrow::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  QPainter painter(this);
  if (!IsAttached() && IsDesignMode(this)) DrawDashedFrame(painter, rect());
  const QColor own = color_.IsNone() ? palette().windowText().color() : color_.ToQColor();
  const TSharpPen pen(painter, own, 1);
  start_.DrawArrow(painter);
  end_.DrawArrow(painter);
  std::vector<QPoint> line;
  line.reserve(points_.Count());
  for (int i = 0; i < points_.Count(); ++i) line.push_back(points_.Get(i) - pos());
  painter.drawPolyline(pen.Map(line));
}
