#include "components/panels/Formchecks.h"

#include <QHash>
#include <QMetaProperty>
#include <QRegularExpression>
#include <algorithm>

#include "components/panels/Formtexts.h"

namespace {

using TProperty = TFormFile::TProperty;

constexpr qint64 kMaxFontSize = 500;
constexpr double kMaxWidgetArea = 75e6;  ///< pixels: some are drawn in a picture of their own
constexpr double kMaxDecimals = 30;
constexpr qsizetype kMaxWord = 1000;        ///< characters of a text that is one line
constexpr qsizetype kMaxText = 16384;       ///< of any other
constexpr qint64 kMaxLongTexts = 1 << 18;   ///< of all long ones together
constexpr qint64 kMaxRichTexts = 1 << 16;   ///< of all rich ones together
constexpr qint64 kMaxStyleSteps = 1 << 20;  ///< selectors of style sheets for each widget
constexpr qint64 kMaxNames = 1000;          ///< of other widgets: each is looked for among all
constexpr qint64 kMaxRichCells = 10000;     ///< of all tables in rich texts together

template <std::size_t kCount>
bool IsOneOf(const QString& text, const char* const (&known)[kCount]) {
  return std::ranges::any_of(known, [&](const char* one) { return text == QLatin1String(one); });
}

const QString kTooLarge = QStringLiteral("it is too large for any screen");

/// Names under which the toolkit opens files or other programs, and its own business.
bool ReachesOut(const TProperty& property) {
  static const char* const kNames[] = {"source",         "searchPaths", "openExternalLinks",
                                       "windowModality", "modal",       "openLinks",
                                       "windowFilePath"};
  const QString& name = property.Name;
  return IsOneOf(name, kNames) || name.startsWith(QLatin1String("_q_")) ||
         name.startsWith(QLatin1String("qt_"));
}

bool IsKnownKind(const QString& kind) {
  static const char* const kKinds[] = {
      "bool",   "char",    "color",      "cstring",   "cursor", "cursorshape", "enum",
      "font",   "iconset", "pixmap",     "palette",   "point",  "rect",        "set",
      "locale", "string",  "sizepolicy", "size",      "number", "float",       "double",
      "date",   "time",    "datetime",   "pointf",    "rectf",  "sizef",       "longlong",
      "uint",   "brush",   "ulonglong",  "stringlist"};
  return IsOneOf(kind, kKinds);
}

/// Numbers that are no pixels.
bool IsAnyNumber(const QString& name) {
  static const char* const kNames[] = {
      "value",           "minimum",       "maximum",         "singleStep",         "pageStep",
      "sliderPosition",  "intValue",      "maxLength",       "maximumBlockCount",  "maxCount",
      "maxVisibleItems", "tickInterval",  "autoRepeatDelay", "autoRepeatInterval", "autoExclusive",
      "toolTipDuration", "cursorPosition"};
  return IsOneOf(name, kNames);
}

bool IsLongText(const QString& name) {
  static const char* const kNames[] = {"text",    "plainText", "html",      "markdown",
                                       "toolTip", "whatsThis", "styleSheet"};
  return IsOneOf(name, kNames);
}

double NumberOf(const QString& text) {
  bool isNumber = false;
  const double number = text.trimmed().toDouble(&isNumber);
  return isNumber ? std::abs(number) : 0.0;
}

double PartNumber(const TProperty& property, const char* name) {
  double largest = 0.0;
  for (const TFormFile::TPart& part : property.Parts) {
    if (part.Name == QLatin1String(name)) largest = std::max(largest, NumberOf(part.Text));
  }
  return largest;
}

}  // namespace

TFormChecks::TVerdict TFormChecks::Check(const QMetaObject* meta, const TProperty& property,
                                         const QString& textProperty) {
  QString why = WrongKind(meta, property);
  if (why.isEmpty()) why = WrongSize(meta, property);
  if (!why.isEmpty()) return {why, {}};
  const QString& kind = property.Value.Kind;
  if (kind == QLatin1String("iconset") || kind == QLatin1String("pixmap")) {
    return CheckIcon(property);
  }
  return CheckText(property, textProperty);
}

