#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>
#include <QLayout>
#include <QSpinBox>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Graph.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// One of the form's faults, as the user reads them.
std::string Joined(const QStringList& faults) { return faults.join('\n').toStdString(); }

TEST(Panelfaults, EachIsOneLineAndTheRestWorks) {
  const struct {
    QString widgets;
    const char* faults;
  } cases[] = {
      // Properties of the components.
      {"<widget class=\"TVariable\" name=\"v\">\n <property><double>1</double></property></widget>",
       "p.ui:6: v (TVariable): property without a name: TVariable has no property "},
      {"<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\"/></widget>",
       "p.ui:6: v (TVariable): property Value: '' is not a number"},
      {"<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\"><double>2</double>"
       "</property>\n <property name=\"Value\"><double>3</double></property></widget>",
       "p.ui:7: v (TVariable): property Value: it is given twice"},
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property name=\"PointCount\"><stringlist>"
       "<string>a</string><string>b</string></stringlist></property></widget>",
       "p.ui:6: c (TDataChannel): property PointCount: 'a, b' is not a whole number"},
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property name=\"PointCount\"><number>"
       "99999999999</number></property></widget>",
       "p.ui:6: c (TDataChannel): property PointCount: '99999999999' is not a whole number"},
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property name=\"PointCount\"><number>"
       "2147483647</number></property></widget>",
       "p.ui:6: c (TDataChannel): property PointCount: it does not take the value '2147483647'"},
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property name=\"Data.DataValues\"><string>"
       "spoilt</string></property></widget>",
       "p.ui:6: c (TDataChannel): property Data.DataValues: it does not take the value 'spoilt'"},
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property "
       "name=\"GraphLink\"><string>g</string>"
       "</property></widget>",
       "p.ui:6: c (TDataChannel): property GraphLink: it has properties of its own and no value"},
      // A component that names itself.
      {"<widget class=\"TDataChannel\" name=\"c\">\n <property name=\"GraphLink.Graph\"><string>c"
       "</string></property></widget>",
       "p.ui:6: c (TDataChannel): property GraphLink.Graph: there is no component c that fits"},
      // Names.
      {"<widget class=\"TVariable\"/>", "p.ui:5:  (TVariable): the component has no name"},
      {"<widget name=\"x\"/>", "p.ui:5: x (): the class is unknown"},
      {"<widget class=\"TVariable\" name=\"v\"/>\n<widget class=\"TKorvalGraph\" name=\"v\"/>",
       "p.ui:6: v (TKorvalGraph): the name is used twice"},
      // Properties of the toolkit.
      {"<widget class=\"QSpinBox\" name=\"s\">\n <property name=\"maximum\"><string>many</string>"
       "</property></widget>",
       "p.ui:6: s (QSpinBox): property maximum: 'many' is not a whole number"},
      {"<widget class=\"QLabel\" name=\"l\">\n <property name=\"frameShape\"><enum>QFrame::Round"
       "</enum></property></widget>",
       "p.ui:6: l (QLabel): property frameShape: 'QFrame::Round' is not one of the names of Shape"},
      {"<widget class=\"TKorvalGraph\" name=\"g\">\n <property name=\"geometry\"><string>large"
       "</string></property></widget>",
       "p.ui:6: g (TKorvalGraph): property geometry: a string is not a QRect"},
      {"<widget class=\"TKorvalGraph\" name=\"g\">\n <property name=\"geometry\"><rect><x>0</x>"
       "<y>0</y><width>2000000000</width><height>10</height></rect></property></widget>",
       "p.ui:6: g (TKorvalGraph): property geometry: it is too large for any screen"},
      {"<layout class=\"QVBoxLayout\" name=\"rows\">\n <property name=\"leftMargin\"><number>"
       "-2000000000</number></property></layout>",
       "p.ui:6: rows (QVBoxLayout): property leftMargin: it is too large for any screen"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.faults);
    QStringList faults;
    const auto panel =
        LoadForm(c.widgets + "<widget class=\"TVariable\" name=\"last\"/>\n", &faults);
    ASSERT_TRUE(panel);
    EXPECT_EQ(Joined(faults), c.faults);
    EXPECT_FALSE(panel->Components().empty());
    EXPECT_EQ(panel->Components().back().Name, "last");
    for (const auto* component : panel->Root()->findChildren<TComponentControl*>()) {
      EXPECT_FALSE(component->IsLoading());
    }
    // What is wrong stays in the file until there is something better.
    QStringList again;
    EXPECT_TRUE(TPanel::FromText(panel->Text(), "p.ui", &again));
    EXPECT_LE(again.size(), 1);
  }
}

