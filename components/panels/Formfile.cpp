#include "components/panels/Formfile.h"

#include <QColor>
#include <QFont>
#include <QXmlStreamReader>
#include <algorithm>
#include <span>

#include "model/Oneline.h"

namespace {

/// Walks through the elements of a form and notes the widgets.
class TFormParser {
 public:
  /// Where what is found goes.
  struct TFound {
    std::vector<TFormFile::TWidget>& widgets;
    std::vector<TFormFile::TLayout>& layouts;
    std::vector<TFormFile::TOtherProperty>& others;
    std::vector<TFormFile::TConnection>& connections;
  };
  TFormParser(const QString& text, const TFound& found)
      : text_(text),
        reader_(text),
        widgets_(found.widgets),
        layouts_(found.layouts),
        others_(found.others),
        connections_(found.connections) {}

  /// Empty if the text is a form.
  QString Parse();

 private:
  struct TOpenElement {
    int widget = -1;  ///< index of the widget that this element is
    QString owner{};  ///< of the properties in it
    int rows = 0;     ///< that it holds as a table
    int columns = 0;
    int grids = 0;  ///< around what is in it
  };

  void Start();
  void StartWidget();
  void CheckItem();
  void End();
  void ReadProperty(bool isAttribute);
  void ReadValue(TFormFile::TProperty& property);
  void ReadConnection();
  QString ReadColor();
  qsizetype TagBegin() const;
  QString OwnerText() const;
  void Fail(const QString& what) { FailAt(reader_.lineNumber(), what); }
  void FailAt(qint64 line, const QString& what) {
    if (fault_.isEmpty()) fault_ = QStringLiteral("line %1: %2").arg(line).arg(what);
  }

  const QString& text_;
  QXmlStreamReader reader_;
  std::vector<TFormFile::TWidget>& widgets_;
  std::vector<TFormFile::TLayout>& layouts_;
  std::vector<TFormFile::TOtherProperty>& others_;
  std::vector<TFormFile::TConnection>& connections_;
  std::vector<TOpenElement> open_;
  int items_ = 0;
  qint64 named_ = 0;  ///< widgets in the orders of depth and of the tabulator
  qint64 cells_ = 0;
  bool isForm_ = false;
  QString fault_;
};

/// The XML reader compares all attributes of an element with each other: text with a tag that has
/// too many of them must not reach it. The place of such a tag, or -1.
qsizetype FindCrowdedTag(const QString& text) {
  const auto skipTo = [&](qsizetype from, const char* end) {
    const qsizetype at = text.indexOf(QLatin1String(end), from);
    return at < 0 ? text.size() : at;
  };
  for (qsizetype at = text.indexOf('<'); at >= 0; at = text.indexOf('<', at + 1)) {
    const QStringView rest = QStringView(text).mid(at);
    if (rest.startsWith(QLatin1String("<!--"))) {
      at = skipTo(at, "-->");
    } else if (rest.startsWith(QLatin1String("<![CDATA["))) {
      at = skipTo(at, "]]>");
    } else {
      int attributes = 0;
      QChar quote;
      for (qsizetype i = at + 1; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!quote.isNull()) {
          if (c == quote) quote = QChar();
        } else if (c == '"' || c == '\'') {
          quote = c;
          if (++attributes > TFormFile::kMaxAttributes) return at;
        } else if (c == '>' || c == '<') {
          break;
        }
      }
    }
  }
  return -1;
}

QString TFormParser::Parse() {
  if (const qsizetype crowded = FindCrowdedTag(text_); crowded >= 0) {
    FailAt(QStringView(text_).left(crowded).count('\n') + 1,
           QStringLiteral("an element has more than %1 attributes").arg(TFormFile::kMaxAttributes));
    return fault_;
  }
  while (fault_.isEmpty() && !reader_.atEnd()) {
    switch (reader_.readNext()) {
      case QXmlStreamReader::StartElement:
        Start();
        break;
      case QXmlStreamReader::EndElement:
        End();
        break;
      case QXmlStreamReader::DTD:
        Fail(QStringLiteral("a form has no document type definition"));
        break;
      default:
        break;
    }
  }
  if (reader_.hasError()) Fail(reader_.errorString());
  if (widgets_.empty()) Fail(QStringLiteral("there is no widget in it"));
  if (named_ * static_cast<qint64>(widgets_.size()) > TFormFile::kMaxLookups) {
    Fail(QStringLiteral("too many tab stops or places in depth for so many widgets"));
  }
  return fault_;
}

