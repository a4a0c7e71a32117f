#pragma once

#include <QJsonObject>
#include <QString>

#include "components/links/Propclasses.h"

/// Published properties as a record: one value per name, enumerations and sets by their names,
/// sub-objects as records of their own. Works on whatever properties the class of the object
/// publishes.

QJsonObject WritePublished(const TPersistent& object);

/// Sets the properties that the record names. False with a reason for a name that the object does
/// not publish, a value of another kind, and one that the property does not take; what stands
/// before it in the record has then been set.
[[nodiscard]] bool ReadPublished(const QJsonObject& record, TPersistent& object, QString* error);
