#include "model/Animmodel.h"
#include "model/Datareader.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

/// A model of nodes 1, 2 and 3, of size 5 and centred at (1, 1, 1).
class DataFile : public testing::Test {
 protected:
  DataFile() {
    EXPECT_TRUE(model_.LoadFromMemory("[Nodes]\n1 0 0 0\n2 0 0 2\n3 2 2 0\n").Ok());
    model_.Size = 5.0;
  }

  /// IDs and amplitudes of a data set.
  static std::string Describe(const TDataNodeList& list) {
    QString text;
    for (const TNode* n : list) {
      const TVertex& p = n->Position;
      text += QString("%1:%2,%3,%4 ").arg(n->ID).arg(p.x).arg(p.y).arg(p.z);
    }
    return text.toStdString();
  }

  void Load(const std::string& text) { EXPECT_FALSE(data_.LoadFromMemory(text, model_).Failed()); }
  std::vector<std::string> Shapes() const {
    std::vector<std::string> shapes;
    for (const TDataNodeList* list : data_.All) shapes.push_back(Describe(*list));
    return shapes;
  }
  QString Sentence(const std::string& text) {
    return data_.LoadFromMemory(text, model_).Sentence("m.dat");
  }

  TModel model_;
  TMeasuredData data_;
};

TEST_F(DataFile, GivesOneDataSetPerSectionWithItsFrequency) {
  const std::pair<const char*, double> cases[] = {
      {"F = 2.5", 2.5}, {"F = 7", 7},   {"F=1e2 Hz", 100}, {"F \t= -3", -3},
      {"f = 3", 0},     {" F = 3", 0},  {"F = x", 0},      {"F 3", 0},
      {"", 0},          {"F = nan", 0}, {"F = inf", 0},    {"F = 1e99", 0}};
  std::string text;
  for (const auto& [name, frequency] : cases)
    text.append("[").append(name).append("]\n1 1 1 1\n2 2 2 2\n3 3 3 3\n");
  EXPECT_TRUE(data_.LoadFromMemory(text, model_).Ok());
  ASSERT_EQ(data_.All.Count(), std::size(cases));
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(data_.All.Get(i)->Frequency, cases[i].second) << cases[i].first;
    EXPECT_EQ(data_.All.Get(i)->Section, QString("[%1]").arg(cases[i].first));
    EXPECT_EQ(Describe(*data_.All.Get(i)), "1:1,1,1 2:2,2,2 3:3,3,3 ");
  }
  EXPECT_TRUE(model_.Loaded);
}

TEST_F(DataFile, BringsRecordsIntoTheOrderOfTheModelAndDecidesOnAnglesForEachSection) {
  Load("[F = 1]\n3 7 8 9 0 0 1\n1 4 5 6 .1 .2 .3\n[F = 2]\n1 1 2 3\n2 0 0 0\n3 0 0 0\n");
  const TDataNodeList& set = *data_.All.Get(0);
  // Node 2 has no record: a filler with the coordinates of the model node.
  EXPECT_EQ(Describe(set), "1:4,5,6 2:-1,-1,1 3:7,8,9 ");
  for (const std::size_t i : {0, 1, 2}) {
    EXPECT_EQ(set.Get(i)->Link, i == 1 ? nullptr : model_.Nodes.Get(i));
  }
  EXPECT_EQ(set.Get(0)->Angles, (TVertex{.1, .2, .3}));
  EXPECT_EQ(set.Get(2)->Angles, (TVertex{0, 0, 1}));
  EXPECT_EQ(data_.All.Get(1)->Get(0)->Angles, TVertex{});
}

TEST_F(DataFile, ScalesTheLargestAmplitudeToAQuarterOfTheModel) {
  data_.CheckedLabels = "011";
  Load("[F = 1]\n1 3 4 0\n[F = 2]\n2 0 0 .5\n[F = 3]\n3 0 0 0\n");
  const std::pair<double, double> expected[] = {{5.0, 0.25}, {0.5, 2.5}, {0.0, 1.0}};
  for (std::size_t i = 0; i < 3; ++i) {  // fillers do not count
    EXPECT_EQ(data_.All.Get(i)->MaxAmplitude, expected[i].first);
    EXPECT_EQ(data_.All.Get(i)->Scale, expected[i].second);
  }
  EXPECT_EQ(data_.All.GetScale(), 0.25);
  EXPECT_EQ(data_.Shown.GetMaxAmplitude(), 0.5);
  EXPECT_EQ(data_.Shown.GetScale(), 2.5);

  // Without an amplitude a scale keeps its value.
  EXPECT_FALSE(data_.Show({false, true, true}));
  EXPECT_TRUE(data_.Show({false, false, true}));
  EXPECT_EQ(data_.Shown.GetMaxAmplitude(), 0.0);
  EXPECT_EQ(data_.Shown.GetScale(), 2.5);
}

