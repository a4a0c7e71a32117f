#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "components/panels/Formfile.h"

/// Texts of a form that the toolkit takes apart: rich texts and style sheets. They may name files,
/// and may say in a few bytes what takes hours to draw.

/// A text with its pictures.
struct TRichText {
  QString Why;           ///< not empty: it must not be shown
  QStringList Pictures;  ///< that it shows, each once
  int Cells = 0;         ///< of its tables, at most
};

/// The name of a property whose texts are always marked up as `text` of the widget is; empty if its
/// format is not set, and the text itself decides.
QString TextProperty(const TFormFile::TWidget& widget);
/// `property`: its name says whether the text is marked up in some way; other texts are rich if the
/// toolkit would take them for that.
bool IsRichText(const QString& property, const QString& text);
TRichText ReadRichText(const QString& property, const QString& text);
/// The text with other names for its pictures.
QString WithPictures(const QString& property, const QString& text,
                     const QHash<QString, QString>& names);

/// A style sheet with the places of the names in its url(...).
struct TStyleSheet {
  struct TName {
    qsizetype Begin;
    qsizetype End;
    QString Text;
  };
  QString Why;   ///< not empty: it must not be used
  QString Text;  ///< without comments, which could stand in the middle of a name
  std::vector<TName> Names;
};
TStyleSheet ReadStyleSheet(const QString& text);
