#include "components/graphing/Linesinks.h"

#include <QImage>
#include <QLine>
#include <QPainter>
#include <QPolygon>
#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

bool IsThin(const QPen& pen) { return pen.style() == Qt::SolidLine && pen.widthF() <= 1.0; }

/// Rows of one pixel column, from `top` to `bottom`; none if they are the wrong way round.
struct TRows {
  int top = 0;
  int bottom = -1;
  bool Empty() const { return top > bottom; }
};

/// The two columns of a line between neighbouring columns. The painter stays in the left one until
/// the last row.
struct TSplit {
  int column;  ///< the left one
  TRows left;
  int right;  ///< the only row of the right column
};

TSplit SplitLine(const QLine& line) {
  const QPoint a = line.x1() < line.x2() ? line.p1() : line.p2();
  const QPoint b = line.x1() < line.x2() ? line.p2() : line.p1();
  const int end = b.y() + (a.y() < b.y() ? -1 : a.y() > b.y() ? 1 : 0);
  return {a.x(), {std::min(a.y(), end), std::max(a.y(), end)}, b.y()};
}

/// Whether this painter's lines are split as SplitLine says; asked once, by drawing some.
bool SplitsAsExpected() {
  static const bool result = [] {
    for (const int height : {0, 1, 2, 5, 60}) {
      for (const QLine& line : {QLine(0, 0, 1, height), QLine(1, height, 0, 0),
                                QLine(1, 0, 0, height), QLine(0, height, 1, 0)}) {
        QImage drawn(2, height + 1, QImage::Format_RGB32);
        drawn.fill(Qt::white);
        QImage expected = drawn;
        QPainter(&drawn).drawLine(line);
        const TSplit split = SplitLine(line);
        for (int row = split.left.top; row <= split.left.bottom; ++row) {
          expected.setPixelColor(0, row, Qt::black);
        }
        expected.setPixelColor(1, split.right, Qt::black);
        if (drawn != expected) return false;
      }
    }
    return true;
  }();
  return result;
}

/// Every piece is a line of its own, for their joints do not show. Pieces inside a column and
/// between neighbouring columns become rows of these columns, and those become few rectangles.
class TThinLines : public TLineSink {
 public:
  TThinLines(QPainter& painter, const QPen& pen, const QRect& visible)
      : painter_(painter),
        pen_(pen),
        visible_(visible),
        splits_(SplitsAsExpected()),
        columns_(static_cast<std::size_t>(std::max(0, visible.width()))) {}

  void Join(const QLine& line) override {
    if (splits_ && std::abs(line.dx()) == 1 && visible_.contains(line.p1()) &&
        visible_.contains(line.p2())) {
      const TSplit split = SplitLine(line);
      Mark(split.column, split.left);
      Mark(split.column + 1, {split.right, split.right});
      return;
    }
    if (lines_.size() == kBatch) DrawLines();
    lines_.push_back(line);
  }
  void Span(const TSpan& span) override {
    Mark(span.column, {std::min(span.low, span.high), std::max(span.low, span.high)});
  }
  void Finish() override {
    DrawLines();
    const TRows all{visible_.top() - 1, visible_.bottom() + 1};
    const int count = static_cast<int>(columns_.size());
    for (int first = 0; first < count; first += kBlock) {
      FillBlock(first, std::min(first + kBlock, count) - 1, all);
    }
    DrawRects();
    std::fill(columns_.begin(), columns_.end(), TRows{});
  }

 private:
  static constexpr std::size_t kBatch = 4096;
  static constexpr int kBlock = 16;  ///< columns whose common rows are sought
  /// Common rows, less one, that are worth a rectangle of their own.
  static constexpr int kWorthwhile = 8;

