#pragma once

#include <QColor>
#include <QLine>
#include <QRect>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <vector>

class QPainter;

/// The pixels that a line covers, a bit for each: however often its pieces cross, every pixel is
/// painted once. Kept by columns, which a dense curve fills in long runs.
class TPixelMask {
 public:
  /// What lies outside of the rectangle is left out.
  explicit TPixelMask(const QRect& rect);

  const QRect& Rect() const { return rect_; }
  void AddRows(int column, int top, int bottom);
  /// The pixels of a straight line, one in each row of a steep one and one in each column of
  /// another; of these only `from` to `to`. The same pixels whichever end the line begins at.
  void AddLine(const QLine& line, int from, int to);
  void AddLine(const QLine& line) { AddLine(line, INT_MIN / 2, INT_MAX / 2); }
  static bool IsSteep(const QLine& line) { return std::abs(line.dy()) > std::abs(line.dx()); }

  /// Paints a disc of so many pixels in diameter upon every pixel, and leaves nothing. Even discs
  /// lie half a pixel up and to the left, as painters lay even pens.
  void Paint(QPainter& painter, const QColor& color, int diameter = 1);

 private:
  using TWord = std::uint64_t;
  static constexpr int kWordBits = 64;
  static constexpr int kBlock = 32;  ///< columns that are painted together, a word at a time
  /// Words of a column, or columns, that may have bits.
  struct TWords {
    int first = 0;
    int last = -1;
    bool Empty() const { return first > last; }
  };
  static void Widen(TWords& words, const TWords& by);

  TWord* Column(int index) { return bits_.data() + static_cast<std::size_t>(index * words_); }
  TWord& Scratch(int word) { return scratch_[static_cast<std::size_t>(word)]; }
  TWord* BlockColumn(int index) { return block_.data() + static_cast<std::size_t>(index * words_); }
  TWords& Used(int index) { return used_[static_cast<std::size_t>(index)]; }
  void AddFlat(QPoint a, QPoint b, int from, int to);
  void AddSteep(QPoint a, QPoint b, int from, int to);
  void Touch(int index, const TWords& words);
  void Clear(int index);
  void Spread(int index, int first, const std::vector<int>& reaches);
  void Heighten(const TWords& words, bool both);
  void AddToBlock(int column, const TWords& words);
  void PaintBlock(QPainter& painter, QRgb color, int first);
  enum class TCover { kNone, kSome, kAll };
  TCover FillCell(const TWords& words, QRgb color);

  const QRect rect_;
  const int words_;             ///< of a column
  std::vector<TWord> bits_;     ///< columns x words, the upper rows in the lower bits
  std::vector<TWords> used_;    ///< of each column
  TWords columns_;              ///< those that may have bits
  std::vector<TWord> scratch_;  ///< a column
  std::vector<TWord> block_;    ///< the columns that are painted next
  TWords blockUsed_;            ///< words of it that may have bits
  TWords blockColumns_;         ///< columns of it that may have bits
  std::vector<QRgb> cell_;      ///< pixels that are painted at once
};
