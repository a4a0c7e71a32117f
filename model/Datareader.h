#pragma once

#include <QString>
#include <optional>
#include <span>
#include <vector>

#include "model/Measurement.h"
#include "model/Nodeindex.h"
#include "model/Reading.h"
#include "model/Records.h"

/// The model that a data set belongs to.
struct TModelNodes {
  const TNodeList& Nodes;
  const TNodeIndex& Index;
  std::span<const TAxes> Axes = {};  ///< as of TModel
};

/// What one section of a data file gives: nothing at all without a record, else one node per model
/// node.
struct TDataContent {
  TNodeList Nodes;
  double MaxAmplitude = 0.0;
};

/// A whole data set with one node per model node, each linked to it.
struct TDataSet {
  TDataContent Content = {};
  QString Section = {};  ///< "[F = 12.5]"
  double Frequency = 0.0;
  TShapeInfo Info = {};
  std::vector<bool> Measured = {};  ///< per node; empty if all are
};

/// Reads the records that follow the reading's position as a data set, aligned to the model. A
/// value that is no number or beyond 1e30 counts as 0. Notes the nodes of the model that none of
/// the records is for. False if cancelled.
[[nodiscard]] bool ReadDataSet(TReading& reading, const TModelNodes& model, TDataContent& content);

/// Reads the records that follow without a model: they are kept as they are. False if cancelled.
[[nodiscard]] bool ReadPlainDataSet(TReading& reading, TDataContent& content);

/// A copy of what an earlier section gave.
TDataContent CopyOf(const TNodeList& nodes, double maxAmplitude);

/// The frequency in a section's name "F = 12.5", nothing if the name has another form; 0 if the
/// value is no number or beyond 1e30. Leaves the scanner behind what it took for the number.
std::optional<double> NamedFrequency(TTextScanner& sectionName);
