#include "examples/generate/Pump.h"

#include <cmath>
#include <numbers>
#include <random>

#include "examples/generate/Decimals.h"

namespace {

using namespace pump;

double Sine(double amplitude, double frequency, double t, double phase = 0.0) {
  return amplitude * std::sin(2.0 * std::numbers::pi * frequency * t + phase);
}

/// Normal noise of standard deviation 1, the same on every machine: the sum of twelve uniform
/// draws.
double Noise(std::mt19937& random) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += random() / 4294967296.0;
  return sum - 6.0;
}

/// A blow in the middle of each second that rings at 120 Hz and dies away in 8 ms.
double Knock(double t) {
  const double since = std::fmod(t + 0.5, 1.0);
  return std::exp(-since / 0.008) * Sine(24.0, 120.0, since);
}

double Acceleration(double t) {
  return Sine(6.0, kRunning, t) + Sine(2.5, 2.0 * kRunning, t, 1.0) +
         Sine(1.5, kBlades * kRunning, t, 0.5) + Knock(t);
}

double Pressure(double t) { return 6.0 + Sine(0.8, 2.0, t) + Sine(0.3, kBlades * kRunning, t); }

}  // namespace

std::string MakePumpRecord() {
  std::string text =
      "# A pump, 8 seconds at 1024 rows a second.\n"
      "# Acceleration of the bearing [V, 0.1 V per g], pressure [V, 1 V at 0 bar, 10 V at 18 "
      "bar]\n";
  std::mt19937 random(1024);
  for (int row = 0; row < kRows; ++row) {
    const double t = static_cast<double>(row) / kSampleRate;
    const double acceleration = Acceleration(t) + 0.4 * Noise(random);
    const double pressure = Pressure(t) + 0.05 * Noise(random);
    const bool isDropout = row % kRowsPerDropout == kRowsPerDropout / 2;
    AppendReal(text, acceleration / kAccelerationPerVolt, 4, 8);
    AppendReal(text, isDropout ? 0.0 : (pressure - kPressureAtZeroVolt) / kPressurePerVolt, 4, 8);
    text += '\n';
  }
  return text;
}
