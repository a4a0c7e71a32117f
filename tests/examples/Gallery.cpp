#include "tests/support/Testing.h"

namespace {

TRun RunExample(const QString& name, const QStringList& arguments) {
  return RunProgram(QStringLiteral("examples/%1/%1").arg(name), arguments);
}

TEST(Gallery, LooksAsItDid) {
  if (QFontInfo(QFont(QStringLiteral("Arial"))).family() != QLatin1String("Liberation Sans")) {
    GTEST_SKIP() << "the picture was made with Liberation Sans (Debian fonts-liberation)";
  }
  const QString file = TestFolder() + "/gallery.png";
  const TRun run = RunExample("gallery", {"--render", file});
  ASSERT_EQ(run.Status, 0) << run.Errors.toStdString();
  ExpectSamePicture(QImage(file), QImage(SourceFile("tests/data/gallery.png")), "gallery", 5);
}

TEST(ExamplePrograms, DrawTheirWindowIntoAPicture) {
  const std::tuple<QString, QStringList, QSize> cases[] = {
      {"values", {}, {2400, 1560}},
      {"monitor", {"--device", "/none", "--server", "127.0.0.1:1", "--after", "1"}, {2400, 1600}}};
  for (const auto& [program, arguments, size] : cases) {
    const QString file = TestFolder() + '/' + program + ".png";
    const TRun run = RunExample(program, QStringList{"--render", file, "--ratio", "2"} + arguments);
    EXPECT_EQ(run.Status, 0) << run.Errors.toStdString();
    EXPECT_EQ(QImage(file).size(), size);
    if (program == "monitor") continue;
    EXPECT_GT(CountPixels(QImage(file), QColor(150, 190, 235)), 10000) << "the histogram's bars";
    EXPECT_GT(CountPixels(QImage(file), QColor(30, 130, 70)), 1000) << "the pressure";
  }
}

TEST(ExamplePrograms, SayWithoutADisplayHowTheyAreUsedAndWhatTheyCannotDo) {
  const QString nowhere = TestFolder() + "/missing/a.png";
  for (const char* program : {"gallery", "values", "monitor"}) {
    SCOPED_TRACE(program);
    const TRun help = RunExample(program, {"--help"});
    EXPECT_EQ(help.Status, 0);
    EXPECT_TRUE(help.Out.contains("--render <file>"));
    if (program == std::string("monitor")) continue;
    const TRun lost = RunExample(program, {"--render", nowhere});
    EXPECT_EQ(lost.Status, 1);
    EXPECT_TRUE(lost.Errors.contains("Cannot write " + nowhere)) << lost.Errors.toStdString();
  }
  const TRun none = RunExample("values", {"--render", nowhere, "none.txt"});
  EXPECT_EQ(none.Status, 1);
  EXPECT_TRUE(none.Errors.contains("Cannot open none.txt")) << none.Errors.toStdString();
}

}  // namespace
