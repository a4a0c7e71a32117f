#include "pictures/Svgpicture.h"

#include <QHash>
#include <QPainter>
#include <QResource>
#include <QSvgRenderer>
#include <memory>

/// A linker takes the resource out of a static library only for a call like this one, which must
/// not stand in a namespace.
static void NeedPictures() { Q_INIT_RESOURCE(velmora_pictures); }

namespace {

using TRenderer = std::shared_ptr<QSvgRenderer>;

/// Null if there is no such picture.
TRenderer MakeRenderer(const QString& name, const TPictureColors& colors) {
  NeedPictures();
  const QResource file(QStringLiteral(":/velmora/%1.svg").arg(name));
  if (!file.isValid()) return {};
  QByteArray text = file.uncompressedData();
  for (const auto& [stands, color] : colors) {
    text.replace('"' + stands + '"', '"' + color.name().toLatin1() + '"');
  }
  return std::make_shared<QSvgRenderer>(text);
}

}  // namespace

bool DrawSvgPicture(QPainter& painter, const QRectF& box, const QString& name,
                    const TPictureColors& colors) {
  static QHash<QString, TRenderer> renderers;
  QString key = name;
  for (const auto& [stands, color] : colors) key += color.name();
  TRenderer renderer = renderers.value(key);
  if (!renderer) {
    renderer = MakeRenderer(name, colors);
    if (!renderer) return false;  // nor kept: there is no end of names that have no picture
    renderers.insert(key, renderer);
  }
  renderer->render(&painter, box);
  return true;
}
