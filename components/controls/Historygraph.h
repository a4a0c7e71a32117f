#pragma once

#include <vector>

#include "components/channels/Channellinks.h"
#include "components/controls/Compbase.h"
#include "components/links/Linkclasses.h"

/// Plots a history of a channel over time in a graph: the records that the statistics of the
/// channel have kept, also those from before the panel was opened. The limits that are checked are
/// drawn with them. GUI thread only.
class THistoryGraph : public TIconControl {
  Q_OBJECT
  Q_PROPERTY(TOneChannelLink* ChannelLink READ GetChannelLink WRITE SetChannelLink)
  Q_PROPERTY(TGraphLink* GraphLink READ GetGraphLink WRITE SetGraphLink)
  Q_PROPERTY(bool ShowLimits READ GetShowLimits WRITE SetShowLimits)

 public:
  explicit THistoryGraph(QWidget* parent = nullptr);

  /// The channel; its options choose the history and the value of the records. A new record is
  /// looked for at every UpdateInterval.
  TOneChannelLink* GetChannelLink() { return &link_; }
  void SetChannelLink(const TOneChannelLink* link) { link_.Assign(link); }
  /// Two series: the history and the limits.
  TGraphLink* GetGraphLink() { return &graphLink_; }
  void SetGraphLink(const TGraphLink* link) { graphLink_.Assign(link); }
  bool GetShowLimits() const { return showLimits_; }
  void SetShowLimits(bool show);

  void Loaded() override;

 private:
  void GraphChanged();
  void SetUpAxes(TKorvalGraph& graph);
  void LookForRecord();
  void FindLimitLines();
  const TChannelStatistics* Statistics();

  TOneChannelLink link_{true, this};
  TGraphLink graphLink_{this};
  bool showLimits_ = true;
  double newest_ = 0.0;  ///< time of the newest record that is drawn
  std::vector<TCoordinate> limitLines_;
};
