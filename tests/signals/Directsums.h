#pragma once

#include <complex>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

using TColumn = std::vector<double>;

inline TColumn RandomValues(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  TColumn values(static_cast<std::size_t>(count));
  for (double& v : values) v = value(random);
  return values;
}

/// Sum of values[n] exp(2 pi i k n / length) over the values, for each k below `length`.
inline std::vector<std::complex<double>> DirectSums(const TColumn& real, const TColumn& imag,
                                                    int length) {
  std::vector<std::complex<double>> sums(static_cast<std::size_t>(length));
  for (std::size_t k = 0; k < sums.size(); ++k) {
    for (std::size_t n = 0; n < real.size(); ++n) {
      const double turns = static_cast<double>(k * n % sums.size()) / length;
      sums[k] += std::complex(real[n], imag[n]) * std::polar(1.0, 2.0 * std::numbers::pi * turns);
    }
  }
  return sums;
}
