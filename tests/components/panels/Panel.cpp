

#include "components/channels/Channelset.h"
#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/comms/Qlxxml.h"
#include "components/graphing/Graph.h"
#include "components/panels/Panelwindow.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Panel, SetsPropertiesAndResolvesNamesOnceEverythingIsThere) {
  const auto panel = LoadSoundForm(
      R"(<widget class="TDataChannel" name="speed">
 <property name="ScaleFactor"><double>2.5</double></property>
 <property name="LimitMax"><double>-5</double></property>
 <property name="LimitMin"><double>-10</double></property>
 <property name="Options"><set>TCustomDataChannel::coUseLimits|coSkipError</set></property>
 <property name="GraphLink.Graph" stdset="0"><string>plot</string></property>
 <property name="ClientControls.Components" stdset="0"><stringlist><string>value</string></stringlist></property>
</widget>
<widget class="TVariable" name="value"/>
<widget class="TKorvalGraph" name="plot">
 <property name="Color"><string>#102030</string></property>
 <property name="HorizontalAx.Title.Caption" stdset="0"><string>t &lt; ä</string></property>
</widget>
)");
  auto& channel = Child<TDataChannel>(*panel->Root(), "speed");
  auto& graph = Child<TKorvalGraph>(*panel->Root(), "plot");
  TAxisTitle& title = *graph.GetHorizontalAx()->GetTitle();
  EXPECT_EQ(channel.GetScaleFactor(), 2.5);
  EXPECT_EQ(channel.GetLimitMin(), -10.0);
  EXPECT_EQ(channel.GetLimitMax(), -5.0);
  EXPECT_EQ(channel.GetOptions().toInt(), 3);
  EXPECT_EQ(channel.GetGraphLink()->GetGraph(), &graph);
  EXPECT_EQ(channel.GetClientControls()->Get(0), &Child<TVariable>(*panel->Root(), "value"));
  EXPECT_FALSE(channel.IsLoading());
  EXPECT_EQ(graph.GetColor(), TColor::FromRgb(0x10, 0x20, 0x30));
  EXPECT_EQ(title.GetCaption(), QString::fromUtf8("t < ä"));
  // No file holds these characters.
  title.SetCaption(QString("t\1") + QChar(0xfffe) + QChar(0xffff));
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<string>t\?\?\?</string>"));
}

TEST(Panel, MakesTheConnectionsOfAForm) {
  const QString form = FormOf(
      R"(<widget class="QCheckBox" name="box"/><widget class="QLineEdit" name="line"/>
<widget class="TDataChannel" name="c"/><widget class="QLabel" name="label"/>
)",
      {"box toggled(bool) label setDisabled(bool)", "box clicked() c ResetChannel()",
       "box clicked() c Explode()", "box burnt() c ResetChannel()",
       "nobody clicked() c ResetChannel()", "box clicked() label setDisabled(bool)",
       "line textChanged(QString) label setText(QString)"});
  QStringList faults;
  const auto panel = TPanel::FromText(form, "p.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_EQ(faults.join('\n').toStdString(),
            R"(p.ui:11: connection from box to c: TDataChannel has no slot Explode()
p.ui:12: connection from box to c: QCheckBox has no signal burnt()
p.ui:13: connection from nobody to c: there is no object nobody
p.ui:14: connection from box to label: setDisabled(bool) does not fit clicked())");
  auto& channel = Child<TDataChannel>(*panel->Root());
  channel.SetValue(1.0);
  ASSERT_EQ(channel.GetPointCount(), 1);
  Child<QCheckBox>(*panel->Root()).click();
  EXPECT_EQ(channel.GetPointCount(), 0);
  EXPECT_FALSE(Child<QLabel>(*panel->Root()).isEnabled());
  EXPECT_EQ(Child<QLabel>(*panel->Root()).textFormat(), Qt::PlainText);
  EXPECT_THAT(panel->Text().toStdString(), HasSubstr("<slot>Explode()</slot>"));
}

