#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// A number in the making, character by character: what of it still matters for its value, however
/// long it is.
class TNumberToken {
 public:
  bool Empty() const { return state_.length == 0; }
  void Clear() { state_ = {}; }

  void AddDigit(char digit);
  /// Ignored if the token has a point.
  void AddPoint();
  /// False if no exponent may follow here: behind another one, or with nothing before it.
  [[nodiscard]] bool AddExponent();
  /// Ignored except at the beginning and behind the "E".
  void AddSign(char sign);

  /// The value, rounded to the nearest; false for what is no number, such as "-", "." and "1E+",
  /// and for one beyond the largest finite value.
  [[nodiscard]] bool Convert(double& value) const;
  /// As it was put together, abbreviated.
  std::string Text() const;

 private:
  // The middle between two neighbouring doubles has 767 digits at most. What lies behind the digits
  // kept here can only tell that a number is not exactly such a middle, so that one bit stands for
  // all of it.
  static constexpr std::size_t kDigits = 800;
  static constexpr std::size_t kText = 40;

  struct TState {
    std::int64_t length = 0;  ///< characters taken
    std::int64_t scale = 0;   ///< power of ten that the digits, as a whole number, are to be times
    std::int64_t exponent = 0;  ///< as written, limited far outside the range of a double
    std::size_t count = 0;      ///< of the digits kept; leading zeros are not
    bool more = false;          ///< a digit that is not 0 has been left out
    bool negative = false;
    bool point = false;
    bool pointInExponent = false;
    bool digit = false;  ///< there is one before the exponent
    bool hasExponent = false;
    bool negativeExponent = false;
    bool exponentDigit = false;
    char last = '\0';
  };

  void Append(char c);
  void AddMantissaDigit(char digit);

  TState state_;
  std::array<char, kText> text_;
  std::array<char, kDigits> digits_;
};

/// Finds numbers between white space in a text that comes in pieces. Any thread.
///
/// A number ends with a tab, line feed, return or blank. Further points and misplaced signs in it
/// are skipped: "1.2.3" is 1.23, "5-3" is 53. A tag, from "<" to the next ">", and a misplaced "E"
/// drop what stands directly before them. Any other character drops the number and the rest of its
/// line: "3;4" holds none, nor does a header.
class TNumberScanner {
 public:
  enum class TResult {
    Number,
    End,  ///< of the piece
    Bad   ///< a word of digits, points and signs that is no number, see TNumberToken::Convert
  };

  /// Goes on in `piece` from `position`, which ends up behind the white space that ended the number
  /// or the bad word, or at the end. The next piece continues this one to the letter.
  TResult ScanValue(std::string_view piece, std::size_t& position, double& value);

  /// The next piece begins a line: a number without white space behind it is lost, a tag goes on.
  void EndLine();

  /// After a bad word: itself, abbreviated, and the bytes from its beginning to behind its white
  /// space.
  std::string BadText() const { return token_.Text(); }
  std::int64_t BadLength() const { return wordLength_; }

 private:
  enum class TSkip { None, Tag, Line };

  void DropToken();
  const char* Skip(const char* first, const char* end);
  void TakeCharacter(char c);
  TResult EndWord(double& value);

  TSkip skip_ = TSkip::None;
  bool bad_ = false;             ///< the token is a bad word that has been reported
  std::int64_t wordLength_ = 0;  ///< bytes since the token's first, with those that are ignored
  TNumberToken token_;
};
