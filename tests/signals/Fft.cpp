#include "signals/Fft.h"

#include "tests/signals/Directsums.h"
#include "tests/support/Testing.h"

namespace {

using testing::DoubleNear;
using testing::Pointwise;

TEST(TRadix2Fft, IsTheDirectSumAtEveryLength) {
  for (const int length : {4, 8, 16, 32, 64, 128, 256, 512}) {
    SCOPED_TRACE(length);
    const TRadix2Fft fft(length);
    const TColumn real = RandomValues(length, 1), imag = RandomValues(length, 2),
                  zeros(real.size());
    for (const bool hasImag : {true, false}) {
      TColumn outReal(real.size()), outImag(real.size());
      fft.Forward(real.data(), hasImag ? imag.data() : nullptr, outReal.data(), outImag.data());
      const auto sums = DirectSums(real, hasImag ? imag : zeros, length);
      for (std::size_t k = 0; k < sums.size(); ++k) {
        ASSERT_NEAR(outReal[k], sums[k].real(), 1e-9) << k;
        ASSERT_NEAR(outImag[k], sums[k].imag(), 1e-9) << k;
      }
    }
  }
}

TEST(TRadix2Fft, KeepsTheEnergyAndIsTakenBackByTheInverse) {
  for (const int length : {32, 2048, 4096}) {
    const TRadix2Fft fft(length);
    const TColumn real = RandomValues(length, 3);
    const TColumn imag = RandomValues(length, 4);
    const TColumn zeros(real.size());
    TColumn outReal(real.size()), outImag(real.size());
    fft.Forward(real.data(), imag.data(), outReal.data(), outImag.data());
    const auto energy = [](const TColumn& re, const TColumn& im) {
      double sum = 0.0;
      for (std::size_t i = 0; i < re.size(); ++i) sum += re[i] * re[i] + im[i] * im[i];
      return sum;
    };
    EXPECT_NEAR(energy(outReal, outImag) / length / energy(real, imag), 1.0, 1e-10);

    TColumn backReal(real.size()), backImag(real.size());
    fft.Inverse(outReal.data(), outImag.data(), backReal.data(), backImag.data());
    EXPECT_THAT(backReal, Pointwise(DoubleNear(1e-9), real));
    EXPECT_THAT(backImag, Pointwise(DoubleNear(1e-9), imag));

    // A spectrum without imaginary part, said in both ways.
    TColumn sameReal(real.size()), sameImag(real.size());
    fft.Inverse(real.data(), nullptr, backReal.data(), backImag.data());
    fft.Inverse(real.data(), zeros.data(), sameReal.data(), sameImag.data());
    EXPECT_THAT(backReal, Pointwise(DoubleNear(1e-12), sameReal));
    EXPECT_THAT(backImag, Pointwise(DoubleNear(1e-12), sameImag));
  }
}

}  // namespace
