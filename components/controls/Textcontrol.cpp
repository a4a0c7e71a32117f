#include "components/controls/Textcontrol.h"

#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <cmath>
#include <numbers>

#include "components/controls/Textaccess.h"

namespace {

/// A text longer than any screen is not laid out.
constexpr int kMaxShown = 10000;

/// Of the light that white gives, as the eye sees it.
/// https://www.w3.org/TR/WCAG21/#dfn-relative-luminance
double Luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

/// Black or white, whichever has more contrast.
QColor LegibleOn(const QColor& back) {
  constexpr double kEqualContrast = 0.179;
  return Luminance(back) > kEqualContrast ? Qt::black : Qt::white;
}

QColor Between(const QColor& a, const QColor& b) {
  return {(a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2};
}

QAccessibleInterface* MakeAccess(const QString& className, QObject* object) {
  auto* control = qobject_cast<TCustomTextControl*>(object);
  const bool mine = className == TCustomTextControl::staticMetaObject.className();
  if (!mine || !control) return nullptr;
  return new TTextAccess(control, QAccessible::StaticText, [control] { return control->Text(); });
}

}  // namespace

TCustomTextControl::TCustomTextControl(QWidget* parent) : TComponentControl(parent) {
  [[maybe_unused]] static const bool installed = (QAccessible::installFactory(MakeAccess), true);
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
  if (QAccessible::isActive()) {
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
  }
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

/// Of the text; pale while the control is disabled.
QColor TCustomTextControl::Ink() const {
  const TColor back = BackColor();
  const TColor color = TextColor();
  if (back.IsNone()) {
    return color.IsNone() || !isEnabled() ? palette().windowText().color() : color.ToQColor();
  }
  const QColor ink = color.IsNone() ? LegibleOn(back.ToQColor()) : color.ToQColor();
  return isEnabled() ? ink : Between(ink, back.ToQColor());
}

void TCustomTextControl::DrawText(QPainter& painter) const {
  painter.save();
  painter.setFont(TextFont());
  painter.setPen(Ink());
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
