#include "components/controls/Valueedit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QStyleOptionSpinBox>
#include <algorithm>
#include <cmath>
#include <utility>

#include "components/controls/Plaintip.h"
#include "components/graphing/Datetimeformat.h"

namespace {

constexpr int kMaxTyped = 64;  ///< characters of a number with its units
constexpr int kGap = 3;        ///< pixels about the units

/// Without the noise that adding steps such as 0.1 leaves in the last digits.
double Rounded(double value, double step) {
  constexpr int kDigits = 12;
  const double largest = std::max(std::abs(value), step);
  const double unit = std::pow(10.0, kDigits - 1 - std::floor(std::log10(largest)));
  const double rounded = std::round(value * unit) / unit;
  return std::isfinite(rounded) ? rounded : value;
}

QString Plain(double value) { return QString::number(value, 'g', 10); }

}  // namespace

TValueEdit::TValueEdit(QWidget* parent)
    : QAbstractSpinBox(parent), unitsLabel_(new QLabel(lineEdit())) {
  unitsLabel_->setAttribute(Qt::WA_TransparentForMouseEvents);
  unitsLabel_->setTextFormat(Qt::PlainText);
  unitsLabel_->hide();
  auto* layout = new QHBoxLayout(lineEdit());
  layout->setContentsMargins(0, 0, kGap, 0);
  layout->addWidget(unitsLabel_, 0, Qt::AlignRight | Qt::AlignVCenter);
  lineEdit()->setMaxLength(kMaxTyped);
  connect(lineEdit(), &QLineEdit::textEdited, this,
          [this](const QString& text) { ShowFault(FaultOf(Parse(text))); });
  connect(&format_, &TNumberFormat::OnChange, this, &TValueEdit::LookChanged);
  connect(&input_, &TInputData::OnChange, this, &TValueEdit::InputChanged);
  ShowValue();
}

// Properties

void TValueEdit::SetValue(double value) {
  if (!std::isfinite(value)) return;
  const bool isNew = value != value_;
  value_ = shown_ = value;
  ShowValue();
  if (!isNew) return;
  const QPointer<TValueEdit> alive(this);
  output_.SetValue(value);
  if (alive) emit OnChange(this);
}

void TValueEdit::SetMin(double min) {
  if (min == min_ || !std::isfinite(min)) return;
  min_ = min;
  LookChanged();
}

void TValueEdit::SetMax(double max) {
  if (max == max_ || !std::isfinite(max)) return;
  max_ = max;
  LookChanged();
}

void TValueEdit::SetStep(double step) {
  if (std::isfinite(step) && step > 0.0) step_ = step;
}

void TValueEdit::SetUnits(const QString& units) {
  if (units == units_) return;
  units_ = units;
  unitsLabel_->setText(units);
  unitsLabel_->setVisible(!units.isEmpty());
  LookChanged();
}

void TValueEdit::Loaded() {
  input_.Loaded();
  output_.Loaded();
}

// Text

bool TValueEdit::IsTyping() const { return lineEdit()->isModified(); }

/// The value as it can be typed: without separators of thousands and signs of currencies.
QString TValueEdit::EditText() const {
  if (format_.GetIsTimeFormat()) {
    const QString time = TypedTime(TDateTime(shown_));
    if (!time.isEmpty()) return time;
  }
  const auto kind = format_.GetFormat();
  if (kind != TNumberFormat::ffNumber && kind != TNumberFormat::ffCurrency) {
    return format_.FormatedValue(shown_);
  }
  TNumberFormat plain;
  plain.SetFormat(TNumberFormat::ffFixed);
  plain.SetPrecision(format_.GetPrecision());
  plain.SetDigits(format_.GetDigits());
  return plain.FormatedValue(shown_);
}

std::optional<double> TValueEdit::Parse(const QString& text) const {
  QString number = text.trimmed();
  if (!units_.isEmpty() && number.endsWith(units_))
    number = number.chopped(units_.size()).trimmed();
  bool isNumber = false;
  const double value = number.toDouble(&isNumber);
  if (isNumber && std::isfinite(value)) return value;
  if (!format_.GetIsTimeFormat()) return {};
  const std::optional<TDateTime> time = ScanTypedTime(number);
  return time ? std::optional(time->Days()) : std::nullopt;
}

QString TValueEdit::FaultOf(std::optional<double> value) const {
  if (!value || !std::isfinite(*value)) {
    return format_.GetIsTimeFormat() ? tr("Not a date and time") : tr("Not a number");
  }
  if (HasLimits() && (*value < min_ || *value > max_)) {
    const auto limit = [this](double bound) {
      return format_.GetIsTimeFormat() ? format_.FormatedValue(bound) : Plain(bound);
    };
    return tr("Must lie between %1 and %2").arg(limit(min_), limit(max_));
  }
  if (OnValidate && !OnValidate(*value)) return tr("Not allowed");
  return {};
}

void TValueEdit::ShowValue() {
  showsLater_ = false;
  const bool typable = hasFocus() && !isReadOnly();
  const QString text = typable ? EditText() : format_.FormatedValue(shown_);
  lineEdit()->setText(hasFocus() ? text : Fitting(text));
  ShowFault(FaultOf(shown_));
}

/// Digits that are cut off would make another number of a value: it ends in dots.
QString TValueEdit::Fitting(const QString& text) const {
  constexpr int kInner = 6;  // what the field keeps free of text
  const QMargins margins = lineEdit()->textMargins();
  const int room = lineEdit()->width() - margins.left() - margins.right() - kInner;
  return isVisible() ? fontMetrics().elidedText(text, Qt::ElideRight, room) : text;
}

