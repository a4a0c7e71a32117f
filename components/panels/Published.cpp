#include "components/panels/Published.h"

#include <QFont>
#include <QMetaEnum>
#include <QWidget>
#include <climits>

#include "components/links/Properties.h"
#include "model/Colortext.h"

namespace {

bool IsSubObject(const QMetaProperty& property) {
  const QMetaObject* meta = property.metaType().metaObject();
  return (property.metaType().flags() & QMetaType::PointerToQObject) && meta &&
         !meta->inherits(&QWidget::staticMetaObject);
}

QObject* SubObject(QObject* object, const QMetaProperty& property) {
  return IsSubObject(property) ? property.read(object).value<QObject*>() : nullptr;
}

void Visit(QObject& object, const QString& prefix,
           const std::function<void(const TPublished&)>& visit) {
  ForEachOwnProperty(object, [&](const QMetaProperty& property) {
    const QString path = prefix + QString::fromLatin1(property.name());
    if (!IsSubObject(property)) {
      if (property.isWritable()) visit({path, &object, property});
    } else if (QObject* sub = SubObject(&object, property)) {
      Visit(*sub, path + '.', visit);
    }
  });
}

bool Refuse(QString* reason, const QString& text) {
  if (reason) *reason = text;
  return false;
}

/// Names of an enumeration may come with their scope in front.
QByteArray Keys(const QString& text) {
  QByteArrayList keys;
  for (const QString& key : text.split('|', Qt::SkipEmptyParts)) {
    keys.append(key.section(QLatin1String("::"), -1).trimmed().toLatin1());
  }
  return keys.join('|');
}

QVariant EnumFrom(const QMetaProperty& property, const TFormValue& value) {
  const QByteArray keys = Keys(value.Text);
  bool known = property.isFlagType() && keys.isEmpty();
  const int key = known ? 0 : property.enumerator().keysToValue(keys.constData(), &known);
  return known ? QVariant(key) : QVariant();
}

/// Nothing if the text is no number of the type.
QVariant NumberFrom(int type, const QString& text) {
  bool isNumber = false;
  if (type == QMetaType::Double) {
    const double number = text.toDouble(&isNumber);
    return isNumber ? QVariant(number) : QVariant();
  }
  const qlonglong number = text.toLongLong(&isNumber);
  if (!isNumber || (type == QMetaType::Int && (number < INT_MIN || number > INT_MAX))) return {};
  if ((type == QMetaType::UInt && (number < 0 || number > UINT_MAX))) return {};
  return number;
}

bool IsNumber(int type) {
  return type == QMetaType::Double || type == QMetaType::Int || type == QMetaType::UInt ||
         type == QMetaType::LongLong;
}

QVariant FromForm(const QMetaProperty& property, const TFormValue& value) {
  const int type = property.typeId();
  if (property.isEnumType()) return EnumFrom(property, value);
  if (type == qMetaTypeId<TColor>()) {
    const std::optional<TColor> color = ColorFromText(value.Text);
    return color ? QVariant::fromValue(*color) : QVariant();
  }
  if (IsNumber(type)) return NumberFrom(type, value.Text);
  if (type == QMetaType::Bool) {
    const bool yes = value.Text == QLatin1String("true");
    return yes || value.Text == QLatin1String("false") ? QVariant(yes) : QVariant();
  }
  if (type == QMetaType::QStringList) {
    if (value.Kind == QLatin1String("stringlist")) return value.Items;
    return value.Text.isEmpty() ? QStringList() : QStringList(value.Text);
  }
  if (value.Kind == QLatin1String("stringlist")) return {};
  if (type == QMetaType::QFont) {
    QFont font;
    return font.fromString(value.Text) ? QVariant(font) : QVariant();
  }
  QVariant result(value.Text);
  return result.convert(property.metaType()) ? result : QVariant();
}

QString KindName(const QMetaProperty& property) {
  const int type = property.typeId();
  if (property.isEnumType()) {
    return QStringLiteral("one of the names of %1").arg(property.enumerator().enumName());
  }
  if (type == qMetaTypeId<TColor>()) return QStringLiteral("a colour");
  if (type == QMetaType::Double) return QStringLiteral("a number");
  if (IsNumber(type)) return QStringLiteral("a whole number");
  if (type == QMetaType::Bool) return QStringLiteral("true or false");
  return QStringLiteral("a %1").arg(property.typeName());
}

}  // namespace

