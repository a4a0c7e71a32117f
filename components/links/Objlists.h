#pragma once

#include <QPoint>
#include <QRect>
#include <QStringList>
#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "components/links/Propclasses.h"

/// A point in values, as data sources give it and axes map it to pixels.
struct TCoordinate {
  double X = 0.0;
  double Y = 0.0;
  friend bool operator==(const TCoordinate&, const TCoordinate&) = default;
};

/// Numeric rows with named columns. With a maximum row count the oldest row is used again when the
/// list is full: seen from outside the first row moves to the last place; inside the rows lie side
/// by side in a ring, so nothing is moved and nothing is allocated. GUI thread only.
///
/// A row is handed out as a pointer to its ColCount() values, valid until the next call that adds,
/// removes or moves rows. Filling a row fires nothing: whoever fills it reports it.
class TDataList : public TPersistent {
  Q_OBJECT
  /// The rows as text; a damaged text is ignored. See ReadProperties.
  Q_PROPERTY(QString DataValues READ WriteProperties WRITE SetDataValues DESIGNABLE false)

 public:
  static constexpr int kLimit = 65536;  ///< rows, for a list without a maximum of its own

  /// At least one column; columns are called Col1, Col2, ... until they are named.
  explicit TDataList(int colCount, QObject* owner = nullptr);

  QStringList ColNames;
  int Count() const { return count_; }
  int ColCount() const { return colCount_; }

  int GetMaxCount() const { return maxCount_; }
  /// Accepts 0 (no maximum of its own) to 65536. Rows beyond the new maximum are deleted from the
  /// end, with one OnChange.
  void SetMaxCount(int count);
  /// The same for a list that is oldest first: rows beyond the new maximum are deleted from the
  /// beginning.
  void KeepNewest(int count);
  /// PushBackRow and PushRow use a row again.
  bool IsFull() const { return count_ >= (maxCount_ > 0 ? maxCount_ : kLimit); }
  /// Rows that fit before the list allocates again.
  int Capacity() const { return capacity_; }

  /// Each returns the row to fill, new ones zeroed, or null if the list refuses one. AddRow and
  /// InsertRow grow the list beyond its maximum.
  double* AddRow();
  double* InsertRow(int index);  ///< 0 to Count()
  double* PushBackRow();  ///< oldest first: a full list gives its first row, moved to the end
  double* PushRow();      ///< newest first: a full list gives its last row, moved to the front

  /// The cell, or 0.0 outside the list.
  double GetValues(int row, int column) const;
  /// Sets a cell. A row at or beyond the count adds a single row at the end, whatever its number.
  void PutValues(int row, int column, double value);

  /// The same within a row in hand: 0.0 and nothing for a column that does not exist.
  double GetColValue(const double* row, int column) const {
    return HasColumn(column) ? row[column] : 0.0;
  }
  void SetColValue(int column, double* row, double value) {
    if (HasColumn(column)) row[column] = value;
  }

  /// `index` is 0 to Count() - 1.
  const double* Row(int index) const { return At(Slot(index)); }
  double* Row(int index) { return At(Slot(index)); }
  /// The values of all rows in order, in the two runs in which they lie (the second may be empty).
  std::array<std::span<const double>, 2> Runs() const;

  void Delete(int index);
  void Clear();
  /// Until EndUpdate no operation fires OnChange. Calls do not nest.
  void BeginUpdate() { updating_ = true; }
  void EndUpdate(bool notify);

  /// Order of two rows: negative, zero or positive. Unset in a plain list, which cannot be sorted.
  std::function<int(const double* a, const double* b)> Compare;
  /// A Compare for ascending order of the column being sorted, NaN last.
  static int CompareValues(const double* a, const double* b);
  /// The column being sorted, for use by Compare; -1 outside a sort.
  static int SortColumn();
  /// Sorts stably if the column exists and Compare is set. Fires nothing.
  void SortBy(int column);

  /// Copies maximum, column names and rows into a list with as many columns; others stay as they
  /// are. Fires the destination's OnChange once, or never if the lists are the same already.
  void AssignTo(TPersistent* destination) const override;
  /// Compares maximum, column names and rows; one NaN is as good as another.
  bool SameAs(const TPersistent* other) const override;

