#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "components/channels/Channelset.h"
#include "components/channels/Statsfile.h"

/// Stores the statistics of channel sets in text files, one for each day and set: see Statsfile.h.
/// Blocks are merged until SaveInterval has passed; then a line is appended and handed to the
/// system, so that the end of the program, however it comes, loses no line. What cannot be written,
/// because the disk is full or the folder is gone, goes into the next line that can; what belongs
/// to a set that is gone, or to channels with other names, waits and has a line of its own then.
///
/// Blocks come on the thread that sets rows; everything else is the GUI thread's.
class TStatsStorage : public TBlockStorage {
  Q_OBJECT
  Q_PROPERTY(QString Logger READ GetLoggerName WRITE SetLoggerName)
  Q_PROPERTY(QString RootDir READ GetRootDir WRITE SetRootDir)
  Q_PROPERTY(QString FilePrefix READ GetFilePrefix WRITE SetFilePrefix)
  Q_PROPERTY(bool AutoPrefix READ GetAutoPrefix WRITE SetAutoPrefix)
  Q_PROPERTY(QString FileExt READ GetFileExt WRITE SetFileExt)
  Q_PROPERTY(bool Active READ GetActive WRITE SetActive)
  Q_PROPERTY(double EndTime READ GetEndTime WRITE SetEndTime)
  Q_PROPERTY(int SaveInterval READ GetSaveInterval WRITE SetSaveInterval)
  Q_PROPERTY(bool UseDoubleTime READ GetUseDoubleTime WRITE SetUseDoubleTime)

 public:
  explicit TStatsStorage(QWidget* parent = nullptr);
  ~TStatsStorage() override;

  /// Object name of a component of the form that shows messages: any that has a slot
  /// "Log(QString)" or "appendPlainText(QString)".
  QString GetLoggerName() const { return logger_.GetName(); }
  void SetLoggerName(const QString& name) { logger_.SetName(name); }

  /// The folder, made when it is needed. If it is empty, the folder of the form, or the present one
  /// if no form brought the storage.
  QString GetRootDir() const { return Settings().rootDir; }
  void SetRootDir(const QString& folder);
  /// Files are named prefix + "20240531" + "." + FileExt, in the days of the lines' times. With
  /// AutoPrefix the prefix is the label of the set and "_". What file names cannot hold becomes
  /// "_".
  QString GetFilePrefix() const { return Settings().filePrefix; }
  void SetFilePrefix(const QString& prefix);
  bool GetAutoPrefix() const { return Settings().autoPrefix; }
  void SetAutoPrefix(bool on);
  QString GetFileExt() const { return Settings().fileExt; }
  void SetFileExt(const QString& extension);
  /// Switching off writes what has been collected, as does the end of the program or the session.
  bool GetActive() const override { return active_; }
  void SetActive(bool active);
  /// Blocks after this time are not stored; 0 for no end. Days since 30 December 1899.
  double GetEndTime() const { return Settings().endTime; }
  void SetEndTime(double time);
  /// Seconds, 0 to 86,400, that a line stands for at most; intervals are counted from midnight, and
  /// the last one of a day ends with it. What came before a longer pause, or before the clock was
  /// set back, has a line of its own. 0 writes each block.
  int GetSaveInterval() const { return Settings().saveInterval; }
  void SetSaveInterval(int seconds);
  /// Whether times are written as days, or as date and time of day.
  bool GetUseDoubleTime() const { return Settings().doubleTime; }
  void SetUseDoubleTime(bool on);

  /// What was last done, or why it could not be.
  QString GetStatus() const;

  void SaveBlock(TChannelSet& set) override;
  void LayoutChanged(TChannelSet& set) override;
  void Forget(TChannelSet& set) override;

  void AddWishes(TWishes& wishes) const override;
  void Loaded() override;
  void Started() override;

 signals:
  void OnStatusChanged(QObject* sender);

 private:
  struct TStorageSettings {
    QString rootDir;
    QString path;                              ///< of the folder
    std::optional<QString> place = QString();  ///< where files may be written, see WritePlace
    QString filePrefix;
    bool autoPrefix = true;
    QString fileExt = QStringLiteral("csv");
    double endTime = 0.0;
    int saveInterval = 60;
    bool doubleTime = false;
  };
  /// What is collected of a set.
  struct TCollected {
    QString label;
    QByteArray header;
    std::vector<TStatSet> sums;
    std::vector<TStatSet> block;
    double time = 0.0;  ///< of the last block
    double due = 0.0;   ///< end of the interval that is being collected, or of the next one
    bool empty = true;
  };
  using TLock = std::lock_guard<std::mutex>;

  TStorageSettings Settings() const;
  template <class T>
  void Set(T TStorageSettings::*field, const T& value);
  void UpdatePlace();
  QString FileName(const TCollected& collected) const;
  void Collect(TCollected& collected, double duration);
  double EndAfter(double start) const;
  void Write(TCollected& collected);
  [[nodiscard]] bool WriteLine(TCollected& collected);
  void WriteOrKeep(TCollected& collected);
  void WriteWaiting();
  void WriteAll();
  [[nodiscard]] bool Append(const QString& fileName, const QByteArray& header,
                            const QByteArray& line, QString& reason);
  void SetStatus(const QString& text);
  void PublishStatus(const QString& text);

  mutable std::mutex mutex_;
  TStorageSettings settings_;
  std::map<const TChannelSet*, TCollected> sets_;
  std::vector<TCollected> waiting_;        ///< could not be written, and no set adds to it any more
  std::map<QString, QByteArray> headers_;  ///< the last one in each file
  QString status_;
  std::atomic<bool> active_ = false;
  TComponentRef<QObject> logger_{this};
};
