#pragma once

#include "model/Vertex.h"

/// How the scene is looked at: rotation, pan and zoom of an orthographic view. The same arithmetic
/// serves the panel and pictures made without a window.
struct TViewTransform {
  TVertex Rotation = {30.0, -45.0, 0.0};  ///< degrees; x: about the x axis, y: about the y axis
  double ModelSize = 1.0;                 ///< half-extent of the view volume
  double ScaleX = 1.0;                    ///< aspect factors of the view volume
  double ScaleY = 1.0;
  double Zoom = 1.0;                      ///< larger shows more; 0 or below collapses or mirrors
  double PanPosX = 0.0;                   ///< model units
  double PanPosY = 0.0;

  /// Sets the aspect factors for a picture of this size.
  void ScaleViewPort(int width, int height);

  /// Pixels that one model unit covers in a picture of this size.
  double PixelsPerUnit(int width, int height) const;

  /// Sets viewport and projection of the current context and resets its model-view matrix.
  void Apply(int width, int height) const;

  /// Turns the scene: first about the x axis, then about the y axis. Multiplies the current matrix.
  void Rotate() const;
};
