#pragma once

#include <QMetaObject>
#include <QString>
#include <QWidget>
#include <span>

/// A component class that can stand in a form.
struct TComponentClass {
  QString Name;  ///< of the class, as forms write it
  QString Page;  ///< of the palette
  QString Header;
  bool IsContainer;  ///< takes other widgets
  const QMetaObject* Meta;
  QWidget* (*Make)(QWidget* parent);
  /// Informs a new component that its form is being read, and, when all of them have their
  /// properties, that it is complete.
  void (*BeginLoading)(QWidget* component);
  void (*Loaded)(QWidget* component);
};

/// All component classes, in the order of the palette: the one list that form reader, form writer,
/// Designer plug-in and tests go by. GUI thread only.
std::span<const TComponentClass> ComponentClasses();

/// Null for a class that is no component.
const TComponentClass* FindComponentClass(const QString& name);
