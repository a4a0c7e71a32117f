#pragma once

#include <QString>
#include <optional>

#include "components/graphing/Formatsettings.h"
#include "model/Datetime.h"

/// A date-time as text after a pattern. Nothing for a value that is no valid date-time.
///
/// | in the pattern     | gives                                                                   |
/// |--------------------|-------------------------------------------------------------------------|
/// | c, empty pattern   | short date and long time; at midnight the date alone                    |
/// | d dd               | day 1 to 31, 01 to 31                                                   |
/// | ddd dddd           | short and long name of the day                                          |
/// | ddddd dddddd       | the locale's short and long date                                        |
/// | m mm               | month 1 to 12, 01 to 12; right after h or hh the minutes                |
/// | mmm mmmm           | short and long name of the month                                        |
/// | yy yyyy            | year of two and of four digits                                          |
/// | h hh               | hour 0 to 23, 00 to 23; 1 to 12 if a form of am/pm follows before       |
/// |                    | the next hour                                                           |
/// | n nn, s ss         | minutes, seconds                                                        |
/// | z zzz              | milliseconds 0 to 999, 000 to 999                                       |
/// | t tt               | the locale's short and long time                                        |
/// | am/pm a/p          | the half that applies, in the letters of the pattern                    |
/// | ampm               | the locale's text for it                                                |
/// | / :                | the locale's separators of dates and times                              |
/// | 'text' "text"      | the text; without a closing quote, to the end                           |
/// | e g                | eras: nothing                                                           |
///
/// Letters may be of either case. Everything else stands for itself.
std::optional<QString> FormatDateTime(QStringView pattern, TDateTime time,
                                      const TFormatSettings& settings = FormatSettings());

/// A date-time as it can be typed, such as "2026-01-31 12:30:00.000". Empty for a value that is no
/// valid date-time.
QString TypedTime(TDateTime time);
/// Reads what TypedTime writes, and shorter forms without milliseconds, seconds or time of day.
std::optional<TDateTime> ScanTypedTime(const QString& text);
