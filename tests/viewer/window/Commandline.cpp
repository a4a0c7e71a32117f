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
  EXPECT_THAT(QStringList({line.Fault, line.Files.value(0), line.Files.value(1), line.SettingsFile,
                           line.RenderFile}),
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
    EXPECT_EQ(QStringList({line.Files.value(0), line.Files.value(1)}), taken)
        << given.join(' ').toStdString();
  }
}

TEST(Commandline, PanelsOpenBesideTheAnimator) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData),
                form = WriteTestFile("a.ui", "<ui version=\"4.0\"/>\n");
  const TCommandLine line = Parse({form, data, model});
  EXPECT_EQ(line.Forms, QStringList(form));
  EXPECT_EQ(line.Files, QStringList({model, data})) << line.Fault.toStdString();
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
      {{"--render", "a.png", "--frames", "100001"},
       "--frames is a number from 1 to 100000, not \"100001\"."},
      {{"--render", "a.png", "--size", "640"},
       "--size is a width and a height such as 1280x800, not \"640\"."},
      {{"--render", "a.png", "--size", "0x480"},
       "--size is a width and a height such as 1280x800, not \"0x480\"."},
      {{"--trust"}, "--trust is of use with --panel alone."},
      {{"--force"}, "--force is of use with --save alone."},
      {{"--frames", "3"}, "--frames is of use with --render alone."},
      {{"--lines", "82"}, "--lines is of use with --convert alone."},
      {{"--convert", "--lines", "15", model, "a.unv"}, "--lines is 82 or 2412, not \"15\"."},
      {{"--convert", "--shapes", "58", model, "a.unv"}, "--shapes is 55 or 2414, not \"58\"."},
      {{"--convert", model}, "--convert needs the files to read and the file to write."},
      {{"--convert", model, "a.txt"},
       "--convert writes FILE.mod, FILE.unv or FILE.uff, not \"a.txt\"."},
      {{"--convert", model, model},
       "--convert would overwrite " + model + ", which it is to read."},
      {{"--convert", model, "a.unv", "--render", "a.png"}, "--render is of no use with --convert."},
      {{"--report"}, "--report needs the files to read."},
      {{"--mac"}, "--mac and --complexity need the files to read."},
      {{"--mac", "a", "b", "c", "d"}, "Cannot read a: there is no such file."},
      {{"--mac", model, model, model, model},
       "There are 4 file names; a model file and two data files are enough."},
      {{"--complexity", model, "--report"}, "--report is of no use with --complexity."},
      {{"--mac", "--panel", model}, "--mac is of no use with --panel."},
      {{"--unmeasured", "fly"}, "--unmeasured is rest or follow, not \"fly\"."},
      {{"--matrix", "both"}, "--matrix is rows or columns, not \"both\"."},
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
  const TCommandLine line = Parse({"--settings", ini, model, "--view", "x", "--scale-type",
                                   "relative", "--animate", "--matrix", "columns"});
  TSettings other = SettingsOf(line, "/opt/v/velmora-animator");
  NameFiles(line, other);
  EXPECT_EQ(other.ModelFile, model);
  EXPECT_EQ(other.Matrices, TMatrixReading::ColumnsAreAxes);
  EXPECT_EQ(other.DataFile, "");  // the data of another model are of no use
  EXPECT_EQ(std::tuple(other.ScaleType, other.RotX, other.RotY, other.AnimationOn),
            std::tuple(1, 0, -90, true));
}

TEST(Commandline, WithoutADisplayThereIsHelpAndASentenceForEverythingElse) {
  const TRun help = RunAnimator({"--help"});
  EXPECT_EQ(help.Status, 0);
  EXPECT_TRUE(help.Out.contains("[FILES...]")) << help.Out.toStdString();
  EXPECT_TRUE(help.Out.contains("--scale-type"));
  EXPECT_EQ(help.Errors, "");
  const QString noWindow =
      "Cannot open a window: there is no display; --render writes pictures without one.\n";
  const std::tuple<QStringList, QMap<QString, QString>, int, QString, QString> cases[] = {
      {{"--version"}, {}, 0, "Velmora Animator 2.2\n", ""},
      {{}, {}, 1, "", noWindow},
      {{}, kNoSuchDisplay, 1, "", noWindow},
      {{"--view", "w"}, {}, 1, "", "--view is x, y, z or 3d, not \"w\".\n"}};
  for (const auto& [arguments, variables, status, out, errors] : cases) {
    const TRun run = RunAnimator(arguments, variables);
    EXPECT_EQ(run.Status, status);
    EXPECT_EQ(run.Out, out);
    EXPECT_EQ(run.Errors, errors);
  }
}

