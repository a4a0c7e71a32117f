#pragma once

#include <QLocale>
#include <QString>
#include <array>

/// How a locale writes numbers, money, dates and times. The patterns are in the language of
/// FormatDateTime.
struct TFormatSettings {
  QString decimalSeparator;
  QString thousandSeparator;
  QString currencySymbol;
  /// What stands before and behind an amount of money: [0] of a positive, [1] of a negative one.
  std::array<QString, 2> currencyPrefix;
  std::array<QString, 2> currencySuffix;

  QString dateSeparator;
  QString timeSeparator;
  QString shortDate;
  QString longDate;
  QString shortTime;  ///< hours and minutes
  QString longTime;   ///< with seconds, without a time zone
  QString am;
  QString pm;
  std::array<QString, 7> shortDays;  ///< Monday first
  std::array<QString, 7> longDays;
  std::array<QString, 12> shortMonths;
  std::array<QString, 12> longMonths;

  static TFormatSettings Of(const QLocale& locale);
};

/// Those of the system's locale, read on first use. GUI thread only.
const TFormatSettings& FormatSettings();
/// Takes a locale's settings from now on; QLocale::system() reads the system's anew.
void SetFormatLocale(const QLocale& locale);
