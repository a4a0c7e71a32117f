#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QStringList>
#include <cstddef>
#include <functional>
#include <memory>
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
class TDataList : public TPersistent {
  Q_OBJECT

 public:
  static constexpr int kLimit = 65536;  ///< rows, for a list without a maximum of its own

  /// Columns are called Col1, Col2, ... until they are named.
  explicit TDataList(int colCount, QObject* owner = nullptr);

  int Count() const;
  int ColCount() const;
  QStringList ColNames;

  int GetMaxCount() const;
  /// Accepts 0 (no maximum of its own) to 65536. Rows beyond the new maximum are deleted from the
  /// end, with one OnChange.
  void SetMaxCount(int count);

  /// A row is an index from 0, the first row of the list; each of these returns the row to fill, or
  /// -1 if the list refuses one. They fire nothing.
  int AddRow();
  int InsertRow(int index);
  int PushBackRow();  ///< oldest first: a full list gives its first row, moved to the end
  int PushRow();      ///< newest first: a full list gives its last row, moved to the front

  /// The cell, or 0.0 outside the list.
  double GetValues(int row, int column) const;
  /// Sets a cell. A row at or beyond the count adds a single row at the end, whatever its number.
  void PutValues(int row, int column, double value);

  /// The values of one row, ColCount() of them; valid until the next change of the list.
  const double* Row(int row) const;
  double* Row(int row);

  void Delete(int index);
  void Clear();
  void BeginUpdate();
  void EndUpdate(bool notify);
  /// Sorts by a column, ascending and stable, if it exists and Compare is set.
  void SortBy(int column);
  /// Order of two values of the column being sorted; unset in a plain list.
  std::function<int(double a, double b)> Compare;

  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

  /// The rows as text for the hidden property "DataValues", and back; a damaged text is refused and
  /// leaves the list as it is.
  QString WriteProperties() const;
  [[nodiscard]] bool ReadProperties(const QString& text);
};

/// Rows of (time, value); at most 100 of them until told otherwise.
class TFloatList : public TDataList {
  Q_OBJECT

 public:
  explicit TFloatList(QObject* owner = nullptr);

  /// Each writes the value into column 1 of the row it gets; the time column stays as it is.
  void Add(double value);
  void Push(double value);
  void PushBack(double value);
  void Insert(int index, double value);

  /// Largest and smallest value of column 1; 0.0 for an empty list.
  double Max() const;
  double Min() const;

  /// (row number, value) of row `index`, which then moves on; false past the last row.
  bool ProvideGraphData(int& index, TCoordinate& point, TCoordinate& extent) const;
};