/// Where the tag that has just been read begins.
qsizetype TFormParser::TagBegin() const {
  return text_.lastIndexOf('<', static_cast<qsizetype>(reader_.characterOffset()) - 1);
}

/// Reads a colour element to its end; empty if a part of it is no number.
QString TFormParser::ReadColor() {
  const auto alpha = reader_.attributes().value(QLatin1String("alpha"));
  bool isColor = true;
  const int opacity = alpha.isEmpty() ? 255 : alpha.toInt(&isColor);
  QRgb color = 0;
  while (reader_.readNextStartElement()) {
    bool isNumber = false;
    const QString name = reader_.name().toString();
    const int part = reader_.readElementText().toInt(&isNumber);
    isColor = isColor && isNumber && part >= 0 && part <= 255;
    const int shift = name == QLatin1String("red") ? 16 : name == QLatin1String("green") ? 8 : 0;
    color |= static_cast<QRgb>(part & 255) << shift;
  }
  color |= static_cast<QRgb>(opacity & 255) << 24;
  return isColor ? QColor::fromRgba(color).name(QColor::HexArgb) : QString();
}

/// What QFont says of a font that is given by its parts.
QString FontText(std::span<const TFormFile::TPart> parts) {
  QFont font;
  for (const auto& [name, text] : parts) {
    const bool isOn = text == QLatin1String("true");
    if (name == QLatin1String("family")) font.setFamily(text);
    if (name == QLatin1String("pointsize") && text.toInt() > 0) font.setPointSize(text.toInt());
    if (name == QLatin1String("bold")) font.setBold(isOn);
    if (name == QLatin1String("italic")) font.setItalic(isOn);
    if (name == QLatin1String("underline")) font.setUnderline(isOn);
    if (name == QLatin1String("strikeout")) font.setStrikeOut(isOn);
  }
  return font.toString();
}

/// The toolkit takes other cases for the same name; it writes these so.
bool IsElementName(QStringView name) {
  static const QStringList kMixed = {"longLong", "uLongLong", "UInt", "cursorShape"};
  if (kMixed.contains(name)) return true;
  return std::ranges::all_of(name, [](QChar c) { return c >= u'a' && c <= u'z'; });
}

void TFormParser::Start() {
  const auto name = reader_.name();
  if (open_.empty() && !isForm_) {
    isForm_ = name == QLatin1String("ui");
    if (!isForm_) Fail(QStringLiteral("this is no form file"));
  }
  if (open_.size() >= TFormFile::kMaxDepth) return Fail(QStringLiteral("it is nested too deep"));
  if (!IsElementName(name)) return Fail(QStringLiteral("'%1' is no element of a form").arg(name));
  if (name == QLatin1String("widget")) return StartWidget();
  if (name == QLatin1String("property")) return ReadProperty(false);
  if (name == QLatin1String("attribute")) return ReadProperty(true);
  if (name == QLatin1String("connection")) return ReadConnection();
  CheckItem();
  int grids = open_.empty() ? 0 : open_.back().grids;
  if (name == QLatin1String("layout")) {
    const auto className = reader_.attributes().value(QLatin1String("class"));
    const bool isGrid = !className.endsWith(QLatin1String("BoxLayout"));
    grids = open_.empty() ? 0 : open_.back().grids + (isGrid ? 1 : 0);
    if (grids > TFormFile::kMaxGrids) return Fail(QStringLiteral("its grids are nested too deep"));
    layouts_.push_back({reader_.attributes().value(QLatin1String("class")).toString(),
                        reader_.attributes().value(QLatin1String("name")).toString(),
                        static_cast<int>(reader_.lineNumber())});
  }
  open_.push_back({-1, OwnerText(), 0, 0, grids});
}