TEST_F(DataFile, GivesSetsTheAttributesOfTheirOwners) {
  data_.All.SetNodeShape(TNodeShape::Cube);
  data_.All.SetNodeColor(TColor(1));
  data_.All.SetElementColor(TColor(2));
  model_.Nodes.NodeRadius = 3;
  model_.Nodes.ElementRadius = 4;
  Load("[F = 1]\n1 1 1 1\n");
  const TDataNodeList& set = *data_.All.Get(0);
  EXPECT_EQ(std::tuple(set.NodeShape, set.NodeColor, set.ElementColor, set.EdgeColor),
            std::tuple(TNodeShape::Cube, TColor(1), TColor(2), TColor::Black()));
  EXPECT_EQ(std::pair(set.NodeRadius, set.ElementRadius), std::pair(3.0, 4.0));
  EXPECT_EQ(set.Elements, &model_.Elements);
  EXPECT_FALSE(set.OwnsNodes);
  data_.All.SetNodeColor(TColor(9));
  EXPECT_EQ(set.NodeColor, TColor(9));
}

TEST_F(DataFile, FindsEqualNamesAtTheFirstAndLeavesASectionWithoutRecordsEmpty) {
  Load("[a]1 5 0 0[x[b]1 6 0 0[a]1 7 0 0[b]1 8 0 0");
  EXPECT_THAT(Shapes(), ElementsAre(StartsWith("1:5"), StartsWith("1:6"), StartsWith("1:5"),
                                    StartsWith("1:6")));
  EXPECT_EQ(data_.All.Get(2)->Scale, data_.All.Get(0)->Scale);
  EXPECT_EQ(Sentence("[notes]\nby hand\n[F = 1]\n1 1 1 1\n2 2 2 2\n3 3 3 3\n"), "");
  EXPECT_THAT(Shapes(), ElementsAre("", "1:1,1,1 2:2,2,2 3:3,3,3 "));
  EXPECT_EQ(data_.All.Get(0)->Scale, 1.0);
}

TEST_F(DataFile, ReportsWhatIsWrongAndKeepsTheRest) {
  // A text, what is said of it behind "line", and the nodes of the first data set.
  const std::tuple<const char*, std::string, const char*> cases[] = {
      {"", "", nullptr},
      {"1 2 3 4", "", nullptr},
      {"[F = 1]\n1 1 1 1\n9 2 2 2\n", "3: the model has no node 9; its record was dropped.",
       "1:1,1,1 2:-1,-1,1 3:1,1,-1 "},
      {"[F = 1]\n1 1 1 1\n2 2 2 2\n3 3 3 3\n1 4 4 4\n",
       "5: the record of node 1 is beyond the number of the model's nodes and was dropped.",
       "1:1,1,1 2:2,2,2 3:3,3,3 "},
      {"[F = 1]\n1 1 1 1\n3 3 3 3\n",
       "1: the data set has no record for node 2 of the model; the node is not drawn at its place.",
       "1:1,1,1 2:-1,-1,1 3:3,3,3 "},
      {"\n[ten]\n3 3 3 3\n[F = 2]\n[F = 1]\n1 1 1 1\n2 2 2 2\n3 3 3 3\n",
       "2: the data set has no records for node 1 and 1 more of the model; they are not drawn at "
       "their places, and 1 more fault followed.",
       "1:-1,-1,-1 2:-1,-1,1 3:3,3,3 "},
      {"[F = 1]\n[notes]\n", "1: the data set has no records; it shows nothing.", ""},
      {"[x]\n[F = 1,5]\n1 1 1 1\n2 2 2 2\n3 3 3 3\n",
       "2: numbers have a decimal point; the digits behind the comma were dropped.", ""},
      {"[F = 1]\n1 nan 1 1\n2 2 -inf 1e99\n3 3 3 3\n",
       "2: node 1 has a value that is no number or beyond 1e30; it was set to 0, and 1 more fault "
       "followed.",
       "1:0,1,1 2:2,0,0 3:3,3,3 "},
      {"[F = 1]\n1 1 1 1\n2 2,5 2 2\n",
       "3: the record of node 2 is not complete; the records from there on were dropped.",
       "1:1,1,1 2:-1,-1,1 3:1,1,-1 "}};
  for (const auto& [text, sentence, nodes] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Sentence(text).toStdString(),
              sentence.empty() ? "m.dat: it holds no data sets." : "m.dat, line " + sentence);
    EXPECT_EQ(data_.All.Empty(), nodes == nullptr);
    if (nodes) {
      EXPECT_EQ(Shapes().at(0), nodes);
    }
  }
}

