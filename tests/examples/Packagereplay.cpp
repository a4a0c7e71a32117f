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
  const std::tuple<const char*, QByteArray, QByteArray> cases[] = {
      {"its tag's", a0 + a1 + a5, "0:" + a0 + " 1:" + a1 + " 5:" + a5 + " "},
      {"its last row's", data("00000") + data("00375"),
       "0:" + data("00000") + " 3:" + data("00375") + " "},
      {"none", a0 + noTime + a5 + wrongTime, "0:" + a0 + noTime + " 5:" + a5 + wrongTime + " "},
      {"another kind lies behind", a0 + a1 + b0 + a5,
       "0:" + a0 + " 1:" + a1 + b0 + " 5:" + a5 + " "},
      {"the clock was set back", a0 + a2 + a1 + a2, "0:" + a0 + " 2:" + a2 + a1 + " 3:" + a2 + " "},
      {"rubbish between", "x" + a0 + "> /\n" + a5 + "<a>1", "0:x" + a0 + " 5:> /\n" + a5 + "<a>1 "},
      {"closing tags alone", a0 + "</a></a>>" + a1, "0:" + a0 + "</a></a> 1:>" + a1 + " "}};
  for (const auto& [what, text, played] : cases) {
    TReplay replay(text);
    EXPECT_EQ(Play(replay, 8), played) << what;
  }
}

TEST(TReplay, BeginsAgainAndCutsPausesThatNobodyWaitsFor) {
  const QByteArray first = Package("a", "00000"), second = Package("a", "00250");
  TReplay replay(first + second);
  for (int round = 0; round < 2; ++round) {  // of a second at least
    EXPECT_EQ(Play(replay, 8), "0:" + first + " 2:" + second + " ");
  }
  const QByteArray later = "<a time=\"21240501 000000000\">1</a>";
  TReplay longer(first + later);
  EXPECT_EQ(longer.Take(), first);
  longer.Advance(TReplay::kLongestPause - 1);
  EXPECT_EQ(longer.Take(), QByteArray());
  longer.Advance(1);
  EXPECT_EQ(longer.Take(), later);
}

TEST(TReplay, GivesBytesAtAnEvenRate) {
  TReplay replay(Package("a", "00000") + Package("a", "59000"), 100);
  TReplay timeless(QByteArray(100'000, 'x'));
  const std::tuple<TReplay*, double, int> cases[] = {{&replay, 0, 0},
                                                     {&replay, 0.5, 50},
                                                     {&replay, 0, 0},
                                                     {&timeless, 1, 65536},
                                                     {&timeless, 1, 34464}};
  for (const auto& [source, seconds, bytes] : cases) {
    source->Advance(seconds);
    EXPECT_EQ(source->Take().size(), bytes);
  }
  EXPECT_TRUE(TReplay().IsEmpty());
}

}  // namespace
