#include "exchange/Modelwriter.h"
#include "exchange/Universalwriter.h"
#include "tests/support/Testing.h"

namespace {

constexpr const char* kModel = R"([Options]
NodeRadius=0.25
ElementRadius=0.125

[Nodes]
         1 1000.1 0 0
         2 1000.3 0 0
        30 1000.3 -4e-07 2

[Elements]
4
1 1 0 -1 2 1 2
2 3 255 3 1 2 30
3 3 255 3 30 2 1
4 2 0.5 0.1 0.2 -1 2 2 30
)";

constexpr const char* kData = R"([F = 12.5]
         1 1 0 0 0 0 0
         2 0 0.5 -2 0 1.5707963267948966 0
        30 0 0 0.001 0 0 3

)";

struct TLoaded {
  explicit TLoaded(std::string_view model, std::string_view data) {
    EXPECT_TRUE(Model.LoadFromMemory(model).Ok());
    EXPECT_TRUE(Data.LoadFromMemory(data, Model).Ok());
  }
  TModel Model;
  TMeasuredData Data;
  TFindings Findings;
};

TEST(Modelwriter, WritesWhatWasRead) {
  TLoaded loaded(kModel, kData);
  EXPECT_EQ(WriteModelText(loaded.Model), kModel);
  EXPECT_EQ(WriteDataText(loaded.Data, loaded.Findings), kData);
  EXPECT_EQ(loaded.Findings.ToKnow(), 0U);

  for (TElement* element : loaded.Model.Elements) element->IsTwoSided = element->ID == 2;
  const std::string text = WriteModelText(loaded.Model);
  EXPECT_NE(text.find("5\n1 1 0 -1 2 1 2\n2 3 255 3 1 2 30\n2 3 255 3 30 2 1\n"), text.npos);
}

TEST(Modelwriter, SetsOfOneNameAndForeignNodesAreNoted) {
  TLoaded loaded(kModel, "[F = 1]\n1 1 0 0\n2 0 0 0\n30 0 0 0\n");
  TDataNodeList* const first = loaded.Data.All.Get(0);
  auto second = std::make_unique<TDataNodeList>(&loaded.Model, false);
  second->Section = first->Section;
  second->Emplace(99, TVertex{1, 1, 1});
  second->Emplace(1, TVertex{2, 0, 0})->Link = loaded.Model.Nodes.Get(0);
  loaded.Data.All.Add(std::move(second));
  const std::string text = WriteDataText(loaded.Data, loaded.Findings);
  EXPECT_NE(text.find("\n[F = 1 (2)]\n         1 2 0 0\n"), text.npos) << text;
  EXPECT_EQ(loaded.Findings.ToKnow(), 2U);
}

TEST(Universalwriter, WritesEachSetInItsColumns) {
  TLoaded loaded(kModel, kData);
  TDataNodeList* const list = loaded.Data.All.Get(0);
  list->Measured = {true, true, false};
  list->Info.Lines[1] = "-1";
  const std::string text = WriteUniversal(loaded.Model, loaded.Data, {}, loaded.Findings);
  const std::size_t nodes = text.find("  2411\n");
  ASSERT_NE(nodes, text.npos);
  EXPECT_EQ(text.substr(nodes), R"(  2411
         1         1         1        11
   1.0001000000000000E+03   0.0000000000000000E+00   0.0000000000000000E+00
         2         1         1        11
   1.0003000000000000E+03   0.0000000000000000E+00   0.0000000000000000E+00
        30         1         1        11
   1.0003000000000000E+03  -3.9999999999999998E-07   2.0000000000000000E+00
    -1
    -1
  2412
         1        21         1         1        11         2
         0         1         1
         1         2
         2        21         1         1        11         2
         0         1         1
         2        30
         3        91         1         1        11         3
         1         2        30
    -1
    -1
  2414
         1
F = 12.5
         1
NONE
_-1
NONE
NONE
NONE
         1         5         2         8         5         3
         0         0         0         0         0         0         0         0
         0         0
  0.00000E+00  1.2500000E1  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00
  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00
         1
  1.0000000E0  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00  0.00000E+00
         2
  0.00000E+00  0.00000E+00 3.061617E-17 5.0000000E-1 -2.0000000E0  0.00000E+00
    -1
)");
  // The roll has lost its shape, the two sides of the face their colour.
  EXPECT_EQ(loaded.Findings.ToKnow(), 2U) << loaded.Findings.Text().toStdString();
}

TEST(Universalwriter, NodeZeroLiftsThePenAndHasNoLines) {
  TLoaded loaded(
      "[Nodes]\n0 0 0 0\n1 1 0 0\n2 2 0 0\n[Elements]\n2\n1 1 0 -1 2 0 1\n2 1 0 -1 2 1 2\n",
      "[F = 1]\n0 0 0 1\n1 0 0 1\n2 0 0 1\n");
  const std::string text = WriteUniversal(loaded.Model, loaded.Data,
                                          {TLinesType::TraceLines, {}, false, {}}, loaded.Findings);
  EXPECT_NE(text.find("         2        11\nlines\n         1         2\n"), text.npos) << text;
  EXPECT_EQ(loaded.Findings.ToKnow(), 1U);
}

TEST(Universalwriter, TraceLinesLiftThePenAndShapes55SayWhatTheyAre) {
  TLoaded loaded(kModel, kData);
  TShapeInfo& info = loaded.Data.All.Get(0)->Info;
  info.Kind = TShapeKind::ComplexMode;
  info.Mode = 3;
  info.Damping = 0.6;
  const std::string text =
      WriteUniversal(loaded.Model, loaded.Data,
                     {TLinesType::TraceLines, TShapesType::Nodal55, true, {}}, loaded.Findings);
  EXPECT_NE(
      text.find("    82\n         1         3        11\nlines\n         1         2        30\n"),
      text.npos)
      << text;
  // 12.5 Hz damped and a ratio of 0.6: the eigenvalue is -0.75 and 1 times 2 pi 12.5.
  EXPECT_NE(text.find("         1         3         2         8         6         3\n"
                      "         2         6         0         3\n"
                      " -5.8904862E1  7.8539816E1"),
            text.npos)
      << text;
  EXPECT_NE(text.find("         2\n  0.000000000000E+00  0.000000000000E+00  3.061616997868E-17  "
                      "5.000000000000E-01\n -2.000000000000E+00 -0.000000000000E+00\n"),
            text.npos)
      << text;
}

}  // namespace