QString TFormChecks::WrongKind(const QMetaObject* meta, const TProperty& property) const {
  const bool isComponent = meta && meta->className()[0] == 'T';
  // A component shows texts of devices and servers.
  if (ReachesOut(property) || (isComponent && property.Name == QLatin1String("textFormat"))) {
    return QStringLiteral("a form may not set it");
  }
  const QString& kind = property.Value.Kind;
  if (property.ValueCount != 1) {
    return property.ValueCount == 0 ? QStringLiteral("it has no value")
                                    : QStringLiteral("it has more than one value");
  }
  const bool hasTexture = std::ranges::any_of(property.Parts, [](const TFormFile::TPart& part) {
    return part.Name == QLatin1String("texture");
  });
  if (!IsKnownKind(kind) || hasTexture) {
    return QStringLiteral("a form may not set a %1").arg(hasTexture ? "texture" : kind);
  }
  const int index = meta ? meta->indexOfProperty(property.Name.toLatin1().constData()) : -1;
  if (index < 0) return {};
  const QMetaProperty published = meta->property(index);
  const int type = published.typeId();
  if ((type == QMetaType::QRect && kind != QLatin1String("rect")) ||
      (type == QMetaType::QSize && kind != QLatin1String("size"))) {
    return QStringLiteral("a %1 is not a %2").arg(kind, QLatin1String(published.typeName()));
  }
  const bool isPlain = published.isEnumType() || type == QMetaType::Bool ||
                       type == QMetaType::Int || type == QMetaType::Double;
  QString reason;
  if (isPlain) (void)ReadFormValue({property.Name, nullptr, published}, property.Value, &reason);
  return reason;
}

QString TFormChecks::WrongSize(const QMetaObject* meta, const TProperty& property) {
  const QString& kind = property.Value.Kind;
  if (kind == QLatin1String("font")) {
    const double size =
        std::max(PartNumber(property, "pointsize"), PartNumber(property, "pixelsize"));
    return size > kMaxFontSize ? kTooLarge : QString();
  }
  if (kind == QLatin1String("rect") || kind == QLatin1String("size") ||
      kind == QLatin1String("point") || kind == QLatin1String("rectf") ||
      kind == QLatin1String("sizef") || kind == QLatin1String("pointf")) {
    if (property.Name == QLatin1String("maximumSize")) return {};
    const double width = PartNumber(property, "width");
    const double height = PartNumber(property, "height");
    const double largest =
        std::max({PartNumber(property, "x"), PartNumber(property, "y"), width, height});
    if (largest > TFormFile::kMaxPixels || width * height > kMaxWidgetArea) return kTooLarge;
    // A component draws into a picture of its own.
    const int copies = meta && meta->className()[0] == 'T' ? 4 : 1;
    area_ += copies * static_cast<qint64>(width * height);
    return area_ > TFormFile::kMaxArea ? kTooLarge : QString();
  }
  const bool isNumber = kind == QLatin1String("number") || kind == QLatin1String("double") ||
                        kind == QLatin1String("float") || kind == QLatin1String("longlong") ||
                        kind == QLatin1String("uint") || kind == QLatin1String("ulonglong");
  if (!isNumber || IsAnyNumber(property.Name)) return {};
  const bool isDecimals = property.Name == QLatin1String("decimals");
  const double most = isDecimals ? kMaxDecimals : TFormFile::kMaxPixels;
  return NumberOf(property.Value.Text) <= most ? QString() : kTooLarge;
}

QString TFormChecks::Picture(const QString& name, QString* why) {
  return pictures_.Take(name.trimmed(), why);
}

