#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Makes text of numbers in columns, whatever the user's locale is.
class TLineWriter {
 public:
  void Text(std::string_view text) { text_ += text; }
  /// On the right of `width` columns.
  void Int(std::int64_t value, int width = 10);
  /// "%width.decimalsE".
  void Exponent(double value, int width, int decimals);
  /// A field of 13 columns with as many digits as it takes, seldom fewer than seven, where the
  /// usual "%13.5E" has six. A blank stands in front wherever that costs none of them.
  void Packed(double value);
  /// The fewest digits that read back to the same number.
  void Shortest(double value);
  void EndLine() { text_ += '\n'; }

  std::string Take() { return std::move(text_); }

 private:
  void RightAligned(std::string_view text, int width);

  std::string text_;
};

/// The coordinates of nodes as their file had them: a centre was taken from them, which has cost
/// the smallest ones their last digits.
class TCoordinates {
 public:
  /// `reach`: the largest distance of a node from the centre along an axis.
  TCoordinates(double centre, double reach);

  /// The coordinate that became `position`, to 15 digits of the largest of all.
  double Of(double position) const;

 private:
  double centre_;
  double scale_;  ///< 10 to the power of the decimals that count; 0 if none is to be rounded
};
