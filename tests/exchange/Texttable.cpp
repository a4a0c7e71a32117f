#include "exchange/Texttable.h"

#include "tests/support/Testing.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct TRead {
  TJob Job;
  TFindings Findings;
};

std::unique_ptr<TRead> Read(std::string_view text) {
  auto read = std::make_unique<TRead>();
  read->Findings.BeginFile("t.csv");
  ReadTextTable(text, read->Job, read->Findings);
  return read;
}

/// Nodes as "7: 1 2 3".
std::vector<std::string> Nodes(const TJob& job) {
  std::vector<std::string> texts;
  for (const TJobNode& node : job.Nodes) {
    const auto& [x, y, z] = node.Coordinates;
    texts.push_back(QStringLiteral("%1: %2 %3 %4").arg(node.ID).arg(x).arg(y).arg(z).toStdString());
  }
  return texts;
}

TEST(Texttable, NodesStandBetweenAnySeparatorsWithAnyDecimalSign) {
  const std::string utf16 = [] {
    const QString text = QStringLiteral("node\tx\ty\tz\n7\t1,5\t-2\t3\n");
    return "\xFF\xFE" + std::string(reinterpret_cast<const char*>(text.utf16()),
                                    2 * static_cast<std::size_t>(text.size()));
  }();
  for (const std::string& text : {
           std::string("node,x,y,z\n7,1.5,-2,3\n"),
           std::string("\xEF\xBB\xBF Node ; X [mm]; Y [mm]; Z [mm]\r\n7;1,5;-2,0;3\r\n"),
           std::string("z\tnode\tremark\ty\tx\r\r3\t7,0\ta, b\t-2\t1.5\r"),
           std::string("\"node\",\"x\",\"y\",\"z\"\n\"7\",\"1.5\",\"-2\",\"3\""),
           utf16,
       }) {
    EXPECT_TRUE(IsTextTable(text)) << text;
    const auto read = Read(text);
    EXPECT_THAT(Nodes(read->Job), ElementsAre("7: 1.5 -2 3")) << text;
    EXPECT_EQ(read->Findings.ToKnow(), 0U) << read->Findings.Text().toStdString();
  }
}

TEST(Texttable, LinesAndFacesNameTheirCorners) {
  const auto lines = Read("node1;node2\n7;8\n8;9\n");
  EXPECT_THAT(lines->Job.Corners, ElementsAre(7, 8, 8, 9));
  const auto faces = Read("n1,n2,n3,n4\n1,2,3,4\n5,6,7,\n");
  ASSERT_EQ(faces->Job.Elements.size(), 2U);
  EXPECT_EQ(faces->Job.Elements[1].Shape, TElementShape::Face);
  EXPECT_THAT(faces->Job.Corners, ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(Texttable, ShapesHavePhasesInRadiansOrDegreesOrComplexValues) {
  const char* const tables[] = {
      "frequency,node,x,y,z,px,py,pz\n12.5,7,2,0,-1,1.5707963267948966,0,0\n",
      "f [Hz];node;x;y;z;px [deg];py [deg];pz [deg]\n12,5;7;2;0;-1;90;0;0\n",
      "f;node;x;y;z;px [\xC2\xB0];py [\xB0];pz [deg]\n12.5;7;2;0;-1;90;0;0\n",
      "frequency,node,x re,x im,y re,y im,z re,z im\n12.5,7,0,2,0,0,-1,0\n",
  };
  for (const char* const table : tables) {
    const auto read = Read(table);
    ASSERT_EQ(read->Job.Shapes.size(), 1U) << table;
    const TJobShape& shape = read->Job.Shapes[0];
    EXPECT_EQ(shape.Frequency, 12.5);
    EXPECT_TRUE(shape.Info.IsComplex && shape.IsGlobal);
    EXPECT_THAT(shape.IDs, ElementsAre(7));
    EXPECT_NEAR(Length(shape.Real[0], {0, 0, -1}), 0.0, 1e-12) << table;
    EXPECT_NEAR(Length(shape.Imaginary[0], {2, 0, 0}), 0.0, 1e-12) << table;
  }
  const auto real = Read("node,frequency,z\n1,5,0.5\n1,6,0.25\n2,5,1\n");
  ASSERT_EQ(real->Job.Shapes.size(), 2U);
  EXPECT_THAT(real->Job.Shapes[0].IDs, ElementsAre(1, 2));
  EXPECT_THAT(real->Job.Shapes[0].Imaginary, IsEmpty());
}

TEST(Texttable, KeepsWhatCanBeReadAndSaysWhatCannot) {
  const auto read = Read("node,x,y,z\n1,0,0,0\nx,0,0,0\n2,0,nan,0\n3,0,0\n4,1e31,0,0\n5,1,1,1\n");
  EXPECT_THAT(Nodes(read->Job), ElementsAre("1: 0 0 0", "5: 1 1 1"));
  std::vector<std::size_t> lines;
  for (const auto& finding : read->Findings.All()) {
    if (finding.Kind == TFindings::TKind::LeftOut) lines.push_back(finding.Line);
  }
  EXPECT_THAT(lines, ElementsAre(3, 4, 5, 6));
  for (const char* const text : {"", "\n\n", "[Nodes]\n1 0 0 0\n", "node,y,z\n", "\xFF\xFE", "\"",
                                 "frequency,node\n1,2\n"}) {
    EXPECT_FALSE(IsTextTable(text)) << text;
    EXPECT_EQ(Read(text)->Findings.ToKnow(), 1U) << text;
  }
}

}  // namespace
