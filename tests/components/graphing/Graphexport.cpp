#include "components/graphing/Graphexport.h"

#include <QPdfWriter>
#include <QSvgRenderer>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "tests/support/Fulldisk.h"
#include "tests/support/Testing.h"

namespace {

/// A graph with a grey plot on yellow, its picture easily told apart.
class GraphExport : public testing::Test {
 protected:
  GraphExport() {
    graph.resize(300, 200);
    graph.SetColor(TColor::Yellow());
    graph.GetDataPanel()->SetFillColor(TColor::FromRgb(60, 60, 60));
    graph.Replay();
  }

  /// The picture shows the same areas as the graph itself, whatever its size.
  void ExpectAreas(const QImage& picture) {
    const auto at = [&](int x, int y) {
      return picture.pixelColor(x * picture.width() / 300, y * picture.height() / 200);
    };
    const QRect plot = graph.PlotRect();
    EXPECT_EQ(at(plot.left() + 20, plot.top() + 20), QColor(60, 60, 60));
    EXPECT_EQ(at(plot.right() - 20, plot.bottom() - 20), QColor(60, 60, 60));
    EXPECT_EQ(at(plot.left() - 30, plot.bottom() + 20), QColor(255, 255, 0));
    EXPECT_EQ(at(plot.right() - 20, 3), QColor(255, 255, 0));
  }

  TKorvalGraph graph;
};

TEST_F(GraphExport, WritesPngSvgAndPdfThatShowTheSame) {
  const QImage png = QImage::fromData(GraphToBytes(graph, TGraphFile::kPng, 3.0), "PNG");
  EXPECT_EQ(png.size(), QSize(900, 600)) << "at the ratio asked for";
  ExpectAreas(png);
  auto* line = graph.GetDataPanel()->AddSeries(std::make_unique<TArraySeries>(2));
  line->SetPoint(1, {1.0, 1.0});
  line->GetStyle()->SetLineWeight(3);
  const QByteArray svg = GraphToBytes(graph, TGraphFile::kSvg);
  EXPECT_TRUE(svg.contains("viewBox=\"0 0 300 200\"")) << svg.left(400).toStdString();
  EXPECT_TRUE(svg.contains(">X-axis<")) << "texts stay texts";
  EXPECT_TRUE(svg.contains("<polyline")) << "and wide lines lines";
  QSvgRenderer renderer(svg);
  ASSERT_TRUE(renderer.isValid());
  ExpectAreas(Painted({600, 400}, [&](QPainter& painter) { renderer.render(&painter); }));
  const QByteArray pdf = GraphToBytes(graph, TGraphFile::kPdf);
  EXPECT_TRUE(pdf.startsWith("%PDF-"));
  EXPECT_TRUE(pdf.contains("/MediaBox [0 0 225.000000 150.000000]"))  // 300 x 200 at 96 per inch
      << pdf.mid(pdf.indexOf("/MediaBox"), 60).toStdString();
}

TEST_F(GraphExport, SavesByTheEndingOfTheName) {
  const std::pair<const char*, const char*> cases[] = {
      {"a.png", "\x89PNG"}, {"b.SVG", "<?xml"}, {"c.pdf", "%PDF"}};
  for (const auto& [file, begins] : cases) {
    const QString name = TestFolder() + '/' + file;
    QString message;
    EXPECT_TRUE(SaveGraph(graph, name, &message)) << message.toStdString();
    EXPECT_TRUE(Contents(name).startsWith(begins)) << file;
  }
}

#ifdef Q_OS_UNIX
TEST_F(GraphExport, ADiskThatFillsMidwayLeavesTheEarlierFile) {
  for (const QString file : {"a.png", "a.svg", "a.pdf"}) {
    const QString name = WriteTestFile(file, "earlier");
    QString message;
    bool isSaved = true;
    {
      const TFullDisk disk(1000);  // for what the test says, too
      isSaved = SaveGraph(graph, name, &message);
    }
    EXPECT_FALSE(isSaved) << file.toStdString();
    EXPECT_TRUE(message.startsWith("Cannot write " + name + ": ")) << message.toStdString();
    EXPECT_EQ(Contents(name), "earlier");
    EXPECT_TRUE(SaveGraph(graph, name, &message));
    EXPECT_GT(Contents(name).size(), 1000);
  }
  EXPECT_EQ(QDir(TestFolder()).entryList(QDir::Files | QDir::Hidden).size(), 3) << "nothing stays";
}
#endif

TEST_F(GraphExport, SaysWhyItCannotSaveAndWritesNoFile) {
  const std::tuple<QSize, const char*, const char*> cases[] = {
      {graph.size(), "graph.bmp", "its name must end in .png, .svg or .pdf"},
      {graph.size(), "missing/graph.png", "No such file or directory"},
      {{100000, 100000}, "a.png", "a graph of 100000 x 100000 pixels has no such picture"},
      {{0, 50}, "b.svg", "a graph of 0 x 50 pixels has no such picture"},
      {{50, 0}, "c.pdf", "a graph of 50 x 0 pixels has no such picture"}};
  for (const auto& [size, file, why] : cases) {
    graph.resize(size);
    const QString name = TestFolder() + '/' + file;
    QString message;
    EXPECT_FALSE(SaveGraph(graph, name, &message));
    EXPECT_EQ(message, "Cannot write " + name + ": " + why);
    EXPECT_FALSE(QFile::exists(name));
  }
  QPdfWriter page(TestFolder() + "/page.pdf");
  EXPECT_FALSE(PrintGraph(graph, page));
}

TEST_F(GraphExport, PrintsAsLargeAsThePageAllows) {
  const QString name = TestFolder() + "/page.pdf";
  QPdfWriter page(name);
  page.setPageSize(QPageSize(QPageSize::A4));
  EXPECT_TRUE(PrintGraph(graph, page));
  EXPECT_TRUE(Contents(name).contains("/MediaBox [0 0 595"));
}

TEST_F(GraphExport, OffersItselfInAMenu) {
  AddExportActions(graph);
  QStringList texts;
  for (const QAction* action : graph.actions()) texts << action->text();
  EXPECT_EQ(texts, QStringList({"&Copy", "&Save as...", "&Print...", "Show c&oordinates"}));
  graph.actions().last()->trigger();
  EXPECT_TRUE(graph.GetShowCoordinates());
}

}  // namespace
