#pragma once

#include <QTableWidget>
#include <array>
#include <functional>

#include "components/channels/Channelset.h"

/// The present values of all channels of a source, with the statistics of an interval and how each
/// channel stands to its limits. The source is not owned and outlives the table.
class TChannelTable : public QTableWidget {
  Q_OBJECT

 public:
  enum TColumn { kSet, kChannel, kValue, kMin, kMax, kAverage, kStatus, kColumns };

  /// Shows the channels that the source has now, one in a row.
  explicit TChannelTable(TChannelSource& source, QWidget* parent = nullptr);

  /// Makes all texts anew, and columns wider if they need it: they never have to be scrolled. Rows
  /// of a set that is not live are grey. A channel of a set that has been given rows, but never a
  /// value for it, is hidden: the device has fewer inputs.
  void ShowValues(TStatInterval interval,
                  const std::function<bool(const TChannelSet& set)>& isLive);

  TChannel* SelectedChannel() const;
  TChannelSet* SelectedSet() const;
  void Select(const TChannel* channel);

 signals:
  void OnSelected();

 private:
  struct TRow {
    TChannelSet* set;
    TChannel* channel;
  };

  void AddRow(const TRow& row);
  void ShowRow(int row, TStatInterval interval, bool live);
  void SetText(int row, int column, const QString& text);
  void Widen();

  std::vector<TRow> rows_;
  std::array<qsizetype, kColumns> longest_{};  ///< text that each column has had room for
  std::array<int, kColumns> widths_{};         ///< pixels that each column needs
  bool outgrown_ = false;
};
