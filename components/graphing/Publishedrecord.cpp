#include "components/graphing/Publishedrecord.h"

#include <QMetaEnum>
#include <climits>
#include <cmath>
#include <limits>
#include <optional>

#include "components/links/Properties.h"
#include "model/Color.h"

namespace {

bool IsColor(const QMetaProperty& property) {
  return property.metaType() == QMetaType::fromType<TColor>();
}

QJsonValue ToJson(const QMetaProperty& property, const QVariant& value) {
  if (property.isEnumType()) {
    return QString::fromLatin1(property.enumerator().valueToKeys(value.toInt()));
  }
  if (IsColor(property)) return value.value<TColor>().Value();
  return QJsonValue::fromVariant(value);
}

std::optional<int> ToInt(const QJsonValue& value) {
  const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
  if (!(number >= INT_MIN && number <= INT_MAX) || number != std::floor(number)) return {};
  return static_cast<int>(number);
}

/// The value as the property has it; nothing if it is of another kind.
QVariant FromJson(const QMetaProperty& property, const QJsonValue& value) {
  if (property.isEnumType()) {
    if (!value.isString()) return {};
    const QByteArray keys = value.toString().toLatin1();
    bool known = property.isFlagType() && keys.isEmpty();
    const int key = known ? 0 : property.enumerator().keysToValue(keys.constData(), &known);
    return known ? QVariant(key) : QVariant();
  }
  if (IsColor(property) || property.typeId() == QMetaType::Int) {
    const std::optional<int> number = ToInt(value);
    if (!number) return {};
    return IsColor(property) ? QVariant::fromValue(TColor(*number)) : QVariant(*number);
  }
  const bool fits = (property.typeId() == QMetaType::Bool && value.isBool()) ||
                    (property.typeId() == QMetaType::Double && value.isDouble()) ||
                    (property.typeId() == QMetaType::QString && value.isString());
  return fits ? value.toVariant() : QVariant();
}

bool RefuseRecord(QString* error, const QString& reason) {
  if (error) *error = reason;
  return false;
}

bool ReadProperty(const QString& name, const QJsonValue& value, TPersistent& object,
                  QString* error) {
  const QMetaObject* meta = object.metaObject();
  const QString fullName = QStringLiteral("%1.%2").arg(meta->className(), name);
  const int index = meta->indexOfProperty(name.toLatin1());
  if (index < QObject::staticMetaObject.propertyCount()) {
    return RefuseRecord(error, QStringLiteral("There is no property %1").arg(fullName));
  }
  const QMetaProperty property = meta->property(index);
  if (TPersistent* sub = SubObject(object, property)) {
    if (value.isObject()) return ReadPublished(value.toObject(), *sub, error);
    return RefuseRecord(error, QStringLiteral("%1 is no record").arg(fullName));
  }
  const QVariant wanted = FromJson(property, value);
  if (!wanted.isValid()) {
    return RefuseRecord(error, QStringLiteral("%1 has a value of another kind").arg(fullName));
  }
  property.write(&object, wanted);
  if (ToJson(property, property.read(&object)) == ToJson(property, wanted)) return true;
  return RefuseRecord(error, QStringLiteral("%1 does not take its value").arg(fullName));
}

}  // namespace

QJsonObject WritePublished(const TPersistent& object) {
  QJsonObject record;
  ForEachOwnProperty(object, [&](const QMetaProperty& property) {
    const TPersistent* sub = SubObject(object, property);
    record[QLatin1String(property.name())] =
        sub ? QJsonValue(WritePublished(*sub)) : ToJson(property, property.read(&object));
  });
  return record;
}

bool ReadPublished(const QJsonObject& record, TPersistent& object, QString* error) {
  for (auto it = record.begin(); it != record.end(); ++it) {
    if (!ReadProperty(it.key(), it.value(), object, error)) return false;
  }
  return true;
}
