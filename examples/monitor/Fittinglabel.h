#pragma once

#include <QLabel>

/// A text of a fixed number of lines: it breaks anywhere a path or an address can be broken, and
/// what has no room even so is left out in the middle and shown by the tool tip.
class TFittingLabel : public QLabel {
  Q_OBJECT

 public:
  explicit TFittingLabel(int lines, QWidget* parent = nullptr);

  void SetText(const QString& text);
  /// The whole text.
  const QString& Text() const { return text_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Fit();
  bool Fits(const QString& text) const;

  QString text_;
  int lines_;
};
