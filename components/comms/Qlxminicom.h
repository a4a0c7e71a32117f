#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDialog>
#include <QPointer>

#include "model/Timer.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class TQLXPort;

/// Lines of text for the bytes of a line, whatever the pieces in which they come. What is received
/// and what is sent never share a line.
class TTrafficText {
 public:
  /// The bytes by number, 16 to a line, with their characters beside them; otherwise as text, where
  /// a byte that is no printable character is shown by its number, as in "<07>".
  void SetHex(bool hex) { hex_ = hex; }
  /// Takes bytes and returns the lines that they complete, each ended by a line feed.
  QString Take(QByteArrayView bytes, bool sent);
  /// Ends the line that is not complete, if there is one.
  QString Finish();

 private:
  bool TakeByte(char byte);

  QByteArray line_;  ///< bytes of the line that is not complete
  int columns_ = 0;  ///< of the text that they make
  bool sent_ = false;
  bool hex_ = false;
};

/// A console on a serial port: shows what the port receives and sends, whoever asks it to, and
/// sends what the user types, with a carriage return behind it. Keeps a bounded number of lines.
/// GUI thread only.
class TQLXMiniCom : public QDialog {
  Q_OBJECT

 public:
  /// The port is not owned and may go first.
  explicit TQLXMiniCom(TQLXPort& port, QWidget* parent = nullptr);

 private:
  QLayout* SwitchRow();
  QLayout* CommandRow();
  void TakeTraffic(QByteArrayView bytes, bool sent);
  void ShowTraffic(QObject*);
  void Send();
  void ShowState();

  QPointer<TQLXPort> port_;
  TTrafficText lines_;
  QString pending_;      ///< lines that are not shown yet
  qint64 skipped_ = 0;   ///< bytes that came too fast to be shown
  bool isQuiet_ = true;  ///< since the last refresh
  TTimerClient refresh_;

  QPushButton* open_;
  QPushButton* autoRun_;
  QCheckBox* hex_;
  QPlainTextEdit* text_;
  QLineEdit* command_;
  QPushButton* send_;
  QLabel* state_;
};

/// Shows a console on a port that stays beside the other windows until the user closes it.
TQLXMiniCom* ShowMiniCom(TQLXPort& port, QWidget* parent = nullptr);
