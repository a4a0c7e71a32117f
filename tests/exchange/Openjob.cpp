#include "exchange/Openjob.h"

#include "tests/support/Testing.h"

namespace {

const QByteArray kModel = "[Nodes]\n1 0 0 0\n2 2 0 0\n\n[Elements]\n1\n1 1 0 -1 2 1 2\n";
const QByteArray kData = "[F = 3]\n1 1 0 0\n2 0 1 0\n";
const QByteArray kNodesTable = "node,x,y,z\n1,10,0,0\n2,12,0,0\n3,14,0,0\n";
const QByteArray kLinesTable = "node1;node2\n1;2\n2;3\n";
const QByteArray kShapesTable = "frequency,node,x,y,z\n7.5,1,0,0,1\n7.5,2,0,0,2\n";
/// System 5: turned by 90 degrees about z, its axes in rows; the node's displacements stand in it.
const QByteArray kUniversal =
    "    -1\n   164\n         1SI                           2\n  1.0 1.0 1.0\n  0.0\n    -1\n"
    "    -1\n  2420\n         1\npart\n         5         0         8\nturned\n"
    "    0.0 1.0 0.0\n   -1.0 0.0 0.0\n    0.0 0.0 1.0\n    0.0 0.0 0.0\n    -1\n"
    "    -1\n    15\n         1         0         5         1  1.0  0.0  0.0\n    -1\n"
    "    -1\n    55\na\nb\nc\nd\ne\n         1         2         2         8         2         3\n"
    "         2         4         0         1\n  2.0  1.0  0.0  0.0\n"
    "         1\n  3.00000E+00  0.00000E+00  0.00000E+00\n    -1\n";

class OpenJobTest : public testing::Test {
 protected:
  QString File(const char* name, const QByteArray& text) { return WriteTestFile(name, text); }
  TOpenedJob Open(const QStringList& files, TWanted wanted = TWanted::Everything) {
    return OpenJob(files, model, data, wanted);
  }
  /// What is loaded, in short.
  QString State() const {
    QStringList parts = {QString::number(model.Nodes.Count()),
                         QString::number(model.Elements.Count())};
    for (const TDataNodeList* list : data.All) parts << list->Section;
    return parts.join(' ');
  }

