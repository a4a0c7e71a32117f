#include "components/sources/Simulator.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>
#include <random>

#include "components/links/Random.h"
#include "components/sources/Datathread.h"

namespace {

constexpr int kPeriod = 30;  ///< samples of the sine

/// The signal, and where it stands: at the last delivered value.
struct TSignal {
  TSignalSimulator::TSimFuncType function = TSignalSimulator::sfConstant;
  double average = 0.0;
  double amplitude = 0.0;
  int counter = 0;
  int clientIndex = -1;
  int clientCount = 0;
};

/// Each generator has a sequence of its own, so that the noise of two simulators is independent.
unsigned NextSeed() {
  static std::atomic<unsigned> seed{1};
  return seed++;
}

}  // namespace

class TSimulationThread : public TDataThread {
 public:
  ~TSimulationThread() override { Terminate(); }

  /// In OnValues.
  void SetWork(const TSignal& signal) {
    signal_ = signal;
    BeginWork();
  }

 protected:
  void GetNextValue() override {
    while (!IsFull()) {
      if (signal_.function == TSignalSimulator::sfSinusoid) MoveOn();
      AddValue(Value(), static_cast<std::uint32_t>(signal_.counter));
    }
  }

 private:
  /// The sine moves on when the last client has had its sample.
  void MoveOn() {
    const int last = signal_.clientCount - 1;
    if (signal_.clientIndex == last) signal_.counter = (signal_.counter + 1) % kPeriod;
    if (last >= 0) signal_.clientIndex = signal_.clientIndex < last ? signal_.clientIndex + 1 : 0;
  }

  double Value() {
    const TSignal& s = signal_;
    switch (s.function) {
      case TSignalSimulator::sfConstant:
        break;
      case TSignalSimulator::sfNormalDistribution:
        return s.average + s.amplitude * normal_(generator_);
      case TSignalSimulator::sfRandom:
        return s.average + s.amplitude * (2.0 * Random15() / kRandom15Max - 1.0);
      case TSignalSimulator::sfSinusoid:
        return s.average + s.amplitude * std::sin(2.0 * std::numbers::pi * s.counter / kPeriod);
    }
    return s.average;
  }

  TSignal signal_;
  std::mt19937 generator_{NextSeed()};
  std::normal_distribution<double> normal_;
};

TSignalSimulator::TSignalSimulator(QWidget* parent)
    : TThreadProvider(std::make_unique<TSimulationThread>(), parent) {
  SetStateImages(QStringLiteral("SimulatorIdle"), QStringLiteral("SimulatorActive"),
                 QStringLiteral("SimulatorDown"));
  connect(GetClientControls(), &TPersistent::OnChange, this, [this] { Thread().Discard(); });
  connect(this, &TStateControl::OnActiveChanged, this, &TSignalSimulator::RestartClock);
}

TSimulationThread& TSignalSimulator::Worker() { return static_cast<TSimulationThread&>(Thread()); }

void TSignalSimulator::SetFinite(double& field, double value) {
  if (value == field || !std::isfinite(value)) return;
  field = value;
  Thread().Discard();
}

void TSignalSimulator::SetAverage(double average) { SetFinite(average_, average); }

void TSignalSimulator::SetAmplitude(double amplitude) { SetFinite(amplitude_, amplitude); }

void TSignalSimulator::SetFunction(TSimFuncType function) {
  if (function == function_ || function < sfConstant || function > sfSinusoid) return;
  function_ = function;
  Thread().Discard();
}

void TSignalSimulator::SetRate(double rate) {
  if (rate == rate_ || !std::isfinite(rate) || rate < 0.0) return;
  rate_ = rate;
  RestartClock();
}

void TSignalSimulator::RestartClock() {
  started_ = std::chrono::steady_clock::now();
  delivered_ = 0.0;
}

bool TSignalSimulator::MayDeliver() {
  if (rate_ == 0.0) return true;
  constexpr double kMostSeconds = 0.25;
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - started_;
  const double due = passed.count() * rate_;
  delivered_ = std::max(delivered_, due - kMostSeconds * rate_ - 1.0);
  return delivered_ < due;
}

void TSignalSimulator::Reset() {
  TThreadProvider::Reset();
  Thread().Discard();
}

void TSignalSimulator::ValueTaken() { counter_ = static_cast<int>(Thread().GetLast().mark); }

TSignalSimulator::TAnswer TSignalSimulator::NextWork() {
  Worker().SetWork(
      {function_, average_, amplitude_, counter_, GetClientIndex(), GetClientControls()->Count()});
  return TAnswer::Done;
}