/// Places, spans and stretches are attributes of elements.
void TFormParser::CheckItem() {
  static const char* const kNames[] = {
      "row",           "column",  "rowspan", "colspan",          "stretch",           "rowstretch",
      "columnstretch", "spacing", "margin",  "rowminimumheight", "columnminimumwidth"};
  for (const char* name : kNames) {
    const auto numbers = reader_.attributes().value(QLatin1String(name));
    for (const QStringView number : numbers.split(',')) {
      const bool isSpan = QLatin1String(name).endsWith(QLatin1String("span"));
      const int most = isSpan ? TFormFile::kMaxSpan : TFormFile::kMaxInRow;
      if (std::abs(qint64{number.trimmed().toInt()}) > most) {
        return Fail(QStringLiteral("%1 %2 is too large").arg(QLatin1String(name), number));
      }
    }
  }
  const auto name = reader_.name();
  if (name == QLatin1String("item") && ++items_ > TFormFile::kMaxItems) Fail("too many items");
  if (name == QLatin1String("zorder") || name == QLatin1String("tabstop")) ++named_;
  if (open_.empty()) return;
  if (name == QLatin1String("row")) ++open_.back().rows;
  if (name == QLatin1String("column")) ++open_.back().columns;
}

/// Of the element that has just been read.
void TFormParser::End() {
  if (open_.empty()) return;
  const TOpenElement element = open_.back();
  open_.pop_back();
  if (element.widget < 0) return;
  qint64 rows = element.rows;
  qint64 columns = element.columns;
  for (const auto& property : widgets_[static_cast<std::size_t>(element.widget)].Properties) {
    const qint64 number = property.Value.Text.trimmed().toInt();
    if (property.Name == QLatin1String("rowCount")) rows = std::max(rows, number);
    if (property.Name == QLatin1String("columnCount")) columns = std::max(columns, number);
  }
  cells_ += rows * columns;
  if (std::max(rows, columns) > TFormFile::kMaxCells || cells_ > TFormFile::kMaxCells) {
    Fail(QStringLiteral("%1: the table has too many cells").arg(element.owner));
  }
}

QString TFormParser::OwnerText() const {
  const auto className = reader_.attributes().value(QLatin1String("class"));
  const QStringView kind = className.isEmpty() ? QStringView(reader_.name()) : className;
  const auto name = reader_.attributes().value(QLatin1String("name"));
  return QStringLiteral("%1 (%2)").arg(OneLine(name.toString()), OneLine(kind.toString()));
}

void TFormParser::StartWidget() {
  if (widgets_.size() >= TFormFile::kMaxWidgets) return Fail(QStringLiteral("too many widgets"));
  TFormFile::TWidget widget;
  widget.ClassName = reader_.attributes().value(QLatin1String("class")).toString();
  widget.Name = reader_.attributes().value(QLatin1String("name")).toString();
  widget.Line = static_cast<int>(reader_.lineNumber());
  widget.ContentBegin = static_cast<qsizetype>(reader_.characterOffset());
  widget.SelfClosing = text_.mid(widget.ContentBegin - 2, 2) == QLatin1String("/>");
  if (!open_.empty() && open_.back().widget >= 0) {
    ++widgets_[static_cast<std::size_t>(open_.back().widget)].Children;
  }
  const int grids = open_.empty() ? 0 : open_.back().grids;
  open_.push_back({static_cast<int>(widgets_.size()), OwnerText(), 0, 0, grids});
  widgets_.push_back(std::move(widget));
}

/// Reads to the end of the element.
void TFormParser::ReadProperty(bool isAttribute) {
  TFormFile::TProperty property;
  property.Begin = TagBegin();
  property.Line = static_cast<int>(reader_.lineNumber());
  property.Name = reader_.attributes().value(QLatin1String("name")).toString();
  property.IsAttribute = isAttribute;
  property.IsDynamic = reader_.attributes().value(QLatin1String("stdset")) == QLatin1String("0");
  while (fault_.isEmpty() && reader_.readNextStartElement()) {
    property.Value = {reader_.name().toString(), {}, {}};
    property.Theme = reader_.attributes().value(QLatin1String("theme")).toString();
    ++property.ValueCount;
    ReadValue(property);
  }
  property.End = static_cast<qsizetype>(reader_.characterOffset());
  if (open_.empty()) return Fail(QStringLiteral("a property of nothing"));
  const TOpenElement& owner = open_.back();
  if (isAttribute || owner.widget < 0) {
    others_.push_back({owner.owner, std::move(property)});
  } else {
    widgets_[static_cast<std::size_t>(owner.widget)].Properties.push_back(std::move(property));
  }
}

