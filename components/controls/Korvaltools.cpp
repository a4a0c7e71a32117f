#include "components/controls/Korvaltools.h"

#include <QColor>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace {

const QColor kLight(255, 255, 255);
const QColor kDark(128, 128, 128);

}  // namespace

void DrawBevel(QPainter& painter, const QRect& rect, TBevelKind kind) {
  if (kind != TBevel::bvLowered && kind != TBevel::bvRaised) return;
  if (rect.width() < 1 || rect.height() < 1) return;
  const QColor& upper = kind == TBevel::bvRaised ? kLight : kDark;
  const QColor& lower = kind == TBevel::bvRaised ? kDark : kLight;
  // Filled strips are sharp at every device pixel ratio, which lines are not.
  painter.fillRect(rect.left(), rect.top(), rect.width(), 1, upper);
  painter.fillRect(rect.left(), rect.top(), 1, rect.height(), upper);
  painter.fillRect(rect.right(), rect.top(), 1, rect.height(), lower);
  painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, lower);
}

void DrawDashedFrame(QPainter& painter, const QRect& rect) {
  constexpr int kDash = 3;
  constexpr int kLongest = 1 << 14;  // more than a screen shows
  const auto strips = [&](int length, auto strip) {
    for (int at = 0; at < length; at += 2 * kDash) strip(at, std::min(kDash, length - at));
  };
  strips(std::min(rect.width(), kLongest), [&](int at, int length) {
    painter.fillRect(rect.left() + at, rect.top(), length, 1, kDark);
    painter.fillRect(rect.left() + at, rect.bottom(), length, 1, kDark);
  });
  strips(std::min(rect.height(), kLongest), [&](int at, int length) {
    painter.fillRect(rect.left(), rect.top() + at, 1, length, kDark);
    painter.fillRect(rect.right(), rect.top() + at, 1, length, kDark);
  });
}

void RotateText(QPainter& painter, const QPointF& point, double angleDeg, const QString& text) {
  painter.save();
  painter.translate(point);
  painter.rotate(-angleDeg);
  painter.drawText(QPointF(0.0, QFontMetricsF(painter.font(), painter.device()).ascent()), text);
  painter.restore();
}
