#pragma once

#include "components/channels/Channelset.h"

#include "tests/support/Testing.h"

/// A channel source whose sets keep every row that they are given.
class TRowRecorder {
 public:
  using TRows = std::vector<std::vector<double>>;

  /// A set of `count` channels. Its rows hold the time and all channels; a channel that gets no
  /// value keeps the one before.
  TChannelSet* Add(const QString& tag, const QString& id, int count) {
    TChannelSet* set = source_->GetSets()->Add();
    set->SetXMLTag(tag);
    set->SetSetID(id);
    set->SetCount(count);
    set->SetRows(1);
    const std::size_t index = rows_.size();
    rows_.emplace_back();
    clients_.push_back(std::make_unique<TDataClient>([this, index](TChannelSet* from) {
      const double* row = from->GetData().Row(0);
      rows_[index].emplace_back(row, row + from->GetColumns());
      if (OnRow) OnRow();
    }));
    clients_.back()->SetChannelSet(set);
    return set;
  }
  TChannelSource* Source() { return source_.get(); }
  TChannelSets* Sets() { return source_->GetSets(); }
  void DestroySource() { source_.reset(); }

  /// The rows of the set that was added as number `index`.
  const TRows& Rows(std::size_t index) const { return rows_[index]; }
  const std::vector<TRows>& AllRows() const { return rows_; }
  void Clear() {
    for (TRows& rows : rows_) rows.clear();
  }

  /// Called after each row.
  std::function<void()> OnRow;

 private:
  std::unique_ptr<TChannelSource> source_ = std::make_unique<TChannelSource>();
  std::vector<TRows> rows_;
  std::vector<std::unique_ptr<TDataClient>> clients_;
};
