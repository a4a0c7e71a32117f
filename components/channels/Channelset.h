#pragma once

#include <QString>
#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "components/channels/Channel.h"
#include "components/channels/Matrix.h"
#include "components/controls/Compbase.h"
#include "components/links/Componentref.h"
#include "components/links/Propclasses.h"

class TChannelSet;
class TChannelSource;

/// A consumer's subscription to the blocks of a set; a member of the consumer. Set and consumer may
/// go in any order, and a client may leave or destroy itself from within its own call.
class TDataClient {
 public:
  explicit TDataClient(std::function<void(TChannelSet* sender)> onBlock)
      : OnBlock(std::move(onBlock)) {}
  ~TDataClient() { SetChannelSet(nullptr); }
  TDataClient(const TDataClient&) = delete;
  TDataClient& operator=(const TDataClient&) = delete;

  /// A block of the set is complete. Runs on the thread that sets rows.
  std::function<void(TChannelSet* sender)> OnBlock;

  /// The set that it is in; null for none. GUI thread only.
  TChannelSet* GetChannelSet() const { return set_; }
  /// Leaves the present set and joins another at the end of its clients; null only leaves. Waits
  /// until a call of OnBlock on another thread has returned.
  void SetChannelSet(TChannelSet* set);

 private:
  friend class TChannelSet;
  TChannelSet* set_ = nullptr;
};

/// What saves the blocks of channel sets: a component that a set knows by this class alone.
class TBlockStorage : public TIconControl {
  Q_OBJECT

 public:
  using TIconControl::TIconControl;

  virtual bool GetActive() const = 0;
  /// Takes the block that a set has completed. Runs on the thread that sets rows.
  virtual void SaveBlock(TChannelSet& set) = 0;
  /// Channels of the set have come, gone or changed their names.
  virtual void LayoutChanged(TChannelSet& set) = 0;
  /// The set has another storage from now on, or is being destroyed.
  virtual void Forget(TChannelSet& set) = 0;
};

/// Rows of several channels: takes one row after the other, converts each value, and after every
/// Rows of them computes the statistics of the block, gives them to the channels' histories, has
/// them saved, and notifies its clients.
///
/// Threads: one thread at a time may set rows, also one beside the GUI thread; everything else is
/// the GUI thread's. Operations of this class lock against each other, so they may be used while
/// rows come; CopyData gives a whole picture of the matrix. Who looks at the matrices themselves
/// (GetData, GetCalibrations, GetBlockStats) from another thread than the one that sets rows
/// surrounds that with ReadBegin and ReadEnd, whoever sets rows with WriteBegin and WriteEnd; that
/// guard is a courtesy of at most 10 ms and excludes nobody. Sets, sources and storages are
/// destroyed, and sources are loaded, only while no thread sets rows.
class TChannelSet : public TNotifyPersistent, public TChannelOwner {
  Q_OBJECT
  Q_PROPERTY(int ChannelCount READ GetCount WRITE SetCount)
  Q_PROPERTY(int Rows READ GetRows WRITE SetRows)
  Q_PROPERTY(QString Label READ GetLabel WRITE SetLabel)
  Q_PROPERTY(QString XMLTag READ GetXMLTag WRITE SetXMLTag)
  Q_PROPERTY(QString SetID READ GetSetID WRITE SetSetID)
  Q_PROPERTY(TChannels* Channels READ GetChannels)
  Q_PROPERTY(QString Storage READ GetStorageName WRITE SetStorageName)

 public:
  enum TCalibrationRow { kScaleFactor, kOffset, kInitialValue, kActive, kCalibrationRows };
  enum TStatRow { kCount, kSum, kSqSum, kMax, kMin, kStatRows };
  enum TAccess : int { kIdle, kWriting, kReading };

  static constexpr int kMaxChannels = 1024;
  static constexpr int kDefaultRows = 10;
  /// What the guard waits at most.
  static constexpr int kWaitMs = 10;

  /// Four channels, blocks of ten rows. `owner` is the component that it belongs to, or null.
  explicit TChannelSet(QObject* owner = nullptr);
  ~TChannelSet() override;

  /// Place in the collection; -1 outside of one.
  int Index() const { return index_; }
  QString GetNamePath() const override;

  /// Number of channels, 1 to kMaxChannels, others are ignored; so are such as make a matrix of
  /// more cells than TMatrix::kMaxCells. New channels come at the end, and go from there.
  int GetCount();
  void SetCount(int count);
  /// The channels and the time, which is column 0.
  int GetColumns() const { return GetCountNow() + 1; }
  /// Rows per block; ignored below 1 and beyond TMatrix::kMaxCells, as above.
  int GetRows() const { return data_.Rows(); }
  void SetRows(int rows);
  /// Resizes the matrices and begins a new block; what old and new size share is kept.
  [[nodiscard]] bool ResizeMatrices(int rows, int columns);
  /// The row that comes next, 0 to Rows - 1.
  int GetCurrentRow() const;

