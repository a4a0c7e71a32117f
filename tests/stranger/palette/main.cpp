// Lists the component classes; fails for one without a picture.

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>
#include <memory>

#include "components/controls/Compbase.h"
#include "components/controls/Iconimages.h"
#include "components/panels/Registry.h"

namespace {

QImage Picture(const QString& name) {
  QImage image(24, 24, QImage::Format_ARGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  DrawIconImage(painter, image.rect(), name);
  return image;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  int missing = 0;
  for (const TComponentClass& component : ComponentClasses()) {
    const std::unique_ptr<QWidget> widget(component.Make(nullptr));
    const auto* control = qobject_cast<const TIconControl*>(widget.get());
    QString name = control ? control->GetIconImage() : QString();
    if (name.isEmpty()) name = component.Name;
    // A name without a picture gets a tile with its first letter.
    const bool isThere = Picture(name) != Picture(name.left(1) + "?");
    std::printf("%s%s\n", qPrintable(component.Name), isThere ? "" : ": no picture");
    missing += !isThere;
  }
  return missing;
}
