#include "viewer/window/Settings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <limits>
#include <random>

#include "tests/support/Testsupport.h"
#include "viewer/window/Inifile.h"

namespace {

/// Settings of which none has its default.
TSettings OtherSettings() {
  TSettings s;
  s.ModelFile = QStringLiteral("/data/brücke; neu/\"a\" = b\\c.mod");
  s.DataFile = QStringLiteral("C:\\measured\\run 2.dat");
  s.AnimationOn = true;
  s.AnimationSpeed = 111;
  s.RotX = 0.1 + 0.2;
  s.RotY = -1.0 / 3.0;
  s.ScaleX = 1.6;
  s.ScaleY = 2.5e-3;
  s.ScaleZ = -0.7;
  s.PanPosX = 1e-300;
  s.PanPosY = -12345678.9;
  s.ScaleType = 2;
  s.ViewScale = 20;
  s.ShowModel = false;
  s.CanSave = false;
  s.SavePath = QStringLiteral("/tmp/pictures, new");
  s.Left = -5;
  s.Top = 6;
  s.Width = 700;
  s.Height = 800;
  s.LabelsLeft = 9;
  s.LabelsTop = 10;
  s.LabelsWidth = 211;
  s.LabelsHeight = 212;
  s.LabelsVisible = true;
  s.CheckedLabels = QStringLiteral("0110");
  s.BackColor = TColor::FromRgb(1, 2, 3);
  s.ElementColor = TColor::FromRgb(4, 5, 6);
  s.NodeColor = TColor::FromRgb(7, 8, 9);
  s.FontColor = TColor::FromRgb(250, 251, 252);
  s.NodeShape = 1;
  return s;
}

const QByteArray kAllKeys =
    "[General]\nModelFile=/data/brücke; neu/\"a\" = b\\c.mod\n"
    "DataFile=C:\\measured\\run 2.dat\nAnimationOn=1\nAnimationSpeed=111\n"
    "RotX=0.30000000000000004\nRotY=-0.3333333333333333\nScaleX=1.6\nScaleY=0.0025\nScaleZ=-0.7\n"
    "PanPosX=1e-300\nPanPosY=-12345678.9\nScaleType=2\nViewScale=20\nShowModel=0\nCanSave=0\n"
    "SavePath=/tmp/pictures, new\n\n"
    "[Windows]\nLeft=-5\nTop=6\nWidth=700\nHeight=800\nLabelsLeft=9\nLabelsTop=10\n"
    "LabelsWidth=211\nLabelsHeight=212\nLabelsVisible=1\nCheckedLabels=0110\n\n"
    "[Colors]\nBackColor=197121\nElementColor=394500\nNodeColor=591879\nFontColor=16579578\n"
    "NodeShape=1\n";

QByteArray ReadAll(const QString& name) {
  QFile file(name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return file.readAll();
}

TEST(Settings, DocumentListsEveryKeyInItsOrder) {
  const QString document = Document("file-formats.md");
  const QByteArray example = Fence(document, "settings");
  EXPECT_EQ(UpdateSettings({}, ParseSettings(example)), example);

  const QStringList lines = QString::fromUtf8(example).split('\n');
  for (const QString& line : lines) {
    const QString key = line.section('=', 0, 0);
    if (!line.contains('=')) continue;
    EXPECT_TRUE(document.contains('`' + key + '`')) << key.toStdString();
  }
}

}  // namespace

TEST(Settings, AnEmptyFileGetsEveryKeyInItsOrder) {
  EXPECT_EQ(QString::fromUtf8(UpdateSettings({}, OtherSettings())), QString::fromUtf8(kAllKeys));
}

TEST(Settings, WhatIsSavedIsReadBackToTheLastBit) {
  const TSettings s = ParseSettings(kAllKeys);
  const TSettings o = OtherSettings();
  EXPECT_EQ(s.ModelFile, o.ModelFile);
  EXPECT_EQ(s.DataFile, o.DataFile);
  EXPECT_EQ(s.RotX, o.RotX);
  EXPECT_EQ(s.RotY, o.RotY);
  EXPECT_EQ(s.PanPosX, o.PanPosX);
  EXPECT_EQ(s.SavePath, o.SavePath);
  // Every other value: saving again changes nothing.
  EXPECT_EQ(UpdateSettings({}, s), kAllKeys);
  EXPECT_EQ(UpdateSettings(kAllKeys, s), kAllKeys);
}

TEST(Settings, KeepsEverythingElseInTheFile) {
  const QByteArray before =
      "\xef\xbb\xbf; mine\r\n\r\n[windows] ; big screen\r\n; about Left\r\n  left =  7\r\nTop=1\r\n"
      "no key at all\r\n[Mine]\r\nLeft=99\r\nx=\"quoted\"\r\n; "
      "tail\r\n\r\n\r\n[Windows]\r\nLeft=5\r\n"
      "; end";
  TIniFile ini(before);
  ini.SetValue("Windows", "Left", "42");
  ini.SetValue("Windows", "Height", "3");
  ini.SetValue("Mine", "y", "1");
  ini.SetValue("New", "z", "2");
  EXPECT_EQ(
      ini.Text(),
      "\xef\xbb\xbf; mine\r\n\r\n[windows] ; big screen\r\n; about Left\r\n  left =  "
      "42\r\nTop=1\r\n"
      "no key at all\r\nHeight=3\r\n[Mine]\r\nLeft=99\r\nx=\"quoted\"\r\n; tail\r\ny=1\r\n\r\n\r\n"
      "[Windows]\r\nLeft=5\r\n; end\r\n\r\n[New]\r\nz=2\r\n");
}

TEST(Settings, MissingSectionsAndKeysTakeTheirDefaults) {
  for (const char* text : {"", "garbage", "[General]\n[Windows]\n[Colors]\n", "[]\n]\n[\n=\n==\n",
                           "[Other]\nAnimationSpeed=3\nNodeColor=1\n", "AnimationOn=1\n"}) {
    SCOPED_TRACE(text);
    const TSettings s = ParseSettings(text);
    EXPECT_EQ(s.ModelFile, QString());
    EXPECT_FALSE(s.AnimationOn);
    EXPECT_EQ(s.AnimationSpeed, std::nullopt);
    EXPECT_EQ(s.RotX, std::nullopt);
    EXPECT_EQ(s.ScaleZ, 1.0);
    EXPECT_EQ(s.PanPosY, 0.0);
    EXPECT_EQ(s.ScaleType, 0);
    EXPECT_TRUE(s.ShowModel);
    EXPECT_TRUE(s.CanSave);
    EXPECT_EQ(s.Left, std::nullopt);
    EXPECT_EQ(s.LabelsVisible, std::nullopt);
    EXPECT_EQ(s.CheckedLabels, "111");
    EXPECT_EQ(s.BackColor.Value(), 0);
    EXPECT_EQ(s.ElementColor.Value(), 16777215);
    EXPECT_EQ(s.NodeColor.Value(), 65280);
    EXPECT_EQ(s.FontColor.Value(), 16777215);
    EXPECT_EQ(s.NodeShape, 0);
  }
}

TEST(Settings, TheOldPlaceOfTwoColorsIsReadAndTheNewOneWins) {
  const QByteArray old = "[General]\nBackColor=5\nElementColor=6\n";
  EXPECT_EQ(ParseSettings(old).BackColor.Value(), 5);
  EXPECT_EQ(ParseSettings(old).ElementColor.Value(), 6);
  EXPECT_EQ(ParseSettings(old + "[Colors]\nBackColor=7\n").BackColor.Value(), 7);
  EXPECT_EQ(ParseSettings(old + "[Colors]\nBackColor=7\n").ElementColor.Value(), 6);
  const QByteArray updated = UpdateSettings(old, TSettings());
  EXPECT_TRUE(updated.startsWith(old)) << updated.toStdString();
  EXPECT_TRUE(updated.contains("[Colors]\nBackColor=0\nElementColor=16777215\n"));
}

TEST(Settings, ScaleTypeStandsInTheFileOnceAsAnInteger) {
  TSettings s;
  s.ScaleType = 2;
  const QByteArray text = UpdateSettings({}, s);
  EXPECT_EQ(text.count("ScaleType"), 1);
  EXPECT_TRUE(text.contains("\nScaleType=2\n"));
}

TEST(Settings, WhatMakesNoSenseTakesItsDefault) {
  const TSettings s = ParseSettings(
      "[General]\nAnimationOn=yes\nAnimationSpeed=5e1\nRotX=nan\nRotY=1,5\nScaleX=inf\nScaleY=0\n"
      "ScaleZ=1e300\nPanPosX=-inf\nPanPosY=1e99\nScaleType=99999999999\nViewScale=\nCanSave=x\n"
      "[Windows]\nLeft=0x10\nTop=1.5\nWidth=--1\nHeight=12 3\nLabelsVisible=maybe\n"
      "[Colors]\nBackColor=-1\nElementColor=16777216\nNodeColor=4294967295\nFontColor=#fff\n");
  EXPECT_FALSE(s.AnimationOn);
  EXPECT_EQ(s.AnimationSpeed, std::nullopt);
  EXPECT_EQ(s.RotX, std::nullopt);
  EXPECT_EQ(s.RotY, std::nullopt);
  EXPECT_EQ(s.ScaleX, 1.0);
  EXPECT_EQ(s.ScaleY, 1.0);
  EXPECT_EQ(s.ScaleZ, 1.0);
  EXPECT_EQ(s.PanPosX, 0.0);
  EXPECT_EQ(s.PanPosY, 0.0);
  EXPECT_EQ(s.ScaleType, 0);
  EXPECT_EQ(s.ViewScale, std::nullopt);
  EXPECT_TRUE(s.CanSave);
  EXPECT_EQ(s.Left, std::nullopt);
  EXPECT_EQ(s.Top, std::nullopt);
  EXPECT_EQ(s.Width, std::nullopt);
  EXPECT_EQ(s.Height, std::nullopt);
  EXPECT_EQ(s.LabelsVisible, std::nullopt);
  EXPECT_EQ(s.BackColor, TColor::Black());
  EXPECT_EQ(s.ElementColor, TColor::White());
  EXPECT_EQ(s.NodeColor, TColor::Green());
  EXPECT_EQ(s.FontColor, TColor::White());
}

TEST(Settings, ANameWithALineEndDoesNotBecomeTwoLines) {
  TSettings s;
  s.ModelFile = QStringLiteral("/tmp/a\n[Colors]\nNodeColor=1");
  const TSettings read = ParseSettings(UpdateSettings({}, s));
  EXPECT_EQ(read.NodeColor, TColor::Green());
  EXPECT_EQ(read.ModelFile, QString());
}

TEST(Settings, SavingTwiceIsSavingOnceWhateverTheFileHolds) {
  std::mt19937 random(20240501);
  const QByteArrayList pieces = {
      "[General]", "[Windows", "]",        "\n",          "\r\n",         "Left", "=",          "1",
      ";",         " ",        "[colors]", "NodeShape=1", "\xef\xbb\xbf", "\r",   "ModelFile=a"};
  for (int i = 0; i < 500; ++i) {
    QByteArray text;
    for (int n = random() % 40; n > 0; --n) text += pieces[random() % pieces.size()];
    SCOPED_TRACE(text.toStdString());
    const QByteArray once = UpdateSettings(text, OtherSettings());
    EXPECT_EQ(UpdateSettings(once, OtherSettings()), once);
    EXPECT_EQ(UpdateSettings({}, ParseSettings(once)), kAllKeys);
  }
}

TEST(Settings, SavesOnlyIntoAnExistingWritableFile) {
  const QString missing = TestFolder() + "/missing.ini";
  SaveSettings(missing, OtherSettings());
  EXPECT_FALSE(QFileInfo::exists(missing));

  const QString file = WriteTestFile("a.ini", "");
  SaveSettings(file, OtherSettings());
  EXPECT_EQ(ReadAll(file), kAllKeys);
  EXPECT_EQ(LoadSettings(file).AnimationSpeed, 111);

  const QString readOnly = WriteTestFile("r.ini", "; mine\n");
  ASSERT_TRUE(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ReadUser));
  SaveSettings(readOnly, OtherSettings());
  EXPECT_EQ(ReadAll(readOnly), "; mine\n");

