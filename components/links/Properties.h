#pragma once

#include <QMetaProperty>
#include <QObject>

/// Where the properties that the object's own classes publish begin: behind those of the toolkit's
/// class on which they stand.
int FirstOwnProperty(const QMetaObject& meta);

/// Calls `visit` with each property that the object's own classes publish, in the order of
/// publication; not with those of them that a class behind publishes anew, nor with a sub-object
/// that is not stored, for it belongs to somebody else.
template <class TVisit>
void ForEachOwnProperty(const QObject& object, TVisit visit) {
  const QMetaObject* meta = object.metaObject();
  for (int i = FirstOwnProperty(*meta); i < meta->propertyCount(); ++i) {
    const QMetaProperty property = meta->property(i);
    const bool isObject = property.metaType().flags() & QMetaType::PointerToQObject;
    if (meta->indexOfProperty(property.name()) != i) continue;
    if (!isObject || property.isStored()) visit(property);
  }
}
