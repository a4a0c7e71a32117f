#include "viewer/opengl/Sphereshader.h"

#include <qopengl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "viewer/scene/Vertexarrays.h"

namespace {

constexpr GLenum kPointSprite = 0x8861;             // GL_POINT_SPRITE
constexpr GLenum kCoordReplace = 0x8862;            // GL_COORD_REPLACE
constexpr GLenum kVertexProgramPointSize = 0x8642;  // GL_VERTEX_PROGRAM_POINT_SIZE
constexpr GLenum kAliasedPointSizeRange = 0x846D;   // GL_ALIASED_POINT_SIZE_RANGE
constexpr GLenum kVertexShader = 0x8B31;            // GL_VERTEX_SHADER
constexpr GLenum kFragmentShader = 0x8B30;          // GL_FRAGMENT_SHADER
constexpr GLenum kCompileStatus = 0x8B81;           // GL_COMPILE_STATUS
constexpr GLenum kLinkStatus = 0x8B82;              // GL_LINK_STATUS

/// Points this large cover many pixels each; a mesh of the same sphere is cheaper then.
constexpr double kLargestUsefulRadius = 64.0;

// OpenGL drops a point as soon as its centre leaves the view volume. Across the picture the
// viewport is widened and the positions shrunk by the same factor, so that centres just outside
// still count; in depth the centre is held inside and the pixels' own depth decides.
constexpr char kVertexSource[] = R"(#version 110
uniform float pixelsPerUnit;
uniform vec2 shrink;
varying vec3 toLight;  // in radii, from the centre
varying vec2 depth;    // of the centre; of one radius
void main() {
  float radius = gl_Vertex.w;
  vec4 eye = gl_ModelViewMatrix * vec4(gl_Vertex.xyz, 1.0);
  gl_Position = gl_ProjectionMatrix * eye;
  depth = 0.5 * vec2(1.0 + gl_Position.z, gl_ProjectionMatrix[2][2] * radius);
  if (abs(gl_Position.z) <= 1.0 + 2.0 * abs(depth.y)) {
    gl_Position.z = clamp(gl_Position.z, -1.0, 1.0);
  }
  gl_Position.xy *= shrink;
  gl_PointSize = 2.0 * radius * abs(pixelsPerUnit);
  toLight = (gl_LightSource[0].position.xyz - eye.xyz) / radius;
  gl_FrontColor = gl_Color;
}
)";

constexpr char kFragmentSource[] = R"(#version 110
uniform float pixelsPerUnit;
varying vec3 toLight;
varying vec2 depth;
void main() {
  vec2 across = (gl_TexCoord[0].st * 2.0 - 1.0) * vec2(1.0, -1.0);
  float square = dot(across, across);
  if (square > 1.0) discard;
  vec3 normal = vec3(across * sign(pixelsPerUnit), sqrt(1.0 - square));
  float z = depth.x + depth.y * normal.z;
  if (z < 0.0 || z > 1.0) discard;
  vec3 light = toLight - normal;
  float diffuse = max(dot(normal, light), 0.0) * inversesqrt(dot(light, light));
  vec3 intensity = gl_LightModel.ambient.rgb + diffuse * gl_LightSource[0].diffuse.rgb;
  gl_FragColor = vec4(gl_Color.rgb * intensity, 1.0);
  gl_FragDepth = z;
}
)";

}  // namespace

struct TSphereShader::TState {
  bool Resolve(const TResolver& resolve);
  GLuint Compile(GLenum type, const char* source) const;
  bool Link();

  PFNGLCREATESHADERPROC createShader = nullptr;
  PFNGLSHADERSOURCEPROC shaderSource = nullptr;
  PFNGLCOMPILESHADERPROC compileShader = nullptr;
  PFNGLGETSHADERIVPROC getShaderiv = nullptr;
  PFNGLDELETESHADERPROC deleteShader = nullptr;
  PFNGLCREATEPROGRAMPROC createProgram = nullptr;
  PFNGLATTACHSHADERPROC attachShader = nullptr;
  PFNGLLINKPROGRAMPROC linkProgram = nullptr;
  PFNGLGETPROGRAMIVPROC getProgramiv = nullptr;
  PFNGLUSEPROGRAMPROC useProgram = nullptr;
  PFNGLGETUNIFORMLOCATIONPROC getUniformLocation = nullptr;
  PFNGLUNIFORM1FPROC uniform1f = nullptr;
  PFNGLUNIFORM2FPROC uniform2f = nullptr;

