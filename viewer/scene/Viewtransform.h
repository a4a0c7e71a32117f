#pragma once

#include "model/Vertex.h"

/// How the scene is looked at: rotation, pan and zoom of an orthographic view. The same arithmetic
/// serves the panel and pictures made without a window.
struct TViewTransform {
  TVertex Rotation = {30.0, -45.0, 0.0};  ///< degrees; x: about the x axis, y: about the y axis
  double ModelSize = 1.0;                 ///< half-extent of the view volume, model units
  double ScaleX = 1.0;                    ///< aspect factors of the view volume
  double ScaleY = 1.0;
  double Zoom = 1.0;     ///< larger shows more; 0 collapses, below 0 mirrors
  double PanPosX = 0.0;  ///< model units
  double PanPosY = 0.0;

  /// Sets the aspect factors for a picture of this size; a size without area changes nothing.
  void ScaleViewPort(int width, int height);

  /// Pixels that one model unit covers in a picture of this size; negative in a mirrored view and
  /// 0 in a collapsed one.
  double PixelsPerUnit(int width, int height) const;

  /// The unit vector from the scene towards the viewer, in model coordinates.
  TVertex ToViewer() const;

  /// Sets viewport and projection of the current context and resets its model-view matrix. A view
  /// that OpenGL cannot project (collapsed, or with values that are not finite) is left out: the
  /// viewport is set, the projection is the identity and the answer is false.
  bool Apply(int width, int height) const;

  /// Turns the scene: first about the x axis, then about the y axis. Multiplies the current matrix.
  void Rotate() const;
};
