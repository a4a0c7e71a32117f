#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <vector>

#include "model/Largememory.h"
#include "model/Measurement.h"
#include "model/Vertex.h"
#include "signals/Measuredfunction.h"

/// Where a data set begins: the file's index in the findings, its line from 1, and its type; 0 for
/// tables.
struct TPlace {
  int File = 0;
  std::size_t Line = 0;
  int Type = 0;

  /// What findings call the data set: its type, or `other` where it has none.
  QString SetOr(const QString& other) const { return Type > 0 ? QString::number(Type) : other; }
};

template <class T>
using TLarge = std::vector<T, TLargeAllocator<T>>;

enum class TSystemKind : std::uint8_t { Cartesian = 0, Cylindrical = 1, Spherical = 2 };

/// A local coordinate system. Angles of cylindrical and spherical coordinates are degrees. Origin
/// and axes are Cartesian, along the axes of the reference system, whatever its kind.
struct TLocalSystem {
  std::int32_t Number = 0;
  TSystemKind Kind = TSystemKind::Cartesian;
  std::int32_t Reference = 0;  ///< the system in which it is given; 0 is the global one
  std::array<TVertex, 3> Axes = {TVertex{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};  ///< unit vectors
  TVertex Origin = {};
  TPlace Place = {};
};

/// A node as its file gives it.
struct TJobNode {
  std::int32_t ID = 0;
  std::int32_t Definition = 0;    ///< system of the coordinates
  std::int32_t Displacement = 0;  ///< system of what is measured there
  TVertex Coordinates;            ///< x y z, r phi z or r theta phi
};

/// What the corners of an element span.
enum class TElementShape : std::uint8_t { Bar, Face, Tetrahedron, Wedge, Brick, Pyramid };

/// An element by its corners alone: nodes at mid-side are gone.
struct TJobElement {
  std::int32_t ID = 0;
  std::uint32_t First = 0;  ///< of its corners in TJob::Corners
  std::uint16_t Count = 0;
  TElementShape Shape = TElementShape::Bar;
  bool IsTraced = false;  ///< a stroke of a trace line
  std::uint32_t Set = 0;  ///< the data set it came from, index in TJob::Places
};

/// One data set of measured or computed motions, each node's in its displacement system.
struct TJobShape {
  double Frequency = 0.0;  ///< Hz; 0 for static and transient sets
  TShapeInfo Info;
  TPlace Place = {};
  bool IsGlobal = false;      ///< the values are in the global system already
  TLarge<std::int32_t> IDs;   ///< in file order, a node perhaps several times
  TLarge<TVertex> Real;       ///< one per ID
  TLarge<TVertex> Imaginary;  ///< one per ID; empty for a real set
};

/// How the rotation matrices of local systems (type 2420) stand in files: programs differ.
enum class TMatrixReading { RowsAreAxes, ColumnsAreAxes };

/// Everything that the files of one job hold, as they give it, before it becomes a model and its
/// data. Readers append to it in the order of the files.
struct TJob {
  TMatrixReading Matrices = TMatrixReading::RowsAreAxes;  ///< set before files are read
  TUnits Units;                                           ///< of the first file that gives them
  std::vector<double> LengthOfFile;  ///< per file: divisor to metres; 0 if it does not say
  double LengthOfModel = 0.0;        ///< the same of the model that stays; 0 if none does
  QString ModelName;                 ///< from the header; may be empty
  std::vector<TLocalSystem> Systems;
  TLarge<TJobNode> Nodes;
  std::vector<std::uint32_t> FirstOfFile;  ///< per file: its first entry in Nodes
  TLarge<TJobElement> Elements;
  TLarge<std::int32_t> Corners;  ///< IDs of nodes, element by element; strokes share theirs
  std::vector<TPlace> Places;    ///< of the data sets that elements came from
  std::vector<TJobShape> Shapes;
  std::vector<TMeasuredFunction> Functions;

  /// What is appended from here on belongs to the next file; every reader begins with it.
  void BeginFile() {
    LengthOfFile.push_back(0.0);
    FirstOfFile.push_back(static_cast<std::uint32_t>(Nodes.size()));
  }

  bool HasGeometry() const { return !Nodes.empty(); }
};
