#pragma once

#include <QFont>
#include <QPushButton>
#include <QToolButton>

#include "model/Color.h"

/// Buttons with which the editor dialogs of axes and series pick colours and fonts. Each shows its
/// value and reports only what the user picks. GUI thread only.

/// Shows a colour; a press opens the colour dialog, and the arrow beside it, where "none" is
/// allowed, offers that.
class TColorPicker : public QToolButton {
  Q_OBJECT

 public:
  explicit TColorPicker(bool noneAllowed, QWidget* parent = nullptr);

  TColor Color() const { return color_; }
  void SetColor(TColor color);

 signals:
  void OnPick(TColor color);

 private:
  void Pick(TColor color);

  TColor color_;
};

/// Shows a font by name and size; a press opens the font dialog.
class TFontPicker : public QPushButton {
  Q_OBJECT

 public:
  explicit TFontPicker(QWidget* parent = nullptr);

  const QFont& Font() const { return font_; }
  void SetFont(const QFont& font);

 signals:
  void OnPick(const QFont& font);

 private:
  QFont font_;
};
