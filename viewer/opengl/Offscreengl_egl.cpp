// OpenGL without a window system, through EGL. Only where EGL is part of the system.
#include <QtGlobal>
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <qopengl.h>

#include <array>

#include "viewer/opengl/Offscreengl.h"

namespace {

class TEglContext : public TOffscreenContext {
 public:
  explicit TEglContext(QSize size) : size_(size) {}
  ~TEglContext() override;

  bool Create(QString& error);

  bool MakeCurrent() override {
    return eglBindAPI(EGL_OPENGL_API) && eglMakeCurrent(display_, surface_, surface_, context_);
  }
  void DoneCurrent() override {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  }
  TSceneRenderer::TResolver Resolver() const override {
    return [](const char* name) { return eglGetProcAddress(name); };
  }
  QImage Read() override;

 private:
  bool Open();
  bool ChooseConfig(EGLConfig& config) const;

  const QSize size_;
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
};

TEglContext::~TEglContext() {
  if (display_ == EGL_NO_DISPLAY) return;
  if (context_ != EGL_NO_CONTEXT) eglDestroyContext(display_, context_);
  if (surface_ != EGL_NO_SURFACE) eglDestroySurface(display_, surface_);
  // The display stays open: it is the process's, and other pictures may share it.
}

bool TEglContext::Open() {
  // First the machine itself, then whatever the system takes for its default.
  const auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
      eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (getPlatformDisplay) {
    display_ = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display_ != EGL_NO_DISPLAY && eglInitialize(display_, nullptr, nullptr)) return true;
  }
  display_ = eglGetDisplay(EGL_DEFAULT_DISPLAY);
  return display_ != EGL_NO_DISPLAY && eglInitialize(display_, nullptr, nullptr);
}

bool TEglContext::ChooseConfig(EGLConfig& config) const {
  const std::array<EGLint, 13> wanted = {EGL_SURFACE_TYPE,
                                         EGL_PBUFFER_BIT,
                                         EGL_RENDERABLE_TYPE,
                                         EGL_OPENGL_BIT,
                                         EGL_RED_SIZE,
                                         8,
                                         EGL_GREEN_SIZE,
                                         8,
                                         EGL_BLUE_SIZE,
                                         8,
                                         EGL_DEPTH_SIZE,
                                         24,
                                         EGL_NONE};
  EGLint count = 0;
  return eglChooseConfig(display_, wanted.data(), &config, 1, &count) && count > 0;
}

bool TEglContext::Create(QString& error) {
  EGLConfig config = nullptr;
  if (!Open() || !eglBindAPI(EGL_OPENGL_API) || !ChooseConfig(config)) {
    error = QStringLiteral("there is no display, and no OpenGL without one");
    return false;
  }
  const std::array<EGLint, 5> extent = {EGL_WIDTH, size_.width(), EGL_HEIGHT, size_.height(),
                                        EGL_NONE};
  surface_ = eglCreatePbufferSurface(display_, config, extent.data());
  context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, nullptr);
  if (surface_ == EGL_NO_SURFACE || context_ == EGL_NO_CONTEXT || !MakeCurrent()) {
    error = QStringLiteral("OpenGL cannot make a picture without a display (EGL error 0x%1)")
                .arg(eglGetError(), 0, 16);
    return false;
  }
  DoneCurrent();
  return true;
}

QImage TEglContext::Read() {
  QImage image(size_, QImage::Format_RGBA8888);
  if (image.isNull()) return image;
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glReadPixels(0, 0, size_.width(), size_.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
  return image.mirrored();
}

}  // namespace

std::unique_ptr<TOffscreenContext> MakeEglContext(QSize size, QString& error) {
  auto context = std::make_unique<TEglContext>(size);
  if (!context->Create(error)) return nullptr;
  return context;
}

#endif
