#pragma once

#include <QPointer>
#include <span>
#include <vector>

#include "components/channels/Statistics.h"
#include "components/channels/Statisticsseries.h"
#include "components/links/Compclasses.h"
#include "components/links/Linkclasses.h"
#include "components/links/Objlists.h"

/// Takes raw measured values, converts and limits them, passes them on as every server data control
/// does, keeps the latest with their times, and shows them in a graph.
class TCustomDataChannel : public TServerDataControl {
  Q_OBJECT

 public:
  enum TChannelOption : int {
    coUseLimits = 1,  ///< values are kept within LimitMin to LimitMax
    coSkipError = 2   ///< with coUseLimits: a value outside is dropped instead of clamped
  };
  Q_DECLARE_FLAGS(TChannelOptions, TChannelOption)
  Q_FLAG(TChannelOptions)

 private:
  Q_PROPERTY(double ScaleFactor READ GetScaleFactor WRITE SetScaleFactor)
  Q_PROPERTY(double ShiftConstant READ GetShiftConstant WRITE SetShiftConstant)
  Q_PROPERTY(double LimitMax READ GetLimitMax WRITE SetLimitMax)
  Q_PROPERTY(double LimitMin READ GetLimitMin WRITE SetLimitMin)
  Q_PROPERTY(TFloatList* Data READ GetData WRITE SetData DESIGNABLE false)
  Q_PROPERTY(TClick* SendData READ GetSendData)
  Q_PROPERTY(TClick* ShiftToInitial READ GetShiftToInitial)
  Q_PROPERTY(double InitialValue READ GetInitialValue WRITE SetInitialValue)
  Q_PROPERTY(TChannelOptions Options READ GetOptions WRITE SetOptions)
  Q_PROPERTY(bool PipeMode READ GetPipeMode WRITE SetPipeMode)
  Q_PROPERTY(int PointCount READ GetPointLimit WRITE SetPointCount)
  Q_PROPERTY(TClick* Reset READ GetReset)
  Q_PROPERTY(bool UseTime READ GetUseTime WRITE SetUseTime)
  Q_PROPERTY(TGraphLink* GraphLink READ GetGraphLink WRITE SetGraphLink)
  Q_PROPERTY(int NotifyInterval READ GetInterval WRITE SetInterval)

 public:
  explicit TCustomDataChannel(QWidget* parent = nullptr);

  /// Takes a raw value: value = ScaleFactor x raw + ShiftConstant, limited as Options say, is
  /// passed on, stored with the present time, and shown every so many times. NaN lies within all
  /// limits.
  void SetValue(double raw) override;

  double GetScaleFactor() const { return scaleFactor_; }
  double GetShiftConstant() const { return shiftConstant_; }
  double GetLimitMax() const { return limitMax_; }
  double GetLimitMin() const { return limitMin_; }
  TChannelOptions GetOptions() const { return options_; }
  /// Finite and not 0, others are ignored.
  void SetScaleFactor(double factor);
  /// Finite, others are ignored.
  void SetShiftConstant(double constant);
  /// A limit beyond the other one takes its place, and the old other limit becomes this one: a
  /// maximum below the minimum is the new minimum. NaN is ignored; infinite limits nothing.
  void SetLimitMax(double limit);
  void SetLimitMin(double limit);
  void SetOptions(TChannelOptions options) { options_ = options; }

  /// The stored values with their times, the oldest first. Whoever changes rows without an OnChange
  /// of the list redraws the graph link too.
  TFloatList* GetData() { return &data_; }
  const TFloatList* GetData() const { return &data_; }
  /// Copies the rows; null changes nothing.
  void SetData(const TFloatList* list);
  /// Whether the newest PointCount values are kept, or else the newest 65,536.
  bool GetPipeMode() const { return pipeMode_; }
  void SetPipeMode(bool pipe);
  /// The number of values that are stored now, and not the property PointCount.
  int GetPointCount() const { return data_.Count(); }
  /// How many values are kept in pipe mode, the property PointCount: 0 (as without pipe mode) to
  /// 65,536, others are ignored.
  int GetPointLimit() const { return pointCount_; }
  void SetPointCount(int count);

