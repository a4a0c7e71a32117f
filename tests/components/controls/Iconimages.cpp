#include "components/controls/Iconimages.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <vector>

#include "components/controls/Compbase.h"
#include "components/panels/Registry.h"
#include "tests/support/Testsupport.h"

namespace {

/// What is drawn on a transparent canvas of 60 x 30.
QImage Icon(const QString& name, const QRectF& box = {0, 0, 24, 24}) {
  QImage image(60, 30, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  DrawIconImage(painter, box, name);
  return image;
}

QRect Inked(const QImage& image) {
  QRect ink;
  for (int i = 0; i < 60 * 30; ++i) {
    if (qAlpha(image.pixel(i % 60, i / 60)) > 0) ink |= QRect(i % 60, i / 60, 1, 1);
  }
  return ink;
}

TEST(IconImages, StandInTheResourceAndAreAllDifferent) {
  for (const char* folder : {"faces", "icons", "parts"}) {
    const QStringList files = QDir(SourceFile("pictures/") + folder).entryList(QDir::Files);
    EXPECT_GE(files.size(), 2);
    EXPECT_EQ(QDir(QString(":/velmora/") + folder).entryList(), files);
    if (folder != std::string("icons")) continue;
    std::vector<QImage> seen;
    for (const QString& file : files) {
      seen.push_back(Icon(file.section('.', 0, 0)));
      EXPECT_FALSE(Inked(seen.back()).isNull()) << qPrintable(file);
      EXPECT_EQ(std::count(seen.begin(), seen.end(), seen.back()), 1) << qPrintable(file);
    }
  }
  for (const TComponentClass& component : ComponentClasses()) {
    const std::unique_ptr<QWidget> made(component.Make(nullptr));
    const auto* control = qobject_cast<const TIconControl*>(made.get());
    QString name = control ? control->GetIconImage() : component.Name;
    if (name.endsWith("Idle")) name.chop(4);
    EXPECT_TRUE(QFile::exists(":/velmora/icons/" + name + ".svg")) << qPrintable(name);
  }
}

TEST(IconImages, AStateIsALampOverThePictureOrOverATileWithALetter) {
  const struct {
    const char *name, *plain;
    QRgb lamp;
  } cases[] = {{"SimulatorActive", "Simulator", qRgb(40, 180, 70)},
               {"SimulatorIdle", "Simulator", qRgb(150, 156, 166)},
               {"SimulatorDown", "Simulator", qRgb(226, 150, 30)},
               {"NobodyActive", "Nobody", qRgb(40, 180, 70)}};
  for (const auto& c : cases) {
    EXPECT_EQ(Icon(c.name).pixel(18, 18), c.lamp) << c.name;
    EXPECT_EQ(Icon(c.name).copy(0, 0, 13, 24), Icon(c.plain).copy(0, 0, 13, 24)) << c.name;
  }
  EXPECT_NE(Icon("Nobody").copy(5, 5, 14, 14), Icon("TZebra").copy(5, 5, 14, 14));
  EXPECT_NE(Icon("./ChannelImage"), Icon("ChannelImage"));
  EXPECT_FALSE(Inked(Icon("Active")).isNull());
}

TEST(IconImages, FillTheLargestSquareInTheMiddleOfTheBox) {
  EXPECT_EQ(Inked(Icon("ChannelImage", {4, 2, 40, 20})), QRect(14, 2, 20, 20));
  EXPECT_EQ(Inked(Icon("Nobody", {30, 0, 20, 30})), QRect(30, 5, 20, 20));
  EXPECT_TRUE(Inked(Icon("")).isNull());
  EXPECT_TRUE(Inked(Icon("ChannelImage", {0, 0, -5, 30})).isNull());
}

}  // namespace
