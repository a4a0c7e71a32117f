#pragma once

#include <QString>

#include "components/panels/Formfile.h"
#include "components/panels/Formpictures.h"

/// Looks at the properties of a form that the toolkit gets, before it gets them: none of them may
/// open a file, reach out of the program or exhaust it. One for each form.
class TFormChecks {
 public:
  TFormChecks(TFormPictures& pictures, std::size_t widgetCount)
      : pictures_(pictures), widgetCount_(static_cast<qint64>(widgetCount)) {}

  using TProperty = TFormFile::TProperty;
  struct TVerdict {
    QString Why;   ///< not empty: it must not be set
    QString Text;  ///< not empty: the element that is to be set instead
  };
  /// `meta`: of the widget that has it; null for what is no widget.
  /// `textProperty`: how its text is marked up, see TextProperty.
  TVerdict Check(const QMetaObject* meta, const TProperty& property,
                 const QString& textProperty = {});

 private:
  QString WrongKind(const QMetaObject* meta, const TProperty& property) const;
  QString WrongSize(const QMetaObject* meta, const TProperty& property);
  TVerdict CheckIcon(const TProperty& property);
  TVerdict CheckText(const TProperty& property, const QString& textProperty);
  TVerdict CheckRichText(const TProperty& property, const QString& name);
  TVerdict CheckStyleSheet(const TProperty& property);
  QString Picture(const QString& name, QString* why);

  TFormPictures& pictures_;
  const qint64 widgetCount_;
  qint64 area_ = 0;         ///< pixels so far
  qint64 longTexts_ = 0;    ///< characters so far
  qint64 selectors_ = 0;    ///< of style sheets so far
  qint64 names_ = 0;        ///< of other widgets so far
  qint64 textsPicked_ = 0;  ///< characters of rich texts so far
  qint64 cells_ = 0;        ///< of tables in rich texts so far
};
