#include "examples/monitor/Fittinglabel.h"

#include <QEvent>
#include <QFontMetrics>

namespace {

/// With places where a line may end, which are not seen.
QString Breakable(QString text) {
  for (const char sign : {'/', '.', '_', ':'}) {
    text.replace(QLatin1Char(sign), QString(QLatin1Char(sign)) + QChar(0x200B));
  }
  return text;
}

QString WithoutMiddle(const QString& text, qsizetype kept) {
  return text.left((kept + 1) / 2) + QChar(0x2026) + text.right(kept / 2);
}

}  // namespace

TFittingLabel::TFittingLabel(int lines, QWidget* parent) : QLabel(parent), lines_(lines) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  setMinimumWidth(200);
  Fit();
}

void TFittingLabel::SetText(const QString& text) {
  if (text == text_) return;
  text_ = text;
  Fit();
}

void TFittingLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  Fit();
}

void TFittingLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Fit();
}

bool TFittingLabel::Fits(const QString& text) const {
  const QRect room(0, 0, contentsRect().width(), 1 << 20);
  return fontMetrics().boundingRect(room, Qt::TextWordWrap, text).height() <=
         lines_ * fontMetrics().lineSpacing();
}

void TFittingLabel::Fit() {
  setFixedHeight(lines_ * fontMetrics().lineSpacing() + 2);
  QString shown = Breakable(text_);
  if (!Fits(shown)) {
    qsizetype fits = 0;
    for (qsizetype tooMany = text_.size(); tooMany - fits > 1;) {
      const qsizetype middle = (fits + tooMany) / 2;
      (Fits(Breakable(WithoutMiddle(text_, middle))) ? fits : tooMany) = middle;
    }
    shown = Breakable(WithoutMiddle(text_, fits));
  }
  if (shown != text()) setText(shown);
  const QString tip = shown == Breakable(text_) ? QString() : text_;
  if (tip != toolTip()) setToolTip(tip);
}
