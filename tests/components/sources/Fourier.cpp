#include "components/sources/Fourier.h"

#include <span>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Graph.h"
#include "tests/signals/Directsums.h"
#include "tests/support/Testing.h"

namespace {

using enum TFFTChannel::TFFTOutput;

constexpr double kPi = std::numbers::pi;

TEST(TFFT, RoundsTheSampleCountToArrays) {
  const std::tuple<int, int, int, int> cases[] = {
      {10, 32, 32, 5},    {-1, 32, 32, 5},        {33, 33, 64, 6},        {100, 100, 128, 7},
      {128, 128, 128, 7}, {1025, 1025, 2048, 11}, {5000, 4096, 4096, 12}, {INT_MAX, 4096, 4096, 12},
  };
  for (const auto& [count, samples, length, bits] : cases) {
    TFFT fft;
    fft.SetSampleCount(count);
    EXPECT_EQ(fft.GetSampleCount(), samples);
    EXPECT_EQ(fft.ArrayLength(), length);
    EXPECT_EQ(fft.NumOfBits(), bits);
    EXPECT_EQ(fft.OutputReal().size(), static_cast<std::size_t>(length));
    EXPECT_EQ(fft.ReverseBits(1), length / 2);
    EXPECT_EQ(fft.ReverseBits(6), length / 8 * 3);
    int transforms = 0;
    fft.OnTransform = [&](TFFT& sender) { transforms += &sender == &fft; };
    fft.AddValue(1.0);
    fft.Reset();
    for (int n = 1; n <= samples; ++n) {
      EXPECT_EQ(transforms, 0);
      fft.AddValue(1.0);
    }
    EXPECT_EQ(transforms, 1);
  }
}

/// A channel whose bins are 1 Hz apart, up to `pointCount` / 2 Hz.
struct TFourier {
  explicit TFourier(int pointCount = 128) {
    channel.SetPointCount(pointCount);
    channel.SetSampleRate(pointCount);
    channel.SetUpperFilter(pointCount);
  }

  /// One block of amplitude x sin(2 pi frequency t + phase).
  void AddSine(double amplitude, double frequency, double phase = 0.0) {
    const double step = 2.0 * kPi * frequency / channel.GetPointCount();
    for (int n = 0; n < channel.GetPointCount(); ++n) {
      channel.SetValue(amplitude * std::sin(step * n + phase));
    }
  }
  void AddBlock(const TColumn& values) {
    for (const double value : values) channel.SetValue(value);
  }

  double At(int bin, TFFTChannel::TFFTOutput column) {
    return channel.GetData()->GetValues(bin, column);
  }
  /// The curve, as its points come one by one.
  std::vector<TCoordinate> Curve(TFFTChannel::TFFTOutput output) {
    channel.SetOutput(output);
    std::vector<TCoordinate> points;
    TCoordinate point, extent;
    for (int index = 0; channel.ProvideGraphData(index, point, extent);) {
      points.push_back(point);
      const double width = output == fftInverse ? 1.0 : channel.BinWidth();
      EXPECT_EQ(extent, (TCoordinate{width, width}));
      EXPECT_EQ(index, static_cast<int>(points.size()));
    }
    return points;
  }

