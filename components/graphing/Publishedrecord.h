#pragma once

#include <QJsonObject>
#include <QMetaProperty>
#include <QString>

#include "components/links/Propclasses.h"

/// Published properties as a record: one value per name, enumerations and sets by their names,
/// sub-objects as records of their own. Works on whatever properties the class of the object
/// publishes.

/// Calls `visit` with each published property of the object's class, in the order of publication.
template <class TVisit>
void ForEachPublished(const TPersistent& object, TVisit visit) {
  const QMetaObject* meta = object.metaObject();
  for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
    visit(meta->property(i));
  }
}

/// The sub-object behind a property; null for a plain value.
TPersistent* SubObject(const TPersistent& object, const QMetaProperty& property);

QJsonObject WritePublished(const TPersistent& object);

/// Sets the properties that the record names. False with a reason for a name that the object does
/// not publish, a value of another kind, and one that the property does not take; what stands
/// before it in the record has then been set.
[[nodiscard]] bool ReadPublished(const QJsonObject& record, TPersistent& object, QString* error);

/// Sets the properties of `destination` from those of the same name of `source`, one setter after
/// the other in the order of publication.
void CopyPublished(const TPersistent& source, TPersistent& destination);

/// The two are of one class and have equal properties.
bool SamePublished(const TPersistent& a, const TPersistent& b);
