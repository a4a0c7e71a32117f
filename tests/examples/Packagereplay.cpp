#include "examples/package-server/Replay.h"
#include "tests/support/Testing.h"

namespace {

/// The pieces that come within so many eighths of a second, each behind the eighth in which it
/// came.
QByteArray Play(TReplay& replay, int eighths) {
  QByteArray played;
  for (int i = 0; i < eighths; ++i) {
    QByteArray pieces;
    for (QByteArray piece; !(piece = replay.Take()).isEmpty();) pieces += piece;
    if (!pieces.isEmpty()) played += QByteArray::number(i) + ':' + pieces + ' ';
    replay.Advance(0.125);
  }
  return played;
}

/// A package of the kind `name` that was made at 12:00 and so many milliseconds.
QByteArray Package(const QByteArray& name, const QByteArray& time) {
  return "<" + name + " time=\"20240501 1200" + time + "\">1</" + name + ">";
}

TEST(TReplay, GivesEachPackageAtItsTime) {
  const QByteArray a0 = Package("a", "00000"), a1 = Package("a", "00125");
  const QByteArray a2 = Package("a", "00250"), a5 = Package("a", "00625"),
                   b0 = Package("b", "00000");
  const QByteArray noTime = "<c>1</c>", wrongTime = "<c time=\"20249999 120000000\">1</c>";
  const auto data = [](const QByteArray& last) {
    return "<data id=\"x\">\n20240501 120000000 1\n20240501 1200" + last + " 2\n</data>";
  };
  const struct {
    const char* what;
    QByteArray text;
    QByteArray played;
  } cases[] = {
      {"its tag's", a0 + a1 + a5, "0:" + a0 + " 1:" + a1 + " 5:" + a5 + " "},
      {"its last row's", data("00000") + data("00375"),
       "0:" + data("00000") + " 3:" + data("00375") + " "},
      {"none", a0 + noTime + a5 + wrongTime, "0:" + a0 + noTime + " 5:" + a5 + wrongTime + " "},
      {"another kind lies behind", a0 + a1 + b0 + a5,
       "0:" + a0 + " 1:" + a1 + b0 + " 5:" + a5 + " "},
      {"the clock was set back", a0 + a2 + a1 + a2, "0:" + a0 + " 2:" + a2 + a1 + " 3:" + a2 + " "},
      {"rubbish between", "x" + a0 + "> /\n" + a5 + "<a>1", "0:x" + a0 + " 5:> /\n" + a5 + "<a>1 "},
      {"closing tags alone", a0 + "</a></a>>" + a1, "0:" + a0 + "</a></a> 1:>" + a1 + " "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TReplay replay(c.text);
    EXPECT_EQ(Play(replay, 8).toStdString(), c.played.toStdString());
  }
}

TEST(TReplay, BeginsAgain) {
  const QByteArray first = Package("a", "00000"), second = Package("a", "00250");
  TReplay replay(first + second);
  const QByteArray once = "0:" + first + " 2:" + second + " ";
  EXPECT_EQ(Play(replay, 8), once);  // a round takes a second at least
  EXPECT_EQ(Play(replay, 8), once);
}

TEST(TReplay, CutsPausesThatNobodyWaitsFor) {
  const QByteArray first = Package("a", "00000"), later = "<a time=\"21240501 000000000\">1</a>";
  TReplay replay(first + later);
  EXPECT_EQ(replay.Take(), first);
  replay.Advance(TReplay::kLongestPause - 1);
  EXPECT_EQ(replay.Take(), QByteArray());
  replay.Advance(1);
  EXPECT_EQ(replay.Take(), later);
}

TEST(TReplay, GivesBytesAtAnEvenRate) {
  TReplay replay(Package("a", "00000") + Package("a", "59000"), 100);
  EXPECT_EQ(replay.Take(), QByteArray());
  replay.Advance(0.5);
  EXPECT_EQ(replay.Take().size(), 50);
  EXPECT_EQ(replay.Take(), QByteArray());

  TReplay timeless(QByteArray(100'000, 'x'));
  timeless.Advance(1);
  EXPECT_EQ(timeless.Take().size(), 65536);
  timeless.Advance(1);
  EXPECT_EQ(timeless.Take().size(), 100'000 - 65536);
  EXPECT_TRUE(TReplay().IsEmpty());
}

}  // namespace