  GLuint program = 0;
  GLint pixelsPerUnit = -1, shrink = -1;  ///< uniform locations
  double largestRadius = 0.0;
};

TSphereShader::TSphereShader() : state_(std::make_unique<TState>()) {}
TSphereShader::~TSphereShader() = default;

bool TSphereShader::TState::Resolve(const TResolver& resolve) {
  bool all = true;
  const auto find = [&](auto& function, const char* name) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(resolve(name));
    all = all && function;
  };
  find(createShader, "glCreateShader");
  find(shaderSource, "glShaderSource");
  find(compileShader, "glCompileShader");
  find(getShaderiv, "glGetShaderiv");
  find(deleteShader, "glDeleteShader");
  find(createProgram, "glCreateProgram");
  find(attachShader, "glAttachShader");
  find(linkProgram, "glLinkProgram");
  find(getProgramiv, "glGetProgramiv");
  find(useProgram, "glUseProgram");
  find(getUniformLocation, "glGetUniformLocation");
  find(uniform1f, "glUniform1f");
  find(uniform2f, "glUniform2f");
  return all;
}

GLuint TSphereShader::TState::Compile(GLenum type, const char* source) const {
  const GLuint shader = createShader(type);
  shaderSource(shader, 1, &source, nullptr);
  compileShader(shader);
  GLint done = GL_FALSE;
  getShaderiv(shader, kCompileStatus, &done);
  if (done) return shader;
  deleteShader(shader);
  return 0;
}

bool TSphereShader::TState::Link() {
  const GLuint vertex = Compile(kVertexShader, kVertexSource);
  const GLuint fragment = Compile(kFragmentShader, kFragmentSource);
  GLint done = GL_FALSE;
  if (vertex && fragment) {
    program = createProgram();
    attachShader(program, vertex);
    attachShader(program, fragment);
    linkProgram(program);
    getProgramiv(program, kLinkStatus, &done);
  }
  // The program keeps what it was linked from.
  if (vertex) deleteShader(vertex);
  if (fragment) deleteShader(fragment);
  return done;
}

bool TSphereShader::Init(const TResolver& resolve) {
  *state_ = {};
  const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  if (!version || std::atoi(version) < 2 || !resolve) return false;
  if (!state_->Resolve(resolve) || !state_->Link()) return false;
  state_->pixelsPerUnit = state_->getUniformLocation(state_->program, "pixelsPerUnit");
  state_->shrink = state_->getUniformLocation(state_->program, "shrink");
  GLfloat range[2] = {1.0f, 1.0f};
  glGetFloatv(kAliasedPointSizeRange, range);
  state_->largestRadius = std::min(kLargestUsefulRadius, 0.5 * range[1]);
  glTexEnvi(kPointSprite, kCoordReplace, GL_TRUE);
  return true;
}

double TSphereShader::LargestRadius() const { return state_->largestRadius; }

void TSphereShader::Draw(std::span<const TMark> marks, double pixelsPerUnit) const {
  GLint port[4];
  glGetIntegerv(GL_VIEWPORT, port);
  const auto margin = static_cast<GLint>(std::ceil(state_->largestRadius));
  const GLint width = port[2] + 2 * margin, height = port[3] + 2 * margin;
  glViewport(port[0] - margin, port[1] - margin, width, height);
  glEnable(kPointSprite);
  glEnable(kVertexProgramPointSize);
  state_->useProgram(state_->program);
  state_->uniform1f(state_->pixelsPerUnit, static_cast<GLfloat>(pixelsPerUnit));
  state_->uniform2f(state_->shrink, static_cast<GLfloat>(port[2]) / static_cast<GLfloat>(width),
                    static_cast<GLfloat>(port[3]) / static_cast<GLfloat>(height));
  PointTo(marks);
  glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(marks.size()));
  state_->useProgram(0);
  glDisable(kVertexProgramPointSize);
  glDisable(kPointSprite);
  glViewport(port[0], port[1], port[2], port[3]);
}
