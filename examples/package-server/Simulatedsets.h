#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

#include "model/Datetime.h"

/// What a simulated channel measures: a level with a swing about it and a little noise.
struct TSimulatedChannel {
  double Level;
  double Swing;
  double FrequencyHz;
  double Noise;
  int Decimals;
};

/// A set of channels as a server sends it. Row k is always the same, whoever asks for it.
struct TSimulatedSet {
  QByteArray Tag;  ///< "data": every row has a time stamp; any other: the package has one
  QByteArray Id;
  double RateHz;       ///< rows per second
  int RowsPerPackage;  ///< sent at once
  std::vector<TSimulatedChannel> Channels;

  /// The value of a channel in a row.
  double Value(std::int64_t row, std::size_t channel) const;
  TDateTime RowTime(TDateTime start, std::int64_t row) const;
  /// The package with rows `first` to `first` + RowsPerPackage - 1.
  QByteArray Package(TDateTime start, std::int64_t first) const;
};

/// A mast that sways, four accelerometers at 100 Hz in "data" packages with the id "mast", and the
/// weather around it, wind speed, wind direction and temperature once a second in "wind" packages
/// with the id "tower".
std::vector<TSimulatedSet> MastAndWeather();

/// All packages of the first `seconds` in the order of their times.
QByteArray Recording(const std::vector<TSimulatedSet>& sets, TDateTime start, double seconds);