  TModel model;
  TMeasuredData data;
};

TEST_F(OpenJobTest, TellsFilesByWhatIsInThem) {
  const struct {
    QByteArray text;
    TFileContent content;
  } rows[] = {
      {kModel, TFileContent::Model},
      {kData, TFileContent::Data},
      {kUniversal, TFileContent::Universal},
      {"remarks\n" + kUniversal, TFileContent::Universal},
      {kModel + kUniversal, TFileContent::Model},
      {"    -1\n    58b     1     2          11           4\n\0\n", TFileContent::Universal},
      {kNodesTable, TFileContent::Table},
      {"<?xml version=\"1.0\"?>\n<ui version=\"4.0\">\n</ui>\n", TFileContent::Form},
      {"<?xml version=\"1.0\"?>\n<uinot/>\n", TFileContent::Nothing},
      {"a letter", TFileContent::Nothing},
      {"", TFileContent::Nothing},
  };
  for (const auto& [text, content] : rows) {
    EXPECT_EQ(ContentOf(File("name.xyz", text)), content) << text.toStdString();
  }
  EXPECT_EQ(ContentOf(TestFolder()), TFileContent::Nothing);
}

TEST_F(OpenJobTest, FilesInAnyOrderMakeOneModel) {
  const QString nodes = File("nodes.csv", kNodesTable);
  const QString lines = File("lines.csv", kLinesTable);
  const QString shapes = File("shapes.csv", kShapesTable);
  const QString dat = File("own.dat", kData);
  for (const QStringList& files : {QStringList{shapes, dat, nodes, lines},
                                   QStringList{lines, shapes, nodes, shapes, dat, dat}}) {
    model.Clear();
    const TOpenedJob job = Open(files);
    EXPECT_EQ(State(), "3 2 [F = 3] [F = 7.5]");
    EXPECT_TRUE(job.HasModel && job.HasData && model.Loaded);
    QStringList geometry = job.ModelFiles;
    geometry.sort();
    EXPECT_EQ(geometry, (QStringList{lines, nodes}));
    EXPECT_EQ(job.DataFiles, (QStringList{dat, shapes}));
    EXPECT_EQ(model.Centre.x, 12.0);
    EXPECT_EQ(model.Elements.Get(0)->NodeList, &model.Nodes);
    EXPECT_EQ(data.All.Get(0)->Get(1)->Link, model.Nodes.Get(1));
    EXPECT_EQ(data.All.Get(1)->Measured, (std::vector<bool>{true, true, false}));
    EXPECT_EQ(data.All.Get(1)->MaxAmplitude, 2.0);
    EXPECT_TRUE(data.All.Get(1)->Motions().Count() == 3) << "shown, and ready for frames";
    EXPECT_TRUE(job.Findings.Line().startsWith(
        "3 nodes, 2 bars, 1 frequency response at 7.5 Hz, 1 data set at 3 Hz; "))
        << job.Findings.Line().toStdString();
  }
}

TEST_F(OpenJobTest, OwnAndForeignFilesGoTogether) {
  const QString mod = File("own.mod", kModel);
  const QString shapes = File("shapes.csv", kShapesTable);
  TOpenedJob job = Open({shapes, mod});
  EXPECT_EQ(State(), "2 1 [F = 7.5]");
  EXPECT_TRUE(data.All.Get(0)->Measured.empty());
  job = Open({File("nodes.csv", kNodesTable), mod});
  EXPECT_EQ(State(), "2 1") << "a model without data leaves none";
  EXPECT_FALSE(job.HasData);
  EXPECT_EQ(job.ModelFiles, QStringList(mod));
  job = Open({File("own.dat", kData + "9 1 1 1\n"), shapes}, TWanted::DataOnly);
  EXPECT_EQ(State(), "2 1 [F = 3] [F = 7.5]");
  EXPECT_FALSE(job.HasModel);
  EXPECT_TRUE(job.Faults.value(0).contains("node 9"));
  EXPECT_TRUE(job.Findings.Text().contains("node 9"));
  job = Open({File("nodes.csv", kNodesTable), shapes}, TWanted::DataOnly);
  EXPECT_EQ(State(), "2 1 [F = 7.5]");
}

TEST_F(OpenJobTest, MatricesOfSystemsCanBeReadByColumns) {
  const QString file = File("turned.unv", kUniversal);
  Open({file});
  ASSERT_EQ(State(), "1 0 [F = 2]");
  EXPECT_EQ(data.All.Get(0)->Get(0)->Position, (TVertex{0, 3, 0}));
  // Shapes in millimetres that come later, alone.
  QByteArray shape =
      kUniversal.left(kUniversal.indexOf("    -1\n  2420")).replace("1.0 1", "1e3 1");
  shape += kUniversal.mid(kUniversal.indexOf("    -1\n    55"));
  Open({File("shape.unv", shape)}, TWanted::DataOnly);
  EXPECT_EQ(data.All.Get(0)->Get(0)->Position, (TVertex{0, 0.003, 0}));
  OpenJob({file}, model, data, TWanted::Everything, {}, TMatrixReading::ColumnsAreAxes);
  EXPECT_EQ(data.All.Get(0)->Get(0)->Position, (TVertex{0, -3, 0}));
}

TEST_F(OpenJobTest, AFailureOrACancelLeavesEverythingAsItWas) {
  const QString mod = File("own.mod", kModel);
  const QString dat = File("own.dat", kData);
  const QString nodes = File("nodes.csv", kNodesTable);
  const QString shapes = File("shapes.csv", kShapesTable);
  Open({mod, dat});
  ASSERT_EQ(State(), "2 1 [F = 3]");
  const TNode* const first = model.Nodes.Get(0);
  const struct {
    QStringList files;
    const char* line;
    TWanted wanted = TWanted::Everything;
  } rows[] = {
      {{nodes, "gone.unv"}, "Cannot read gone.unv: there is no such file."},
      {{nodes, TestFolder()}, "it is a folder."},
      {{File("letter.txt", "a letter")},
       "Cannot read letter.txt: neither a structure nor data for one were found."},
      {{File("half.mod", "[Nodes]\nnone\n"), nodes}, "Cannot read half.mod: it holds no nodes."},
      {{File("far.csv", "frequency,node,x,y,z\n1,99,1,1,1\n")},
       "Cannot read far.csv: no data set for the model was found."},
      {{nodes, mod}, "no data set for the model was found.", TWanted::DataOnly},
  };
  for (const auto& row : rows) {
    const TOpenedJob job = Open(row.files, row.wanted);
    EXPECT_FALSE(job.HasModel || job.HasData);
    EXPECT_TRUE(job.Findings.Failed());
    EXPECT_TRUE(job.Findings.Line().endsWith(row.line)) << job.Findings.Line().toStdString();
    EXPECT_EQ(State(), "2 1 [F = 3]");
  }
  TModel empty;
  const TOpenedJob lone = OpenJob({shapes}, empty, data);
  EXPECT_EQ(lone.Findings.Line(), "Cannot read shapes.csv: there is no model for the shapes.");
  // Cancelled at each step of a load that goes through all readers.
  bool cancelled = true;
  for (int step = 1; cancelled; ++step) {
    int calls = 0;
    double last = 0.0;
    const TOpenedJob job =
        OpenJob({dat, nodes, shapes}, model, data, TWanted::Everything, [&](double done) {
          EXPECT_GE(done, last);
          EXPECT_LE(last = done, 1.0);
          EXPECT_FALSE(model.Loaded);
          EXPECT_TRUE(Open({mod}).Findings.Failed()) << "a load within a load";
          return ++calls < step;
        });
    cancelled = job.Findings.Cancelled();
    EXPECT_TRUE(model.Loaded);
    if (!cancelled) {
      EXPECT_GE(step, 4);
      EXPECT_EQ(State(), "3 0 [F = 3] [F = 7.5]");
      break;
    }
    EXPECT_EQ(State(), "2 1 [F = 3]");
    EXPECT_EQ(model.Nodes.Get(0), first);
    EXPECT_EQ(job.Findings.Line(), "");
  }
}

}  // namespace
