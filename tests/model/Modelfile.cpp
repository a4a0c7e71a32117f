#include "model/Animmodel.h"
#include "tests/support/Testing.h"

namespace {

const std::string kOptions = "[Options]\nNodeRadius=0.5\nElementRadius=0.125\n";
const std::string kNodes = "[Nodes]\n1 0 0 0\n2 3 4 0\n7 1 1 1\n";
const std::string kElements = "[Elements]\n2\n1 1 0.25 255 2 1 2\n2 3 -1 3 1 2 7\n";

/// All that a model holds, as one text.
std::string Describe(const TModel& model) {
  QString out;
  QTextStream s(&out);
  s << model.Size << ' ' << model.Nodes.NodeRadius << ' ' << model.Nodes.ElementRadius << '\n';
  const auto vertex = [&](const TVertex& v) { s << v.x << ',' << v.y << ',' << v.z << ' '; };
  for (const TNode* n : model.Nodes) {
    s << n->ID << ": ";
    vertex(n->Position);
    vertex(n->Angles);
  }
  for (const TElement* e : model.Elements) {
    s << '\n'
      << e->ID << " type " << e->Type << " colour " << e->Color.Value() << " radius " << e->Radius
      << ' ' << e->RollParam1 << ' ' << e->RollParam2 << " nodes";
    for (const std::int32_t index : e->Nodes()) s << ' ' << index;
  }
  return out.toStdString();
}

/// A model, read from a text.
class ModelFile : public testing::Test {
 protected:
  bool Load(const std::string& text) { return model.LoadFromMemory(text).Ok(); }

