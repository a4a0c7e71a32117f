#pragma once

#include <QPointer>
#include <QString>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "components/channels/Channelset.h"
#include "components/channels/Channelstat.h"
#include "components/links/Componentref.h"
#include "components/links/Propclasses.h"
#include "model/Timer.h"

class TCustomChannelLink;
class TNumberFormat;

/// A value that the options have picked as text: in the format, but a time stamp as a time.
QString TextOfPicked(const TStatisticsOptions& options, const TNumberFormat& format, double value);

/// What a display shows is of one channel. A member of the display.
class TShownChannel {
 public:
  /// Shows a channel from now on; true if it was another one before. None, and the first one, of
  /// which a form may have brought something, are no others.
  bool ChangesTo(const TChannel* channel);

 private:
  std::optional<QPointer<const TChannel>> channel_;
};

/// One end of a channel link: a set and a channel of a source, chosen by their labels, the
/// statistics to follow, and the last record of them. What is chosen stays so when its label
/// changes; when it goes, one that has the same label takes its place, or none. A member of its
/// link; GUI thread only.
class TChannelEnd : public QObject {
  Q_OBJECT

 public:
  /// `link` is notified of the blocks of the chosen set.
  explicit TChannelEnd(TCustomChannelLink& link);

  TStatisticsOptions Options{this};
  TSelectedCollItem ChannelSet{this};
  TSelectedCollItem Channel{this};
  /// The record that was last delivered, of another choice maybe.
  TStatSet Data;

  /// Data are of the present choice, and something has been measured.
  bool HasData() const { return hasData_; }

  TChannelSet* SelectedSet() const { return set_; }
  TChannel* SelectedChannel() const { return channel_; }

  /// Leaves the source and takes the selections away.
  void Clear();
  /// Offers the sets of a source to an end without one; null for none.
  void SetSource(TChannelSource* source);
  /// Remembers the set, takes the selected channel away and offers the channels of the set.
  void SelectedChannelSetChanged(TChannelSet* set);
  void SelectedChannelChanged(TChannel* channel);

  /// Copies the record that the chosen history is accumulating. Histories are counted from
  /// MinInterval on: below it, and where the channel has none, nothing is copied.
  void Refresh();
  /// Hears of the blocks of the chosen set, or does not.
  void Listen(bool listen) { client_.SetChannelSet(listen ? set_.data() : nullptr); }

 signals:
  void OnChannelSetChanged(QObject* sender);
  void OnChannelChanged(QObject* sender);

 private:
  void SetChosen();
  void ChannelChosen();
  void OptionsChanged();
  void SetsChanged();
  void ChannelsChanged();

  QPointer<TChannelSets> sets_;  ///< of the source, which may be half destroyed without them
  QPointer<TChannelSet> set_;
  QPointer<TChannel> channel_;
  TStatInterval interval_ = Options.GetSelInterval();  ///< of the data
  bool hasData_ = false;
  QMetaObject::Connection setsChanged_;
  QMetaObject::Connection channelsChanged_;
  TDataClient client_;
};

/// Through which a display follows channels of a source: a member of the display, with a timer or
/// without. With a timer it delivers on every tick while it is enabled; without one, after every
/// block of the chosen sets. Source, sets and channels may go first. GUI thread only; blocks of
/// another thread are delivered on this one, several that wait as one.
class TCustomChannelLink : public TPersistent {
  Q_OBJECT

 public:
  /// `owner` is the component whose form is searched for the source.
  explicit TCustomChannelLink(bool withTimer, QObject* owner = nullptr);
  ~TCustomChannelLink() override;

  /// Of the timer, in milliseconds, initially 100; it runs in steps of 10 ms. Below 1 is ignored.
  /// Without a timer it is 0 and stays so.
  int GetInterval() const { return timer_ ? intervalMs_ : 0; }
  void SetInterval(int milliseconds);
  /// Initially false; without a timer it stays so.
  bool GetEnabled() const { return timer_ && timer_->GetEnabled(); }
  void SetEnabled(bool enabled);

  /// The source that it follows; null for none. Not owned.
  TChannelSource* GetChannelSource() const;
  /// Another source takes away what was selected.
  void SetChannelSource(TChannelSource* source);
  /// Its object name, as forms keep it. A name set here is resolved by Loaded.
  QString GetChannelSourceName() const { return source_.GetName(); }
  void SetChannelSourceName(const QString& name) { source_.SetName(name); }
  /// To be called once the form of the owner is complete. Selections that were read are made.
  void Loaded();

  /// Refreshes the data and fires OnData.
  void DoOnData(QObject* sender);
  /// Does so, on the thread of the link. Any thread.
  void BlockComplete();

  /// Copies interval, source, selections and options.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 signals:
  /// There are new data; `sender` is the source, or null.
  void OnData(QObject* sender);
  void OnSourceChanged(QObject* sender);

 protected:
  /// For the constructors of descendants.
  TChannelEnd& AddEnd();

 private:
  void SourceChanged();
  void Listen();

  std::unique_ptr<TTimerClient> timer_;
  int intervalMs_ = 100;
  TComponentRef<TChannelSource> source_;
  std::atomic<bool> posted_ = false;
  std::vector<std::unique_ptr<TChannelEnd>> ends_;
};

