

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Graph.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testing.h"

namespace {

using testing::HasSubstr;

/// One of the form's faults, as the user reads them.
std::string Joined(const QStringList& faults) { return faults.join('\n').toStdString(); }

TEST(Panelfaults, AValueTakesThePlaceOfOneThatWasRefused) {
  QStringList faults;
  const auto panel = LoadForm(
      R"(<widget class="TVariable" name="v"><property name="Value"><double>much</double></property>
</widget>
)",
      &faults);
  EXPECT_EQ(faults.size(), 1);
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("much"));
  panel->Root()->findChild<TVariable*>("v")->SetValue(2.0);
  faults.clear();
  const auto again = TPanel::FromText(panel->Text(), "p.ui", &faults);
  EXPECT_EQ(Joined(faults), "");
  EXPECT_EQ(again->Root()->findChild<TVariable*>("v")->GetValue(), 2.0);
}

TEST(Panelfaults, TwoComponentsOfOneNameKeepTheirOwnProperties) {
  QStringList faults;
  QString widgets;
  for (const char* value : {"1", "2"}) {
    widgets += QStringLiteral(
                   "<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\">"
                   "<double>%1</double></property></widget>\n")
                   .arg(value);
  }
  const auto panel = LoadForm(widgets, &faults);
  EXPECT_EQ(Joined(faults), "p.ui:7: v (TVariable): the name is used twice");
  ASSERT_EQ(panel->Components().size(), 1U);
  const std::string text = panel->Text().toStdString();
  EXPECT_LT(text.find("<double>1</double>"), text.find("<double>2</double>"));
}

/// Searching for each name, and for circles from each component, would take hours.
TEST(Panelfaults, ManyClientsAreFoundAndEachCircleIsOpenedOnce) {
  constexpr int kCount = 2000;
  QString widgets;
  for (int i = 0; i < kCount; ++i) {
    QString clients;
    for (int step = 1; step <= 50; ++step) {
      clients += QStringLiteral("<string>v%1</string>").arg((i + step) % kCount);
    }
    widgets += QStringLiteral(
                   "<widget class=\"TVariable\" name=\"v%1\">"
                   "<property name=\"ClientControls.Components\"><stringlist>%2"
                   "</stringlist></property></widget>\n")
                   .arg(i)
                   .arg(clients);
  }
  QStringList faults;
  const auto panel = LoadForm(widgets, &faults);
  ASSERT_TRUE(panel);
  EXPECT_EQ(panel->Components().size(), static_cast<std::size_t>(kCount));
  // Of the last fifty, one more client each lies beyond the end: 1 + 2 + ... + 50.
  EXPECT_EQ(faults.size(), 1001);
  EXPECT_EQ(faults.back(), "p.ui: there are 275 faults more");
  const auto* first = panel->Root()->findChild<TVariable*>("v0");
  ASSERT_TRUE(first);
  EXPECT_FALSE(first->PointsTo(first));
}

TEST(Panelfaults, NestedElementsInsideAPropertyDoNotOverflow) {
  constexpr int kDepth = 1'000'000;
  QStringList faults;
  const auto panel = LoadForm("<widget class=\"TVariable\" name=\"v\"><property name=\"Value\">" +
                                  QString("<a>").repeated(kDepth) +
                                  QString("</a>").repeated(kDepth) + "</property></widget>\n",
                              &faults);
  ASSERT_TRUE(panel);
  EXPECT_EQ(Joined(faults), "p.ui:5: v (TVariable): property Value: '' is not a number");
}

}  // namespace
