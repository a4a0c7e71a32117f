#pragma once

#include <functional>

#include "components/links/Objlists.h"

/// A snapshot of running statistics.
struct TStatisticsData {
  double Pos = 0.0;
  double Mean = 0.0;
  double StDev = 0.0;
  double Max = 0.0;
  double Min = 0.0;
  friend bool operator==(const TStatisticsData&, const TStatisticsData&) = default;
};

/// Rows of snapshots, at most 100 by default.
class TStatDataList : public TDataList {
  Q_OBJECT

 public:
  enum TColumn { kPos, kMean, kStDev, kMax, kMin, kColumns };

  explicit TStatDataList(QObject* owner = nullptr);

  void Add(const TStatisticsData& record);
  void Push(const TStatisticsData& record);
  void PushBack(const TStatisticsData& record);
  void Insert(int index, const TStatisticsData& record);
  /// All zero outside the list.
  TStatisticsData Get(int index) const;

 private:
  static void SetRecord(double* row, const TStatisticsData& record);
};

/// Yields the record at `index`, moves the index on and returns true; false at the end.
using TProvideStatistics = std::function<bool(int& index, TStatisticsData& record)>;

/// Count, sum and sum of squares of values that are not kept, with maximum, minimum and the place
/// at which a graph shows them. Adding and taking away a value cost the same however many there
/// were. A member of its owner; GUI thread only; fires no OnChange, since it changes with every
/// sample.
class TStatistics : public TPersistent {
  Q_OBJECT
  /// Count, Sum and SqSum as text, separated by blanks; a damaged text is ignored.
  Q_PROPERTY(QString StatData READ GetStatData WRITE SetStatData DESIGNABLE false)

 public:
  explicit TStatistics(QObject* owner = nullptr);

  /// Everything to zero, except the snapshot.
  void Reset();
  /// Leaves maximum and minimum alone.
  void AddValue(double x);
  /// Takes back a value that was added; resets if there is less than one. Leaves maximum and
  /// minimum alone.
  void SubtractValue(double x);
  /// Widen the extremes by a value. While both are 0 the value replaces them: 0 stands for "no
  /// value seen yet", even if zeros were seen.
  void SetMax(double x) {
    Settle();
    if (max_ == 0.0 && min_ == 0.0) {
      max_ = min_ = x;
    } else if (x > max_) {
      max_ = x;
    }
  }
  void SetMin(double x) {
    Settle();
    if (max_ == 0.0 && min_ == 0.0) {
      max_ = min_ = x;
    } else if (x < min_) {
      min_ = x;
    }
  }

  void SetPos(double pos) { Set(pos_, pos); }
  void SetCount(double count) { Set(count_, count); }
  void SetSum(double sum) { Set(sum_, sum); }
  void SetSqSum(double sqSum) { Set(sqSum_, sqSum); }

  double GetPos() const { return Settled().pos_; }
  double GetMax() const { return Settled().max_; }
  double GetMin() const { return Settled().min_; }
  double GetCount() const { return Settled().count_; }
  double GetSum() const { return Settled().sum_; }
  double GetSqSum() const { return Settled().sqSum_; }
  /// 0 of no values.
  double GetMean() const;
  /// Of the sample (n - 1); 0 of fewer than two values. Comes from the sums alone, and so can be a
  /// little below zero.
  double GetVariance() const;
  /// NaN where rounding has made the variance negative.
  double GetStDev() const;

  /// Takes the snapshot.
  void Update();
  /// The latest snapshot, one row.
  const TStatDataList* GetData() const { return &Settled().data_; }
  /// Copies the first row, if there is one; null changes nothing.
  void SetData(const TStatDataList* list);
  /// The snapshot for a series, see TProvideStatistics.
  bool ProvideGraphData(int& index, TStatisticsData& record) const;

  /// For an owner that computes the figures anew from many values: instead of doing so for every
  /// value it calls Postpone, and OnCompute runs once before the figures are next looked at or
  /// changed.
  std::function<void()> OnCompute;
  void Postpone() { postponed_ = true; }
  bool IsPostponed() const { return postponed_; }
  /// Makes up for it now.
  void Settle() const {
    if (postponed_) Compute();
  }

  /// Copies Count, Pos, Sum and SqSum. Maximum and minimum of the destination stay, on purpose.
  void AssignTo(TPersistent* destination) const override;

  /// In the shortest form that reads back to the same numbers.
  QString GetStatData() const;
  void SetStatData(const QString& text);

 private:
  const TStatistics& Settled() const {
    Settle();
    return *this;
  }
  void Compute() const;
  void Set(double& field, double value);

  TStatDataList data_{this};
  double pos_ = 0.0;
  double min_ = 0.0;
  double max_ = 0.0;
  double count_ = 0.0;
  double sum_ = 0.0;
  double sqSum_ = 0.0;
  mutable bool postponed_ = false;
};
