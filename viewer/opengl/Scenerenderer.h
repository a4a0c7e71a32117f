#pragma once

#include <functional>
#include <memory>

#include "viewer/scene/Scene.h"

/// Hands a scene to OpenGL in a few calls. Needs OpenGL 1.1; a compatibility context must be
/// current in every call, the same one from Init to the next Init.
class TSceneRenderer {
 public:
  /// Finds an OpenGL function by name; null if there is none.
  using TResolver = std::function<void (*(const char*))()>;
  enum class TMethod {
    Best,     ///< Shaders where OpenGL 2.0 is there, else Batches
    Batches,  ///< OpenGL 1.1 alone: tessellated spheres whose detail follows their size
    Shaders,  ///< every node one point, shaded to a sphere with its depth
  };

  TSceneRenderer();
  ~TSceneRenderer();

  /// Sets lights, material and culling of the current context, and prepares the shaders if the
  /// method wants them and the context has them. Forgets what an earlier context held: OpenGL
  /// frees that with the context.
  void Init(const TResolver& resolve, TMethod method = TMethod::Best);

  /// The method in use since Init; Batches if shaders were asked for and could not be had.
  TMethod Method() const;

  /// Draws with the current matrices. `pixelsPerUnit`: how many pixels one model unit covers;
  /// negative in a mirrored view. `lineWidth`: of outlines, in pixels.
  void Draw(const TScene& scene, double pixelsPerUnit, float lineWidth = 1.0f);

 private:
  struct TState;
  std::unique_ptr<TState> state_;
};