void TValueEdit::ShowFault(const QString& fault) {
  if (fault == fault_) return;
  fault_ = fault;
  QPalette colors;
  if (!fault.isEmpty()) {
    const bool dark = palette().base().color().lightness() < 128;
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
      colors.setColor(group, QPalette::Base, dark ? QColor(110, 30, 30) : QColor(255, 214, 214));
      colors.setColor(group, QPalette::Text, dark ? QColor(255, 235, 235) : QColor(110, 0, 0));
    }
  }
  lineEdit()->setPalette(colors);
  lineEdit()->setToolTip(PlainTip(fault));
  setAccessibleDescription(fault);
}

/// Takes what was typed. False, and everything stays, if it is no value that may be entered.
bool TValueEdit::Commit() {
  if (!IsTyping()) return true;
  const std::optional<double> value = Parse(lineEdit()->text());
  if (!value || !FaultOf(value).isEmpty()) return false;
  SetValue(*value);
  return true;
}

/// Values can come faster than texts can be read: the last one is shown when all have come.
void TValueEdit::InputChanged() {
  shown_ = input_.GetValue();
  if (!IsTyping() && !std::exchange(showsLater_, true)) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          if (!IsTyping()) ShowValue();
          showsLater_ = false;
        },
        Qt::QueuedConnection);
  }
  if (!std::isfinite(shown_) || shown_ == value_) return;
  value_ = shown_;
  emit OnChange(this);
}

void TValueEdit::LookChanged() {
  const int gap = units_.isEmpty() ? 0 : unitsLabel_->sizeHint().width() + 2 * kGap;
  lineEdit()->setTextMargins(0, 0, gap, 0);
  updateGeometry();
  if (IsTyping()) {
    ShowFault(FaultOf(Parse(lineEdit()->text())));
  } else {
    ShowValue();
  }
}

QValidator::State TValueEdit::validate(QString& text, int& position) const {
  Q_UNUSED(position)
  if (!IsTyping()) return QValidator::Acceptable;
  return FaultOf(Parse(text)).isEmpty() ? QValidator::Acceptable : QValidator::Intermediate;
}

// Steps, keys and focus

QAbstractSpinBox::StepEnabled TValueEdit::stepEnabled() const {
  if (isReadOnly()) return StepNone;
  StepEnabled result = StepNone;
  result.setFlag(StepUpEnabled, !HasLimits() || value_ < max_);
  result.setFlag(StepDownEnabled, !HasLimits() || value_ > min_);
  return result;
}

/// A step starts at what was typed, if that is a value.
void TValueEdit::stepBy(int steps) {
  if (isReadOnly()) return;
  const std::optional<double> typed =
      IsTyping() ? Parse(lineEdit()->text()) : std::optional<double>(value_);
  double value = Rounded(typed.value_or(value_) + steps * step_, step_);
  if (HasLimits()) value = std::clamp(value, min_, max_);
  if (!std::isfinite(value) || !FaultOf(value).isEmpty()) return;
  const QPointer<TValueEdit> alive(this);
  SetValue(value);
  if (alive) lineEdit()->selectAll();
}

void TValueEdit::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && (IsTyping() || !fault_.isEmpty())) {
    ShowValue();
    lineEdit()->selectAll();
    return;
  }
  if (event->key() == Qt::Key_Enter || event->key() == Qt::Key_Return) {
    const QPointer<TValueEdit> alive(this);
    if (!Commit() || !alive) return;
  }
  QAbstractSpinBox::keyPressEvent(event);
}

void TValueEdit::focusInEvent(QFocusEvent* event) {
  QAbstractSpinBox::focusInEvent(event);
  if (IsTyping()) return;
  ShowValue();
  if (event->reason() != Qt::MouseFocusReason) lineEdit()->selectAll();
}

/// What cannot be taken is forgotten. A menu of the field itself is no leaving.
void TValueEdit::focusOutEvent(QFocusEvent* event) {
  QAbstractSpinBox::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason) return;
  const QPointer<TValueEdit> alive(this);
  Commit();
  if (alive) ShowValue();
}

void TValueEdit::changeEvent(QEvent* event) {
  QAbstractSpinBox::changeEvent(event);
  if (event->type() == QEvent::FontChange) LookChanged();
}

// Size

void TValueEdit::resizeEvent(QResizeEvent* event) {
  QAbstractSpinBox::resizeEvent(event);
  if (!IsTyping()) ShowValue();
}

void TValueEdit::showEvent(QShowEvent* event) {
  QAbstractSpinBox::showEvent(event);
  if (!IsTyping()) ShowValue();
}

int TValueEdit::WidthFor(int digits) const {
  QStyleOptionSpinBox option;
  initStyleOption(&option);
  const int text = fontMetrics().horizontalAdvance(QString(digits, QLatin1Char('0')));
  const QSize content(text + lineEdit()->textMargins().right() + 2 * kGap,
                      lineEdit()->sizeHint().height());
  return style()->sizeFromContents(QStyle::CT_SpinBox, &option, content, this).width();
}

QSize TValueEdit::sizeHint() const {
  constexpr int kDigits = 10;
  return {WidthFor(kDigits), QAbstractSpinBox::sizeHint().height()};
}

QSize TValueEdit::minimumSizeHint() const {
  constexpr int kDigits = 3;
  return {WidthFor(kDigits), QAbstractSpinBox::minimumSizeHint().height()};
}