  /// The rows as text: one line per row, values separated by a blank, in the shortest form that
  /// reads back to the same number.
  QString WriteProperties() const;
  /// Replaces the rows, all of them, whatever the maximum says: it may be set only later. A damaged
  /// text is refused, leaves the list as it is and is described in `error` if one is given.
  [[nodiscard]] bool ReadProperties(const QString& text, QString* error = nullptr);
  void SetDataValues(const QString& text) { static_cast<void>(ReadProperties(text)); }

 protected:
  /// Gives a new row, which is all zero and not yet in the list, its first values; false refuses
  /// it.
  virtual bool CreateRow(double* row);

  /// All rows, one after the other, and putting others in their place.
  std::vector<double> Values() const;
  void Replace(const std::vector<double>& values);
  /// Fires OnChange unless the list is being updated.
  void Changed();

 private:
  int Slot(int index) const {
    const int slot = first_ + index;
    return slot < capacity_ ? slot : slot - capacity_;
  }
  double* At(int slot) const { return cells_.get() + std::ptrdiff_t{slot} * colCount_; }
  bool HasColumn(int column) const { return column >= 0 && column < colCount_; }
  void SetCapacity(int rows);
  bool MakeRoom();
  double* MoveFirstToEnd();
  void Remove(int index);
  bool HasValues(const std::vector<double>& values) const;

  const int colCount_;
  int maxCount_ = 0;
  bool updating_ = false;
  std::unique_ptr<double[]> cells_;  ///< capacity_ x colCount_, a ring of rows
  int capacity_ = 0;                 ///< rows
  int first_ = 0;                    ///< place of row 0 in the ring
  int count_ = 0;
};

/// Rows of (time, value); at most 100 of them by default. Times are days since
/// 30 December 1899.
class TFloatList : public TDataList {
  Q_OBJECT

 public:
  enum TColumn { kTime, kValue };

  explicit TFloatList(QObject* owner = nullptr);

  /// Each writes the value into column 1 of the row it gets. The time column stays as it is, zero
  /// in a new row and the old time in a reused one, for the caller to set.
  void Add(double value);
  void Push(double value);
  void PushBack(double value);
  void Insert(int index, double value);

  /// Largest and smallest value of column 1, NaN left aside; 0.0 for an empty list.
  double Max() const;
  double Min() const;

  /// (row number, value) of row `index`, which then moves on; false past the last row.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;

 private:
  static void SetValue(double* row, double value);
  template <class Better>
  double Extreme(Better better) const;
};

/// Rows of (X, Y).
class TCoordinateList : public TDataList {
  Q_OBJECT

 public:
  explicit TCoordinateList(QObject* owner = nullptr);

  void Add(const TCoordinate& point);
  void PushBack(const TCoordinate& point);
  /// (0, 0) outside the list.
  TCoordinate Get(int index) const;

  /// The point of row `index`, which then moves on; false past the last row.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;

 private:
  static void SetPoint(double* row, const TCoordinate& point);
};

/// Rows that stand for the elements of arrays side by side, one array per column: there are as many
/// as the owner says, and each keeps its place.
class TArrayList : public TDataList {
  Q_OBJECT

 public:
  using TDataList::TDataList;

  /// Makes it 0 to 65536 rows: adds zeroed rows at the end or deletes from there. Other counts are
  /// ignored. Fires OnChange once if the count changes.
  void SetCount(int count);
  /// Sets the columns from `firstColumn` to the last to zero in every row. Fires OnChange.
  void Zero(int firstColumn = 0);
};

/// Points of a line in pixels.
class TPointList {
 public:
  int Count() const { return static_cast<int>(points_.size()); }
  /// `index` is 0 to Count() - 1.
  QPoint Get(int index) const { return points_[static_cast<std::size_t>(index)]; }
  /// Count() points side by side.
  const QPoint* Data() const { return points_.data(); }

  void Add(const QPoint& point) { points_.push_back(point); }
  void Set(int index, const QPoint& point) { points_[static_cast<std::size_t>(index)] = point; }
  void Clear() { points_.clear(); }
  void Translate(const QPoint& distance);

  /// From the smallest to the largest coordinates: width and height are their differences, so a
  /// level line has no height. Empty at (0, 0) without points.
  QRect Bounds() const;

 private:
  std::vector<QPoint> points_;
};
