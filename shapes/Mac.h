#pragma once

#include <complex>
#include <optional>
#include <vector>

#include "shapes/Components.h"

/// The modal assurance criterion of all pairs of data sets of two files, |a^H b|^2 / (a^H a)(b^H b)
/// (R. J. Allemang, D. L. Brown, "A correlation coefficient for modal vector analysis", 1st
/// International Modal Analysis Conference, 1982): 1 for one shape times any complex number, 0 for
/// orthogonal shapes. Each pair is taken over the nodes and axes that were measured in both. The
/// sets are not owned and stay as they are while it is used.
class TMac {
 public:
  static constexpr std::size_t kMostSets = 2000;  ///< of a file

  /// Rows are the sets of one file, columns those of the other, which may be the same one.
  TMac(const TNodesSet& rows, const TNodesSet& columns)
      : isOfOneFile_(&rows == &columns), both_(TComponents::Common(rows, columns)) {}

  /// Takes rows x columns x nodes time. Returns what is in the way, one clause, or nothing.
  [[nodiscard]] QString Compute(const TLoadProgress& progress = {});

  bool IsOfOneFile() const { return isOfOneFile_; }
  std::size_t RowCount() const { return Rows().SetCount(); }
  std::size_t ColumnCount() const { return Columns().SetCount(); }
  const TDataNodeList& Row(std::size_t row) const { return Rows().Set(row); }
  const TDataNodeList& Column(std::size_t column) const { return Columns().Set(column); }

  /// 0 to 1, or nothing.
  std::optional<double> Value(std::size_t row, std::size_t column) const;
  /// Why a pair has no value; empty if it has one.
  QString WhyNone(std::size_t row, std::size_t column) const;
  /// The complex number that, times the column's shape, comes closest to the row's shape in the
  /// sense of least squares; 0 for a pair without a value.
  std::complex<double> BestFit(std::size_t row, std::size_t column) const;

  struct TPair {
    std::size_t Row;
    std::size_t Column;
    double Value;
    std::optional<double> Percent;  ///< by how much the column's frequency is above the row's
  };
  /// The pairs with a larger value, row by row; within one file each pair once.
  std::vector<TPair> PairsAbove(double least) const;

 private:
  struct TBlock;

  const TComponents& Rows() const { return both_.first; }
  const TComponents& Columns() const { return both_.second; }
  void AddProducts(const TBlock& rows, const TBlock& columns);
  void Mirror();
  double RowNorm(std::size_t row, std::size_t column) const;
  double ColumnNorm(std::size_t row, std::size_t column) const;

  bool isOfOneFile_;
  std::pair<TComponents, TComponents> both_;
  std::vector<std::complex<double>> products_;  ///< a^H b, row by row
  /// Sums of squares of each set, over the nodes of each pattern of the other file.
  std::vector<double> rowNorms_;
  std::vector<double> columnNorms_;
};
