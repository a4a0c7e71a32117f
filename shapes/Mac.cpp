#include "shapes/Mac.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// As many nodes of all sets as stay in the processor's cache.
constexpr std::size_t kBlockNodes = 64;
/// Sets of the one and the other file that are multiplied together: their sums fit the processor's
/// registers.
constexpr std::size_t kTileRows = 2;
constexpr std::size_t kTileColumns = 4;
/// Sums side by side, so that the compiler takes several numbers at a time.
constexpr std::size_t kLanes = 4;

constexpr std::size_t RoundUp(std::size_t count, std::size_t step) {
  return (count + step - 1) / step * step;
}

template <class T>
using TTile = std::array<std::array<T, kTileColumns>, kTileRows>;

/// The products of some rows of real numbers with some others.
TTile<double> Multiply(const double* a, const double* b, std::size_t width) {
  double sums[kTileRows][kTileColumns][kLanes] = {};
  for (std::size_t k = 0; k < width; k += kLanes) {
    for (std::size_t i = 0; i < kTileRows; ++i) {
      for (std::size_t j = 0; j < kTileColumns; ++j) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
          sums[i][j][lane] += a[i * width + k + lane] * b[j * width + k + lane];
        }
      }
    }
  }
  TTile<double> tile = {};
  for (std::size_t i = 0; i < kTileRows; ++i) {
    for (std::size_t j = 0; j < kTileColumns; ++j) {
      for (std::size_t lane = 0; lane < kLanes; ++lane) tile[i][j] += sums[i][j][lane];
    }
  }
  return tile;
}

}  // namespace

/// The components of some nodes of all sets of a file, a row for each set; zeros fill the last
/// tile and the last lanes.
struct TMac::TBlock {
  explicit TBlock(const TComponents& components)
      : Components(components),
        Width(RoundUp(kBlockNodes * components.PerNode(), kLanes)),
        Real(RoundUp(components.SetCount(), kTileColumns) * Width),
        Imaginary(Real.size()),
        Sums(Real.size()),
        Differences(Real.size()),
        Masks(components.PatternCount() * Width) {}

  void Read(std::size_t first, std::size_t count) {
    std::ranges::fill(Real, 0.0);
    std::ranges::fill(Imaginary, 0.0);
    std::ranges::fill(Masks, 0.0);
    for (std::size_t set = 0; set < Components.SetCount(); ++set) {
      Components.Read(set, first, count, &Real[set * Width], &Imaginary[set * Width]);
    }
    for (std::size_t i = 0; i < Real.size(); ++i) {
      Sums[i] = Real[i] + Imaginary[i];
      Differences[i] = Real[i] - Imaginary[i];
    }
    for (std::size_t pattern = 0; pattern < Components.PatternCount(); ++pattern) {
      double* mask = &Masks[pattern * Width];
      for (std::size_t node = first; node < first + count; ++node) {
        const double isMeasured = Components.IsMeasured(pattern, node) ? 1.0 : 0.0;
        mask = std::fill_n(mask, Components.PerNode(), isMeasured);
      }
    }
  }

  /// a^H b of some sets with some of another block: (p + q) + i (r - p + q) with
  /// p = a' b', q = a" b" and r = (a' - a") (b' + b"), three products instead of four.
  TTile<std::complex<double>> Times(std::size_t set, const TBlock& other,
                                    std::size_t others) const {
    const std::size_t a = set * Width;
    const std::size_t b = others * Width;
    const TTile<double> p = Multiply(&Real[a], &other.Real[b], Width);
    const TTile<double> q = Multiply(&Imaginary[a], &other.Imaginary[b], Width);
    const TTile<double> r = Multiply(&Differences[a], &other.Sums[b], Width);
    TTile<std::complex<double>> tile;
    for (std::size_t i = 0; i < kTileRows; ++i) {
      for (std::size_t j = 0; j < kTileColumns; ++j) {
        tile[i][j] = {p[i][j] + q[i][j], r[i][j] - p[i][j] + q[i][j]};
      }
    }
    return tile;
  }

  /// Adds the squares of each set over each pattern of the other file.
  void AddSquares(const TBlock& other, std::vector<double>& norms) const {
    const std::size_t patterns = other.Components.PatternCount();
    std::vector<double> squares(Width);
    for (std::size_t set = 0; set < Components.SetCount(); ++set) {
      const double* const real = &Real[set * Width];
      const double* const imaginary = &Imaginary[set * Width];
      for (std::size_t k = 0; k < Width; ++k) {
        squares[k] = real[k] * real[k] + imaginary[k] * imaginary[k];
      }
      for (std::size_t pattern = 0; pattern < patterns; ++pattern) {
        const double* const mask = &other.Masks[pattern * Width];
        double sum = 0.0;
        for (std::size_t k = 0; k < Width; ++k) sum += squares[k] * mask[k];
        norms[set * patterns + pattern] += sum;
      }
    }
  }

  const TComponents& Components;
  const std::size_t Width;
  std::vector<double> Real;
  std::vector<double> Imaginary;
  std::vector<double> Sums;         ///< of real and imaginary part
  std::vector<double> Differences;  ///< of real and imaginary part
  std::vector<double> Masks;        ///< per pattern: 1 where its nodes were measured
};