  /// The mean that ShiftToInitial gives the stored values. Finite, others are ignored.
  double GetInitialValue() const { return initialValue_; }
  void SetInitialValue(double value);

  /// Whether a graph shows the values over their times, or over their row numbers.
  bool GetUseTime() const { return useTime_; }
  void SetUseTime(bool use) { useTime_ = use; }
  TGraphLink* GetGraphLink() { return &graphLink_; }
  void SetGraphLink(const TGraphLink* link) { graphLink_.Assign(link); }
  /// The series of the stored values, see TProvideGraphData and TProvideGraphBlock. With bars along
  /// Y the coordinates change places.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;
  int ProvideGraphBlock(int index, std::span<TCoordinate> points) const;

  TClick* GetSendData() { return &sendData_; }
  TClick* GetShiftToInitial() { return &shiftToInitial_; }
  TClick* GetReset() { return &reset_; }

  /// Copies the settings and the stored values, and not what the channel is connected to. Null
  /// changes nothing.
  virtual void AssignTo(TCustomDataChannel* destination) const;

  void Loaded() override;

 public slots:
  /// What the three buttons do. SendDataToClients gives subscribers and clients all stored values
  /// again; the channel then has its value back, of which the clients are not notified.
  void SendDataToClients(QObject* sender = nullptr);
  /// Moves the stored values, and by ShiftConstant those to come, so that the stored ones have the
  /// mean InitialValue. Stored values that are not finite do not count.
  void CalculateShiftConstant(QObject* sender = nullptr);
  void ResetChannel(QObject* sender = nullptr);

 signals:
  /// The subscribers have been notified of a value.
  void OnNotify(QObject* sender);

 protected:
  /// The oldest stored value, with this time, is about to give way to a new one.
  virtual void AboutToDrop(double time) { Q_UNUSED(time) }
  void connectNotify(const QMetaMethod& signal) override;

 private:
  bool ApplyLimits(double& value) const;
  void StoreValue(double value);
  void DataChanged(QObject* sender);
  void SetDataMaximum();
  bool SendRows();
  bool HasYBars() const;
  TCoordinate Point(int row, bool swapped) const;

  TFloatList data_{this};
  TClick sendData_{this};
  TClick shiftToInitial_{this};
  TClick reset_{this};
  double scaleFactor_ = 1.0;
  double shiftConstant_ = 0.0;
  double limitMax_ = 0.0;
  double limitMin_ = 0.0;
  double initialValue_ = 0.0;
  TChannelOptions options_;
  bool pipeMode_ = true;
  int pointCount_ = 100;
  bool useTime_ = false;
  bool sending_ = false;
  TGraphLink graphLink_{this};
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TCustomDataChannel::TChannelOptions)

/// The data channel that is placed on forms: shows statistics beside its values.
class TDataChannel : public TCustomDataChannel {
  Q_OBJECT
  Q_PROPERTY(TStatistics* Statistics READ GetStatistics WRITE SetStatistics)

 public:
  explicit TDataChannel(QWidget* parent = nullptr);
  ~TDataChannel() override;

  TStatistics* GetStatistics() { return &statistics_; }
  void SetStatistics(const TStatistics* statistics) { statistics_.Assign(statistics); }

 public slots:
  /// The statistics of the times of the stored values, column 0 of Data, on purpose.
  void ComputeStatistics(QObject* sender = nullptr);
  /// Computes the statistics and takes their snapshot. That is put off until somebody looks at
  /// them: of a long list it costs far more than a new value.
  void UpdateStatistics(QObject* sender = nullptr);

 protected:
  void AboutToDrop(double time) override;

 private:
  static constexpr std::size_t kMaxDropped = 4096;

  void Compute(std::span<const double> dropped, int rows);

  TStatistics statistics_{this};
  QPointer<TStatisticsSeries> series_;  ///< in the graph link's list, which owns it
  // Of which values the postponed statistics are.
  std::vector<double> dropped_;  ///< times of those that have left Data since, the oldest first
  int rows_ = 0;                 ///< how many, with those that have left
};
