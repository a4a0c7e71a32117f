#pragma once

#include <cstddef>
#include <vector>

/// A small square matrix, filled with zeros.
class TSquareMatrix {
 public:
  explicit TSquareMatrix(std::size_t size) : size_(size), values_(size * size) {}

  std::size_t Size() const { return size_; }
  double& operator()(std::size_t row, std::size_t column) { return values_[row * size_ + column]; }
  double operator()(std::size_t row, std::size_t column) const {
    return values_[row * size_ + column];
  }

 private:
  std::size_t size_;
  std::vector<double> values_;
};

struct TEigenpair {
  double value;
  std::vector<double> vector;  ///< of unit length
};

/// Eigenvalues of a symmetric matrix, the smallest first, with their vectors. Jacobi's method, as
/// in Golub and Van Loan, Matrix Computations, section 8.5.
std::vector<TEigenpair> SymmetricEigenpairs(TSquareMatrix matrix);
