#include "components/graphing/Axis.h"

#include <QPainter>
#include <QPointer>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <utility>

#include "components/controls/Korvaltools.h"
#include "components/graphing/Tickrules.h"
#include "components/graphing/painting/Plotfont.h"

namespace {

constexpr int kLabelGap = 4;             ///< pixels between two labels of a horizontal axis
constexpr int kLabelDistance = 2;        ///< pixels between a vertical axis's tick and its label
constexpr std::size_t kMostTexts = 256;  ///< kept per axis; a moving axis leaves old ones behind

/// Characters that are measured and drawn of a text: more than fit on any paper, few enough that
/// one of a damaged file holds nothing up.
constexpr qsizetype kLongestText = 1000;

/// Height of a line of text with a pixel of air above and below, which keeps labels, titles and the
/// frame of the graph apart.
constexpr int kAir = 1;
int TextHeight(const QFontMetrics& metrics) { return metrics.height() + 2 * kAir; }

/// Base line of such a line of text.
int BaseLine(const QFontMetrics& metrics) { return kAir + metrics.ascent(); }

/// Where a text of `width` that should begin at `x` begins within the axis's bounds.
int InBounds(const TAxis& axis, int x, int width) {
  const QRect bounds = axis.Bounds();
  return bounds.isEmpty() ? x : std::min(x, bounds.right() + 1 - width);
}

const QFont& DefaultFont() {
  static const QFont font(QStringLiteral("Arial"), 8);
  return font;
}

/// The nearest whole pixel; one far outside of every picture for a value that is none.
int ToPixel(double value) {
  constexpr double kFar = 1e6;
  return std::isnan(value) ? 0 : static_cast<int>(std::lround(std::clamp(value, -kFar, kFar)));
}

/// Room of `pixels` on one side.
QMargins RoomOn(TAxis::TAxisAlign side, int pixels) {
  return {side == TAxis::alLeft ? pixels : 0, side == TAxis::alTop ? pixels : 0,
          side == TAxis::alRight ? pixels : 0, side == TAxis::alBottom ? pixels : 0};
}

int RoomOf(const QMargins& room, TAxis::TAxisAlign side) {
  switch (side) {
    case TAxis::alLeft:
      return room.left();
    case TAxis::alTop:
      return room.top();
    case TAxis::alRight:
      return room.right();
    case TAxis::alBottom:
      return room.bottom();
  }
  return 0;
}

/// One step away from the plot.
QPoint Outward(TAxis::TAxisAlign side) {
  switch (side) {
    case TAxis::alLeft:
      return {-1, 0};
    case TAxis::alTop:
      return {0, -1};
    case TAxis::alRight:
      return {1, 0};
    case TAxis::alBottom:
      return {0, 1};
  }
  return {0, 0};
}

/// A line of one pixel's width, both ends painted. Filled and not stroked, because a filled
/// rectangle is sharp at every device pixel ratio.
void DrawPixelLine(QPainter& painter, QPoint from, QPoint to, TColor color) {
  const QRect line = QRect(QPoint(std::min(from.x(), to.x()), std::min(from.y(), to.y())),
                           QPoint(std::max(from.x(), to.x()), std::max(from.y(), to.y())));
  painter.fillRect(line, color.ToQColor());
}

}  // namespace

// Ticks

TTick::TTick(TAxis* axis, int size) : TPersistent(axis), axis_(axis), size_(size) {}

void TTick::SetPos(TTickPos pos) {
  if (pos == pos_ || pos < tpNone || pos > tpOutside) return;
  pos_ = pos;
  CalculateCoordinate();
  emit OnChange(this);
}

void TTick::SetSize(int size) {
  if (size == size_ || size < 0 || size > kLargestSize) return;
  size_ = size;
  CalculateCoordinate();
  emit OnChange(this);
}

void TTick::SetRange(double start, double end, int count) {
  start_ = start;
  end_ = end;
  count_ = std::max(1, count);
}

double TTick::Value(int index) const {
  if (axis_->GetScale() == TAxis::asLog) return start_ * PowerOfTen(index);
  const double step = (end_ - start_) / count_;
  const double value = start_ + index * step;
  // The sum misses 0 by a rounding error, which as a label would read like a number of its own.
  return std::abs(value) < 1e-9 * step ? 0.0 : value;
}

void TTick::CalculateOverlap() {
  const bool outside = pos_ == tpCross || pos_ == tpOutside;
  overlap_ = RoomOn(axis_->GetAlign(), outside ? size_ : 0);
}

