#include "shapes/Complexity.h"
#include "shapes/Mac.h"
#include "shapes/Orbits.h"
#include "shapes/Shapetables.h"
#include "tests/support/Testing.h"

namespace {

using TComplex = std::complex<double>;

/// One file's data sets for nodes 1 to n; each component is given as a complex number.
struct TShapes : TNodesSet {
  using TMotion = std::array<TComplex, 3>;

  TDataNodeList& Add(double frequency, const std::vector<TMotion>& motions, std::int32_t id = 1) {
    TDataNodeList& list = *TNodesSet::Add(std::make_unique<TDataNodeList>(nullptr, false));
    list.Frequency = frequency;
    for (const auto& [x, y, z] : motions) {
      TNode* node = list.Emplace(id++, std::abs(x), std::abs(y), std::abs(z));
      node->Angles = {std::arg(x), std::arg(y), std::arg(z)};
    }
    return list;
  }
  /// Along z alone.
  TDataNodeList& AddZ(double frequency, const std::vector<TComplex>& values) {
    std::vector<TMotion> motions;
    for (const TComplex& value : values) motions.push_back({0.0, 0.0, value});
    return Add(frequency, motions);
  }
};

TEST(TMac, ComparesShapesAsPaperDoes) {
  TShapes shapes;
  shapes.AddZ(10.0, {1.0, 2.0, TComplex(0.0, 1.0), 0.0});
  shapes.AddZ(11.0, {TComplex(3.0, 4.0), TComplex(6.0, 8.0), TComplex(-4.0, 3.0), 0.0});  // x 3+4i
  shapes.AddZ(0.0, {2.0, -1.0, 0.0, 5.0});  // orthogonal to both
  shapes.AddZ(12.0, {1.0, 0.0, 0.0, 0.0});
  TMac mac(shapes, shapes);
  ASSERT_EQ(mac.Compute(), "");
  const double expected[4][4] = {{1.0, 1.0, 0.0, 1.0 / 6.0},
                                 {1.0, 1.0, 0.0, 1.0 / 6.0},
                                 {0.0, 0.0, 1.0, 2.0 / 15.0},
                                 {1.0 / 6.0, 1.0 / 6.0, 2.0 / 15.0, 1.0}};
  for (std::size_t row = 0; row < 4; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      EXPECT_NEAR(mac.Value(row, column).value(), expected[row][column], 1e-12);
    }
  }
  EXPECT_LT(std::abs(mac.BestFit(1, 0) - TComplex(3.0, 4.0)), 1e-12);
  EXPECT_LT(std::abs(mac.BestFit(0, 1) - 1.0 / TComplex(3.0, 4.0)), 1e-12);
  const auto pairs = mac.PairsAbove(0.8);
  ASSERT_EQ(pairs.size(), 1U);
  EXPECT_EQ(std::pair(pairs[0].Row, pairs[0].Column), std::pair(std::size_t{0}, std::size_t{1}));
  EXPECT_NEAR(pairs[0].Percent.value(), 10.0, 1e-12);
  EXPECT_EQ(mac.PairsAbove(0.13).size(), 4U);
}

TEST(TMac, TakesOnlyWhatWasMeasuredInBoth) {
  TShapes test;  // along z, at nodes 3 to 5
  test.Add(10.0, {{0.0, 0.0, 1.0}, {0.0, 0.0, 2.0}, {0.0, 0.0, 3.0}}, 3);
  TDataNodeList& partial = test.Add(20.0, {{0.0, 0.0, 7.0}, {0.0, 0.0, 2.0}, {0.0, 0.0, 3.0}}, 3);
  partial.Measured = {false, true, true};
  TModel model;
  TMeasuredData data;  // in space; the second set has no record of nodes 1, 4 and 5
  EXPECT_TRUE(model.LoadFromMemory("[Nodes]\n1 0 0 0\n2 1 0 0\n3 2 0 0\n4 3 0 0\n5 4 1 9\n").Ok());
  EXPECT_GT(data.LoadFromMemory("[F = 10]\n1 9 9 9\n2 0 0 0\n3 5 6 1\n4 7 0 2\n5 0 8 3\n"
                                "[F = 30]\n2 0 0 1\n3 0 0 4\n",
                                model)
                .Count(),
            0U);
  TMac mac(test, data.All);
  ASSERT_EQ(mac.Compute(), "");
  for (std::size_t row = 0; row < 2; ++row) EXPECT_NEAR(mac.Value(row, 0).value(), 1.0, 1e-12);
  EXPECT_NEAR(mac.Value(0, 1).value(), 1.0, 1e-12);  // at node 3
  EXPECT_EQ(mac.WhyNone(1, 1), "no node was measured in both");
}

TEST(TMac, SaysWhatItCannotCompare) {
  TShapes shapes;
  shapes.AddZ(1.0, {1.0, 2.0});
  shapes.AddZ(2.0, {0.0, 0.0});
  shapes.AddZ(3.0, {1.0, 2.0}).Get(0)->Position.z = kNan;
  shapes.AddZ(0.0, {}).Section = "[=1+1\t]";
  TMac mac(shapes, shapes);
  ASSERT_EQ(mac.Compute(), "");
  EXPECT_EQ(mac.WhyNone(0, 1), "of the second, it does not move");
  EXPECT_EQ(mac.WhyNone(2, 0), "of the first, it holds a value that is no finite number");
  EXPECT_EQ(mac.WhyNone(3, 3), "no node was measured in both");
  EXPECT_EQ(mac.BestFit(0, 1), 0.0);
  EXPECT_TRUE(MacTable(mac).startsWith(
      "MAC\t1\t2\t3\t[=1+1\xEF\xBF\xBD]\n1\t1.0000\tno value\tno value\tno value\n"))
      << MacTable(mac).toStdString();
  EXPECT_TRUE(ComplexityTable(shapes).contains("\n2\tno value\tit does not move\n"));

  EXPECT_EQ(TMac(shapes, shapes).Compute([](double) { return false; }), "it was cancelled");
  for (std::size_t i = 0; i < TMac::kMostSets; ++i) shapes.AddZ(1.0, {});
  EXPECT_EQ(TMac(shapes, shapes).Compute(),
            "there are 2004 data sets; 2000 are the most that can be compared");
  const TNodesSet none;
  EXPECT_EQ(TMac(none, none).Compute(), "");
}

