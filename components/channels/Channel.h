#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "components/channels/Calibration.h"
#include "components/channels/Channelstat.h"
#include "components/graphing/Utilclasses.h"
#include "components/links/Propclasses.h"

class TChannel;
class TMatrix;

/// What channels need of the set that they belong to.
class TChannelOwner {
 public:
  virtual TCalibration GetCalibration(int column) const = 0;
  /// Stores a calibration and applies it to the set's data and to the channel's statistics.
  virtual void Recalibrate(TChannel& channel, const TCalibration& calibration) = 0;
  virtual bool IsChannelActive(int column) const = 0;
  virtual void SetChannelActive(int column, bool active) = 0;
  /// Moves the column's data to its initial value.
  virtual void ShiftToInitial(int column) = 0;
  /// Statistics of the last block, a column per channel from 1 on, and the time of its end.
  virtual const TMatrix& GetBlockStats() const = 0;
  virtual double BlockTime() const = 0;
  /// Makes sure that there is such a column. False if there cannot be.
  [[nodiscard]] virtual bool MakeColumn(int column) = 0;
  /// Runs `change`, which changes the list of channels, while nobody analyses data, and closes the
  /// gap of a column that goes with it; 0 for none.
  virtual void ChangeChannels(int goneColumn, const std::function<void()>& change) = 0;
  virtual QString GetNamePath() const = 0;

 protected:
  ~TChannelOwner() = default;
};

/// One channel of a channel set: a column of its data with label, unit, calibration and long-term
/// statistics. An item of its collection; GUI thread only, but for AnalyseData.
class TChannel : public TNotifyPersistent {
  Q_OBJECT

 public:
  enum TAnalysisType : int { atStatistics = 1 };
  Q_DECLARE_FLAGS(TAnalysisTypes, TAnalysisType)
  Q_FLAG(TAnalysisTypes)

  enum TSensorType : int {
    stUnknown,
    stStrainGage,
    stAccelerometer,
    stTemperature,
    stDisplacement,
    stWindSpeed,
    stWindDirection
  };
  Q_ENUM(TSensorType)

 private:
  Q_PROPERTY(QString Label READ GetLabel WRITE SetLabel)
  Q_PROPERTY(QString Units READ GetUnits WRITE SetUnits)
  Q_PROPERTY(double ScaleFactor READ GetScaleFactor WRITE SetScaleFactor)
  Q_PROPERTY(double Offset READ GetOffset WRITE SetOffset)
  Q_PROPERTY(double InitialValue READ GetInitialValue WRITE SetInitialValue)
  Q_PROPERTY(TAnalysisTypes AnalysisTypes READ GetAnalysisTypes WRITE SetAnalysisTypes)
  Q_PROPERTY(TSensorType SensorType READ GetSensorType WRITE SetSensorType)
  Q_PROPERTY(TNumberFormat* NumFormat READ GetNumFormat WRITE SetNumFormat)
  Q_PROPERTY(TChannelStatistics* Stats READ GetStats WRITE SetStats)

 public:
  /// Made by its collection; `set` outlives it.
  TChannel(TChannelOwner& set, class TChannels& channels, int index);
  ~TChannel() override;

  /// Place in the collection, and the column of the set that holds the channel: the one behind, as
  /// the first is that of the time.
  int Index() const { return index_; }
  int Column() const { return index_ + 1; }
  /// Such as "ChannelSource1.Sets[0].Channels[2]".
  QString GetNamePath() const;

  const QString& GetLabel() const { return label_; }
  void SetLabel(const QString& label) { Store(label_, label); }
  const QString& GetUnits() const { return units_; }
  void SetUnits(const QString& units) { Store(units_, units); }

