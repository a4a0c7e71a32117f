#include "viewer/window/Commandline.h"

#include "tests/support/Testing.h"

namespace {

const QByteArray kModel = "[Nodes]\n1 0 0 0\n2 3 4 0\n[Elements]\n1\n1 1 0 -1 2 1 2\n";
const QByteArray kData = "[F = 5]\n1 0 0 1\n2 1 0 0\n[F = 8]\n1 0 0 0\n2 0 1 0\n";

TCommandLine Parse(const QStringList& arguments) {
  return ParseCommandLine(QStringList("velmora-animator") + arguments);
}

/// The program itself, with other variables than those of a user without a display.
TRun RunAnimator(const QStringList& arguments, const QMap<QString, QString>& variables = {}) {
  return RunProgram("velmora-animator", arguments, variables);
}

const QMap<QString, QString> kNoSuchDisplay{{"DISPLAY", ":9871"}};

QStringList Pictures() {
  return QDir(TestFolder()).entryList({"*.png", "*.bmp"}, QDir::Files, QDir::Name);
}

QImage Picture(const QString& name) { return QImage(TestFolder() + '/' + name); }

}  // namespace

TEST(Commandline, TakesEveryOption) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData),
                ini = WriteTestFile("a.ini", "");
  const TCommandLine line =
      Parse({model, "--render", "p.png", data, "--frames", "12", "--size=640x480", "--view", "y",
             "--scale-type", "sum", "--settings", ini, "--animate"});
  EXPECT_THAT(
      QStringList({line.Fault, line.ModelFile, line.DataFile, line.SettingsFile, line.RenderFile}),
      testing::ElementsAre("", model, data, ini, "p.png"));
  EXPECT_EQ(line.Frames, 12);
  EXPECT_EQ(line.Size, QSize(640, 480));
  EXPECT_EQ(line.Rotation, (TVertex{90, 0, 0}));
  EXPECT_EQ(line.ScaleType, TScaleType::Sum);
  EXPECT_TRUE(line.Animate);
}

TEST(Commandline, PutsASwappedPairRight) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData);
  const std::pair<QStringList, QStringList> cases[] = {{{data, model}, {model, data}},
                                                       {{"none.dat", model}, {model, "none.dat"}},
                                                       {{model, model}, {model, model}},
                                                       {{data, data}, {data, data}},
                                                       {{data}, {data, ""}}};
  for (const auto& [given, taken] : cases) {
    const TCommandLine line = Parse(given);
    EXPECT_EQ(QStringList({line.ModelFile, line.DataFile}), taken) << given.join(' ').toStdString();
  }
}

TEST(Commandline, AnotherModelIsSeenWithoutThePanOfTheSettings) {
  const QString model = WriteTestFile("a.mod", kModel), other = WriteTestFile("b.mod", kModel);
  for (const QString& named : {model, other, QString()}) {
    TSettings settings;
    settings.ModelFile = named;
    settings.PanPosX = settings.PanPosY = 3.0;
    NameFiles(Parse({TestFolder() + "/./a.mod"}), settings);
    EXPECT_EQ(settings.PanPosX, named == model ? 3.0 : 0.0) << named.toStdString();
    EXPECT_EQ(settings.PanPosY, settings.PanPosX);
  }
}

