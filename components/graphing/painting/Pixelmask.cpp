#include "components/graphing/painting/Pixelmask.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

// Slopes have so many binary places.
constexpr int kPlaces = 32;
constexpr std::int64_t kOne = std::int64_t{1} << kPlaces;

/// Calls visit(word, mask) for the words that hold the rows `top` to `bottom`.
template <class TVisit>
void ForEachWord(int top, int bottom, TVisit visit) {
  const int last = bottom / 64;
  std::uint64_t mask = ~std::uint64_t{0} << top % 64;
  for (int word = top / 64; word < last; ++word) {
    visit(word, mask);
    mask = ~std::uint64_t{0};
  }
  visit(last, mask & ~std::uint64_t{0} >> (63 - bottom % 64));
}

/// How far a disc reaches up from each of its columns, in pixels; an even one reaches down one
/// pixel less.
std::vector<int> DiscReaches(int diameter) {
  std::vector<int> reaches;
  const double shift = diameter % 2 ? 0.0 : 0.5;
  // A little less than the radius: three pixels make a cross, for slanting lines drawn with a
  // square would be a fifth too wide.
  const double square = 0.25 * diameter * diameter - 0.3;
  for (int i = 0; i < diameter; ++i) {
    const int column = i - diameter / 2;
    const double x = column + shift;
    reaches.push_back(static_cast<int>(std::sqrt(std::max(0.0, square - x * x)) + shift));
  }
  return reaches;
}

}  // namespace

TPixelMask::TPixelMask(const QRect& rect)
    : rect_(rect),
      words_((std::max(0, rect.height()) + kWordBits - 1) / kWordBits),
      bits_(static_cast<std::size_t>(std::max(0, rect.width())) * static_cast<std::size_t>(words_)),
      used_(static_cast<std::size_t>(std::max(0, rect.width()))),
      scratch_(static_cast<std::size_t>(words_)),
      block_(static_cast<std::size_t>(kBlock * words_)),
      cell_(static_cast<std::size_t>(kBlock * kWordBits)) {}

void TPixelMask::Widen(TWords& words, const TWords& by) {
  words =
      words.Empty() ? by : TWords{std::min(words.first, by.first), std::max(words.last, by.last)};
}

void TPixelMask::Touch(int index, const TWords& words) {
  Widen(Used(index), words);
  Widen(columns_, {index, index});
}

void TPixelMask::Clear(int index) {
  TWords& used = Used(index);
  if (!used.Empty()) std::fill(Column(index) + used.first, Column(index) + used.last + 1, 0);
  used = {};
}

void TPixelMask::AddRows(int column, int top, int bottom) {
  top = std::max(top, rect_.top()) - rect_.top();
  bottom = std::min(bottom, rect_.bottom()) - rect_.top();
  if (top > bottom || column < rect_.left() || column > rect_.right()) return;
  const int index = column - rect_.left();
  ForEachWord(top, bottom, [bits = Column(index)](int word, TWord mask) { bits[word] |= mask; });
  Touch(index, {top / kWordBits, bottom / kWordBits});
}

void TPixelMask::AddLine(const QLine& line, int from, int to) {
  const QPoint a = line.x1() < line.x2() ? line.p1() : line.p2();
  const QPoint b = line.x1() < line.x2() ? line.p2() : line.p1();
  if (IsSteep(line)) {
    AddSteep(a, b, std::max(from, rect_.top()), std::min(to, rect_.bottom()));
  } else {
    AddFlat(a, b, std::max(from, rect_.left()), std::min(to, rect_.right()));
  }
}

void TPixelMask::AddFlat(QPoint a, QPoint b, int from, int to) {
  const std::int64_t slope =
      a.x() == b.x() ? 0 : std::int64_t{b.y() - a.y()} * kOne / (b.x() - a.x());
  const int last = std::min(b.x(), to);
  for (int column = std::max(a.x(), from); column <= last; ++column) {
    const int row = a.y() + static_cast<int>((slope * (column - a.x()) + kOne / 2) >> kPlaces);
    AddRows(column, row, row);
  }
}

/// In each column the rows that are nearer to it than to its neighbours.
void TPixelMask::AddSteep(QPoint a, QPoint b, int from, int to) {
  if (a.x() == b.x()) {
    AddRows(a.x(), std::max(from, std::min(a.y(), b.y())), std::min(to, std::max(a.y(), b.y())));
    return;
  }
  const int width = b.x() - a.x();
  const int height = std::abs(b.y() - a.y());
  const bool down = b.y() > a.y();
  const std::int64_t slope = std::int64_t{height} * kOne / width;
  // Rows counted from a's towards b's.
  from = std::max(0, down ? from - a.y() : a.y() - std::exchange(to, from));
  const int end = std::min(height, down ? to - a.y() : a.y() - to);
  const double perRow = static_cast<double>(width) / height;
  const int first = std::max(rect_.left() - a.x(), static_cast<int>(from * perRow) - 1);
  const int last = std::min(rect_.right() - a.x(), static_cast<int>(end * perRow) + 1);
  for (int x = std::max(0, first); x <= std::min(width, last); ++x) {
    const auto edge = [&](int column) {
      return static_cast<int>((slope * column + slope / 2) >> kPlaces);
    };
    const int head = std::max(from, x == 0 ? 0 : edge(x - 1) + 1);
    const int tail = std::min(end, x == width ? height : edge(x));
    if (down) {
      AddRows(a.x() + x, a.y() + head, a.y() + tail);
    } else {
      AddRows(a.x() + x, a.y() - tail, a.y() - head);
    }
  }
}

