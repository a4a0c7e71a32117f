#include "viewer/Imagebutton.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <utility>

void TImageList::SetImages(int count, TPainterFunction paint) {
  count_ = count;
  paint_ = std::move(paint);
  emit OnChange(this);
}

QPixmap TImageList::Image(int index, qreal devicePixelRatio) const {
  if (index < 0 || index >= count_) return {};
  QPixmap image((QSizeF(size_) * devicePixelRatio).toSize());
  image.setDevicePixelRatio(devicePixelRatio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  paint_(painter, index);
  return image;
}

TImageButton::TImageButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::NoFocus);
  connect(this, &QAbstractButton::clicked, this, [this] { emit OnClick(this); });
}

void TImageButton::SetImages(TImageList* images) {
  if (images == images_) return;
  if (images_) images_->disconnect(this);
  images_ = images;
  if (images) {
    setFixedSize(images->Size());
    connect(images, &TImageList::OnChange, this, &TImageButton::ChooseFace);
    connect(images, &QObject::destroyed, this, &TImageButton::ChooseFace);
  }
  updateGeometry();
  ChooseFace();
}

void TImageButton::SetUpIndex(int index) { Change(upIndex_, index); }
void TImageButton::SetDownIndex(int index) { Change(downIndex_, index); }
void TImageButton::SetHighlightIndex(int index) { Change(highlightIndex_, index); }
void TImageButton::SetDisabledIndex(int index) { Change(disabledIndex_, index); }
void TImageButton::SetDown(bool down) { Change(down_, down); }

void TImageButton::SetFaces(int first) {
  SetUpIndex(first);
  SetHighlightIndex(first + 1);
  SetDownIndex(first + 2);
  SetDisabledIndex(first + 3);
}

void TImageButton::SetStateButton(bool stateButton) {
  Change(stateButton_, stateButton);
  if (!stateButton) SetDown(false);
}

template <class T>
void TImageButton::Change(T& field, T value) {
  if (value == field) return;
  field = value;
  ChooseFace();
}

int TImageButton::FaceIndex() const {
  if (!isEnabled()) return disabledIndex_;
  if (down_ || pressed_) return downIndex_;
  return mouseInside_ ? highlightIndex_ : upIndex_;
}

void TImageButton::ChooseFace() {
  picture_ = images_ ? images_->Image(FaceIndex(), devicePixelRatioF()) : QPixmap();
  update();
}

QSize TImageButton::sizeHint() const { return images_ ? images_->Size() : QSize(56, 48); }

void TImageButton::nextCheckState() {
  if (stateButton_) SetDown(!down_);
}

void TImageButton::paintEvent(QPaintEvent*) {
  if (!picture_.isNull() && picture_.devicePixelRatio() != devicePixelRatioF()) ChooseFace();
  QPainter(this).drawPixmap(0, 0, picture_);
}

void TImageButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) Change(pressed_, true);
  QAbstractButton::mousePressEvent(event);
}

void TImageButton::mouseReleaseEvent(QMouseEvent* event) {
  // Before the click handlers run, so that they see the button as it will stay.
  if (event->button() == Qt::LeftButton) Change(pressed_, false);
  QAbstractButton::mouseReleaseEvent(event);
}

void TImageButton::enterEvent(QEnterEvent*) { Change(mouseInside_, true); }

void TImageButton::leaveEvent(QEvent*) { Change(mouseInside_, false); }

void TImageButton::changeEvent(QEvent* event) {
  QAbstractButton::changeEvent(event);
  if (event->type() == QEvent::EnabledChange) {
    pressed_ = false;  // a disabled button never hears of the release
    ChooseFace();
  } else if (event->type() == QEvent::PaletteChange) {
    ChooseFace();
  }
}
