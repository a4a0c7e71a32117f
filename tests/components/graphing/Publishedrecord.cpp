#include "components/graphing/Publishedrecord.h"

#include "components/graphing/editors/Propertyform.h"
#include "tests/support/Testing.h"

namespace {

class TMarked : public TPersistent {
  Q_OBJECT

 public:
  enum TMark { maMean = 1, maSpread = 2, maExtremes = 4 };
  Q_DECLARE_FLAGS(TMarks, TMark)
  Q_FLAG(TMarks)
  Q_PROPERTY(TMarks Marks READ GetMarks WRITE SetMarks)

  TMarks GetMarks() const { return marks; }
  void SetMarks(TMarks value) { marks = value; }

  TMarks marks = {maMean, maExtremes};
};

TEST(PublishedRecord, KeepsASetByTheNamesOfItsMembers) {
  TMarked object;
  EXPECT_EQ(WritePublished(object), (QJsonObject{{"Marks", "maMean|maExtremes"}}));
  const std::tuple<QJsonValue, bool, int> cases[] = {
      {"maSpread|maExtremes", true, 6}, {"", true, 0}, {"maSpread|maRed", false, 5}, {6, false, 5}};
  for (const auto& [written, isRead, marks] : cases) {
    TMarked read;
    QString error;
    EXPECT_EQ(ReadPublished({{"Marks", written}}, read, &error), isRead);
    EXPECT_EQ(static_cast<int>(read.marks), marks);
    EXPECT_EQ(error, isRead ? "" : "TMarked.Marks has a value of another kind");
  }
}

TEST(PropertyForm, EditsASetMemberByMember) {
  TMarked object;
  TPropertyForm form(object);
  auto& spread = Child<QCheckBox>(form, "maSpread");
  auto& mean = Child<QCheckBox>(form, "maMean");
  EXPECT_TRUE(mean.isChecked());
  EXPECT_FALSE(spread.isChecked());
  mean.click();
  spread.click();
  EXPECT_EQ(object.marks, TMarked::TMarks({TMarked::maSpread, TMarked::maExtremes}));
  form.Revert();
  EXPECT_EQ(object.marks, TMarked::TMarks({TMarked::maMean, TMarked::maExtremes}));
}

}  // namespace

#include "Publishedrecord.moc"
