#pragma once

#include <QImage>
#include <QWidget>
#include <vector>

#include "components/graphing/Graph.h"

/// The exhibits side by side, each under its caption.
class TGallery : public QWidget {
  Q_OBJECT

 public:
  explicit TGallery(QWidget* parent = nullptr);

  /// The whole gallery as a picture, `ratio` device pixels to a logical one. Needs no window.
  QImage Render(double ratio);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QRect Place(int index) const;
  void DrawCaptions(QPainter& painter) const;

  std::vector<TKorvalGraph*> graphs_;  ///< children
};
