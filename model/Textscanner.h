#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

/// Reads numbers from a text in memory as the C library's formatted input would in the "C" locale:
/// "%d" and "%lf" with leading white space skipped, whatever the user's locale is. A failed read
/// leaves the value alone and the position where formatted input would leave it: behind the white
/// space and behind what could have begun a number ("-" of "-x", "infi" of "infix").
/// Not owned: the text must outlive the scanner. Any thread.
class TTextScanner {
 public:
  explicit TTextScanner(std::string_view text) : text_(text), lastLineFeed_(text.rfind('\n')) {}

  std::string_view Text() const { return text_; }
  std::size_t Position() const { return position_; }
  void SetPosition(std::size_t position) { position_ = position; }
  bool AtEnd() const { return position_ >= text_.size(); }

  /// "%d". A number outside 32 bits is taken and becomes the nearest bound; `outOfRange`, if
  /// given, is set to true then and left alone otherwise.
  [[nodiscard]] bool ReadInt(std::int32_t& value, bool* outOfRange = nullptr);

  /// "%lf": decimal and hexadecimal forms, "inf", "infinity" and "nan" in any case.
  [[nodiscard]] bool ReadReal(double& value);

  /// Whether a number just read was cut at a decimal comma: a comma with a digit behind it.
  bool AtDecimalComma() const;

  /// White space in a format: skips space, tab, line feed, vertical tab, form feed and return.
  void SkipWhiteSpace();

  /// The line of a position, counted from 1. Linear in the position.
  std::size_t LineAt(std::size_t position) const;

  /// Position of the text's last line feed, or npos.
  std::size_t LastLineFeed() const { return lastLineFeed_; }

 private:
  bool ReadAnyReal(double& value);

  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t lastLineFeed_;
};

/// Moves the scanner just behind the first occurrence of `text`, searching from the current
/// position to the end and then from the top, over as many characters as the text in memory has.
/// Returns false and stays where it is if there is none. On a mismatch the comparison starts again
/// with the next unread character, without backing up: "[[Nodes]" does not hold "[Nodes]".
/// `goOn`, if given, is asked every few million characters; its false ends the search in vain.
[[nodiscard]] bool SearchString(TTextScanner& scanner, std::string_view text,
                                const std::function<bool()>& goOn = {});

/// True if the record that follows has seven numbers (ID, three values, three angles) on the first
/// line that ends at least 6 characters behind the current position. Stays where it is. Takes no
/// longer than reading those numbers, however long the line is.
[[nodiscard]] bool HasAngleData(const TTextScanner& scanner);
