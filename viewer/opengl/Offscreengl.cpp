#include "viewer/opengl/Offscreengl.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

#include "viewer/opengl/Glplatform.h"

namespace {

constexpr int kLargestPicture = 16384;

class TWindowSystemContext : public TOffscreenContext {
 public:
  bool Create(QSize size, QString& error) {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    context_.setFormat(format);
    surface_.setFormat(format);
    surface_.create();
    if (!context_.create() || !MakeCurrent()) {
      error = QStringLiteral("the window system offers no OpenGL");
      return false;
    }
    QOpenGLFramebufferObjectFormat picture;
    picture.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
    picture_ = std::make_unique<QOpenGLFramebufferObject>(size, picture);
    const bool made = picture_->isValid() && picture_->bind();
    if (!made) error = QStringLiteral("OpenGL has no memory for a picture this large");
    DoneCurrent();
    return made;
  }
  ~TWindowSystemContext() override {
    MakeCurrent();  // for the picture, which goes first
    picture_.reset();
    DoneCurrent();
  }

  bool MakeCurrent() override {
    return context_.makeCurrent(&surface_) && (!picture_ || picture_->bind());
  }
  void DoneCurrent() override { context_.doneCurrent(); }
  TSceneRenderer::TResolver Resolver() const override {
    return [this](const char* name) { return context_.getProcAddress(name); };
  }
  QImage Read() override { return picture_->toImage(); }

 private:
  QOffscreenSurface surface_;
  QOpenGLContext context_;
  std::unique_ptr<QOpenGLFramebufferObject> picture_;
};

}  // namespace

std::unique_ptr<TOffscreenContext> MakeWindowSystemContext(QSize size, QString& error) {
  auto context = std::make_unique<TWindowSystemContext>();
  if (!context->Create(size, error)) return nullptr;
  return context;
}

bool TOffscreenGl::Create(QSize size, int smoothing) {
  context_.reset();
  size_ = size;
  // A picture so large that it can only just be drawn is sharp enough.
  smoothing_ = qMax(size.width(), size.height()) * smoothing > kLargestPicture ? 1 : smoothing;
  if (size.isEmpty() || size.width() > kLargestPicture || size.height() > kLargestPicture) {
    error_ = QStringLiteral("a picture of %1 x %2 pixels cannot be made")
                 .arg(size.width())
                 .arg(size.height());
    return false;
  }
  context_ = PlatformHasOpenGl() ? MakeWindowSystemContext(DrawnSize(), error_)
                                 : MakeEglContext(DrawnSize(), error_);
  return context_ != nullptr;
}

QImage TOffscreenGl::Render(const std::function<void()>& draw) {
  if (!context_->MakeCurrent()) return {};
  draw();
  const QImage image = context_->Read().convertToFormat(QImage::Format_RGB32);
  context_->DoneCurrent();
  if (smoothing_ == 1 || image.isNull()) return image;
  return image.scaled(size_, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

#if !defined(Q_OS_UNIX) || defined(Q_OS_MACOS)
std::unique_ptr<TOffscreenContext> MakeEglContext(QSize, QString& error) {
  error = QStringLiteral("there is no display");
  return nullptr;
}
#endif
