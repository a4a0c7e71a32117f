#include "components/graphing/editors/Pickers.h"

#include <QColorDialog>
#include <QFontDialog>
#include <QMenu>
#include <QPainter>

namespace {

QIcon Swatch(TColor color) {
  QPixmap picture(28, 14);
  picture.fill(color.IsNone() ? Qt::white : color.ToQColor());
  QPainter painter(&picture);
  painter.setPen(Qt::gray);
  painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
  if (color.IsNone()) painter.drawLine(picture.rect().bottomLeft(), picture.rect().topRight());
  return QIcon(picture);
}

}  // namespace

TColorPicker::TColorPicker(bool noneAllowed, QWidget* parent) : QToolButton(parent) {
  setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  setIconSize({28, 14});
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  if (noneAllowed) {
    auto* menu = new QMenu(this);
    menu->addAction(tr("None"), this, [this] { Pick(TColor::None()); });
    setMenu(menu);
    setPopupMode(QToolButton::MenuButtonPopup);
  }
  connect(this, &QToolButton::clicked, this, [this] {
    const QColor start = color_.IsNone() ? QColor(Qt::white) : color_.ToQColor();
    const QColor picked = QColorDialog::getColor(start, this);
    if (picked.isValid()) Pick(TColor::FromQColor(picked));
  });
  SetColor(color_);
}

void TColorPicker::SetColor(TColor color) {
  color_ = color;
  setIcon(Swatch(color));
  setText(color.IsNone() ? tr("None") : color.ToQColor().name());
}

void TColorPicker::Pick(TColor color) {
  SetColor(color);
  emit OnPick(color);
}

TFontPicker::TFontPicker(QWidget* parent) : QPushButton(parent) {
  connect(this, &QPushButton::clicked, this, [this] {
    bool accepted = false;
    const QFont picked = QFontDialog::getFont(&accepted, font_, this);
    if (!accepted) return;
    SetFont(picked);
    emit OnPick(picked);
  });
}

void TFontPicker::SetFont(const QFont& font) {
  font_ = font;
  const QString style = QString(font.bold() ? tr(", bold") : QString()) +
                        (font.italic() ? tr(", italic") : QString());
  setText(tr("%1, %2 pt%3").arg(font.family()).arg(font.pointSizeF()).arg(style));
}
