#pragma once

#include <QString>

#include "components/panels/Published.h"

/// Names of files in a form: they are meant from the folder of the form's file, so they change when
/// the form is written into another folder.

/// The name in the folder `to` for what `name` means in the folder `from`. Full paths and empty
/// names stay.
QString MovedName(const QString& name, const QString& from, const QString& to);
/// The value of a component's property, moved if the property names files.
TFormValue Moved(const QString& property, TFormValue value, const QString& from, const QString& to);

/// The text of a form with the pictures of the toolkit's own properties named from another folder:
/// those of pixmap and icon elements, and in style sheets and rich texts. What is no file in `from`
/// stays.
QString MovedPictures(const QString& form, const QString& from, const QString& to);
