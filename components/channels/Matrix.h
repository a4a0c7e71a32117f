#pragma once

/// A dense matrix of doubles, rows one after the other, kept by the Meschach library. New cells are
/// zero. An object of its owner; no locking.
class TMatrix {
 public:
  /// Cells that a matrix may have: 32 MiB.
  static constexpr int kMaxCells = 1 << 22;

  /// 0 x 0.
  TMatrix() = default;
  TMatrix(const TMatrix& other) { *this = other; }
  TMatrix& operator=(const TMatrix& other);
  ~TMatrix() { Free(); }

  /// Whether a matrix may have this size: at least one row and one column, at most kMaxCells.
  [[nodiscard]] static bool Fits(int rows, int columns);

  int Rows() const { return rows_; }
  int Columns() const { return columns_; }

  /// Keeps the cells that old and new size share. False, and nothing changes, for a size that does
  /// not fit, or without memory.
  [[nodiscard]] bool Resize(int rows, int columns);
  void Zero();
  /// Closes the gap: the columns to the right move to the left. Ignored outside the matrix and for
  /// the only column.
  void DeleteColumn(int column);

  /// Columns() values side by side; `row` is 0 to Rows() - 1.
  double* Row(int row) { return lines_[row]; }
  const double* Row(int row) const { return lines_[row]; }
  double& At(int row, int column) { return lines_[row][column]; }
  double At(int row, int column) const { return lines_[row][column]; }

 private:
  void Free();
  void Adopt(void* matrix);

  void* matrix_ = nullptr;    ///< the library's record
  double** lines_ = nullptr;  ///< its rows
  int rows_ = 0;
  int columns_ = 0;
};
