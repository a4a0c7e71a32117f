#include "viewer/Glpanel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QPaintEngine>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>
#include <cmath>
#include <utility>

#include "model/Message.h"
#include "viewer/opengl/Glplatform.h"
#include "viewer/opengl/Glsurface.h"
#include "viewer/opengl/Picture.h"

namespace {

constexpr double kDegreesPerPixel = 0.5;
constexpr double kPanPerScreenWidth = 5.0;  ///< model units
constexpr double kZoomPerSide = 3.0;        ///< added by a drag over the panel's smaller side
constexpr double kZoomPerNotch = 1.1;       ///< factor of one notch of the wheel
constexpr double kNotch = 120.0;            ///< eighths of a degree

QSurfaceFormat FormatOf(TGLPanel::TPFDFlags flags, int colorBits, int depthBits) {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setProfile(QSurfaceFormat::CompatibilityProfile);
  format.setSwapBehavior(flags & TGLPanel::f_PFD_DOUBLEBUFFER ? QSurfaceFormat::DoubleBuffer
                                                              : QSurfaceFormat::SingleBuffer);
  format.setStereo(flags & TGLPanel::f_PFD_STEREO);
  const int perColor = qMin(colorBits, 24) / 3;
  format.setRedBufferSize(perColor);
  format.setGreenBufferSize(perColor);
  format.setBlueBufferSize(perColor);
  format.setDepthBufferSize(depthBits);
  return format;
}

}  // namespace

TGLPanel::TGLPanel(QWidget* parent) : QWidget(parent) {
  setMinimumSize(1, 1);
  if (!PlatformHasOpenGl()) return;
  surface_ = new TGLSurface(this, [this] { Paint(); });
  UpdateFormat();
  container_ = QWidget::createWindowContainer(surface_, this);
  container_->setFocusPolicy(Qt::NoFocus);
  // It would hand what is dropped to the surface, which hands it to the window, and so on for ever.
  container_->setAcceptDrops(false);
}

TGLPanel::~TGLPanel() { DestroyGLContext(); }

bool TGLPanel::CreateGLContext() {
  if (HasContext() || contextMissed_) return HasContext();
  auto context = std::make_unique<QOpenGLContext>();
  context->setFormat(FormatOf(pfdFlags_, pfdNumColorBits_, pfdNumDepthBits_));
  if (!surface_ || !context->create() || !context->makeCurrent(surface_)) {
    contextMissed_ = true;
    ShowMessage(QStringLiteral("Open GL Context Create Failed"));
    return false;
  }
  context_ = std::move(context);
  rendererName_ = QString::fromLatin1(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  glEnable(GL_DEPTH_TEST);
  emit OnInit(this);
  context_->doneCurrent();
  return true;
}

void TGLPanel::DestroyGLContext() {
  context_.reset();
  rendererName_.clear();
}

TSceneRenderer::TResolver TGLPanel::Resolver() const {
  return [context = context_.get()](const char* name) { return context->getProcAddress(name); };
}

void TGLPanel::UpdateFormat() {
  if (!surface_ || surface_->handle()) return;
  surface_->setFormat(FormatOf(pfdFlags_, pfdNumColorBits_, pfdNumDepthBits_));
}

void TGLPanel::SetPFDFlags(TPFDFlags flags) {
  if (flags == pfdFlags_) return;
  pfdFlags_ = flags;
  UpdateFormat();
}

void TGLPanel::SetPFDPixelType(TPFDPixelTypes type) { pfdPixelType_ = type; }

void TGLPanel::SetPFDNumColorBits(int bits) {
  if (bits < 0 || bits > 255 || bits == pfdNumColorBits_) return;
  pfdNumColorBits_ = bits;
  UpdateFormat();
}

void TGLPanel::SetPFDNumDepthBits(int bits) {
  if (bits < 0 || bits > 255 || bits == pfdNumDepthBits_) return;
  pfdNumDepthBits_ = bits;
  UpdateFormat();
}

void TGLPanel::ScaleViewPort() {
  View.ScaleViewPort(width(), height());
  ZoomAndPan();
}

void TGLPanel::ZoomAndPan() {
  if (!HasContext() || QOpenGLContext::currentContext() != context_.get()) return;
  const QSize pixels = PixelSize();
  View.Apply(pixels.width(), pixels.height());
}

void TGLPanel::Invalidate() {
  ZoomAndPan();
  if (surface_) surface_->Redraw();
}

QSize TGLPanel::PixelSize() const { return (QSizeF(size()) * devicePixelRatioF()).toSize(); }

QImage TGLPanel::Picture() {
  if (!HasContext() || !MakeCurrent()) return {};
  // What lies behind another window is not in the window's own picture, so it is drawn apart.
  QOpenGLFramebufferObject picture(PixelSize(), QOpenGLFramebufferObject::CombinedDepthStencil);
  QImage image;
  if (picture.bind()) {
    Draw();
    image = picture.toImage().convertToFormat(QImage::Format_RGB32);
    picture.release();
  }
  context_->doneCurrent();
  return image;
}

void TGLPanel::CopyToClipboard() {
  const QImage picture = Picture();
  if (!picture.isNull()) QGuiApplication::clipboard()->setImage(picture);
}

bool TGLPanel::MakeCurrent() {
  if (context_->makeCurrent(surface_)) return true;
  if (!std::exchange(currentFailed_, true)) {
    ShowMessage(QStringLiteral("wglMakeCurrent: ") +
                (context_->isValid() ? QStringLiteral("the window cannot be drawn on")
                                     : QStringLiteral("the context was lost")));
  }
  return false;
}

void TGLPanel::Draw() {
  BeginPicture(View, PixelSize(), BackColor);
  emit OnPaint(this);
  EndPicture();
}

void TGLPanel::Paint() {
  if (!CreateGLContext() || !MakeCurrent()) return;
  Draw();
  if (pfdFlags_ & f_PFD_DOUBLEBUFFER) context_->swapBuffers(surface_);
  context_->doneCurrent();
}

void TGLPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const bool grabbed = painter.paintEngine()->paintDevice()->devType() == QInternal::Pixmap;
  // The surface covers the panel on the screen, but is missing where widgets are drawn elsewhere.
  const QImage picture = grabbed ? Picture() : QImage();
  if (picture.isNull()) {
    painter.fillRect(rect(), BackColor);
  } else {
    painter.drawImage(rect(), picture);
  }
}

