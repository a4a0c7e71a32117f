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
  const QString nowhere = TestFolder() + "/missing/a.png", lost = "Cannot write " + nowhere;
  const std::tuple<QString, QStringList, int, QString> cases[] = {
      {"gallery", {"--help"}, 0, "--render <file>"},
      {"values", {"--help"}, 0, "--render <file>"},
      {"monitor", {"--help"}, 0, "--render <file>"},
      {"gallery", {"--render", nowhere}, 1, lost},
      {"values", {"--render", nowhere}, 1, lost},
      {"values", {"--render", nowhere, "none.txt"}, 1, "Cannot open none.txt"}};
  for (const auto& [program, arguments, status, text] : cases) {
    const TRun run = RunExample(program, arguments);
    EXPECT_EQ(run.Status, status);
    EXPECT_TRUE((status ? run.Errors : run.Out).contains(text)) << run.Errors.toStdString();
  }
}

}  // namespace
