#include "model/Oneline.h"

#include <QFileInfo>
#include <algorithm>

namespace {

bool BreaksLine(QChar c) {
  return c == '\n' || c == '\t' || c.category() == QChar::Separator_Line ||
         c.category() == QChar::Separator_Paragraph;
}

/// Embeddings, overrides and isolates of the direction of writing.
bool TurnsDirection(QChar c) {
  return (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

template <class TUnwanted>
QString Replaced(QString text, TUnwanted unwanted) {
  std::replace_if(text.begin(), text.end(), unwanted, QChar(QChar::ReplacementCharacter));
  return text;
}

/// A letter, or its number if it does not show.
QString Shown(uint letter) {
  const auto category = QChar::category(letter);
  const bool hides = category >= QChar::Separator_Space && category <= QChar::Other_NotAssigned;
  const auto code = static_cast<char32_t>(letter);
  return hides && code != U' ' ? QStringLiteral("\\u{%1}").arg(letter, 0, 16)
                               : QString::fromUcs4(&code, 1);
}

}  // namespace

QString FromBytes(std::string_view bytes) {
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return view.isValidUtf8() ? QString::fromUtf8(view) : QString::fromLatin1(view);
}

QString Harmless(const QString& text) {
  return Replaced(text, [](QChar c) {
    const bool control = c.category() == QChar::Other_Control && !BreaksLine(c);
    return control || TurnsDirection(c);
  });
}

QString OneLine(const QString& text, qsizetype most) {
  const QString line = text.size() > most ? text.left(most) + QStringLiteral("...") : text;
  return Replaced(Harmless(line), BreaksLine);
}

QString ShownName(const QString& name) {
  constexpr qsizetype kBegin = 120;
  constexpr qsizetype kEnd = 80;
  const QList<uint> letters = name.toUcs4();
  const bool isLong = letters.size() > kBegin + kEnd;
  QString shown;
  for (const uint letter : isLong ? letters.first(kBegin) : letters) shown += Shown(letter);
  if (isLong) {
    shown += QStringLiteral("...");
    for (const uint letter : letters.last(kEnd)) shown += Shown(letter);
  }
  return shown.contains(' ') ? '"' + shown + '"' : shown;
}

QString ShownFileName(const QString& path) {
  const QString name = QFileInfo(path).fileName();
  return OneLine(name.isEmpty() ? path : name);
}

QString TitleFileName(const QString& path) {
  return ShownFileName(path).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}