  TModel model;
};

TEST_F(ModelFile, LoadsRecordsOptionsAndElements) {
  EXPECT_TRUE(Load(kOptions + kNodes + kElements));
  EXPECT_EQ(Describe(model),
            "5 0.5 0.125\n"
            "1: -1.5,-2,-0.5 0,0,0 2: 1.5,2,-0.5 0,0,0 7: -0.5,-1,0.5 0,0,0 \n"
            "1 type 1 colour 255 radius 0.25 0 0 nodes 0 1\n"
            "2 type 3 colour -1 radius 0 0 0 nodes 0 1 2");
  EXPECT_EQ(model.Elements.Get(0)->NodeList, &model.Nodes);
  EXPECT_EQ(model.Nodes.Elements, &model.Elements);
  EXPECT_TRUE(model.Loaded);

  const TDataNodeList& display = model.Display;
  ASSERT_EQ(display.Count(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(display.Get(i)->ID, model.Nodes.Get(i)->ID);
    EXPECT_EQ(display.Get(i)->Position, TVertex{});
    EXPECT_EQ(display.Get(i)->Link, model.Nodes.Get(i));
  }
  EXPECT_EQ(std::pair(display.NodeRadius, display.ElementRadius), std::pair(0.5, 0.125));
  EXPECT_TRUE(display.ShowNodes && display.ShowElements);
  EXPECT_EQ(display.Elements, &model.Elements);
}

TEST_F(ModelFile, TakesTheSectionsInAnyOrder) {
  TModel straight;
  ASSERT_TRUE(straight.LoadFromMemory(kOptions + kNodes + kElements).Ok());
  std::vector<std::string> parts = {kElements, kNodes, kOptions};
  std::sort(parts.begin(), parts.end());
  do {
    EXPECT_TRUE(model.LoadFromMemory(parts[0] + parts[1] + parts[2]).Ok());
    EXPECT_EQ(Describe(model), Describe(straight)) << parts[0];
  } while (std::next_permutation(parts.begin(), parts.end()));
}

TEST_F(ModelFile, FindsRadiiOnlyWithTheirSectionButAnywhere) {
  const std::tuple<std::string, double, double> cases[] = {
      {kNodes, 0.05, 0.025},  // by the size of the model
      {"NodeRadius=7\n" + kNodes, 0.05, 0.025},
      {"NodeRadius=7\n" + kNodes + "[Options]\n", 7, 3.5},
      {"[Options]\nElementRadius=2\nNodeRadius=1\n" + kNodes, 1, 2},  // searched on, around the end
      {"[Options]\nNodeRadius=1\nNodeRadius=9\n" + kNodes, 1, 0.5},
      {"[Options]\nNodeRadius=x\nElementRadius= 3\n" + kNodes, 0.05, 3},
      {"[Options]\nNodeRadius=-1\nElementRadius=0\n" + kNodes, 0.05, 0.025},
      {"[Options]\nNodeRadius=inf\nElementRadius=nan\n" + kNodes, 0.05, 0.025}};
  for (const auto& [text, nodeRadius, elementRadius] : cases) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(Load(text));
    EXPECT_DOUBLE_EQ(model.Nodes.NodeRadius, nodeRadius);
    EXPECT_DOUBLE_EQ(model.Display.ElementRadius, elementRadius);
  }
}

TEST_F(ModelFile, MeasuresTheSizeFromTheOriginOfTheFile) {
  const std::tuple<const char*, double, TVertex> cases[] = {
      {"[Nodes]\n1 3 4 0\n2 0 0 0\n", 5.0, {1.5, 2, 0}},
      {"[Nodes]\n1 1001 0 0\n2 1000 0 0\n", 1001.0, {0.5, 0, 0}},
      {"[Nodes]\n1 0 0 0\n", 0.0, {}}};
  for (const auto& [text, size, first] : cases) {
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(model.Size, size);
    EXPECT_EQ(model.Nodes.Get(0)->Position, first);
  }
}

TEST_F(ModelFile, ReadsEachTypeOfElementInItsForm) {
  EXPECT_TRUE(Load(kNodes + R"([Elements]
4
1 2 0.5 0.25 0.125 -1 2 1 2
2 3 65280 3 1 2 7
3 9 0.75 16711680 1 7
4 300 1 -1 1 7
)"));
  const std::string text = Describe(model);
  EXPECT_EQ(text.substr(text.find("\n1 type") + 1),
            "1 type 2 colour -1 radius 0.5 0.25 0.125 nodes 0 1\n"  // roll
            "2 type 3 colour 65280 radius 0 0 0 nodes 0 1 2\n"      // face
            "3 type 9 colour 16711680 radius 0.75 0 0 nodes 2\n"    // point
            "4 type 255 colour -1 radius 1 0 0 nodes 2");           // beyond 8 bits: a point too
  // 5 1 0 -1 0 has no nodes; what follows is element 7 of type 1. Type 0 has the form of a bar.
  for (const char* skipped : {"5 1 0 -1 0", "5 0 .5 -1 2"}) {
    EXPECT_TRUE(Load(kNodes + "[Elements]\n2\n" + skipped + "\n7 1 0 -1 2\n1 2\n"));
    ASSERT_EQ(model.Elements.Count(), 1u);
    EXPECT_EQ(model.Elements.Get(0)->ID, 7);
  }
}

TEST_F(ModelFile, RefersToTheFirstOfSeveralNodesWithOneId) {
  for (const std::string far : {"3", "2000000000", "-2147483648"}) {  // IDs close and far apart
    EXPECT_TRUE(
        Load("[Nodes]\n5 0 0 0\n" + far + " 9 9 9\n5 1 1 1\n[Elements]\n1\n1 1 0 -1 2 5 " + far));
    ASSERT_EQ(model.Elements.Count(), 1u) << far;
    EXPECT_THAT(model.Elements.Get(0)->Nodes(), testing::ElementsAre(0, 1));
    EXPECT_EQ(model.Nodes.FindNode(5), model.Nodes.Get(0));
    EXPECT_EQ(model.Nodes.IndexOf(4), -1);
  }
}

TEST_F(ModelFile, ReportsWhatIsWrongAndKeepsTheRest) {
  // A text, how many nodes and elements are kept, and what is said behind "line".
  const std::tuple<const char*, std::string, std::size_t, std::size_t, std::string> cases[] = {
      {"empty file", "", 0, 0, ""},
      {"binary file", std::string("\177ELF\0\1\2\xff[Nodes]\0\xfe 1 2", 22), 0, 0, ""},
      {"unknown nodes", kNodes + "[Elements]\n3\n1 1 0 -1 2 8 2\n2 1 0 -1 2 1 2\n3 1 0 -1 2 9 9\n",
       3, 1,
       "7: element 1 names node 8, which does not exist; the element was dropped, and 1 more "
       "fault followed."},
      {"elements cut short", kNodes + "[Elements]\n3\n1 1 0 -1 2 1 2\n2 1 0 -1 2 1", 3, 1,
       "8: the elements end after 1 of 3 records; the missing ones were dropped."},
      {"more elements", kNodes + "[Elements]\n1\n1 1 0 -1 2 1 2\n2 1 0 -1 2 1 2\n", 3, 1,
       "8: there are more element records than the 1 announced; the rest was dropped."},
      {"no number of elements", kNodes + "[Elements]\n" + kOptions, 3, 0,
       "5: the number of elements is missing; no elements were read."},
      {"two thousand million elements", kNodes + "[Elements]\n2147483648\n1 1 0 -1 2 1 2\n", 3, 1,
       "5: a number does not fit into 32 bits and was cut to the nearest that does, and 1 more "
       "fault followed."},
      {"element with two thousand million nodes",
       kNodes + "[Elements]\n1\n1 3 -1 2147483647 1 2 7\n", 3, 0,
       "8: the elements end after 0 of 1 records; the missing ones were dropped."},
      {"decimal commas", "[Nodes]\n1 0,5 1,5 0\n2 1 1 1\n", 0, 0,
       "2: the record of node 1 is not complete; the records from there on were dropped, and 1 "
       "more fault followed."},
      {"decimal comma in a radius", "[Options]\nNodeRadius=0,5\n" + kNodes, 3, 0,
       "2: numbers have a decimal point; the digits behind the comma were dropped."},
      {"radius that is no number", kNodes + "[Elements]\n1\n1 2 nan inf 0 -1 2 1 2\n", 3, 1,
       "7: element 1 has a value that is no number or beyond 1e30; it was set to 0."},
      {"record cut in its head", kNodes + "[Elements]\n1\n1 1", 3, 0,
       "7: the elements end after 0 of 1 records; the missing ones were dropped."},
      {"record cut short", "[Nodes]\n1 0 0 0\n2 3 4\n", 1, 0,
       "3: the record of node 2 is not complete; the records from there on were dropped."},
      {"comment between records", "[Nodes]\n1 0 0 0\n# the roof\n2 3 4 0\n", 1, 0,
       "3: text that is no number ends the nodes; the records behind it were dropped."},
      {"not a number", "[Nodes]\n1 0 0 0\n2 nan 0 0\n3 1 -inf 0\n4 1e300 1 1\n5 1 1 1\n", 2, 0,
       "3: node 2 has a value that is no number or beyond 1e30; the node was dropped, and 2 more "
       "faults followed."},
      {"large node number", "[Nodes]\n1 0 0 0\n9999999999 1 1 1\n", 2, 0,
       "3: a node number does not fit into 32 bits and was cut to the nearest that does."}};
  for (const auto& [what, text, nodes, elements, sentence] : cases) {
    SCOPED_TRACE(what);
    const TLoadReport report = model.LoadFromMemory(text);
    EXPECT_EQ(report.Sentence("/some/folder/m.mod").toStdString(),
              sentence.empty() ? "m.mod: it holds no nodes." : "m.mod, line " + sentence);
    EXPECT_FALSE(report.Failed());
    EXPECT_EQ(std::tuple(model.Nodes.Count(), model.Display.Count(), model.Elements.Count()),
              std::tuple(nodes, nodes, elements));
    EXPECT_TRUE(model.Loaded);
  }
}

TEST_F(ModelFile, ReadsAnglesWhereTheFirstRecordHasThemAndNumbersBetweenAnyWhiteSpace) {
  ASSERT_TRUE(Load("[Nodes]\n1 0 0 0 .1 .2 .3\n2 1 0 0 4 5 6\n"));
  ASSERT_EQ(model.Nodes.Count(), 2u);
  EXPECT_EQ(model.Nodes.Get(1)->Angles, (TVertex{4, 5, 6}));
  // Three numbers on the next line are not angles, but the start of the next record.
  EXPECT_FALSE(Load("[Nodes]\n1 0 0 0\n5 6 7\n"));
  ASSERT_EQ(model.Nodes.Count(), 1u);
  EXPECT_EQ(model.Nodes.Get(0)->Angles, TVertex{});
  EXPECT_TRUE(Load("[Nodes]\r\n1 0\r\n0 0\t2 3\f4\v0 [Elements] 1 1 1\n0 -1 2 1 2"));
  EXPECT_EQ(model.Nodes.Count(), 2u);
  EXPECT_EQ(model.Elements.Count(), 1u);
  EXPECT_TRUE(Load("A plate.\n" + kNodes + "; elements\n\n" + kElements + "end"));
}

TEST_F(ModelFile, EndsQuicklyOnHostileText) {
  const std::size_t size = 64 << 20;
  std::string unfinished = "[Elements]\n2147483647\n";
  while (unfinished.size() < size / 8) unfinished += "- ";
  const std::string texts[] = {std::string(size, '['), "[Nodes]" + std::string(size, '\n'),
                               "[Nodes]\n1 " + std::string(size, '9'), unfinished};
  for (const std::string& text : texts) {
    EXPECT_FALSE(Load(text));
    EXPECT_EQ(model.Nodes.Count(), 0u);
  }
}

TEST_F(ModelFile, ReplacesTheEarlierModelAndNotifiesOnce) {
  QSignalSpy changes(&model, &TModel::OnChange);
  QObject::connect(&model, &TModel::OnChange, [&] { EXPECT_TRUE(model.Loaded); });
  ASSERT_TRUE(Load(kOptions + kNodes + kElements));
  ASSERT_TRUE(Load("[Nodes]\n4 1 2 3\n"));
  EXPECT_EQ(model.Nodes.Count(), 1u);
  EXPECT_EQ(model.Elements.Count(), 0u);
  EXPECT_EQ(model.NodeIndex(4), 0);
  EXPECT_EQ(model.NodeIndex(1), -1);
  EXPECT_EQ(changes.count(), 2);
  model.Clear();
  model.Nodes.Emplace(7, TVertex{});  // as many as before
  EXPECT_EQ(model.NodeIndex(7), 0);
  EXPECT_EQ(model.NodeIndex(4), -1);
}

/// A model of many nodes, long enough for several reports of progress.
std::string LargeModel() {
  std::string text = "[Nodes]\n";
  for (int i = 0; i < 300'000; ++i) text += std::to_string(i) + " 1.25 2.5 3.75\n";
  return text;
}

TEST_F(ModelFile, ShowsProgressAndLeavesTheEarlierModelWhenCancelled) {
  ASSERT_TRUE(Load(kOptions + kNodes + kElements));
  const std::string before = Describe(model);
  const TNode* first = model.Nodes.Get(0);
  QSignalSpy changes(&model, &TModel::OnChange);
  const QString file = WriteTestFile("large.mod", QByteArray::fromStdString(LargeModel()));
  for (const double end : {0.5, 2.0}) {
    std::vector<double> told;
    const TLoadReport report = model.LoadFromFile(file, [&](double done) {
      EXPECT_FALSE(model.Loaded);
      told.push_back(done);
      return done < end;
    });
    EXPECT_GT(told.size(), 3u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_LE(told.back(), 1.0);
    EXPECT_EQ(report.Sentence(file), "");
    EXPECT_TRUE(model.Loaded);
    EXPECT_EQ(changes.count(), 1 + (end > 1.0));
    EXPECT_EQ(report.Cancelled(), end < 1.0);
    EXPECT_EQ(Describe(model) == before, end < 1.0);
    EXPECT_EQ(model.Nodes.Get(0) == first, end < 1.0);
  }
  std::string element = kNodes + "[Elements]\n1\n1 3 -1 2000000";
  for (int i = 0; i < 2'000'000; ++i) element += " 1";
  double last = 0.0;
  const auto cancelSoon = [&](double done) { return (last = done) < 0.4; };
  EXPECT_TRUE(model.LoadFromMemory(element, cancelSoon).Cancelled());
  EXPECT_LT(last, 0.9) << "cancelled before the element ends";
}

TEST_F(ModelFile, RefusesASecondLoadDuringTheFirstAndKeepsTheEarlierModelWhenMemoryRunsOut) {
  QString inner;
  const auto reenter = [&](double) {
    inner = model.LoadFromMemory(kNodes).Sentence("b.mod");
    return true;
  };
  EXPECT_TRUE(model.LoadFromMemory(LargeModel(), reenter).Ok());
  EXPECT_EQ(inner, "Cannot read b.mod: another file is being read.");
  const TLoadReport report =
      model.LoadFromMemory(LargeModel(), [](double) -> bool { throw std::bad_alloc(); });
  EXPECT_EQ(report.Sentence("a.mod"), "Cannot read a.mod: not enough memory.");
  EXPECT_EQ(model.Nodes.Count(), 300'000u);
  EXPECT_TRUE(model.Loaded);
}

}  // namespace
