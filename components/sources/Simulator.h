#pragma once

#include "components/sources/Dataprovider.h"

class TSimulationThread;

/// Makes synthetic signals, as fast as they are taken. A change of the signal counts from the next
/// delivered value on.
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

 public:
  explicit TSignalSimulator(QWidget* parent = nullptr);

  /// Initially 0 and 1. Finite, others are ignored.
  double GetAverage() const { return average_; }
  double GetAmplitude() const { return amplitude_; }
  void SetAverage(double average);
  void SetAmplitude(double amplitude);
  TSimFuncType GetFunction() const { return function_; }
  void SetFunction(TSimFuncType function);

  void Reset() override;

 protected:
  void ValueTaken() override;
  TAnswer NextWork() override;

 private:
  TSimulationThread& Worker();
  void SetFinite(double& field, double value);

  double average_ = 0.0;
  double amplitude_ = 1.0;
  TSimFuncType function_ = sfNormalDistribution;
  int counter_ = 0;  ///< of the sine's samples, of the last delivered value
};
