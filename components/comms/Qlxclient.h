#pragma once

#include <QByteArrayView>
#include <QIODevice>
#include <memory>

#include "components/controls/Compbase.h"
#include "components/links/Componentref.h"
#include "model/Timer.h"

class QFile;
class TChannelSets;
class TChannelSource;

/// Base of the components that bring measured rows into the channel sets of a channel source.
/// Trouble is reported by the status text alone. GUI thread only; whoever is notified of anything
/// may destroy the client.
class TQLXClient : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(bool AutoConnect READ GetAutoConnect WRITE SetAutoConnect)
  Q_PROPERTY(bool Active READ IsSwitchedOn WRITE SetActive)
  Q_PROPERTY(QString ChannelSource READ GetChannelSourceName WRITE SetChannelSourceName)
  Q_PROPERTY(QString LogFile READ GetLogFile WRITE SetLogFile)
  Q_PROPERTY(bool Logging READ GetLogging WRITE SetLogging)

 public:
  explicit TQLXClient(QWidget* parent = nullptr);
  ~TQLXClient() override;

  /// Whether an inactive client tries to become active every 200 ms. It does not try while its form
  /// is being read.
  bool GetAutoConnect() const { return autoConnect_; }
  void SetAutoConnect(bool autoConnect);

  /// Whether rows can come.
  virtual bool GetActive() const = 0;
  /// Set while the form is being read, it takes effect once the form is complete.
  virtual void SetActive(bool active);
  /// What forms store: until the form is complete, whether the client will become active then.
  bool IsSwitchedOn() const { return IsWaiting() ? activeWhenLoaded_ : GetActive(); }

  /// Where the rows go; null for none. Not owned, may go first.
  TChannelSource* GetChannelSource() const;
  void SetChannelSource(TChannelSource* source);
  /// The source's object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetChannelSourceName() const { return source_.GetName(); }
  void SetChannelSourceName(const QString& name) { source_.SetName(name); }

  /// The file that logging writes; a new name counts from the next SetLogging on.
  const QString& GetLogFile() const { return logFile_; }
  void SetLogFile(const QString& fileName) { logFile_ = fileName; }
  /// Whether everything that comes is appended, unchanged, to the log.
  bool GetLogging() const { return log_ != nullptr || loggingWhenLoaded_; }
  /// Closes the log; switched on with a LogFile, begins a new one in its place, unless it is a form
  /// that switches it on: then an earlier one is continued. A log that cannot be written is
  /// reported by the status text, and logging is off.
  void SetLogging(bool logging);

  const QString& GetStatus() const { return status_; }
  /// What of the bytes that came had to be skipped, such as "12 gaps, 212 kB skipped"; empty for
  /// nothing.
  virtual QString GetSkippedText() const { return {}; }
  /// What comes is mostly such bytes: rows among them mean nothing.
  virtual bool IsNoisy() const { return false; }

  void AddWishes(TWishes& wishes) const override;
  void Loaded() override;
  void Started() override;

 signals:
  void OnActiveChanged(QObject* sender);
  void OnStatusChanged(QObject* sender);
  /// The same change, for what shows the text.
  void OnStatusText(const QString& text);
  /// A piece of text has come, of any size. Valid during the call.
  void OnReceived(QObject* sender, const QByteArray& text);

 protected:
  virtual void Open() = 0;
  /// Does nothing if there is nothing to close.
  virtual void Close() = 0;
  /// Whether the client becomes active by itself if AutoConnect is on.
  virtual bool Reconnects() const { return true; }
  /// The client becomes active by itself just now.
  bool IsReconnecting() const { return reconnecting_; }
  /// Whether the log may go into this file.
  virtual bool MayLogInto(const QString& fileName) const;

  /// There is another channel source, or none.
  virtual void SourceChanged() {}

  /// The sets of the channel source, or null.
  TChannelSets* GetSets() const;
  /// Stores the status text and fires OnStatusChanged.
  void SetStatus(const QString& text);
  /// Fires OnActiveChanged if that is so.
  void ReportActive();
  /// Lets the reconnect timer run while AutoConnect is on and the client is not active.
  void UpdateReconnect();
  /// To be called with each piece of text that comes, before it is used: logs it and shows it.
  void Received(QByteArrayView text);

 private:
  void Reconnect(QObject* sender);
  void OpenLog(QIODevice::OpenMode mode);
  void Log(QByteArrayView text);
  void CannotLog(const QString& reason);

  bool autoConnect_ = false;
  bool activeWhenLoaded_ = false;
  bool loggingWhenLoaded_ = false;
  bool reportedActive_ = false;
  bool reconnecting_ = false;
  TComponentRef<TChannelSource> source_;
  QString logFile_;
  std::unique_ptr<QFile> log_;  ///< null: not logging
  QString status_;
  TTimerClient reconnect_;
};
