#include <gtest/gtest.h>

#include <QFontInfo>
#include <QImage>
#include <QProcess>

#include "tests/support/Pictures.h"
#include "tests/support/Testsupport.h"

namespace {

QString Program() { return BuiltFile("examples/gallery/gallery"); }

/// Runs the gallery without a display; returns its exit status and what it complains about.
int RunGallery(const QStringList& arguments, QString* errors) {
  QProcess gallery;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  environment.insert("XDG_RUNTIME_DIR", TestFolder());
  gallery.setProcessEnvironment(environment);
  gallery.start(Program(), arguments);
  EXPECT_TRUE(gallery.waitForFinished()) << gallery.errorString().toStdString();
  *errors = QString::fromUtf8(gallery.readAllStandardError());
  return gallery.exitCode();
}

TEST(Gallery, LooksAsItDid) {
  if (QFontInfo(QFont(QStringLiteral("Arial"))).family() != QLatin1String("Liberation Sans")) {
    GTEST_SKIP() << "the picture was made with Liberation Sans (Debian fonts-liberation)";
  }
  const QString file = TestFolder() + "/gallery.png";
  QString errors;
  ASSERT_EQ(RunGallery({"--render", file}, &errors), 0) << errors.toStdString();
  ExpectSamePicture(QImage(file), QImage(SourceFile("tests/data/gallery.png")), "gallery", 5);
}

TEST(Gallery, SaysThatItCannotWrite) {
  QString errors;
  const QString file = TestFolder() + "/missing/gallery.png";
  EXPECT_EQ(RunGallery({"--render", file}, &errors), 1);
  EXPECT_TRUE(errors.contains("Cannot write " + file)) << errors.toStdString();
}

TEST(ExamplePrograms, SayWithoutADisplayHowTheyAreUsed) {
  for (const char* program : {"gallery", "values", "monitor"}) {
    SCOPED_TRACE(program);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
      environment.remove(display);
    }
    process.setProcessEnvironment(environment);
    process.start(BuiltFile(QStringLiteral("examples/%1/%1").arg(program)), {"--help"});
    EXPECT_TRUE(process.waitForFinished()) << process.errorString().toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(process.readAllStandardOutput().contains("--render <file>"));
  }
}

}  // namespace
