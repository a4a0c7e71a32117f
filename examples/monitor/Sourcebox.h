#pragma once

#include <QGroupBox>

class QLabel;
class QPushButton;
class TClick;
class TFittingLabel;
class TSourceWatch;

/// Shows how a source stands, and lets the user disconnect it and look at what it sends. Watch and
/// click are not owned and outlive the box.
class TSourceBox : public QGroupBox {
  Q_OBJECT

 public:
  /// `console` opens the console of the source's client.
  TSourceBox(const QString& title, TSourceWatch& watch, TClick& console, QWidget* parent = nullptr);

  /// Brings the texts up to date.
  void ShowState();

 private:
  TSourceWatch& watch_;
  QLabel* lamp_;
  QLabel* state_;
  TFittingLabel* detail_;
  QPushButton* connect_;
};
