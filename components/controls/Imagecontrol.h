#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

#include "components/controls/Compbase.h"

/// Base of the controls that show a picture from a file, and draw upon it. The picture is read when
/// its name is set. One that cannot be read is replaced by a text that says why. GUI thread only.
class TCustomImageControl : public TComponentControl {
  Q_OBJECT

 public:
  /// How the picture fills the control.
  enum TImageFit : int {
    ifFit,      ///< as large as possible, in its proportions
    ifStretch,  ///< the whole control
    ifActual    ///< a pixel of the picture is a logical pixel, from the upper left corner
  };
  Q_ENUM(TImageFit)

  explicit TCustomImageControl(QWidget* parent = nullptr);

  /// Name of the picture's file, in any pixel format that the toolkit reads; empty for none.
  const QString& GetImageFile() const { return imageFile_; }
  void SetImageFile(const QString& fileName);
  bool GetShowImage() const { return showImage_; }
  void SetShowImage(bool show);
  /// Whether what lies behind the control shows through: the control paints no background, and a
  /// picture without transparency of its own none of the pixels that have the colour of its lower
  /// left corner.
  bool GetTransparent() const { return transparent_; }
  void SetTransparent(bool transparent);
  TImageFit GetFit() const { return fit_; }
  void SetFit(TImageFit fit);

  /// The picture as it was read; null if there is none.
  const QImage& Picture() const { return picture_; }
  /// Why there is none though a file is named; empty otherwise.
  const QString& Fault() const { return fault_; }

  void AddWishes(TWishes& wishes) const override;
  void Started() override;

  /// The size of the picture, within reason, or 81 x 81.
  QSize sizeHint() const override;

 protected:
  /// Draws background and picture; descendants draw upon them.
  virtual void Paint(QPainter& painter);

  void paintEvent(QPaintEvent* event) override;

 private:
  QRectF PictureRect() const;
  void DrawPicture(QPainter& painter);
  void DrawFault(QPainter& painter) const;
  void ReadImage();
  void MakeShown();

  QString imageFile_;
  bool showImage_ = true;
  bool transparent_ = false;
  TImageFit fit_ = ifFit;
  QImage picture_;
  QString fault_;
  QImage shown_;    ///< the picture, with its background taken out if that is wanted
  QPixmap scaled_;  ///< as it was drawn last; null if that is out of date
};

/// A picture on a form.
class TImageControl : public TCustomImageControl {
  Q_OBJECT
  Q_PROPERTY(QString ImageFile READ GetImageFile WRITE SetImageFile)
  Q_PROPERTY(bool ShowImage READ GetShowImage WRITE SetShowImage)
  Q_PROPERTY(TImageFit Fit READ GetFit WRITE SetFit)
  Q_PROPERTY(bool Transparent READ GetTransparent WRITE SetTransparent)
  Q_PROPERTY(bool Visible READ GetVisible WRITE SetVisible)

 public:
  using TCustomImageControl::TCustomImageControl;

 protected:
  /// While a form is designed, an empty one shows where it is.
  void Paint(QPainter& painter) override;
};
