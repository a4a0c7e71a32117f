#pragma once

#include <qopengl.h>

#include <span>
#include <vector>

#include "viewer/scene/Scene.h"

/// Makes the vertices of lit triangles the arrays that the next draw calls read. The vector must
/// not be empty and stay as it is until then.
inline void PointTo(const std::vector<TMeshVertex>& vertices) {
  constexpr GLsizei stride = sizeof(TMeshVertex);
  glEnableClientState(GL_NORMAL_ARRAY);
  glVertexPointer(3, GL_FLOAT, stride, &vertices.front().position);
  glNormalPointer(GL_BYTE, stride, &vertices.front().normal);
  glColorPointer(4, GL_UNSIGNED_BYTE, stride, &vertices.front().color);
}

inline void PointTo(const std::vector<TLineVertex>& vertices) {
  constexpr GLsizei stride = sizeof(TLineVertex);
  glDisableClientState(GL_NORMAL_ARRAY);
  glVertexPointer(3, GL_FLOAT, stride, &vertices.front().position);
  glColorPointer(4, GL_UNSIGNED_BYTE, stride, &vertices.front().color);
}

/// The fourth coordinate of a mark is its size.
inline void PointTo(std::span<const TMark> marks) {
  constexpr GLsizei stride = sizeof(TMark);
  glDisableClientState(GL_NORMAL_ARRAY);
  glVertexPointer(4, GL_FLOAT, stride, &marks.front().center);
  glColorPointer(4, GL_UNSIGNED_BYTE, stride, &marks.front().color);
}