TEST_F(DataFile, WarnsOfAModelWhoseNodesAreNotInOrderAndOfNone) {
  ASSERT_TRUE(model_.LoadFromMemory("[Nodes]\n2 0 0 0\n1 1 1 1\n").Ok());
  EXPECT_EQ(Sentence("[F = 1]\n1 1 1 1\n2 2 2 2\n"),
            "m.dat: the model's nodes are not in ascending order of their numbers, so shapes may "
            "be wrong.");
  EXPECT_EQ(Describe(*data_.All.Get(0)), "1:1,1,1 2:2,2,2 ");
  ASSERT_TRUE(model_.LoadFromMemory("[Nodes]\n1 0 0 0\n1 1 1 1\n2 2 2 2\n").Ok());
  EXPECT_EQ(Sentence("[F = 1]\n1 1 1 1\n2 2 2 2\n"), "");
  model_.Clear();
  EXPECT_EQ(Sentence("[F = 1]\n1 1 1 1\n"),
            "m.dat, line 2: there is no model for the record of node 1; it was dropped.");
  EXPECT_THAT(Shapes(), ElementsAre(""));
}

TEST_F(DataFile, LosesItsSetsToAMissingFileButNotToACancel) {
  Load("[F = 1]\n1 1 1 1\n");
  std::string large = "[F = 1]\n";
  for (int i = 0; i < 200'000; ++i) large += "1 0.25 0.25 0.25\n";
  const TDataNodeList* kept = data_.All.Get(0);
  const QString file = WriteTestFile("large.dat", QByteArray::fromStdString(large));
  const auto cancelAtHalf = [&](double done) {
    EXPECT_FALSE(model_.Loaded);
    return done < 0.5;
  };
  EXPECT_TRUE(data_.LoadFromFile(file, model_, cancelAtHalf).Cancelled());
  EXPECT_EQ(data_.All.Get(0), kept);
  EXPECT_TRUE(model_.Loaded);

  EXPECT_EQ(data_.LoadFromFile(TestFolder() + "/no.dat", model_).Sentence("no.dat"),
            "Cannot read no.dat: there is no such file.");
  EXPECT_TRUE(data_.All.Empty() && data_.Shown.Empty());
  EXPECT_TRUE(model_.Loaded);

  // Progress shows where short sections make many nodes.
  std::string nodes = "[Nodes]\n", sections;
  for (int i = 0; i < 1000; ++i) nodes += std::to_string(i) + " 1 1 1\n";
  for (int i = 0; i < 100; ++i) sections += "[s]7 1 1 1\n";
  ASSERT_TRUE(model_.LoadFromMemory(nodes).Ok());
  EXPECT_TRUE(data_.LoadFromMemory(sections, model_, [](double) { return false; }).Cancelled());
}

TEST_F(DataFile, KeepsOnlyAsManySetsAsItCanHold) {
  std::string text;
  for (std::size_t i = 0; i <= kMostDataSets; ++i) text += "[]x";
  EXPECT_EQ(Sentence(text), "m.dat: only the first 100000 data sets were kept.");
  EXPECT_EQ(data_.All.Count(), kMostDataSets);

  // Every section, however short, makes a node for each node of the model.
  data_.MostNodes = 7;
  EXPECT_EQ(Sentence("[a]1 1 1 1 2 1 1 1 3 1 1 1[b][a][c]1 1 1 1[d]"),
            "m.dat: only the first 3 data sets were kept.");
  EXPECT_EQ(data_.All.Count(), 3u);
}

TEST_F(DataFile, ListsItsSectionsAndReadsOneByItself) {
  QStringList names = {"before"};
  ReadSections(std::string_view("[F = 2.5]1[\xfc][\xc3\xbc]"), names);
  EXPECT_EQ(names, QStringList({"before", "F = 2.5", "\u00fc", "\u00fc"}));
  ReadSections(TestFolder() + "/none.dat", names);
  ReadSections(WriteTestFile("a.dat", "[x]"), names);
  EXPECT_EQ(names.mid(4), QStringList("x"));

  TDataNodeList list(&model_, false);
  list.Section = "[F = 2]";
  const std::string text = "[F = 1]\n1 1 1 1\n[F = 2]\n2 3 4 0\n";
  EXPECT_FALSE(list.LoadFromMemory(text).Failed());
  EXPECT_EQ(Describe(list), "1:-1,-1,-1 2:3,4,0 3:1,1,-1 ");
  EXPECT_EQ(list.Scale, 0.25);

  EXPECT_TRUE(list.LoadFromFile(TestFolder() + "/none.dat").Failed());
  EXPECT_EQ(list.Count(), 3u);
  list.Section = "[F = 3]";
  EXPECT_EQ(list.LoadFromMemory(text).Sentence("m.dat"), "m.dat: it has no section [F = 3].");
  EXPECT_TRUE(list.Empty());

  TDataNodeList own(&model_, true);
  own.Section = "[F = 2]";
  EXPECT_TRUE(own.LoadFromMemory(text).Ok());
  EXPECT_EQ(Describe(own), "2:3,4,0 ");
  EXPECT_EQ(own.Get(0)->Link, nullptr);
}

}  // namespace
