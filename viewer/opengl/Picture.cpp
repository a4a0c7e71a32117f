#include "viewer/opengl/Picture.h"

#include <qopengl.h>

void BeginPicture(const TViewTransform& view, QSize pixels, const QColor& backColor) {
  glClearColor(backColor.redF(), backColor.greenF(), backColor.blueF(), 1.0f);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  view.Apply(pixels.width(), pixels.height());
  glPushMatrix();
  view.Rotate();
}

void EndPicture() {
  glPopMatrix();
  glFlush();
}

void TPicture::Init(const TSceneRenderer::TResolver& resolve, TSceneRenderer::TMethod method) {
  glEnable(GL_DEPTH_TEST);
  Renderer.Init(resolve, method);
  Overlay.Init();
}

void TPicture::Paint(const TViewTransform& view, QSize pixels, double pixelRatio,
                     const TModel& model, const TMeasuredData& data, TScaleType scaleType,
                     bool showModel) {
  const double pixelsPerUnit = view.PixelsPerUnit(pixels.width(), pixels.height());
  if (pixelsPerUnit != 0.0) {
    BuildScene(scene_, view.ToViewer(), model, data, scaleType, showModel);
    Renderer.Draw(scene_, pixelsPerUnit, static_cast<float>(pixelRatio));
  }
  Overlay.Draw(pixels, pixelRatio);
}
