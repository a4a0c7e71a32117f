#pragma once

#include <functional>
#include <memory>
#include <span>

#include "viewer/scene/Scene.h"

/// Draws each sphere as one point that a small program shades to a lit ball with its true depth.
/// Needs OpenGL 2.0, whose functions are found at run time.
class TSphereShader {
 public:
  using TResolver = std::function<void (*(const char*))()>;

  TSphereShader();
  ~TSphereShader();

  /// Makes the program in the current context, anew in every call. False if the context has no
  /// OpenGL 2.0 or does not take the program.
  [[nodiscard]] bool Init(const TResolver& resolve);

  /// Radius in pixels of the largest sphere that Draw can draw.
  double LargestRadius() const;

  /// Draws spheres with the current matrices and light. Leaves the vertex arrays set to the marks.
  void Draw(std::span<const TMark> marks, double pixelsPerUnit) const;

 private:
  struct TState;
  std::unique_ptr<TState> state_;
};
