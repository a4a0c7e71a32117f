#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QString>
#include <QStringList>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "components/channels/Statset.h"
#include "components/links/Objlists.h"
#include "components/links/Propclasses.h"

class TMatrix;

/// Limits of a channel's values, as plain data.
struct TLimits {
  double Max = 0.0;
  double Min = 0.0;
  double WarningLevel = 0.0;
  bool CheckMax = false;
  bool CheckMin = false;
  friend bool operator==(const TLimits&, const TLimits&) = default;
};

/// Limits of a channel's values. GUI thread only.
class TLimitLevels : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(double Max READ GetMax WRITE SetLimitMax)
  Q_PROPERTY(double Min READ GetMin WRITE SetLimitMin)
  Q_PROPERTY(double WarningLevel READ GetWarningLevel WRITE SetWarningLevel)
  Q_PROPERTY(bool CheckMax READ GetCheckMax WRITE SetCheckMax)
  Q_PROPERTY(bool CheckMin READ GetCheckMin WRITE SetCheckMin)

 public:
  using TPersistent::TPersistent;

  double GetMax() const { return limits_.Max; }
  double GetMin() const { return limits_.Min; }
  double GetWarningLevel() const { return limits_.WarningLevel; }
  bool GetCheckMax() const { return limits_.CheckMax; }
  bool GetCheckMin() const { return limits_.CheckMin; }
  const TLimits& Values() const { return limits_; }

  /// In the unit of the channel; NaN and infinity are ignored. A maximum may lie below the minimum:
  /// then every value is beyond a limit.
  void SetLimitMax(double limit);
  void SetLimitMin(double limit);
  /// Both, with one OnChange.
  void SetLimitValues(double max, double min);
  /// How far before a limit the warning begins, in the unit of the channel; negative is ignored.
  void SetWarningLevel(double distance);
  void SetCheckMax(bool check) { Store(limits_.CheckMax, check); }
  void SetCheckMin(bool check) { Store(limits_.CheckMin, check); }

  void AssignTo(TPersistent* destination) const override;

 private:
  TLimits limits_;
};

/// Which history of a channel a display follows, and which value of its records.
class TStatisticsOptions : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(TStatTypes::TStatInterval SelInterval READ GetSelInterval WRITE SetSelInterval)
  Q_PROPERTY(TStatTypes::TStatValue ValueType READ GetValueType WRITE SetValueType)

 public:
  explicit TStatisticsOptions(QObject* owner = nullptr);

  TStatInterval GetSelInterval() const { return interval_; }
  TStatValue GetValueType() const { return value_; }
  void SetSelInterval(TStatInterval interval);
  void SetValueType(TStatValue value);

  /// Interval and value in words, such as "Last minute: Mean".
  const QString& GetDescription() const { return description_; }

 private:
  void SetDescription();

  TStatInterval interval_ = si1_Second;
  TStatValue value_ = svMean;
  QString description_;
};

/// How a channel stands to its limits.
enum TStatStatus : quint8 { ssNone, ssNormal, ssWarning, ssAlarm };

/// The latest records of one interval, newest first, and the record that is being accumulated. What
/// is completed goes on to Next, the history of the next longer interval, once that interval ends.
///
/// Every record goes on exactly once, also one that had to make room before (a month of 31 days
/// loses none, though only 30 days are kept), and records of an earlier run do not go on again. So,
/// all through a chain, what went in is what the last history has collected plus what the shorter
/// ones have not passed on yet.
///
/// A clock that is set back, as every autumn, ends the present interval where it stands and begins
/// one at the new time, here and in each longer history whose records are shorter than the jump.
/// Nothing is lost or counted twice.
///
/// No locking: TChannelStatistics does that.
class TStatHistory {
 public:
  /// `limits` is what CheckStatus compares with, null for nothing; not owned, outlives the history.
  explicit TStatHistory(TStatInterval interval, const TLimits* limits = nullptr);

  TStatInterval Interval() const { return interval_; }
  int MaxCount() const { return maxCount_; }
  int Count() const { return static_cast<int>(records_.size()); }
  /// The newest record is at 0, the oldest at Count() - 1.
  const TStatSet& Get(int index) const { return records_[Slot(index)]; }
  /// The record being accumulated. Count and sums are those of the present interval, Mean and StDev
  /// those of the last completed one.
  const TStatSet& Current() const { return current_; }

  /// Start and end of the present interval, days since 30 December 1899; equal before it is
  /// started.
  double StartTime() const { return start_; }
  double EndTime() const { return end_; }
  /// Start and end of the interval before: a time of day for the short intervals, a date from the
  /// day on; empty at first.
  QString StartText() const { return TimeText(startBefore_); }
  QString EndText() const { return TimeText(endBefore_); }

