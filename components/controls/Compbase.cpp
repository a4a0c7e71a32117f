#include "components/controls/Compbase.h"

#include <QEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "components/controls/Designmode.h"
#include "components/controls/Iconimages.h"

namespace {

constexpr int kGap = 3;  ///< pixels between picture and caption

}  // namespace

TIconLayout LayOutIcon(QSize image, QSize text, TIconControl::TCaptionPos pos) {
  if (pos == TIconControl::cpNone || text.isEmpty()) text = QSize();
  if (image.isEmpty()) image = QSize();
  TIconLayout result;
  if (image.isEmpty() || text.isEmpty()) {
    result.size = image.isEmpty() ? text : image;
    (image.isEmpty() ? result.caption : result.icon) = QRect(QPoint(), result.size);
    return result;
  }
  const bool beside = pos == TIconControl::cpLeft || pos == TIconControl::cpRight;
  const bool imageFirst = pos == TIconControl::cpRight || pos == TIconControl::cpBottom;
  result.size =
      beside ? QSize(image.width() + kGap + text.width(), std::max(image.height(), text.height()))
             : QSize(std::max(image.width(), text.width()), image.height() + kGap + text.height());
  // Each touches its own end of the line that joins them and is centred across it.
  const auto place = [&](QSize part, bool first) {
    const QSize free = result.size - part;
    return beside ? QRect(QPoint(first ? 0 : free.width(), free.height() / 2), part)
                  : QRect(QPoint(free.width() / 2, first ? 0 : free.height()), part);
  };
  result.icon = place(image, imageFirst);
  result.caption = place(text, !imageFirst);
  return result;
}

// TComponentControl

bool IsLoading(const QObject* object) {
  const auto* component = qobject_cast<const TComponentControl*>(object);
  return component && component->IsLoading();
}

TComponentControl::TComponentControl(QWidget* parent) : QWidget(parent) { UpdateVisibility(); }

TWishes TComponentControl::Wishes() const {
  TWishes wishes;
  AddWishes(wishes);
  return wishes;
}

void TComponentControl::SetVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  UpdateVisibility();
}

void TComponentControl::SetFace(bool face) {
  if (face == face_) return;
  face_ = face;
  UpdateVisibility();
}

bool TComponentControl::MayBeSeen() const { return (face_ && visible_) || IsDesignMode(this); }

void TComponentControl::setVisible(bool visible) { QWidget::setVisible(visible && MayBeSeen()); }

void TComponentControl::UpdateVisibility() {
  // Without a parent it is a window, which only its user shows.
  const bool seen = MayBeSeen();
  if (!seen || parentWidget()) QWidget::setVisible(seen);
}

bool TComponentControl::event(QEvent* event) {
  if (event->type() == TDesignModeEvent::Kind()) UpdateVisibility();
  // setParent sends this event first, and then hides the widget.
  if (event->type() == QEvent::ParentChange) {
    QMetaObject::invokeMethod(this, &TComponentControl::UpdateVisibility, Qt::QueuedConnection);
  }
  return QWidget::event(event);
}

// TIconControl

TIconControl::TIconControl(QWidget* parent) : TComponentControl(parent) {}

void TIconControl::SetCaption(const QString& caption) {
  if (caption == caption_) return;
  caption_ = caption;
  ContentChanged();
}

void TIconControl::SetCaptionPos(TCaptionPos pos) {
  if (pos == captionPos_ || pos < cpNone || pos > cpRight) return;
  captionPos_ = pos;
  ContentChanged();
}

void TIconControl::SetShowIcon(bool show) {
  if (show == showIcon_) return;
  showIcon_ = show;
  ContentChanged();
}

void TIconControl::SetIconImage(const QString& name) {
  if (name == iconImage_) return;
  iconImage_ = name;
  update();
}

void TIconControl::SetImageSize(QSize size) {
  if (size == imageSize_ || size.isEmpty()) return;
  imageSize_ = size;
  ContentChanged();
}

// Picture and caption

TIconLayout TIconControl::Layout() const {
  return LayOutIcon(showIcon_ ? imageSize_ : QSize(), fontMetrics().size(0, GetCaption()),
                    captionPos_);
}

QSize TIconControl::sizeHint() const { return Layout().size.expandedTo(QSize(1, 1)); }

void TIconControl::ContentChanged() {
  updateGeometry();
  if (!parentWidget() || !parentWidget()->layout()) resize(sizeHint());
  update();
}

void TIconControl::changeEvent(QEvent* event) {
  TComponentControl::changeEvent(event);
  if (event->type() == QEvent::FontChange) ContentChanged();
}

void TIconControl::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  QPainter painter(this);
  const TIconLayout layout = Layout();
  if (!layout.icon.isNull()) DrawIconImage(painter, layout.icon, iconImage_);
  if (!layout.caption.isNull()) painter.drawText(layout.caption, Qt::AlignCenter, GetCaption());
}

void TIconControl::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) DoubleClicked();
}

// TStateControl

TStateControl::TStateControl(QWidget* parent) : TIconControl(parent) {}

void TStateControl::SetActive(bool active) {
  if (active == active_) return;
  active_ = active;
  ShowState();
  emit OnActiveChanged(this);
}

void TStateControl::SetStateImages(const QString& idle, const QString& active,
                                   const QString& down) {
  idleImage_ = idle;
  activeImage_ = active;
  downImage_ = down;
  ShowState();
}

void TStateControl::SetDown(bool down) {
  down_ = down;
  ShowState();
}

void TStateControl::ShowState() {
  SetIconImage(down_ ? downImage_ : active_ ? activeImage_ : idleImage_);
}

void TStateControl::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && !IsDesignMode(this)) SetDown(true);
}

void TStateControl::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !down_) return;
  SetDown(false);
  if (rect().contains(event->position().toPoint())) SetActive(!GetActive());
}
