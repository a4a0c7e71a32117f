#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QProcess>
#include <set>

#include "components/channels/Datachannel.h"
#include "components/graphing/Graph.h"
#include "components/package/Panel.h"
#include "tests/support/Testsupport.h"

namespace {

using testing::ElementsAre;

const QByteArray kForm =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ui version=\"4.0\">\n <class>Panel</class>\n"
    " <widget class=\"QWidget\" name=\"Panel\">\n"
    "  <property name=\"geometry\"><rect><x>0</x><y>0</y><width>800</width><height>600</height>"
    "</rect></property>\n"
    "  <widget class=\"TDataChannel\" name=\"speed\">\n"
    "   <property name=\"geometry\"><rect><x>10</x><y>10</y><width>80</width><height>24</height>"
    "</rect></property>\n"
    "   <property name=\"InitialValue\"><double>10</double></property>\n"
    "   <property name=\"Data.DataValues\" stdset=\"0\"><string>%1</string></property>\n"
    "  </widget>\n"
    "  <widget class=\"TKorvalGraph\" name=\"plot\">\n"
    "   <property name=\"geometry\"><rect><x>10</x><y>60</y><width>300</width><height>200</height>"
    "</rect></property>\n"
    "   <property name=\"VerticalAx.Title.Caption\" stdset=\"0\"><string>m/s</string></property>\n"
    "  </widget>\n"
    "%2 </widget>\n</ui>\n";

/// Runs Qt Designer with the plug-in on a form; see TProbe for the steps.
QJsonObject RunDesigner(const QString& form, const QByteArray& steps) {
  const QString script = WriteTestFile("steps", steps);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_PLUGIN_PATH", BuiltFile("") + ':' + BuiltFile("tests"));
  environment.insert("VELMORA_PROBE", script);
  // Neither reads nor changes what the user has set in it.
  environment.insert("HOME", TestFolder());
  environment.insert("XDG_CONFIG_HOME", TestFolder());
  environment.insert("XDG_RUNTIME_DIR", TestFolder());
  QProcess designer;
  designer.setProcessEnvironment(environment);
  designer.setProcessChannelMode(QProcess::MergedChannels);
  designer.start(QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/designer", {form});
  EXPECT_TRUE(designer.waitForFinished(120'000)) << designer.errorString().toStdString();
  const QByteArray log = designer.readAll();
  EXPECT_EQ(log.toStdString(), "");
  EXPECT_EQ(designer.exitStatus(), QProcess::NormalExit);
  QFile report(script);
  EXPECT_TRUE(report.open(QIODevice::ReadOnly));
  return QJsonDocument::fromJson(report.readAll()).object();
}

/// The rows of a list as forms keep them.
QString Rows(const std::vector<double>& values) {
  TDataChannel channel;
  for (std::size_t i = 0; i < values.size(); ++i) {
    channel.SetTimeAndValue(static_cast<double>(i), values[i]);
  }
  return channel.GetData()->property("DataValues").toString();
}

/// A component of every class, named after it, none above another.
QString OneOfEach() {
  QString widgets;
  int place = 0;
  for (const TComponentClass& component : ComponentClasses()) {
    widgets += QStringLiteral(
                   "  <widget class=\"%1\" name=\"%2\">\n   <property name=\"geometry\"><rect>"
                   "<x>%3</x><y>%4</y><width>70</width><height>40</height></rect></property>\n"
                   "  </widget>\n")
                   .arg(component.Name, component.Name.toLower())
                   .arg(80 * (place % 10))
                   .arg(280 + 50 * (place / 10));
    ++place;
  }
  return widgets;
}

/// Presses every button of these components.
QByteArray PressAll() {
  QByteArray steps;
  for (const TComponentClass& component : ComponentClasses()) {
    const std::unique_ptr<QWidget> sample(component.Make(nullptr));
    ForEachPublished(*sample, [&](const TPublished& published) {
      if (!published.Path.endsWith(QLatin1String(".Click"))) return;
      steps += "press " + component.Name.toLower().toUtf8() + ' ' + published.Path.toUtf8() + '\n';
    });
  }
  return steps;
}

TEST(GlDesigner, ShowsTheComponentsAndSavesWhatIsTypedIntoTheirSubObjects) {
  const QString file = WriteTestFile(
      "p.ui", QString::fromUtf8(kForm).arg(Rows({3.0, 4.0, 5.0}), OneOfEach()).toUtf8());
  const QByteArray steps =
      "type plot HorizontalAx.Title.Caption Time\n"
      "type speed GraphLink.Graph plot\n"
      "press speed ShiftToInitial.Click\n" +
      PressAll() + "picture " + BuiltFile("designer.png").toUtf8() + "\nsave\n";
  const QJsonObject report = RunDesigner(file, steps);

  QString answers;
  for (const QJsonValue& answer : report["answers"].toArray()) answers += answer.toString() + '\n';
  EXPECT_EQ(answers.toStdString(), QByteArray(steps).replace("\n", ": done\n").toStdString());

  // Every component stands on its page, with an icon of its own.
  const QJsonObject palette = report["palette"].toObject();
  std::set<QString> icons;
  for (const TComponentClass& component : ComponentClasses()) {
    SCOPED_TRACE(component.Name.toStdString());
    const QJsonValue icon = palette["Velmora " + component.Page].toObject()[component.Name];
    EXPECT_FALSE(icon.toString().isEmpty());
    icons.insert(icon.toString());
    // The form shows it, whether it has a face or not.
    EXPECT_TRUE(report["shown"].toObject()[component.Name.toLower()].toBool());
  }
  EXPECT_EQ(icons.size(), ComponentClasses().size());

  // The running panel hides the component that has no face.
  QStringList faults;
  const auto panel = TPanel::Load(file, &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  const auto* channel = panel->Root()->findChild<TDataChannel*>("speed");
  auto* graph = panel->Root()->findChild<TKorvalGraph*>("plot");
  ASSERT_TRUE(channel && graph);
  EXPECT_FALSE(channel->isVisibleTo(panel->Root()));
  EXPECT_TRUE(graph->isVisibleTo(panel->Root()));

  EXPECT_EQ(graph->GetHorizontalAx()->GetTitle()->GetCaption(), "Time");
  EXPECT_EQ(graph->GetVerticalAx()->GetTitle()->GetCaption(), "m/s");
  EXPECT_EQ(const_cast<TDataChannel*>(channel)->GetGraphLink()->GetGraph(), graph);
  // The button has moved another property: from the mean 4 to 10.
  EXPECT_EQ(channel->GetShiftConstant(), 6.0);
  EXPECT_EQ(channel->GetData()->Count(), 3);
}

}  // namespace
