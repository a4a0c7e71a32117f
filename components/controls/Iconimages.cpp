#include "components/controls/Iconimages.h"

#include <QHash>
#include <QPainter>
#include <algorithm>

#include "pictures/Svgpicture.h"

namespace {

constexpr double kSize = 24.0;  ///< side of the square that pictures are drawn in

/// The way out for a name without a picture: a tile in a colour of its own with the first letter.
void DrawInitial(QPainter& painter, const QRectF& square, const QString& name) {
  const int hue = static_cast<int>(qHash(name, 1) % 360);
  DrawSvgPicture(painter, square, QStringLiteral("parts/Tile"),
                 {{"white", QColor::fromHsv(hue, 60, 245)}});
  const bool typeName = name.size() > 1 && name[0] == 'T' && name[1].isUpper();
  painter.save();
  painter.translate(square.topLeft());
  painter.scale(square.width() / kSize, square.height() / kSize);
  QFont font = painter.font();
  font.setPixelSize(14);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(QColor(38, 50, 72));
  painter.drawText(QRectF(0.0, 0.0, kSize, kSize), Qt::AlignCenter, name.mid(typeName ? 1 : 0, 1));
  painter.restore();
}

void DrawNamed(QPainter& painter, const QRectF& square, const QString& name) {
  static const struct {
    QString suffix;
    QColor lamp;
  } kStates[] = {{"Active", QColor(40, 180, 70)},
                 {"Idle", QColor(150, 156, 166)},
                 {"Down", QColor(226, 150, 30)}};
  // A name is never a path to other resources.
  if (!name.contains('/') && DrawSvgPicture(painter, square, "icons/" + name)) return;
  for (const auto& state : kStates) {
    if (name.size() <= state.suffix.size() || !name.endsWith(state.suffix)) continue;
    DrawNamed(painter, square, name.chopped(state.suffix.size()));
    DrawSvgPicture(painter, square, QStringLiteral("parts/Lamp"), {{"green", state.lamp}});
    return;
  }
  DrawInitial(painter, square, name);
}

}  // namespace

void DrawIconImage(QPainter& painter, const QRectF& box, const QString& name) {
  const double side = std::min(box.width(), box.height());
  if (name.isEmpty() || side <= 0.0) return;
  QRectF square(0.0, 0.0, side, side);
  square.moveCenter(box.center());
  DrawNamed(painter, square, name);
}