void TTick::CalculateCoordinate() {
  const QPoint outward = Outward(axis_->GetAlign()) * size_;
  const bool inside = pos_ == tpInside || pos_ == tpCross;
  const bool outside = pos_ == tpOutside || pos_ == tpCross;
  coordinate_ = QLine(inside ? -outward : QPoint(), outside ? outward : QPoint());
}

void TTick::DrawTick(QPainter& painter, int position) const {
  const QRect plot = axis_->ClientRect();
  QPoint onLine;
  switch (axis_->GetAlign()) {
    case TAxis::alLeft:
      onLine = {plot.left(), position};
      break;
    case TAxis::alTop:
      onLine = {position, plot.top()};
      break;
    case TAxis::alRight:
      onLine = {plot.right(), position};
      break;
    case TAxis::alBottom:
      onLine = {position, plot.bottom()};
      break;
  }
  DrawPixelLine(painter, onLine + coordinate_.p1(), onLine + coordinate_.p2(),
                axis_->GetLineColor());
}

QPoint TTick::LabelAnchor(int position) const {
  const QRect plot = axis_->ClientRect();
  const int room = axis_->TickRoom();
  switch (axis_->GetAlign()) {
    case TAxis::alLeft:
      return {plot.left() - room, position};
    case TAxis::alTop:
      return {position, plot.top() - room};
    case TAxis::alRight:
      return {plot.left() + plot.width() + room, position};
    case TAxis::alBottom:
      return {position, plot.top() + plot.height() + room};
  }
  return {};
}

void TTick::DrawLinear(QPainter& painter, const TTickLabel* label) const {
  if (pos_ == tpNone) return;
  const bool labelled = label && label->GetPos() != TTickLabel::lpNone;
  const bool endsOnly = labelled && label->GetSpacing() == TTickLabel::lsMinMax;
  const double first = axis_->NearPixel(start_);
  const double step = (axis_->FarPixel(end_) - first) / count_;
  // An axis draws within its plot rectangle and the room beyond it: there the first label begins.
  QPoint last(0, axis_->ClientRect().bottom() + 1 + axis_->Overlap().bottom());
  QString before;
  for (int i = 0; i <= count_; ++i) {
    const int position = ToPixel(first + i * step);
    if (!axis_->GetLineColor().IsNone()) DrawTick(painter, position);
    if (!labelled || (endsOnly && i != 0 && i != count_)) continue;
    // Steps finer than the digits of any format have equal texts; one of them is enough.
    QString text = label->TextOf(Value(i));
    if (text != before) label->Draw(painter, LabelAnchor(position), Value(i), last);
    before = std::move(text);
  }
}

void TTick::DrawLog(QPainter& painter) const {
  if (pos_ == tpNone || axis_->GetLineColor().IsNone()) return;
  const double first = axis_->NearPixel(start_);
  const double decade = (axis_->FarPixel(end_) - first) / count_;  // negative on a vertical axis
  for (int i = 0; i < count_; ++i) {
    const int start = ToPixel(first + i * decade);
    for (int k = 1; k <= 9; ++k) DrawTick(painter, start + ToPixel(std::log10(k) * decade));
  }
  DrawTick(painter, ToPixel(first + count_ * decade));
}

// Labels

TTickLabel::TTickLabel(TAxis* axis)
    : TPersistent(axis),
      axis_(axis),
      font_(DefaultFont()),
      plotFont_(PlotFont(font_)),
      metrics_(plotFont_),
      numFormat_(std::make_unique<TNumberFormat>(this)) {
  connect(numFormat_.get(), &TNumberFormat::OnChange, this, &TTickLabel::PropertiesChanged);
  connect(&shownFormat_, &TNumberFormat::OnChange, this, [this] { texts_.clear(); });
}

TTickLabel::~TTickLabel() = default;

void TTickLabel::SetFont(const QFont& font) {
  if (font == font_) return;
  font_ = font;
  plotFont_ = PlotFont(font);
  metrics_ = QFontMetrics(plotFont_);
  PropertiesChanged();
}

void TTickLabel::SetFontColor(TColor color) {
  if (color == fontColor_) return;
  fontColor_ = color;
  PropertiesChanged();
}

void TTickLabel::SetPos(TLabelPos pos) {
  if (pos == pos_ || pos < lpNone || pos > lpNextToAxis) return;
  pos_ = pos;
  PropertiesChanged();
}

