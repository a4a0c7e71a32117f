#pragma once

#include <QDialog>

/// Name of the program as its title bar and its about box show it.
inline constexpr char kProgramTitle[] = "Velmora Animator";
extern const char kProgramVersion[];

/// The about box: title, version, and what draws the pictures.
class TAnimatorAbout : public QDialog {
  Q_OBJECT

 public:
  /// `renderer`: the name that OpenGL gives itself; empty if there is none.
  explicit TAnimatorAbout(const QString& renderer, QWidget* parent = nullptr);
};
