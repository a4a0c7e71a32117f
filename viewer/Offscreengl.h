#pragma once

#include <QImage>
#include <QSize>
#include <functional>
#include <memory>

#include "viewer/Scenerenderer.h"

/// An OpenGL context that draws into memory, with a display or without one.
class TOffscreenGl {
 public:
  TOffscreenGl();
  ~TOffscreenGl();

  /// Makes the context and a picture of this size with depth. False, with Error() saying why, if
  /// the machine has no OpenGL.
  [[nodiscard]] bool Create(QSize size);
  const QString& Error() const;

  TSceneRenderer::TResolver Resolver() const;

  /// Calls `draw` with the context current and returns what it drew.
  QImage Render(const std::function<void()>& draw);

 private:
  struct TState;
  std::unique_ptr<TState> state_;
};
