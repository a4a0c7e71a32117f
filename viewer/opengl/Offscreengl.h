#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <functional>
#include <memory>

#include "viewer/opengl/Scenerenderer.h"

/// An OpenGL context with a picture in memory. Made by one of the functions below.
class TOffscreenContext {
 public:
  virtual ~TOffscreenContext() = default;
  virtual bool MakeCurrent() = 0;
  virtual void DoneCurrent() = 0;
  virtual TSceneRenderer::TResolver Resolver() const = 0;
  /// The picture; the context is current.
  virtual QImage Read() = 0;
};

/// A context of the window system, or of the machine without one. Null, with `error` saying why, if
/// there is none. The size has been checked.
std::unique_ptr<TOffscreenContext> MakeWindowSystemContext(QSize size, QString& error);
std::unique_ptr<TOffscreenContext> MakeEglContext(QSize size, QString& error);

/// Draws pictures into memory, with a display or without one. GUI thread only.
class TOffscreenGl {
 public:
  /// Makes the context and a picture of this size with depth. False, with Error() saying why, if
  /// the machine has no OpenGL or cannot make a picture this large. `smoothing`: how many pixels
  /// are drawn along each side of one of the picture's; 2 makes edges smooth.
  [[nodiscard]] bool Create(QSize size, int smoothing = 1);
  const QString& Error() const { return error_; }

  /// The picture as it is drawn: its size in pixels, and how many of them make one of the result.
  QSize DrawnSize() const { return size_ * smoothing_; }
  int Smoothing() const { return smoothing_; }

  /// Finds OpenGL's functions while the context is current, as in Render.
  TSceneRenderer::TResolver Resolver() const { return context_->Resolver(); }

  /// Calls `draw` with the context current and returns what it drew, in the size asked for; a null
  /// image if the context was lost.
  QImage Render(const std::function<void()>& draw);

 private:
  std::unique_ptr<TOffscreenContext> context_;
  QSize size_;
  int smoothing_ = 1;
  QString error_;
};
