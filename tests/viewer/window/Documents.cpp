// What README and the guides name exists: files, sections, programs and their options.

#include "tests/support/Testing.h"

namespace {

QStringList Documents() {
  QStringList names{"README.md", "CONTRIBUTING.md", "CHANGELOG.md"};
  for (const QString& name : QDir(SourceFile("docs")).entryList({"*.md"})) names << "docs/" + name;
  return names;
}

QString TextOf(const QString& name) { return QString::fromUtf8(Contents(SourceFile(name))); }

/// What the first group of a pattern takes wherever it fits.
QStringList Found(const QString& text, const char* pattern) {
  QStringList found;
  auto fits = QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
  while (fits.hasNext()) found << fits.next().captured(1);
  return found;
}

/// The names by which links reach the sections of a document.
QStringList AnchorsOf(const QString& name) {
  QStringList anchors = Found(TextOf(name), "^#+ (.*)$");
  for (QString& anchor : anchors) {
    anchor = anchor.toLower().remove(QRegularExpression("[^\\w\\- ]")).replace(' ', '-');
  }
  return anchors;
}

TEST(Documents, LinkToFilesAndSectionsThatExist) {
  int links = 0;
  for (const QString& name : Documents()) {
    for (const QString& link : Found(TextOf(name), R"(\]\(([^)\s]+)\))")) {
      if (link.contains("://")) continue;
      SCOPED_TRACE((name + ": " + link).toStdString());
      const QString path = link.section('#', 0, 0), anchor = link.section('#', 1);
      const QString target =
          path.isEmpty() ? name : QDir::cleanPath(QFileInfo(name).path() + '/' + path);
      EXPECT_TRUE(QFileInfo::exists(SourceFile(target)));
      EXPECT_TRUE(anchor.isEmpty() || AnchorsOf(target).contains(anchor));
      ++links;
    }
  }
  EXPECT_GT(links, 10);
}

TEST(Documents, NameProgramsScriptsAndOptionsThatExist) {
  QMap<QString, QStringList> options;
  QStringList all;
  for (const QString program :
       {"velmora-animator", "examples/gallery/gallery", "examples/values/values",
        "examples/monitor/monitor", "examples/package-server/package-server",
        "examples/device-simulator/device-simulator"}) {
    all += options[program.section('/', -1)] =
        Found(RunProgram(program, {"--help"}).Out, "(--[a-z][a-z-]*)");
  }
  for (const char* script : {"run.sh", "weather.sh", "machine.sh"}) {  // pass them on
    options[script] = options["velmora-animator"];
  }
  int checked = 0;
  for (const QString& name : Documents()) {
    for (const QString& code :
         Found(TextOf(name), "^    (\\S.*)$") + Found(TextOf(name), "`([^`\\n]+)`")) {
      SCOPED_TRACE((name + ": " + code).toStdString());
      QStringList words = code.section(" #", 0, 0).split(' ', Qt::SkipEmptyParts);
      if (words.isEmpty()) continue;
      while (words.size() > 1 && Found(words[0], "^(\\w+=)").size() == 1) words.removeFirst();
      if (words[0].startsWith("build/release/") || words[0].startsWith("./")) {
        const QString file = words[0].section('/', words[0].startsWith('.') ? 1 : 2);
        EXPECT_TRUE(QFileInfo::exists(SourceFile(file)) || QFileInfo::exists(BuiltFile(file)));
      }
      const bool isAlone = words[0].startsWith("--");
      const QString program = words[0].section('/', -1);
      for (const QString& word : words) {
        EXPECT_TRUE(!word.startsWith("examples/") || QFileInfo::exists(SourceFile(word)));
        if (!word.startsWith("--") || (!isAlone && !options.contains(program))) continue;
        const QString option = word.section('=', 0, 0);
        EXPECT_TRUE((isAlone ? all : options[program]).contains(option)) << option.toStdString();
        ++checked;
      }
    }
  }
  EXPECT_GT(checked, 50);
}

}  // namespace
