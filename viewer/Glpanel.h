#pragma once

#include <QImage>
#include <QWidget>
#include <memory>

#include "viewer/opengl/Scenerenderer.h"
#include "viewer/scene/Viewtransform.h"

class QOpenGLContext;
class TGLSurface;

/// A panel with an OpenGL context of its own that keeps the view's rotation, zoom and pan, and lets
/// the mouse change them: left drag turns, middle or Shift drag pans, right or Ctrl drag and the
/// wheel zoom. A drag adds to the zoom without any limit, so it can collapse or mirror the view.
/// Where there is no OpenGL the panel stays an empty area. GUI thread only.
class TGLPanel : public QWidget {
  Q_OBJECT
  Q_PROPERTY(TPFDFlags PFDFlags READ GetPFDFlags WRITE SetPFDFlags)
  Q_PROPERTY(TPFDPixelTypes PFDPixelType READ GetPFDPixelType WRITE SetPFDPixelType)
  Q_PROPERTY(int PFDNumColorBits READ GetPFDNumColorBits WRITE SetPFDNumColorBits)
  Q_PROPERTY(int PFDNumDepthBits READ GetPFDNumDepthBits WRITE SetPFDNumDepthBits)

 public:
  enum TPFDFlag : int {
    f_PFD_DRAW_TO_WINDOW = 1 << 0,
    f_PFD_DRAW_TO_BITMAP = 1 << 1,
    f_PFD_SUPPORT_GDI = 1 << 2,
    f_PFD_SUPPORT_OPENGL = 1 << 3,
    f_PFD_GENERIC_ACCELERATED = 1 << 4,
    f_PFD_GENERIC_FORMAT = 1 << 5,
    f_PFD_NEED_PALETTE = 1 << 6,
    f_PFD_NEED_SYSTEM_PALETTE = 1 << 7,
    f_PFD_DOUBLEBUFFER = 1 << 8,
    f_PFD_STEREO = 1 << 9,
    f_PFD_SWAP_LAYER_BUFFERS = 1 << 10,
  };
  Q_DECLARE_FLAGS(TPFDFlags, TPFDFlag)
  Q_FLAG(TPFDFlags)
  enum TPFDPixelTypes : int { f_PFD_TYPE_RGBA, f_PFD_TYPE_COLORINDEX };
  Q_ENUM(TPFDPixelTypes)

  explicit TGLPanel(QWidget* parent = nullptr);
  ~TGLPanel() override;

  TPFDFlags GetPFDFlags() const { return pfdFlags_; }
  TPFDPixelTypes GetPFDPixelType() const { return pfdPixelType_; }
  int GetPFDNumColorBits() const { return pfdNumColorBits_; }
  int GetPFDNumDepthBits() const { return pfdNumDepthBits_; }
  /// The pixel format takes effect when the context is made. Bit counts outside 0 to 255 are
  /// ignored.
  void SetPFDFlags(TPFDFlags flags);
  void SetPFDPixelType(TPFDPixelTypes type);
  void SetPFDNumColorBits(int bits);
  void SetPFDNumDepthBits(int bits);

  /// Makes the context if there is none yet, and calls OnInit in it; the panel does so when it
  /// comes to the screen. Returns whether a context exists. If none can be made, the text "Open GL
  /// Context Create Failed" is shown, once.
  bool CreateGLContext();
  void DestroyGLContext();
  bool HasContext() const { return context_ != nullptr; }
  /// What OpenGL calls the machine that draws; empty without a context.
  const QString& RendererName() const { return rendererName_; }
  /// Finds OpenGL's functions; only with a context.
  TSceneRenderer::TResolver Resolver() const;
  /// The panel's size in device pixels.
  QSize PixelSize() const;

  /// The view; call Invalidate after a change.
  TViewTransform View;
  /// Colour of the empty picture.
  QColor BackColor = Qt::black;

  /// Sets the aspect factors from the panel's size, then ZoomAndPan.
  void ScaleViewPort();
  /// Sets viewport and projection if the context is current; else the next paint does.
  void ZoomAndPan();
  /// ZoomAndPan, then a repaint.
  void Invalidate();

  /// The current picture, in device pixels; null without a context.
  QImage Picture();
  void CopyToClipboard();

 signals:
  /// Once, when the context was made; it is current.
  void OnInit(QObject* sender);
  /// In every paint, between the view's rotation and the swap; the context is current.
  void OnPaint(QObject* sender);
  /// The mouse has changed rotation, pan or zoom.
  void OnViewChange(QObject* sender);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void UpdateFormat();
  bool MakeCurrent();
  void Draw();
  void Paint();
  void Turn(QPoint moved);
  void Pan(QPoint moved);
  void Zoom(QPoint moved);
  void ChangeView();

  TPFDFlags pfdFlags_ = {f_PFD_DRAW_TO_WINDOW | f_PFD_SUPPORT_OPENGL | f_PFD_DOUBLEBUFFER};
  TPFDPixelTypes pfdPixelType_ = f_PFD_TYPE_RGBA;
  int pfdNumColorBits_ = 24;
  int pfdNumDepthBits_ = 24;
  TGLSurface* surface_ = nullptr;  ///< covers the panel; null without OpenGL
  QWidget* container_ = nullptr;   ///< owns and places the surface
  std::unique_ptr<QOpenGLContext> context_;
  QString rendererName_;
  QPoint last_;  ///< mouse position of the previous move, or of the press that began a drag
  bool contextMissed_ = false;  ///< the user knows that there is no context
  bool currentFailed_ = false;  ///< the user knows that it cannot be made current
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TGLPanel::TPFDFlags)