  const QString& GetLabel() const { return label_; }
  void SetLabel(const QString& label);
  /// The two strings by which packages name the set: the tag, and the value of its attribute id.
  const QString& GetXMLTag() const { return xmlTag_; }
  void SetXMLTag(const QString& tag) { Store(xmlTag_, tag); }
  const QString& GetSetID() const { return setId_; }
  void SetSetID(const QString& id) { Store(setId_, id); }
  TChannels* GetChannels() { return &channels_; }
  const TChannels* GetChannels() const { return &channels_; }

  /// Saves the set's blocks; null for none. Not owned, may go first.
  TBlockStorage* GetStorage() const { return storageNow_; }
  void SetStorage(TBlockStorage* storage);
  /// Its object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetStorageName() const { return storage_.GetName(); }
  void SetStorageName(const QString& name);
  /// To be called once the form is complete.
  void Loaded() { storage_.Loaded(); }

  /// Whether a row has ever come.
  bool GetActive() const { return active_; }
  void SetActive(bool active) { active_ = active; }

  /// Takes a row: values[c] is for column c, and those from `first` to count - 1 are there. Values
  /// are converted, the time in values[0] is not. A channel that receives a value becomes active.
  /// A row may also be set from within a client's call: it begins the next block.
  void SetRow(const double* values, int first, int count);
  /// The block statistics of the rows, which go on to the channels; only of a block that takes
  /// time. A clock that jumps back within a block costs its statistics, and nothing else.
  void AnalyseData();

  /// Rows per second of the last block.
  double GetSampleRate() const;
  /// Times of the last row of the block, and of the one before its first; days since 30 December
  /// 1899.
  double GetStartTime() const;
  double GetEndTime() const;
  double BlockTime() const override { return endTime_; }

  /// Offset that gives the column's data the mean 0 before the initial value is added. Columns
  /// outside 1 to the last are ignored, and so are data that hold NaN or an infinity.
  void CalculateOffset(int column);
  /// Does so, and then converts the data, which have been converted already, once more: on purpose.
  void ShiftToInitial(int column) override;
  /// The same for all channels.
  void ShiftToInitial();
  /// Applies another calibration to the data of a column and computes its statistics anew.
  void RescaleData(int column, const TCalibration& from, const TCalibration& to);
  /// Zeroes data and block statistics.
  void Reset();

  /// Takes a channel out, with its column. Ignored outside the collection.
  void DeleteChannel(int index);
  /// A channel that was destroyed by somebody else leaves with its column.
  void DefaultHandler(const TObjectMessage& message);

  /// The guard for whoever looks at the matrices themselves. Each Begin waits at most 10 ms for the
  /// other side to end, and then goes on in any case; WriteBegin also waits for another writer, as
  /// ReadBegin does. Readers do not wait for each other. Any thread.
  void WriteBegin();
  void WriteEnd();
  void ReadBegin();
  void ReadEnd();
  TAccess GetAccess() const { return access_; }

  const TMatrix& GetData() const { return data_; }                 ///< Rows x Columns
  const TMatrix& GetCalibrations() const { return calibration_; }  ///< TCalibrationRow x Columns
  const TMatrix& GetBlockStats() const override { return blockStats_; }  ///< TStatRow x Columns
  /// A copy of the data, between two rows.
  TMatrix CopyData() const;
  /// Copies the statistics of the last block, a record for each channel, without moments. False if
  /// it has none, as its time span was not positive; the records are then of an earlier one.
  bool CopyBlockStats(std::vector<TStatSet>& channels) const;

  TCalibration GetCalibration(int column) const override;
  void Recalibrate(TChannel& channel, const TCalibration& calibration) override;
  bool IsChannelActive(int column) const override;
  void SetChannelActive(int column, bool active) override;
  [[nodiscard]] bool MakeColumn(int column) override;
  void ChangeChannels(int goneColumn, const std::function<void()>& change) override;

  /// The set as a record, and back. A damaged record is refused with a reason; the set is then to
  /// be thrown away.
  QJsonObject WriteProperties() const;
  [[nodiscard]] bool ReadProperties(QJsonObject record, QString* error);

  /// Copies the published properties, the channels' too, and not what was measured.
  void AssignTo(TPersistent* destination) const override;

 protected:
  void customEvent(QEvent* event) override;

 private:
  friend class TChannelSets;
  friend class TDataClient;
  using TLock = std::lock_guard<std::mutex>;

