#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMetaEnum>

#include "components/channels/Channelset.h"
#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/comms/Qlxmaster.h"
#include "components/comms/Qlxxml.h"
#include "components/graphing/Graph.h"
#include "components/panels/Panelwindow.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

template <class T>
T* Find(const TPanel& panel, const QString& name) {
  return panel.Root()->findChild<T*>(name);
}

TEST(Panel, SetsPropertiesAndResolvesNamesOnceEverythingIsThere) {
  QStringList faults;
  const auto panel = LoadForm(
      "<widget class=\"TDataChannel\" name=\"speed\">\n"
      " <property name=\"ScaleFactor\"><double>2.5</double></property>\n"
      " <property name=\"LimitMax\"><double>-5</double></property>\n"
      " <property name=\"LimitMin\"><double>-10</double></property>\n"
      " <property name=\"Options\"><set>TCustomDataChannel::coUseLimits|coSkipError</set>"
      "</property>\n"
      " <property name=\"GraphLink.Graph\" stdset=\"0\"><string>plot</string></property>\n"
      " <property name=\"ClientControls.Components\" stdset=\"0\"><stringlist><string>value"
      "</string></stringlist></property>\n"
      "</widget>\n"
      "<widget class=\"TVariable\" name=\"value\"/>\n"
      "<widget class=\"TKorvalGraph\" name=\"plot\">\n"
      " <property name=\"Color\"><string>#102030</string></property>\n"
      " <property name=\"HorizontalAx.Title.Caption\" stdset=\"0\"><string>t &lt; \xc3\xa4"
      "</string></property>\n</widget>\n",
      &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  auto* channel = Find<TDataChannel>(*panel, "speed");
  auto* graph = Find<TKorvalGraph>(*panel, "plot");
  ASSERT_TRUE(channel && graph);
  EXPECT_EQ(channel->GetScaleFactor(), 2.5);
  EXPECT_EQ(channel->GetLimitMin(), -10.0);
  EXPECT_EQ(channel->GetLimitMax(), -5.0);
  EXPECT_EQ(channel->GetGraphLink()->GetGraph(), graph);
  EXPECT_EQ(channel->GetClientControls()->Get(0), Find<TVariable>(*panel, "value"));
  EXPECT_FALSE(channel->IsLoading());
  EXPECT_EQ(graph->GetColor(), TColor::FromRgb(0x10, 0x20, 0x30));
  EXPECT_EQ(graph->GetHorizontalAx()->GetTitle()->GetCaption(), QString::fromUtf8("t < ä"));
}

TEST(Panel, ClientsOfRowsStartOnceEverythingIsThere) {
  const QString log = TestFolder() + "/log";
  QStringList faults;
  const auto panel = LoadForm(
      QStringLiteral(
          "<widget class=\"TXMLFileClient\" name=\"record\">\n"
          " <property name=\"Active\"><bool>true</bool></property>\n"
          " <property name=\"Logging\"><bool>true</bool></property>\n"
          " <property name=\"ChannelSource\"><string>rows</string></property>\n"
          " <property name=\"LogFile\"><string>%1</string></property>\n"
          " <property name=\"FileName\"><string>%2</string></property>\n</widget>\n"
          "<widget class=\"TQLXMasterClient\" name=\"device\">\n"
          " <property name=\"AutoConnect\"><bool>true</bool></property>\n"
          " <property name=\"ChSet.Item\" stdset=\"0\"><string>ChannelSet1</string></property>\n"
          " <property name=\"Port.PortNum\" stdset=\"0\"><string>COM16</string></property>\n"
          "</widget>\n<widget class=\"TChannelSource\" name=\"rows\"/>\n")
          .arg(log, SourceFile("examples/mast.packages")),
      &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  auto* record = Find<TXMLFileClient>(*panel, "record");
  EXPECT_TRUE(record->GetActive());
  EXPECT_TRUE(record->GetLogging());
  EXPECT_EQ(record->GetChannelSource(), Find<TChannelSource>(*panel, "rows"));
  EXPECT_EQ(Find<TQLXMasterClient>(*panel, "device")->GetPort()->GetPortNum(), "COM16");
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<property name=\"Active\""));
}

