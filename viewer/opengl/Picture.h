#pragma once

#include <QColor>
#include <QSize>

#include "viewer/opengl/Scenerenderer.h"
#include "viewer/scene/Overlay.h"
#include "viewer/scene/Scene.h"
#include "viewer/scene/Viewtransform.h"

/// Opens a picture in the current context: clears it, sets the projection and turns the scene.
/// `pixels`: size in device pixels.
void BeginPicture(const TViewTransform& view, QSize pixels, const QColor& backColor);
/// Undoes the rotation and hands everything to OpenGL.
void EndPicture();

/// Draws the whole picture between BeginPicture and EndPicture: the scene, then the text over it.
/// The same for the window and for pictures made without one. GUI thread only.
class TPicture {
 public:
  /// Sets up the current context; call again for every new one.
  void Init(const TSceneRenderer::TResolver& resolve,
            TSceneRenderer::TMethod method = TSceneRenderer::TMethod::Best);

  /// `pixels`: size in device pixels, of which `pixelRatio` make one of the user's.
  void Paint(const TViewTransform& view, QSize pixels, double pixelRatio, const TModel& model,
             const TMeasuredData& data, TScaleType scaleType, bool showModel);

  TOverlay Overlay;  ///< text in the top left corner
  TSceneRenderer Renderer;

 private:
  TScene scene_;  ///< kept from frame to frame for its memory
};