TEST(Commandline, SaysInOneSentenceWhatIsWrong) {
  const QString model = WriteTestFile("a.mod", kModel),
                binary = WriteTestFile("a.png", QByteArray("\x89PNG\0", 5)),
                large = WriteTestFile("a.ini", QByteArray((1 << 20) + 1, ';'));
  const std::pair<QStringList, QString> cases[] = {
      {{"none.mod", "--render", "a.png"}, "Cannot read none.mod: there is no such file."},
      {{model, "none.dat", "--render", "a.png"}, "Cannot read none.dat: there is no such file."},
      {{"none.mod", "none.dat"}, ""},  // the window opens and says so
      {{"--settings", "none.ini"}, "Cannot read none.ini: there is no such file."},
      {{"--settings", "/dev/zero"}, "Cannot read /dev/zero: it is not a regular file."},
      {{"--settings", binary}, "Cannot read " + binary + ": it is not a text file."},
      {{"--settings", large}, "Cannot read " + large + ": it is larger than 1 MiB."},
      {{"a", "b", "c"}, "There are 3 file names; a model file and a data file are enough."},
      {{"--view", "w"}, "--view is x, y, z or 3d, not \"w\"."},
      {{"--scale-type", "7"}, "--scale-type is absolute, relative or sum, not \"7\"."},
      {{"--render", "a"}, "--render needs the name of a picture such as picture.png, not \"a\"."},
      {{"--render", "a.png", "--frames", "0"}, "--frames is a number from 1 to 100000, not \"0\"."},
      {{"--render", "a.png", "--frames", "1e3"},
       "--frames is a number from 1 to 100000, not \"1e3\"."},
      {{"--render", "a.png", "--size", "640"},
       "--size is a width and a height such as 1280x800, not \"640\"."},
      {{"--render", "a.png", "--size", "0x480"},
       "--size is a width and a height such as 1280x800, not \"0x480\"."},
      {{"--trust"}, "--trust is of use with --panel alone."},
      {{"--force"}, "--force is of use with --save alone."},
      {{"--frames", "3"}, "--frames is of use with --render alone."},
      {{"--nonsense"}, "Unknown option 'nonsense'."},
      {{"--view"}, "Missing value after '--view'."}};
  for (const auto& [arguments, fault] : cases) {
    EXPECT_EQ(Parse(arguments).Fault, fault) << arguments.join(' ').toStdString();
  }
}

TEST(Commandline, OverridesTheSettings) {
  const QString model = WriteTestFile("a.mod", kModel);
  const QString ini = WriteTestFile(
      "a.ini",
      "[General]\nModelFile=bare.mod\nDataFile=/there/b.dat\nScaleType=2\nRotX=11\nRotY=12\n");
  const TSettings plain = SettingsOf(Parse({"--settings", ini}), "/opt/v/velmora-animator");
  EXPECT_EQ(plain.ModelFile, "/opt/v/bare.mod");
  EXPECT_EQ(plain.DataFile, "/there/b.dat");
  EXPECT_EQ(std::tuple(plain.ScaleType, plain.RotX, plain.AnimationOn), std::tuple(2, 11, false));
  const TCommandLine line =
      Parse({"--settings", ini, model, "--view", "x", "--scale-type", "relative", "--animate"});
  TSettings other = SettingsOf(line, "/opt/v/velmora-animator");
  NameFiles(line, other);
  EXPECT_EQ(other.ModelFile, model);
  EXPECT_EQ(other.DataFile, "");  // the data of another model are of no use
  EXPECT_EQ(std::tuple(other.ScaleType, other.RotX, other.RotY, other.AnimationOn),
            std::tuple(1, 0, -90, true));
}

TEST(Commandline, WithoutADisplayThereIsHelpAndASentenceForEverythingElse) {
  const TRun help = RunAnimator({"--help"});
  EXPECT_EQ(help.Status, 0);
  EXPECT_TRUE(help.Out.contains("[MODEL [DATA]]")) << help.Out.toStdString();
  EXPECT_TRUE(help.Out.contains("--scale-type"));
  EXPECT_EQ(help.Errors, "");
  const TRun version = RunAnimator({"--version"});
  EXPECT_EQ(version.Status, 0);
  EXPECT_EQ(version.Out, "Velmora Animator 2.2\n");
  const QString noWindow =
      "Cannot open a window: there is no display; --render writes pictures without one.\n";
  for (const TRun& run : {RunAnimator({}), RunAnimator({}, kNoSuchDisplay)}) {
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Errors, noWindow);
  }
  const TRun run = RunAnimator({"--view", "w"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Errors, "--view is x, y, z or 3d, not \"w\".\n");
  EXPECT_EQ(run.Out, "");
}

TEST(GlCommandline, RendersWithAndWithoutADisplayAndFollowsItsSettings) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData),
                ini = WriteTestFile("a.ini", "[Colors]\nBackColor=255\n");
  const QMap<QString, QString> own{{"DISPLAY", qEnvironmentVariable("DISPLAY")}};
  for (const auto& display : {QMap<QString, QString>(), kNoSuchDisplay, own}) {
    const TRun run = RunAnimator(
        {model, data, "--settings", ini, "--render", "p.png", "--size", "320x200"}, display);
    EXPECT_EQ(run.Status, 0);
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(Pictures(), QStringList("p.png"));
    const QImage picture = Picture("p.png");
    EXPECT_EQ(picture.size(), QSize(320, 200));
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(255, 0, 0));
    EXPECT_GT(CountOther(picture, Qt::red), 200);
    QFile::remove(TestFolder() + "/p.png");
  }
}