/// A colour becomes "#aarrggbb", a font what QFont says of it; other values that are made of
/// elements, such as a rectangle, are known by their parts.
void TFormParser::ReadValue(TFormFile::TProperty& property) {
  TFormValue& value = property.Value;
  if (!IsElementName(value.Kind)) {
    return Fail(QStringLiteral("'%1' is no element of a form").arg(value.Kind));
  }
  if (value.Kind == QLatin1String("color")) {
    value.Text = ReadColor();
    return;
  }
  const std::size_t first = property.Parts.size();
  int depth = 1;
  while (depth > 0 && fault_.isEmpty() && !reader_.atEnd()) {
    const auto token = reader_.readNext();
    if (token == QXmlStreamReader::Characters && depth == 1) {
      value.Text += reader_.text();
    } else if (token == QXmlStreamReader::Characters) {
      property.Parts.back().Text += reader_.text();
    } else if (token == QXmlStreamReader::EndElement) {
      --depth;
    } else if (token == QXmlStreamReader::StartElement) {
      ++depth;
      property.Parts.push_back({reader_.name().toString(), {}});
      if (!IsElementName(reader_.name())) {
        Fail(QStringLiteral("'%1' is no element of a form").arg(reader_.name()));
      }
    }
  }
  const std::span parts = std::span(property.Parts).subspan(first);
  if (value.Kind == QLatin1String("font")) value.Text = FontText(parts);
  if (value.Kind != QLatin1String("stringlist")) return;
  value.Text.clear();
  for (const auto& part : parts) value.Items.append(part.Text);
}

/// Reads to the end of the element.
void TFormParser::ReadConnection() {
  if (connections_.size() >= TFormFile::kMaxConnections) return Fail("too many connections");
  TFormFile::TConnection connection;
  connection.Begin = TagBegin();
  connection.Line = static_cast<int>(reader_.lineNumber());
  const std::pair<const char*, QString*> parts[] = {{"sender", &connection.Sender},
                                                    {"signal", &connection.Signal},
                                                    {"receiver", &connection.Receiver},
                                                    {"slot", &connection.Slot}};
  while (reader_.readNextStartElement()) {
    const auto part = std::ranges::find_if(
        parts, [&](const auto& known) { return reader_.name() == QLatin1String(known.first); });
    if (part == std::end(parts)) {
      reader_.skipCurrentElement();
    } else {
      *part->second = reader_.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
    }
  }
  connection.End = static_cast<qsizetype>(reader_.characterOffset());
  connections_.push_back(std::move(connection));
}

/// As the content of an element. Characters that a form file cannot hold become question marks.
QString Escaped(const QString& text) {
  QString result = text.toHtmlEscaped();
  for (QChar& c : result) {
    const bool isControl = c < u' ' && c != u'\n' && c != u'\t' && c != u'\r';
    if (isControl || c >= QChar(0xfffe)) c = u'?';
  }
  // As itself it would be read as a line feed.
  return result.replace('\r', QLatin1String("&#13;"));
}

QString ElementText(const QString& name, const TFormValue& value) {
  QString inner = Escaped(value.Text);
  for (const QString& item : value.Items) inner += "<string>" + Escaped(item) + "</string>";
  // Designer and the form loader look up dotted names as dynamic properties.
  const bool dotted = name.contains('.');
  return QStringLiteral("<property name=\"%1\"%2><%3>%4</%3></property>")
      .arg(Escaped(name), dotted ? QStringLiteral(" stdset=\"0\"") : QString(), value.Kind, inner);
}

/// A change of the text: what stands between the two places goes, the text comes.
struct TReplacement {
  qsizetype begin;
  qsizetype end;
  QString text;
};