  int GetCountNow() const { return data_.Columns() - 1; }
  bool HasColumn(int column) const { return column >= 1 && column < data_.Columns(); }
  void InitMatrices(int first);
  bool StoreRow(const double* values, int first, int count);
  void Analyse();
  void ComputeBlock(int firstColumn, int endColumn);
  bool Offset(int column);
  void Shift(int column);
  void RescaleColumn(int column, const TCalibration& from, const TCalibration& to);
  TCalibration CalibrationOf(int column) const;
  void SetCalibrationOf(int column, const TCalibration& calibration);
  void BlockComplete();
  bool NotifyClients();
  void Join(TDataClient* client);
  void Leave(TDataClient* client);
  void StorageChanged(QObject* storage, TListAction action);
  void NotifyStorage();
  void LeaveCollection();

  mutable std::mutex mutex_;  ///< of matrices, times, current row, and analysed_
  int count_ = -1;
  int currentRow_ = 0;
  TMatrix data_;
  TMatrix calibration_;
  TMatrix blockStats_;

  std::mutex accessMutex_;
  std::condition_variable writeEnded_;
  std::condition_variable readEnded_;
  std::atomic<TAccess> access_ = kIdle;

  int index_ = -1;
  class TChannelSets* sets_ = nullptr;  ///< null while it is in no collection
  QString xmlTag_ = QStringLiteral("data");
  QString setId_;
  QString label_;
  double sampleRate_ = 0.0;
  double endTime_ = 0.0;
  double startTime_ = 0.0;
  bool hasStats_ = false;  ///< the last block has statistics
  TChannels channels_{*this, this};
  std::vector<TChannel*> analysed_;  ///< the channels by column, the first one being column 1
  std::atomic<bool> active_ = false;

  TComponentRef<TBlockStorage> storage_;
  std::atomic<TBlockStorage*> storageNow_ = nullptr;
  /// Outlives the set while a client that destroys it is being notified.
  struct TClients {
    std::recursive_mutex mutex;
    std::vector<TDataClient*> list;  ///< null: has left while the others were notified
    int notifying = 0;
    bool gone = false;  ///< the set is
  };
  const std::shared_ptr<TClients> clients_ = std::make_shared<TClients>();
};

/// The sets of a source, in order; owned. Fires OnChange when a set comes, goes or gets another
/// label. GUI thread only.
class TChannelSets : public TPersistent {
  Q_OBJECT
  /// The sets with all that belongs to them as text; a damaged text is ignored.
  Q_PROPERTY(QString Items READ WriteProperties WRITE SetItems DESIGNABLE false)

 public:
  static constexpr int kMaxSets = 256;
  /// Cells that the data of all sets of a text may have.
  static constexpr qint64 kMaxCells = qint64{4} * TMatrix::kMaxCells;
  /// Channels of all sets of a text.
  static constexpr int kMaxChannels = 32 * TChannelSet::kMaxChannels;

  explicit TChannelSets(QObject* owner = nullptr) : TPersistent(owner) {}
  ~TChannelSets() override;

  int Count() const { return static_cast<int>(items_.size()); }
  /// Null outside the collection.
  TChannelSet* GetItem(int index) const;
  /// Copies the set's settings to the one at `index`.
  void SetItem(int index, const TChannelSet* set);
  /// The labels, in order.
  QStringList Labels() const;

  /// A new set at the end, with the label "ChannelSet" and its number from 1, or a greater one that
  /// is not taken; null beyond kMaxSets.
  TChannelSet* Add();
  /// Ignored outside the collection.
  void Delete(int index);
  void Clear();

  QString WriteProperties() const;
  /// Puts the sets of a text in the place of the present ones. A damaged text is refused with a
  /// reason and changes nothing.
  [[nodiscard]] bool ReadProperties(const QString& text, QString* error = nullptr);
  void SetItems(const QString& text) { static_cast<void>(ReadProperties(text)); }

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  friend class TChannelSet;
  void Put(std::unique_ptr<TChannelSet> set);
  std::unique_ptr<TChannelSet> Take(int index);
  void Replace(std::vector<std::unique_ptr<TChannelSet>> sets);

  std::vector<std::unique_ptr<TChannelSet>> items_;
};

/// The component that holds channel sets, for devices to write and displays to follow.
class TChannelSource : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(TChannelSets* Sets READ GetSets WRITE SetSets)

 public:
  explicit TChannelSource(QWidget* parent = nullptr);
  ~TChannelSource() override;

  TChannelSets* GetSets() { return &sets_; }
  const TChannelSets* GetSets() const { return &sets_; }
  void SetSets(const TChannelSets* sets) { sets_.Assign(sets); }

  /// Sensor types of all channels of all sets.
  std::set<TSensorType> GetSensorTypes() const;
  /// Appends the channels of a sensor type, set by set.
  void GetChannelsOfType(std::vector<TChannel*>& list, TSensorType type) const;

  bool IsBeingDestroyed() const { return destroying_; }
  void Loaded() override;

  /// Copies the sets with their settings; null changes nothing.
  void AssignTo(TChannelSource* destination) const;

 private:
  TChannelSets sets_{this};
  bool destroying_ = false;
};
