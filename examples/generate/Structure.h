#pragma once

#include <complex>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "model/Vertex.h"

/// A colour as model files hold it: red in the low byte.
constexpr std::int32_t Rgb(int red, int green, int blue) { return red | green << 8 | blue << 16; }

/// Nodes and elements on their way to a model file.
class TStructure {
 public:
  double NodeRadius = 0.0;     ///< of [Options], in the unit of the coordinates
  double ElementRadius = 0.0;  ///< of [Options]

  /// Numbers must come in ascending order: the animator pairs data and model in that order.
  int AddNode(int id, const TVertex& position);

  /// Shifts every node made so far. The model's size counts from the origin, which therefore
  /// belongs into its middle.
  void Move(const TVertex& by);

  /// Radius 0: the element radius of the options.
  void AddBar(int from, int to, std::int32_t color, double radius = 0.0);
  /// `shaftFraction`: length of each shaft end as a share of the whole.
  void AddRoll(int from, int to, std::int32_t color, double radius, double shaftRadius,
               double shaftFraction);
  /// Visible from the side on which the nodes run counterclockwise.
  void AddFace(std::initializer_list<int> nodes, std::int32_t color);
  /// Visible from both sides, with a colour for each.
  void AddTwoSidedFace(std::initializer_list<int> nodes, std::int32_t color, std::int32_t back);
  /// Six faces, from the numbers of eight nodes: the lower four counterclockwise seen from above,
  /// then the upper four.
  void AddBox(const int (&nodes)[8], std::int32_t color);

  /// The text of the model file.
  std::string ModelText() const;

  struct TPlace {
    int id;
    TVertex position;
  };
  const std::vector<TPlace>& Nodes() const { return nodes_; }
  std::size_t ElementCount() const { return elements_.size(); }

 private:
  struct TJoin {
    int type;
    std::vector<double> shape;  ///< radius, roll parameters; empty for a face
    std::int32_t color;
    std::vector<int> nodes;
  };
  std::vector<TPlace> nodes_;
  std::vector<TJoin> elements_;
};

/// Motion of one node, in mm: the displacement along an axis is the real part of
/// amplitude x exp(i phase), so the file's amplitude is the modulus and its angle the argument.
struct TMotion {
  std::complex<double> x, y, z;

  friend TMotion operator+(const TMotion& a, const TMotion& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
  }
  friend TMotion operator*(double factor, const TMotion& m) {
    return {factor * m.x, factor * m.y, factor * m.z};
  }
};

/// Length of the vector of the three amplitudes, the measure by which data files are scaled.
inline double Magnitude(const TMotion& m) {
  return Length(TVertex{std::abs(m.x), std::abs(m.y), std::abs(m.z)});
}

/// One data set, a motion per node in the order of the structure's nodes.
struct TShape {
  double frequency = 0.0;  ///< Hz
  std::vector<TMotion> motions;
};

enum class TRecordForm {
  Real,    ///< four numbers: signed amplitudes, the real parts
  Complex  ///< seven numbers: amplitudes and phase angles
};

/// Text of a data file. Digits below the last printed decimal never reach the file, so it is the
/// same on every machine.
std::string DataText(const TStructure& structure, const std::vector<TShape>& shapes,
                     TRecordForm form);

/// An example: the texts of its two files.
struct TExample {
  std::string name;  ///< of the files, without extension
  std::string model;
  std::string data;
};
