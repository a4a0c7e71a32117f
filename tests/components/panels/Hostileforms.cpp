#include <sys/stat.h>

#include "components/comms/Qlxxml.h"
#include "components/controls/Imagecontrol.h"
#include "components/panels/Formwidgets.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A folder with all that a form may wish for, in it and beside it.
QString PanelFolder() {
  const QDir top(TestFolder());
  top.mkpath("panel/folder");
  const QString folder = top.filePath("panel");
  QImage picture(3, 2, QImage::Format_RGB32);
  picture.fill(Qt::red);
  for (const char* name : {"panel/inside.png", "outside.png"}) {
    EXPECT_TRUE(picture.save(top.filePath(name)));
  }
  EXPECT_TRUE(QFile::link(top.filePath("outside.png"), folder + "/link.png"));
  EXPECT_EQ(::mkfifo(QFile::encodeName(folder + "/pipe").constData(), 0600), 0);
  EXPECT_EQ(::mknod(QFile::encodeName(folder + "/socket").constData(), S_IFSOCK | 0600, 0), 0);
  WriteTestFile("panel/drawing.svg",
                "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
  return folder;
}

/// Each form of tests/data/forms gives the faults and the wishes that stand beside it, what is left
/// of it can be shown, and nothing is written, in its folder or in the one above it.
TEST(Hostileforms, OpenNothingAndSayWhatIsWrong) {
  const QString folder = PanelFolder();
  const QDir forms(SourceFile("tests/data/forms"));
  const QStringList names = forms.entryList({"*.ui"});
  ASSERT_GT(names.size(), 10);
  for (const QString& name : names) {
    SCOPED_TRACE(name.toStdString());
    const QString copy = folder + '/' + name;
    ASSERT_TRUE(QFile::copy(forms.filePath(name), copy));
    const auto entries = [&folder] {
      return QDir(folder + "/..").entryList(QDir::Files | QDir::Hidden) +
             QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    };
    const QStringList before = entries();
    QStringList lines;
    const auto panel = TPanel::Load(copy, &lines);
    for (const TWish& wish : panel ? panel->Wishes() : TWishes()) lines << "wish: " + wish.Text;
    QString told = lines.join('\n') + '\n';
    told.replace(copy, "FORM").replace(TestFolder(), "ABOVE");
    EXPECT_EQ(told.toStdString(), TestData("forms/" + QFileInfo(name).baseName() + ".txt"));
    EXPECT_EQ(entries(), before);
    if (!panel) continue;
    for (const auto* component : panel->Root()->findChildren<TComponentControl*>()) {
      EXPECT_FALSE(component->IsLoading());
    }
    // What is wrong stays in the file until there is something better.
    QStringList faults, again;
    EXPECT_TRUE(TPanel::Load(copy, &faults));
    EXPECT_TRUE(TPanel::FromText(panel->Text(), copy, &again));
    EXPECT_LE(again.size(), faults.size()) << again.join('\n').toStdString();
    panel->Root()->resize(300, 200);
    EXPECT_FALSE(panel->Root()->grab().isNull());
    if (name == QLatin1String("pictures.ui") || name == QLatin1String("richtexts.ui")) {
      auto& label = Child<QLabel>(*panel->Root(), "inside");
      label.adjustSize();
      EXPECT_EQ(CountPixels(label.grab().toImage(), Qt::red), 3 * 2);
    }
  }
}

TEST(Hostileforms, AreOpenedFromOrdinaryFilesOnly) {
  const QString folder = PanelFolder();
  const std::pair<QString, const char*> cases[] = {
      {folder + "/pipe", "it is no file"},
      {folder + "/socket", "it is no file"},
      {folder, "it is a folder"},
      {"/dev/zero", "it is no file"},
      {folder + "/gone.ui", "No such file or directory"}};
  for (const auto& [file, why] : cases) {
    QStringList faults;
    EXPECT_FALSE(TPanel::Load(file, &faults));
    EXPECT_THAT(faults, ElementsAre("Cannot read " + file + ": " + why));
  }
}

/// A library in a folder of plug-ins runs as soon as it is loaded.
TEST(Hostileforms, LoadNoPlugins) {
  const QString folder = TestFolder() + "/designer";
  ASSERT_TRUE(QDir().mkpath(folder));
  const QString plugins = QLibraryInfo::path(QLibraryInfo::PluginsPath);
  ASSERT_TRUE(QFile::copy(plugins + "/imageformats/libqgif.so", folder + "/libintruder.so"));
  QCoreApplication::addLibraryPath(TestFolder());
  EXPECT_TRUE(LoadSoundForm("<widget class=\"QLabel\" name=\"l\"/>\n"));
  QFile mapped("/proc/self/maps");
  ASSERT_TRUE(mapped.open(QIODevice::ReadOnly));
  EXPECT_FALSE(mapped.readAll().contains("libintruder"));
  EXPECT_TRUE(QCoreApplication::libraryPaths().contains(TestFolder()));
  QCoreApplication::removeLibraryPath(TestFolder());
}

/// A tool tip with tags would be a rich text, and open what it names.
TEST(Hostileforms, WhatAFileIsCalledIsShownAsItIs) {
  const auto panel = LoadSoundForm(
      "<widget class=\"TImageControl\" name=\"i\"><property name=\"ImageFile\"><string>"
      "&lt;img src='pipe'&gt;</string></property></widget>\n"
      "<widget class=\"THyperlink\" name=\"h\"><property name=\"URL\"><string>"
      "&lt;img src='pipe'&gt;</string></property></widget>\n");
  for (const char* name : {"i", "h"}) {
    const QString tip = Child<QWidget>(*panel->Root(), name).toolTip();
    EXPECT_THAT(tip.toStdString(), HasSubstr("&lt;img"));
  }
  auto& image = Child<TImageControl>(*panel->Root());
  image.SetImageFile(QString(900'000, 'x'));
  EXPECT_LT(image.Fault().size(), 1000);
}

/// Widgets that set each other off, through what the connections say.
TEST(Hostileforms, AChainThatComesBackIsCutAndSaidOnce) {
  const QString form =
      FormOf(R"(<widget class="TXMLFileClient" name="file"/>
<widget class="QCheckBox" name="a"/>
<widget class="QCheckBox" name="b"/><widget class="QSpinBox" name="s"/>
<widget class="QSpinBox" name="t"><property name="maximum"><number>5</number></property></widget>
)",
             {"a toggled(bool) b toggle()", "b toggled(bool) a toggle()",
              "s valueChanged(int) t setValue(int)", "t valueChanged(int) s setValue(int)",
              "file OnStatusText(QString) file Open()"});
  QStringList faults;
  const auto panel = TPanel::FromText(form, "p.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_THAT(faults, ElementsAre());
  const auto told = [](const char* who) {
    QCoreApplication::processEvents();
    const QString text = TakeMessages().join('\n');
    const QString end = ": it leads back to where it began, and is taken out";
    EXPECT_EQ(text, *who ? "p.ui:" + QString(who) + end : QString());
  };
  for (int click = 0; click < 2; ++click) Child<QCheckBox>(*panel->Root(), "a").click();
  told("11: connection from a to b");
  // One that follows the other, which has a limit, is corrected.
  auto& free = Child<QSpinBox>(*panel->Root(), "s");
  free.setValue(9);
  EXPECT_EQ(free.value(), 5);
  told("");
  for (int time = 0; time < 2; ++time) Child<TXMLFileClient>(*panel->Root()).Open();
  told("15: connection from file to file");
}

}  // namespace
