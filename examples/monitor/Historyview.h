#pragma once

#include <QPointer>
#include <QWidget>
#include <array>
#include <vector>

#include "components/channels/Channel.h"
#include "components/links/Linkclasses.h"

class QComboBox;
class QLabel;
class QStackedWidget;
class TKorvalGraph;

/// A graph of one history of a channel: largest, mean and smallest value of each record over its
/// time, with gaps where nothing was measured. The user picks the history.
class THistoryView : public QWidget {
  Q_OBJECT

 public:
  explicit THistoryView(QWidget* parent = nullptr);

  TStatInterval Interval() const;
  void SetInterval(TStatInterval interval);
  /// Another channel; null for none. Not owned, may go first.
  void SetChannel(TChannel* channel, const QString& setLabel);
  /// Draws anew if the history has changed since.
  void ShowHistory();

 signals:
  void OnIntervalChanged();

 private:
  struct TCurve {
    TStatisticsOptions Options;
    std::vector<TCoordinate> Points;  ///< newest first
  };

  void MakeGraph();
  void AddCurve(TCurve& curve, TStatValue value, TColor color, int weight);
  void TakePoints(TCurve& curve) const;
  const TStatHistory* History() const;

  QPointer<TChannel> channel_;
  QString setLabel_;
  int shownCount_ = -1;
  double shownTime_ = 0.0;

  QLabel* caption_;
  QComboBox* interval_;
  QStackedWidget* pages_;
  QLabel* hint_;
  TKorvalGraph* graph_;
  std::array<TCurve, 3> curves_;
  TGraphLink link_{this};
};
