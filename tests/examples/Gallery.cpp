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