void TTickLabel::SetSpacing(TLabelSpacing spacing) {
  if (spacing == spacing_ || spacing < lsAuto || spacing > lsMinMax) return;
  spacing_ = spacing;
  PropertiesChanged();
}

void TTickLabel::SetNumFormat(const TNumberFormat* format) { numFormat_->Assign(format); }

void TTickLabel::PropertiesChanged() {
  chosenCount_ = 0;
  texts_.clear();
  emit OnChange(this);
}

const TTickLabel::TText& TTickLabel::Text(double value) const {
  ChooseFormat();
  const auto isValue = [value](const TText& text) { return text.value == value; };
  if (nextText_ >= texts_.size() || !isValue(texts_[nextText_])) {
    const auto found = std::find_if(texts_.begin(), texts_.end(), isValue);
    nextText_ = static_cast<std::size_t>(found - texts_.begin());
  }
  if (nextText_ == texts_.size()) {
    if (texts_.size() >= kMostTexts) texts_.clear();
    const QString text = shownFormat_.FormatedValue(value).left(kLongestText);
    texts_.push_back({value, text, metrics_.horizontalAdvance(text)});
    nextText_ = texts_.size() - 1;
  }
  return texts_[nextText_++];
}

void TTickLabel::ChooseFormat() const {
  const TTick& ticks = *axis_->GetMajorTick();
  if (ticks.Start() == chosenStart_ && ticks.End() == chosenEnd_ && ticks.Count() == chosenCount_) {
    return;
  }
  chosenStart_ = ticks.Start();
  chosenEnd_ = ticks.End();
  chosenCount_ = ticks.Count();
  TakeFormat();
  if (AreDistinct()) return;
  if (shownFormat_.GetIsTimeFormat()) {
    for (const char* pattern : TimePatterns((chosenEnd_ - chosenStart_) / chosenCount_)) {
      shownFormat_.SetTimeFormatStr(QLatin1String(pattern));
      if (AreDistinct()) return;
    }
    return TakeFormat();
  }
  FollowStep();
  if (AreDistinct()) return;
  shownFormat_.SetFormat(TNumberFormat::ffExponent);
}

void TTickLabel::TakeFormat() const {
  shownFormat_.SetFormat(numFormat_->GetFormat());
  shownFormat_.SetPrecision(numFormat_->GetPrecision());
  shownFormat_.SetDigits(numFormat_->GetDigits());
  shownFormat_.SetIsTimeFormat(numFormat_->GetIsTimeFormat());
  shownFormat_.SetTimeFormatStr(numFormat_->GetTimeFormatStr());
}

/// No two major ticks have the same label.
bool TTickLabel::AreDistinct() const {
  const TTick& ticks = *axis_->GetMajorTick();
  QSet<QString> seen;
  for (int i = 0; i <= ticks.Count(); ++i) {
    const QString& text = Text(ticks.Value(i)).text;
    if (seen.contains(text)) return false;
    seen.insert(text);
  }
  return true;
}

/// Gives the format the decimals and the significant digits that a step has.
void TTickLabel::FollowStep() const {
  const bool isLog = axis_->GetScale() == TAxis::asLog;
  const double step = isLog ? chosenStart_ : (chosenEnd_ - chosenStart_) / chosenCount_;
  const int last = Decade(step * (1.0 + 1e-9));
  const int first = Decade(std::max(std::abs(chosenStart_), std::abs(chosenEnd_)));
  shownFormat_.SetDigits(std::clamp(-last, shownFormat_.GetDigits(), 18));
  if (isLog) return;
  shownFormat_.SetPrecision(std::clamp(first - last + 1, shownFormat_.GetPrecision(), 15));
}

void TTickLabel::CalculateOverlap() {
  overlap_ = QMargins();
  const TTick& ticks = *axis_->GetMajorTick();
  if (pos_ == lpNone || ticks.GetPos() == TTick::tpNone) return;
  const int height = TextHeight(metrics_);
  if (axis_->GetOrientation() == TAxis::aoHorizontal) {
    overlap_ = RoomOn(axis_->GetAlign(), height);
    return;
  }
  int width = 0;
  const int step = spacing_ == lsAuto ? 1 : ticks.Count();
  for (int i = 0; i <= ticks.Count(); i += step) {
    width = std::max(width, Text(ticks.Value(i)).width);
  }
  overlap_ =
      RoomOn(axis_->GetAlign(), width + kLabelDistance) + QMargins(0, height / 2, 0, height / 2);
}

