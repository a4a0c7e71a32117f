// How long one transform takes, beside that of FFTW where its package (Debian libfftw3-dev) is
// installed, and what a value costs in a Fourier channel. The transforms are checked against direct
// sums.

#include <QApplication>
#include <cmath>
#include <numbers>
#include <vector>

#include "bench/Bench.h"
#include "components/sources/Fourier.h"

#ifdef VELMORA_FFTW
#include <fftw3.h>
#endif

namespace {

struct TSignal {
  std::vector<double> real;
  std::vector<double> imag;

  explicit TSignal(int length) : real(static_cast<std::size_t>(length)), imag(real) {}
};

TSignal TestSignal(int length) {
  TSignal signal(length);
  for (std::size_t n = 0; n < signal.real.size(); ++n) {
    const double x = static_cast<double>(n);
    signal.real[n] = std::sin(1.3 * x) + std::cos(0.01 * x * x);
    signal.imag[n] = std::cos(2.7 * x);
  }
  return signal;
}

/// Largest distance of a result from the direct sum.
double Error(const TSignal& in, const TSignal& out) {
  const std::size_t length = in.real.size();
  double error = 0.0;
  for (std::size_t k = 0; k < length; ++k) {
    double real = 0.0;
    double imag = 0.0;
    for (std::size_t n = 0; n < length; ++n) {
      const double angle = 2.0 * std::numbers::pi * static_cast<double>(k * n % length) /
                           static_cast<double>(length);
      real += in.real[n] * std::cos(angle) - in.imag[n] * std::sin(angle);
      imag += in.imag[n] * std::cos(angle) + in.real[n] * std::sin(angle);
    }
    error = std::max(error, std::hypot(real - out.real[k], imag - out.imag[k]));
  }
  return error;
}

/// Microseconds of one call.
template <class TCall>
double Microseconds(const TBench& bench, TCall call) {
  const int calls = bench.Quick() ? 1 : 2000;
  const double seconds = bench.Seconds(25, [&] {
    for (int i = 0; i < calls; ++i) call();
  });
  return 1e6 * seconds / calls;
}

#ifdef VELMORA_FFTW
double TimeFftw(const TBench& bench, const TSignal& in, TSignal& out) {
  const std::size_t length = in.real.size();
  fftw_complex* from = fftw_alloc_complex(length);
  fftw_complex* to = fftw_alloc_complex(length);
  fftw_plan plan =
      fftw_plan_dft_1d(static_cast<int>(length), from, to, FFTW_BACKWARD, FFTW_ESTIMATE);
  for (std::size_t n = 0; n < length; ++n) {
    from[n][0] = in.real[n];
    from[n][1] = in.imag[n];
  }
  const double time = Microseconds(bench, [&] { fftw_execute(plan); });
  for (std::size_t n = 0; n < length; ++n) {
    out.real[n] = to[n][0];
    out.imag[n] = to[n][1];
  }
  fftw_destroy_plan(plan);
  fftw_free(from);
  fftw_free(to);
  return time;
}
#endif

void BenchTransform(TBench& bench, int length) {
  const std::string points = std::to_string(length) + " points";
  const TRadix2Fft fft(length);
  const TSignal in = TestSignal(length);
  TSignal out(length);
  const double time = Microseconds(bench, [&] {
    fft.Forward(in.real.data(), in.imag.data(), out.real.data(), out.imag.data());
  });
  bench.Row(points, time, "us");
  bench.Check(Error(in, out) < 1e-7, "transform of " + points);
#ifdef VELMORA_FFTW
  const double fftwTime = TimeFftw(bench, in, out);
  bench.Row(points + ", FFTW with an estimated plan", fftwTime, "us");
  bench.Row(points + ", times that of FFTW", time / fftwTime, "");
  bench.Check(Error(in, out) < 1e-7, "FFTW's transform of " + points);
#endif
  TSignal real(length);
  const double realTime = Microseconds(
      bench, [&] { fft.Forward(in.real.data(), nullptr, real.real.data(), real.imag.data()); });
  bench.Row(points + ", real", realTime, "us");
  TSignal alone = in;
  alone.imag.assign(alone.imag.size(), 0.0);
  bench.Check(Error(alone, real) < 1e-7, "transform of real " + points);
}

void BenchChannel(TBench& bench) {
  constexpr int kBlock = 1024;
  const int blocks = bench.Quick() ? 1 : 50;
  TFFTChannel channel;
  channel.SetPointCount(kBlock);
  channel.SetSampleRate(kBlock);
  channel.SetUpperFilter(0.5 * kBlock);
  std::vector<double> sine;
  sine.reserve(kBlock);
  for (int i = 0; i < kBlock; ++i) {
    sine.push_back(std::sin(2.0 * std::numbers::pi * 5.0 * i / kBlock));
  }
  const auto run = [&] {
    for (int block = 0; block < blocks; ++block) {
      for (const double value : sine) channel.SetValue(value);
    }
  };
  const double seconds = bench.Seconds(15, run, [&] { channel.Reset(); });
  bench.Row("a value into a channel of 1024 points", 1e9 * seconds / blocks / kBlock, "ns");
  const double power = channel.GetData()->GetValues(5, TFFTChannel::fftPower);
  bench.Check(channel.GetCumulCount() == blocks && std::abs(power / blocks - 0.25) < 1e-9,
              "power of the sine");
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  for (const int length : {32, 128, 1024, 4096}) BenchTransform(bench, length);
  BenchChannel(bench);
  return bench.Result();
}
