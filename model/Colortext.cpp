#include "model/Colortext.h"

namespace {

const QString kNoColor = QStringLiteral("none");
const QString kInheritedColor = QStringLiteral("inherited");

}  // namespace

QString ColorText(TColor color) {
  if (color.IsNone()) return kNoColor;
  if (color.IsInherited()) return kInheritedColor;
  return color.ToQColor().name();
}

std::optional<TColor> ColorFromText(const QString& text) {
  if (text == kNoColor) return TColor::None();
  if (text == kInheritedColor) return TColor::Inherited();
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  if (isNumber) return TColor(number);
  if (!QColor::isValidColor(text)) return {};
  const QColor color(text);
  return color.alpha() == 0 ? TColor::None() : TColor::FromQColor(color);
}