  /// Not owned; null for none.
  TStatHistory* Next() const { return next_; }
  void SetNext(TStatHistory* next) { next_ = next; }

  /// Adds a block of values. One with a time outside the years 1 to 9999, or with values that are
  /// infinite or not a number, is left out; one that would make the sums infinite only ends its
  /// interval.
  void UpdateStatistics(const TStatSet& block);
  /// Makes one record of all that the shorter history has not passed on yet; what would make its
  /// sums infinite is left out.
  void UpdateStatistics(TStatHistory* shorter);
  /// Puts a record in front; a full history uses the place of its oldest.
  void AddToHistory(const TStatSet& record);
  /// Begins an interval at a time.
  void ResetTime(double time);
  /// Compares the newest record with the limits; see GetStatus.
  void CheckStatus();

  /// The worse of the two sides. The maximum of the newest record decides the upper one: alarm
  /// above the limit, warning when it is nearer than WarningLevel to it. A status is left only once
  /// the value has gone half a WarningLevel back behind the threshold that raised it. The minimum
  /// decides the lower side in the same way. A side that is not checked is normal.
  TStatStatus GetStatus() const { return status_; }

  /// Largest maximum and smallest minimum of the records and of what is being accumulated; 0 of
  /// nothing.
  double GetMax() const;
  double GetMin() const;

  /// (time, value) of the record at `index`, the newest first, which then moves on; false past the
  /// last. The extent is the length of the interval in days.
  bool ProvideGraphData(TStatValue value, int& index, TCoordinate& point,
                        TCoordinate& extent) const;
  int ProvideGraphBlock(TStatValue value, int index, std::span<TCoordinate> points) const;

  /// Applies another calibration to all records.
  void RescaleData(const TCalibration& from, const TCalibration& to);
  /// Clears the records and what is being accumulated.
  void DeleteHistory();

  /// What has not been passed on: how many of the records, and the values of those that had to make
  /// room before. Beside the records it belongs to the state of a history that has a Next.
  int Pending() const { return pending_; }
  const TStatSet& MadeRoom() const { return madeRoom_; }
  /// The count is brought to 0 to Count().
  void SetPending(int count, const TStatSet& madeRoom);

  /// Binary form, little endian: start and end of the interval (8 bytes each), the current record
  /// (64), the number of records (32 bits), the records, newest first (64 each).
  void WriteProperties(QDataStream& stream) const;
  /// Damaged data are refused and change nothing. All records are then passed on.
  [[nodiscard]] bool ReadProperties(QDataStream& stream);
  /// Text form: a line with times and count, one with the interval, one with the current record,
  /// one for each record, newest first.
  QStringList WritePropertiesAsText() const;
  /// Takes its lines from `lines` at `line`, which moves behind them.
  [[nodiscard]] bool ReadPropertiesAsText(const QStringList& lines, qsizetype& line);

  friend bool operator==(const TStatHistory& a, const TStatHistory& b);

 private:
  bool IsStarted() const { return start_ != end_; }
  bool Gather(TStatHistory& shorter);
  void Complete(double time);
  void Restart(double time);
  void PutFirst(const TStatSet& record);
  QString TimeText(double time) const;
  TStatSet Extremes() const;
  TStatHistory Emptied() const;
  std::size_t Slot(int index) const;
  void SetRecords(double start, double end, const TStatSet& current, std::vector<TStatSet> records);

  TStatInterval interval_;
  int maxCount_;
  const TLimits* limits_;
  TStatHistory* next_ = nullptr;
  std::vector<TStatSet> records_;  ///< a ring
  int first_ = 0;                  ///< place of the newest record in the ring
  TStatSet current_;
  double start_ = 0.0;
  double end_ = 0.0;
  double startBefore_ = 0.0;  ///< start and end of the interval before
  double endBefore_ = 0.0;
  bool hasBefore_ = false;
  int pending_ = 0;  ///< newest records that Next has not got yet
  TStatSet madeRoom_;
  TStatStatus status_ = ssNone;
  TStatStatus upper_ = ssNone;
  TStatStatus lower_ = ssNone;
};

/// End of the interval of a second, minute or hour that begins at a time: a second later, or the
/// next full minute or hour.
double GetEndTime(TStatInterval interval, double time);
/// End of the day, month or year that holds a time: the next midnight, first of a month or New
/// Year's Day of the local calendar. Times are what a clock on the wall shows, so a day of 23 or 25
/// hours ends at midnight too.
double GetEndDate(TStatInterval interval, double time);