/// Across the bounds of blocks and tiles nothing is lost or counted twice.
TEST(TMac, OfManyNodesIsTheSumOverAll) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  TShapes shapes[2];
  std::vector<std::vector<TShapes::TMotion>> motions;
  for (int i = 0; i < 5; ++i) {
    motions.emplace_back(131);
    for (auto& motion : motions.back()) {
      for (TComplex& component : motion) component = {value(random), value(random)};
    }
    shapes[i / 3].Add(i, motions.back());
  }
  TMac mac(shapes[0], shapes[1]);
  ASSERT_EQ(mac.Compute(), "");
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 2; ++column) {
      // The part of the one shape's energy that the fitted other one explains.
      double all = 0.0, left = 0.0;
      for (std::size_t i = 0; i < 131; ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const TComplex a = motions[row][i][axis], b = motions[3 + column][i][axis];
          all += std::norm(a);
          left += std::norm(a - mac.BestFit(row, column) * b);
        }
      }
      EXPECT_NEAR(mac.Value(row, column).value(), 1.0 - left / all, 1e-12);
    }
  }
}

TEST(Complexity, HasThePapersFigures) {
  const double root = std::sqrt(0.5);
  const TComplex i(0.0, 1.0);
  const struct {
    const char* what;
    std::vector<TComplex> values;
    double mpc, mpdDeg, meanPhaseDeg;
  } cases[] = {
      {"real", {1.0, -2.0, 3.0}, 1.0, 0.0, 0.0},
      {"real, turned", {i, -2.0 * i, 3.0 * i}, 1.0, 0.0, 90.0},
      {"real, turned by 45 degrees", {root + root * i, -root - root * i}, 1.0, 0.0, 45.0},
      {"rotating", {1.0, root + root * i, i, -root + root * i}, 0.0, 45.0, -1.0},
      // Squares 4 and 1: ((4 - 1) / 5)^2; a third of the weight lies across.
      {"partly", {2.0, i}, 0.36, 30.0, 0.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TShapes shapes;
    TDataNodeList& list = shapes.AddZ(1.0, c.values);
    const TPhasors shape = TComponents(shapes).Read(0);
    const TComplexity complexity = ComplexityOf(shape).value();
    EXPECT_NEAR(complexity.Mpc, c.mpc, 1e-12);
    EXPECT_NEAR(complexity.MpdDeg, c.mpdDeg, 1e-6);
    if (c.meanPhaseDeg < 0.0) continue;  // any
    const double phase = MeanPhase(shape);
    EXPECT_NEAR(phase * 180.0 / std::numbers::pi, c.meanPhaseDeg, 1e-9);
    MakeReal(list, phase);
    for (std::size_t node = 0; node < c.values.size(); ++node) {
      const TComplex turned = c.values[node] * std::polar(1.0, -phase);
      EXPECT_NEAR(list.Get(node)->Position.z, turned.real(), 1e-12);
      EXPECT_EQ(list.Get(node)->Angles, TVertex{});
    }
  }
}

TEST(Orbits, AreTheEllipsesThatNodesRunThrough) {
  const TNode rest(1, 10.0, 20.0, 30.0);
  const TComplex eighth = std::polar(1.0, -std::numbers::pi / 4);
  TShapes shapes;
  // 3 cos w along x and -2 sin w along y; a line of length 10 that is
  // run through an eighth of a cycle later; a node that belongs to none.
  TDataNodeList& list = shapes.Add(
      1.0, {{3.0, TComplex(0.0, 2.0), 0.0}, {3.0 * eighth, 4.0 * eighth, 0.0}, {1.0, 0.0, 0.0}});
  for (const std::size_t linked : {0U, 1U}) list.Get(linked)->Link = &rest;
  const auto orbits = OrbitsOf(list);
  ASSERT_EQ(orbits.size(), 3U);
  EXPECT_NEAR(orbits[0].Amplitude(), 3.0, 1e-12);
  EXPECT_NEAR(orbits[1].Amplitude(), 5.0, 1e-12);
  EXPECT_EQ(orbits[2].Amplitude(), 0.0);
  constexpr double kQuarter = std::numbers::pi / 2;
  EXPECT_LT(Length(orbits[0].At(kQuarter), TVertex{10.0, 18.0, 30.0}), 1e-12);
  EXPECT_LT(Length(orbits[0].VelocityAt(kQuarter), TVertex{-3.0, 0.0, 0.0}), 1e-12);
  EXPECT_LT(Length(orbits[0].VelocityAt(0.0), TVertex{0.0, -2.0, 0.0}), 1e-12);
  for (const double phase : {0.0, 0.7, 2.5, 4.0}) {
    const TVertex place = ScaleComplexNode(*list.Get(0), phase, 1.0);
    EXPECT_LT(Length(orbits[0].At(phase), place), 1e-12);
  }
}

}  // namespace
