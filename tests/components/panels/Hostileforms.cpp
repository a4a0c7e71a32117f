#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLibraryInfo>
#include <QSpinBox>

#include "components/comms/Qlxxml.h"
#include "components/controls/Imagecontrol.h"
#include "components/panels/Formwidgets.h"
#include "tests/components/panels/Panelforms.h"
#include "tests/support/Testsupport.h"

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
    panel->Root()->resize(300, 200);
    EXPECT_FALSE(panel->Root()->grab().isNull());
    if (name == QLatin1String("pictures.ui")) {
      EXPECT_EQ(panel->Root()->findChild<QLabel*>("inside")->pixmap().size(), QSize(3, 2));
    }
  }
}

TEST(Hostileforms, AreOpenedFromOrdinaryFilesOnly) {
  const QString folder = PanelFolder();
  const struct {
    QString file;
    const char* why;
  } cases[] = {{folder + "/pipe", "it is no file"},
               {folder + "/socket", "it is no file"},
               {folder, "it is a folder"},
               {"/dev/zero", "it is no file"},
               {folder + "/gone.ui", "No such file or directory"}};
  for (const auto& c : cases) {
    QStringList faults;
    EXPECT_FALSE(TPanel::Load(c.file, &faults));
    EXPECT_THAT(faults, ElementsAre("Cannot read " + c.file + ": " + c.why));
  }
}

/// A library in a folder of plug-ins runs as soon as it is loaded.
TEST(Hostileforms, LoadNoPlugins) {
  const QString folder = TestFolder() + "/designer";
  ASSERT_TRUE(QDir().mkpath(folder));
  const QString plugins = QLibraryInfo::path(QLibraryInfo::PluginsPath);
  ASSERT_TRUE(QFile::copy(plugins + "/imageformats/libqgif.so", folder + "/libintruder.so"));
  QCoreApplication::addLibraryPath(TestFolder());
  QStringList faults;
  EXPECT_TRUE(LoadForm("<widget class=\"QLabel\" name=\"l\"/>\n", &faults));
  QFile mapped("/proc/self/maps");
  ASSERT_TRUE(mapped.open(QIODevice::ReadOnly));
  EXPECT_FALSE(mapped.readAll().contains("libintruder"));
  EXPECT_TRUE(QCoreApplication::libraryPaths().contains(TestFolder()));
  QCoreApplication::removeLibraryPath(TestFolder());
}

/// A tool tip with tags would be a rich text, and open what it names.
TEST(Hostileforms, WhatAFileIsCalledIsShownAsItIs) {
  QStringList faults;
  const auto panel = LoadForm(
      "<widget class=\"TImageControl\" name=\"i\"><property name=\"ImageFile\"><string>"
      "&lt;img src='pipe'&gt;</string></property></widget>\n"
      "<widget class=\"THyperlink\" name=\"h\"><property name=\"URL\"><string>"
      "&lt;img src='pipe'&gt;</string></property></widget>\n",
      &faults);
  ASSERT_TRUE(panel);
  for (const char* name : {"i", "h"}) {
    const QString tip = panel->Root()->findChild<QWidget*>(name)->toolTip();
    EXPECT_THAT(tip.toStdString(), HasSubstr("&lt;img"));
  }
  auto* image = panel->Root()->findChild<TImageControl*>("i");
  image->SetImageFile(QString(900'000, 'x'));
  EXPECT_LT(image->Fault().size(), 1000);
}

/// Widgets A and B that set each other off, through what the connections say.
TEST(Hostileforms, AChainThatComesBackIsCutAndSaidOnce) {
  const auto connected = [](const QString& widgets, const QString& connections) {
    return FormOf(widgets).replace("</ui>",
                                   "<connections>\n" + connections + "</connections></ui>");
  };
  const QString line =
      "<connection><sender>%1</sender><signal>%2</signal><receiver>%3</receiver><slot>%4</slot>"
      "</connection>\n";
  QStringList faults;
  const auto panel = TPanel::FromText(
      connected("<widget class=\"TXMLFileClient\" name=\"file\"/>\n"
                "<widget class=\"QCheckBox\" name=\"a\"/>\n<widget class=\"QCheckBox\" name=\"b\"/>"
                "<widget class=\"QSpinBox\" name=\"s\"/>\n<widget class=\"QSpinBox\" name=\"t\">"
                "<property name=\"maximum\"><number>5</number></property></widget>\n",
                line.arg("a", "toggled(bool)", "b", "toggle()") +
                    line.arg("b", "toggled(bool)", "a", "toggle()") +
                    line.arg("s", "valueChanged(int)", "t", "setValue(int)") +
                    line.arg("t", "valueChanged(int)", "s", "setValue(int)") +
                    line.arg("file", "OnStatusText(QString)", "file", "Open()")),
      "p.ui", &faults);
  ASSERT_TRUE(panel);
  EXPECT_EQ(faults.join('\n').toStdString(), "");
  auto* a = panel->Root()->findChild<QCheckBox*>("a");
  a->click();
  a->click();
  QCoreApplication::processEvents();
  EXPECT_THAT(TakeMessages(), ElementsAre("p.ui:11: connection from a to b: it leads back to where "
                                          "it began, and is taken out"));
  // One that follows the other, which has a limit, is corrected.
  panel->Root()->findChild<QSpinBox*>("s")->setValue(9);
  EXPECT_EQ(panel->Root()->findChild<QSpinBox*>("s")->value(), 5);
  QCoreApplication::processEvents();
  EXPECT_THAT(TakeMessages(), ElementsAre());
  auto* file = panel->Root()->findChild<TXMLFileClient*>("file");
  file->Open();
  file->Open();
  QCoreApplication::processEvents();
  EXPECT_THAT(TakeMessages(), ElementsAre("p.ui:15: connection from file to file: it leads back to "
                                          "where it began, and is taken out"));
}

}  // namespace