void TGLPanel::resizeEvent(QResizeEvent*) {
  if (container_) container_->setGeometry(rect());
  ScaleViewPort();
  Invalidate();
}

void TGLPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // A message box must not open while the window is on its way to the screen.
  if (!surface_)
    QMetaObject::invokeMethod(
        this, [this] { CreateGLContext(); }, Qt::QueuedConnection);
}

void TGLPanel::mousePressEvent(QMouseEvent* event) { last_ = event->position().toPoint(); }

void TGLPanel::mouseMoveEvent(QMouseEvent* event) {
  const QPoint position = event->position().toPoint();
  const QPoint moved = position - last_;
  const bool left = event->buttons() & Qt::LeftButton;
  const bool shift = event->modifiers() & Qt::ShiftModifier;
  const bool control = event->modifiers() & Qt::ControlModifier;
  const bool turns = left && !shift && !control;
  const bool zooms = (event->buttons() & Qt::RightButton) || (left && control);
  const bool pans = ((event->buttons() & Qt::MiddleButton) || (left && shift)) && !zooms;
  if (turns) Turn(moved);
  if (pans) Pan(moved);
  if (zooms) Zoom(moved);
  if (turns || pans || zooms) ChangeView();
  last_ = position;
}

void TGLPanel::Turn(QPoint moved) {
  View.Rotation.x += moved.y() * kDegreesPerPixel;
  View.Rotation.y += moved.x() * kDegreesPerPixel;
}

void TGLPanel::Pan(QPoint moved) {
  const double perPixel = kPanPerScreenWidth / screen()->size().width();
  View.PanPosX -= moved.x() * perPixel;
  View.PanPosY += moved.y() * perPixel;
}

void TGLPanel::Zoom(QPoint moved) {
  View.Zoom += moved.y() * kZoomPerSide / qMin(width(), height());
}

void TGLPanel::ChangeView() {
  Invalidate();
  emit OnViewChange(this);
}

void TGLPanel::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / kNotch;
  if (notches == 0.0) return event->ignore();
  View.Zoom *= std::pow(kZoomPerNotch, -notches);
  ChangeView();
  event->accept();
}
