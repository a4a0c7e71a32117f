#pragma once

#include <QCommandLineParser>
#include <cstdio>
#include <cstdlib>

/// The number that an option of a program has. Anything but a number from `least` to `most` ends
/// the program with a sentence.
inline double NumberOption(const QCommandLineParser& parser, const QCommandLineOption& option,
                           double least, double most) {
  const QString text = parser.value(option);
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  if (isNumber && value >= least && value <= most) return value;
  const QString sentence = QStringLiteral("--%1 takes a number from %2 to %3, not %4")
                               .arg(option.names().last())
                               .arg(least, 0, 'g', 10)
                               .arg(most, 0, 'g', 10)
                               .arg(text);
  std::fprintf(stderr, "%s\n", qPrintable(sentence));
  std::exit(EXIT_FAILURE);
}
