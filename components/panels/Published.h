#pragma once

#include <QMetaProperty>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

/// A published property of a component or of one of its sub-objects.
struct TPublished {
  QString Path;     ///< from the component: "Caption", "HorizontalAx.Title.Caption"
  QObject* Object;  ///< the component or sub-object that publishes it
  QMetaProperty Property;
};

/// Calls `visit` with each plain property that the component and its sub-objects publish and let
/// themselves be set, in the order of publication, hidden ones included.
void ForEachPublished(QObject& component, const std::function<void(const TPublished&)>& visit);
/// Only with those that are stored: not with buttons, such as the Click of a TClick.
void ForEachStored(QObject& component, const std::function<void(const TPublished&)>& visit);

/// The plain property at a path. Nothing, and a reason that begins with what is wrong, for a path
/// that leads nowhere or to a sub-object.
std::optional<TPublished> FindPublished(QObject& component, const QString& path, QString* reason);

/// True if the first name of the path is a property of the component's own classes, and not one of
/// the toolkit's class below them.
bool IsOwnProperty(const QMetaObject& componentClass, const QString& path);

/// A property value as form files hold it: the name of the element, such as "double" or "enum", and
/// its text; a "stringlist" has items instead.
struct TFormValue {
  QString Kind;
  QString Text;
  QStringList Items;
  friend bool operator==(const TFormValue&, const TFormValue&) = default;
};

/// The present value of a property.
TFormValue WriteFormValue(const TPublished& published);
/// In a sentence; long ones are cut.
QString ShownText(const TFormValue& value);
/// The value in the type of the property; invalid, with a reason, if it is of another kind.
QVariant ReadFormValue(const TPublished& published, const TFormValue& value, QString* reason);
