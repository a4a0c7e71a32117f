#pragma once

#include <QString>
#include <cstddef>
#include <functional>

#include "model/Textscanner.h"

/// Called now and then while a file is read, with the part done in [0, 1]. Returning false cancels
/// the load, which then leaves everything as it was.
using TLoadProgress = std::function<bool(double)>;

/// What a reader met in a file: nothing worth a word, records that had to be dropped, or a failure.
/// Keeps the first finding and counts the rest, so a file full of faults costs no memory.
class TLoadReport {
 public:
  /// A fault at `line` (from 1; 0 when no line is to blame), in words that follow the file's name:
  /// "element 7 names node 99, which does not exist; the element was dropped".
  void Add(std::size_t line, const QString& what);

  /// A fault at a position of the text being read. Line and words, which `makeWords` returns, are
  /// only worked out if the report keeps them.
  template <class TMakeWords>
  void AddAt(const TTextScanner& scanner, std::size_t position, TMakeWords makeWords) {
    if (count_ == 0) {
      Add(scanner.LineAt(position), makeWords());
    } else {
      ++count_;
    }
  }

  /// The file could not be read at all, because "it is a folder". Replaces what was added before.
  void Fail(const QString& why);

  void Cancel() { cancelled_ = true; }

  bool Ok() const { return count_ == 0 && !failed_ && !cancelled_; }
  bool Failed() const { return failed_; }
  bool Cancelled() const { return cancelled_; }
  std::size_t Count() const { return count_; }
  /// The words of the first finding, or of the failure.
  const QString& First() const { return first_; }

  /// One sentence for the user, naming the file without its folder; empty if all went well or the
  /// user cancelled. "bridge.mod, line 12: ... was dropped, and 3 more faults followed."
  QString Sentence(const QString& fileName) const;

 private:
  QString first_;
  std::size_t line_ = 0;
  std::size_t count_ = 0;
  bool failed_ = false;
  bool cancelled_ = false;
};