/// The histories of one channel, from the shortest selected interval to the longest. Blocks may
/// come from the thread that acquires data; operations that this class offers lock against it. A
/// history itself, which Get hands out, is safe to look at only where no blocks come meanwhile.
class TChannelStatistics : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(TStatTypes::TStatInterval MinInterval READ GetMinInterval WRITE SetMinInterval)
  Q_PROPERTY(TStatTypes::TStatInterval MaxInterval READ GetMaxInterval WRITE SetMaxInterval)
  Q_PROPERTY(TStatTypes::TStatIntervals SelIntervals READ GetSelIntervals WRITE SetSelIntervals)
  Q_PROPERTY(TLimitLevels* Limits READ GetLimits WRITE SetLimits)
  Q_PROPERTY(bool StoreDataAsText READ GetStoreDataAsText WRITE SetStoreDataAsText)

 public:
  explicit TChannelStatistics(QObject* owner = nullptr);

  TStatInterval GetMinInterval() const;
  TStatInterval GetMaxInterval() const;
  TStatIntervals GetSelIntervals() const { return selected_; }
  /// Each selects all intervals from the shortest to the longest; one beyond the other bound moves
  /// that bound too. Histories of intervals that stay selected stay.
  void SetMinInterval(TStatInterval interval);
  void SetMaxInterval(TStatInterval interval);
  void SetIntervals(TStatInterval min, TStatInterval max);
  /// Any set but the empty one, which is ignored.
  void SetSelIntervals(TStatIntervals intervals);

  TLimitLevels* GetLimits() { return &limits_; }
  const TLimitLevels* GetLimits() const { return &limits_; }
  void SetLimits(const TLimitLevels* limits) { limits_.Assign(limits); }
  /// Whether WriteHistories writes text or binary data.
  bool GetStoreDataAsText() const { return asText_; }
  void SetStoreDataAsText(bool text) { Store(asText_, text); }

  static QString GetIntervalText(TStatInterval interval) { return IntervalText(interval); }

  /// Adds a block: rows 0 to 4 of the column are Count, Sum, SqSum, Max and Min. A column outside
  /// the matrix is ignored.
  void UpdateStatistics(int column, const TMatrix& blockStatistics, double time);
  void RescaleData(const TCalibration& from, const TCalibration& to);
  /// Clears all histories.
  void DeleteHistory();

  int Count() const { return static_cast<int>(histories_.size()); }
  TStatHistory* Get(int index) { return histories_[static_cast<std::size_t>(index)].get(); }
  const TStatHistory* Get(int index) const {
    return histories_[static_cast<std::size_t>(index)].get();
  }

  /// Copies the record that the history at `index` is accumulating. False, and nothing is copied,
  /// if there is no such history.
  [[nodiscard]] bool GetCurrent(int index, TStatSet& record) const;
  /// The status of the shortest history, as one bad second is in the records of a day and a month,
  /// too.
  TStatStatus GetStatus() const;
  /// That of the history of an interval; ssNone if there is none.
  TStatStatus GetStatus(TStatInterval interval) const;
  /// Points of the history and value that the options pick; see TStatHistory.
  bool ProvideGraphData(const TStatisticsOptions& options, int& index, TCoordinate& point,
                        TCoordinate& extent) const;
  int ProvideGraphBlock(const TStatisticsOptions& options, int index,
                        std::span<TCoordinate> points) const;

  /// The contents of the histories as a text: lines, or binary data in base64.
  QString WriteHistories() const;
  /// Reads either form. What belongs to intervals that are not selected is left out. Damaged text
  /// is refused with a reason and changes nothing.
  [[nodiscard]] bool ReadHistories(const QString& text, QString* error = nullptr);
  QByteArray WriteBinaryData() const;
  [[nodiscard]] bool ReadBinaryData(const QByteArray& data, QString* error = nullptr);
  QString WriteData() const;
  [[nodiscard]] bool ReadData(const QString& text, QString* error = nullptr);

  /// Copies intervals, limits and form of storage, and not the histories: those are of what one
  /// channel has measured.
  void AssignTo(TPersistent* destination) const override;

 private:
  using THistories = std::vector<std::unique_ptr<TStatHistory>>;

  void InitTables();
  void AddStatHistory(TStatInterval interval, THistories& from);
  const TStatHistory* Find(TStatInterval interval) const;
  void Take(THistories read);

  mutable std::mutex mutex_;  ///< of the histories and limitsNow_
  THistories histories_;
  TLimits limitsNow_;
  TStatIntervals selected_;
  TLimitLevels limits_{this};
  bool asText_ = false;
};
