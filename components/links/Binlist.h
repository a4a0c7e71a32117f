#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

#include "components/links/Objlists.h"

/// Counting bins of one width. Bins lie side by side without gaps on the grid Anchor + i x Step;
/// the position of a bin is its upper edge and belongs to it: a bin holds the values in
/// (position - Step, position]. Bins are made as values need them. GUI thread only.
///
/// Changing the grid empties the list, for what was counted in other bins cannot be separated.
class TBinList : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(double Step READ GetStep WRITE SetStep)
  Q_PROPERTY(double Anchor READ GetAnchor WRITE SetAnchor)
  /// The bins as text, one "position count" a line; a damaged text is ignored. See ReadData.
  Q_PROPERTY(QString Data READ WriteData WRITE SetData)

 public:
  static constexpr int kMaxBins = 65536;

  using TPersistent::TPersistent;

  /// Bin width, in the values' unit; finite and above 0, others are ignored. Initially 1.
  double GetStep() const { return step_; }
  void SetStep(double step);
  /// An edge between two bins; finite, others are ignored. Initially 0.
  double GetAnchor() const { return anchor_; }
  void SetAnchor(double anchor);

  int Count() const { return static_cast<int>(counts_.size()); }
  bool Empty() const { return counts_.empty(); }
  /// Upper edge of bin `index` (0 to Count() - 1), ascending by Step.
  double GetPosition(int index) const { return Edge(first_ + index); }
  /// Sum of the weights in bin `index`.
  double GetBinCount(int index) const { return counts_[static_cast<std::size_t>(index)]; }
  /// Bin `index` as the point of a bar: (position, count).
  TCoordinate Bar(int index) const { return {GetPosition(index), GetBinCount(index)}; }
  /// Sum of the weights in all bins.
  double GetCycleCount() const;
  /// Sum of the weights that no bin took since the list was emptied.
  double GetLostCount() const { return lost_; }

  /// Upper edge of the bin that a value falls into, whether the list holds that bin or not. The
  /// value itself if there is no such bin: it is not finite, or so large that bins of this width
  /// cannot be distinguished.
  double CorrectPos(double value) const;

  /// Adds a weight to the bin of a value, making the bins up to there, and returns true. A value
  /// that has no bin, or whose bin would make them more than 65,536, and a weight that is not
  /// finite are left out: false.
  bool AddValues(double weight, double value);
  void Clear();

  /// For the bars of a graph, to the points that Bar gives: their width, which lies below the
  /// position, and the count at which they stand.
  TCoordinate BasePair() const { return {step_, 0.0}; }

  /// Runs after each value that was added, once per sample, where OnChange stays silent.
  std::function<void()> OnValueAdded;

  /// Copies grid and bins. Fires the destination's OnChange.
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

  QString WriteData() const;
  /// Replaces the bins, keeping the grid. A damaged text is refused, leaves the list as it is and
  /// is described in `error` if one is given.
  [[nodiscard]] bool ReadData(const QString& text, QString* error = nullptr);
  void SetData(const QString& text) { static_cast<void>(ReadData(text)); }

 private:
  /// Position on the grid: the bin whose upper edge is Anchor + index x Step.
  using TGridIndex = std::int64_t;

  double Edge(TGridIndex index) const { return anchor_ + static_cast<double>(index) * step_; }
  std::optional<TGridIndex> BinOf(double value) const;
  /// The count of a bin of the grid, after making the bins up to there; null if they would be too
  /// many.
  double* Reach(TGridIndex index);
  bool Take(double weight, double value);

  double step_ = 1.0;
  double anchor_ = 0.0;
  TGridIndex first_ = 0;  ///< grid index of bin 0
  std::deque<double> counts_;
  double lost_ = 0.0;
};
