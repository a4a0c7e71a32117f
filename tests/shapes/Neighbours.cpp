#include "shapes/Neighbours.h"

#include "model/Datareader.h"
#include "model/Modelreader.h"
#include "shapes/Pointtree.h"
#include "tests/support/Testing.h"

namespace {

/// A model with one data set of which some nodes were measured.
struct TStructure {
  TModel Model;
  TMeasuredData Data;
  TModelContent Content;
  TDataSet Set;

  void Add(const TVertex& place) {
    const auto id = static_cast<std::int32_t>(Content.Nodes.Count()) + 1;
    TNode* node = Content.Nodes.Emplace(id, place);
    Content.Display.Emplace(id, TVertex{});
    Set.Content.Nodes.Emplace(id, TVertex{})->Link = node;
    Set.Measured.push_back(false);
  }
  void Add(const TVertex& place, const TVertex& amplitude, const TVertex& angles = {}) {
    Add(place);
    TNode& node = *Set.Content.Nodes.Get(Set.Content.Nodes.Count() - 1);
    node.Position = amplitude;
    node.Angles = angles;
    Set.Measured.back() = true;
    Set.Content.MaxAmplitude = std::max(Set.Content.MaxAmplitude, Length(amplitude));
  }
  void Join(std::uint8_t type, const std::vector<std::int32_t>& nodes) {
    TElement* element = Content.Elements.Emplace(type, static_cast<std::int32_t>(nodes.size()));
    std::ranges::copy(nodes, element->Nodes().begin());
  }
  TDataNodeList& Follow() {
    Model.Replace(std::move(Content));
    std::vector<TDataSet> sets;
    sets.push_back(std::move(Set));
    Data.Replace(std::move(sets), Model);
    TNeighbours(Model).Follow(Data);
    return *Data.All.Get(0);
  }
};

/// The first bending shape of a cantilever of length 1, 1 at its tip.
double Bending(double x) {
  constexpr double kRoot = 1.8751040687119611;   // of cos b cosh b = -1
  constexpr double kShare = 0.7340955137589128;  // (cos b + cosh b) / (sin b + sinh b)
  const double b = kRoot * x;
  return 0.5 * (std::cosh(b) - std::cos(b) - kShare * (std::sinh(b) - std::sin(b)));
}

TEST(TNeighbours, ABeamMeasuredAtAnEighthOfItsNodesBendsAsABeam) {
  constexpr int kCount = 200;
  TStructure beam;
  for (int i = 0; i < kCount; ++i) {
    const double x = i / (kCount - 1.0);
    if (i % 8 == 0 || i == kCount - 1) {
      beam.Add({x, 0, 0}, {0, 0, Bending(x)});
    } else {
      beam.Add({x, 0, 0});
    }
    if (i > 0) beam.Join(TElement::kBar, {i - 1, i});
  }
  ASSERT_EQ(std::ranges::count(beam.Set.Measured, true), 26);
  ASSERT_NEAR(Bending(1.0), 1.0, 1e-9);
  const TDataNodeList& list = beam.Follow();
  double largest = 0.0;
  std::vector<TVertex> frame(kCount);
  list.Motions().Place(frame, 0.0, 1.0);
  for (std::size_t i = 0; i < kCount; ++i) {
    const TVertex& rest = list.Get(i)->Link->Position;
    const TVertex& amplitude = list.Get(i)->Position;
    EXPECT_NEAR(amplitude.z, Bending(rest.x), list.Measured[i] ? 0.0 : 0.02) << i;
    EXPECT_EQ(list.Get(i)->Angles, TVertex{});
    EXPECT_EQ(frame[i], rest + amplitude) << "motions are ready";
    largest = std::max(largest, Length(amplitude));
  }
  EXPECT_EQ(list.MaxAmplitude, largest);
  EXPECT_TRUE(list.IsInterpolated);

  TNeighbours::Rest(beam.Data);
  list.Motions().Place(frame, 0.0, 1.0);
  for (std::size_t i = 0; i < kCount; ++i) {
    const TVertex& rest = list.Get(i)->Link->Position;
    EXPECT_EQ(frame[i] == rest, !list.Measured[i] || i == 0) << i;
  }
  EXPECT_FALSE(list.IsInterpolated);
}

TEST(TNeighbours, GoAlongTheStructureBeforeTheyGoThroughSpace) {
  TStructure fork;  // two prongs that almost touch, joined at their far end
  fork.Add({0, 0, 0}, {0, 0, 0});
  for (const double side : {1.0, -1.0}) {
    for (int i = 1; i <= 3; ++i) fork.Add({double(i), 0.01 * side, 0});
    fork.Add({4, 0.01 * side, 0}, {0, side, 0});
  }
  fork.Join(TElement::kRoll, {0, 1});
  fork.Join(TElement::kFace, {1, 2, 3, 4});
  for (const auto& [a, b] : {std::pair{0, 5}, {5, 6}, {6, 7}, {7, 8}}) {
    fork.Join(TElement::kBar, {a, b});
  }
  fork.Join(TElement::kBar, {3, 99});  // beyond the list
  fork.Join(9, {4, 8});                // a point joins nothing
  const TDataNodeList& list = fork.Follow();
  // From node 7: 1 to its own tip, 3 to the root, 7 or less to the other tip.
  EXPECT_LT(list.Get(7)->Position.y, -0.5);
  EXPECT_GT(list.Get(3)->Position.y, 0.5);
}

TEST(TNeighbours, GoThroughSpaceWhereNothingIsJoined) {
  TStructure cloud;
  cloud.Add({0, 0, 0}, {1, 0, 0});
  cloud.Add({2, 0, 0}, {0, 2, 0});
  cloud.Add({0, 2, 0}, {0, 0, 3});
  cloud.Add({2, 2, 0}, {3, 2, 1});
  cloud.Add({50, 0, 0}, {1000, 0, 0});  // the fifth does not count
  cloud.Add({1, 1, 0});                 // as far from each of the first four
  cloud.Add({2, 2, 0});                 // at the place of the fourth
  cloud.Add({0.5, 1, 0});
  const TDataNodeList& list = cloud.Follow();
  EXPECT_LT(Length(list.Get(5)->Position, {1, 1, 1}), 1e-12);
  EXPECT_EQ(list.Get(6)->Position, (TVertex{3, 2, 1}));
  // Distances 1.118 twice and 1.803 twice: shares of 0.30861 and 0.19139.
  EXPECT_LT(Length(list.Get(7)->Position, {0.88279, 0.76556, 1.11721}), 2e-5);
}

TEST(TNeighbours, KeepPhases) {
  TStructure pair;
  pair.Add({0, 0, 0}, {1, 2, 0}, {std::numbers::pi / 3, 1.0, 0});
  pair.Add({1, 0, 0});
  pair.Add({2, 0, 0}, {1, 2, 0}, {-std::numbers::pi / 3, 1.0, 0});
  for (const std::int32_t i : {0, 1}) pair.Join(TElement::kBar, {i, i + 1});
  const TNode& middle = *pair.Follow().Get(1);
  EXPECT_NEAR(middle.Position.x, 0.5, 1e-12);  // half of e^(i pi/3) + e^(-i pi/3)
  EXPECT_NEAR(middle.Angles.x, 0.0, 1e-12);
  EXPECT_NEAR(middle.Position.y, 2.0, 1e-12);
  EXPECT_NEAR(middle.Angles.y, 1.0, 1e-12);
}

TEST(TNeighbours, LeaveASetAloneThatHasNothingToGoBy) {
  for (const bool isMeasured : {true, false}) {
    TStructure structure;
    structure.Add({0, 0, 0}, {1, 0, 0});
    structure.Add({1, 0, 0}, {2, 0, 0});
    structure.Set.Measured = {isMeasured, isMeasured};
    const TDataNodeList& list = structure.Follow();
    EXPECT_FALSE(list.IsInterpolated);
    EXPECT_EQ(list.Get(1)->Position.x, 2.0);
  }
}

TEST(TNeighbours, RestWhereTheUserCancels) {
  TStructure structure;
  structure.Add({0, 0, 0}, {1, 0, 0});
  structure.Add({1, 0, 0});
  structure.Follow();
  EXPECT_EQ(structure.Data.All.Get(0)->Get(1)->Position.x, 1.0);
  const auto outcome =
      TNeighbours(structure.Model).Follow(structure.Data, [](double) { return false; });
  EXPECT_EQ(outcome, TNeighbours::TOutcome::Cancelled);
  EXPECT_EQ(structure.Data.All.Get(0)->Get(1)->Position, TVertex());
}

TEST(TPointTree, FindsTheSameAsLookingAtAll) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> coordinate(0, 9);  // many places come several times
  const auto place = [&] {
    return TVertex{double(coordinate(random)), double(coordinate(random)),
                   double(coordinate(random))};
  };
  for (const int count : {0, 1, 3, 500}) {
    std::vector<TPointTree::TPoint> points;
    for (int i = 0; i < count; ++i) points.push_back({place(), i});
    const TPointTree tree(points);
    for (int trial = 0; trial < 100; ++trial) {
      const TVertex from = place();
      std::vector<double> all(TNearest::kMost, kInfinity);
      for (const auto& point : points) all.push_back(Length(from, point.Place));
      std::ranges::sort(all);
      for (std::size_t i = 0; i < TNearest::kMost; ++i) {
        const auto [distance, node] = tree.NearestTo(from).Entries()[i];
        EXPECT_EQ(distance, all[i]);
        if (node < 0) continue;
        EXPECT_EQ(distance, Length(from, points[static_cast<std::size_t>(node)].Place));
      }
    }
  }
}

}  // namespace
