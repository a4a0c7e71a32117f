#include "tests/support/Testing.h"

namespace {

TEST(ExamplePanels, EachStartsWithOneCommandFromAnyFolder) {
  const QString folder = SourceFile("examples/panels/");
  const std::pair<QString, QStringList> cases[] = {
      {"velmora-animator", {"--panel", folder + "signal.ui"}},
#ifdef Q_OS_UNIX
      {folder + "weather.sh", {}},
      {folder + "machine.sh", {}},
#endif
      {"velmora-animator", {"--panel", folder + "replay.ui", "--trust"}}};
  for (const auto& [command, arguments] : cases) {
    SCOPED_TRACE(command.toStdString());
    const QString picture = TestFolder() + "/panel.png";
    const TRun run =
        RunProgram(command, arguments + QStringList{"--render", picture, "--after", "1"});
    EXPECT_EQ(run.Status, 0);
    EXPECT_EQ(run.Errors, "");
    const QImage image(picture);
    EXPECT_GE(image.width(), 1000);
    EXPECT_GT(ColorsOf(image).size(), 100u);
    QFile::remove(picture);
  }
}

TEST(ExamplePanels, WhatIsNotAllowedEndsWithTheListOfWishes) {
  const QString panel = SourceFile("examples/panels/weather.ui");
  const TRun run =
      RunProgram("velmora-animator", {"--panel", panel, "--render", TestFolder() + "/panel.png"});
  EXPECT_EQ(run.Status, 1);
  EXPECT_EQ(run.Errors, panel +
                            " has not been allowed to do what it wants; --trust allows it:\n"
                            "  connect to 127.0.0.1 port 4001\n");
  EXPECT_FALSE(QFile::exists(TestFolder() + "/panel.png"));
}

}  // namespace