/// Follows one channel.
class TOneChannelLink : public TCustomChannelLink {
  Q_OBJECT
  Q_PROPERTY(TSelectedCollItem* ChannelSet READ GetChannelSet WRITE SetChannelSet)
  Q_PROPERTY(TSelectedCollItem* Channel READ GetChannel WRITE SetChannel)
  Q_PROPERTY(TStatisticsOptions* Options READ GetOptions WRITE SetOptions)
  Q_PROPERTY(QString ChannelSource READ GetChannelSourceName WRITE SetChannelSourceName)
  Q_PROPERTY(int UpdateInterval READ GetInterval WRITE SetInterval)

 public:
  explicit TOneChannelLink(bool withTimer, QObject* owner = nullptr);

  TSelectedCollItem* GetChannelSet() { return &end_.ChannelSet; }
  void SetChannelSet(const TSelectedCollItem* item) { end_.ChannelSet.Assign(item); }
  TSelectedCollItem* GetChannel() { return &end_.Channel; }
  void SetChannel(const TSelectedCollItem* item) { end_.Channel.Assign(item); }
  TStatisticsOptions* GetOptions() { return &end_.Options; }
  const TStatisticsOptions* GetOptions() const { return &end_.Options; }
  void SetOptions(const TStatisticsOptions* options) { end_.Options.Assign(options); }

  TChannelSet* SelectedChannelSet() const { return end_.SelectedSet(); }
  TChannel* SelectedChannel() const { return end_.SelectedChannel(); }
  const TStatSet& GetData() const { return end_.Data; }
  bool HasData() const { return end_.HasData(); }

  void SelectedChannelSetChanged(TChannelSet* set) { end_.SelectedChannelSetChanged(set); }
  void SelectedChannelChanged(TChannel* channel) { end_.SelectedChannelChanged(channel); }

 signals:
  void OnChannelSetChanged(QObject* sender);
  void OnChannelChanged(QObject* sender);

 private:
  TChannelEnd& end_;
};

/// Follows two channels, of one set or of two.
class TTwoChannelLink : public TCustomChannelLink {
  Q_OBJECT
  Q_PROPERTY(TSelectedCollItem* ChannelSet1 READ GetChannelSet1 WRITE SetChannelSet1)
  Q_PROPERTY(TSelectedCollItem* Channel1 READ GetChannel1 WRITE SetChannel1)
  Q_PROPERTY(TStatisticsOptions* Options1 READ GetOptions1 WRITE SetOptions1)
  Q_PROPERTY(TSelectedCollItem* ChannelSet2 READ GetChannelSet2 WRITE SetChannelSet2)
  Q_PROPERTY(TSelectedCollItem* Channel2 READ GetChannel2 WRITE SetChannel2)
  Q_PROPERTY(TStatisticsOptions* Options2 READ GetOptions2 WRITE SetOptions2)
  Q_PROPERTY(QString ChannelSource READ GetChannelSourceName WRITE SetChannelSourceName)
  Q_PROPERTY(int UpdateInterval READ GetInterval WRITE SetInterval)

 public:
  explicit TTwoChannelLink(bool withTimer, QObject* owner = nullptr);

  TSelectedCollItem* GetChannelSet1() { return &end1_.ChannelSet; }
  void SetChannelSet1(const TSelectedCollItem* item) { end1_.ChannelSet.Assign(item); }
  TSelectedCollItem* GetChannel1() { return &end1_.Channel; }
  void SetChannel1(const TSelectedCollItem* item) { end1_.Channel.Assign(item); }
  TStatisticsOptions* GetOptions1() { return &end1_.Options; }
  void SetOptions1(const TStatisticsOptions* options) { end1_.Options.Assign(options); }
  TSelectedCollItem* GetChannelSet2() { return &end2_.ChannelSet; }
  void SetChannelSet2(const TSelectedCollItem* item) { end2_.ChannelSet.Assign(item); }
  TSelectedCollItem* GetChannel2() { return &end2_.Channel; }
  void SetChannel2(const TSelectedCollItem* item) { end2_.Channel.Assign(item); }
  TStatisticsOptions* GetOptions2() { return &end2_.Options; }
  void SetOptions2(const TStatisticsOptions* options) { end2_.Options.Assign(options); }

  TChannelSet* SelectedChannelSet1() const { return end1_.SelectedSet(); }
  TChannel* SelectedChannel1() const { return end1_.SelectedChannel(); }
  const TStatSet& GetData1() const { return end1_.Data; }
  TChannelSet* SelectedChannelSet2() const { return end2_.SelectedSet(); }
  TChannel* SelectedChannel2() const { return end2_.SelectedChannel(); }
  const TStatSet& GetData2() const { return end2_.Data; }
  /// Both ends have data.
  bool HasData() const { return end1_.HasData() && end2_.HasData(); }

  void SelectedChannelSetChanged1(TChannelSet* set) { end1_.SelectedChannelSetChanged(set); }
  void SelectedChannelChanged1(TChannel* channel) { end1_.SelectedChannelChanged(channel); }
  void SelectedChannelSetChanged2(TChannelSet* set) { end2_.SelectedChannelSetChanged(set); }
  void SelectedChannelChanged2(TChannel* channel) { end2_.SelectedChannelChanged(channel); }

 signals:
  void OnChannelSetChanged1(QObject* sender);
  void OnChannelChanged1(QObject* sender);
  void OnChannelSetChanged2(QObject* sender);
  void OnChannelChanged2(QObject* sender);

 private:
  TChannelEnd& end1_;
  TChannelEnd& end2_;
};
