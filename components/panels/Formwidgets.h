#pragma once

#include <QString>

class QWidget;
struct QMetaObject;

/// What of the toolkit a form may hold: plain widgets and layouts, which show something or are
/// worked by hand, and reach nothing outside the program.

/// How many labels a widget of the class costs in time and memory; 0 for a class that no form may
/// hold. `isRoot`: the outermost widget of the form.
int PlainWidgetCost(const QString& className, bool isRoot);
/// Widgets right in one of the class: some look at all of them for each.
int MostChildren(const QString& className);
/// The cost of a component.
int ComponentCost(const QMetaObject& componentClass);
bool IsPlainLayout(const QString& className);

/// A text editor that shows no pictures but those of the program itself and of `folder`, whatever
/// is pasted into it. Null for other classes.
QWidget* MakeTextEditor(const QString& className, QWidget* parent, const QString& folder);
