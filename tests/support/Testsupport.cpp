#include "tests/support/Testsupport.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <memory>

#include "model/Message.h"

namespace {

QStringList messages;
QStringList expectedWarnings;
QStringList unexpectedWarnings;
std::unique_ptr<QTemporaryDir> folder;

void TakeQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  fprintf(stderr, "%s\n", qPrintable(text));
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  // The offscreen platform says so of every tool window and menu; there is nothing to raise it
  // over, no other program that has the keys, and no window manager to be told of sizes.
  if (text == QStringLiteral("This plugin does not support raise()")) return;
  if (text == QStringLiteral("This plugin does not support grabbing the keyboard")) return;
  if (text == QStringLiteral("This plugin does not support propagateSizeHints()")) return;
  for (qsizetype i = 0; i < expectedWarnings.size(); ++i) {
    if (!text.contains(expectedWarnings[i])) continue;
    expectedWarnings.removeAt(i);
    return;
  }
  unexpectedWarnings << text;
}

/// Gives every test a clean message list and fails it on a Qt warning nobody expected.
class Watch : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    messages.clear();
    expectedWarnings.clear();
    unexpectedWarnings.clear();
    // The settings folder of the user, for this program and those that it starts.
    qputenv("XDG_CONFIG_HOME", (TestFolder() + "/settings").toLocal8Bit());
  }
  void OnTestEnd(const testing::TestInfo&) override {
    folder.reset();
    for (const QString& text : unexpectedWarnings) {
      ADD_FAILURE() << "unexpected Qt warning: " << text.toStdString();
    }
    for (const QString& text : expectedWarnings) {
      ADD_FAILURE() << "expected Qt warning did not come: " << text.toStdString();
    }
  }
};

}  // namespace

void EndSession() {
  // Nobody looks at the manager, which only the toolkit can make.
  alignas(QObject) char manager[sizeof(QObject)] = {};
  emit qGuiApp->commitDataRequest(reinterpret_cast<QSessionManager&>(manager));
}

void InstallTestWatch() {
  SetMessageSink([](const QString& text) { messages << text; });
  qInstallMessageHandler(TakeQtMessage);
  testing::UnitTest::GetInstance()->listeners().Append(new Watch);
}

QStringList TakeMessages() { return std::exchange(messages, {}); }

void ExpectQtWarning(const QString& part) { expectedWarnings << part; }

QString SourceFile(const QString& name) { return VELMORA_SOURCE_DIR "/" + name; }

QString BuiltFile(const QString& name) { return VELMORA_BINARY_DIR "/" + name; }

std::string TestData(const QString& name) {
  QFile file(SourceFile("tests/data/" + name));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  return file.readAll().toStdString();
}

QString TestFolder() {
  if (!folder) folder = std::make_unique<QTemporaryDir>();
  return folder->path();
}

QString WriteTestFile(const QString& name, const QByteArray& content) {
  const QString path = TestFolder() + '/' + name;
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
  EXPECT_EQ(file.write(content), content.size());
  return path;
}

QString Document(const QString& name) {
  QFile file(SourceFile("docs/" + name));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  return QString::fromUtf8(file.readAll());
}

QByteArray Fence(const QString& document, const QString& kind) {
  const QRegularExpression fence("```" + kind + "\n(.*?)```",
                                 QRegularExpression::DotMatchesEverythingOption);
  const auto match = fence.match(document);
  EXPECT_TRUE(match.hasMatch()) << kind.toStdString();
  return match.captured(1).toUtf8();
}

double ReferenceNumber(const char* text, char** end) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, end, plain);
}