void TPixelMask::Paint(QPainter& painter, const QColor& color, int diameter) {
  if (columns_.Empty()) return;
  const std::vector<int> reaches = DiscReaches(diameter);
  const int left = diameter / 2;
  const int right = diameter - 1 - left;
  const int end = std::min(columns_.last + right, rect_.width() - 1);
  for (int first = std::max(0, columns_.first - left); first <= end; first += kBlock) {
    const int from = std::max(columns_.first, first - right);
    const int to = std::min(columns_.last, first + kBlock - 1 + left);
    for (int index = from; index <= to; ++index) Spread(index, first, reaches);
    PaintBlock(painter, qPremultiply(color.rgba()), first);
  }
  for (int index = columns_.first; index <= columns_.last; ++index) Clear(index);
  columns_ = {};
}

/// Gives the block that begins at the column `first` what the discs of one column have in it.
void TPixelMask::Spread(int index, int first, const std::vector<int>& reaches) {
  if (Used(index).Empty()) return;
  const int diameter = static_cast<int>(reaches.size());
  const int room = diameter == 1 ? 0 : (diameter / 2 + kWordBits - 1) / kWordBits;
  const TWords words{std::max(0, Used(index).first - room),
                     std::min(words_ - 1, Used(index).last + room)};
  std::copy(Column(index) + words.first, Column(index) + words.last + 1,
            scratch_.begin() + words.first);
  Widen(blockUsed_, words);
  // Higher and higher, from the outermost columns of a disc to its middle.
  int reach = 0;
  for (int i = 0; i <= (diameter - 1) / 2; ++i) {
    for (; reach < reaches[static_cast<std::size_t>(i)]; ++reach) {
      Heighten(words, reach > 0 || diameter % 2 == 1);
    }
    const int left = index - diameter / 2 + i - first;
    const int right = left + diameter - 1 - 2 * i;
    AddToBlock(left, words);
    if (right != left) AddToBlock(right, words);
  }
}

/// Adds to the scratch column each row's neighbour above, or both neighbours.
void TPixelMask::Heighten(const TWords& words, bool both) {
  TWord before = 0;
  for (int i = words.first; i <= words.last; ++i) {
    const TWord here = Scratch(i);
    const TWord after = i < words.last ? Scratch(i + 1) : 0;
    Scratch(i) |= here >> 1 | after << (kWordBits - 1);
    if (both) Scratch(i) |= here << 1 | before >> (kWordBits - 1);
    before = here;
  }
}

void TPixelMask::AddToBlock(int column, const TWords& words) {
  if (column < 0 || column >= kBlock) return;
  TWord* const bits = BlockColumn(column);
  for (int i = words.first; i <= words.last; ++i) bits[i] |= Scratch(i);
  Widen(blockColumns_, {column, column});
}

/// In pictures of equal size: a rectangle would cost as much for every row of one pixel.
void TPixelMask::PaintBlock(QPainter& painter, QRgb color, int first) {
  const int width = blockColumns_.last - blockColumns_.first + 1;
  const int most = width > 0 ? kBlock / width : 0;
  for (int word = blockUsed_.first; width > 0 && word <= blockUsed_.last; word += most) {
    const TWords words{word, std::min(word + most - 1, blockUsed_.last)};
    const TCover cover = FillCell(words, color);
    if (cover != TCover::kNone) {
      const int height = (words.last - words.first + 1) * kWordBits;
      // What has no holes is copied and not blended.
      const QImage cell(reinterpret_cast<const uchar*>(cell_.data()), width, height,
                        qsizetype{width} * static_cast<int>(sizeof(QRgb)),
                        cover == TCover::kAll && qAlpha(color) == 255
                            ? QImage::Format_RGB32
                            : QImage::Format_ARGB32_Premultiplied);
      painter.drawImage(
          QPoint(rect_.left() + first + blockColumns_.first, rect_.top() + word * kWordBits), cell);
    }
  }
  for (int i = blockColumns_.first; i <= blockColumns_.last; ++i) {
    std::fill(BlockColumn(i) + blockUsed_.first, BlockColumn(i) + blockUsed_.last + 1, 0);
  }
  blockUsed_ = blockColumns_ = {};
}

/// Colours the pixels of the block's columns that are set in some words, and returns how many are.
TPixelMask::TCover TPixelMask::FillCell(const TWords& words, QRgb color) {
  const std::ptrdiff_t width = blockColumns_.last - blockColumns_.first + 1;
  bool isEmpty = true;
  bool isFull = true;
  QRgb* pixels = cell_.data();
  for (int word = words.first; word <= words.last; ++word, pixels += width * kWordBits) {
    TWord any = 0;
    TWord common = ~TWord{0};
    for (int i = blockColumns_.first; i <= blockColumns_.last; ++i) {
      any |= BlockColumn(i)[word];
      common &= BlockColumn(i)[word];
    }
    isEmpty = isEmpty && any == 0;
    isFull = isFull && common == ~TWord{0};
    std::fill_n(pixels, width * kWordBits, common == ~TWord{0} ? color : 0u);
    if (any == 0 || common == ~TWord{0}) continue;
    for (TWord bits = common; bits != 0; bits &= bits - 1) {
      std::fill_n(pixels + std::countr_zero(bits) * width, width, color);
    }
    for (int i = 0; i < width; ++i) {
      TWord bits = BlockColumn(blockColumns_.first + i)[word] & ~common;
      for (; bits != 0; bits &= bits - 1) pixels[std::countr_zero(bits) * width + i] = color;
    }
  }
  return isEmpty ? TCover::kNone : isFull ? TCover::kAll : TCover::kSome;
}