  void Mark(int column, const TRows& rows) {
    TRows& known = columns_[static_cast<std::size_t>(column - visible_.left())];
    if (known.Empty()) {
      known = rows;
    } else if (rows.top <= known.bottom + 1 && rows.bottom >= known.top - 1) {
      known = {std::min(known.top, rows.top), std::max(known.bottom, rows.bottom)};
    } else {
      Push(QRect(QPoint(column, known.top), QPoint(column, known.bottom)));
      known = rows;
    }
  }

  /// Fills the marked rows of some columns, as far as they lie in `window`: the rows that all of
  /// them have at once, the rest in the halves of the block.
  void FillBlock(int first, int last, const TRows& window) {
    TRows common = window;
    TRows any{window.bottom + 1, window.top - 1};
    for (int i = first; i <= last; ++i) {
      const TRows& rows = columns_[static_cast<std::size_t>(i)];
      common = {std::max(common.top, rows.top), std::min(common.bottom, rows.bottom)};
      any = {std::min(any.top, rows.top), std::max(any.bottom, rows.bottom)};
    }
    if (any.top > window.bottom || any.bottom < window.top) return;
    const bool whole = common.bottom - common.top >= (first == last ? 0 : kWorthwhile);
    if (whole) {
      Push(QRect(QPoint(visible_.left() + first, common.top),
                 QPoint(visible_.left() + last, common.bottom)));
    }
    if (first == last) return;
    const int middle = (first + last) / 2;
    const TRows above = whole ? TRows{window.top, common.top - 1} : window;
    FillBlock(first, middle, above);
    FillBlock(middle + 1, last, above);
    if (!whole) return;
    const TRows below{common.bottom + 1, window.bottom};
    FillBlock(first, middle, below);
    FillBlock(middle + 1, last, below);
  }

  void Push(const QRect& rect) {
    if (rects_.size() == kBatch) DrawRects();
    rects_.push_back(rect);
  }

  void DrawLines() {
    if (lines_.empty()) return;
    painter_.setPen(pen_);
    painter_.drawLines(lines_.data(), static_cast<int>(lines_.size()));
    lines_.clear();
  }
  void DrawRects() {
    if (rects_.empty()) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(pen_.color());
    painter_.drawRects(rects_.data(), static_cast<int>(rects_.size()));
    rects_.clear();
  }

  QPainter& painter_;
  const QPen pen_;
  const QRect visible_;
  const bool splits_;
  std::vector<TRows> columns_;  ///< of each visible column
  std::vector<QLine> lines_;
  std::vector<QRect> rects_;
};

/// Pieces are chained, so that dashes run on and joints are round.
class TChainedLines : public TLineSink {
 public:
  TChainedLines(QPainter& painter, const QPen& pen) : painter_(painter) { painter_.setPen(pen); }

  void Join(const QLine& line) override {
    GoTo(line.p1());
    chain_.append(line.p2());
  }
  void Span(const TSpan& span) override {
    GoTo({span.column, span.first});
    const int rows[] = {span.lowIsFirst ? span.low : span.high,
                        span.lowIsFirst ? span.high : span.low, span.last};
    for (const int row : rows) {
      if (chain_.back().y() != row || chain_.size() == 1) chain_.append({span.column, row});
    }
  }
  void Finish() override {
    if (chain_.size() > 1) painter_.drawPolyline(chain_);
    chain_.clear();
  }

 private:
  // A chain this long is cut: its dashes begin anew, but memory stays bounded.
  static constexpr int kLongest = 65536;
  void GoTo(QPoint point) {
    if (!chain_.isEmpty() && chain_.back() == point && chain_.size() < kLongest) return;
    Finish();
    chain_.append(point);
  }

  QPainter& painter_;
  QPolygon chain_;
};

}  // namespace

std::unique_ptr<TLineSink> MakeLineSink(QPainter& painter, const QPen& pen, const QRect& visible) {
  if (IsThin(pen)) return std::make_unique<TThinLines>(painter, pen, visible);
  return std::make_unique<TChainedLines>(painter, pen);
}

int LineReach(const QPen& pen) { return IsThin(pen) ? 1 << 20 : 1 << 13; }