  EXPECT_EQ(QDir(TestFolder()).entryList(QDir::Files).size(), 2);  // no temporary file stays
  EXPECT_TRUE(TakeMessages().isEmpty());
}

TEST(Settings, LeavesAloneWhatCannotBeASettingsFile) {
  const QByteArray huge = "[General]\nAnimationSpeed=77\n" + QByteArray(1 << 20, ';');
  const QByteArray binary("[General]\nAnimationSpeed=77\n\0\1\2", 31);
  for (const QByteArray& content : {huge, binary}) {
    const QString file = WriteTestFile("a.ini", content);
    EXPECT_EQ(LoadSettings(file).AnimationSpeed, std::nullopt);
    SaveSettings(file, OtherSettings());
    EXPECT_EQ(ReadAll(file), content);
  }
  EXPECT_EQ(LoadSettings(TestFolder()).AnimationSpeed, std::nullopt);  // a folder
  SaveSettings(TestFolder(), OtherSettings());
}

TEST(Settings, TheFileStandsBesideTheExecutable) {
  EXPECT_EQ(SettingsFileFor("/opt/v a/velmora-animator"), "/opt/v a/velmora-animator.ini");
  EXPECT_EQ(SettingsFileFor("C:/v/velmora.2.exe"), "C:/v/velmora.2.ini");
}

TEST(Settings, ABareNameIsLookedForInTheFolder) {
  EXPECT_EQ(WithFolder("a.mod", "/opt"), "/opt/a.mod");
  EXPECT_EQ(WithFolder("b/a.mod", "/opt"), "b/a.mod");
  EXPECT_EQ(WithFolder("C:\\a.mod", "/opt"), "C:\\a.mod");
  EXPECT_EQ(WithFolder("", "/opt"), "");
}
