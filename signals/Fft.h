#pragma once

#include <vector>

/// The radix-2 fast Fourier transform of one length, by decimation in time, over separate arrays of
/// real and imaginary parts. What depends on the length alone is tabulated once.
///
/// The forward transform is X[k] = sum of x[n] exp(+2 pi i k n / length); note the sign, by which a
/// sine has the phase +pi / 2. The inverse has the other sign and divides by the length, so that it
/// takes the forward one back. Arrays have `length` values; results may not lie over inputs. Same
/// results on every processor. Const calls may come from any thread.
class TRadix2Fft {
 public:
  static constexpr int kMinLength = 4;

  /// `length` is a power of two, kMinLength or more.
  explicit TRadix2Fft(int length);

  int Length() const { return length_; }
  /// log2 of the length.
  int NumOfBits() const { return bits_; }
  /// `index`, 0 to length - 1, with the order of its bits turned round.
  int ReverseBits(int index) const;

  /// A null `imag` counts as zeros, and is the faster way to say so.
  void Forward(const double* real, const double* imag, double* outReal, double* outImag) const;
  void Inverse(const double* real, const double* imag, double* outReal, double* outImag) const;

 private:
  void Tabulate(int half);

  int length_;
  int bits_;
  std::vector<int> reversed_;  ///< bit-reversed positions of every fourth index
  /// cos and sin of 2 pi n / block for n below block / 2, from index block / 2 on, for each block
  /// size 2, 4, ... length.
  std::vector<double> cos_;
  std::vector<double> sin_;
};