bool TTickLabel::Draw(QPainter& painter, QPoint anchor, double value, QPoint& last) const {
  const TText& text = Text(value);
  const int width = text.width;
  const int height = TextHeight(metrics_);
  QPoint corner = anchor;
  if (axis_->GetOrientation() == TAxis::aoHorizontal) {
    corner.rx() -= width / 2;
    if (axis_->GetAlign() == TAxis::alTop) corner.ry() -= height;
    corner.setX(InBounds(*axis_, corner.x(), width));
    if (corner.x() < last.x()) return false;
    last.setX(corner.x() + width + kLabelGap);
  } else {
    corner.ry() -= height / 2;
    if (corner.y() > last.y() - height) return false;
    corner.rx() += axis_->GetAlign() == TAxis::alRight ? kLabelDistance : -width - 1;
    last.setY(corner.y());
  }
  painter.setFont(plotFont_);
  painter.setPen(fontColor_.ToQColor());
  painter.drawText(corner + QPoint(0, BaseLine(metrics_)), text.text);
  return true;
}

// Title

TAxisTitle::TAxisTitle(TAxis* axis)
    : TPersistent(axis),
      axis_(axis),
      font_(DefaultFont()),
      plotFont_(PlotFont(font_)),
      metrics_(plotFont_) {}

void TAxisTitle::SetFont(const QFont& font) {
  if (font == font_) return;
  font_ = font;
  plotFont_ = PlotFont(font);
  metrics_ = QFontMetrics(plotFont_);
  PropertiesChanged();
}

void TAxisTitle::SetFontColor(TColor color) {
  if (color == fontColor_) return;
  fontColor_ = color;
  PropertiesChanged();
}

void TAxisTitle::SetPos(TTitlePos pos) {
  if (pos == pos_ || pos < tiNone || pos > tiRight) return;
  pos_ = pos;
  PropertiesChanged();
}

void TAxisTitle::SetCaption(const QString& caption) {
  if (caption == caption_) return;
  caption_ = caption;
  PropertiesChanged();
}

void TAxisTitle::SetTimeCaption(const QString& caption) {
  if (caption == timeCaption_) return;
  timeCaption_ = caption;
  PropertiesChanged();
}

void TAxisTitle::PropertiesChanged() { emit OnChange(this); }

QString TAxisTitle::Text() const {
  return (axis_->GetScale() == TAxis::asTime ? timeCaption_ : caption_).left(kLongestText);
}

void TAxisTitle::CalculateOverlap() {
  overlap_ = RoomOn(axis_->GetAlign(), pos_ == tiNone ? 0 : TextHeight(metrics_));
}

void TAxisTitle::Draw(QPainter& painter) const {
  if (pos_ == tiNone) return;
  painter.setFont(plotFont_);
  painter.setPen(fontColor_.ToQColor());
  const int distance = axis_->TickRoom() + RoomOf(axis_->GetLabel()->Overlap(), axis_->GetAlign());
  if (axis_->GetOrientation() == TAxis::aoHorizontal) {
    DrawHorizontal(painter, distance);
  } else {
    DrawVertical(painter, distance);
  }
}

/// The text with dots at its end if it does not fit into so many pixels.
QString TAxisTitle::Shortened(int room) const {
  return metrics_.elidedText(Text(), Qt::ElideRight, room);
}

void TAxisTitle::DrawHorizontal(QPainter& painter, int distance) const {
  const QRect plot = axis_->ClientRect();
  const QRect bounds = axis_->Bounds().isEmpty() ? plot : axis_->Bounds();
  const QString text = Shortened(bounds.width());
  const int length = metrics_.horizontalAdvance(text);
  const int free = plot.width() - length;
  const int offset = pos_ == tiLeft ? 0 : pos_ == tiRight ? free : free / 2;
  const int x = std::max(bounds.left(), InBounds(*axis_, plot.left() + offset, length));
  const int y = axis_->GetAlign() == TAxis::alTop ? plot.top() - distance - TextHeight(metrics_)
                                                  : plot.top() + plot.height() + distance;
  painter.drawText(QPoint(x, y + BaseLine(metrics_)), text);
}

