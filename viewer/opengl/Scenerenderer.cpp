#include "viewer/opengl/Scenerenderer.h"

#include <qopengl.h>

#include <algorithm>
#include <cmath>

#include "viewer/opengl/Glplatform.h"
#include "viewer/opengl/Sphereshader.h"
#include "viewer/opengl/Stamps.h"
#include "viewer/scene/Vertexarrays.h"

namespace {

/// The light stands still in front of the scene: its place is set while no rotation is in force.
void SetLights() {
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
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
  glBlendFunc(GL_ONE, GL_ONE);
}

}  // namespace

struct TSceneRenderer::TState {
  void DrawSpheres(const TScene& scene, double pixelsPerUnit);
  void DrawPrisms(const std::vector<TMeshVertex>& prisms);
  void DrawMesh(const TMesh& mesh);
  void DrawFaces(const TScene& scene, float lineWidth);

  TMethod method = TMethod::Batches;
  TSphereShader shader;
  TStamper stamper;
  std::vector<std::uint32_t> prismIndices;  ///< the same for every frame; grows with the largest
};

TSceneRenderer::TSceneRenderer() : state_(std::make_unique<TState>()) {}
TSceneRenderer::~TSceneRenderer() = default;

void TSceneRenderer::Init(const TResolver& resolve, TMethod method) {
  KeepFreedMemory();
  SetLights();
  const bool shaders = method != TMethod::Batches && state_->shader.Init(resolve);
  state_->method = shaders ? TMethod::Shaders : TMethod::Batches;
}

TSceneRenderer::TMethod TSceneRenderer::Method() const { return state_->method; }

void TSceneRenderer::Draw(const TScene& scene, double pixelsPerUnit, float lineWidth) {
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_COLOR_ARRAY);
  state_->DrawSpheres(scene, pixelsPerUnit);
  state_->stamper.DrawCubes(scene.Cubes(), scene.ToViewer());
  state_->DrawPrisms(scene.Prisms());
  state_->DrawMesh(scene.Cylinders());
  state_->DrawFaces(scene, lineWidth);
  glDisableClientState(GL_NORMAL_ARRAY);
  glDisableClientState(GL_COLOR_ARRAY);
  glDisableClientState(GL_VERTEX_ARRAY);
}

void TSceneRenderer::TState::DrawSpheres(const TScene& scene, double pixelsPerUnit) {
  const std::span<const TMark> all = scene.Spheres();
  const double largest = method == TMethod::Shaders ? shader.LargestRadius() : 0.0;
  const auto small = [&](const TMark& mark) {
    return mark.size * std::abs(pixelsPerUnit) <= largest;
  };
  for (auto rest = all; !rest.empty();) {
    const bool points = small(rest.front());
    const auto end = std::find_if(rest.begin(), rest.end(),
                                  [&](const TMark& mark) { return small(mark) != points; });
    const auto run = rest.first(static_cast<std::size_t>(end - rest.begin()));
    if (points) {
      shader.Draw(run, pixelsPerUnit);
    } else {
      stamper.DrawSpheres(run, scene.ToViewer(), pixelsPerUnit);
    }
    rest = rest.subspan(run.size());
  }
}

void TSceneRenderer::TState::DrawPrisms(const std::vector<TMeshVertex>& prisms) {
  if (prisms.empty()) return;
  const std::size_t count = prisms.size() / kPrismVertices;
  for (std::size_t i = prismIndices.size() / kPrismIndices.size(); i < count; ++i) {
    for (const std::uint32_t index : kPrismIndices) {
      prismIndices.push_back(static_cast<std::uint32_t>(i) * kPrismVertices + index);
    }
  }
  PointTo(prisms);
  glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count * kPrismIndices.size()), GL_UNSIGNED_INT,
                 prismIndices.data());
}

void TSceneRenderer::TState::DrawMesh(const TMesh& mesh) {
  if (mesh.indices.empty()) return;
  PointTo(mesh.vertices);
  glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(mesh.indices.size()), GL_UNSIGNED_INT,
                 mesh.indices.data());
}

void TSceneRenderer::TState::DrawFaces(const TScene& scene, float lineWidth) {
  // The faces step back a little, so that their outlines lie on them unbroken.
  glEnable(GL_POLYGON_OFFSET_FILL);
  glPolygonOffset(1.0f, 1.0f);
  DrawMesh(scene.Faces());
  glDisable(GL_POLYGON_OFFSET_FILL);
  if (scene.Outlines().empty()) return;
  glDisable(GL_LIGHTING);
  glLineWidth(lineWidth);
  PointTo(scene.Outlines());
  glDrawArrays(GL_LINES, 0, static_cast<GLsizei>(scene.Outlines().size()));
  glEnable(GL_LIGHTING);
}
