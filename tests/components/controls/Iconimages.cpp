#include "components/controls/Iconimages.h"

#include "components/controls/Compbase.h"
#include "components/panels/Registry.h"
#include "tests/support/Testing.h"

namespace {

/// What is drawn on a transparent canvas of 60 x 30.
QImage Icon(const QString& name, const QRectF& box = {0, 0, 24, 24}) {
  QImage image(60, 30, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  DrawIconImage(painter, box, name);
  return image;
}

QRect Inked(const QImage& image) { return InkBox(image, Qt::transparent); }

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
  const std::tuple<const char*, const char*, QRgb> cases[] = {
      {"SimulatorActive", "Simulator", qRgb(40, 180, 70)},
      {"SimulatorIdle", "Simulator", qRgb(150, 156, 166)},
      {"SimulatorDown", "Simulator", qRgb(226, 150, 30)},
      {"NobodyActive", "Nobody", qRgb(40, 180, 70)}};
  for (const auto& [name, plain, lamp] : cases) {
    EXPECT_EQ(Icon(name).pixel(18, 18), lamp) << name;
    EXPECT_EQ(Icon(name).copy(0, 0, 13, 24), Icon(plain).copy(0, 0, 13, 24)) << name;
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