void TAxisTitle::DrawVertical(QPainter& painter, int distance) const {
  const QRect plot = axis_->ClientRect();
  const QRect bounds = axis_->Bounds().isEmpty() ? plot : axis_->Bounds();
  const QString text = Shortened(bounds.height());
  const int length = metrics_.horizontalAdvance(text);
  const int free = plot.height() - length;
  const int wanted = plot.top() + (pos_ == tiLeft ? free : pos_ == tiRight ? 0 : free / 2);
  const int top = std::max(bounds.top(), std::min(wanted, bounds.bottom() + 1 - length));
  if (axis_->GetAlign() == TAxis::alRight) {  // reads downwards
    const int right = plot.left() + plot.width() + distance + TextHeight(metrics_) - kAir;
    RotateText(painter, QPointF(right, top), -90.0, text);
  } else {  // reads upwards
    const int left = plot.left() - distance - TextHeight(metrics_) + kAir;
    RotateText(painter, QPointF(left, top + length), 90.0, text);
  }
}

// Axis

TAxis::TAxis(QObject* owner)
    : TPersistent(owner),
      minorTick_(std::make_unique<TTick>(this, 2)),
      majorTick_(std::make_unique<TTick>(this, 4)),
      label_(std::make_unique<TTickLabel>(this)),
      title_(std::make_unique<TAxisTitle>(this)) {
  for (TPersistent* part : std::initializer_list<TPersistent*>{minorTick_.get(), majorTick_.get(),
                                                               label_.get(), title_.get()}) {
    connect(part, &TPersistent::OnChange, this, &TAxis::SubObjectChanged);
  }
  minorTick_->CalculateCoordinate();
  majorTick_->CalculateCoordinate();
  CalculateTickPos();
  CalculateOverlap();
}

TAxis::~TAxis() = default;

void TAxis::SetTitle(const TAxisTitle* title) { title_->Assign(title); }
void TAxis::SetMajor(const TTick* tick) { majorTick_->Assign(tick); }
void TAxis::SetMinor(const TTick* tick) { minorTick_->Assign(tick); }
void TAxis::SetLabel(const TTickLabel* label) { label_->Assign(label); }

void TAxis::SetMin(double value) {
  if (value == min_ || value == max_) return;
  SetMinMax(value, max_);
}

void TAxis::SetMax(double value) {
  if (value == max_ || value == min_) return;
  SetMinMax(min_, value);
}

void TAxis::SetMinMax(double a, double b) {
  if (!std::isfinite(a) || !std::isfinite(b)) return;
  min_ = std::min(a, b);
  max_ = std::max(a, b);
  TakeFixedBounds();
  const QPointer<TAxis> self(this);
  if (!autoMin_ && !autoMax_) CalculateTickPos();
  if (!self) return;
  CalculateOverlap();
  Notify();
}

/// The working bound of a side that is not automatic starts from what the user set, again and
/// again: the last choice of ticks has widened it, perhaps for another scale.
void TAxis::TakeFixedBounds() {
  if (!autoMin_) workingMin_ = min_;
  if (!autoMax_) workingMax_ = max_;
}

template <typename T>
void TAxis::Set(T& field, T value) {
  if (field == value) return;
  field = value;
  minorTick_->CalculateCoordinate();
  majorTick_->CalculateCoordinate();
  CalculateOverlap();
  Notify();
}

/// The ticks count as chosen for the bounds that are drawn, for these alone might get others.
void TAxis::Hold(bool& automatic) {
  if (!automatic) return;
  if (autoMin_) min_ = workingMin_;
  if (autoMax_) max_ = workingMax_;
  (&automatic == &autoMin_ ? chosenForMin_ : chosenForMax_) =
      &automatic == &autoMin_ ? workingMin_ : workingMax_;
  Set(automatic, false);
}

void TAxis::SetAutoMin(bool on) { Set(autoMin_, on); }
void TAxis::SetAutoMax(bool on) { Set(autoMax_, on); }
void TAxis::SetLineColor(TColor color) { Set(lineColor_, color); }
void TAxis::SetAlign(TAxisAlign align) { Set(align_, align); }
void TAxis::SetOrientation(TAxisOrientation orientation) { Set(orientation_, orientation); }
void TAxis::SetShape(TAxisShape shape) { Set(shape_, shape); }
void TAxis::SetFixedOrigin(bool fixed) { Set(fixedOrigin_, fixed); }

