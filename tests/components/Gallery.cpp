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

}  // namespace
