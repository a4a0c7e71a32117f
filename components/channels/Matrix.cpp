#include "components/channels/Matrix.h"

#include <float.h>
#include <malloc.h>
#include <math.h>
#include <setjmp.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

// The library's headers come last: they are C, and define words of C++ as macros.
extern "C" {
#include <meschach/matrix.h>
}
#undef catch
#undef catchall
#undef error
#undef input
#undef max
#undef min
#undef warning

namespace {

/// The library ends the program when it finds no memory, so it is asked for beforehand.
bool HasMemory(std::size_t cells) {
  return std::unique_ptr<double[]>(new (std::nothrow) double[cells]) != nullptr;
}

}  // namespace

bool TMatrix::Fits(int rows, int columns) {
  return rows >= 1 && columns >= 1 && std::int64_t{rows} * columns <= kMaxCells;
}

bool TMatrix::Resize(int rows, int columns) {
  if (!Fits(rows, columns)) return false;
  // The library also takes memory for the larger of both sizes while it moves the rows.
  const auto cells = std::size_t(std::max(rows, rows_)) * std::size_t(std::max(columns, columns_));
  if (!HasMemory(cells)) return false;
  Adopt(matrix_ ? m_resize(static_cast<MAT*>(matrix_), rows, columns) : m_get(rows, columns));
  return true;
}

void TMatrix::Zero() {
  if (matrix_) m_zero(static_cast<MAT*>(matrix_));
}

void TMatrix::DeleteColumn(int column) {
  if (column < 0 || column >= columns_ || columns_ == 1) return;
  for (int row = 0; row < rows_; ++row) {
    double* cells = Row(row);
    std::copy(cells + column + 1, cells + columns_, cells + column);
  }
  Adopt(m_resize(static_cast<MAT*>(matrix_), rows_, columns_ - 1));
}

TMatrix& TMatrix::operator=(const TMatrix& other) {
  if (this == &other) return *this;
  if (!other.matrix_) {
    Free();
  } else if (Resize(other.rows_, other.columns_)) {
    for (int row = 0; row < rows_; ++row) {
      std::copy_n(other.Row(row), columns_, Row(row));
    }
  }
  return *this;
}

void TMatrix::Free() {
  if (matrix_) m_free(static_cast<MAT*>(matrix_));
  matrix_ = nullptr;
  lines_ = nullptr;
  rows_ = columns_ = 0;
}

void TMatrix::Adopt(void* matrix) {
  const auto* const record = static_cast<MAT*>(matrix);
  matrix_ = matrix;
  lines_ = record->me;
  rows_ = static_cast<int>(record->m);
  columns_ = static_cast<int>(record->n);
}
