#include "signals/Fft.h"

#include <QtGlobal>
#include <bit>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

// The loops below run over pieces of an array that do not overlap, which no compiler can see.
#if defined(__clang__)
#define VELMORA_VECTOR_LOOP _Pragma("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#define VELMORA_VECTOR_LOOP _Pragma("GCC ivdep")
#elif defined(_MSC_VER)
#define VELMORA_VECTOR_LOOP __pragma(loop(ivdep))
#else
#define VELMORA_VECTOR_LOOP
#endif

// Wider vectors where the processor has them. Without fused multiplications the results are the
// same ones. A sanitized program cannot run the code that chooses, so early does it run.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) && \
    !defined(VELMORA_SANITIZED)
#define VELMORA_VECTOR_CLONES __attribute__((target_clones("default", "avx2")))
#else
#define VELMORA_VECTOR_CLONES
#endif

namespace {

/// Factors of one block size.
struct TTwiddles {
  const double* cos;
  const double* sin;
};

/// Blocks of 2 and of 4 in one pass, over the input in bit-reversed order. Their factors are 1
/// and i.
template <bool kHasImag>
void FirstStages(int length, const int* reversed, const double* real, const double* imag,
                 double* outReal, double* outImag) {
  const int quarter = length / 4;
  const auto imagAt = [imag](int index) { return kHasImag ? imag[index] : 0.0; };
  for (int i = 0; i < quarter; ++i) {
    const int at0 = reversed[i];
    const int at1 = at0 + 2 * quarter;
    const int at2 = at0 + quarter;
    const int at3 = at2 + 2 * quarter;
    const double real0 = real[at0] + real[at1];
    const double real1 = real[at0] - real[at1];
    const double real2 = real[at2] + real[at3];
    const double real3 = real[at2] - real[at3];
    const double imag0 = imagAt(at0) + imagAt(at1);
    const double imag1 = imagAt(at0) - imagAt(at1);
    const double imag2 = imagAt(at2) + imagAt(at3);
    const double imag3 = imagAt(at2) - imagAt(at3);
    double* re = outReal + std::ptrdiff_t{4} * i;
    double* im = outImag + std::ptrdiff_t{4} * i;
    re[0] = real0 + real2;
    re[1] = real1 - imag3;
    re[2] = real0 - real2;
    re[3] = real1 + imag3;
    im[0] = imag0 + imag2;
    im[1] = imag1 + real3;
    im[2] = imag0 - imag2;
    im[3] = imag1 - real3;
  }
}

/// `half`, which is a multiple of 4, said so that the compiler knows it too.
constexpr int WholeVectors(int half) { return half & ~3; }

/// Joins blocks of `half` into blocks of 2 x half.
VELMORA_VECTOR_CLONES
void Stage(int length, int half, TTwiddles w, double* real, double* imag) {
  for (int block = 0; block < length; block += 2 * half) {
    double* re0 = real + block;
    double* im0 = imag + block;
    double* re1 = re0 + half;
    double* im1 = im0 + half;
    VELMORA_VECTOR_LOOP
    for (int n = 0; n < WholeVectors(half); ++n) {
      const double re = w.cos[n] * re1[n] - w.sin[n] * im1[n];
      const double im = w.cos[n] * im1[n] + w.sin[n] * re1[n];
      re1[n] = re0[n] - re;
      im1[n] = im0[n] - im;
      re0[n] += re;
      im0[n] += im;
    }
  }
}

/// Two stages in one pass, which halves the traffic: joins blocks of `half` into blocks of
/// 2 x half, by the factors `w`, and these into blocks of 4 x half, by `v`.
VELMORA_VECTOR_CLONES
void TwoStages(int length, int half, TTwiddles w, TTwiddles v, double* real, double* imag) {
  for (int block = 0; block < length; block += 4 * half) {
    double* re0 = real + block;
    double* im0 = imag + block;
    double* re1 = re0 + half;
    double* im1 = im0 + half;
    double* re2 = re1 + half;
    double* im2 = im1 + half;
    double* re3 = re2 + half;
    double* im3 = im2 + half;
    const double* vCosHigh = v.cos + half;
    const double* vSinHigh = v.sin + half;
    VELMORA_VECTOR_LOOP
    for (int n = 0; n < WholeVectors(half); ++n) {
      const double wr1 = w.cos[n] * re1[n] - w.sin[n] * im1[n];
      const double wi1 = w.cos[n] * im1[n] + w.sin[n] * re1[n];
      const double wr3 = w.cos[n] * re3[n] - w.sin[n] * im3[n];
      const double wi3 = w.cos[n] * im3[n] + w.sin[n] * re3[n];
      const double ar0 = re0[n] + wr1;
      const double ai0 = im0[n] + wi1;
      const double ar1 = re0[n] - wr1;
      const double ai1 = im0[n] - wi1;
      const double ar2 = re2[n] + wr3;
      const double ai2 = im2[n] + wi3;
      const double ar3 = re2[n] - wr3;
      const double ai3 = im2[n] - wi3;
      const double vr2 = v.cos[n] * ar2 - v.sin[n] * ai2;
      const double vi2 = v.cos[n] * ai2 + v.sin[n] * ar2;
      const double vr3 = vCosHigh[n] * ar3 - vSinHigh[n] * ai3;
      const double vi3 = vCosHigh[n] * ai3 + vSinHigh[n] * ar3;
      re0[n] = ar0 + vr2;
      im0[n] = ai0 + vi2;
      re1[n] = ar1 + vr3;
      im1[n] = ai1 + vi3;
      re2[n] = ar0 - vr2;
      im2[n] = ai0 - vi2;
      re3[n] = ar1 - vr3;
      im3[n] = ai1 - vi3;
    }
  }
}

}  // namespace

