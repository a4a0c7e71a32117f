#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QProcess>
#include <set>

#include "tests/support/Testsupport.h"

namespace {

struct TRun {
  int status;
  QString errors;
};

/// Runs a command as a user does who has no display.
TRun RunCommand(const QString& command, const QStringList& arguments) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
    environment.remove(name);
  }
  environment.insert("BUILD", BuiltFile("."));
  environment.insert("ASAN_OPTIONS", "detect_leaks=0");  // of drivers that are unloaded at the end
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(TestFolder());
  process.start(command, arguments);
  EXPECT_TRUE(process.waitForFinished(60'000)) << process.errorString().toStdString();
  return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}

std::size_t ColoursOf(const QImage& image) {
  std::set<QRgb> colours;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) colours.insert(image.pixel(x, y));
  }
  return colours.size();
}

TEST(ExamplePanels, EachStartsWithOneCommandFromAnyFolder) {
  const QString folder = SourceFile("examples/panels/");
  const struct {
    QString command;
    QStringList arguments;
  } cases[] = {
      {BuiltFile("velmora-animator"), {"--panel", folder + "signal.ui"}},
#ifdef Q_OS_UNIX
      {folder + "weather.sh", {}},
      {folder + "machine.sh", {}},
#endif
      {BuiltFile("velmora-animator"), {"--panel", folder + "replay.ui", "--trust"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command.toStdString());
    const QString picture = TestFolder() + "/panel.png";
    const TRun run =
        RunCommand(c.command, c.arguments + QStringList{"--render", picture, "--after", "1"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    const QImage image(picture);
    EXPECT_GE(image.width(), 1000);
    EXPECT_GT(ColoursOf(image), 100u);
    QFile::remove(picture);
  }
}

TEST(ExamplePanels, WhatIsNotAllowedEndsWithTheListOfWishes) {
  const QString panel = SourceFile("examples/panels/weather.ui");
  const TRun run = RunCommand(BuiltFile("velmora-animator"),
                              {"--panel", panel, "--render", TestFolder() + "/panel.png"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, panel +
                            " has not been allowed to do what it wants; --trust allows it:\n"
                            "  connect to 127.0.0.1 port 4001\n");
  EXPECT_FALSE(QFile::exists(TestFolder() + "/panel.png"));
}

}  // namespace
