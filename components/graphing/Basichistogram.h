#pragma once

#include <QDialog>
#include <QPointer>
#include <span>

#include "components/channels/Statistics.h"
#include "components/channels/Statisticsseries.h"
#include "components/graphing/Dataseries.h"
#include "components/links/Binlist.h"
#include "components/links/Compclasses.h"
#include "components/links/Linkclasses.h"

class TBinEditor;

/// Counts the values it is given in bins, and shows the bins in a graph as bars.
class TBasicHistogram : public TDataControl {
  Q_OBJECT
  Q_PROPERTY(TBinList* Bins READ GetBins WRITE SetBins)
  Q_PROPERTY(TClick* ResetHistogram READ GetResetHistogram)
  Q_PROPERTY(TGraphLink* GraphLink READ GetGraphLink WRITE SetGraphLink)
  Q_PROPERTY(int NotifyInterval READ GetInterval WRITE SetInterval)

 public:
  explicit TBasicHistogram(QWidget* parent = nullptr);
  ~TBasicHistogram() override;

  /// Stores the value and counts it. The subscribers are notified of every Interval-th value that
  /// fell into a bin: one that no bin takes is stored and goes no further.
  void SetValue(double value) override;

  TBinList* GetBins() { return &bins_; }
  const TBinList* GetBins() const { return &bins_; }
  /// Copies grid and counts; null changes nothing.
  void SetBins(const TBinList* bins) { bins_.Assign(bins); }

  TClick* GetResetHistogram() { return &reset_; }

  TGraphLink* GetGraphLink() { return &graphLink_; }
  void SetGraphLink(const TGraphLink* link) { graphLink_.Assign(link); }
  /// The bars, see TProvideGraphData and TProvideGraphBlock. With bars along Y the coordinates
  /// change places.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;
  int ProvideGraphBlock(int index, std::span<TCoordinate> points) const;

  /// What a double click does: opens the bin editor.
  virtual void ShowEditor() { ShowBinEditor(); }
  /// Opens the bin editor beside the other windows, or brings it to the front. It closes with the
  /// histogram.
  void ShowBinEditor();

  void Loaded() override;

 public slots:
  /// What the button does: empties the bins.
  void ResetHistogramBins(QObject* sender = nullptr);

 protected:
  /// A value was counted: notifies the subscribers if it is their turn, and has the graph drawn
  /// anew. That is done once for all values of one run of the event loop: laying out a graph costs
  /// a thousand times what counting a value does.
  virtual void ValueAdded();
  /// The bins were emptied, or others took their place: notifies the subscribers and updates the
  /// graph.
  virtual void DataChanged();
  /// Gives the axes of the graph the ranges that suit the direction of the bars. The counts begin
  /// at 0.1 and not at 0, so that a logarithmic axis shows them too.
  virtual void SeriesStyleChanged();
  /// Adds to the bin editor what a descendant has beyond bins.
  virtual void FillEditor(TBinEditor& editor) { Q_UNUSED(editor) }
  /// For the destructors of descendants that fill the editor.
  void CloseEditor();

  bool HasYBars() const;
  void DoubleClicked() override { ShowEditor(); }

 private:
  void ReplayLater();

  TBinList bins_{this};
  TClick reset_{this};
  TGraphLink graphLink_{this};
  QPointer<TSeries> series_;  ///< in the graph link's list, which owns it
  QPointer<QDialog> editor_;
  TMethod reporting_;  ///< ValueAdded and DataChanged
  bool replayIsDue_ = false;
};

/// A histogram that can leave out values which stay in the bin of the one before, and that has the
/// statistics of what is in its bins.
class TOccurrenceHistogram : public TBasicHistogram {
  Q_OBJECT

 public:
  enum THistogramAddMode : quint8 {
    amAddAll,
    amAddIfBinChanged  ///< a value counts only if it moves to another bin
  };
  Q_ENUM(THistogramAddMode)

 private:
  Q_PROPERTY(THistogramAddMode AddMode READ GetAddMode WRITE SetAddMode)
  Q_PROPERTY(TStatistics* Statistics READ GetStatistics WRITE SetStatistics)

 public:
  explicit TOccurrenceHistogram(QWidget* parent = nullptr);
  ~TOccurrenceHistogram() override;

  void SetValue(double value) override;

  THistogramAddMode GetAddMode() const { return addMode_; }
  void SetAddMode(THistogramAddMode mode);

  /// Of the bins as they are whenever somebody looks: see ComputeStatistics.
  TStatistics* GetStatistics() { return &statistics_; }
  /// Copies the statistics until the bins change; null changes nothing.
  void SetStatistics(const TStatistics* statistics) { statistics_.Assign(statistics); }

  void Loaded() override;

 public slots:
  /// The statistics of the bins and not of the values themselves: each counts as the middle of its
  /// bin. Pos is the mean count of a bin.
  void ComputeStatistics(QObject* sender = nullptr);
  /// Computes the statistics and takes their snapshot. That is put off until somebody looks at
  /// them: adding up the bins costs far more than counting a value.
  void UpdateStatistics(QObject* sender = nullptr);

 protected:
  void ValueAdded() override;
  void DataChanged() override;
  void SeriesStyleChanged() override;
  void FillEditor(TBinEditor& editor) override;

 private:
  bool IsInLastBin(double value) const;
  QString StatisticsText() const;

  THistogramAddMode addMode_ = amAddAll;
  /// Upper edge of the bin of the last value that was counted. 0 before the first, so that a value
  /// just below 0 is taken for one that stayed where it was; emptying the bins leaves it alone.
  double lastBinPos_ = 0.0;
  TMethod adding_;  ///< SetValue
  TStatistics statistics_{this};
  QPointer<TStatisticsSeries> statisticsSeries_;  ///< in the graph link's list, which owns it
};
