#pragma once

#include <functional>
#include <vector>

#include "components/links/Compclasses.h"
#include "components/links/Objlists.h"
#include "signals/Fft.h"

class TFFTChannel;

/// Collects values into blocks and transforms each full one. A member of its owner, on the thread
/// of that.
class TFFT {
 public:
  static constexpr int kMinSampleCount = 32;
  static constexpr int kMaxSampleCount = 4096;

  TFFT() { Allocate(); }
  TFFT(const TFFT&) = delete;
  TFFT& operator=(const TFFT&) = delete;

  /// Values in a block. Initially 128.
  int GetSampleCount() const { return sampleCount_; }
  /// Brought into 32 to 4096. Another count throws a partly filled block away.
  void SetSampleCount(int count);
  /// The sample count rounded up to a power of two: a block is filled up with zeros to there.
  int ArrayLength() const { return fft_.Length(); }
  int NumOfBits() const { return fft_.NumOfBits(); }
  int ReverseBits(int index) const { return fft_.ReverseBits(index); }

  /// The smallest power of two that is not below `count` (up to 2^30), and at least 32.
  static int GetPowOfTwo(int count);

  /// Appends a value to the block; a full one is transformed, and the next begins.
  void AddValue(double value);
  /// Throws the values of the block away.
  void Reset();

  /// Transforms the input forward, then calls OnTransform.
  void Transform();
  /// Takes the input as a spectrum back to the values.
  void InverseTransform();
  /// Computes the inverse column of the channel's bins from their averages. To be called between
  /// two blocks: what has been collected of one is overwritten.
  void GetInverseTransform(TFFTChannel& channel);

  /// Results of the last transform, ArrayLength() values each, with the sign and the scale of
  /// TRadix2Fft.
  const std::vector<double>& OutputReal() const { return outputReal_; }
  const std::vector<double>& OutputImag() const { return outputImag_; }

  /// A transform is there to be read. It may change the sample count and destroy the sender.
  std::function<void(TFFT& sender)> OnTransform;

 private:
  void Allocate();

  int sampleCount_ = 128;
  int fill_ = 0;  ///< values in the block so far
  TRadix2Fft fft_{128};
  std::vector<double> inputReal_;  ///< zeros from the sample count on, as in inputImag_
  std::vector<double> inputImag_;  ///< of a spectrum; the values of a block have none
  std::vector<double> outputReal_;
  std::vector<double> outputImag_;
};

/// Spectrum of the values it is given, averaged over blocks of PointCount of them, as a curve for a
/// graph.
///
/// A block with a value that is not finite, or with values so large that the squares of its
/// spectrum are not, is left out of the averages.
class TFFTChannel : public TDataControl {
  Q_OBJECT

 public:
  /// What is plotted; the value is the column of Data.
  enum TFFTOutput : int {
    fftFrequency,
    fftPower,        ///< square of the amplitude by PointCount
    fftPhase,        ///< radians, -pi to pi
    fftReAmplitude,  ///< real part by PointCount
    fftImAmplitude,  ///< imaginary part by PointCount
    fftInverse,      ///< the averaged block again, of the frequencies in the band only
  };
  Q_ENUM(TFFTOutput)

 private:
  Q_PROPERTY(TGraphLink* GraphLink READ GetGraphLink WRITE SetGraphLink)
  Q_PROPERTY(TArrayList* Data READ GetData WRITE SetData DESIGNABLE false)
  Q_PROPERTY(int PointCount READ GetPointCount WRITE SetPointCount)
  Q_PROPERTY(double SampleRate READ GetSampleRate WRITE SetSampleRate)
  Q_PROPERTY(TFFTOutput Output READ GetOutput WRITE SetOutput)
  Q_PROPERTY(int CumulCount READ GetCumulCount WRITE SetCumulCount)
  Q_PROPERTY(double LowerFilter READ GetLowerFilter WRITE SetLowerFilter)
  Q_PROPERTY(double UpperFilter READ GetUpperFilter WRITE SetUpperFilter)
  Q_PROPERTY(TClick* ResetFFT READ GetResetFFT)
  Q_PROPERTY(bool UpperFilterSet READ IsUpperFilterSet WRITE SetUpperFilterSet DESIGNABLE false)

 public:
  explicit TFFTChannel(QWidget* parent = nullptr);

  /// The graph that shows the spectrum, redrawn with every UpdateInterval-th block.
  TGraphLink* GetGraphLink() { return &graphLink_; }
  void SetGraphLink(const TGraphLink* link) { graphLink_.Assign(link); }

  /// One row per bin, with a column per TFFTOutput: its frequency in hertz, the sums over
  /// CumulCount blocks, and the inverse.
  TArrayList* GetData() { return &data_; }
  void SetData(const TArrayList* rows) { data_.Assign(rows); }

  /// Values in a block and bins. See TFFT::SetSampleCount; starts the averages again.
  int GetPointCount() const { return fft_.GetSampleCount(); }
  void SetPointCount(int count);

  /// Hertz; initially 100. Only finite ones above 0 are taken, and start the averages again.
  double GetSampleRate() const { return sampleRate_; }
  void SetSampleRate(double rate);
  /// Distance of two bins, hertz.
  double BinWidth() const { return sampleRate_ / GetPointCount(); }

  TFFTOutput GetOutput() const { return output_; }
  void SetOutput(TFFTOutput output);

  /// Blocks in the sums.
  int GetCumulCount() const { return cumulCount_; }
  /// For forms, which hold the sums that belong to it; ignored unless one is being loaded.
  void SetCumulCount(int count);

  /// The band: frequencies above the lower and up to the upper bound, in hertz, count; initially 0
  /// and 50. A bound that is negative or does not leave a band is ignored; an upper one above half
  /// the sample rate becomes that. Starts the averages again.
  double GetLowerFilter() const { return lowerFilter_; }
  double GetUpperFilter() const;
  void SetLowerFilter(double frequency);
  void SetUpperFilter(double frequency);
  /// Until somebody sets the upper bound it is half the sample rate; false makes it so again.
  bool IsUpperFilterSet() const { return upperFilterSet_; }
  void SetUpperFilterSet(bool set);

  TClick* GetResetFFT() { return &resetFFT_; }

  void SetValue(double value) override;
  void Loaded() override;

  /// The points of the curve: up to half the sample rate (frequency, average over the blocks) and
  /// the width of a bin as extents, or for the inverse all points (index, value).
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;

 public slots:
  /// What the button does: starts the averages again.
  void Reset();

 private:
  double HalfRate() const { return 0.5 * sampleRate_; }
  bool IsOutputUsable() const;
  void UpdateData();
  void Accumulate();
  void UpdateBins();
  void StartAnew();
  int GraphPointCount() const;
  TCoordinate GraphPoint(int index) const;

  double sampleRate_ = 100.0;
  TFFTOutput output_ = fftPower;
  int cumulCount_ = 0;
  double lowerFilter_ = 0.0;
  double upperFilter_ = 50.0;  ///< while it is set, or the form that is being read has one
  bool upperFilterSet_ = false;
  bool formHasUpperFilter_ = false;
  TFFT fft_;
  TClick resetFFT_{this};
  TArrayList data_{6, this};
  TGraphLink graphLink_{this};
  TMethod setting_;  ///< SetValue
};