TEST(Panel, SaysInOneLineWhatIsWrongAndRunsTheRest) {
  QStringList faults;
  const auto panel = LoadForm(
      "<widget class=\"TNothing\" name=\"odd\"/>\n"
      "<widget class=\"TDataChannel\" name=\"a\">\n"
      " <property name=\"ScaleFactor\"><string>fast</string></property>\n"
      " <property name=\"Sharpness\"><double>1</double></property>\n"
      " <property name=\"GraphLink.Colour\" stdset=\"0\"><string>red</string></property>\n"
      " <property name=\"GraphLink.Graph\" stdset=\"0\"><string>gone</string></property>\n"
      " <property name=\"CaptionPos\"><enum>cpNowhere</enum></property>\n"
      " <property name=\"PointCount\"><number>7</number></property>\n"
      "</widget>\n"
      "<widget class=\"TVariable\" name=\"b\">\n"
      " <property name=\"ClientControls.Components\" stdset=\"0\"><stringlist><string>b</string>"
      "</stringlist></property>\n</widget>\n",
      &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(
      faults,
      ElementsAre(
          QString("p.ui:5: odd (TNothing): the class is unknown"),
          QString("p.ui:7: a (TDataChannel): property ScaleFactor: 'fast' is not a number"),
          QString("p.ui:8: a (TDataChannel): property Sharpness: TDataChannel has no property "
                  "Sharpness"),
          QString("p.ui:9: a (TDataChannel): property GraphLink.Colour: TGraphLink has no "
                  "property Colour"),
          QString("p.ui:11: a (TDataChannel): property CaptionPos: 'cpNowhere' is not one of the "
                  "names of TCaptionPos"),
          QString("p.ui:10: a (TDataChannel): property GraphLink.Graph: there is no component "
                  "gone that fits"),
          QString("p.ui:15: b (TVariable): property ClientControls: b would get its own values "
                  "back; circular references are not allowed")));
  EXPECT_EQ(Find<TDataChannel>(*panel, "a")->GetPointLimit(), 7);
  // What could not be set stays in the file.
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<string>fast</string>"));
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<string>gone</string>"));
}

TEST(Panel, MakesTheConnectionsOfAForm) {
  const QString connection = QStringLiteral(
      "<connection><sender>%1</sender><signal>%2</signal><receiver>%3</receiver><slot>%4</slot>"
      "<hints><hint type=\"sourcelabel\"><x>1</x></hint></hints></connection>\n");
  const QString form =
      FormOf(
          "<widget class=\"QCheckBox\" name=\"box\"/>\n<widget class=\"TDataChannel\" name=\"c\"/>"
          "<widget class=\"QLabel\" name=\"label\"/>\n")
          .replace("</ui>",
                   "<connections>\n" +
                       connection.arg("box", "toggled(bool)", "label", "setDisabled(bool)") +
                       connection.arg("box", "clicked()", "c", "ResetChannel()") +
                       connection.arg("box", "clicked()", "c", "Explode()") +
                       connection.arg("box", "burnt()", "c", "ResetChannel()") +
                       connection.arg("nobody", "clicked()", "c", "ResetChannel()") +
                       connection.arg("box", "clicked()", "label", "setDisabled(bool)") +
                       "</connections></ui>");
  QStringList faults;
  const auto panel = TPanel::FromText(form, "p.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(
      faults,
      ElementsAre(QString("p.ui:11: connection from box to c: TDataChannel has no slot "
                          "Explode()"),
                  QString("p.ui:12: connection from box to c: QCheckBox has no signal "
                          "burnt()"),
                  QString("p.ui:13: connection from nobody to c: there is no object nobody"),
                  QString("p.ui:14: connection from box to label: setDisabled(bool) does "
                          "not fit clicked()")));
  auto* channel = Find<TDataChannel>(*panel, "c");
  channel->SetValue(1.0);
  ASSERT_EQ(channel->GetPointCount(), 1);
  Find<QCheckBox>(*panel, "box")->click();
  EXPECT_EQ(channel->GetPointCount(), 0);
  EXPECT_FALSE(Find<QLabel>(*panel, "label")->isEnabled());
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<slot>Explode()</slot>"));
}

TEST(Panel, RelativeFileNamesAreMeantFromTheFolderOfTheForm) {
  WriteTestFile("rows.packages", "<data>\r\n</data>\r\n");
  const QString name = WriteTestFile(
      "p.ui", FormOf("<widget class=\"TXMLFileClient\" name=\"c\">\n"
                     "<property name=\"FileName\"><string>rows.packages</string></property>\n"
                     "<property name=\"role\" stdset=\"0\"><string>input</string></property>\n"
                     "</widget>\n")
                  .toUtf8());
  QStringList faults;
  const auto panel = TPanel::Load(name, &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  auto* client = Find<TXMLFileClient>(*panel, "c");
  client->SetActive(true);
  EXPECT_EQ(client->GetStatus(), "File 'rows.packages' opened for reading");
  EXPECT_EQ(client->GetFileName(), "rows.packages");
  // A name that the class does not have, and the file says so, is for style sheets and the like.
  EXPECT_EQ(client->property("role"), "input");
}

TEST(Panel, RefusesWhatIsNoForm) {
  const struct {
    QString text;
    const char* fault;
  } cases[] = {
      {"", "p.ui: line 1: "},
      {"<html/>", "p.ui: line 1: this is no form file"},
      {"<ui>\n</ui>", "there is no widget in it"},
      {"<ui>\n<widget class=\"QWidget\" name=\"a\">\n", "p.ui: line 3: "},
      {"<!DOCTYPE x [<!ENTITY a \"b\">]>\n<ui/>", "no document type definition"},
      {"<ui>" + QString("<widget class=\"QWidget\">").repeated(5000), "nested too deep"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    QStringList faults;
    EXPECT_FALSE(TPanel::FromText(c.text, "p.ui", &faults));
    ASSERT_EQ(faults.size(), 1);
    EXPECT_THAT(faults[0].toStdString(), HasSubstr(c.fault));
  }
}

/// What these properties do when they are set depends on files, servers and other properties.
bool Starts(const QString& path) {
  return path == QLatin1String("Active") || path == QLatin1String("Logging") ||
         path == QLatin1String("Statistics.StatData");
}

TEST(Panel, LoadUndoesSaveForEveryPropertyOfEveryClass) {
  for (const TComponentClass& component : ComponentClasses()) {
    SCOPED_TRACE(component.Name.toStdString());
    QStringList faults;
    const auto first = LoadForm(
        QStringLiteral("  <widget class=\"%1\" name=\"it\"/>\n").arg(component.Name), &faults);
    ASSERT_TRUE(first);
    EXPECT_THAT(faults, ElementsAre());
    ASSERT_EQ(first->Components().size(), 1U);
    QWidget& changed = *first->Components()[0].Component;
    int properties = 0;
    ForEachStored(changed, [&](const TPublished& published) {
      ++properties;
      if (!Starts(published.Path)) Change(published);
    });
    EXPECT_GT(properties, 3);
    const QString saved = first->Text();
    const auto second = TPanel::FromText(saved, "p.ui", nullptr);
    ASSERT_TRUE(second);
    EXPECT_EQ(StoredOf(*second->Components()[0].Component), StoredOf(changed));
    EXPECT_EQ(second->Text(), saved);
    TakeMessages();
  }
}

TEST(Panel, SavesNoCaptionThatAVariableMakesItself) {
  const auto panel = LoadForm("  <widget class=\"TVariable\" name=\"v\"/>\n", nullptr);
  Find<TVariable>(*panel, "v")->SetValue(3.0);
  ASSERT_EQ(Find<TVariable>(*panel, "v")->GetCaption(), "v=3");
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<double>3</double>"));
  EXPECT_THAT(panel->Text().toStdString(), Not(HasSubstr("Caption")));
}

TEST(Panel, SavesTheLastSamplesOfAChannel) {
  QStringList faults;
  const auto panel = LoadForm("  <widget class=\"TDataChannel\" name=\"c\"/>\n", &faults);
  for (int i = 0; i < 150; ++i) Find<TDataChannel>(*panel, "c")->SetTimeAndValue(i, 0.5 * i);
  const auto again = TPanel::FromText(panel->Text(), "p.ui", &faults);
  EXPECT_THAT(faults, ElementsAre());
  const TFloatList& data = *Find<TDataChannel>(*again, "c")->GetData();
  ASSERT_EQ(data.Count(), 100);
  EXPECT_EQ(data.GetValues(99, TFloatList::kTime), 149.0);
  EXPECT_EQ(data.GetValues(0, TFloatList::kValue), 25.0);
}

}  // namespace