void TAxis::SetScale(TAxisScale scale) {
  if (scale == scale_ || scale < asLinear || scale > asTime) return;
  scale_ = scale;
  const QPointer<TAxis> self(this);
  Quietly([&] { label_->GetNumFormat()->SetIsTimeFormat(scale == asTime); });
  if (!self) return;
  TakeFixedBounds();
  CalculateTickPos();
  if (!self) return;
  CalculateOverlap();
  Notify();
}

void TAxis::SetOrigin(const QRect& rect) {
  if (fixedOrigin_ || rect == origin_) return;
  origin_ = rect;
  Notify();
}

void TAxis::SubObjectChanged() {
  if (choosingTicks_) return;
  CalculateOverlap();
  Notify();
}

/// Changes a part, which is no change of the axis. A listener may destroy the axis.
template <class TChange>
void TAxis::Quietly(TChange change) {
  const QPointer<TAxis> self(this);
  const bool before = std::exchange(choosingTicks_, true);
  change();
  if (self) choosingTicks_ = before;
}

void TAxis::Notify() {
  const QPointer<TAxis> self(this);
  emit OnChange(this);
  if (self) emit OnRepaint(this);
}

QRect TAxis::GetClientRect() const {
  const QRect& plot = clientRect_;
  switch (align_) {
    case alLeft:
      return {plot.left() - overlap_.left(), plot.top(), overlap_.left(), plot.height()};
    case alTop:
      return {plot.left(), plot.top() - overlap_.top(), plot.width(), overlap_.top()};
    case alRight:
      return {plot.left() + plot.width(), plot.top(), overlap_.right(), plot.height()};
    case alBottom:
      return {plot.left(), plot.top() + plot.height(), plot.width(), overlap_.bottom()};
  }
  return {};
}

int TAxis::TickRoom() const {
  return std::max(RoomOf(minorTick_->Overlap(), align_), RoomOf(majorTick_->Overlap(), align_));
}

double TAxis::Span(double from, double to) const {
  return (scale_ == asLog ? std::log10(to) - std::log10(from) : to - from) * scaleFactor_;
}

double TAxis::NearPixel(double value) const {
  const double distance = Span(workingMin_, value);
  return orientation_ == aoHorizontal ? clientRect_.left() + distance
                                      : clientRect_.bottom() - distance;
}

double TAxis::FarPixel(double value) const {
  const double distance = Span(value, workingMax_);
  return orientation_ == aoHorizontal ? clientRect_.right() - distance
                                      : clientRect_.top() + distance;
}

void TAxis::UpdateAxis() {
  const QPointer<TAxis> self(this);
  AutoScale();
  if (self) AdjustOrigin();
}

void TAxis::AutoScale() {
  if (!OnQueryRange) return;
  const double drawnMin = workingMin_;
  const double drawnMax = workingMax_;
  TakeFixedBounds();
  double unusedMin = workingMin_;
  double unusedMax = workingMax_;
  OnQueryRange(autoMin_ ? workingMin_ : unusedMin, autoMax_ ? workingMax_ : unusedMax);
  // A range that is drawn already keeps its ticks. Choosing again could widen it: 0..11 may be the
  // outcome for 0.95..10.85, and would become 0..12 under a mouse that holds it.
  const bool isFixed = !autoMin_ || !autoMax_;
  const auto same = [isFixed](double wanted, bool automatic, double drawn, double chosenFor) {
    return (automatic && wanted == drawn) || (isFixed && wanted == chosenFor);
  };
  if (same(workingMin_, autoMin_, drawnMin, chosenForMin_) &&
      same(workingMax_, autoMax_, drawnMax, chosenForMax_)) {
    workingMin_ = drawnMin;
    workingMax_ = drawnMax;
    return;
  }
  CalculateTickPos();
}

void TAxis::AdjustOrigin() {
  CalculateOverlap();
  if (OnQueryPlotRect) origin_ = OnQueryPlotRect();
  clientRect_ = fixedOrigin_ ? origin_ : origin_.marginsRemoved(overlap_);
  CalculateScaleFactor();
}

void TAxis::ValidateRange() {
  const TBounds range{workingMin_, workingMax_};
  const TBounds valid = scale_ == asLinear ? ValidLinearRange(range)
                        : scale_ == asLog  ? ValidLogRange(range)
                                           : ValidTimeRange(range);
  workingMin_ = valid.Min;
  workingMax_ = valid.Max;
}

