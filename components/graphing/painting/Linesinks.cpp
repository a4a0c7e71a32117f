#include "components/graphing/painting/Linesinks.h"

#include <QImage>
#include <QLine>
#include <QPaintEngine>
#include <QPainter>
#include <QPolygon>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "components/graphing/painting/Pixelmask.h"

namespace {

bool IsThin(const QPen& pen) { return pen.style() == Qt::SolidLine && pen.widthF() <= 1.0; }

/// Rows of one pixel column, from `top` to `bottom`.
struct TRows {
  int top = 0;
  int bottom = 0;
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

/// What a device with a system clip can show of `rect`, which may be larger than memory has pixels;
/// with room for a pen around it.
QRect ShownOf(const QRect& rect, const QPainter& painter, const QPen& pen) {
  const QRegion clip = painter.paintEngine() ? painter.paintEngine()->systemClip() : QRegion();
  if (clip.isEmpty()) return rect;
  const QRectF shown = painter.deviceTransform().inverted().mapRect(QRectF(clip.boundingRect()));
  const int room = pen.width() + 1;
  return rect & shown.toAlignedRect().adjusted(-room, -room, room, room);
}

void AddSpan(TPixelMask& mask, const TLineSink::TSpan& span) {
  mask.AddRows(span.column, std::min(span.low, span.high), std::max(span.low, span.high));
}

/// Every piece is a line of its own, for their joints do not show. Pieces inside a column and
/// between neighbouring columns become rows of these columns.
class TThinLines : public TLineSink {
 public:
  TThinLines(QPainter& painter, const QPen& pen, const QRect& visible)
      : painter_(painter),
        pen_(pen),
        splits_(SplitsAsExpected()),
        mask_(ShownOf(visible, painter, pen)) {}

  void Join(const QLine& line) override {
    if (splits_ && std::abs(line.dx()) == 1 && mask_.Rect().contains(line.p1()) &&
        mask_.Rect().contains(line.p2())) {
      const TSplit split = SplitLine(line);
      mask_.AddRows(split.column, split.left.top, split.left.bottom);
      mask_.AddRows(split.column + 1, split.right, split.right);
      return;
    }
    if (lines_.size() == kBatch) DrawLines();
    lines_.push_back(line);
  }
  void Span(const TSpan& span) override { AddSpan(mask_, span); }
  void Finish() override {
    DrawLines();
    mask_.Paint(painter_, pen_.color());
  }

 private:
  static constexpr std::size_t kBatch = 4096;

  void DrawLines() {
    if (lines_.empty()) return;
    painter_.setPen(pen_);
    painter_.drawLines(lines_.data(), static_cast<int>(lines_.size()));
    lines_.clear();
  }

  QPainter& painter_;
  const QPen pen_;
  const bool splits_;
  TPixelMask mask_;
  std::vector<QLine> lines_;
};

/// The disc of the pen upon each pixel of thin lines. A painter would follow the outline of the
/// whole curve, which takes seconds where that crosses itself in every column.
class TWideLines : public TLineSink {
 public:
  TWideLines(QPainter& painter, const QPen& pen, const QRect& visible)
      : painter_(painter), pen_(pen), mask_(ShownOf(visible, painter, pen)) {}

  void Join(const QLine& line) override { mask_.AddLine(line); }
  void Span(const TSpan& span) override { AddSpan(mask_, span); }
  void Finish() override { mask_.Paint(painter_, pen_.color(), pen_.width()); }

 private:
  QPainter& painter_;
  const QPen pen_;
  TPixelMask mask_;
};

/// Pieces follow each other, so that dashes run on from piece to piece.
class TWalk : public TLineSink {
 public:
  void Join(const QLine& line) override {
    GoTo(line.p1());
    Step(line.p2());
  }
  void Span(const TSpan& span) override {
    GoTo({span.column, span.first});
    const int rows[] = {span.lowIsFirst ? span.low : span.high,
                        span.lowIsFirst ? span.high : span.low, span.last};
    for (const int row : rows) {
      if (at_.y() != row || isFirst_) Step({span.column, row});
    }
  }

 protected:
  /// A line that has nothing to do with the one before it.
  virtual void Begin() = 0;
  virtual void Draw(const QLine& line) = 0;

 private:
  void GoTo(QPoint point) {
    if (hasBegun_ && point == at_) return;
    hasBegun_ = isFirst_ = true;
    at_ = point;
    Begin();
  }
  void Step(QPoint to) {
    Draw({at_, to});
    at_ = to;
    isFirst_ = false;
  }

