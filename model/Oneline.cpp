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

}  // namespace

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

QString ShownFileName(const QString& path) {
  const QString name = QFileInfo(path).fileName();
  return OneLine(name.isEmpty() ? path : name);
}

QString TitleFileName(const QString& path) {
  return ShownFileName(path).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}
