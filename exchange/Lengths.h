#pragma once

#include <vector>

#include "exchange/Findings.h"
#include "exchange/Job.h"

/// Brings the lengths of several files to the unit of the model that stays, or of the first file
/// that names one. A file that names none is taken to have the same.
class TLengths {
 public:
  explicit TLengths(const TJob& job);

  /// What a length of a file is multiplied by.
  double Factor(int file) const;
  /// The local systems of the job with their origins in the common unit.
  std::vector<TLocalSystem> Systems() const;
  /// Notes the files whose nodes are changed by it, and those that leave room for doubt.
  void Note(TFindings& findings) const;
  /// Notes that a file's "lengths" are multiplied, if they are.
  void NoteFactor(int file, const QString& what, TFindings& findings) const;

 private:
  double UnitOf(int file) const;
  bool HasNodes(std::size_t file) const;
  QString NameOfFirst(const TFindings& findings) const;

  const TJob& job_;
  double unit_ = 0.0;  ///< divisor to metres; 0 if no file names one
  int first_ = -1;     ///< the file that names it; -1 for the model
};
