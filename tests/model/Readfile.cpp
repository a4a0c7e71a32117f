#include "model/Readfile.h"

#include <filesystem>

#include "model/Animmodel.h"
#include "tests/support/Testing.h"

#ifdef __unix__
#include <sys/stat.h>
#endif

namespace {

TEST(ReadFile, ReadsAllBytesAsTheyAre) {
  TFileText text;
  TLoadReport report;
  for (const QByteArray& bytes : {QByteArray("a\r\nb\0\x1a\xff", 7), QByteArray("")}) {
    ASSERT_TRUE(ReadFile(WriteTestFile("bytes", bytes), text, report));
    EXPECT_EQ(View(text), bytes.toStdString());
  }
}

TEST(ReadFile, SaysWhyAFileCannotBeRead) {
  const QString folder = TestFolder();
  TModel model;
  ASSERT_TRUE(model.LoadFromMemory("[Nodes]\n1 2 3 4\n").Ok());
  QSignalSpy changes(&model, &TModel::OnChange);
  std::vector<std::pair<QString, QString>> cases = {
      {folder + "/none.mod", "Cannot read none.mod: there is no such file."},
      {folder, "Cannot read " + QFileInfo(folder).fileName() + ": it is a folder."},
      {"", "Cannot read : there is no such file."},
      {"/", "Cannot read /: it is a folder."},
      {"a\n\x1b[1m\u202e\u2069.mod",
       QString("Cannot read a\ufffd\ufffd[1m\ufffd\ufffd.mod: there is no such file.")}};
#ifdef __unix__
  const QString pipe = folder + "/pipe";
  ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0);
  cases.emplace_back(pipe, "Cannot read pipe: it is not a regular file.");
  ASSERT_EQ(mknod(qPrintable(folder + "/socket"), S_IFSOCK | 0600, 0), 0);
  cases.emplace_back(folder + "/socket", "Cannot read socket: it is not a regular file.");
  cases.emplace_back("/dev/zero", "Cannot read zero: it is not a regular file.");
#endif
  const QString huge = WriteTestFile("huge.mod", "");
  std::filesystem::resize_file(huge.toStdString(), (std::uintmax_t{4} << 30) + 1);
  cases.emplace_back(huge, "Cannot read huge.mod: it is larger than 4 GiB.");

  for (const auto& [name, sentence] : cases) {
    const TLoadReport report = model.LoadFromFile(name);
    EXPECT_TRUE(report.Failed());
    EXPECT_EQ(report.Sentence(name), sentence);
    EXPECT_EQ(model.Nodes.Count(), 1u) << "the earlier model stays";
    EXPECT_TRUE(model.Loaded);
  }
  EXPECT_EQ(changes.count(), static_cast<int>(cases.size()));
}

TEST(ReadFile, RefusesWhatMemoryCannotHold) {
  TModel model;
  TMeasuredData data;
  std::string large = "[Nodes]\n";
  for (int i = 0; i < 700'000; ++i) large += "1 0 0 0\n";
  const QString file = WriteTestFile("a.mod", "[Nodes]\n1 2 3 4\n");
  for (const std::size_t left : {15, 16}) {
    LimitAvailableMemory(left);
    EXPECT_EQ(model.LoadFromFile(file).Sentence(file),
              left == 16 ? "" : "Cannot read a.mod: it is larger than the memory that is left.");
  }
  LimitAvailableMemory(0);
  for (const TLoadReport& report :
       {model.LoadFromMemory(large), data.LoadFromMemory("[F = 1]\n" + large, model)}) {
    EXPECT_EQ(report.Sentence(file), "Cannot read a.mod: not enough memory.");
    EXPECT_EQ(model.Nodes.Count(), 1u) << "the earlier model stays";
  }
  LimitAvailableMemory(std::numeric_limits<std::size_t>::max());
}

}  // namespace
