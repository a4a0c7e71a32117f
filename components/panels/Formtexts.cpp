#include "components/panels/Formtexts.h"

#include <QHash>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>
#include <set>

namespace {

constexpr int kMaxTables = 4;
constexpr int kMaxSpan = 100;
constexpr qint64 kMaxMarks = 2000;  ///< of emphasis in Markdown: each is compared with all
const QString kIsMarkdown = QStringLiteral("markdown");
const QString kIsHtml = QStringLiteral("html");

/// Loads nothing and notes what it would have loaded.
class TListingDocument : public QTextDocument {
 public:
  void SetText(const QString& property, const QString& text) {
    property == kIsMarkdown ? setMarkdown(text) : setHtml(text);
  }
  /// That text and style ask for, other than the pictures in the text.
  QStringList Asked;

 protected:
  QVariant loadResource(int type, const QUrl& name) override {
    Q_UNUSED(type)
    Asked.append(name.toString());
    return QByteArray();
  }
};

/// True if no size in it is one that no screen has. Colours are no sizes.
bool SizesFit(const QString& text) {
  static const QRegularExpression large(R"((?<![#0-9a-fA-F])\d*\.?(?:\d{5}|\d[eE][+-]?\d))");
  return !large.match(text).hasMatch();
}

/// Everything in a rich text that is no text: the tags, and what stands between those of a style.
QString Markup(const QString& text) {
  static const QRegularExpression tag(
      R"(<style.*?(?:</style|$)|<[^>]*)",
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
  QString result;
  for (auto found = tag.globalMatch(text); found.hasNext();) result += found.next().captured();
  return result;
}

/// How often the pattern is in the text, and the numbers that it captures more.
qint64 CountOf(const QString& text, const char* pattern) {
  const QRegularExpression what(QLatin1String(pattern), QRegularExpression::CaseInsensitiveOption);
  qint64 count = 0;
  for (auto found = what.globalMatch(text); found.hasNext();) {
    const QString number = found.next().captured(1);
    count += number.isEmpty() ? 1 : number.toLongLong();
  }
  return count;
}

QString RefuseMarkup(const QString& markup, int* cells) {
  if (!SizesFit(markup)) return QStringLiteral("a size in it is too large for any screen");
  if (markup.contains('\\') || markup.contains(QLatin1String("&#"))) {
    return QStringLiteral("a tag in it is written in a way that hides what it says");
  }
  static const QRegularExpression span(R"(span\s*=\s*["']?\s*\+?0*\d{3})",
                                       QRegularExpression::CaseInsensitiveOption);
  const qint64 columns = CountOf(markup, "<t[dh]") + CountOf(markup, R"(colspan[^0-9]*(\d+))");
  const qint64 rows = CountOf(markup, "<tr") + CountOf(markup, R"(rowspan[^0-9]*(\d+))");
  *cells = static_cast<int>(std::min<qint64>(columns * (rows + 1), 1 << 30));
  const qint64 frames = CountOf(markup, "<table") + CountOf(markup, "float|position");
  if (span.match(markup).hasMatch() || frames > kMaxTables) {
    return QStringLiteral("it has too many tables or cells");
  }
  return {};
}

}  // namespace

QString TextProperty(const TFormFile::TWidget& widget) {
  for (const TFormFile::TProperty& property : widget.Properties) {
    if (property.Name != QLatin1String("textFormat")) continue;
    const QString& format = property.Value.Text;
    if (format.contains(QLatin1String("MarkdownText"))) return kIsMarkdown;
    return format.contains(QLatin1String("RichText")) ? kIsHtml : QString();
  }
  return {};
}

bool IsRichText(const QString& property, const QString& text) {
  return property == kIsHtml || property == kIsMarkdown || Qt::mightBeRichText(text);
}

TRichText ReadRichText(const QString& property, const QString& text) {
  TRichText result;
  result.Why = RefuseMarkup(property == kIsMarkdown ? text : Markup(text), &result.Cells);
  if (property == kIsMarkdown) result.Cells += static_cast<int>(text.count('|'));
  if (property == kIsMarkdown && CountOf(text, "[*_~]") > kMaxMarks) {
    result.Why = QStringLiteral("it has too many marks");
  }
  if (!result.Why.isEmpty()) return result;
  TListingDocument document;
  document.SetText(property, text);
  std::set<QString> pictures;
  for (const QTextFormat& format : document.allFormats()) {
    if (format.isImageFormat()) pictures.insert(format.toImageFormat().name());
  }
  result.Pictures = QStringList(pictures.begin(), pictures.end());
  for (const QString& name : std::as_const(document.Asked)) {
    if (pictures.contains(name) || name.startsWith(QLatin1String(":/"))) continue;
    result.Why = QStringLiteral("it asks for the file '%1'").arg(name.left(100));
  }
  return result;
}

QString WithPictures(const QString& property, const QString& text,
                     const QHash<QString, QString>& names) {
  TListingDocument document;
  document.SetText(property, text);
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    std::vector<QTextFragment> fragments;
    for (auto at = block.begin(); !at.atEnd(); ++at) fragments.push_back(at.fragment());
    for (const QTextFragment& fragment : fragments) {
      if (!fragment.charFormat().isImageFormat()) continue;
      QTextImageFormat format = fragment.charFormat().toImageFormat();
      format.setName(names.value(format.name()));
      QTextCursor cursor(&document);
      cursor.setPosition(fragment.position());
      cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      cursor.setCharFormat(format);
    }
  }
  return property == kIsMarkdown ? document.toMarkdown() : document.toHtml();
}

TStyleSheet ReadStyleSheet(const QString& text) {
  static const QRegularExpression comment(R"(/\*.*?(?:\*/|$))",
                                          QRegularExpression::DotMatchesEverythingOption);
  TStyleSheet result;
  result.Text = text;
  result.Text.remove(comment);
  static const QRegularExpression reaching("[\\\\@]|qproperty|file:",
                                           QRegularExpression::CaseInsensitiveOption);
  if (const auto found = reaching.match(result.Text); found.hasMatch()) {
    result.Why = QStringLiteral("a style sheet of a form may not have '%1'").arg(found.captured());
    return result;
  }
  if (!SizesFit(result.Text)) {
    result.Why = QStringLiteral("a size in it is too large for any screen");
    return result;
  }
  static const QRegularExpression url(
      R"x(url\s*\(\s*(?|"([^"()'\n]*)"|'([^"()'\n]*)'|([^"()'\s]*))\s*\))x",
      QRegularExpression::CaseInsensitiveOption);
  for (auto found = url.globalMatch(result.Text); found.hasNext();) {
    const auto match = found.next();
    result.Names.push_back({match.capturedStart(1), match.capturedEnd(1), match.captured(1)});
  }
  if (CountOf(result.Text, "url") != static_cast<qint64>(result.Names.size())) {
    result.Why = QStringLiteral("a url(...) in it cannot be read");
  }
  return result;
}
