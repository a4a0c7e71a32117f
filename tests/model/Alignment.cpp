#include "model/Alignment.h"

#include "tests/support/Testing.h"

namespace {

/// A node as the alignment sees it: its ID and a mark that tells it from others with that ID.
struct TMarked {
  int id;
  double mark;
};
using TMarkedList = std::vector<TMarked>;

/// Step by step what the alignment promises, in quadratic time. A filler has its model node's mark.
TMarkedList AlignStepByStep(TMarkedList list, const TMarkedList& model) {
  while (list.size() < model.size()) list.push_back({-1, 0});
  for (std::size_t i = 0; i < model.size(); ++i) {
    if (list[i].id == model[i].id) continue;
    const auto same = std::find_if(list.begin(), list.end(),
                                   [&](const TMarked& m) { return m.id == model[i].id; });
    if (same != list.end()) {
      std::swap(*same, list[i]);
    } else {
      list.insert(list.begin() + static_cast<std::ptrdiff_t>(i), model[i]);
    }
  }
  list.resize(model.size());
  std::stable_sort(list.begin(), list.end(),
                   [](const TMarked& a, const TMarked& b) { return a.id < b.id; });
  return list;
}

TNodeList NodesOf(const TMarkedList& list) {
  TNodeList nodes;
  for (const TMarked& m : list) nodes.Emplace(m.id, m.mark, 0, 0);
  return nodes;
}

std::string Text(const TMarkedList& list) {
  std::string text;
  for (const TMarked& m : list)
    text += std::to_string(m.id) + "/" + std::to_string(int(m.mark)) + " ";
  return text;
}

TMarkedList Aligned(const TMarkedList& list, const TMarkedList& model) {
  TNodeList nodes = NodesOf(list);
  const TNodeList modelNodes = NodesOf(model);
  std::vector<std::int32_t> ids;
  for (const TMarked& m : model) ids.push_back(m.id);
  TNodeIndex index;
  index.Build(ids);
  AlignNodes(nodes, modelNodes, index);
  TMarkedList result;
  for (const TNode* node : nodes) result.push_back({node->ID, node->Position.x});
  return result;
}

TEST(AlignNodes, FillsSwapsAndCuts) {
  const TMarkedList model = {{1, 101}, {2, 102}, {3, 103}};
  EXPECT_EQ(Text(Aligned({{3, 1}, {1, 2}}, model)), "1/2 2/102 3/1 ");
  EXPECT_EQ(Text(Aligned({{9, 1}, {2, 2}, {9, 3}}, model)), "1/101 2/2 3/103 ");
  EXPECT_EQ(Text(Aligned({{1, 1}, {1, 2}, {3, 3}}, model)), "1/1 2/102 3/3 ");
  EXPECT_EQ(Text(Aligned({}, {{5, 7}, {4, 8}})), "4/8 5/7 ");
  EXPECT_EQ(Text(Aligned({}, {})), "");
}

TEST(AlignNodes, AgreesWithItsStepsOnRandomLists) {
  std::mt19937 random(3);
  for (int round = 0; round < 50'000; ++round) {
    const unsigned ids = 1 + random() % 8;  // few IDs make many duplicates; -1 meets the padding
    const auto draw = [&](std::size_t count, double firstMark) {
      TMarkedList list;
      for (std::size_t i = 0; i < count; ++i) {
        list.push_back({static_cast<int>(random() % ids) - 1, firstMark + static_cast<double>(i)});
      }
      return list;
    };
    const TMarkedList model = draw(random() % 9, 100);
    const TMarkedList list = draw(random() % (model.size() + 1), 1);
    ASSERT_EQ(Text(Aligned(list, model)), Text(AlignStepByStep(list, model)))
        << "model " << Text(model) << " list " << Text(list);
  }
}

TEST(AlignNodes, IsNotQuadratic) {
  const int count = 200'000;
  TMarkedList model, reversed, crowd;
  for (int i = 0; i < count; ++i) {
    model.push_back({i, 0});
    reversed.push_back({count - 1 - i, 1});
    crowd.push_back({i < count / 2 ? count - 1 : i, 1});  // half of the list has one ID
  }
  EXPECT_EQ(Aligned(reversed, model).front().mark, 1);
  EXPECT_EQ(Aligned(crowd, model).back().mark, 1);
}

}  // namespace
