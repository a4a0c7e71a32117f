#pragma once

#include <QDialog>
#include <QPointer>
#include <QStringDecoder>
#include <functional>

#include "components/comms/Qlxclient.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

/// A console for a client of a text server: shows what comes as it comes, sends what is typed,
/// connects and disconnects. A flood of text is shown in parts, the window stays usable and its
/// memory bounded. A child of its client, or of nobody; the client may go first.
class TQLXWebDebug : public QDialog {
  Q_OBJECT

 public:
  static constexpr int kMaxLines = 2000;
  static constexpr int kMaxColumns = 400;          ///< longer lines are broken
  static constexpr qsizetype kMaxPending = 65536;  ///< bytes shown per refresh

  /// Sends a line; false if that cannot be.
  using TSend = std::function<bool(const QByteArray& line)>;
  /// Counts for the bottom line; may be unset.
  using TSummary = std::function<QString()>;

  TQLXWebDebug(TQLXClient& client, TSend send, TSummary summary, QWidget* parent);

 private:
  void BuildWidgets();
  void Receive(const QByteArray& text);
  void SendLine();
  void ToggleActive();
  void ShowState();
  void Refresh(QObject* sender);
  void Append(const QString& text);
  QString Broken(const QString& text);

  QPointer<TQLXClient> client_;
  TSend send_;
  TSummary summary_;
  QLabel* status_ = nullptr;
  QPushButton* connect_ = nullptr;
  QPlainTextEdit* text_ = nullptr;
  QLineEdit* line_ = nullptr;
  QPushButton* sendButton_ = nullptr;
  QLabel* counts_ = nullptr;

  QByteArray pending_;     ///< not shown yet
  qsizetype skipped_ = 0;  ///< bytes that came faster than they could be shown
  qint64 received_ = 0;    ///< bytes since the console was made
  int column_ = 0;         ///< of the last line
  QStringDecoder decode_{QStringDecoder::Utf8};
  TTimerClient refresh_;
};
