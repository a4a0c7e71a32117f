#pragma once

#include "components/links/Compclasses.h"
#include "components/sources/Dataprovider.h"
#include "tests/support/Testing.h"

/// A control that keeps all it was given, and may do something with each value.
struct TRecorder : TDataControl {
  void SetValue(double value) override {
    given.push_back(value);
    TDataControl::SetValue(value);
    if (OnGiven) OnGiven(value);
  }
  std::vector<double> given;
  std::function<void(double)> OnGiven;
};

/// 0, 1, 2, ...
inline void ExpectCounting(const std::vector<double>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], i);
}

/// Lets the provider stop after each so many values.
inline void SetPages(TCustomDataProvider& provider, int size) {
  provider.SetReadMode(TCustomDataProvider::rmReadPage);
  provider.SetPageSize(size);
}

/// Runs the event loop until `done`; false if that takes a minute.
inline bool RunUntil(const std::function<bool()>& done) {
  QTimer tick;  // ends a wait in which nothing else comes
  tick.start(50);
  const QDeadlineTimer limit(60'000);
  while (!done() && !limit.hasExpired()) {
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return done();
}

/// Activates the provider and runs until it has stopped by itself.
inline bool RunToStop(TCustomDataProvider& provider) {
  provider.SetActive(true);
  return RunUntil([&] { return !provider.GetActive(); });
}

/// A provider with a client of its own.
template <class TProvider>
struct TFeeding : TProvider {
  TFeeding() { this->GetClientControls()->Add(&client); }
  /// Runs until it has stopped by itself. Returns what the client was given meanwhile.
  std::vector<double> Run() {
    client.given.clear();
    EXPECT_TRUE(RunToStop(*this));
    return client.given;
  }
  const std::vector<double>& given() const { return client.given; }
  TRecorder client;
};