TEST(GlCommandline, RendersWithAndWithoutADisplayAndWhatIsNearHidesWhatIsFar) {
  const QString ini = WriteTestFile("a.ini", "[Colors]\nBackColor=255\n");
  const QString model = WriteTestFile(
      "a.mod",
      "[Nodes]\n1 -1 -1 1\n2 1 -1 1\n3 1 1 1\n4 -1 1 1\n5 -1 -1 -1\n6 1 -1 -1\n7 1 1 -1\n"
      "8 -1 1 -1\n[Elements]\n2\n1 3 65280 4 1 2 3 4\n2 3 16711680 4 5 6 7 8\n");  // green, blue
  const QMap<QString, QString> own{{"DISPLAY", qEnvironmentVariable("DISPLAY")}};
  for (const auto& display : {QMap<QString, QString>(), kNoSuchDisplay, own}) {
    const TRun run = RunAnimator(
        {model, "--settings", ini, "--render", "p.png", "--size", "320x200", "--view", "z"},
        display);
    EXPECT_EQ(run.Status, 0);
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(Pictures(), QStringList("p.png"));
    const QImage picture = Picture("p.png");
    EXPECT_EQ(picture.size(), QSize(320, 200));
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(255, 0, 0));
    EXPECT_GT(picture.pixelColor(160, 100).green(), 100);
    EXPECT_EQ(picture.pixelColor(160, 100).blue(), 0);
    QFile::remove(TestFolder() + "/p.png");
  }
}

TEST(GlCommandline, WritesTheFramesOfACycle) {
  const QString model = WriteTestFile("a.mod", kModel);
  const QString data = WriteTestFile("a.dat", "[F = 5]\n1 0 0 1\n2 1 0 0\n");
  std::vector<QImage> absolute;
  for (const QString type : {"absolute", "relative", "sum"}) {
    SCOPED_TRACE(type.toStdString());
    const TRun run = RunAnimator({model, data, "--render", "p.png", "--size", "200x150", "--frames",
                                  "11", "--scale-type", type});
    ASSERT_EQ(run.Status, 0) << run.Errors.toStdString();
    ASSERT_EQ(Pictures().size(), 11);
    const std::vector<QImage> drawn = {Picture("p-001.png"), Picture("p-003.png")};
    EXPECT_NE(drawn[0], Picture("p-002.png"));
    if (absolute.empty()) absolute = drawn;
    if (type == "sum") {
      EXPECT_TRUE(drawn == absolute) << "of one data set: moves as that set does";
    } else {
      EXPECT_EQ(drawn[0], Picture("p-011.png")) << "ten frames are a cycle";
    }
  }
}

TEST(GlCommandline, WithoutAModelOrAPlaceToWriteThereIsNoPicture) {
  const QString model = WriteTestFile("a.mod", kModel), data = WriteTestFile("a.dat", kData);
  const QString cut =
      WriteTestFile("b.mod", "[Nodes]\n1 0 0 0\n2 1 0 0\n[Elements]\n1\n1 1 0 -1 2 1 99\n");
  const std::pair<QStringList, QString> cases[] = {
      {{}, "There is no model file to draw.\n"},
      {{TestFolder()}, "Cannot read " + QFileInfo(TestFolder()).fileName() + ": it is a folder.\n"},
      {{data}, "Cannot read a.dat: it is a data file, not a model file.\n"},
      {{model, model}, "Cannot read a.mod: it is a model file, not a data file.\n"},
      {{model, "--size", "99999x10"},
       "Cannot draw: a picture of 99999 x 10 pixels cannot be made.\n"},
      {{model, "--render", "none/p.png"}, "Cannot write p.png: No such file or directory.\n"},
      {{cut, "--size", "64x48"},  // what can be drawn is
       "b.mod, line 6: element 1 names node 99, which does not exist; the element was dropped.\n"}};
  for (const auto& [arguments, error] : cases) {
    EXPECT_TRUE(Pictures().isEmpty());
    const TRun run = RunAnimator(QStringList{"--render", "p.png"} + arguments);
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Errors, error);
  }
  EXPECT_EQ(Picture("p.png").size(), QSize(64, 48));
  const TRun told = RunAnimator({"--render", "p.png", model, data, "--report"});
  EXPECT_EQ(told.Status, 0);
  EXPECT_TRUE(told.Out.contains("data sets: 2")) << told.Out.toStdString();
}
