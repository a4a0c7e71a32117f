#include "viewer/Glpanel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>
#include <cmath>

#include "model/Message.h"
#include "viewer/Glplatform.h"
#include "viewer/Picture.h"

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

/// The part of the panel that OpenGL draws; the mouse goes through it to the panel.
class TGLPanel::TSurface : public QOpenGLWidget {
 public:
  explicit TSurface(TGLPanel* panel) : QOpenGLWidget(panel), panel_(panel) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }

 protected:
  void initializeGL() override {
    glEnable(GL_DEPTH_TEST);
    emit panel_->OnInit(panel_);
  }
  void resizeGL(int, int) override { panel_->ScaleViewPort(); }
  void paintGL() override { panel_->PaintPicture(); }

 private:
  TGLPanel* const panel_;
};

TGLPanel::TGLPanel(QWidget* parent) : QWidget(parent) {
  setMinimumSize(1, 1);
  if (CreateGLContext()) UpdateFormat();
}

TGLPanel::~TGLPanel() = default;

bool TGLPanel::CreateGLContext() {
  // The surface makes its context itself when it is first shown.
  if (PlatformHasOpenGl()) surface_ = new TSurface(this);
  return surface_;
}

bool TGLPanel::HasContext() const { return surface_ && surface_->isValid(); }

TSceneRenderer::TResolver TGLPanel::Resolver() const {
  return
      [context = surface_->context()](const char* name) { return context->getProcAddress(name); };
}

void TGLPanel::UpdateFormat() {
  if (!surface_ || HasContext()) return;
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
  if (!HasContext() || QOpenGLContext::currentContext() != surface_->context()) return;
  const QSize pixels = PixelSize();
  View.Apply(pixels.width(), pixels.height());
}

void TGLPanel::Invalidate() {
  ZoomAndPan();
  update();
  if (surface_) surface_->update();
}

QSize TGLPanel::PixelSize() const { return (QSizeF(size()) * devicePixelRatioF()).toSize(); }

QImage TGLPanel::Picture() {
  if (!HasContext()) return {};
  return surface_->grabFramebuffer().convertToFormat(QImage::Format_RGB32);
}

void TGLPanel::CopyToClipboard() {
  const QImage picture = Picture();
  if (!picture.isNull()) QGuiApplication::clipboard()->setImage(picture);
}

void TGLPanel::PaintPicture() {
  BeginPicture(View, PixelSize(), BackColor);
  emit OnPaint(this);
  EndPicture();
}

void TGLPanel::paintEvent(QPaintEvent*) {
  if (!surface_) QPainter(this).fillRect(rect(), BackColor);
}

void TGLPanel::resizeEvent(QResizeEvent*) {
  if (surface_) surface_->setGeometry(rect());
}

void TGLPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // A message box must not open while the window is on its way to the screen.
  QMetaObject::invokeMethod(
      this, [this] { ReportMissingContext(); }, Qt::QueuedConnection);
}

void TGLPanel::ReportMissingContext() {
  if (HasContext() || !isVisible() || contextMissed_) return;
  contextMissed_ = true;
  ShowMessage(QStringLiteral("Open GL Context Create Failed"));
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
