#pragma once

/// How a raw value becomes one in the channel's unit: raw x ScaleFactor + Offset + InitialValue.
struct TCalibration {
  double ScaleFactor = 1.0;
  double Offset = 0.0;
  double InitialValue = 0.0;
  friend bool operator==(const TCalibration&, const TCalibration&) = default;
};

/// A value that was converted with one calibration, as another converts it.
inline double Rescale(double value, const TCalibration& from, const TCalibration& to) {
  return (value - from.Offset - from.InitialValue) / from.ScaleFactor * to.ScaleFactor + to.Offset +
         to.InitialValue;
}
