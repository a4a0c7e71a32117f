#include "components/sources/Fourier.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>

#include "components/graphing/Dataseries.h"

// TFFT

int TFFT::GetPowOfTwo(int count) {
  return static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::max(count, kMinSampleCount))));
}

void TFFT::SetSampleCount(int count) {
  count = std::clamp(count, kMinSampleCount, kMaxSampleCount);
  if (count == sampleCount_) return;
  sampleCount_ = count;
  fft_ = TRadix2Fft(GetPowOfTwo(count));
  Allocate();
}

void TFFT::Allocate() {
  for (std::vector<double>* array : {&inputReal_, &inputImag_, &outputReal_, &outputImag_}) {
    array->assign(static_cast<std::size_t>(fft_.Length()), 0.0);
  }
  Reset();
}

void TFFT::Reset() { fill_ = 0; }

void TFFT::AddValue(double value) {
  inputReal_[static_cast<std::size_t>(fill_)] = value;
  if (++fill_ < sampleCount_) return;
  fill_ = 0;
  Transform();
}

void TFFT::Transform() {
  fft_.Forward(inputReal_.data(), nullptr, outputReal_.data(), outputImag_.data());
  if (OnTransform) OnTransform(*this);
}

void TFFT::InverseTransform() {
  fft_.Inverse(inputReal_.data(), inputImag_.data(), outputReal_.data(), outputImag_.data());
}

void TFFT::GetInverseTransform(TFFTChannel& channel) {
  TArrayList& bins = *channel.GetData();
  const int count = std::min(sampleCount_, bins.Count());
  const double scale = static_cast<double>(sampleCount_) / std::max(channel.GetCumulCount(), 1);
  for (int i = 0; i < count; ++i) {
    const double* bin = bins.Row(i);
    inputReal_[static_cast<std::size_t>(i)] = scale * bin[TFFTChannel::fftReAmplitude];
    inputImag_[static_cast<std::size_t>(i)] = scale * bin[TFFTChannel::fftImAmplitude];
  }
  InverseTransform();
  for (int i = 0; i < count; ++i) {
    bins.Row(i)[TFFTChannel::fftInverse] = outputReal_[static_cast<std::size_t>(i)];
  }
}

// TFFTChannel

TFFTChannel::TFFTChannel(QWidget* parent) : TDataControl(parent) {
  SetIconImage(QStringLiteral("FFTImage"));
  data_.ColNames = {"Frequency", "Power", "Phase", "ReAmplitude", "ImAmplitude", "Inverse"};
  UpdateBins();
  fft_.OnTransform = [this](TFFT&) { UpdateData(); };
  connect(&resetFFT_, &TClick::OnClick, this, &TFFTChannel::Reset);
  connect(&data_, &TArrayList::OnChange, &graphLink_, &TGraphLink::Replay);

  TSeries* series = graphLink_.AddSeries(std::make_unique<TSeries>());
  series->GetStyle()->SetLineStyle(TSeriesStyle::psSolid);
  series->GetStyle()->SetPointColor(TColor::Blue());
  series->GetStyle()->SetFillColor(TColor::Blue());
  series->DataSource = [this](int& index, TCoordinate& point, TCoordinate& extent) {
    return ProvideGraphData(index, point, extent);
  };
  series->BlockSource = [this](int index, std::span<TCoordinate> points) {
    const int left = index < 0 ? 0 : std::max(GraphPointCount() - index, 0);
    const int count = std::min(left, static_cast<int>(points.size()));
    for (int i = 0; i < count; ++i) points[static_cast<std::size_t>(i)] = GraphPoint(index + i);
    return count;
  };
}

void TFFTChannel::SetPointCount(int count) {
  const int before = GetPointCount();
  fft_.SetSampleCount(count);
  if (GetPointCount() == before) return;
  StartAnew();
}

void TFFTChannel::SetSampleRate(double rate) {
  if (!(rate > 0.0) || !std::isfinite(rate) || rate == sampleRate_) return;
  sampleRate_ = rate;
  StartAnew();
}

/// As many bins as points, each with its frequency.
void TFFTChannel::UpdateBins() {
  const int count = GetPointCount();
  if (data_.Count() != count) {
    data_.BeginUpdate();
    data_.SetCount(count);
    data_.EndUpdate(false);
  }
  for (int i = 0; i < count; ++i) data_.Row(i)[fftFrequency] = i * sampleRate_ / count;
}

/// A form gives its rows and what they depend on in any order: they are made to fit at the end.
void TFFTChannel::StartAnew() {
  if (IsLoading()) return;
  UpdateBins();
  Reset();
}

void TFFTChannel::SetOutput(TFFTOutput output) {
  if (output == output_ || output < fftFrequency || output > fftInverse) return;
  output_ = output;
  graphLink_.Replay();
}

