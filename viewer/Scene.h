#pragma once

#include <cstdint>
#include <vector>

#include "model/Animation.h"
#include "model/Animmodel.h"

/// Nodes of one colour, shape and size.
struct TNodeBatch {
  TColor color;
  TNodeShape shape = TNodeShape::Sphere;
  float size = 0.0f;           ///< radius of a sphere, edge of a cube
  std::vector<float> centers;  ///< x, y, z per node
};

/// Lit triangles of one colour.
struct TMeshBatch {
  TColor color;
  std::vector<float> vertices;         ///< x, y, z, then the unit normal, per vertex
  std::vector<std::uint32_t> indices;  ///< three per triangle, counterclockwise from outside
};

/// Closed outlines of faces in one colour, as separate line segments.
struct TLineBatch {
  TColor color;
  std::vector<float> vertices;  ///< x, y, z per end, two ends per segment
};

/// One frame as arrays ready for OpenGL, in model coordinates; knows nothing of a window. Building
/// a frame of the same structure as the last one allocates nothing.
class TScene {
 public:
  const std::vector<TNodeBatch>& Nodes() const { return nodes_; }
  const std::vector<TMeshBatch>& Meshes() const { return meshes_; }
  const std::vector<TLineBatch>& Lines() const { return lines_; }

  void Clear();

  /// Adds all that a list shows: its elements, each in its own colour or the list's, then its
  /// nodes. Elements with too few nodes, or with an index outside the list, are left out.
  void AddList(const TDataNodeList& list);

 private:
  std::vector<TNodeBatch> nodes_;
  std::vector<TMeshBatch> meshes_;
  std::vector<TLineBatch> lines_;
  std::vector<TVertex> positions_;  ///< of the list being added
};

/// The whole picture: the undeformed model if it is shown and Loaded, then every visible data set,
/// or the model's display list in the sum type.
void BuildScene(TScene& scene, const TModel& model, const TMeasuredData& data,
                TScaleType scaleType, bool showModel);
