#include "components/panels/Trust.h"

#include "tests/support/Testing.h"

namespace {

TEST(Trust, AFileIsAllowedAsLongAsItHoldsAndWantsTheSame) {
  const QString file = WriteTestFile("a b%.ui", "x");
  const TPanelMark mark{file, ContentHash("x"), WishesHash({})};
  EXPECT_FALSE(IsTrusted(mark));
  EXPECT_EQ(TrustFile(mark), "");
  EXPECT_TRUE(IsTrusted(mark));
  EXPECT_TRUE(IsKnownPanel(file, mark.Content));
  TWishes wishes;
  AddPortWish(wishes, "COM1");
  const TPanelMark others[] = {{file, ContentHash("y"), mark.Wishes},
                               {file, mark.Content, WishesHash(wishes)},
                               {WriteTestFile("b.ui", "x"), mark.Content, mark.Wishes}};
  for (const TPanelMark& other : others) EXPECT_FALSE(IsTrusted(other));
  // By way of a link it is the same file, and one answer is kept for it.
  ASSERT_TRUE(QFile::link(file, TestFolder() + "/link.ui"));
  EXPECT_TRUE(IsTrusted({TestFolder() + "/link.ui", mark.Content, mark.Wishes}));
  EXPECT_EQ(TrustFile(others[0]), "");
  EXPECT_FALSE(IsTrusted(mark));
  EXPECT_TRUE(IsTrusted(others[0]));
}

TEST(Trust, AFolderCountsWithThoseBelowItUnlessOthersMayWriteThere) {
  QDir(TestFolder()).mkpath("panels/pumps");
  const QString file = WriteTestFile("panels/pumps/a.ui", "x");
  const TPanelMark mark{file, "1", "2"};
  const QString beside = WriteTestFile("panels2.ui", "x");
  EXPECT_EQ(TrustFolder(TestFolder() + "/panels"), "");
  EXPECT_TRUE(IsTrusted(mark));
  EXPECT_FALSE(IsTrusted({beside, "1", "2"}));
  // A link in the folder to a file elsewhere.
  ASSERT_TRUE(QFile::link(beside, TestFolder() + "/panels/link.ui"));
  EXPECT_FALSE(IsTrusted({TestFolder() + "/panels/link.ui", "1", "2"}));
  const auto kMine = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
  ASSERT_TRUE(QFile::setPermissions(TestFolder() + "/panels/pumps", kMine | QFile::WriteOther));
  EXPECT_FALSE(IsTrusted(mark));
  EXPECT_NE(UnsafeFolder(TestFolder() + "/panels/pumps"), "");
  ASSERT_TRUE(QFile::setPermissions(TestFolder() + "/panels/pumps", kMine));
  EXPECT_TRUE(IsTrusted(mark));
  EXPECT_EQ(UnsafeFolder(TestFolder() + "/panels/pumps"), "");
  ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOther));
  EXPECT_FALSE(IsTrusted(mark)) << "others may write the file itself";
  EXPECT_NE(UnsafeFolder(QDir::homePath()), "");
  EXPECT_NE(UnsafeFolder("/"), "");
}

TEST(Trust, ASpoiltListAllowsNothingAndAFailureIsSaid) {
  const TPanelMark mark{WriteTestFile("a.ui", "x"), "1", "2"};
  EXPECT_EQ(TrustFile(mark), "");
  QFile list(TrustFileName());
  ASSERT_TRUE(list.open(QIODevice::WriteOnly));
  list.write(QByteArrayLiteral("\n\nfolder \nfolder /\nfile\nfolder /\0\xff\n"));
  list.close();
  EXPECT_FALSE(IsTrusted(mark));
  ASSERT_TRUE(list.remove());
  ASSERT_TRUE(QDir().mkdir(TrustFileName()));
  EXPECT_TRUE(TrustFile(mark).startsWith("Cannot write " + TrustFileName()));
  EXPECT_FALSE(IsTrusted(mark));
}

}  // namespace
