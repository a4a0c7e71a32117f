#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <QStringList>

/// A few lines of text in the top left corner of an OpenGL picture. Each letter has an edge of
/// black or white, whichever the text's colour is farther from, so that it can be read whatever is
/// behind it. The text is drawn into an image when it changes; a frame costs one textured
/// rectangle. GUI thread only.
class TOverlay {
 public:
  void SetLines(const QStringList& lines);
  void SetColor(const QColor& color);

  /// Forgets what an earlier context held; call in every new one.
  void Init();

  /// Draws over the current picture of this size in device pixels, and leaves OpenGL's state as it
  /// was.
  void Draw(QSize pixels, double pixelRatio);

 private:
  void Upload();

  QStringList lines_;
  QColor color_ = Qt::white;
  QImage image_;  ///< the text, cut to the picture; null: to be drawn anew
  QSize pixels_;  ///< of the picture that image_ was made for
  double pixelRatio_ = 1.0;
  QSize texture_;      ///< size of the texture, powers of two
  unsigned name_ = 0;  ///< of the texture; 0: none
  bool uploaded_ = false;
};
