#include "viewer/window/Inifile.h"

namespace {

constexpr char kByteOrderMark[] = "\xef\xbb\xbf";

bool Same(QByteArrayView a, QByteArrayView b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

bool IsComment(QByteArrayView line) { return line.startsWith(';') || line.startsWith('#'); }

/// The name in a header line "[name]"; null for any other line.
QByteArrayView SectionName(QByteArrayView line) {
  line = line.trimmed();
  const qsizetype end = line.indexOf(']');
  if (!line.startsWith('[') || end < 0) return {};
  return line.sliced(1, end - 1).trimmed();
}

bool IsHeader(QByteArrayView line) { return !SectionName(line).isNull(); }

/// The key of a "key=value" line; null for any other line.
QByteArrayView KeyName(QByteArrayView line) {
  line = line.trimmed();
  const qsizetype equals = line.indexOf('=');
  if (equals < 0 || IsComment(line)) return {};
  return line.first(equals).trimmed();
}

/// Puts `value` into a "key=value" line in place of the old one.
void ReplaceValue(QByteArray& line, const QByteArray& value) {
  const auto isBlank = [&](qsizetype i) {
    return QByteArrayView(line).sliced(i, 1).trimmed().isEmpty();
  };
  qsizetype begin = line.indexOf('=') + 1;
  qsizetype end = line.size();
  while (end > begin && isBlank(end - 1)) --end;
  while (begin < end && isBlank(begin)) ++begin;
  line.replace(begin, end - begin, value);
}

#ifdef Q_OS_WIN
constexpr char kSystemLineEnd[] = "\r\n";
#else
constexpr char kSystemLineEnd[] = "\n";
#endif

/// How the first line ends decides for those that are added.
QByteArray LineEndOf(const QByteArray& text) {
  const qsizetype end = text.indexOf('\n');
  if (end < 0) return text.endsWith('\r') ? "\r\n" : kSystemLineEnd;
  return end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

}  // namespace

TIniFile::TIniFile(const QByteArray& text) {
  qsizetype begin = 0;
  if (text.startsWith(kByteOrderMark)) {
    mark_ = kByteOrderMark;
    begin = mark_.size();
  }
  lineEnd_ = LineEndOf(text);
  while (begin < text.size()) {
    const qsizetype end = text.indexOf('\n', begin);
    const qsizetype next = end < 0 ? text.size() : end + 1;
    lines_ << text.sliced(begin, next - begin);
    begin = next;
  }
}

qsizetype TIniFile::SectionLine(QByteArrayView section) const {
  for (qsizetype i = 0; i < lines_.size(); ++i) {
    if (IsHeader(lines_[i]) && Same(SectionName(lines_[i]), section)) return i;
  }
  return -1;
}

qsizetype TIniFile::SectionEnd(qsizetype header) const {
  qsizetype end = header + 1;
  while (end < lines_.size() && !IsHeader(lines_[end])) ++end;
  return end;
}

qsizetype TIniFile::KeyLine(qsizetype header, QByteArrayView key) const {
  const qsizetype end = SectionEnd(header);
  for (qsizetype i = header + 1; i < end; ++i) {
    if (Same(KeyName(lines_[i]), key)) return i;
  }
  return -1;
}

std::optional<QByteArray> TIniFile::Value(QByteArrayView section, QByteArrayView key) const {
  const qsizetype header = SectionLine(section);
  const qsizetype line = header < 0 ? -1 : KeyLine(header, key);
  if (line < 0) return std::nullopt;
  return lines_[line].mid(lines_[line].indexOf('=') + 1).trimmed();
}

void TIniFile::SetValue(QByteArrayView section, QByteArrayView key, const QByteArray& value) {
  if (!HasSection(section)) AddSection(section);
  const qsizetype header = SectionLine(section);
  const qsizetype line = KeyLine(header, key);
  if (line >= 0) return ReplaceValue(lines_[line], value);
  qsizetype place = SectionEnd(header);
  if (place == lines_.size()) CloseLastLine();
  while (lines_[place - 1].trimmed().isEmpty()) --place;
  lines_.insert(place, key.toByteArray() + '=' + value + lineEnd_);
}

void TIniFile::AddSection(QByteArrayView section) {
  CloseLastLine();
  if (!lines_.isEmpty() && !lines_.back().trimmed().isEmpty()) {
    lines_ << lineEnd_;
  }
  lines_ << '[' + section.toByteArray() + ']' + lineEnd_;
}

void TIniFile::CloseLastLine() {
  if (lines_.isEmpty() || lines_.back().endsWith('\n')) return;
  lines_.back() += lines_.back().endsWith('\r') ? QByteArray("\n") : lineEnd_;
}
