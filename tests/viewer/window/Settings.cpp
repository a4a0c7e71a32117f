#include "viewer/window/Settings.h"

#include "tests/support/Testing.h"
#include "viewer/window/Inifile.h"

namespace {

const QByteArray kAllKeys =
    "[General]\nModelFile=/data/brücke; neu/\"a\" = b\\c.mod\n"
    "DataFile=C:\\measured\\run 2.dat\nAnimationOn=1\nAnimationSpeed=111\n"
    "RotX=0.30000000000000004\nRotY=-0.3333333333333333\nScaleX=1.6\nScaleY=0.0025\nScaleZ=-0.7\n"
    "PanPosX=1e-300\nPanPosY=-12345678.9\nScaleType=2\nViewScale=20\nShowModel=0\nCanSave=0\n"
    "SavePath=/tmp/pictures, new\n\n"
    "[Windows]\nLeft=-5\nTop=6\nWidth=700\nHeight=800\nLabelsLeft=9\nLabelsTop=10\n"
    "LabelsWidth=211\nLabelsHeight=212\nLabelsVisible=1\nCheckedLabels=0110\n\n"
    "[Colors]\nBackColor=197121\nElementColor=394500\nNodeColor=591879\nFontColor=16579578\n"
    "NodeShape=1\n\n"
    "[Job]\nMoreFiles=/data/a.unv\t/data/b, c.csv\nFollowNeighbours=1\n";

/// Settings of which none has its default.
TSettings OtherSettings() { return ParseSettings(kAllKeys); }

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

TEST(Settings, WhatIsSavedIsReadBackToTheLastBit) {
  const TSettings s = OtherSettings();
  EXPECT_EQ(s.ModelFile, QStringLiteral("/data/brücke; neu/\"a\" = b\\c.mod"));
  EXPECT_EQ(s.DataFile, QStringLiteral("C:\\measured\\run 2.dat"));
  EXPECT_EQ(s.SavePath, QStringLiteral("/tmp/pictures, new"));
  EXPECT_EQ(s.CheckedLabels, "0110");
  EXPECT_EQ(s.MoreFiles, QStringList({"/data/a.unv", "/data/b, c.csv"}));
  EXPECT_EQ(std::tuple(s.RotX, s.RotY, s.ScaleX, s.ScaleY, s.ScaleZ, s.PanPosX, s.PanPosY),
            std::tuple(0.1 + 0.2, -1.0 / 3.0, 1.6, 2.5e-3, -0.7, 1e-300, -12345678.9));
  EXPECT_EQ(std::tuple(s.AnimationOn, s.ShowModel, s.CanSave, s.LabelsVisible),
            std::tuple(true, false, false, true));
  EXPECT_EQ(std::tuple(s.AnimationSpeed, s.ScaleType, s.ViewScale, s.NodeShape),
            std::tuple(111, 2, 20, 1));
  EXPECT_EQ(std::tuple(s.Left, s.Top, s.Width, s.Height), std::tuple(-5, 6, 700, 800));
  EXPECT_EQ(std::tuple(s.LabelsLeft, s.LabelsTop, s.LabelsWidth, s.LabelsHeight),
            std::tuple(9, 10, 211, 212));
  EXPECT_EQ(std::tuple(s.BackColor, s.ElementColor, s.NodeColor, s.FontColor),
            std::tuple(TColor::FromRgb(1, 2, 3), TColor::FromRgb(4, 5, 6), TColor::FromRgb(7, 8, 9),
                       TColor::FromRgb(250, 251, 252)));
  EXPECT_EQ(QString::fromUtf8(UpdateSettings({}, s)), QString::fromUtf8(kAllKeys));
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

TEST(Settings, WhatIsMissingOrMakesNoSenseTakesItsDefault) {
  const char* const texts[] = {
      "",
      "garbage",
      "[General]\n[Windows]\n[Colors]\n",
      "[]\n]\n[\n=\n==\n",
      "[Other]\nAnimationSpeed=3\nNodeColor=1\n",
      "AnimationOn=1\n",
      "[General]\nAnimationOn=yes\nAnimationSpeed=5e1\nRotX=nan\nRotY=1,5\nScaleX=inf\nScaleY=0\n"
      "ScaleZ=1e300\nPanPosX=-inf\nPanPosY=1e99\nScaleType=99999999999\nViewScale=\nCanSave=x\n"
      "[Windows]\nLeft=0x10\nTop=1.5\nWidth=--1\nHeight=12 3\nLabelsVisible=maybe\n"
      "[Colors]\nBackColor=-1\nElementColor=16777216\nNodeColor=4294967295\nFontColor=#fff\n"};
  // What has no default is not there.
  const QByteArray defaults =
      "[General]\nModelFile=\nDataFile=\nAnimationOn=0\nScaleX=1\nScaleY=1\nScaleZ=1\nPanPosX=0\n"
      "PanPosY=0\nScaleType=0\nShowModel=1\nCanSave=1\nSavePath=\n\n[Windows]\nCheckedLabels="
      "111\n\n"
      "[Colors]\nBackColor=0\nElementColor=16777215\nNodeColor=65280\nFontColor=16777215\n"
      "NodeShape=0\n\n[Job]\nMoreFiles=\nFollowNeighbours=0\n";
  for (const char* text : texts)
    EXPECT_EQ(UpdateSettings({}, ParseSettings(text)), defaults) << text;
}

TEST(Settings, TheOldPlaceOfTwoColorsIsReadAndTheNewOneWins) {
  const QByteArray old = "[General]\nBackColor=5\nElementColor=6\n";
  for (const auto& [added, back] : {std::pair("", 5), {"[Colors]\nBackColor=7\n", 7}}) {
    EXPECT_EQ(ParseSettings(old + added).BackColor.Value(), back);
    EXPECT_EQ(ParseSettings(old + added).ElementColor.Value(), 6);
  }
  TSettings lineEnd;
  lineEnd.ModelFile = QStringLiteral("/tmp/a\n[Colors]\nNodeColor=1");  // makes no second line
  const QByteArray updated = UpdateSettings(old, lineEnd);
  EXPECT_TRUE(updated.startsWith(old)) << updated.toStdString();
  EXPECT_TRUE(updated.contains("[Colors]\nBackColor=0\nElementColor=16777215\n"));
  EXPECT_EQ(ParseSettings(updated).NodeColor, TColor::Green());
  EXPECT_EQ(ParseSettings(updated).ModelFile, QString());
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
  EXPECT_EQ(Contents(file), kAllKeys);
  EXPECT_EQ(LoadSettings(file).AnimationSpeed, 111);

  const QString readOnly = WriteTestFile("r.ini", "; mine\n");
  ASSERT_TRUE(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ReadUser));
  SaveSettings(readOnly, OtherSettings());
  EXPECT_EQ(Contents(readOnly), "; mine\n");

  EXPECT_EQ(QDir(TestFolder()).entryList(QDir::Files).size(), 2);  // no temporary file stays
  EXPECT_TRUE(TakeMessages().isEmpty());
}

TEST(Settings, LeavesAloneWhatCannotBeASettingsFile) {
  const QByteArray key = "[General]\nAnimationSpeed=77\n";
  for (const QByteArray& content :
       {key + QByteArray(1 << 20, ';'), key + QByteArray("\0\1\2", 3), QByteArray()}) {
    const QString file = content.isNull() ? TestFolder() : WriteTestFile("a.ini", content);
    EXPECT_EQ(LoadSettings(file).AnimationSpeed, std::nullopt);
    SaveSettings(file, OtherSettings());
    EXPECT_EQ(Contents(file), content);
  }
}

TEST(Settings, TheFileStandsBesideTheExecutableAndSoDoBareNames) {
  EXPECT_EQ(SettingsFileFor("/opt/v a/velmora-animator"), "/opt/v a/velmora-animator.ini");
  EXPECT_EQ(SettingsFileFor("C:/v/velmora.2.exe"), "C:/v/velmora.2.ini");
  EXPECT_EQ(WithFolder("a.mod", "/opt"), "/opt/a.mod");
  for (const char* name : {"b/a.mod", "C:\\a.mod", ""}) EXPECT_EQ(WithFolder(name, "/opt"), name);
}

TEST(Settings, OfAFileOfAnotherVersionTheKnownIsTakenAndTheRestKept) {
  const QByteArray unknown = "[Camera]\nZoom=3\nRotY=9\n\n";
  const QByteArray other = unknown + QByteArray(kAllKeys)
                                         .replace("RotY=-0.3333333333333333\n", "Sharpness=3\n")
                                         .replace("NodeShape=1\n", "");
  TSettings known = OtherSettings();
  known.RotY.reset();
  known.NodeShape = 0;
  EXPECT_EQ(UpdateSettings({}, ParseSettings(other)), UpdateSettings({}, known));
  const QByteArray saved = UpdateSettings(other, OtherSettings());
  EXPECT_TRUE(saved.startsWith(unknown) && saved.contains("\nSharpness=3\n"));
  EXPECT_EQ(UpdateSettings({}, ParseSettings(saved)), kAllKeys);
}
