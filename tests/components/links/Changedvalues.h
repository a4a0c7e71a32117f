#pragma once

#include <QCoreApplication>
#include <QFont>
#include <QMap>
#include <QMetaEnum>
#include <map>
#include <string>

#include "components/panels/Published.h"
#include "model/Color.h"

/// For properties that take no text but one with a meaning, by the end of their path.
inline QVariant Meaningful(const QString& name, QString old) {
  static const QMap<QString, QVariant> kValues = {
      {"Levels", QStringList{"1; #2e9e5b; #ffffff; Normal", "2; #f2b01e; #2b2100; Ä <&>"}},
      {"FileName", QCoreApplication::applicationFilePath()},
      {"PortNum", "COM7"},
      {"Separator", " "},
      {"AnalysisTypes", 0},
      {"Items", "[{\"Label\":\"<a>\",\"ChannelCount\":1,\"Channels\":[{\"Label\":\"x\"}]}]"},
      {"StatData", "2 3 5"},
      {"SeriesData", "[{\"Class\":\"TSeries\"}]"},
      {"Data", "1 1\n2 1"},
      {"DataValues", "1 2\n3 0.1"}};
  if (name == QLatin1String("SeriesData") && old.size() > 2) {
    return old.replace(QLatin1String("\"Visible\":true"), QLatin1String("\"Visible\":false"));
  }
  if (name == QLatin1String("DataValues") && !old.isEmpty()) {
    return old.replace(QLatin1String(" 0 0"), QLatin1String(" 7 0"));
  }
  return kValues.value(name);
}

/// Gives a property another value than it has, if its setter lets it.
inline void Change(const TPublished& published) {
  const QMetaProperty& property = published.Property;
  const QVariant old = property.read(published.Object);
  QVariant value = old;
  if (property.isEnumType()) {
    const QMetaEnum names = property.enumerator();
    value = names.value(names.value(0) == old.toInt() ? names.keyCount() - 1 : 0);
  } else if (property.typeId() == QMetaType::Bool) {
    value = !old.toBool();
  } else if (property.typeId() == QMetaType::Int) {
    value = old.toInt() + 3;
  } else if (property.typeId() == QMetaType::LongLong) {
    value = old.toLongLong() + (1LL << 40);
  } else if (property.typeId() == QMetaType::Double) {
    value = old.toDouble() + 1e-9;
  } else if (property.typeId() == QMetaType::QString) {
    value = QStringLiteral("Ä <&\"> 1\n2");
  } else if (property.typeId() == QMetaType::QStringList) {
    value = QStringList{QStringLiteral("Ä <&\"> 1"), QStringLiteral(" "), QString()};
  } else if (property.typeId() == QMetaType::QFont) {
    value = QFont(QStringLiteral("Liberation Serif"), 11, QFont::Bold);
  } else if (property.typeId() == qMetaTypeId<TColor>()) {
    value = QVariant::fromValue(old.value<TColor>().IsNone() ? TColor::Blue() : TColor::None());
  }
  const QVariant special = Meaningful(published.Path.section('.', -1), old.toString());
  property.write(published.Object, special.isValid() ? special : value);
}

/// The stored properties by their paths.
inline std::map<std::string, std::string> StoredOf(QObject& component) {
  std::map<std::string, std::string> result;
  ForEachStored(component, [&](const TPublished& published) {
    const TFormValue value = WriteFormValue(published);
    const QString text = value.Kind + ": " + value.Text + value.Items.join(" | ");
    result.emplace(published.Path.toStdString(), text.toStdString());
  });
  return result;
}

/// As a form writes a property and a widget.
inline QString PropertyOf(const QString& name, const QString& kind, const QString& value) {
  return QStringLiteral("<property name=\"%1\" stdset=\"0\"><%2>%3</%2></property>\n")
      .arg(name, kind, value);
}
inline QString WidgetOf(const QString& type, const QString& name, const QString& properties = {}) {
  return QStringLiteral("<widget class=\"%1\" name=\"%2\">\n%3</widget>\n")
      .arg(type, name, properties);
}