  bool hasBegun_ = false;
  bool isFirst_ = true;  ///< no step yet since the beginning
  QPoint at_;
};

double LengthOf(const QLine& line) { return std::hypot(line.dx(), line.dy()); }

/// Dashes whose visible length is that of the pattern: the disc adds its width to each.
class TWideDashes : public TWalk {
 public:
  TWideDashes(QPainter& painter, const QPen& pen, const QRect& visible)
      : painter_(painter), pen_(pen), mask_(ShownOf(visible, painter, pen)) {
    const QList<qreal> pattern = pen.dashPattern();
    for (qsizetype i = 0; i + 1 < pattern.size(); i += 2) {
      const int half = pen_.width() / 2;
      const double from = period_ + half;
      dashes_.push_back({from, from + (pattern[i] - 1.0) * pen_.width()});
      period_ += (pattern[i] + pattern[i + 1]) * pen_.width();
    }
  }

  void Finish() override { mask_.Paint(painter_, pen_.color(), pen_.width()); }

 protected:
  void Begin() override { phase_ = 0.0; }
  void Draw(const QLine& line) override {
    const double length = LengthOf(line);
    const QRect& rect = mask_.Rect();
    QLine seen;
    if (CutLine({line.x1(), line.y1()}, {line.x2(), line.y2()}, rect, 0, seen)) {
      DrawSeen(line, length, LengthOf({line.p1(), seen.p1()}), LengthOf({line.p1(), seen.p2()}));
    }
    phase_ = std::fmod(phase_ + length, period_);
  }

 private:
  struct TDash {
    double from, to;  ///< of its first and its last pixel
  };

  /// The dashes from the distance `from` to the distance `to` along a line.
  void DrawSeen(const QLine& line, double length, double from, double to) {
    const bool steep = TPixelMask::IsSteep(line);
    const int start = steep ? line.y1() : line.x1();
    const double per = length > 0.0 ? (steep ? line.dy() : line.dx()) / length : 0.0;
    const auto at = [&](double distance) {
      const double along = distance * per;
      return start + static_cast<int>(along < 0.0 ? along - 0.5 : along + 0.5);
    };
    double period = std::floor((from + phase_) / period_) * period_ - phase_;
    while (period <= to) {
      for (const TDash& dash : dashes_) {
        const double a = std::max(period + dash.from, from);
        const double b = std::min(period + dash.to, to);
        if (a <= b) mask_.AddLine(line, std::min(at(a), at(b)), std::max(at(a), at(b)));
      }
      period += period_;
    }
  }

  QPainter& painter_;
  const QPen pen_;
  TPixelMask mask_;
  std::vector<TDash> dashes_;
  double period_ = 0.0;
  double phase_ = 0.0;  ///< how far into the period the line has come
};

/// Pieces are chained, so that joints are round and files hold few of them.
class TChainedLines : public TWalk {
 public:
  TChainedLines(QPainter& painter, const QPen& pen) : painter_(painter), pen_(pen) {}

  void Finish() override {
    if (chain_.isEmpty()) return;
    const bool isDot = chain_.size() == 2 && chain_[0] == chain_[1];
    painter_.setPen(isDot ? QPen(pen_.brush(), pen_.widthF(), Qt::SolidLine, Qt::RoundCap) : pen_);
    painter_.drawPolyline(chain_);
    chain_.clear();
    if (pen_.style() == Qt::SolidLine) return;
    pen_.setDashOffset(std::fmod(pen_.dashOffset() + length_ / pen_.widthF(), kDashes));
    length_ = 0.0;
  }

 protected:
  void Begin() override {
    Finish();
    if (pen_.style() != Qt::SolidLine) pen_.setDashOffset(0.0);
  }
  void Draw(const QLine& line) override {
    if (chain_.size() == kLongest) Finish();
    if (chain_.isEmpty()) chain_.append(line.p1());
    chain_.append(line.p2());
    length_ += LengthOf(line);
  }

 private:
  static constexpr int kLongest = 65536;  ///< points of a chain: memory stays bounded
  /// In pen widths; holds every dash pattern a whole number of times.
  static constexpr double kDashes = 4.0 * 6.0 * 8.0 * 10.0;

  QPainter& painter_;
  QPen pen_;
  QPolygon chain_;
  double length_ = 0.0;
};

}  // namespace

bool IsOnPixels(const QPainter& painter) {
  return painter.paintEngine() && painter.paintEngine()->type() == QPaintEngine::Raster &&
         painter.deviceTransform().type() <= QTransform::TxTranslate;
}

std::unique_ptr<TLineSink> MakeLineSink(QPainter& painter, const QPen& pen, const QRect& visible) {
  if (IsThin(pen)) return std::make_unique<TThinLines>(painter, pen, visible);
  const bool isFine = pen.width() == 1;
  if (isFine || !IsOnPixels(painter)) return std::make_unique<TChainedLines>(painter, pen);
  if (pen.style() == Qt::SolidLine) return std::make_unique<TWideLines>(painter, pen, visible);
  return std::make_unique<TWideDashes>(painter, pen, visible);
}

int LineReach(const QPen& pen) { return IsThin(pen) ? 1 << 20 : 1 << 13; }
