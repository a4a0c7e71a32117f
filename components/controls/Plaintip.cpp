#include "components/controls/Plaintip.h"

#include <QTextDocument>

QString PlainTip(const QString& text) {
  constexpr qsizetype kMost = 1000;
  const QString shown = text.size() <= kMost ? text : text.left(kMost) + QLatin1String("...");
  return Qt::mightBeRichText(shown) ? Qt::convertFromPlainText(shown) : shown;
}
