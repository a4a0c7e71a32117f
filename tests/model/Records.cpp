#include "model/Records.h"

#include "tests/support/Testing.h"

namespace {

TEST(TVertex, DividesByZeroToTheZeroVector) {
  EXPECT_EQ((TVertex{3, -4, 5} / 0.0), TVertex{});
  EXPECT_EQ((TVertex{3, -4, 5} / 2.0), (TVertex{1.5, -2, 2.5}));
  EXPECT_EQ(Length({1, 2, 3}, {1, 5, 7}), 5.0);
}

TEST(TElement, HasRoomForItsNodes) {
  for (const auto& [asked, made] : {std::pair{1, 1}, {4, 4}, {5, 5}, {0, 2}, {-7, 2}}) {
    TElement element(TElement::kFace, asked);
    EXPECT_EQ(element.NodeCount(), made);
    ASSERT_EQ(element.Nodes().size(), static_cast<std::size_t>(made));
    for (const std::int32_t index : element.Nodes()) EXPECT_EQ(index, 0);
  }
}

/// Two-node elements over five points.
class Elements : public testing::Test {
 protected:
  Elements() {
    nodes_.Emplace(1, 0, 0, 5);
    nodes_.Emplace(2, 1, -2, 3);
    nodes_.Emplace(3, -1, 0, 3);
    nodes_.Emplace(4, -1, -1, -1);
    nodes_.Emplace(5, -1, -1, -1);
  }
  TElement Bar(std::int32_t a, std::int32_t b) {
    TElement bar(TElement::kBar, 2);
    bar.Nodes()[0] = a;
    bar.Nodes()[1] = b;
    bar.NodeList = &nodes_;
    return bar;
  }
  TNodeList nodes_;
};

TEST_F(Elements, AreOrderedByTheirMaximaByZThenYThenX) {
  const TElement high = Bar(0, 0), right = Bar(1, 1), left = Bar(2, 2), low = Bar(3, 4);
  const TElement wide = Bar(2, 1), outside = Bar(3, 99), nowhere(TElement::kBar, 2);
  const std::pair<const TElement&, TVertex> maxima[] = {
      {wide, {1, 0, 3}}, {low, {-1, -1, -1}}, {outside, {-1, -1, -1}}, {nowhere, {}}};
  for (const auto& [bar, maximum] : maxima) EXPECT_EQ(MaxNodeCoordinates(bar), maximum);
  const std::tuple<const TElement*, const TElement*, int> cases[] = {
      {&left, &high, -1},  // z, whatever x says
      {&left, &right, 1},  // same z, y decides against x
      {&left, &wide, -1},  // same z and y, x decides
      {&low, &low, 0},     //
      {nullptr, &low, 0}, {&low, nullptr, 0}};
  for (const auto& [a, b, order] : cases) EXPECT_EQ(CompareElements(a, b), order);
}

TEST(CompareNodesID, OrdersByIdAndTakesNullAsEqual) {
  const TNode small(INT_MIN, {}), large(INT_MAX, {9, 9, 9});
  EXPECT_EQ(CompareNodesID(&small, &large), -1);
  EXPECT_EQ(CompareNodesID(&large, &small), 1);
  for (const TNode* same : {&large, static_cast<const TNode*>(nullptr)}) {
    EXPECT_EQ(CompareNodesID(same, &large), 0);
    EXPECT_EQ(CompareNodesID(&large, same), 0);
  }
}

/// Writes down when it is freed.
struct TTold {
  TTold(std::vector<int>& freed, int name) : freed_(freed), name_(name) {}
  ~TTold() { freed_.push_back(name_); }
  std::vector<int>& freed_;
  int name_;
};

template <class TList>
class TypedLists : public testing::Test {};
using TListTypes = testing::Types<TTypedList<TTold>, TTypedList<TTold, TInBlocks<TTold>>>;
TYPED_TEST_SUITE(TypedLists, TListTypes);

TYPED_TEST(TypedLists, OwnTheirRecordsAndFreeThemFromTheFront) {
  std::vector<int> freed;
  {
    TypeParam list;
    std::vector<TTold*> records;
    for (int i = 0; i < 40; ++i) records.push_back(list.Emplace(freed, i));
    list.EmplaceAt(0, freed, 40);
    EXPECT_EQ(list.Get(0)->name_, 40);
    EXPECT_EQ(list.Get(40), records[39]) << "a record never moves";
    list.DeleteObject(1);
    EXPECT_EQ(freed, std::vector<int>{0});
    list.Emplace(freed, 41);
    list.Exchange(0, 1);

    TypeParam taken(std::move(list));
    EXPECT_EQ(taken.Count(), 41u);
    EXPECT_EQ(taken.Get(0), records[1]);
    freed.clear();
  }
  ASSERT_EQ(freed.size(), 41u);
  EXPECT_EQ(freed[0], 1);
  EXPECT_EQ(freed[1], 40);
  EXPECT_EQ(freed[40], 41);
}

}  // namespace
