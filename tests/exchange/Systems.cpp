#include "exchange/Systems.h"

#include "tests/support/Testing.h"

namespace {

constexpr TAxes kPlain = {TVertex{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr TAxes kQuarterAboutZ = {TVertex{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};

TLocalSystem System(std::int32_t number, TSystemKind kind, std::int32_t reference, TAxes axes,
                    TVertex origin = {}) {
  return {.Number = number, .Kind = kind, .Reference = reference, .Axes = axes, .Origin = origin};
}

MATCHER_P3(IsAt, x, y, z, "") {
  return Length(arg, TVertex{double(x), double(y), double(z)}) < 1e-12;
}

using enum TSystemKind;

/// System 7 stands in system 5, system 9 in the global one.
const std::vector<TLocalSystem> kNested = {System(7, Cylindrical, 5, kPlain, {1, 0, 0}),
                                           System(5, Cartesian, 0, kQuarterAboutZ, {10, 0, 0}),
                                           System(9, Spherical, 1, kPlain)};

TEST(TSystems, GiveGlobalCoordinates) {
  TFindings findings;
  const TSystems systems(kNested, findings);
  EXPECT_EQ(findings.ToKnow(), 0);
  EXPECT_THAT(systems.ToGlobal(0, {1, 2, 3}), IsAt(1, 2, 3));
  EXPECT_THAT(systems.ToGlobal(5, {1, 2, 3}), IsAt(8, 1, 3));
  EXPECT_THAT(systems.ToGlobal(7, {2, 0, 3}), IsAt(10, 3, 3));
  EXPECT_THAT(systems.ToGlobal(7, {2, 90, 3}), IsAt(8, 1, 3));
  EXPECT_THAT(systems.ToGlobal(7, {2, 90, 3}, 0.5), IsAt(9, 1, 1.5));
  EXPECT_THAT(systems.ToGlobal(9, {2, 0, 77}), IsAt(0, 0, 2));
  EXPECT_THAT(systems.ToGlobal(9, {2, 30, 0}), IsAt(1, 0, std::sqrt(3.0)));
  EXPECT_THAT(systems.ToGlobal(9, {2, 90, -90}), IsAt(0, -2, 0));
  EXPECT_EQ(systems.ToGlobal(9, {2, 90, 450}), (TVertex{0, 2, 0})) << "right angles are exact";
}

TEST(TSystems, GiveTheDirectionsAtAPlace) {
  TFindings findings;
  const TSystems systems(kNested, findings);
  const struct {
    std::int32_t system;
    TVertex point;
    TAxes axes;
  } rows[] = {
      {0, {3, 4, 5}, kPlain},
      {5, {3, 4, 5}, kQuarterAboutZ},
      {7, {9, 1, 8}, {TVertex{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}}},
      {7, {10, 1, 8}, kQuarterAboutZ},  // on its axis
      {9, {3, 0, 0}, {TVertex{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}},
      {9,
       {0, 3, 3},
       {TVertex{0, std::sqrt(0.5), std::sqrt(0.5)},
        {0, std::sqrt(0.5), -std::sqrt(0.5)},
        {-1, 0, 0}}},
      {9, {0, 0, 3}, {TVertex{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}},
      {9, {0, 0, -3}, {TVertex{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}}},
  };
  for (const auto& row : rows) {
    const TAxes axes = systems.AxesAt(row.system, row.point);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_LT(Length(axes[i], row.axes[i]), 1e-12)
          << "axis " << i << " of " << row.system << " at " << row.point.x << ", " << row.point.z;
    }
  }
}

TEST(TSystems, NoteWhatIsWrongOnce) {
  const TAxes scaled = {TVertex{2, 0, 0}, {2, 2, 0}, {0, 0, 3}};
  const TAxes mirrored = {TVertex{1, 0, 0}, {0, 1, 0}, {0, 0, -1.00002}};
  const std::vector<TLocalSystem> wrong = {
      System(11, Cylindrical, 12, kPlain, {1, 0, 0}),
      System(12, Cartesian, 13, kPlain, {1, 0, 0}),
      System(13, Cartesian, 12, kPlain, {1, 0, 0}),
      System(14, Cartesian, 99, kPlain, {1, 0, 0}),
      System(15, Cartesian, 0, scaled),
      System(16, Cartesian, 0, {}),
      System(17, Cartesian, 0, kPlain, {kNan, 0, 0}),
      System(14, Cartesian, 0, kPlain, {2, 0, 0}),
      System(18, Cartesian, 1, mirrored),
      System(18, Cartesian, 1, mirrored),
  };
  TFindings findings;
  const TSystems systems(wrong, findings);
  QStringList notes;
  for (const auto& finding : findings.All()) notes << finding.Text;
  notes.sort();
  EXPECT_EQ(notes.join('\n'),
            "system 12 refers to itself in a circle; it is taken as the global one\n"
            "system 13 refers to itself in a circle; it is taken as the global one\n"
            "system 14 is defined again in another way; the first definition counts\n"
            "system 14 refers to system 99, which is missing; it is taken as given in the global "
            "system\n"
            "system 15 has a matrix that is not orthonormal; its axes were made unit vectors at "
            "right angles\n"
            "system 16 has axes that span no space; it is taken as the global one\n"
            "system 17 has a value that is no number or beyond 1e30; it is taken as the global "
            "one");
  EXPECT_THAT(systems.ToGlobal(11, {1, 0, 0}), IsAt(2, 0, 0)) << "stands on one in the circle";
  EXPECT_THAT(systems.ToGlobal(12, {1, 0, 0}), IsAt(1, 0, 0));
  EXPECT_THAT(systems.ToGlobal(14, {1, 0, 0}), IsAt(2, 0, 0));
  EXPECT_THAT(systems.ToGlobal(15, {1, 2, 3}), IsAt(1, 2, 3));
  EXPECT_EQ(systems.AxesAt(18, {}), mirrored) << "as good as orthonormal";
  EXPECT_TRUE(systems.IsDefined(1) && systems.IsDefined(16) && !systems.IsDefined(2));
}

TEST(TSystems, ResolveALongChainWithoutEnd) {
  std::vector<TLocalSystem> chain;
  for (std::int32_t i = 2; i < 100'002; ++i) {
    chain.push_back(System(i, Cartesian, i + 1, kPlain, {1, 0, 0}));
  }
  chain.back().Reference = 0;
  TFindings findings;
  EXPECT_THAT(TSystems(chain, findings).ToGlobal(2, {}), IsAt(100'000, 0, 0));
}

}  // namespace
