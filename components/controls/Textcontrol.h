#pragma once

#include <QMargins>
#include <QString>

#include "components/controls/Compbase.h"
#include "model/Color.h"

/// Base of the controls that show a text: what is to be shown, where, and in which colours. The
/// font is the widget's own. GUI thread only.
class TCustomTextControl : public TComponentControl {
  Q_OBJECT

 public:
  enum TAlignment : int { taLeftJustify, taCenter, taRightJustify };
  Q_ENUM(TAlignment)
  enum TTextLayout : int { tlTop, tlCenter, tlBottom };
  Q_ENUM(TTextLayout)

  explicit TCustomTextControl(QWidget* parent = nullptr);

  const QString& GetCaption() const { return caption_; }
  void SetCaption(const QString& caption);
  /// Of each line of the text, across it.
  TAlignment GetAlignment() const { return alignment_; }
  void SetAlignment(TAlignment alignment);
  TTextLayout GetLayout() const { return layout_; }
  void SetLayout(TTextLayout layout);
  /// Whether lines that are too long go on in the next one. Otherwise they end in dots.
  bool GetWordWrap() const { return wordWrap_; }
  void SetWordWrap(bool wrap);
  /// Whether the control takes the size of its text, outside of a layout.
  bool GetAutoSize() const { return autoSize_; }
  void SetAutoSize(bool autoSize);
  /// Degrees by which the text is turned counter-clockwise; not finite is ignored.
  double GetAngle() const { return angle_; }
  void SetAngle(double angleDeg);

  /// Of the text; None is the colour of the form's texts, or on a background of its own black or
  /// white, whichever is legible there.
  TColor GetFontColor() const { return fontColor_; }
  void SetFontColor(TColor color);
  /// Of the background; None lets the form be seen.
  TColor GetColor() const { return color_; }
  void SetColor(TColor color);

  /// The text on the screen.
  virtual QString Text() const { return caption_; }

  void Loaded() override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {0, 0}; }

 protected:
  virtual TColor TextColor() const { return fontColor_; }
  virtual TColor BackColor() const { return color_; }
  /// Room between the sides and the text.
  virtual QMargins Frame() const { return {2, 1, 2, 1}; }
  virtual QFont TextFont() const { return font(); }
  /// Draws background and text; descendants draw upon them.
  virtual void Paint(QPainter& painter);

  /// To be called when the text may be another: takes the size it needs, and repaints.
  void TextChanged();

  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  int TextFlags() const;
  QColor Ink() const;
  void DrawText(QPainter& painter) const;
  template <class T>
  void StoreLook(T& field, const T& value);

  QString caption_;
  TAlignment alignment_ = taLeftJustify;
  TTextLayout layout_ = tlCenter;
  bool wordWrap_ = false;
  bool autoSize_ = false;
  double angle_ = 0.0;
  TColor fontColor_ = TColor::None();
  TColor color_ = TColor::None();
};