/// Of an icon without a file the toolkit's designer names the folder.
TFormChecks::TVerdict TFormChecks::CheckIcon(const TProperty& property) {
  static const QRegularExpression plain("^[A-Za-z0-9_-]*$");
  if (!plain.match(property.Theme).hasMatch())
    return {QStringLiteral("no theme has such a name"), {}};
  QString why;
  const auto take = [&](const QString& name) {
    const QString trimmed = name.trimmed();
    return trimmed.isEmpty() || trimmed == QLatin1String(".") ? QString() : Picture(trimmed, &why);
  };
  const QString text = take(property.Value.Text);
  std::vector<TFormFile::TPart> parts;
  for (const TFormFile::TPart& part : property.Parts) {
    const QString name = take(part.Text);
    if (!name.isEmpty()) parts.push_back({part.Name, name});
  }
  if (!why.isEmpty()) return {why, {}};
  return {{}, TFormFile::ElementWith(property, text, parts)};
}

TFormChecks::TVerdict TFormChecks::CheckText(const TProperty& property,
                                             const QString& textProperty) {
  const bool isMarked = property.Name == QLatin1String("text") && !textProperty.isEmpty();
  const QString& name = isMarked ? textProperty : property.Name;
  qsizetype size = property.Value.Text.size();
  for (const TFormFile::TPart& part : property.Parts) size = std::max(size, part.Text.size());
  for (const QString& item : property.Value.Items) size = std::max(size, item.size());
  if (size > (IsLongText(name) ? kMaxText : kMaxWord)) {
    return {QStringLiteral("%1 characters are too many").arg(size), {}};
  }
  constexpr qsizetype kShort = 100;
  if (size > kShort) longTexts_ += size;
  if (longTexts_ > kMaxLongTexts) {
    return {QStringLiteral("the texts of the form are too long together"), {}};
  }
  if (property.Value.Kind == QLatin1String("cstring") && ++names_ > kMaxNames) {
    return {QStringLiteral("too many widgets name another one"), {}};
  }
  if (name == QLatin1String("styleSheet")) return CheckStyleSheet(property);
  if (IsRichText(name, property.Value.Text)) return CheckRichText(property, name);
  const auto isRich = [&](const QString& text) { return IsRichText(name, text); };
  if (std::ranges::any_of(property.Value.Items, isRich)) {
    return {QStringLiteral("a text of a list may not be a rich one"), {}};
  }
  return {};
}

TFormChecks::TVerdict TFormChecks::CheckRichText(const TProperty& property, const QString& name) {
  const QString& text = property.Value.Text;
  textsPicked_ += text.size();
  if (textsPicked_ > kMaxRichTexts) {
    return {QStringLiteral("the rich texts of the form are too long together"), {}};
  }
  const TRichText read = ReadRichText(name, text);
  cells_ += read.Cells;
  if (!read.Why.isEmpty()) return {read.Why, {}};
  if (cells_ > kMaxRichCells) return {QStringLiteral("it has too many tables or cells"), {}};
  QString why;
  QHash<QString, QString> names;
  bool isSame = true;
  for (const QString& picture : read.Pictures) {
    const QString copy = Picture(picture, &why);
    if (!why.isEmpty()) return {why, {}};
    isSame = isSame && copy == picture;
    names.insert(picture, copy);
  }
  if (isSame) return {};
  return {{}, TFormFile::ElementWith(property, WithPictures(name, text, names))};
}

TFormChecks::TVerdict TFormChecks::CheckStyleSheet(const TProperty& property) {
  const QString& sheet = property.Value.Text;
  selectors_ += 1 + sheet.count('{') + sheet.count(',');
  if (selectors_ * widgetCount_ > kMaxStyleSteps) {
    return {QStringLiteral("the style sheets of the form are too long for so many widgets"), {}};
  }
  const TStyleSheet read = ReadStyleSheet(property.Value.Text);
  if (!read.Why.isEmpty()) return {read.Why, {}};
  QString why;
  QString text = read.Text;
  for (auto name = read.Names.rbegin(); name != read.Names.rend(); ++name) {
    const QString copy = Picture(name->Text, &why);
    if (!why.isEmpty()) return {why, {}};
    text.replace(name->Begin, name->End - name->Begin, copy);
  }
  if (text == property.Value.Text) return {};
  return {{}, TFormFile::ElementWith(property, text)};
}
