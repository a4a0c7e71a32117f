#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "model/Animation.h"
#include "model/Animmodel.h"
#include "viewer/scene/Solids.h"

/// A sphere or cube that marks a place.
struct TMark {
  TPoint center;
  float size = 0.0f;  ///< radius of a sphere, edge of a cube; model units
  TRgba color;
};

struct TLineVertex {
  TPoint position;
  TRgba color;
};

/// One frame as arrays ready for OpenGL, in model coordinates: what an orthographic view from one
/// direction can see of it. Knows nothing of a window. Building a frame of the same structure as
/// the last one allocates nothing. Holds finite coordinates only.
class TScene {
 public:
  /// Empties the scene for a frame that is looked at from this direction (a unit vector).
  void Begin(const TVertex& toViewer);

  /// Adds all that a list shows: its elements, each in its own colour or the list's, then its
  /// nodes. What stands on a node that moves only with its neighbours gets a greyer shade. Left
  /// out: elements with too few nodes or with an index outside the list; whatever stands at a node
  /// whose position is not finite or beyond 1e30; caps and bars that lie wholly inside the spheres
  /// or cubes of their own nodes.
  void AddList(const TDataNodeList& list);
  /// The same for the display list that holds the sum of some data sets.
  void AddSum(const TDataNodeList& display, const TNodesSet& parts);

  const TPoint& ToViewer() const { return toViewer_; }
  const std::vector<TMark>& Spheres() const { return spheres_; }
  const std::vector<TMark>& Cubes() const { return cubes_; }
  /// Bars with the radius of their list: kPrismVertices each, to be joined by kPrismIndices.
  const std::vector<TMeshVertex>& Prisms() const { return prisms_; }
  /// Bars with a radius of their own, rolls and the caps of prisms.
  const TMesh& Cylinders() const { return cylinders_; }
  const TMesh& Faces() const { return faces_; }
  /// Outlines of the faces, two vertices per segment.
  const std::vector<TLineVertex>& Outlines() const { return outlines_; }

 private:
  struct TStyle;

  void Add(const TDataNodeList& list);
  void NoteGuesses(const TDataNodeList& list);
  /// Whether a node moves by what its neighbours do, in any of the sets being added.
  bool IsGuessed(std::size_t node) const;
  TRgba ColorOf(const TElement& element, const TStyle& style) const;

  void AddElement(const TElement& element, const TStyle& style);
  void AddBar(const TElement& element, const TStyle& style);
  void AddListBar(const TElement& element, const TStyle& style);
  void AddRoll(const TElement& element, const TStyle& style);
  void AddFace(const TElement& element, const TStyle& style);
  void AddPoint(const TElement& element, const TStyle& style);
  void AddNodes(const TDataNodeList& list);

  /// Mean unit normal by Newell's method, good for faces that are not flat too; none for a face
  /// without area.
  std::optional<TPoint> FaceNormal(std::span<const std::int32_t> nodes) const;

  /// Whether the list being added has this node and it can be drawn.
  bool CanDraw(std::int32_t node) const;
  const TPoint& At(std::int32_t node) const { return points_[static_cast<std::size_t>(node)]; }

  TPoint toViewer_ = {0.0f, 0.0f, 1.0f};
  std::vector<TMark> spheres_;
  std::vector<TMark> cubes_;
  std::vector<TMeshVertex> prisms_;
  TMesh cylinders_;
  TMesh faces_;
  std::vector<TLineVertex> outlines_;
  std::vector<TVertex> positions_;  ///< of the list being added
  std::vector<TPoint> points_;      ///< the same; x is not a number where nothing can be drawn
  std::vector<const std::vector<bool>*> measured_;  ///< of the sets with guesses; not owned
};

/// The whole picture: the undeformed model if it is shown and Loaded, then every visible data set,
/// or the model's display list in the sum type.
void BuildScene(TScene& scene, const TVertex& toViewer, const TModel& model,
                const TMeasuredData& data, TScaleType scaleType, bool showModel);
