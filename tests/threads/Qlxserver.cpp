#include "components/comms/Qlxserver.h"

#include <future>

#include "tests/support/Testing.h"
namespace {

using std::chrono::milliseconds;

/// A device in memory that brings what it is told to.
class TSource : public QIODevice {
 public:
  explicit TSource(const TQLXServer::TEnd& end) : end_(end) { open(ReadOnly | Unbuffered); }
  bool isSequential() const override { return true; }
  void Bring(const QByteArray& bytes) {
    waiting_ += bytes;
    emit readyRead();
  }
  /// Ends with bytes that nobody has been told of.
  void End(const QByteArray& last) {
    waiting_ += last;
    end_(QStringLiteral("pulled out"));
    end_(QStringLiteral("again"));
  }

 protected:
  qint64 readData(char* data, qint64 size) override {
    size = std::min(size, qint64{waiting_.size()});
    std::copy_n(waiting_.constData(), size, data);
    waiting_.remove(0, size);
    return size;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  TQLXServer::TEnd end_;
  QByteArray waiting_;
};

std::unique_ptr<QIODevice> MakeSource(const TQLXServer::TEnd& end) {
  return std::make_unique<TSource>(end);
}

void Bring(TQLXServer& server, const QByteArray& bytes) {
  EXPECT_TRUE(
      server.Do([bytes](QIODevice& device) { static_cast<TSource&>(device).Bring(bytes); }));
}

/// All that waits, in pieces of at most so many bytes.
QByteArray ReadAll(TQLXServer& server, std::size_t size, std::int64_t* lost = nullptr) {
  QByteArray all;
  std::vector<char> buffer(size);
  for (TQLXServer::TReceived got; (got = server.Read(buffer)).Count > 0;) {
    all.append(buffer.data(), got.Count);
    EXPECT_GE(got.Age, 0);
    if (lost) *lost += got.LostBefore;
  }
  EXPECT_EQ(server.Count(), 0u);
  return all;
}

TEST(TQLXServer, KeepsWhatComesUntilItIsRead) {
  std::mt19937 random(3);
  TQLXServer server(MakeSource);
  QByteArray sent;
  for (int i = 0; i < 3000; ++i) {
    const QByteArray bytes(static_cast<qsizetype>(1 + random() % 300), static_cast<char>(random()));
    Bring(server, bytes);
    sent += bytes;
  }
  EXPECT_EQ(server.Count(), static_cast<std::size_t>(sent.size()));
  EXPECT_TRUE(ReadAll(server, 100) == sent);
  EXPECT_EQ(server.Ask([](QIODevice& device) { return device.isSequential(); }), true);
  EXPECT_EQ(server.Ask([](QIODevice&) { return QThread::currentThread() == qApp->thread(); }),
            false);
  Bring(server, "old");
  server.Clear();
  EXPECT_EQ(ReadAll(server, 100), "");
}

TEST(TQLXServer, DropsWhatThereIsNoRoomForInOneGap) {
  TQLXServer server(MakeSource);
  const QByteArray block(1 << 16, 'x');
  constexpr int kBlocks = TQLXServer::kMostBytes >> 16;
  for (int i = 0; i < kBlocks; ++i) Bring(server, block);
  std::vector<char> buffer(1000);
  Bring(server, "12345");
  EXPECT_EQ(server.Read(buffer).Count, 1000);
  Bring(server, "67");  // there is room again, but the gap is not over
  std::int64_t lost = 0;
  EXPECT_EQ(ReadAll(server, 5000, &lost).size(), kBlocks * block.size() - 1000);
  EXPECT_EQ(lost, 0);
  Bring(server, "new");
  const TQLXServer::TReceived behind = server.Read({buffer.data(), 1});
  EXPECT_EQ(buffer[0], 'n');
  EXPECT_EQ(behind.LostBefore, 7);
  EXPECT_EQ(ReadAll(server, 10, &lost), "ew");
  EXPECT_EQ(lost, 0) << "told once";
}

TEST(TQLXServer, TellsTheEndAndKeepsWhatCameBeforeAndMayGoAtAnyMoment) {
  for (int round = 0; round < 200; ++round) {
    TQLXServer server(MakeSource);
    if (round % 2) Bring(server, "some");
    EXPECT_FALSE(server.HasEnded());
    if (round % 4 != 3) continue;
    server.Do([](QIODevice& device) { static_cast<TSource&>(device).End(" more"); });
    if (round % 8 != 7) continue;
    EXPECT_TRUE(server.HasEnded());
    EXPECT_EQ(server.EndReason(), "pulled out");
    EXPECT_FALSE(server.Do([](QIODevice&) { ADD_FAILURE() << "it has ended"; }));
    EXPECT_EQ(ReadAll(server, 100), "some more");
  }
}

TEST(TQLXServer, GivesADeviceUpThatHangs) {
  std::promise<void> free;
  const auto door = std::make_shared<const std::shared_future<void>>(free.get_future());
  for (const bool making : {true, false}) {
    auto server = std::make_unique<TQLXServer>(
        [door, making](const TQLXServer::TEnd& end) {
          if (making) door->wait();
          return MakeSource(end);
        },
        milliseconds(20));
    EXPECT_FALSE(server->Ask([door](QIODevice&) { return door->wait(), 1; }).has_value());
    EXPECT_EQ(server->EndReason(), "it does not answer");
    EXPECT_FALSE(server->Do([](QIODevice&) {}));
    server.reset();
  }
  free.set_value();
  EXPECT_TRUE(QTest::qWaitFor([&door] { return door.use_count() == 1; })) << "left and gone";
}

}  // namespace
