#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>

#include "exchange/Assembly.h"

namespace {

QString HowMany(std::size_t count, const char* one, const char* many) {
  return QString::number(count) + ' ' + QLatin1StringView(count == 1 ? one : many);
}

/// Three digits, or all in front of the decimal point.
QString Rounded(double value) {
  constexpr int kDigits = 3;
  const double size = std::abs(value);
  if (size == 0.0) return QStringLiteral("0");
  const int inFront = static_cast<int>(std::floor(std::log10(size))) + 1;
  if (inFront > 9 || inFront < -4) return QString::number(value, 'g', kDigits);
  QString text = QString::number(value, 'f', std::max(0, kDigits - inFront));
  if (!text.contains('.')) return text;
  while (text.endsWith('0')) text.chop(1);
  return text.endsWith('.') ? text.chopped(1) : text;
}

/// The kinds of data sets in the order in which they are counted.
struct TSort {
  std::array<TShapeKind, 2> kinds;
  const char* one;
  const char* many;
  const char* unit;  ///< empty where no number tells the sets apart
};

constexpr TSort kSorts[] = {
    {{TShapeKind::NormalMode, TShapeKind::NormalMode}, "normal mode", "normal modes", "Hz"},
    {{TShapeKind::ComplexMode, TShapeKind::ComplexModeSecondOrder},
     "complex mode",
     "complex modes",
     "Hz"},
    {{TShapeKind::Response, TShapeKind::Response},
     "frequency response",
     "frequency responses",
     "Hz"},
    {{TShapeKind::Static, TShapeKind::Static}, "static set", "static sets", ""},
    {{TShapeKind::Buckling, TShapeKind::Buckling}, "buckling mode", "buckling modes", ""},
    {{TShapeKind::Transient, TShapeKind::Transient}, "moment", "moments", "s"},
    {{TShapeKind::Unknown, TShapeKind::Unknown}, "data set", "data sets", "Hz"},
};

void AddSets(QStringList& parts, const TMeasuredData& data, const TSort& sort) {
  std::vector<double> values;
  for (const TDataNodeList* list : data.All) {
    if (std::ranges::find(sort.kinds, list->Info.Kind) == sort.kinds.end()) continue;
    const bool isMoment = list->Info.Kind == TShapeKind::Transient;
    values.push_back(isMoment ? list->Info.Time : list->Frequency);
  }
  if (values.empty()) return;
  QString part = HowMany(values.size(), sort.one, sort.many);
  const QLatin1StringView unit(sort.unit);
  const auto [low, high] = std::ranges::minmax(values);
  const QString from = Rounded(low);
  const QString to = Rounded(high);
  if (!unit.isEmpty() && from == to) part += QStringLiteral(" at ") + from + ' ' + unit;
  if (!unit.isEmpty() && from != to) {
    part += QStringLiteral(" from %1 to %2 ").arg(from, to) + unit;
  }
  parts << part;
}

}  // namespace

QString Summary(const TModel& model, const TMeasuredData& data, const TJob& job) {
  QStringList parts;
  const auto add = [&parts](std::size_t count, const char* one, const char* many) {
    if (count > 0) parts << HowMany(count, one, many);
  };
  std::array<std::size_t, 4> elements = {};
  for (const TElement* element : model.Elements) {
    ++elements[element->Type >= 1 && element->Type <= 3 ? element->Type : 0];
  }
  add(model.Nodes.Count(), "node", "nodes");
  add(elements[TElement::kBar], "bar", "bars");
  add(elements[TElement::kRoll], "roll", "rolls");
  add(elements[TElement::kFace], "face", "faces");
  add(elements[0], "point", "points");
  for (const TSort& sort : kSorts) AddSets(parts, data, sort);
  add(job.Functions.size(), "function", "functions");
  return parts.join(QStringLiteral(", "));
}
