#include "components/graphing/Datetimeformat.h"

#include <algorithm>

namespace {

bool StartsWith(QStringView text, QStringView beginning) {
  return text.startsWith(beginning, Qt::CaseInsensitive);
}

/// True if a form of am/pm stands in `rest`, outside quotes and before another hour.
bool NamesHalfOfDay(QStringView rest) {
  QChar quote;
  for (qsizetype at = 0; at < rest.size(); ++at) {
    const QChar c = rest[at];
    if (!quote.isNull()) {
      if (c == quote) quote = QChar();
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c.toLower() == 'h') {
      return false;
    } else if (c.toLower() == 'a') {
      const QStringView form = rest.mid(at);
      if (StartsWith(form, u"am/pm") || StartsWith(form, u"a/p") || StartsWith(form, u"ampm")) {
        return true;
      }
    }
  }
  return false;
}

/// Writes one date-time after patterns, which may name other patterns.
class TDateTimeWriter {
 public:
  TDateTimeWriter(const TDateTime::TClock& clock, const TFormatSettings& settings)
      : date_(clock.date), time_(clock.time), settings_(settings) {}

  QString Write(QStringView pattern) {
    Pattern(pattern.isEmpty() ? QStringView(u"c") : pattern);
    return text_;
  }

 private:
  void Pattern(QStringView pattern) {
    QChar previous;  // the specifier before this one, in lower case
    while (!pattern.isEmpty()) {
      const QChar c = pattern.front();
      const QChar letter = c.toLower();
      if (letter < 'a' || letter > 'z') {
        pattern = pattern.mid(Mark(pattern));
        continue;
      }
      if (letter == 'a') {
        pattern = pattern.mid(HalfOfDay(pattern));
      } else if (IsSpecifier(letter)) {
        const qsizetype run = RunOf(letter, pattern);
        const bool minutes = letter == 'm' && previous == 'h' && run <= 2;
        Specifier(minutes ? QChar('n') : letter, static_cast<int>(run), pattern.mid(run));
        pattern = pattern.mid(run);
      } else {
        text_ += c;
        pattern = pattern.mid(1);
      }
      previous = letter;
    }
  }

  /// How often `letter` stands at the beginning, in either case.
  static qsizetype RunOf(QChar letter, QStringView pattern) {
    return std::find_if(pattern.begin(), pattern.end(),
                        [letter](QChar other) { return other.toLower() != letter; }) -
           pattern.begin();
  }

  static bool IsSpecifier(QChar letter) { return QStringView(u"cdeghmnstyz").contains(letter); }

  /// A character that is no letter; returns how many it takes.
  qsizetype Mark(QStringView pattern) {
    const QChar c = pattern.front();
    if (c == '\'' || c == '"') {
      const qsizetype end = pattern.indexOf(c, 1);
      text_ += pattern.mid(1, end < 0 ? -1 : end - 1);
      return end < 0 ? pattern.size() : end + 1;
    }
    if (c == '/') {
      text_ += settings_.dateSeparator;
    } else if (c == ':') {
      text_ += settings_.timeSeparator;
    } else {
      text_ += c;
    }
    return 1;
  }

  /// am/pm in one of its forms, or the letter a; returns how many characters it takes.
  qsizetype HalfOfDay(QStringView pattern) {
    const bool afternoon = time_.hour() >= 12;
    if (StartsWith(pattern, u"am/pm")) {
      text_ += pattern.mid(afternoon ? 3 : 0, 2);
      return 5;
    }
    if (StartsWith(pattern, u"a/p")) {
      text_ += pattern.mid(afternoon ? 2 : 0, 1);
      return 3;
    }
    if (StartsWith(pattern, u"ampm")) {
      text_ += afternoon ? settings_.pm : settings_.am;
      return 4;
    }
    text_ += pattern.front();
    return 1;
  }

  void Specifier(QChar letter, int run, QStringView rest) {
    switch (letter.unicode()) {
      case 'c':
        return DateAndTime();
      case 'd':
        return Day(run);
      case 'm':
        return Month(run);
      case 'y':
        return run <= 2 ? Number(date_.year() % 100, 2) : Number(date_.year(), 4);
      case 'h':
        return Number(NamesHalfOfDay(rest) ? Hour12() : time_.hour(), std::min(run, 2));
      case 'n':
        return Number(time_.minute(), std::min(run, 2));
      case 's':
        return Number(time_.second(), std::min(run, 2));
      case 'z':
        return Number(time_.msec(), std::min(run, 3));
      case 't':
        return Pattern(run == 1 ? settings_.shortTime : settings_.longTime);
      default:
        return;  // the eras
    }
  }

  void DateAndTime() {
    Pattern(settings_.shortDate);
    if (time_.msecsSinceStartOfDay() == 0) return;
    text_ += ' ';
    Pattern(settings_.longTime);
  }

  void Day(int run) {
    const auto day = static_cast<std::size_t>(date_.dayOfWeek() - 1);
    switch (run) {
      case 1:
      case 2:
        return Number(date_.day(), run);
      case 3:
        text_ += settings_.shortDays[day];
        return;
      case 4:
        text_ += settings_.longDays[day];
        return;
      case 5:
        return Pattern(settings_.shortDate);
      default:
        return Pattern(settings_.longDate);
    }
  }

  void Month(int run) {
    const auto month = static_cast<std::size_t>(date_.month() - 1);
    if (run <= 2) return Number(date_.month(), run);
    text_ += run == 3 ? settings_.shortMonths[month] : settings_.longMonths[month];
  }

  int Hour12() const {
    const int hour = time_.hour() % 12;
    return hour == 0 ? 12 : hour;
  }

  void Number(int value, int digits) {
    const QString number = QString::number(value);
    for (qsizetype zero = number.size(); zero < digits; ++zero) text_ += '0';
    text_ += number;
  }

  const QDate date_;
  const QTime time_;
  const TFormatSettings& settings_;
  QString text_;
};

}  // namespace

std::optional<QString> FormatDateTime(QStringView pattern, TDateTime time,
                                      const TFormatSettings& settings) {
  const TDateTime::TClock clock = time.Clock();
  if (!clock.date.isValid()) return {};
  return TDateTimeWriter(clock, settings).Write(pattern);
}

QString TypedTime(TDateTime time) {
  const TDateTime::TClock clock = time.Clock();
  if (!clock.date.isValid()) return {};
  return clock.date.toString(Qt::ISODate) + ' ' + clock.time.toString(Qt::ISODateWithMs);
}

std::optional<TDateTime> ScanTypedTime(const QString& text) {
  const QDateTime time = QDateTime::fromString(text.trimmed(), Qt::ISODateWithMs);
  if (!time.isValid()) return {};
  return TDateTime::FromQDateTime(time);
}
