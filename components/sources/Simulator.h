#pragma once

#include <chrono>

#include "components/sources/Dataprovider.h"

class TSimulationThread;

/// Makes synthetic signals, as fast as they are taken or at a rate. A change of the signal counts
/// from the next delivered value on.
class TSignalSimulator : public TThreadProvider {
  Q_OBJECT

 public:
  enum TSimFuncType : int {
    sfConstant,            ///< Average
    sfNormalDistribution,  ///< Average is the mean, Amplitude the standard deviation
    sfRandom,              ///< uniform over Average - Amplitude to Average + Amplitude
    sfSinusoid             ///< 30 values to a period, each given to all clients before the next
  };
  Q_ENUM(TSimFuncType)

 private:
  Q_PROPERTY(double Average READ GetAverage WRITE SetAverage)
  Q_PROPERTY(double Amplitude READ GetAmplitude WRITE SetAmplitude)
  Q_PROPERTY(TSimFuncType Function READ GetFunction WRITE SetFunction)
  Q_PROPERTY(TReadMode ReadMode READ GetReadMode WRITE SetReadMode)
  Q_PROPERTY(double Rate READ GetRate WRITE SetRate)

 public:
  explicit TSignalSimulator(QWidget* parent = nullptr);

  /// Initially 0 and 1. Finite, others are ignored.
  double GetAverage() const { return average_; }
  double GetAmplitude() const { return amplitude_; }
  void SetAverage(double average);
  void SetAmplitude(double amplitude);
  TSimFuncType GetFunction() const { return function_; }
  void SetFunction(TSimFuncType function);

  /// Values per second, to all clients together; 0, as initially, for as fast as they are taken.
  /// Negative or not finite is ignored. A simulator that the program has held up for long makes up
  /// for a part of a second only.
  double GetRate() const { return rate_; }
  void SetRate(double rate);

  void Reset() override;

 protected:
  bool MayDeliver() override;
  void ValueTaken() override;
  void ValueDelivered() override { delivered_ += 1.0; }
  TAnswer NextWork() override;

 private:
  TSimulationThread& Worker();
  void SetFinite(double& field, double value);
  void RestartClock();

  double average_ = 0.0;
  double amplitude_ = 1.0;
  TSimFuncType function_ = sfNormalDistribution;
  int counter_ = 0;  ///< of the sine's samples, of the last delivered value
  double rate_ = 0.0;
  std::chrono::steady_clock::time_point started_;
  double delivered_ = 0.0;  ///< values since then
};
