#include "components/links/Compclasses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(TDataControl, NotifiesEveryThirdValueAndKeepsTheLatest) {
  TDataControl control;
  control.SetInterval(3);
  std::vector<double> told;
  TValueLink link([&](double value) { told.push_back(value); });
  control.AddLink(&link, false);
  for (int value = 1; value <= 7; ++value) {
    control.SetValue(value);
    EXPECT_EQ(control.GetValue(), value);
  }
  EXPECT_THAT(told, ElementsAre(3.0, 6.0));
}

}  // namespace
