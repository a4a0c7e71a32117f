#include "model/Animation.h"

#include "tests/support/Testing.h"

namespace {

constexpr double kPi = std::numbers::pi;

/// A model of two nodes of size 4 with data sets of 5 and 20, both shown.
class Animation : public testing::Test {
 protected:
  Animation() {
    EXPECT_TRUE(model_.LoadFromMemory("[Nodes]\n1 0 0 0\n2 0 0 4\n").Ok());
    Load("[F = 5]\n1 1 2 0 0 0 0\n2 3 0 4 0 .5 0\n[F = 20]\n1 0 0 1 0 0 0\n2 0 1 0 0 0 0\n");
  }
  void Load(const std::string& text) { EXPECT_FALSE(data_.LoadFromMemory(text, model_).Failed()); }

  TModel model_;
  TMeasuredData data_;
  TAnimation animation_;
};

void ExpectNear(const TVertex& vertex, const TVertex& expected) {
  EXPECT_NEAR(Length(vertex, expected), 0.0, 2e-15);
}

TEST_F(Animation, TakesTenFramesPerCycleToTheLastBit) {
  const double phases[] = {0.6283185307179586, 1.2566370614359172,
                           1.8849555921538759, 2.5132741228718345,
                           3.141592653589793,  3.7699111843077517,
                           4.39822971502571,   5.026548245743669,
                           5.654866776461628,  0.0};
  for (int cycle = 0; cycle < 3; ++cycle) {
    for (const double phase : phases) {
      EXPECT_TRUE(animation_.Step(data_, model_));
      EXPECT_EQ(animation_.Phase, phase);
      for (const TDataNodeList* list : data_.Shown) EXPECT_EQ(list->Phase, phase);
    }
  }
  for (const double phase : {6.283185307179586, 6.283185307179586 - 0.6283185307179586}) {
    EXPECT_TRUE(animation_.Step(data_, model_, true));
    EXPECT_EQ(animation_.Phase, phase);
  }
}

TEST_F(Animation, StandsStillWithoutAVisibleSetAndWhereNothingVibrates) {
  animation_.Time = 3.0;
  data_.Show({});
  for (const TScaleType type : {TScaleType::Absolute, TScaleType::Relative, TScaleType::Sum}) {
    animation_.ScaleType = type;
    EXPECT_FALSE(animation_.Step(data_, model_));
  }
  Load("[x]\n1 1 1 1\n2 1 1 1\n");
  model_.Display.Get(0)->Position = {7, 7, 7};
  animation_.Step(data_, model_);
  EXPECT_EQ(animation_.Phase, 0.0);
  EXPECT_EQ(animation_.Time, 3.0);
  EXPECT_EQ(model_.Display.Get(0)->Position, (TVertex{7, 7, 7}));
}

TEST_F(Animation, ScalesEachTypeByItsOwnLargestAmplitude) {
  data_.Show({false, true});  // amplitude 1, where the whole file has 5
  animation_.ViewScale = 0.5;
  // 0.5 x 0.25 x 4 / largest amplitude, of the set and of the display.
  for (const auto& [type, set, display] : {std::tuple(TScaleType::Absolute, 0.1, 1.0),
                                           {TScaleType::Relative, 0.5, 1.0},
                                           {TScaleType::Sum, 0.5, 0.5}}) {
    animation_.ScaleType = type;
    animation_.UpdateScale(data_, model_);
    EXPECT_DOUBLE_EQ(data_.Shown.Get(0)->DrawScale, set);
    EXPECT_DOUBLE_EQ(model_.Display.DrawScale, display);
  }
  EXPECT_EQ(data_.All.Get(0)->DrawScale, 1.0) << "hidden sets are left alone";
}

TEST_F(Animation, AddsTheMotionsOfAllSetsInTime) {
  animation_.ScaleType = TScaleType::Sum;
  EXPECT_TRUE(animation_.Step(data_, model_, true));  // knows no back
  EXPECT_DOUBLE_EQ(animation_.Time, 0.005);
  // After 0.005: a fortieth of the period of 5, a tenth of that of 20.
  const double slow = 2 * kPi / 40, fast = 2 * kPi / 10;
  ExpectNear(model_.Display.Get(0)->Position, {std::cos(slow), 2 * std::cos(slow), std::cos(fast)});
  ExpectNear(model_.Display.Get(1)->Position,
             {3 * std::cos(slow), std::cos(fast), 4 * std::cos(slow)});

  for (int i = 0; i < 9; ++i) EXPECT_TRUE(animation_.Step(data_, model_));
  EXPECT_DOUBLE_EQ(animation_.Time, 0.05);  // a quarter of the slow period, one of the fast
  EXPECT_NEAR(model_.Display.Get(0)->Position.x, 0.0, 1e-15);
  EXPECT_NEAR(model_.Display.Get(0)->Position.z, 1.0, 1e-15);
}

TEST_F(Animation, ShiftsEachAxisByItsAngle) {
  Load("[F = 0]\n1 2 3 4 1 2 3\n2 0 0 0 0 0 0\n[F = 10]\n1 0 0 0 0 0 0\n2 1 1 1 .1 .2 .3\n");
  animation_.ScaleType = TScaleType::Sum;
  EXPECT_TRUE(animation_.Step(data_, model_));
  // Frequency 0 is a constant displacement.
  ExpectNear(model_.Display.Get(0)->Position,
             {2 * std::cos(1.0), 3 * std::cos(2.0), 4 * std::cos(3.0)});
  const double phase = 2 * kPi / 10;
  ExpectNear(model_.Display.Get(1)->Position,
             {std::cos(phase + 0.1), std::cos(phase + 0.2), std::cos(phase + 0.3)});
}

TEST_F(Animation, StaysFiniteWithAnEmptyFirstSetOrATinyFrequency) {
  for (const char* text :
       {"[F = 1]\n[F = 2]\n1 1 1 1\n2 1 1 1\n", "[F = 1e-320]\n1 1 1 1\n2 1 1 1\n"}) {
    Load(text);
    animation_.ScaleType = TScaleType::Sum;
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(animation_.Step(data_, model_));
    EXPECT_LE(std::abs(model_.Display.Get(0)->Position.x), 1.0) << text;
    EXPECT_TRUE(std::isfinite(animation_.Time)) << text;
    animation_.Time = 0.0;
  }
}

TEST(ScaleComplexNode, MovesALinkedNodeAboutItsPlace) {
  const TNode place(1, 10, 20, 30);
  TNode node(1, 1, 2, 3);
  node.Angles = {0, kPi / 2, kPi};
  EXPECT_EQ(ScaleComplexNode(node, 1.0, 2.0), (TVertex{2, 4, 6})) << "unlinked: where it says";
  node.Link = &place;
  EXPECT_LT(Length(ScaleComplexNode(node, 0.0, 2.0), {12, 20, 24}), 1e-14);
}

TEST_F(Animation, PlacesAllNodesAsItPlacesOne) {
  constexpr int kNodes = 700;
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(-4.0, 4.0);
  const auto vertex = [&] { return TVertex{any(random), any(random), any(random)}; };
  model_.Clear();
  data_.Shown.Clear();
  TDataNodeList& set = *data_.All.Add(std::make_unique<TDataNodeList>(&model_, false));
  set.Frequency = 3.0;
  for (int i = 0; i < kNodes; ++i) {
    model_.Nodes.Emplace(i, vertex());
    model_.Display.Emplace(i, TVertex{});
    TNode* node = set.Emplace(i, vertex());
    if (i % 10 != 0) node->Angles = vertex();
    if (i != 5) node->Link = model_.Nodes.Get(static_cast<std::size_t>(i));
  }
  set.SetVisible(true);
  set.NodesChanged();
  data_.Shown.Refer(&set);
  set.DrawScale = 0.75;
  std::vector<TVertex> positions;
  for (set.Phase = 0.0; set.Phase < 7.0; set.Phase += 0.7) {
    PlaceNodes(set, positions);
    ASSERT_EQ(positions.size(), std::size_t{kNodes});
    for (std::size_t i = 0; i < kNodes; ++i) {
      const TVertex expected = ScaleComplexNode(*set.Get(i), set.Phase, set.DrawScale);
      EXPECT_LE(Length(positions[i], expected),
                i % 10 == 0 ? 0.0 : 1e-14)  // without angles to the last bit
          << i;
    }
  }
  animation_.ScaleType = TScaleType::Sum;
  animation_.Step(data_, model_);
  for (std::size_t i = 0; i < kNodes; ++i) {  // of the only set: a tenth of its period
    const TVertex expected = Displacement(*set.Get(i), 2 * kPi / 10);
    EXPECT_NEAR(Length(model_.Display.Get(i)->Position, expected), 0.0, 1e-13);
  }

  set.Get(1)->Position = {1, 2, 3};
  set.NodesChanged();
  PlaceNodes(set, positions);
  EXPECT_NEAR(Length(positions[1], ScaleComplexNode(*set.Get(1), set.Phase, 0.75)), 0.0, 1e-14);
}

}  // namespace