void ForEachPublished(QObject& component, const std::function<void(const TPublished&)>& visit) {
  Visit(component, QString(), visit);
}

void ForEachStored(QObject& component, const std::function<void(const TPublished&)>& visit) {
  ForEachPublished(component, [&](const TPublished& published) {
    if (published.Property.isStored()) visit(published);
  });
}

bool IsOwnProperty(const QMetaObject& componentClass, const QString& path) {
  return componentClass.indexOfProperty(path.section('.', 0, 0).toLatin1()) >=
         FirstOwnProperty(componentClass);
}

std::optional<TPublished> FindPublished(QObject& component, const QString& path, QString* reason) {
  QObject* object = &component;
  const QStringList names = path.split('.');
  for (qsizetype i = 0; i < names.size(); ++i) {
    const QMetaObject* meta = object->metaObject();
    const int index = meta->indexOfProperty(names[i].toLatin1());
    if (index < FirstOwnProperty(*meta)) {
      Refuse(reason, QStringLiteral("%1 has no property %2").arg(meta->className(), names[i]));
      return {};
    }
    const QMetaProperty property = meta->property(index);
    QObject* sub = SubObject(object, property);
    const bool last = i + 1 == names.size();
    if (!sub && last) return TPublished{path, object, property};
    if (!sub || last) {
      Refuse(reason, last ? QStringLiteral("it has properties of its own and no value")
                          : QStringLiteral("%1 has no properties of its own").arg(names[i]));
      return {};
    }
    object = sub;
  }
  return {};
}

TFormValue WriteFormValue(const TPublished& published) {
  const QMetaProperty& property = published.Property;
  const QVariant value = property.read(published.Object);
  const int type = property.typeId();
  if (property.isEnumType()) {
    const QByteArray keys = property.enumerator().valueToKeys(value.toInt());
    return {property.isFlagType() ? "set" : "enum", QString::fromLatin1(keys), {}};
  }
  if (type == qMetaTypeId<TColor>()) return {"string", ColorText(value.value<TColor>()), {}};
  if (type == QMetaType::QStringList) return {"stringlist", {}, value.toStringList()};
  if (type == QMetaType::Bool) return {"bool", value.toBool() ? "true" : "false", {}};
  if (type == QMetaType::Double) {
    return {"double", QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest), {}};
  }
  if (IsNumber(type)) {
    const bool isLong = type == QMetaType::LongLong;
    return {isLong ? "longlong" : "number", QString::number(value.toLongLong()), {}};
  }
  if (type == QMetaType::QFont) return {"string", value.value<QFont>().toString(), {}};
  const QString text = value.toString();
  // As a "string" the toolkit reads blanks as nothing.
  const bool isBlank = !text.isEmpty() && text.trimmed().isEmpty();
  return {isBlank ? "cstring" : "string", text, {}};
}

QString ShownText(const TFormValue& value) {
  constexpr qsizetype kMost = 100;
  const QString text = value.Items.isEmpty() ? value.Text : value.Items.join(QLatin1String(", "));
  return text.size() <= kMost ? text : text.left(kMost) + QLatin1String("...");
}

QVariant ReadFormValue(const TPublished& published, const TFormValue& value, QString* reason) {
  QVariant result = FromForm(published.Property, value);
  if (result.isValid() && result.convert(published.Property.metaType())) return result;
  Refuse(reason,
         QStringLiteral("'%1' is not %2").arg(ShownText(value), KindName(published.Property)));
  return {};
}