QString Apply(const QString& text, std::vector<TReplacement> edits) {
  std::ranges::stable_sort(edits, {}, &TReplacement::begin);
  QString result;
  qsizetype at = 0;
  for (const TReplacement& edit : edits) {
    result += QStringView(text).mid(at, edit.begin - at);
    result += edit.text;
    at = edit.end;
  }
  result += QStringView(text).mid(at);
  return result;
}

/// Takes an element out. The blank line that would stay behind goes too.
template <class TPart>
TReplacement CutOut(const QString& text, const TPart& element) {
  qsizetype begin = element.Begin;
  while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\t')) --begin;
  const bool wholeLine = begin > 0 && text[begin - 1] == '\n';
  if (wholeLine) --begin;
  if (wholeLine && begin > 0 && text[begin - 1] == '\r') --begin;
  return {wholeLine ? begin : element.Begin, element.End, {}};
}

/// The blanks before the tag that ends at a place; none if something else stands before it.
QString IndentOf(const QString& text, qsizetype tagEnd) {
  constexpr qsizetype kMostIndent = 200;
  const qsizetype tag = text.lastIndexOf('<', tagEnd - 1);
  qsizetype begin = tag;
  while (begin > 0 && tag - begin < kMostIndent && text[begin - 1] == ' ') --begin;
  const bool isIndent = begin == 0 || text[begin - 1] == '\n';
  return isIndent ? text.mid(begin, tag - begin) : QString();
}

}  // namespace

bool TFormFile::Parse(const QString& text, QString* error) {
  text_ = text;
  widgets_.clear();
  layouts_.clear();
  others_.clear();
  connections_.clear();
  const QString fault = TFormParser(text_, {widgets_, layouts_, others_, connections_}).Parse();
  if (!fault.isEmpty() && error) *error = fault;
  return fault.isEmpty();
}

QString TFormFile::Loadable(const TReplacements& replacements) const {
  std::vector<TReplacement> edits;
  for (const auto& [property, text] : replacements) {
    edits.push_back(text.isEmpty() ? CutOut(text_, *property)
                                   : TReplacement{property->Begin, property->End, text});
  }
  for (const TConnection& connection : connections_) edits.push_back(CutOut(text_, connection));
  return Apply(text_, std::move(edits));
}

QString TFormFile::ElementWith(const TProperty& property, const QString& text,
                               const std::vector<TPart>& parts) {
  QString inner = Escaped(text);
  for (const TPart& part : parts) {
    inner += QStringLiteral("<%1>%2</%1>").arg(part.Name, Escaped(part.Text));
  }
  const QString& kind = property.Value.Kind;
  const QString theme = property.Theme.isEmpty()
                            ? QString()
                            : QStringLiteral(" theme=\"%1\"").arg(Escaped(property.Theme));
  return QStringLiteral("<%1 name=\"%2\"%3><%4%5>%6</%4></%1>")
      .arg(property.IsAttribute ? "attribute" : "property", Escaped(property.Name),
           property.IsDynamic ? QStringLiteral(" stdset=\"0\"") : QString(), kind, theme, inner);
}

QString TFormFile::Replaced(const std::function<bool(const TWidget&, const TProperty&)>& drop,
                            const std::function<TNewProperties(const TWidget&)>& put) const {
  std::vector<TReplacement> edits;
  for (const TWidget& widget : widgets_) {
    const QString indent = IndentOf(text_, widget.ContentBegin);
    QString added;
    for (const auto& [name, value] : put(widget)) {
      added += '\n' + indent + ' ' + ElementText(name, value);
    }
    if (!added.isEmpty() && widget.SelfClosing) {
      edits.push_back({widget.ContentBegin - 2, widget.ContentBegin,
                       '>' + added + '\n' + indent + QStringLiteral("</widget>")});
    } else if (!added.isEmpty()) {
      edits.push_back({widget.ContentBegin, widget.ContentBegin, added});
    }
    for (const TProperty& property : widget.Properties) {
      if (drop(widget, property)) edits.push_back(CutOut(text_, property));
    }
  }
  return Apply(text_, std::move(edits));
}
