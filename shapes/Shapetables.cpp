#include "shapes/Shapetables.h"

#include <QStringList>

#include "model/Oneline.h"
#include "shapes/Complexity.h"

namespace {

constexpr double kAlike = 0.8;
constexpr int kMostReasons = 20;

/// Its frequency; of a set without one its name, in brackets, which no spreadsheet takes for a
/// formula.
QString NameOf(const TDataNodeList& set) {
  return set.Frequency != 0.0 ? QString::number(set.Frequency, 'g', 10) : OneLine(set.Section);
}

QString Line(const QStringList& cells) { return cells.join('\t') + '\n'; }

QString Matrix(const TMac& mac) {
  QStringList head{QStringLiteral("MAC")};
  for (std::size_t i = 0; i < mac.ColumnCount(); ++i) head << NameOf(mac.Column(i));
  QString text = Line(head);
  for (std::size_t row = 0; row < mac.RowCount(); ++row) {
    QStringList cells{NameOf(mac.Row(row))};
    for (std::size_t column = 0; column < mac.ColumnCount(); ++column) {
      const auto value = mac.Value(row, column);
      cells << (value ? QString::number(*value, 'f', 4) : QStringLiteral("no value"));
    }
    text += Line(cells);
  }
  return text;
}

QString Pairs(const TMac& mac) {
  const auto pairs = mac.PairsAbove(kAlike);
  if (pairs.empty()) return QStringLiteral("\nNo pairs above %1\n").arg(kAlike);
  QString text = QStringLiteral("\nPairs above %1\n").arg(kAlike) +
                 Line({"first", "second", "MAC", "difference in %"});
  for (const auto& pair : pairs) {
    text += Line({NameOf(mac.Row(pair.Row)), NameOf(mac.Column(pair.Column)),
                  QString::number(pair.Value, 'f', 4),
                  pair.Percent ? QString::number(*pair.Percent, 'f', 2) : QString()});
  }
  return text;
}

/// The first few; pairs that mirror each other have one reason.
QString Reasons(const TMac& mac) {
  QString text;
  int count = 0;
  for (std::size_t row = 0; row < mac.RowCount(); ++row) {
    for (std::size_t column = mac.IsOfOneFile() ? row : 0; column < mac.ColumnCount(); ++column) {
      if (mac.Value(row, column) || ++count > kMostReasons) continue;
      text += Line({NameOf(mac.Row(row)), NameOf(mac.Column(column)), mac.WhyNone(row, column)});
    }
  }
  if (count == 0) return {};
  if (count > kMostReasons) text += QStringLiteral("and %1 more\n").arg(count - kMostReasons);
  return QStringLiteral("\nNo value\n") + Line({"first", "second", "why"}) + text;
}

}  // namespace

QString MacTable(const TMac& mac) { return Matrix(mac) + Pairs(mac) + Reasons(mac); }

QString ComplexityTable(const TNodesSet& sets) {
  QString text = Line({"set", "MPC", "MPD in degrees"});
  const TComponents components(sets);
  for (std::size_t set = 0; set < components.SetCount(); ++set) {
    const TPhasors shape = components.Read(set);
    const QString name = NameOf(components.Set(set));
    if (const auto complexity = ComplexityOf(shape)) {
      text += Line({name, QString::number(complexity->Mpc, 'f', 4),
                    QString::number(complexity->MpdDeg, 'f', 2)});
    } else {
      text += Line({name, QStringLiteral("no value"), WhyNoShape(SumOfSquares(shape))});
    }
  }
  return text;
}
