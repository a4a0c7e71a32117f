#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Lines and columns as old formatted output writes them.

/// Walks through a text in memory line by line. Lines end with LF, CRLF or, if the first line of
/// the text does, with CR; the last may have no end. A byte order mark in front is passed. Not
/// owned: the text must outlive the scanner.
class TLineScanner {
 public:
  explicit TLineScanner(std::string_view text);

  /// Moves to the next line; false behind the last.
  bool Next();
  /// Lets Next() give the present line once more.
  void Back() {
    behind_ = begin_;
    --number_;
  }
  /// Goes on at this position, at or behind the end of the present line.
  void SkipTo(std::size_t position);

  std::string_view Text() const { return text_; }
  std::string_view Line() const { return line_; }  ///< without its end
  std::size_t Number() const { return number_; }   ///< of the line, from 1
  std::size_t Position() const { return begin_; }  ///< where it begins
  std::size_t Behind() const { return behind_; }   ///< where the next one begins

 private:
  std::string_view text_;
  std::string_view line_;
  char end_;
  std::size_t begin_ = 0;
  std::size_t behind_ = 0;
  std::size_t number_ = 0;
};

/// Without blanks, tabs and carriage returns at both ends.
std::string_view Trimmed(std::string_view text);

/// A field as a whole number of 32 bits, blanks around it; false for anything else.
bool ToInt(std::string_view field, std::int32_t& value);

/// A field as a real number, blanks around it: exponents with E, D or a sign alone ("1.0-103"),
/// "nan" and "inf" too; false for anything else.
bool ToReal(std::string_view field, double& value);

/// Some integers and, behind them, some reals, each kind in columns of one width: "4I10,3E13.5".
struct TColumns {
  int Ints = 0;
  int IntWidth = 10;
  int Reals = 0;
  int RealWidth = 13;
};

/// Reads the fields of a line by its columns; where those do not hold numbers, by the blanks
/// between them, or by the signs where reals touch. Returns how many fields are there, from the
/// left, up to the first that is no number; an empty column in front of others is 0.
int ReadColumns(std::string_view line, const TColumns& columns, std::int32_t* ints, double* reals);
