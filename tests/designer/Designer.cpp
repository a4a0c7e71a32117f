#include "components/channels/Datachannel.h"
#include "components/graphing/Graph.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/components/panels/Panelforms.h"

namespace {

using TValues = std::map<std::string, std::string>;

/// The property of a widget's place.
QString PlaceOf(const QRect& rect) {
  const auto text = QString("<x>%1</x><y>%2</y><width>%3</width><height>%4</height>");
  return PropertyOf("geometry", "rect",
                    text.arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height()));
}

/// Runs Qt Designer with the plug-in on forms; see TProbe for the steps.
QJsonObject RunDesigner(const QStringList& forms, const QByteArray& steps) {
  const QString script = WriteTestFile("steps", steps);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_PLUGIN_PATH", BuiltFile("") + ':' + BuiltFile("tests"));
  environment.insert("VELMORA_PROBE", script);
  // Neither reads nor changes what the user has set in it.
  for (const char* folder : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
    environment.insert(folder, TestFolder());
  }
  QProcess designer;
  designer.setProcessEnvironment(environment);
  designer.setProcessChannelMode(QProcess::MergedChannels);
  designer.start(QLibraryInfo::path(QLibraryInfo::BinariesPath) + "/designer", forms);
  EXPECT_TRUE(designer.waitForFinished(120'000)) << designer.errorString().toStdString();
  EXPECT_EQ(designer.readAll().toStdString(), "");
  EXPECT_EQ(designer.exitStatus(), QProcess::NormalExit);
  return QJsonDocument::fromJson(Contents(script)).object();
}

/// A component of every class, named after it, none above another.
QString OneOfEach() {
  QString widgets;
  int place = 0;
  for (const TComponentClass& component : ComponentClasses()) {
    const QRect rect(80 * (place % 10), 280 + 50 * (place / 10), 70, 40);
    widgets += WidgetOf(component.Name, component.Name.toLower(), PlaceOf(rect));
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
  const QString channelText = PlaceOf({10, 10, 80, 24}) +
                              PropertyOf("InitialValue", "double", "10") +
                              PropertyOf("Data.DataValues", "string", "0 3&#10;1 4&#10;2 5");
  const QString graphText =
      PlaceOf({10, 60, 300, 200}) + PropertyOf("VerticalAx.Title.Caption", "string", "m/s");
  const QString file =
      WriteForm("p.ui", PlaceOf({0, 0, 800, 600}) + WidgetOf("TDataChannel", "speed", channelText) +
                            WidgetOf("TKorvalGraph", "plot", graphText) + OneOfEach());
  const QByteArray steps =
      "type plot HorizontalAx.Title.Caption Time\n"
      "type speed GraphLink.Graph plot\n"
      "choose plot HorizontalAx.Scale asLog\n"
      "tick plot Anchors akLeft\n"
      "tick plot Anchors akTop\n"
      "press speed ShiftToInitial.Click\n" +
      PressAll() + "picture " + BuiltFile("designer.png").toUtf8() + "\nsave\n";
  const QJsonObject report = RunDesigner({file}, steps);

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
  EXPECT_EQ(faults, QStringList());
  auto& channel = Child<TDataChannel>(*panel->Root(), "speed");
  auto& graph = Child<TKorvalGraph>(*panel->Root(), "plot");
  EXPECT_FALSE(channel.isVisibleTo(panel->Root()));
  EXPECT_TRUE(graph.isVisibleTo(panel->Root()));
  EXPECT_EQ(graph.GetHorizontalAx()->GetTitle()->GetCaption(), "Time");
  EXPECT_EQ(graph.GetVerticalAx()->GetTitle()->GetCaption(), "m/s");
  EXPECT_EQ(graph.GetHorizontalAx()->GetScale(), TAxis::asLog);
  EXPECT_EQ(graph.property("Anchors").toInt(), 0);
  EXPECT_EQ(channel.GetGraphLink()->GetGraph(), &graph);
  // The button has moved another property: from the mean 4 to 10.
  EXPECT_EQ(channel.GetShiftConstant(), 6.0);
  EXPECT_EQ(channel.GetData()->Count(), 3);
}

/// As the toolkit's form loader takes it: enumerations without their scope, sets in any order.
std::string ToolkitValue(const TFormValue& value) {
  QStringList parts = value.Text.trimmed().split('|');
  for (QString& part : parts) part = part.section(QLatin1String("::"), -1);
  parts.removeAll(QStringLiteral("AlignTrailing"));  // another name of AlignRight
  parts.sort();
  return (parts + value.Items).join('|').toStdString();
}

/// A component as a panel reads it, before anything starts.
std::unique_ptr<QWidget> Read(const TComponentClass& component,
                              const std::vector<TFormFile::TProperty>& properties) {
  std::unique_ptr<QWidget> made(component.Make(nullptr));
  component.BeginLoading(made.get());
  for (int round = 0; round < 2; ++round) {
    for (const TFormFile::TProperty& property : properties) {
      const auto published = FindPublished(*made, property.Name, nullptr);
      if (!published) continue;
      published->Property.write(published->Object,
                                ReadFormValue(*published, property.Value, nullptr));
    }
  }
  return made;
}

/// Everything in a form but its title and the places of widgets.
TValues ValuesOf(const QString& text) {
  TFormFile form;
  QString error;
  EXPECT_TRUE(form.Parse(text, &error)) << error.toStdString();
  TValues result;
  for (const TFormFile::TWidget& widget : form.Widgets()) {
    const std::string name = widget.ClassName.toStdString() + ' ' + widget.Name.toStdString() + '.';
    const TComponentClass* component = FindComponentClass(widget.ClassName);
    if (component) {
      for (const auto& [path, value] : StoredOf(*Read(*component, widget.Properties))) {
        result.emplace(name + path, value);
      }
    }
    for (const TFormFile::TProperty& property : widget.Properties) {
      if (property.Name == "windowTitle" || property.Name == "geometry") continue;
      if (component &&
          (property.Name.contains('.') || IsOwnProperty(*component->Meta, property.Name)))
        continue;
      result.emplace(name + property.Name.toStdString(), ToolkitValue(property.Value));
    }
  }
  for (const TFormFile::TConnection& one : form.Connections()) {
    result.emplace((one.Sender + one.Signal + one.Receiver + one.Slot).toStdString(), "connected");
  }
  return result;
}

/// A form in which every stored property of every class differs from that of a new component. What
/// the other properties of a component move back stands alone in another one.
QString ChangedForm() {
  QString widgets;
  QString fixed;
  std::map<QString, TFormFile::TNewProperties> properties;
  const auto add = [&](const TComponentClass& component, const QString& onlyThis) {
    const QString name = component.Name.toLower() + QString::number(properties.size());
    widgets += WidgetOf(component.Name, name);
    const std::unique_ptr<QWidget> changed = Read(component, {});
    const TValues before = StoredOf(*changed);
    ForEachStored(*changed, [&](const TPublished& published) {
      if (onlyThis.isEmpty() || published.Path == onlyThis) Change(published);
    });
    const TValues after = StoredOf(*changed);
    QStringList same;
    ForEachStored(*changed, [&](const TPublished& published) {
      const std::string path = published.Path.toStdString();
      if (before.at(path) == after.at(path)) {
        same.append(published.Path);
      } else {
        properties[name].emplace_back(published.Path, WriteFormValue(published));
      }
    });
    return same;
  };
  for (const TComponentClass& component : ComponentClasses()) {
    for (const QString& moved : add(component, {})) {
      if (add(component, moved).contains(moved)) fixed += component.Name + '.' + moved;
    }
  }
  // It follows its channel without a timer.
  EXPECT_EQ(fixed, "TChannelValue.ChannelLink.UpdateInterval");
  TFormFile form;
  QString error;
  EXPECT_TRUE(form.Parse(FormOf(widgets), &error)) << error.toStdString();
  return form.Replaced([](const auto&, const auto&) { return false; },
                       [&](const TFormFile::TWidget& widget) { return properties[widget.Name]; });
}

void ExpectSame(const TValues& found, const TValues& wanted) {
  for (const auto& [name, value] : wanted) {
    const auto same = found.find(name);
    EXPECT_EQ(same == found.end() ? "nothing" : same->second, value) << name;
  }
  EXPECT_EQ(found.size(), wanted.size());
}

TEST(GlDesigner, LosesNothingOfAFormWhoseTitleIsChanged) {
  std::map<QString, TValues> before;
  const auto write = [&](const QString& name, const QString& text) {
    const QString form = WriteTestFile(name, text.toUtf8());
    before[form] = ValuesOf(text);
    return form;
  };
  const QString every = write("every.ui", ChangedForm());
  const QDir examples(SourceFile("examples/panels"));
  for (const QFileInfo& example : examples.entryInfoList({"*.ui"})) {
    write(example.fileName(), QString::fromUtf8(Contents(example.filePath())));
  }
  EXPECT_GT(before.size(), 4U);
  // What the properties do not take here, and one that the class does not have.
  const QString refused = write(
      "refused.ui",
      FormOf(WidgetOf("TFileReader", "reader", PropertyOf("FileName", "string", "missing.txt")) +
             WidgetOf("TDataChannel", "channel",
                      PropertyOf("GraphLink.UpdateInterval", "string", "often") +
                          PropertyOf("Newer.Name", "number", "7"))));
  QStringList forms;
  for (const auto& [form, values] : before) forms.append(form);

  std::map<QString, QString> once;
  for (const char* title : {"Once", "Again"}) {
    SCOPED_TRACE(title);
    const QByteArray step = QByteArray("retitle ") + title;
    EXPECT_EQ(RunDesigner(forms, step)["answers"].toArray()[0].toString(), step + ": done");
    for (const auto& [form, values] : before) {
      SCOPED_TRACE(form.toStdString());
      QString text = QString::fromUtf8(Contents(form));
      EXPECT_TRUE(text.contains(title));
      ExpectSame(ValuesOf(text), values);
      text.remove(title);
      EXPECT_EQ(once.emplace(form, text).first->second.toStdString(), text.toStdString());
    }
  }
  for (const char* kept : {">missing.txt<", ">often<", "\"Newer.Name\"", ">7<"}) {
    EXPECT_TRUE(once.at(refused).contains(kept)) << kept;
  }
  const std::pair<const char*, const char*> classes[] = {
      {"TKorvalGraph", "QWidget"},
      {"TLinkedLabel", "QLabel"},
      {"TDataSheet", "QTableView"},
      {"TValueEdit", "QAbstractSpinBox"},
      {"TOccurrenceHistogram", "TBasicHistogram"}};
  for (const auto& [name, base] : classes) {
    const QString entry = QStringLiteral("<class>%1</class>\n   <extends>%2</extends>");
    EXPECT_TRUE(once.at(every).contains(entry.arg(name, base))) << name;
  }
}

}  // namespace
