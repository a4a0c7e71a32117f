#include "components/panels/Filenames.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

QString MovedName(const QString& name, const QString& from, const QString& to) {
  if (name.isEmpty() || QDir::isAbsolutePath(name) || from == to) return name;
  return QDir(to).relativeFilePath(QDir::cleanPath(QDir(from).filePath(name)));
}

TFormValue Moved(const QString& property, TFormValue value, const QString& from,
                 const QString& to) {
  static const QStringList names = {"FileName", "Files", "LogFile", "RootDir", "ImageFile"};
  // An address looks like a file name; only what is there is one.
  const bool isLink =
      property == QLatin1String("URL") && QFileInfo(QDir(from), value.Text).isFile();
  if (!isLink && !names.contains(property)) return value;
  const auto move = [&](QString& name) { name = MovedName(name, from, to); };
  move(value.Text);
  for (QString& item : value.Items) move(item);
  return value;
}

QString MovedPictures(const QString& form, const QString& from, const QString& to) {
  if (from == to) return form;
  // Behind the tags of pictures and icons, "url(" and "src="; quotes may be written as entities.
  static const QRegularExpression picture(
      QStringLiteral(R"((?:</?(?:pixmap|iconset|(?:normal|disabled|active|selected)(?:on|off))\b)"
                     R"([^>]*>|url\s*\(|src\s*=)\s*(?:&quot;|["'])?\s*([^<>"'()&]+))"),
      QRegularExpression::CaseInsensitiveOption);
  QString moved;
  qsizetype done = 0;
  for (auto found = picture.globalMatch(form); found.hasNext();) {
    const QRegularExpressionMatch match = found.next();
    const QString name = match.captured(1).trimmed();
    if (name.isEmpty() || !QFileInfo(QDir(from), name).isFile()) continue;
    moved += QStringView(form).mid(done, match.capturedStart(1) - done);
    moved += MovedName(name, from, to).toHtmlEscaped();
    done = match.capturedEnd(1);
  }
  moved += QStringView(form).mid(done);
  return moved;
}
