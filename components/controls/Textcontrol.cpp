#include "components/controls/Textcontrol.h"

#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <cmath>
#include <numbers>

namespace {

/// A text longer than any screen is not laid out.
constexpr int kMaxShown = 10000;

}  // namespace

TCustomTextControl::TCustomTextControl(QWidget* parent) : TComponentControl(parent) {
  constexpr QSize kDefaultSize(80, 22);
  resize(kDefaultSize);
  SetFace(true);
}

template <class T>
void TCustomTextControl::StoreLook(T& field, const T& value) {
  if (field == value) return;
  field = value;
  TextChanged();
}

void TCustomTextControl::SetCaption(const QString& caption) { StoreLook(caption_, caption); }

void TCustomTextControl::SetAlignment(TAlignment alignment) {
  if (alignment >= taLeftJustify && alignment <= taRightJustify) StoreLook(alignment_, alignment);
}

void TCustomTextControl::SetLayout(TTextLayout layout) {
  if (layout >= tlTop && layout <= tlBottom) StoreLook(layout_, layout);
}

void TCustomTextControl::SetWordWrap(bool wrap) { StoreLook(wordWrap_, wrap); }

void TCustomTextControl::SetAutoSize(bool autoSize) { StoreLook(autoSize_, autoSize); }

void TCustomTextControl::SetAngle(double angleDeg) {
  if (std::isfinite(angleDeg)) StoreLook(angle_, angleDeg);
}

void TCustomTextControl::SetFontColor(TColor color) { StoreLook(fontColor_, color); }

void TCustomTextControl::SetColor(TColor color) { StoreLook(color_, color); }

void TCustomTextControl::TextChanged() {
  update();
  updateGeometry();
  const bool laidOut = parentWidget() && parentWidget()->layout();
  if (autoSize_ && !laidOut && !IsLoading()) resize(TCustomTextControl::sizeHint());
}

void TCustomTextControl::Loaded() {
  TComponentControl::Loaded();
  TextChanged();
}

int TCustomTextControl::TextFlags() const {
  const int across = alignment_ == taLeftJustify ? Qt::AlignLeft
                     : alignment_ == taCenter    ? Qt::AlignHCenter
                                                 : Qt::AlignRight;
  const int down = layout_ == tlTop      ? Qt::AlignTop
                   : layout_ == tlCenter ? Qt::AlignVCenter
                                         : Qt::AlignBottom;
  return across | down | (wordWrap_ ? Qt::TextWordWrap : 0);
}

QSize TCustomTextControl::sizeHint() const {
  const QFontMetrics metrics(TextFont());
  const QString text = Text().left(kMaxShown);
  const QMargins frame = Frame();
  constexpr int kNoLimit = 1 << 20;
  const int room = wordWrap_ ? qMax(1, width() - frame.left() - frame.right()) : kNoLimit;
  const QSizeF box = metrics.boundingRect(QRect(0, 0, room, kNoLimit), TextFlags(), text).size();
  const double angle = angle_ * std::numbers::pi / 180.0;
  const double cosine = std::abs(std::cos(angle)), sine = std::abs(std::sin(angle));
  return QSizeF(box.width() * cosine + box.height() * sine,
                box.width() * sine + box.height() * cosine)
      .toSize()
      .expandedTo(QSize(1, metrics.height()))
      .grownBy(frame);
}

void TCustomTextControl::changeEvent(QEvent* event) {
  TComponentControl::changeEvent(event);
  if (event->type() == QEvent::FontChange) TextChanged();
  if (event->type() == QEvent::EnabledChange) update();
}

void TCustomTextControl::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  QPainter painter(this);
  Paint(painter);
}

void TCustomTextControl::Paint(QPainter& painter) {
  const TColor back = BackColor();
  if (!back.IsNone()) painter.fillRect(rect(), back.ToQColor());
  DrawText(painter);
}

void TCustomTextControl::DrawText(QPainter& painter) const {
  const TColor color = TextColor();
  painter.save();
  painter.setFont(TextFont());
  painter.setPen(color.IsNone() || !isEnabled() ? palette().windowText().color()
                                                : color.ToQColor());
  QRectF room = QRectF(rect().marginsRemoved(Frame()));
  if (angle_ != 0.0) {
    const double angle = angle_ * std::numbers::pi / 180.0;
    painter.translate(room.center());
    painter.rotate(-angle_);
    // Upright, the text has the height of the room for its width.
    const bool upright = std::abs(std::sin(angle)) > std::abs(std::cos(angle));
    const QSizeF size = upright ? room.size().transposed() : room.size();
    room = QRectF(QPointF(-size.width() / 2.0, -size.height() / 2.0), size);
  }
  QString text = Text().left(kMaxShown);
  if (!wordWrap_) {
    QStringList lines = text.split('\n');
    const QFontMetrics metrics(TextFont());
    for (QString& line : lines) {
      line = metrics.elidedText(line, Qt::ElideRight, static_cast<int>(std::ceil(room.width())));
    }
    text = lines.join('\n');
  }
  painter.drawText(room, TextFlags(), text);
  painter.restore();
}
