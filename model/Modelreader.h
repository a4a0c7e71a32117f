#pragma once

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "model/Loadreport.h"
#include "model/Measurement.h"
#include "model/Nodeindex.h"
#include "model/Records.h"

/// Everything a model file gives, normalised.
struct TModelContent {
  TNodeList Nodes;
  TNodeList Display;
  TElementList Elements;
  TNodeIndex Index;
  double NodeRadius = 0.0;
  double ElementRadius = 0.0;
  double Size = 0.0;
  TVertex Centre;  ///< what was taken from the coordinates
  TUnits Units;
  std::vector<TAxes> Axes;  ///< as of TModel
};

/// What the normalisation needs of coordinates, taken while they are read.
class TExtent {
 public:
  void Add(const TVertex& p);
  TVertex Centre() const { return (low_ + high_) / 2.0; }
  /// Largest distance of a point from the origin.
  double Reach() const { return std::sqrt(square_); }

 private:
  static constexpr double kFar = std::numeric_limits<double>::max();
  TVertex low_ = {kFar, kFar, kFar};
  TVertex high_ = {-kFar, -kFar, -kFar};
  double square_ = 0.0;
};

/// Takes the centre of the extent from all coordinates.
void MoveToCentre(TModelContent& content, const TExtent& extent);
/// Gives radii that are unset their defaults, by Size.
void SetRadii(TModelContent& content);

struct TModelHeaders {
  std::string Nodes;
  std::string Elements;
};

/// Reads the text of a model file. The elements refer to `nodeList`, the list that will hold the
/// nodes in the end. False if cancelled. Any thread.
[[nodiscard]] bool ReadModel(std::string_view text, const TModelHeaders& headers,
                             const TNodeList* nodeList, TModelContent& content, TLoadReport& report,
                             const TLoadProgress& progress);
