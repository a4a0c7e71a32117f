#include "components/graphing/Utilclasses.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "components/graphing/Datetimeformat.h"
#include "components/graphing/Formatsettings.h"

namespace {

// Forms create these by name.
const int kRegistered[] = {qRegisterMetaType<TNumberFormat*>(), qRegisterMetaType<TRange*>()};

/// Decimal digits kept of a number: all that a 64-bit real holds, and the most decimals shown.
constexpr int kDigits = 18;

/// A finite number as decimal digits: d.ddd x 10^exponent. Zero has no digits.
class TDecimal {
 public:
  explicit TDecimal(double value) : negative_(value < 0.0) {
    if (value == 0.0) return;
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, std::abs(value),
                                   std::chars_format::scientific, kDigits - 1);
    const char* mark = std::find(text, end.ptr, 'e');
    digits_[0] = text[0];
    std::copy_n(text + 2, kDigits - 1, digits_.begin() + 1);
    length_ = kDigits;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end.ptr, exponent_);
  }

  bool IsNegative() const { return negative_; }
  int Exponent() const { return exponent_; }
  /// Digits that are left.
  int Length() const { return length_; }
  char DigitOf(int power) const {
    const int index = exponent_ - power;
    return index >= 0 && index < length_ ? At(index) : '0';
  }

  /// Keeps the first `length` digits, halves away from zero, and no zeros at the end.
  void Round(int length) {
    if (length < length_) {
      const bool up = length >= 0 && At(length) >= '5';
      length_ = std::max(length, 0);
      if (up) Increment();
    }
    while (length_ > 0 && At(length_ - 1) == '0') --length_;
    if (length_ == 0) *this = TDecimal(0.0);
  }

 private:
  char At(int index) const { return digits_[static_cast<std::size_t>(index)]; }

  void Increment() {
    while (length_ > 0 && At(length_ - 1) == '9') --length_;
    if (length_ > 0) {
      ++digits_[static_cast<std::size_t>(length_ - 1)];
      return;
    }
    digits_[0] = '1';
    length_ = 1;
    ++exponent_;
  }

  bool negative_;
  std::array<char, kDigits> digits_;
  int length_ = 0;
  int exponent_ = 0;
};

/// Writes the digits of a decimal in the ways of the five formats.
class TFloatWriter {
 public:
  TFloatWriter(int precision, int digits) : precision_(precision), digits_(digits) {}

  QString Write(double value, TNumberFormat::TFloatFormat format) const {
    if (std::isnan(value)) return QStringLiteral("NAN");
    if (std::isinf(value)) return value < 0.0 ? QStringLiteral("-INF") : QStringLiteral("INF");
    const TDecimal decimal(value);
    if (format == TNumberFormat::ffExponent) return Exponent(decimal);
    // More places than there are digits would show figures that are not in the number.
    if (format == TNumberFormat::ffGeneral || decimal.Exponent() >= kDigits) {
      return General(decimal);
    }
    return Fixed(decimal, format);
  }

 private:
  static QString Sign(const TDecimal& decimal) { return decimal.IsNegative() ? "-" : ""; }

  /// Digits of the powers of ten `from` down to `to`, with the decimal separator behind `point`.
  QString Digits(const TDecimal& decimal, int from, int to, int point) const {
    QString text;
    for (int power = from; power >= to; --power) {
      text += QLatin1Char(decimal.DigitOf(power));
      if (power == point && power > to) text += settings_.decimalSeparator;
    }
    return text;
  }

  /// Fixed unless the number has more places before the point than Precision or is below 0.00001.
  QString General(TDecimal decimal) const {
    decimal.Round(precision_);
    const int exponent = decimal.Exponent();
    const int last = exponent - decimal.Length() + 1;
    if (exponent >= precision_ || exponent < -5) {
      return Sign(decimal) + Digits(decimal, exponent, last, exponent) + 'E' +
             QString::number(exponent);
    }
    return Sign(decimal) + Digits(decimal, std::max(exponent, 0), std::min(last, 0), 0);
  }

  QString Exponent(TDecimal decimal) const {
    decimal.Round(precision_);
    const int exponent = decimal.Exponent();
    return Sign(decimal) + Digits(decimal, exponent, exponent - precision_ + 1, exponent) +
           (exponent < 0 ? "E-" : "E+") +
           QString::number(std::abs(exponent)).rightJustified(digits_, '0');
  }