void TFFTChannel::SetCumulCount(int count) {
  if (IsLoading() && count >= 0) cumulCount_ = count;
}

// While a form is loaded its bounds come one after the other: whether they leave a band is known
// at the end.

void TFFTChannel::SetLowerFilter(double frequency) {
  if (!(frequency >= 0.0) || !std::isfinite(frequency) || frequency == lowerFilter_) return;
  if (frequency >= GetUpperFilter() && !IsLoading()) return;
  lowerFilter_ = frequency;
  Reset();
}

void TFFTChannel::SetUpperFilter(double frequency) {
  if (!(frequency > 0.0) || (frequency <= lowerFilter_ && !IsLoading())) return;
  const double before = GetUpperFilter();
  formHasUpperFilter_ = IsLoading();
  upperFilterSet_ |= !IsLoading();
  upperFilter_ = IsLoading() ? frequency : std::min(frequency, HalfRate());
  if (upperFilter_ != before) Reset();
}

double TFFTChannel::GetUpperFilter() const {
  return upperFilterSet_ || formHasUpperFilter_ ? upperFilter_ : HalfRate();
}

void TFFTChannel::SetUpperFilterSet(bool set) {
  if (set == upperFilterSet_) return;
  const double before = GetUpperFilter();
  if (!IsLoading()) upperFilter_ = before;
  upperFilterSet_ = set;
  if (GetUpperFilter() != before) Reset();
}

/// The sums that a form brings stay.
void TFFTChannel::Reset() {
  if (IsLoading()) return;
  cumulCount_ = 0;
  data_.Zero(fftPower);
}

void TFFTChannel::Loaded() {
  UpdateBins();
  // Older forms do not say whether somebody has set the bound, and hold half the rate if not.
  upperFilterSet_ |= formHasUpperFilter_ && upperFilter_ != HalfRate();
  formHasUpperFilter_ = false;
  upperFilter_ = std::min(upperFilter_, HalfRate());
  if (lowerFilter_ >= GetUpperFilter()) lowerFilter_ = 0.0;
  graphLink_.Loaded();
  TDataControl::Loaded();
}

void TFFTChannel::SetValue(double value) {
  TRun run(*this, setting_);
  TDataControl::SetValue(value);
  if (!run.IsGone() && !run.IsCut()) fft_.AddValue(value);
}

// Averages

bool TFFTChannel::IsOutputUsable() const {
  constexpr double kLimit = 1e140;  // squares of it can be added up for ever
  const auto usable = [](double value) { return std::abs(value) < kLimit; };
  return std::ranges::all_of(fft_.OutputReal(), usable) &&
         std::ranges::all_of(fft_.OutputImag(), usable);
}

void TFFTChannel::UpdateData() {
  if (!IsOutputUsable() || cumulCount_ == INT_MAX) return;
  UpdateBins();
  Accumulate();
  fft_.GetInverseTransform(*this);
  graphLink_.Update();  // Last, for a subscriber may destroy the channel.
}

/// Above half the sample rate there are no bins in a band, as a rule, so that its inverse has half
/// the amplitude of the values.
void TFFTChannel::Accumulate() {
  ++cumulCount_;
  const int count = GetPointCount();
  const double upper = GetUpperFilter();
  for (int i = 0; i < count; ++i) {
    double* bin = data_.Row(i);
    if (!(lowerFilter_ < bin[fftFrequency] && bin[fftFrequency] <= upper)) continue;
    const double re = fft_.OutputReal()[static_cast<std::size_t>(i)];
    const double im = fft_.OutputImag()[static_cast<std::size_t>(i)];
    bin[fftReAmplitude] += re / count;
    bin[fftImAmplitude] += im / count;
    if (i >= count / 2) continue;
    const double amplitude = std::sqrt(re * re + im * im);
    bin[fftPower] += (amplitude / count) * (amplitude / count);
    // A real line has the phase 0, a negative one too.
    if (amplitude == 0.0 || im == 0.0) continue;
    bin[fftPhase] += std::copysign(std::acos(std::clamp(re / amplitude, -1.0, 1.0)), im);
  }
}

// The curve

int TFFTChannel::GraphPointCount() const {
  const int count = output_ == fftInverse ? GetPointCount() : GetPointCount() / 2;
  return std::min(count, data_.Count());
}

TCoordinate TFFTChannel::GraphPoint(int index) const {
  const double* bin = data_.Row(index);
  if (output_ == fftInverse) return {static_cast<double>(index), bin[fftInverse]};
  return {bin[fftFrequency], bin[output_] / std::max(cumulCount_, 1)};
}

bool TFFTChannel::ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const {
  if (index < 0 || index >= GraphPointCount()) return false;
  const double width = output_ == fftInverse ? 1.0 : BinWidth();
  point = GraphPoint(index++);
  extent = {width, width};
  return true;
}
