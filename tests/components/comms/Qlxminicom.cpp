#include "components/comms/Qlxminicom.h"

#include "components/comms/Qlxport.h"
#include "tests/components/comms/Memorydriver.h"
#include "tests/support/Testing.h"
#include "tests/support/Ticks.h"

namespace {

TEST(TTrafficText, ShowsTextAndBytesInLines) {
  const struct {
    bool hex;
    std::vector<std::pair<QByteArray, bool>> pieces;  ///< bytes, and whether they were sent
    const char* lines;
  } cases[] = {
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
  for (const auto& c : cases) {
    TTrafficText text;
    text.SetHex(c.hex);
    QString lines;
    for (const auto& [bytes, sent] : c.pieces) lines += text.Take(bytes, sent);
    EXPECT_EQ(lines + text.Finish(), c.lines);
  }
}

/// A line that echoes.
class TEchoDriver : public TMemoryDriver {
 public:
  explicit TEchoDriver(QByteArray& queue) : TMemoryDriver(queue), queue_(queue) {}
  int Write(std::span<const char> bytes) override {
    queue_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return TMemoryDriver::Write(bytes);
  }

 private:
  QByteArray& queue_;
};

class TQLXMiniComTest : public testing::Test {
 protected:
  template <class T>
  T& Find(const char* name) {
    return *console.findChild<T*>(QLatin1String(name));
  }
  QString Text() { return Find<QPlainTextEdit>("Traffic").toPlainText(); }

  QByteArray queue;
  std::unique_ptr<TQLXPort> port =
      std::make_unique<TQLXPort>(nullptr, [this] { return std::make_unique<TEchoDriver>(queue); });
  TQLXMiniCom console{*port};
};

TEST_F(TQLXMiniComTest, SendsWhatIsTypedAndShowsWhatComes) {
  EXPECT_FALSE(Find<QPushButton>("Send").isEnabled());
  QTest::mouseClick(&Find<QPushButton>("Open"), Qt::LeftButton);
  EXPECT_TRUE(port->GetConnected());
  EXPECT_EQ(Find<QLabel>("State").text(), "COM1 is open");
  QTest::keyClicks(&Find<QLineEdit>("Command"), "lron");
  QTest::keyClick(&Find<QLineEdit>("Command"), Qt::Key_Return);
  EXPECT_EQ(Find<QLineEdit>("Command").text(), "");
  Tick(20);
  EXPECT_EQ(Text(), "> lron<0D>\n  lron<0D>");
}

TEST_F(TQLXMiniComTest, AFloodIsCutAndCounted) {
  port->Open();
  queue = QByteArray(1'000'000, 'x');
  Tick(2000);
  EXPECT_TRUE(queue.isEmpty());
  EXPECT_LE(Find<QPlainTextEdit>("Traffic").blockCount(), 5000);
  EXPECT_TRUE(Text().contains(" more bytes)"));
}

TEST_F(TQLXMiniComTest, OutlivesItsPort) {
  port->Open();
  port.reset();
  QCoreApplication::processEvents();
  EXPECT_EQ(Find<QLabel>("State").text(), "There is no port any more");
  EXPECT_FALSE(Find<QPushButton>("Open").isEnabled());
  EXPECT_FALSE(Find<QPushButton>("Send").isEnabled());
  Tick(20);
}

}  // namespace