  double GetScaleFactor() const { return set_.GetCalibration(Column()).ScaleFactor; }
  double GetOffset() const { return set_.GetCalibration(Column()).Offset; }
  double GetInitialValue() const { return set_.GetCalibration(Column()).InitialValue; }
  /// Each rescales the data of the set and the statistics. Not finite is ignored, and so is a
  /// factor of 0. The offset is scaled with the factor.
  void SetScaleFactor(double factor);
  void SetOffset(double offset);
  void SetInitialValue(double value);

  /// Whether the channel has received a value or was switched on.
  bool GetActive() const { return set_.IsChannelActive(Column()); }
  void SetActive(bool active) { set_.SetChannelActive(Column(), active); }

  /// Initially atStatistics.
  TAnalysisTypes GetAnalysisTypes() const { return TAnalysisTypes(analysis_.load()); }
  void SetAnalysisTypes(TAnalysisTypes types);
  TSensorType GetSensorType() const { return sensor_; }
  /// Gives the channel the sensor's unit if it has none.
  void SetSensorType(TSensorType type);
  TNumberFormat* GetNumFormat() { return &format_; }
  void SetNumFormat(const TNumberFormat* format) { format_.Assign(format); }
  TChannelStatistics* GetStats() { return &stats_; }
  const TChannelStatistics* GetStats() const { return &stats_; }
  void SetStats(const TChannelStatistics* stats) { stats_.Assign(stats); }

  void ShiftToInitial() { set_.ShiftToInitial(Column()); }
  /// Takes the last block of the set into the statistics. Runs on the thread that sets rows.
  void AnalyseData();

  /// The channel as a record, and back: the published properties and what the histories hold. A
  /// damaged record is refused with a reason; the channel is then to be thrown away.
  QJsonObject WriteProperties() const;
  [[nodiscard]] bool ReadProperties(QJsonObject record, QString* error);

  /// Copies the published properties, and not what was measured.
  void AssignTo(TPersistent* destination) const override;

 private:
  friend class TChannels;
  void Calibrate(const TCalibration& calibration);

  TChannelOwner& set_;
  class TChannels* channels_;  ///< null once it has left the collection
  int index_;                  ///< changes only within TChannelOwner::ChangeChannels
  QString label_;
  QString units_;
  std::atomic<int> analysis_ = atStatistics;
  TSensorType sensor_ = stUnknown;
  TNumberFormat format_{this};
  TChannelStatistics stats_{this};
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TChannel::TAnalysisTypes)

using TSensorType = TChannel::TSensorType;

/// Sensor, measured quantity and unit in words; those of stUnknown for any other value.
QString GetSensorTypeText(TSensorType type);
QString GetQuantityText(TSensorType type);
QString GetUnitsText(TSensorType type);

/// The channels of a set, in the order of their columns; owned. Fires OnChange when a channel
/// comes, goes or gets another label. GUI thread only.
class TChannels : public TPersistent {
  Q_OBJECT

 public:
  TChannels(TChannelOwner& set, QObject* owner);
  ~TChannels() override;

  int Count() const { return static_cast<int>(items_.size()); }
  /// Null outside the collection.
  TChannel* GetItem(int index) const;
  /// Copies the channel's settings to the one at `index`.
  void SetItem(int index, const TChannel* channel);
  /// The labels, in order.
  QStringList Labels() const;

  /// A new channel at the end, or null if the set can hold no more. The owner of the collection is
  /// notified when the channel is destroyed.
  TChannel* Add();
  /// Takes a channel out, with its column or without; null outside the collection.
  std::unique_ptr<TChannel> Take(int index, bool withColumn);

  /// Appends the channels of a sensor type, in order.
  void GetChannelsOfType(std::vector<TChannel*>& list, TSensorType type) const;

  /// Copies the settings of the channels that both collections have.
  void AssignTo(TPersistent* destination) const override;
  /// Compares the settings of all channels.
  bool SameAs(const TPersistent* other) const override;

 private:
  TChannelOwner& set_;
  std::vector<std::unique_ptr<TChannel>> items_;
};
