#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QPluginLoader>
#include <QProcess>
#include <set>

#include "tests/support/Testsupport.h"

namespace {

/// What the program writes; expects that it ends well.
QString OutputOf(const QString& program, const QStringList& arguments = {}) {
  QProcess process;
  process.setWorkingDirectory(TestFolder());
  process.start(BuiltFile("stranger/" + program), arguments);
  EXPECT_TRUE(process.waitForFinished(60'000)) << process.errorString().toStdString();
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
  const QString output = process.readAllStandardOutput();
  EXPECT_EQ(process.exitCode(), 0) << output.toStdString();
  return output;
}

QImage Picture(const QString& name) {
  const QImage image(TestFolder() + '/' + name);
  EXPECT_FALSE(image.isNull()) << name.toStdString();
  return image;
}

/// The curve is the only thing of its colour between the titles.
void ExpectCurve(const QImage& graph) {
  const QImage plot = graph.copy(graph.rect().adjusted(20, 5, -5, -40));
  std::set<int> columns, rows;
  for (int y = 0; y < plot.height(); ++y) {
    for (int x = 0; x < plot.width(); ++x) {
      if (plot.pixelColor(x, y) != Qt::blue) continue;
      columns.insert(x);
      rows.insert(y);
    }
  }
  // 25 or 50 frames on an axis to 30 or 50, and more than 0.8 m of an axis of 1 m.
  EXPECT_GT(columns.size(), 0.7 * plot.width());
  EXPECT_GT(rows.size(), 0.75 * plot.height());
}

int CountDifferent(const QImage& a, const QImage& b) {
  EXPECT_EQ(a.size(), b.size());
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) count += a.pixel(x, y) != b.pixel(x, y);
  }
  return count;
}

TEST(GlStranger, SeesTheMastSwayAndTheGraphGrow) {
  OutputOf("viewer/viewer", {"first", "second"});
  ExpectCurve(Picture("first-graph.png"));
  ExpectCurve(Picture("second-graph.png"));
  EXPECT_NE(Picture("first-graph.png"), Picture("second-graph.png"));
  // The drum covers about 70 x 50 pixels, and its top has moved by more than its own radius.
  const QImage before = Picture("first-scene.png");
  QImage empty = before;
  empty.fill(Qt::black);
  EXPECT_GT(CountDifferent(before, empty), 3000);
  EXPECT_GT(CountDifferent(before, Picture("second-scene.png")), 1000);
}

TEST(Stranger, HasAPictureOfEveryComponentClass) {
  EXPECT_TRUE(OutputOf("palette/palette").contains("TKorvalGraph\n"));
}

TEST(Stranger, InstalledProgramBearsTheVersionOfTheProject) {
  EXPECT_EQ(OutputOf("prefix/bin/velmora-animator", {"--version"}),
            "Velmora Animator " VELMORA_VERSION "\n");
}

TEST(Stranger, InstalledPluginLoads) {
  QPluginLoader plugin(
      BuiltFile("stranger/prefix/lib/qt6/plugins/designer/libvelmora-designer.so"));
  EXPECT_NE(plugin.instance(), nullptr) << plugin.errorString().toStdString();
}

TEST(Stranger, ProjectIsTheOneOfTheDocument) {
  const QString document = Document("library.md");
  for (const char* kind : {"cmake CMakeLists.txt", "cpp main.cpp", "cpp Mast.cpp"}) {
    QFile file(SourceFile("tests/stranger/viewer/") + QString(kind).section(' ', 1));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << kind;
    EXPECT_EQ(Fence(document, kind), file.readAll()) << kind;
  }
}

}  // namespace