void TAxis::CalculateTickPos() {
  chosenForMin_ = workingMin_;
  chosenForMax_ = workingMax_;
  ValidateRange();
  const QPointer<TAxis> self(this);
  if (scale_ == asTime) {
    CalculateTimeTickPos();
  } else {
    const TBounds range{workingMin_, workingMax_};
    TakeTicks(scale_ == asLog ? LogTicks(range) : LinearTicks(range));
  }
  if (self) CalculateScaleFactor();
}

/// The drawn range always ends on whole major steps.
void TAxis::TakeTicks(const TTickChoice& ticks) {
  majorTick_->SetRange(ticks.Start, ticks.End, ticks.MajorCount);
  minorTick_->SetRange(ticks.Start, ticks.End, ticks.MinorCount);
  workingMin_ = ticks.Start;
  workingMax_ = ticks.End;
}

void TAxis::CalculateTimeTickPos() {
  const TBounds range{workingMin_, workingMax_};
  const TTimeStep& step = TimeStep(range);
  TakeTicks(TimeTicks(range, step));

  timeOrigin_ = TDateTime(workingMin_);
  timeCaptionPattern_ = QLatin1String(step.TitlePattern);
  const QPointer<TAxis> self(this);
  Quietly([&] { label_->GetNumFormat()->SetTimeFormatStr(QLatin1String(step.LabelPattern)); });
  if (self) Quietly([&] { title_->SetTimeCaption(TimeCaption(step)); });
}

QString TAxis::TimeCaption(const TTimeStep& step) const {
  if (timeCaptionPattern_.isEmpty()) return QStringLiteral("Time [years]");
  TNumberFormat format;
  format.SetIsTimeFormat(true);
  format.SetTimeFormatStr(timeCaptionPattern_);
  return (step.StepDays < 1.0 ? QStringLiteral("Date Time : ") : QStringLiteral("Date : ")) +
         format.FormatedValue(workingMin_);
}

void TAxis::CalculateScaleFactor() {
  const int length = (orientation_ == aoVertical ? clientRect_.height() : clientRect_.width()) - 1;
  if (length < 1 || !(workingMax_ > workingMin_)) return;
  scaleFactor_ = length / (scale_ == asLog ? std::log10(workingMax_) - std::log10(workingMin_)
                                           : workingMax_ - workingMin_);
}

void TAxis::CalculateOverlap() {
  minorTick_->CalculateOverlap();
  majorTick_->CalculateOverlap();
  label_->CalculateOverlap();
  title_->CalculateOverlap();
  overlap_ = RoomOn(align_, TickRoom()) + label_->Overlap() + title_->Overlap();
}

void TAxis::Draw(QPainter& painter) const {
  if (clientRect_.width() < 2 || clientRect_.height() < 2) return;  // no room for a range
  if (!lineColor_.IsNone()) DrawLine(painter);
  majorTick_->DrawLinear(painter, label_.get());
  if (scale_ == asLog) {
    minorTick_->DrawLog(painter);
  } else {
    minorTick_->DrawLinear(painter, nullptr);
  }
  title_->Draw(painter);
}

void TAxis::DrawLine(QPainter& painter) const {
  const QRect& r = clientRect_;
  const auto draw = [&](TAxisAlign side, QPoint from, QPoint to) {
    if (shape_ == shFrame || side == align_) DrawPixelLine(painter, from, to, lineColor_);
  };
  draw(alLeft, r.topLeft(), r.bottomLeft());
  draw(alTop, r.topLeft(), r.topRight());
  draw(alRight, r.topRight(), r.bottomRight());
  draw(alBottom, r.bottomLeft(), r.bottomRight());
}

void TAxis::AssignTo(TPersistent* destination) const {
  auto* axis = qobject_cast<TAxis*>(destination);
  if (!axis) return;
  CopyInSteps(
      axis,
      [&] {
        // Both bounds at once: alone, one that equals the other's old value would be refused.
        if (axis->min_ != min_ || axis->max_ != max_) axis->SetMinMax(min_, max_);
      },
      [&] { axis->SetAutoMax(autoMax_); }, [&] { axis->SetAutoMin(autoMin_); },
      [&] { axis->SetLineColor(lineColor_); }, [&] { axis->SetScale(scale_); },
      [&] { axis->SetLabel(label_.get()); }, [&] { axis->SetMajor(majorTick_.get()); },
      [&] { axis->SetMinor(minorTick_.get()); }, [&] { axis->SetTitle(title_.get()); });
}