/// What a client starts needs names that stand behind that in its form.
TEST(Panel, RelativeFileNamesAreMeantFromTheFolderOfTheForm) {
  WriteTestFile("rows.packages", "<data>\r\n</data>\r\n");
  const QString name = WriteForm("p.ui", R"(<widget class="TXMLFileClient" name="c">
<property name="Logging"><bool>true</bool></property>
<property name="LogFile"><string>log</string></property>
<property name="FileName"><string>rows.packages</string></property>
<property name="role" stdset="0"><string>input</string></property>
</widget>
)");
  QStringList faults;
  const auto panel = TPanel::Load(name, &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  panel->Start();
  auto& client = Child<TXMLFileClient>(*panel->Root());
  EXPECT_TRUE(client.GetLogging());
  client.SetActive(true);
  EXPECT_EQ(client.GetStatus(), "File 'rows.packages' opened for reading");
  EXPECT_EQ(client.GetFileName(), "rows.packages");
  // A name that the class does not have, and the file says so, is for style sheets and the like.
  EXPECT_EQ(client.property("role"), "input");
}

/// The last of each group would take minutes or gigabytes if it were not noticed early.
TEST(Panel, RefusesWhatIsNoFormOrWouldExhaustTheProgram) {
  QString crowded = "<ui>\n<widget class=\"QWidget\" name=\"p\" ";
  for (int i = 0; i < 500'000; ++i) crowded += QStringLiteral("a%1=\">\" ").arg(i);
  const std::pair<QString, const char*> cases[] = {
      {"", "p.ui: line 1: "},
      {"<html/>", "p.ui: line 1: this is no form file"},
      {"<ui>\n</ui>", "there is no widget in it"},
      {"<ui>\n<widget class=\"QWidget\" name=\"a\">\n", "p.ui: line 3: "},
      {"<ui>\n<widget class=\"QWidget\" name=\"&a;\"/></ui>", "p.ui: line 2: "},
      {"<!DOCTYPE ui [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;\">]>\n<ui/>",
       "p.ui: line 1: a form has no document type definition"},
      {"<ui>" + QString("<widget class=\"QWidget\">").repeated(5000), "nested too deep"},
      {"<ui>" + QString("<a>").repeated(10'000'000 / 3), "p.ui: line 1: it is nested too deep"},
      {FormOf(QString("<widget class=\"QWidget\"/>\n").repeated(30'000)),
       "p.ui: line 20004: too many widgets"},
      {crowded + "/>\n</ui>", "p.ui: line 2: an element has more than 100 attributes"},
  };
  for (const auto& [text, fault] : cases) {
    SCOPED_TRACE(fault);
    QStringList faults;
    EXPECT_FALSE(TPanel::FromText(text, "p.ui", &faults));
    ASSERT_EQ(faults.size(), 1);
    EXPECT_THAT(faults[0].toStdString(), HasSubstr(fault));
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
    const auto first = LoadSoundForm(
        QStringLiteral("  <widget class=\"%1\" name=\"it\">\n  </widget>\n").arg(component.Name));
    ASSERT_EQ(first->Components().size(), 1U);
    const QString plain = first->Text();
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
    // What is set back to its default is in the form no more. Bounds swap, and a time axis chooses
    // a format: the second time all of them are free.
    const std::unique_ptr<QWidget> fresh(component.Make(nullptr));
    for (int pass = 0; pass < 2; ++pass) {
      ForEachStored(*second->Components()[0].Component, [&](const TPublished& published) {
        const TPublished standard = FindPublished(*fresh, published.Path, nullptr).value();
        published.Property.write(published.Object, standard.Property.read(standard.Object));
      });
    }
    EXPECT_EQ(second->Text().toStdString(), plain.toStdString());
    TakeMessages();
  }
}

/// The order is that of the file; older forms are read by these names.
TEST(Panel, EveryClassPublishesWhatFormsKnow) {
  QString published;
  for (const TComponentClass& component : ComponentClasses()) {
    const std::unique_ptr<QWidget> fresh(component.Make(nullptr));
    published += component.Name + ':';
    ForEachStored(*fresh, [&](const TPublished& one) { published += ' ' + one.Path; });
    published += '\n';
  }
  EXPECT_EQ(published.toStdString(), TestData("published.txt"));
}

/// It holds nearly all properties of all classes, one that a class has no more, and a reference to
/// nothing.
TEST(Panel, AFormOfAnOlderVersionIsReadWholeAndSavedAsItWas) {
  const QString text = QString::fromStdString(TestData("older.ui"));
  QStringList faults;
  const auto panel = TPanel::FromText(text, "older.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre("older.ui:16: itTSignalSimulator (TSignalSimulator): property "
                                  "Sharpness: TSignalSimulator has no property Sharpness",
                                  "older.ui:108: itTDataChannel (TDataChannel): property "
                                  "GraphLink.Graph: there is no component gone that fits"));
  EXPECT_GE(panel->Components().size(), 30u);
  EXPECT_EQ(panel->Text().toStdString(), text.toStdString());
}

}  // namespace
