#pragma once

#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Numbers of nodes for a note: the first few are kept, each once.
class TNumberList {
 public:
  void Add(std::int32_t number) {
    ++count_;
    if (isCut_ || std::ranges::find(numbers_, number) != numbers_.end()) return;
    if (numbers_.size() < kMost) {
      numbers_.push_back(number);
    } else {
      isCut_ = true;
    }
  }

  bool Empty() const { return count_ == 0; }
  /// How many were added, those that came again too.
  std::size_t Count() const { return count_; }

  /// "4, 5, 9", and dots behind them if there are more.
  QString Text() const {
    QString text;
    for (const std::int32_t number : numbers_) {
      if (!text.isEmpty()) text += QStringLiteral(", ");
      text += QString::number(number);
    }
    return isCut_ ? text + QStringLiteral(", ...") : text;
  }

 private:
  static constexpr std::size_t kMost = 20;
  std::vector<std::int32_t> numbers_;
  std::size_t count_ = 0;
  bool isCut_ = false;
};
