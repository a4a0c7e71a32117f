#pragma once

#include <QObject>

/// Warns those who keep something in memory that it is time to write it: the program is being ended
/// by a signal of the system, or the desktop session ends. One for the program; GUI thread only,
/// but for IsAsked.
class TEnding : public QObject {
  Q_OBJECT

 public:
  /// Made for the first who asks; the application object exists by then.
  static TEnding& Instance();

  /// From now on SIGINT, SIGTERM and SIGHUP end the program in good order: OnKeep is fired, then
  /// all event loops end, those of dialogs as if they were cancelled, and messages go to the
  /// standard error stream. The next SIGINT or SIGTERM ends it at once. A signal that the program
  /// was started to ignore stays ignored.
  void TakeSignals();
  /// Whether such a signal has come: for work that runs without an event loop. Any thread.
  static bool IsAsked();

 signals:
  /// What would be lost is to be written, without asking anybody. The program may go on, as a
  /// session does that does not end after all.
  void OnKeep(QObject* sender);

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  explicit TEnding(QObject* parent);
  void Keep();
  Q_INVOKABLE void End();
};