  /// `Digits` decimals, in thousands and with the currency as the format wants it.
  QString Fixed(TDecimal decimal, TNumberFormat::TFloatFormat format) const {
    decimal.Round(decimal.Exponent() + 1 + digits_);
    const int top = std::max(decimal.Exponent(), 0);
    QString text = Digits(decimal, top, -digits_, 0);
    if (format == TNumberFormat::ffFixed) return Sign(decimal) + text;
    for (int place = 3; place <= top; place += 3) {
      text.insert(top + 1 - place, settings_.thousandSeparator);
    }
    if (format == TNumberFormat::ffNumber) return Sign(decimal) + text;
    const auto sign = static_cast<std::size_t>(decimal.IsNegative());
    return settings_.currencyPrefix[sign] + text + settings_.currencySuffix[sign];
  }

  const int precision_;
  const int digits_;
  const TFormatSettings& settings_ = FormatSettings();
};

}  // namespace

// TNumberFormat

void TNumberFormat::SetDigits(int digits) {
  if (digits >= 0 && digits <= 18) Store(digits_, digits);
}

void TNumberFormat::SetPrecision(int precision) {
  if (precision >= 1 && precision <= 15) Store(precision_, precision);
}

void TNumberFormat::SetFormat(TFloatFormat format) {
  if (format >= ffGeneral && format <= ffCurrency) Store(format_, format);
}

void TNumberFormat::SetIsTimeFormat(bool isTime) { Store(isTimeFormat_, isTime); }

void TNumberFormat::SetTimeFormatStr(const QString& pattern) { Store(timeFormatStr_, pattern); }

QString TNumberFormat::FormatedValue(double value) const {
  if (isTimeFormat_) {
    const bool milliseconds = timeFormatStr_ == "i";
    return FormatDateTime(milliseconds ? QStringLiteral("z") : timeFormatStr_, TDateTime(value))
        .value_or(QStringLiteral("Error"));
  }
  QString text = TFloatWriter(precision_, digits_).Write(value, format_);
  const QString& separator = FormatSettings().decimalSeparator;
  const qsizetype at = separator == "." ? -1 : text.indexOf(separator);
  return at < 0 ? text : text.replace(at, separator.size(), ".");
}

QString TNumberFormat::GetFormatStr() const {
  const QString pattern = "%0." + QString::number(digits_);
  if (format_ == ffExponent) return pattern + 'E';
  return pattern + "lf" + (format_ == ffCurrency ? FormatSettings().currencySymbol : QString());
}

void TNumberFormat::AssignTo(TPersistent* destination) const {
  if (!qobject_cast<TNumberFormat*>(destination)) return;
  const QPointer<TNumberFormat> self(const_cast<TNumberFormat*>(this));
  TPersistent::AssignTo(destination);
  // The source reports too, although it did not change: its owner is notified of every copy.
  if (self) emit self->OnChange(self);
}

bool TNumberFormat::SameAs(const TPersistent* other) const {
  const auto* format = qobject_cast<const TNumberFormat*>(other);
  return format && format->digits_ == digits_ && format->format_ == format_ &&
         format->precision_ == precision_;
}

// TRange

void TRange::SetMin(double value) {
  if (value == min_ || std::isnan(value)) return;
  min_ = value;
  if (min_ > max_) std::swap(min_, max_);
  emit OnChange(this);
}

void TRange::SetMax(double value) {
  if (value == max_ || std::isnan(value)) return;
  max_ = value;
  if (max_ < min_) std::swap(min_, max_);
  emit OnChange(this);
}

void TRange::SetAutoMin(bool on) { Store(autoMin_, on); }

void TRange::SetAutoMax(bool on) { Store(autoMax_, on); }

void TRange::SetReset(bool reset) {
  if (reset == reset_) return;
  reset_ = reset;
  if (!reset) return;
  min_ = 0.0;
  max_ = 1.0;
  leastPositive_ = 0.0;
}

void TRange::GetBounds(const TRange* other) {
  if (!other) return;
  AddPositive(other->leastPositive_);
  if (std::exchange(reset_, false)) {
    min_ = other->min_;
    max_ = other->max_;
    return;
  }
  min_ = std::min(min_, other->min_);
  max_ = std::max(max_, other->max_);
}
