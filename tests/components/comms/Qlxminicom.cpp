#include "components/comms/Qlxminicom.h"

#include "components/comms/Qlxport.h"
#include "tests/components/comms/Memorydriver.h"
#include "tests/support/Testing.h"

namespace {

TEST(TTrafficText, ShowsTextAndBytesInLines) {
  using TPieces = std::vector<std::pair<QByteArray, bool>>;  // bytes, and whether they were sent
  const std::tuple<bool, TPieces, const char*> cases[] = {
      {false, {{"OK\r", false}}, "  OK<0D>\n"},
      {false, {{"O", false}, {"K\r4", false}}, "  OK<0D>\n  4\n"},
      {false, {{"\a\r", true}, {QByteArray("\0~\xFF", 3), false}}, "> <07><0D>\n  <00>~<FF>\n"},
      {false,
       {{QByteArray(18, '\0') + '.', false}},
       "  <00><00><00><00><00><00><00><00><00><00><00><00><00><00><00><00><00><00>\n  .\n"},
      {true,
       {{"mr\r", true}, {QByteArray("\x30\x00\xAB", 3), false}},
       "> 6D 72 0D                                         mr.\n"
       "  30 00 AB                                         0..\n"},
      {true,
       {{"0123456789", false}, {"ABCDEFG", false}},
       "  30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  0123456789ABCDEF\n"
       "  47                                               G\n"},
  };
  for (const auto& [hex, pieces, lines] : cases) {
    TTrafficText text;
    text.SetHex(hex);
    QString shown;
    for (const auto& [bytes, sent] : pieces) shown += text.Take(bytes, sent);
    EXPECT_EQ(shown + text.Finish(), lines);
  }
}

class TQLXMiniComTest : public testing::Test {
 protected:
  QString Text() { return Child<QPlainTextEdit>(console, "Traffic").toPlainText(); }

  TFakeLine line;
  std::unique_ptr<TQLXPort> port =
      std::make_unique<TQLXPort>(nullptr, [this] { return std::make_unique<TFakeDriver>(line); });
  TQLXMiniCom console{*port};
};

TEST_F(TQLXMiniComTest, SendsWhatIsTypedAndShowsWhatComes) {
  line.answers["lron\r"] = "OK\r";
  EXPECT_FALSE(Child<QPushButton>(console, "Send").isEnabled());
  QTest::mouseClick(&Child<QPushButton>(console, "Open"), Qt::LeftButton);
  EXPECT_TRUE(port->GetConnected());
  EXPECT_EQ(Child<QLabel>(console, "State").text(), "COM1 is open");
  EnterText(Child<QLineEdit>(console, "Command"), "lron");
  EXPECT_EQ(Child<QLineEdit>(console, "Command").text(), "");
  Tick(20);
  EXPECT_EQ(Text(), "> lron<0D>\n  OK<0D>");
}

TEST_F(TQLXMiniComTest, CutsAFloodAndOutlivesItsPort) {
  port->Open();
  line.incoming = QByteArray(1'000'000, 'x');
  Tick(2000);
  EXPECT_TRUE(line.incoming.isEmpty());
  EXPECT_LE(Child<QPlainTextEdit>(console, "Traffic").blockCount(), 5000);
  EXPECT_TRUE(Text().contains(" more bytes)"));
  port.reset();
  QCoreApplication::processEvents();
  EXPECT_EQ(Child<QLabel>(console, "State").text(), "There is no port any more");
  EXPECT_FALSE(Child<QPushButton>(console, "Open").isEnabled());
  EXPECT_FALSE(Child<QPushButton>(console, "Send").isEnabled());
  Tick(20);
}

}  // namespace