TRadix2Fft::TRadix2Fft(int length)
    : length_(length),
      bits_(std::countr_zero(static_cast<unsigned>(length))),
      cos_(static_cast<std::size_t>(length)),
      sin_(static_cast<std::size_t>(length)) {
  Q_ASSERT(length >= kMinLength && std::has_single_bit(static_cast<unsigned>(length)));
  for (int index = 0; index < length; index += 4) reversed_.push_back(ReverseBits(index));
  for (int half = 1; half < length; half *= 2) Tabulate(half);
}

/// Each factor comes from the two before it, so that a block size takes four calls of sine and
/// cosine.
void TRadix2Fft::Tabulate(int half) {
  const double delta = std::numbers::pi / half;
  const double w = 2.0 * std::cos(-delta);
  double cos1 = std::cos(-delta);
  double sin1 = std::sin(-delta);
  double cos2 = std::cos(-2.0 * delta);
  double sin2 = std::sin(-2.0 * delta);
  for (int n = 0; n < half; ++n) {
    const double cos = w * cos1 - cos2;
    const double sin = w * sin1 - sin2;
    const auto at = static_cast<std::size_t>(half) + static_cast<std::size_t>(n);
    cos_[at] = cos;
    sin_[at] = sin;
    cos2 = std::exchange(cos1, cos);
    sin2 = std::exchange(sin1, sin);
  }
}

int TRadix2Fft::ReverseBits(int index) const {
  int reversed = 0;
  for (int bit = 0; bit < bits_; ++bit) {
    reversed = reversed << 1 | (index & 1);
    index >>= 1;
  }
  return reversed;
}

void TRadix2Fft::Forward(const double* real, const double* imag, double* outReal,
                         double* outImag) const {
  if (imag) {
    FirstStages<true>(length_, reversed_.data(), real, imag, outReal, outImag);
  } else {
    FirstStages<false>(length_, reversed_.data(), real, nullptr, outReal, outImag);
  }
  const auto twiddles = [this](int half) {
    return TTwiddles{cos_.data() + half, sin_.data() + half};
  };
  int half = 4;
  if (bits_ % 2 != 0) {
    Stage(length_, half, twiddles(half), outReal, outImag);
    half *= 2;
  }
  for (; half < length_; half *= 4) {
    TwoStages(length_, half, twiddles(half), twiddles(2 * half), outReal, outImag);
  }
}

/// The inverse is the forward transform with real and imaginary parts exchanged on both sides.
void TRadix2Fft::Inverse(const double* real, const double* imag, double* outReal,
                         double* outImag) const {
  if (imag) {
    Forward(imag, real, outImag, outReal);
  } else {
    Forward(real, nullptr, outReal, outImag);
  }
  const double scale = 1.0 / length_;
  const double imagScale = imag ? scale : -scale;
  for (int i = 0; i < length_; ++i) {
    outReal[i] *= scale;
    outImag[i] *= imagScale;
  }
}