TEST(Panelfaults, AValueTakesThePlaceOfOneThatWasRefused) {
  QStringList faults;
  const auto panel = LoadForm(
      "<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\"><double>much</double>"
      "</property>\n</widget>\n",
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
  const auto panel = LoadForm(
      "<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\"><double>1</double>"
      "</property></widget>\n"
      "<widget class=\"TVariable\" name=\"v\">\n <property name=\"Value\"><double>2</double>"
      "</property></widget>\n",
      &faults);
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

TEST(Panelfaults, AFormThatNamesItselfEnds) {
  QStringList faults;
  QString text = FormOf(
      "<widget class=\"TMyself\" name=\"m\"><widget class=\"TVariable\" name=\"v\"/></widget>\n");
  text.replace("</ui>",
               "<customwidgets><customwidget><class>TMyself</class><extends>TMyself</extends>"
               "<header>p.ui</header></customwidget></customwidgets></ui>");
  const auto panel = TPanel::FromText(text, "p.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_EQ(Joined(faults), "p.ui:5: m (TMyself): the class is unknown");
  EXPECT_EQ(panel->Components().size(), 1U);
}

TEST(Panelfaults, ManyAreCounted) {
  QStringList faults;
  const auto panel = LoadForm(
      "<widget class=\"TVariable\" name=\"v\">" +
          QString("<property name=\"Sharpness\"><double>1</double></property>\n").repeated(1) +
          QString("<property name=\"Value\"><double>x</double></property>\n").repeated(3000) +
          "</widget>\n",
      &faults);
  ASSERT_TRUE(panel);
  ASSERT_EQ(faults.size(), 1001);
  EXPECT_EQ(faults.back(), "p.ui: there are 2001 faults more");
}

/// Each of these would take minutes or gigabytes if it were not noticed early.
TEST(Panelfaults, WhatWouldExhaustTheProgramIsRefused) {
  QString crowded = "<ui>\n<widget class=\"QWidget\" name=\"p\" ";
  for (int i = 0; i < 500'000; ++i) crowded += QStringLiteral("a%1=\">\" ").arg(i);
  const struct {
    QString text;
    const char* fault;
  } cases[] = {
      {"<ui>" + QString("<a>").repeated(10'000'000 / 3), "p.ui: line 1: it is nested too deep"},
      {FormOf(QString("<widget class=\"QWidget\"/>\n").repeated(30'000)),
       "p.ui: line 20004: too many widgets"},
      {crowded + "/>\n</ui>", "p.ui: line 2: an element has more than 100 attributes"},
      {"<ui>\n<widget class=\"QWidget\" name=\"&a;\"/></ui>", "p.ui: line 2: "},
      {"<!DOCTYPE ui [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;\">]>\n<ui/>",
       "p.ui: line 1: a form has no document type definition"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    QStringList faults;
    EXPECT_FALSE(TPanel::FromText(c.text, "p.ui", &faults));
    ASSERT_EQ(faults.size(), 1);
    EXPECT_THAT(faults[0].toStdString(), StartsWith(c.fault));
  }
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

TEST(Panelfaults, AFileThatIsNotUtf8IsNotTakenApart) {
  QByteArray text = FormOf("<widget class=\"QLabel\" name=\"l\"/>\n").toUtf8();
  text.replace("name=\"l\"", "name=\"l\xe4nge\"");
  const QString file = WriteTestFile("latin.ui", text);
  QStringList faults;
  EXPECT_FALSE(TPanel::Load(file, &faults));
  EXPECT_THAT(faults, ElementsAre("Cannot read " + file + ": line 5 is no UTF-8 text"));
}

}  // namespace