TEST(GlCommandline, WritesTheFramesOfACycle) {
  const QString model = WriteTestFile("a.mod", kModel);
  const QString data = WriteTestFile("a.dat", "[F = 5]\n1 0 0 1\n2 1 0 0\n");
  std::vector<QImage> absolute;
  for (const char* type : {"absolute", "relative", "sum"}) {
    SCOPED_TRACE(type);
    const TRun run = RunAnimator({model, data, "--render", "p.png", "--size", "200x150", "--frames",
                                  "11", "--scale-type", type});
    ASSERT_EQ(run.Status, 0) << run.Errors.toStdString();
    ASSERT_EQ(Pictures().size(), 11);
    EXPECT_EQ(Pictures().first(), "p-001.png");
    EXPECT_EQ(Pictures().last(), "p-011.png");
    EXPECT_NE(Picture("p-001.png"), Picture("p-002.png"));
    if (absolute.empty()) absolute = {Picture("p-001.png"), Picture("p-003.png")};
    if (QString(type) == "sum") {  // of one data set: moves as that set does
      EXPECT_EQ(Picture("p-001.png"), absolute[0]);
      EXPECT_EQ(Picture("p-003.png"), absolute[1]);
    } else {
      EXPECT_EQ(Picture("p-001.png"), Picture("p-011.png"));  // ten frames are a cycle
    }
  }
}

TEST(GlCommandline, WhatIsNearHidesWhatIsFar) {
  const QString model = WriteTestFile(
      "a.mod",
      "[Nodes]\n1 -1 -1 1\n2 1 -1 1\n3 1 1 1\n4 -1 1 1\n5 -1 -1 -1\n6 1 -1 -1\n7 1 1 -1\n8 -1 1 "
      "-1\n"
      "[Elements]\n2\n1 3 255 4 1 2 3 4\n2 3 16711680 4 5 6 7 8\n");  // red before blue
  ASSERT_EQ(RunAnimator({model, "--render", "p.png", "--size", "200x200", "--view", "z"}).Status,
            0);
  const QColor middle = Picture("p.png").pixelColor(100, 100);
  EXPECT_GT(middle.red(), 100);
  EXPECT_EQ(middle.blue(), 0);
}

TEST(GlCommandline, WhatWasDroppedIsSaidAndThePictureIsMade) {
  const QString model = WriteTestFile("a.mod", kModel + "\n");
  const QString cut =
      WriteTestFile("b.mod", "[Nodes]\n1 0 0 0\n2 1 0 0\n[Elements]\n1\n1 1 0 -1 2 1 99\n");
  const TRun run = RunAnimator({cut, "--render", "p.png", "--size", "64x48"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_TRUE(run.Errors.startsWith("b.mod, line 6: ")) << run.Errors.toStdString();
  EXPECT_EQ(run.Errors.count('\n'), 1);
  EXPECT_EQ(Picture("p.png").size(), QSize(64, 48));
}

TEST(GlCommandline, WithoutAModelOrAPlaceToWriteThereIsNoPicture) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData);
  const std::pair<QStringList, QString> cases[] = {
      {{"--render", "p.png"}, "There is no model file to draw.\n"},
      {{TestFolder(), "--render", "p.png"},
       "Cannot read " + QFileInfo(TestFolder()).fileName() + ": it is a folder.\n"},
      {{data, "--render", "p.png"}, "Cannot read a.dat: it is a data file, not a model file.\n"},
      {{model, model, "--render", "p.png"},
       "Cannot read a.mod: it is a model file, not a data file.\n"},
      {{model, "--render", "p.png", "--size", "99999x10"},
       "Cannot draw: a picture of 99999 x 10 pixels cannot be made.\n"},
      {{model, "--render", "none/p.png"}, "Cannot write p.png: No such file or directory.\n"}};
  for (const auto& [arguments, error] : cases) {
    const TRun run = RunAnimator(arguments);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Errors, error);
    EXPECT_TRUE(Pictures().isEmpty());
  }
}
