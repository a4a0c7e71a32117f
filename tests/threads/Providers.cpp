

#include "components/sources/Filereader.h"
#include "components/sources/Simulator.h"
#include "components/sources/Stringreader.h"
#include "tests/components/sources/Providerfixture.h"

namespace {

constexpr int kLines = 3000;
constexpr int kLineBytes = 8;

/// Lines of eight bytes whose values count from `base`.
QStringList Lines(int base) {
  QStringList lines;
  for (int i = 0; i < kLines; ++i) lines << QString::number(base + i).rightJustified(7);
  return lines;
}

/// A place in the test where a provider lives, and what its next value has to be.
class TPlace {
 public:
  explicit TPlace(std::mt19937& random) : random_(random) {
    MakeClient();
    Make();
  }
  ~TPlace() { delete provider_; }

  void Act() {
    ++actions;
    const unsigned kind = random_() % 8;
    if (kind == 0) return Destroy();
    if (kind == 1) provider_->SetActive(false);
    if (kind < 3) return provider_->SetActive(!provider_->GetActive());
    if (kind == 3) {
      return provider_->SetReadMode(random_() % 2 ? TCustomDataProvider::rmReadPage
                                                  : TCustomDataProvider::rmContinuous);
    }
    if (kind == 4) return provider_->SetPageSize(static_cast<int>(1 + random_() % 5000));
    if (kind == 5) return ReplaceClient();
    Redirect();
  }
  void Wake() {
    if (!provider_) Make();
    provider_->SetActive(true);
  }

  long delivered = 0;
  long actions = 0;
  long destroyed = 0;

 private:
  void Make() {
    base_ = 0;
    next_ = 0;
    if (random_() % 3 == 0) {
      MakeSimulator();
    } else {
      MakeReader();
    }
    provider_->GetClientControls()->Add(client_.get());
    provider_->SetReadMode(TCustomDataProvider::rmContinuous);
    provider_->SetActive(true);
  }

  void MakeSimulator() {
    auto* simulator = new TSignalSimulator;
    simulator->SetFunction(TSignalSimulator::sfConstant);
    provider_ = simulator;
    reader_ = nullptr;
    redirect_ = [this, simulator] {
      base_ = static_cast<int>(random_() % 1000);
      simulator->SetAverage(base_);
    };
  }

  void MakeReader() {
    if (random_() % 2) {
      auto* reader = new TStringReader;
      reader->SetDataStrings(Lines(0));
      reader_ = reader;
      redirect_ = [this, reader] {
        // With the same lines again nothing would change.
        base_ += kLines;
        next_ = 0;
        if (base_ > 10 * kLines) base_ = 0;
        reader->SetDataStrings(Lines(base_));
        reader->SetStreamPosition(0);  // one may be waiting for the first stream
      };
    } else {
      auto* reader = new TFileReader;
      reader->SetFileName(WriteTestFile("lines", Lines(0).join('\n').toLatin1() + '\n'));
      reader_ = reader;
      redirect_ = [this, reader] {
        if (reader->GetStreamPosition() == 0) return;
        next_ = 0;
        reader->Reset();
      };
    }
    provider_ = reader_;
  }

  void Destroy() {
    ++destroyed;
    delete std::exchange(provider_, nullptr);
    reader_ = nullptr;
  }

  void MakeClient() {
    client_ = std::make_unique<TDataControl>();
    client_->AddLink(&link_, false);
  }
  /// The client may be the one that is notifying.
  void ReplaceClient() {
    MakeClient();
    provider_->GetClientControls()->Add(client_.get());
  }

  /// Another signal, text or place. The values that come after it are those of it.
  void Redirect() {
    if (!reader_ || random_() % 2) return redirect_();
    const int byte = static_cast<int>(random_() % (kLines * kLineBytes));
    if (byte == reader_->GetStreamPosition()) return;
    next_ = byte / kLineBytes;
    reader_->SetStreamPosition(byte);
  }

  void Take(double value) {
    ++delivered;
    ASSERT_TRUE(provider_);
    ASSERT_TRUE(provider_->GetActive() ||
                provider_->GetReadMode() == TCustomDataProvider::rmReadPage);
    ASSERT_EQ(value, base_ + next_);
    if (reader_) {
      ASSERT_EQ(reader_->GetStreamPosition(), (next_ + 1) * kLineBytes);
      next_ = (next_ + 1) % kLines;
    }
    if (random_() % 200 == 0) Act();
  }

  std::mt19937& random_;
  TValueLink link_{[this](double value) { Take(value); }};
  std::unique_ptr<TDataControl> client_;
  TCustomDataProvider* provider_ = nullptr;
  TStreamProvider* reader_ = nullptr;  ///< the provider, if it is a reader
  std::function<void()> redirect_;
  int base_ = 0;
  int next_ = 0;
};

TEST(ThreadsProvider, SurviveEverythingAtAnyMomentAndLoseNothing) {
  std::mt19937 random(4);
  TPlace places[] = {TPlace(random), TPlace(random), TPlace(random)};
  constexpr long kValues = 200'000;
  const auto all = [&](auto member) {
    return std::all_of(std::begin(places), std::end(places), member);
  };
  const bool ended = RunUntil([&] {
    for (TPlace& place : places) {
      place.Wake();
      if (random() % 3 == 0) place.Act();
    }
    return testing::Test::HasFatalFailure() ||
           all([](const TPlace& place) { return place.delivered >= kValues; });
  });
  EXPECT_TRUE(ended);
  EXPECT_TRUE(
      all([](const TPlace& place) { return place.actions > 1000 && place.destroyed > 100; }));
}

TEST(ThreadsProvider, GoWithoutWaitingForTheEventLoop) {
  TRecorder client;
  for (int round = 0; round < 200; ++round) {
    TSignalSimulator simulator;
    TStringReader reader;
    reader.SetDataStrings({"1 2 3"});
    for (TCustomDataProvider* provider : std::array<TCustomDataProvider*, 2>{&simulator, &reader}) {
      provider->GetClientControls()->Add(&client);
      provider->SetActive(true);
      if (round % 3 == 1) provider->SetActive(false);
      if (round % 3 == 2) QCoreApplication::processEvents();
    }
  }
}

TEST(ThreadsProvider, AreServedInANestedEventLoopButNotTheOneThatWaits) {
  TSignalSimulator one, two;
  TRecorder first, second;
  one.GetClientControls()->Add(&first);
  two.GetClientControls()->Add(&second);
  bool nested = false;
  first.OnGiven = [&](double) {
    if (nested) ADD_FAILURE() << "the next value came within the cascade of one";
    nested = true;
    const std::size_t before = second.given.size();
    EXPECT_TRUE(RunUntil([&] { return second.given.size() > before; }));
    nested = false;
  };
  one.SetActive(true);
  two.SetActive(true);
  EXPECT_TRUE(RunUntil([&] { return first.given.size() > 20; }));
}

}  // namespace
