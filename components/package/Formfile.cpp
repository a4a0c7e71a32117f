#include "components/package/Formfile.h"

#include <QColor>
#include <QXmlStreamReader>
#include <algorithm>

namespace {

/// Walks through the elements of a form and notes the widgets.
class TFormParser {
 public:
  TFormParser(const QString& text, std::vector<TFormFile::TWidget>& widgets)
      : text_(text), reader_(text), widgets_(widgets) {}

  /// Empty if the text is a form.
  QString Parse();

 private:
  struct TElement {
    int widget;  ///< index of the widget that this element is, or -1
  };

  void Start();
  void StartWidget();
  void ReadProperty(int widget);
  QString ReadColor();
  qsizetype TagBegin() const;
  void Fail(const QString& what) {
    if (fault_.isEmpty())
      fault_ = QStringLiteral("line %1: %2").arg(reader_.lineNumber()).arg(what);
  }

  const QString& text_;
  QXmlStreamReader reader_;
  std::vector<TFormFile::TWidget>& widgets_;
  std::vector<TElement> open_;
  bool isForm_ = false;
  QString fault_;
};

QString TFormParser::Parse() {
  while (fault_.isEmpty() && !reader_.atEnd()) {
    switch (reader_.readNext()) {
      case QXmlStreamReader::StartElement:
        Start();
        break;
      case QXmlStreamReader::EndElement:
        if (!open_.empty()) open_.pop_back();
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

void TFormParser::Start() {
  if (open_.empty() && !isForm_) {
    isForm_ = reader_.name() == QLatin1String("ui");
    if (!isForm_) Fail(QStringLiteral("this is no form file"));
  }
  if (open_.size() >= TFormFile::kMaxDepth) return Fail(QStringLiteral("it is nested too deep"));
  const int widget = open_.empty() ? -1 : open_.back().widget;
  if (reader_.name() == QLatin1String("widget")) return StartWidget();
  if (widget >= 0 && reader_.name() == QLatin1String("property")) return ReadProperty(widget);
  open_.push_back({-1});
}

void TFormParser::StartWidget() {
  if (widgets_.size() >= TFormFile::kMaxWidgets) return Fail(QStringLiteral("too many widgets"));
  TFormFile::TWidget widget;
  widget.ClassName = reader_.attributes().value(QLatin1String("class")).toString();
  widget.Name = reader_.attributes().value(QLatin1String("name")).toString();
  widget.Line = static_cast<int>(reader_.lineNumber());
  widget.ContentBegin = static_cast<qsizetype>(reader_.characterOffset());
  widget.SelfClosing = text_.mid(widget.ContentBegin - 2, 2) == QLatin1String("/>");
  open_.push_back({static_cast<int>(widgets_.size())});
  widgets_.push_back(std::move(widget));
}

/// Reads to the end of the element. A colour becomes "#aarrggbb"; of other values that are made of
/// elements, such as a rectangle, only the kind is known.
void TFormParser::ReadProperty(int widget) {
  TFormFile::TProperty property;
  property.Begin = TagBegin();
  property.Line = static_cast<int>(reader_.lineNumber());
  property.Name = reader_.attributes().value(QLatin1String("name")).toString();
  int depth = 1;
  while (depth > 0 && !reader_.atEnd()) {
    const auto token = reader_.readNext();
    if (token == QXmlStreamReader::StartElement) {
      if (++depth == 2) property.Value.Kind = reader_.name().toString();
      if (depth == 2 && property.Value.Kind == QLatin1String("color")) {
        property.Value.Text = ReadColor();
        --depth;
      }
      if (depth > 2 && property.Value.Kind == QLatin1String("stringlist")) {
        property.Value.Items.append(reader_.readElementText());
        --depth;
      }
    } else if (token == QXmlStreamReader::EndElement) {
      --depth;
    } else if (token == QXmlStreamReader::Characters && depth == 2 &&
               property.Value.Kind != QLatin1String("stringlist")) {
      property.Value.Text += reader_.text();
    }
  }
  property.End = static_cast<qsizetype>(reader_.characterOffset());
  widgets_[static_cast<std::size_t>(widget)].Properties.push_back(std::move(property));
}

/// As the content of an element. Characters that a form file cannot hold become question marks.
QString Escaped(const QString& text) {
  QString result = text.toHtmlEscaped();
  for (QChar& c : result) {
    if (c < u' ' && c != u'\n' && c != u'\t') c = u'?';
  }
  return result;
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
struct TEdit {
  qsizetype begin;
  qsizetype end;
  QString text;
};

QString Apply(const QString& text, std::vector<TEdit> edits) {
  std::ranges::stable_sort(edits, {}, &TEdit::begin);
  QString result;
  qsizetype at = 0;
  for (const TEdit& edit : edits) {
    result += QStringView(text).mid(at, edit.begin - at);
    result += edit.text;
    at = edit.end;
  }
  result += QStringView(text).mid(at);
  return result;
}

/// The blank line that would stay behind goes too.
TEdit CutOut(const QString& text, const TFormFile::TProperty& property) {
  qsizetype begin = property.Begin;
  while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\t')) --begin;
  const bool wholeLine = begin > 0 && text[begin - 1] == '\n';
  if (wholeLine) --begin;
  if (wholeLine && begin > 0 && text[begin - 1] == '\r') --begin;
  return {wholeLine ? begin : property.Begin, property.End, {}};
}

}  // namespace

bool TFormFile::Parse(const QString& text, QString* error) {
  text_ = text;
  widgets_.clear();
  const QString fault = TFormParser(text_, widgets_).Parse();
  if (!fault.isEmpty() && error) *error = fault;
  return fault.isEmpty();
}

QString TFormFile::Without(
    const std::function<bool(const TWidget&, const TProperty&)>& drop) const {
  return Replaced(drop, [](const TWidget&) { return TNewProperties(); });
}

QString TFormFile::Replaced(const std::function<bool(const TWidget&, const TProperty&)>& drop,
                            const std::function<TNewProperties(const TWidget&)>& put) const {
  std::vector<TEdit> edits;
  for (const TWidget& widget : widgets_) {
    const qsizetype tag = text_.lastIndexOf('<', widget.ContentBegin - 1);
    const qsizetype lineBegin = text_.lastIndexOf('\n', tag) + 1;
    QString indent = QStringView(text_).mid(lineBegin, tag - lineBegin).toString();
    if (!QStringView(indent).trimmed().isEmpty()) indent.clear();
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
