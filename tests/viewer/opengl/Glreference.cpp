#include "tests/viewer/opengl/Glreference.h"

#include <qopengl.h>

#ifdef __APPLE__
#include <OpenGL/glu.h>
#else
#include <GL/glu.h>
#endif

#include <cmath>

namespace {

void SetColor(TColor color) {
  const QColor parts = color.ToQColor();
  glColor3d(parts.redF(), parts.greenF(), parts.blueF());
}

TVertex Place(const TNode& node, double phase, double drawScale) {
  TVertex p = drawScale * node.Position;
  if (!node.Link) return p;
  p.x *= std::cos(phase + node.Angles.x);
  p.y *= std::cos(phase + node.Angles.y);
  p.z *= std::cos(phase + node.Angles.z);
  return p + node.Link->Position;
}

void DrawSphere(const TVertex& center, double radius) {
  glPushMatrix();
  glTranslated(center.x, center.y, center.z);
  GLUquadric* quadric = gluNewQuadric();
  gluQuadricNormals(quadric, GLU_SMOOTH);
  gluSphere(quadric, radius, 64, 64);
  gluDeleteQuadric(quadric);
  glPopMatrix();
}

void DrawCube(const TVertex& center, double edge) {
  glPushMatrix();
  glTranslated(center.x, center.y, center.z);
  glScaled(0.5 * edge, 0.5 * edge, 0.5 * edge);
  glEnable(GL_NORMALIZE);
  glBegin(GL_QUADS);
  for (int axis = 0; axis < 3; ++axis) {
    for (const double sign : {1.0, -1.0}) {
      const double corners[4][2] = {{-1, -sign}, {1, -sign}, {1, sign}, {-1, sign}};
      double p[3] = {};
      p[axis] = sign;
      glNormal3dv(p);
      for (const auto& corner : corners) {
        p[(axis + 1) % 3] = corner[0];
        p[(axis + 2) % 3] = corner[1];
        glVertex3dv(p);
      }
    }
  }
  glEnd();
  glDisable(GL_NORMALIZE);
  glPopMatrix();
}

void DrawCylinder(const TVertex& a, const TVertex& b, double radius, int slices) {
  const TVertex d = b - a;
  const double length = Length(d);
  if (length == 0.0) return;
  const bool isUpright = d.x == 0.0 && d.y == 0.0;
  const double theta = std::acos(d.z / length) * 57.29577951308232;
  glPushMatrix();
  glTranslated(a.x, a.y, a.z);
  glRotated(theta, -d.y, isUpright ? 1.0 : d.x, 0.0);
  GLUquadric* quadric = gluNewQuadric();
  gluCylinder(quadric, radius, radius, length, slices, 1);
  glRotated(180.0, 0.0, 1.0, 0.0);
  gluDisk(quadric, 0.0, radius, slices, 1);
  glRotated(-180.0, 0.0, 1.0, 0.0);
  glTranslated(0.0, 0.0, length);
  gluDisk(quadric, 0.0, radius, slices, 1);
  gluDeleteQuadric(quadric);
  glPopMatrix();
}

void DrawRoll(const TVertex& a, const TVertex& b, const TElement& roll) {
  const TVertex p1 = a + (b - a) * roll.RollParam2;
  const TVertex p2 = a + (b - a) * (1.0 - roll.RollParam2);
  DrawCylinder(a, p1, roll.RollParam1, 10);
  DrawCylinder(p1, p2, roll.Radius, 20);
  DrawCylinder(p2, b, roll.RollParam1, 10);
}

void DrawFace(const std::vector<TVertex>& p, TColor edgeColor) {
  const TVertex u = p[1] - p[0], v = p[2] - p[0];
  const TVertex n = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  const TVertex normal = n / Length(n);
  glEnable(GL_POLYGON_OFFSET_FILL);
  glPolygonOffset(1.0f, 1.0f);
  glBegin(GL_POLYGON);
  glNormal3d(normal.x, normal.y, normal.z);
  for (const TVertex& corner : p) glVertex3d(corner.x, corner.y, corner.z);
  glEnd();
  glDisable(GL_POLYGON_OFFSET_FILL);
  glDisable(GL_LIGHTING);
  SetColor(edgeColor);
  glBegin(GL_LINE_LOOP);
  for (const TVertex& corner : p) glVertex3d(corner.x, corner.y, corner.z);
  glEnd();
  glEnable(GL_LIGHTING);
}

void DrawElement(const TElement& element, const TDataNodeList& list) {
  std::vector<TVertex> p;
  for (const std::int32_t node : element.Nodes()) {
    p.push_back(Place(*list.Get(static_cast<std::size_t>(node)), list.Phase, list.DrawScale));
  }
  SetColor(element.Color.IsInherited() ? list.ElementColor : element.Color);
  const bool own = element.Radius != 0.0;
  if (element.Type == 1 || (element.Type == 2 && !own)) {
    DrawCylinder(p[0], p[1], own ? element.Radius : list.ElementRadius, own ? 20 : 4);
  } else if (element.Type == 2) {
    DrawRoll(p[0], p[1], element);
  } else if (element.Type == 3) {
    DrawFace(p, list.EdgeColor);
  } else {
    DrawSphere(p[0], own ? element.Radius : list.ElementRadius);
  }
}

}  // namespace

void SetReferenceLights() {
  const GLfloat ambient[] = {0.4f, 0.4f, 0.4f, 1.0f};
  const GLfloat diffuse[] = {0.5f, 0.5f, 0.5f, 1.0f};
  const GLfloat position[] = {4.0f, 3.0f, 10.0f, 1.0f};
  glEnable(GL_LIGHTING);
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
  glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
  glLightfv(GL_LIGHT0, GL_POSITION, position);
  glEnable(GL_LIGHT0);
  glColorMaterial(GL_FRONT, GL_AMBIENT_AND_DIFFUSE);
  glEnable(GL_COLOR_MATERIAL);
  glEnable(GL_CULL_FACE);
}

void DrawReference(const TDataNodeList& list) {
  if (list.ShowElements) {
    for (const TElement* element : *list.Elements) DrawElement(*element, list);
  }
  if (!list.ShowNodes) return;
  for (const TNode* node : list) {
    const TVertex p = Place(*node, list.Phase, list.DrawScale);
    SetColor(list.NodeColor);
    if (list.NodeShape == TNodeShape::Cube) {
      DrawCube(p, list.NodeRadius);
    } else {
      DrawSphere(p, list.NodeRadius);
    }
  }
}