QString TMac::Compute(const TLoadProgress& progress) {
  if (std::max(RowCount(), ColumnCount()) > kMostSets) {
    return QStringLiteral("there are %1 data sets; %2 are the most that can be compared")
        .arg(std::max(RowCount(), ColumnCount()))
        .arg(kMostSets);
  }
  products_.assign(RowCount() * ColumnCount(), {});
  rowNorms_.assign(RowCount() * Columns().PatternCount(), 0.0);
  columnNorms_.assign(ColumnCount() * Rows().PatternCount(), 0.0);
  TBlock rowBlock(Rows());
  std::optional<TBlock> columnBlock;
  if (!isOfOneFile_) columnBlock.emplace(Columns());
  const TBlock& columns = columnBlock ? *columnBlock : rowBlock;
  const std::size_t nodes = Rows().NodeCount();
  for (std::size_t first = 0; first < nodes; first += kBlockNodes) {
    const std::size_t count = std::min(kBlockNodes, nodes - first);
    rowBlock.Read(first, count);
    if (columnBlock) columnBlock->Read(first, count);
    rowBlock.AddSquares(columns, rowNorms_);
    columns.AddSquares(rowBlock, columnNorms_);
    AddProducts(rowBlock, columns);
    if (progress && !progress(static_cast<double>(first + count) / static_cast<double>(nodes))) {
      return QStringLiteral("it was cancelled");
    }
  }
  if (isOfOneFile_) Mirror();
  return {};
}

/// Within one file, of two pairs that mirror each other only one; Mirror makes the other.
void TMac::AddProducts(const TBlock& rows, const TBlock& columns) {
  for (std::size_t row = 0; row < RowCount(); row += kTileRows) {
    const std::size_t from = isOfOneFile_ ? row / kTileColumns * kTileColumns : 0;
    for (std::size_t column = from; column < ColumnCount(); column += kTileColumns) {
      const auto tile = rows.Times(row, columns, column);
      for (std::size_t i = row; i < std::min(row + kTileRows, RowCount()); ++i) {
        for (std::size_t j = column; j < std::min(column + kTileColumns, ColumnCount()); ++j) {
          products_[i * ColumnCount() + j] += tile[i - row][j - column];
        }
      }
    }
  }
}

void TMac::Mirror() {
  for (std::size_t row = 0; row < RowCount(); ++row) {
    for (std::size_t column = 0; column < row; ++column) {
      products_[row * ColumnCount() + column] = std::conj(products_[column * ColumnCount() + row]);
    }
  }
}

double TMac::RowNorm(std::size_t row, std::size_t column) const {
  return rowNorms_[row * Columns().PatternCount() + Columns().PatternOf(column)];
}

double TMac::ColumnNorm(std::size_t row, std::size_t column) const {
  return columnNorms_[column * Rows().PatternCount() + Rows().PatternOf(row)];
}

std::optional<double> TMac::Value(std::size_t row, std::size_t column) const {
  if (!WhyNone(row, column).isEmpty()) return {};
  const double product = std::abs(products_[row * ColumnCount() + column]);
  // A product of the two norms could leave the range of numbers.
  return product / RowNorm(row, column) * (product / ColumnNorm(row, column));
}

QString TMac::WhyNone(std::size_t row, std::size_t column) const {
  const auto isShared = [&](std::size_t node) {
    return Rows().IsMeasured(Rows().PatternOf(row), node) &&
           Columns().IsMeasured(Columns().PatternOf(column), node);
  };
  const QString ofRow = WhyNoShape(RowNorm(row, column));
  const QString ofColumn = WhyNoShape(ColumnNorm(row, column));
  if (ofRow.isEmpty() && ofColumn.isEmpty()) return {};
  std::size_t node = 0;
  while (node < Rows().NodeCount() && !isShared(node)) ++node;
  if (node == Rows().NodeCount()) return QStringLiteral("no node was measured in both");
  return ofRow.isEmpty() ? QStringLiteral("of the second, %1").arg(ofColumn)
                         : QStringLiteral("of the first, %1").arg(ofRow);
}

std::complex<double> TMac::BestFit(std::size_t row, std::size_t column) const {
  if (!Value(row, column)) return {};
  return std::conj(products_[row * ColumnCount() + column]) / ColumnNorm(row, column);
}

std::vector<TMac::TPair> TMac::PairsAbove(double least) const {
  std::vector<TPair> pairs;
  for (std::size_t row = 0; row < RowCount(); ++row) {
    for (std::size_t column = isOfOneFile_ ? row + 1 : 0; column < ColumnCount(); ++column) {
      const std::optional<double> value = Value(row, column);
      if (!value || !(*value > least)) continue;
      TPair pair = {row, column, *value, {}};
      const double frequency = Row(row).Frequency;
      if (frequency != 0.0) {
        pair.Percent = 100.0 * (Column(column).Frequency - frequency) / frequency;
      }
      pairs.push_back(pair);
    }
  }
  return pairs;
}
