#include "viewer/scene/Viewtransform.h"

#include <qopengl.h>

#include <cmath>
#include <numbers>

void TViewTransform::ScaleViewPort(int width, int height) {
  if (width <= 0 || height <= 0) return;
  const bool wide = height <= width;
  ScaleX = wide ? static_cast<double>(width) / height : 1.0;
  ScaleY = wide ? 1.0 : static_cast<double>(height) / width;
}

double TViewTransform::PixelsPerUnit(int width, int height) const {
  // The two agree except where the aspect factors were set by hand; the larger decides how fine
  // things are drawn.
  const double across = width / (2.0 * ModelSize * ScaleX * Zoom);
  const double up = height / (2.0 * ModelSize * ScaleY * Zoom);
  const double pixels = std::abs(across) > std::abs(up) ? across : up;
  return std::isfinite(pixels) ? pixels : 0.0;
}

TVertex TViewTransform::ToViewer() const {
  const double x = Rotation.x * std::numbers::pi / 180.0;
  const double y = Rotation.y * std::numbers::pi / 180.0;
  const TVertex direction = {-std::cos(x) * std::sin(y), std::sin(x), std::cos(x) * std::cos(y)};
  return std::isfinite(Length(direction)) ? direction : TVertex{0.0, 0.0, 1.0};
}

bool TViewTransform::Apply(int width, int height) const {
  const double halfWidth = ModelSize * ScaleX * Zoom;
  const double halfHeight = ModelSize * ScaleY * Zoom;
  const double left = PanPosX - halfWidth, right = PanPosX + halfWidth;
  const double bottom = PanPosY - halfHeight, top = PanPosY + halfHeight;
  const bool visible = std::isfinite(left) && std::isfinite(right) && left != right &&
                       std::isfinite(bottom) && std::isfinite(top) && bottom != top &&
                       std::isfinite(ModelSize) && ModelSize != 0.0;
  glViewport(0, 0, width, height);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  if (visible) glOrtho(left, right, bottom, top, -ModelSize, ModelSize);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  return visible;
}

void TViewTransform::Rotate() const {
  glRotated(Rotation.x, 1.0, 0.0, 0.0);
  glRotated(Rotation.y, 0.0, 1.0, 0.0);
}
