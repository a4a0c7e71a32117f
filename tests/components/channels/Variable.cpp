#include "components/channels/Variable.h"

#include "tests/support/Testing.h"

namespace {

TEST(TVariable, ShowsNameAndValueAsItsPropertiesSay) {
  const std::tuple<bool, bool, const char*> cases[] = {
      {true, true, "Speed=1.5"}, {true, false, "Speed"}, {false, true, "1.5"}, {false, false, ""}};
  for (const auto& [name, value, caption] : cases) {
    TVariable variable;
    variable.SetShowIcon(false);
    variable.SetName("Speed");
    variable.SetValue(1.5);
    variable.SetShowName(name);
    variable.SetShowValue(value);
    EXPECT_EQ(variable.GetCaption(), caption);
    EXPECT_EQ(variable.GetShowIcon(), !name && !value);
  }
}

TEST(TVariable, FollowsItsValueNameAndFormat) {
  TVariable variable;
  variable.BeginLoading();
  variable.setObjectName("v");
  variable.setProperty("Value", 3.0);
  variable.setProperty("Caption", "v=99");
  variable.Loaded();
  EXPECT_EQ(variable.GetCaption(), "v=3");
  variable.SetValue(12.345);
  EXPECT_EQ(variable.GetCaption(), "v=12.345");
  variable.GetValueFormat()->SetFormat(TNumberFormat::ffFixed);
  EXPECT_EQ(variable.GetCaption(), "v=12.35");
  variable.SetValue(kNan);
  EXPECT_EQ(variable.GetCaption(), "v=NAN");
  variable.setObjectName("w");
  variable.SetValue(2.0);
  EXPECT_EQ(variable.property("Caption"), "w=2.00");
}

TEST(TVariable, GrowsWithItsTextOnceControlIsBackInTheEventLoop) {
  QWidget form;
  auto* variable = new TVariable(&form);
  const int width = variable->width();
  for (int i = 0; i < 3; ++i) variable->SetValue(123.456);
  QCoreApplication::sendPostedEvents(variable);
  EXPECT_GT(variable->width(), width);
  EXPECT_EQ(variable->size(), variable->sizeHint());
}

}  // namespace
