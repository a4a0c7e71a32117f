#include "viewer/window/Windowplace.h"

#include "tests/support/Testing.h"

namespace {

constexpr QSize kMinimum(400, 300);
const QRect kLeft(0, 0, 1920, 1040);
const QRect kRight(1920, 0, 1280, 984);

}  // namespace

TEST(Windowplace, KeepsAWindowWhereTheUserCanReachIt) {
  const std::tuple<const char*, QRect, QRect> cases[] = {
      {"visible", {100, 50, 800, 600}, {100, 50, 800, 600}},
      {"across both screens", {1700, 50, 800, 600}, {1700, 50, 800, 600}},
      {"over the left edge", {-200, 50, 800, 600}, {0, 50, 800, 600}},
      {"under the bottom", {100, 900, 800, 600}, {100, 440, 800, 600}},
      {"mostly on the right", {2900, 500, 800, 600}, {2400, 384, 800, 600}},
      {"on a screen that is gone", {-30000, -30000, 800, 600}, {0, 0, 800, 600}},
      {"too small", {10, 20, 0, -7}, {10, 20, 400, 300}},
      {"too large", {10, 20, 9000, 9000}, {0, 0, 1920, 1040}},
      {"too large on the right", {2000, 20, 900, 9000}, {2000, 0, 900, 984}}};
  for (const auto& [what, wanted, got] : cases) {
    EXPECT_EQ(FitToScreens(wanted.topLeft(), wanted.size(), {kLeft, kRight}, kMinimum), got)
        << what;
  }
  for (const int a : {INT_MIN, -1, 0, INT_MAX}) {
    for (const int b : {INT_MIN, 0, INT_MAX}) {
      EXPECT_TRUE(kLeft.contains(FitToScreens({a, b}, {b, a}, {kLeft}, kMinimum))) << a << ' ' << b;
    }
  }
  EXPECT_EQ(FitToScreens({1, 2}, {500, 500}, {}, kMinimum), QRect(1, 2, 500, 500));
}