  TFFTChannel channel;
};

TEST(TFFTChannel, ShowsASineInItsBinAlone) {
  // Amplitude 2 at 5 Hz: half of it in the bin, the other half mirrored above 64 Hz.
  const std::tuple<double, double, double, double> cases[] = {
      {0.0, 0.0, 1.0, kPi / 2.0},    // a sine
      {kPi / 2.0, 1.0, 0.0, 0.0},    // a cosine
      {kPi, 0.0, -1.0, -kPi / 2.0},  // a sine upside down
  };
  for (const auto& [phase, real, imag, angle] : cases) {
    SCOPED_TRACE(phase);
    TFourier fourier;
    fourier.AddSine(2.0, 5.0, phase);
    for (int bin = 0; bin < 128; ++bin) {
      EXPECT_EQ(fourier.At(bin, fftFrequency), bin);
      EXPECT_NEAR(fourier.At(bin, fftPower), bin == 5 ? 1.0 : 0.0, 1e-12);
      EXPECT_NEAR(fourier.At(bin, fftReAmplitude), bin == 5 ? real : 0.0, 1e-12);
      EXPECT_NEAR(fourier.At(bin, fftImAmplitude), bin == 5 ? imag : 0.0, 1e-12);
    }
    EXPECT_NEAR(fourier.At(5, fftPhase), angle, 1e-12);
  }
  // Half of the sample rate has a real part, and is no line any more.
  TFourier highest;
  for (int n = 0; n < 128; ++n) highest.channel.SetValue(n % 2 ? -1.0 : 1.0);
  EXPECT_NEAR(highest.At(64, fftReAmplitude), 1.0, 1e-12);
  EXPECT_EQ(highest.At(64, fftPower), 0.0);
}

TEST(TFFTChannel, AveragesItsBlocks) {
  TFourier fourier;
  for (const double amplitude : {2.0, 4.0, 6.0}) fourier.AddSine(amplitude, 5.0, kPi / 4.0);
  EXPECT_EQ(fourier.channel.GetCumulCount(), 3);
  EXPECT_NEAR(fourier.At(5, fftPower), 1.0 + 4.0 + 9.0, 1e-11);
  const double diagonal = 2.0 * std::sqrt(0.5);
  const std::pair<TFFTChannel::TFFTOutput, double> cases[] = {
      {fftFrequency, 5.0 / 3.0},  // as every column
      {fftPower, 14.0 / 3.0},     {fftPhase, kPi / 4.0},
      {fftReAmplitude, diagonal}, {fftImAmplitude, diagonal},
  };
  for (const auto& [output, y] : cases) {
    SCOPED_TRACE(output);
    const std::vector<TCoordinate> curve = fourier.Curve(output);
    ASSERT_EQ(curve.size(), 64u);
    EXPECT_EQ(curve[5].X, 5.0);
    EXPECT_NEAR(curve[5].Y, y, 1e-11);
    EXPECT_EQ(curve[63].X, 63.0);
  }
}

TEST(TFFTChannel, TakesTheBandBackToValues) {
  TFourier fourier;
  fourier.channel.SetUpperFilter(10.0);
  fourier.channel.SetLowerFilter(2.0);
  const auto mix = [](double t, double slow, double middle, double fast) {
    return slow * std::sin(2.0 * kPi * 2.0 * t) + middle * std::sin(2.0 * kPi * 10.0 * t) +
           fast * std::sin(2.0 * kPi * 11.0 * t);
  };
  // The band reaches from above 2 Hz to 10 Hz itself; the means are 3 in it and 5 outside.
  for (const double shift : {-1.0, 1.0}) {
    TColumn block;
    for (int n = 0; n < 128; ++n) block.push_back(mix(n / 128.0, 5.0, 3.0 + shift, 5.0));
    fourier.AddBlock(block);
  }
  const std::vector<TCoordinate> curve = fourier.Curve(fftInverse);
  ASSERT_EQ(curve.size(), 128u);
  for (int n = 0; n < 128; ++n) {
    const TCoordinate& point = curve[static_cast<std::size_t>(n)];
    EXPECT_EQ(point.X, n);
    // Without the mirror image half the amplitude is left.
    EXPECT_NEAR(point.Y, 0.5 * mix(n / 128.0, 0.0, 3.0, 0.0), 1e-11);
  }
  EXPECT_EQ(fourier.At(2, fftPower), 0.0);
  EXPECT_EQ(fourier.At(11, fftPower), 0.0);
}

TEST(TFFTChannel, FillsABlockUpWithZerosToAPowerOfTwo) {
  TFourier fourier(100);
  EXPECT_EQ(fourier.channel.GetData()->Count(), 100);
  EXPECT_EQ(fourier.At(99, fftFrequency), 99.0);
  const TColumn values = RandomValues(100, 5);
  const auto sums = DirectSums(values, TColumn(100), 128);
  // The inverse after each block leaves nothing in the next one.
  for (int blocks = 1; blocks <= 3; ++blocks) {
    fourier.AddBlock(values);
    for (int bin = 1; bin < 50; ++bin) {
      const auto sum = static_cast<double>(blocks) * sums[static_cast<std::size_t>(bin)] / 100.0;
      ASSERT_NEAR(fourier.At(bin, fftReAmplitude), sum.real(), 1e-11) << bin;
      ASSERT_NEAR(fourier.At(bin, fftImAmplitude), sum.imag(), 1e-11) << bin;
    }
  }
  EXPECT_EQ(fourier.Curve(fftPower).size(), 50u);
  EXPECT_EQ(fourier.Curve(fftInverse).size(), 100u);
}

TEST(TFFTChannel, TakesOnlyBandsAndRates) {
  // Of a channel of 100 Hz with a band from 10 Hz to 40 Hz.
  const auto lower = &TFFTChannel::SetLowerFilter, upper = &TFFTChannel::SetUpperFilter,
             rate = &TFFTChannel::SetSampleRate;
  const std::tuple<void (TFFTChannel::*)(double), double, double, double, double> cases[] = {
      {upper, 30, 100, 10, 30},      {upper, 60, 100, 10, 50},   {upper, kInfinity, 100, 10, 50},
      {lower, 0, 100, 0, 40},        {lower, 39, 100, 39, 40},   {rate, 200, 200, 10, 40},
      {upper, 40, 100, 10, 40},      {upper, 10, 100, 10, 40},   {upper, -1, 100, 10, 40},
      {upper, kNan, 100, 10, 40},    {lower, 10, 100, 10, 40},   {lower, 40, 100, 10, 40},
      {lower, -1, 100, 10, 40},      {lower, kNan, 100, 10, 40}, {rate, 100, 100, 10, 40},
      {rate, 0, 100, 10, 40},        {rate, -5, 100, 10, 40},    {rate, kNan, 100, 10, 40},
      {rate, kInfinity, 100, 10, 40}};
  for (const auto& c : cases) {
    const auto& [set, value, newRate, newLower, newUpper] = c;
    SCOPED_TRACE(testing::Message() << &c - cases << ": " << value);
    const bool starts = &c - cases < 6;  // the others change nothing
    TFourier fourier;
    fourier.channel.SetSampleRate(100.0);
    fourier.channel.SetUpperFilter(40.0);
    fourier.channel.SetLowerFilter(10.0);
    fourier.AddSine(1.0, 20.0);
    (fourier.channel.*set)(value);
    EXPECT_EQ(fourier.channel.GetSampleRate(), newRate);
    EXPECT_EQ(fourier.channel.GetLowerFilter(), newLower);
    EXPECT_EQ(fourier.channel.GetUpperFilter(), newUpper);
    EXPECT_EQ(fourier.channel.GetCumulCount(), starts ? 0 : 1);
    EXPECT_EQ(fourier.At(20, fftPower) == 0.0, starts);
    EXPECT_EQ(fourier.At(96, fftFrequency), 0.75 * newRate);
    EXPECT_EQ(fourier.channel.BinWidth(), newRate / 128.0);
  }
}

TEST(TFFTChannel, LosesAPartlyFilledBlockWithItsLengthOnly) {
  TFourier fourier;
  const TColumn half(64, 1.0);
  fourier.AddBlock(half);
  fourier.channel.GetResetFFT()->SetClick(true);
  fourier.channel.SetSampleRate(200.0);
  fourier.channel.SetPointCount(128);
  fourier.AddBlock(half);
  EXPECT_EQ(fourier.channel.GetCumulCount(), 1);
  fourier.AddBlock(half);
  fourier.channel.SetPointCount(64);
  EXPECT_EQ(fourier.channel.GetCumulCount(), 0);
  EXPECT_EQ(fourier.channel.GetData()->Count(), 64);
  EXPECT_EQ(fourier.At(32, fftFrequency), 100.0);
  fourier.AddBlock(TColumn(63, 1.0));
  EXPECT_EQ(fourier.channel.GetCumulCount(), 0);
  fourier.AddBlock({1.0});
  EXPECT_EQ(fourier.channel.GetCumulCount(), 1);
}

TEST(TFFTChannel, LeavesABlockOutThatHasNoSpectrum) {
  for (const double bad :
       {kNan, kInfinity, -kInfinity, 1e300, std::numeric_limits<double>::max()}) {
    SCOPED_TRACE(bad);
    TFourier fourier;
    TColumn block(128, 1.0);
    block[64] = bad;
    fourier.AddSine(2.0, 5.0);
    fourier.AddBlock(block);
    fourier.AddSine(2.0, 5.0);
    EXPECT_EQ(fourier.channel.GetCumulCount(), 2);
    EXPECT_NEAR(fourier.At(5, fftPower), 2.0, 1e-11);
    EXPECT_NEAR(fourier.Curve(fftInverse)[32].Y, std::sin(2.5 * kPi), 1e-11);
  }
}

TEST(TFFTChannel, HasAPhaseForTheFaintestLines) {
  // Squares of these lose their last digits, so that a part of a line can be longer than the line.
  for (const double faint : {1e-150, 1e-155, 1e-160, 1.1e-160, 1e-161, 1e-162, 1e-170, 1e-310}) {
    TFourier fourier(4096);
    TColumn block(4096);
    block[1] = faint;
    fourier.AddBlock(block);
    for (int bin = 0; bin < 2048; ++bin) {
      const double phase = fourier.At(bin, fftPhase);
      ASSERT_TRUE(phase >= -kPi && phase <= kPi) << faint << ' ' << bin << ' ' << phase;
    }
  }
}

TEST(TFFTChannel, GivesEveryBlockToItsGraphOnce) {
  TKorvalGraph graph;
  TFourier fourier;
  fourier.channel.GetGraphLink()->SetGraph(&graph);
  auto* series = static_cast<TSeries*>(fourier.channel.GetGraphLink()->GetSeriesList().Get(0));
  QSignalSpy updates(fourier.channel.GetGraphLink(), &TGraphLink::OnUpdate);
  for (int block = 0; block < 2; ++block) fourier.AddSine(2.0, 5.0);
  EXPECT_EQ(updates.count(), 2);
  EXPECT_NEAR(series->RangeY().GetMax(), 1.0, 1e-11);
  EXPECT_EQ(series->RangeX().GetMax(), 63.0);
  fourier.channel.SetOutput(fftInverse);
  EXPECT_NEAR(series->RangeY().GetMax(), 1.0, 1e-2);
  EXPECT_NEAR(series->RangeY().GetMin(), -1.0, 1e-2);
  EXPECT_EQ(series->RangeX().GetMax(), 127.0);
  fourier.channel.Reset();
  EXPECT_EQ(series->RangeY().GetMax(), 0.0);

  // The points in blocks are the points one by one.
  fourier.AddSine(1.0, 3.0, 1.0);
  for (const auto output : {fftPower, fftInverse}) {
    const std::vector<TCoordinate> curve = fourier.Curve(output);
    std::vector<TCoordinate> points(200);
    const auto count = series->BlockSource(0, points);
    points.resize(static_cast<std::size_t>(count));
    EXPECT_EQ(points, curve);
    EXPECT_EQ(series->BlockSource(count, points), 0);
    EXPECT_EQ(series->BlockSource(-1, points), 0);
  }
}

TEST(TFFTChannel, ReadsItsSumsAndItsBandFromAFormInAnyOrder) {
  TFourier saved(64);
  saved.channel.SetSampleRate(1000.0);
  saved.channel.SetUpperFilter(400.0);
  saved.channel.SetLowerFilter(100.0);
  for (int block = 0; block < 2; ++block) saved.AddSine(2.0, 10.0);
  saved.channel.SetOutput(fftPhase);
  QStringList names = {"PointCount",  "SampleRate",  "Output",        "CumulCount",
                       "LowerFilter", "UpperFilter", "UpperFilterSet"};
  for (const bool backwards : {false, true}) {
    if (backwards) std::ranges::reverse(names);
    TFFTChannel loaded;
    loaded.BeginLoading();
    loaded.GetData()->SetDataValues(saved.channel.GetData()->WriteProperties());
    for (const QString& name : names) {
      loaded.setProperty(name.toLatin1(), saved.channel.property(name.toLatin1()));
    }
    loaded.Loaded();
    EXPECT_TRUE(loaded.GetData()->SameAs(saved.channel.GetData()));
    loaded.SetCumulCount(7);  // of the form only
    for (const QString& name : names) {
      EXPECT_EQ(loaded.property(name.toLatin1()), saved.channel.property(name.toLatin1()));
    }
  }
}

TEST(TFFTChannel, LetsTheUpperFilterFollowTheSampleRateUntilItIsSet) {
  using TCase = std::array<double, 4>;  // nobody sets the 0
  for (const auto& [rate, set, upper, afterwards] :
       {TCase{1000, 0, 500, 2000}, TCase{20, 0, 10, 2000}, TCase{1000, 50, 50, 50},
        TCase{1000, 500, 500, 500}, TCase{20, 10, 10, 10}, TCase{1000, 200, 200, 200}}) {
    SCOPED_TRACE(set);
    const TFFTChannel fresh;
    TFFTChannel channel, loaded;
    channel.SetSampleRate(rate);
    if (set > 0.0) channel.SetUpperFilter(set);
    loaded.BeginLoading();
    for (const char* name : {"SampleRate", "UpperFilter", "UpperFilterSet"}) {
      // A form keeps what differs from a new one.
      const QVariant value = channel.property(name);
      if (value != fresh.property(name)) loaded.setProperty(name, value);
    }
    loaded.Loaded();
    for (TFFTChannel* each : {&channel, &loaded}) {
      EXPECT_EQ(each->GetUpperFilter(), upper);
      each->SetSampleRate(4000.0);
      EXPECT_EQ(each->GetUpperFilter(), afterwards);
    }
    for (int n = 0; n < loaded.GetPointCount(); ++n) loaded.SetValue(n);
    loaded.SetUpperFilterSet(false);
    EXPECT_EQ(loaded.GetUpperFilter(), 2000.0);
    EXPECT_EQ(loaded.GetCumulCount(), afterwards == 2000.0 ? 1 : 0);  // of another band
  }
  // Older forms say nothing but the bound, and half of the rate where nobody has set it.
  for (const double upper : {200.0, 500.0}) {
    TFFTChannel older;
    older.BeginLoading();
    older.SetUpperFilter(upper);
    older.SetSampleRate(1000.0);
    older.Loaded();
    EXPECT_EQ(older.GetUpperFilter(), upper);
    older.SetSampleRate(4000.0);
    EXPECT_EQ(older.GetUpperFilter(), upper == 500.0 ? 2000.0 : upper);
  }
}

TEST(TFFTChannel, MendsANonsensicalForm) {
  TFFTChannel channel;
  channel.BeginLoading();
  channel.GetData()->SetDataValues("1 2 3 4 5 6\n7 8 9 10 11 12\n");
  channel.SetCumulCount(-1);
  channel.SetCumulCount(INT_MAX);
  channel.SetLowerFilter(90.0);
  channel.SetUpperFilter(1e300);
  channel.SetOutput(static_cast<TFFTChannel::TFFTOutput>(6));
  channel.Loaded();
  EXPECT_EQ(channel.GetData()->Count(), 128);
  EXPECT_EQ(channel.GetData()->GetValues(1, fftFrequency), 100.0 / 128.0);
  EXPECT_EQ(channel.GetLowerFilter(), 0.0);
  EXPECT_EQ(channel.GetUpperFilter(), 50.0);
  EXPECT_EQ(channel.GetOutput(), fftPower);
  // The count of blocks does not run over.
  for (int n = 0; n < 256; ++n) channel.SetValue(n);
  EXPECT_EQ(channel.GetCumulCount(), INT_MAX);

  // Rows that somebody takes out of the data come back.
  channel.Reset();
  channel.GetData()->Clear();
  int index = 0;
  TCoordinate point, extent;
  EXPECT_FALSE(channel.ProvideGraphData(index, point, extent));
  for (int n = 0; n < 128; ++n) channel.SetValue(n);
  EXPECT_EQ(channel.GetData()->Count(), 128);
  EXPECT_EQ(channel.GetCumulCount(), 1);
}

TEST(TFFTChannel, MayBeDestroyedAndResizedByASubscriber) {
  auto told = std::make_unique<TFFTChannel>();
  auto drawn = std::make_unique<TFFTChannel>();
  TValueLink link([&](double value) {
    if (value == 127.0) told.reset();
  });
  told->AddLink(&link, false);
  QObject::connect(drawn->GetGraphLink(), &TGraphLink::OnUpdate, drawn.get(), [&] {
    if (drawn->GetPointCount() == 32) return drawn.reset();
    drawn->SetPointCount(32);
  });
  for (int n = 0; n < 128; ++n) {
    told->SetValue(n);
    drawn->SetValue(n);
  }
  EXPECT_FALSE(told);
  EXPECT_EQ(drawn->GetCumulCount(), 0);
  for (int n = 0; n < 32; ++n) drawn->SetValue(n);
  EXPECT_FALSE(drawn);
}

}  // namespace
