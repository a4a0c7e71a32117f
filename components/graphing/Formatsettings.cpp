#include "components/graphing/Formatsettings.h"

#include <optional>

namespace {

std::optional<TFormatSettings> settings;

/// Translates a pattern of QLocale into the language of FormatDateTime. The two agree in d, y, s
/// and z; there, minutes are n and any letter for hours takes the clock from AM/PM. A time zone is
/// dropped with the blanks and brackets around it.
class TPatternTranslator {
 public:
  static QString Translate(const QString& pattern) {
    TPatternTranslator translator(pattern);
    while (translator.at_ < pattern.size()) translator.Step();
    translator.FlushText();
    return translator.result_.trimmed();
  }

 private:
  explicit TPatternTranslator(const QString& pattern)
      : pattern_(pattern), isTime_(pattern.contains('h', Qt::CaseInsensitive)) {}

  void Step() {
    const QChar letter = pattern_[at_];
    if (letter == '\'') {
      Quoted();
    } else if (letter == 't') {
      DropZone();
    } else if (letter == 'a' || letter == 'A') {
      const bool pair = pattern_.mid(at_ + 1, 1).compare("p", Qt::CaseInsensitive) == 0;
      Specifier(QStringLiteral("ampm"), pair ? 2 : 1);
    } else if (QStringView(u"dMyhHmsz").contains(letter)) {
      const QChar mapped = letter == 'm' && isTime_ ? QChar('n') : letter.toLower();
      Specifier(mapped, 1);
    } else {
      text_ += letter;
      ++at_;
    }
  }

  /// 'text', or '' for a quote, in which Qt's quotes are given up for ours.
  void Quoted() {
    if (pattern_.mid(at_ + 1, 1) == "'") {
      text_ += '\'';
      at_ += 2;
      return;
    }
    const qsizetype end = pattern_.indexOf('\'', at_ + 1);
    text_ += pattern_.mid(at_ + 1, end < 0 ? -1 : end - at_ - 1);
    at_ = end < 0 ? pattern_.size() : end + 1;
  }

  void DropZone() {
    while (at_ < pattern_.size() && pattern_[at_] == 't') ++at_;
    if (text_.endsWith('(') && at_ < pattern_.size() && pattern_[at_] == ')') {
      text_.chop(1);
      ++at_;
    }
    while (text_.endsWith(' ')) text_.chop(1);
  }

  void Specifier(const QString& mapped, qsizetype length) {
    FlushText();
    result_ += mapped;
    at_ += length;
  }

  void FlushText() {
    if (text_.trimmed().isEmpty()) {
      result_ += text_;
    } else if (text_.contains('"')) {
      result_ += '\'' + text_.remove('\'') + '\'';
    } else {
      result_ += '"' + text_ + '"';
    }
    text_.clear();
  }

  const QString pattern_;
  const bool isTime_;
  qsizetype at_ = 0;
  QString text_;  ///< literal characters not yet in the result
  QString result_;
};

/// The mark between the numbers of a pattern.
QString SeparatorOf(const QString& pattern, QChar usual) {
  for (const QChar mark : pattern) {
    if (QStringView(u"/.-:").contains(mark)) return mark;
  }
  return usual;
}

/// What the locale puts around an amount, seen from how it writes one of a single digit.
void SplitCurrency(const QLocale& locale, TFormatSettings& result) {
  const QString one = locale.toString(1);
  for (const std::size_t sign : {0u, 1u}) {
    const QString amount =
        locale.toCurrencyString(sign == 0 ? 1.0 : -1.0, result.currencySymbol, 0);
    const qsizetype at = amount.indexOf(one);
    if (at < 0) continue;
    result.currencyPrefix[sign] = amount.left(at);
    result.currencySuffix[sign] = amount.mid(at + one.size());
  }
}

}  // namespace

TFormatSettings TFormatSettings::Of(const QLocale& locale) {
  TFormatSettings result;
  result.decimalSeparator = locale.decimalPoint();
  result.thousandSeparator = locale.groupSeparator();
  result.currencySymbol = locale.currencySymbol();
  SplitCurrency(locale, result);

  const QString date = locale.dateFormat(QLocale::ShortFormat);
  const QString time = locale.timeFormat(QLocale::ShortFormat);
  result.dateSeparator = SeparatorOf(date, '/');
  result.timeSeparator = SeparatorOf(time, ':');
  result.shortDate = TPatternTranslator::Translate(date);
  result.longDate = TPatternTranslator::Translate(locale.dateFormat(QLocale::LongFormat));
  result.shortTime = TPatternTranslator::Translate(time);
  result.longTime = TPatternTranslator::Translate(locale.timeFormat(QLocale::LongFormat));
  result.am = locale.amText();
  result.pm = locale.pmText();
  for (std::size_t day = 0; day < 7; ++day) {
    result.shortDays[day] = locale.dayName(static_cast<int>(day) + 1, QLocale::ShortFormat);
    result.longDays[day] = locale.dayName(static_cast<int>(day) + 1, QLocale::LongFormat);
  }
  for (std::size_t month = 0; month < 12; ++month) {
    result.shortMonths[month] = locale.monthName(static_cast<int>(month) + 1, QLocale::ShortFormat);
    result.longMonths[month] = locale.monthName(static_cast<int>(month) + 1, QLocale::LongFormat);
  }
  return result;
}

const TFormatSettings& FormatSettings() {
  if (!settings) settings = TFormatSettings::Of(QLocale::system());
  return *settings;
}

void SetFormatLocale(const QLocale& locale) { settings = TFormatSettings::Of(locale); }
