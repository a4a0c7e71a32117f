#pragma once

#include "components/panels/Panel.h"

#include "tests/support/Testing.h"

/// A form with these widgets in it; the first of them begins in line 5.
inline QString FormOf(const QString& widgets) {
  return QStringLiteral(
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ui version=\"4.0\">\n"
             " <class>Panel</class>\n <widget class=\"QWidget\" name=\"Panel\">\n%1 </widget>\n"
             "</ui>\n")
      .arg(widgets);
}

/// Such a form as a file of the test's folder; returns its full name.
inline QString WriteForm(const QString& name, const QString& widgets) {
  return WriteTestFile(name, FormOf(widgets).toUtf8());
}

/// A line of a form's connections: of "a clicked() b toggle()".
inline QString ConnectionOf(const QString& ends) {
  const QStringList parts = ends.split(' ');
  return QStringLiteral(
             "<connection><sender>%1</sender><signal>%2</signal><receiver>%3</receiver><slot>%4"
             "</slot><hints><hint type=\"sourcelabel\"><x>1</x></hint></hints></connection>\n")
      .arg(parts[0], parts[1], parts[2], parts[3]);
}

/// A panel that has been started.
inline std::unique_ptr<TPanel> LoadForm(const QString& widgets, QStringList* faults) {
  auto panel = TPanel::FromText(FormOf(widgets), QStringLiteral("p.ui"), faults);
  if (panel) panel->Start();
  return panel;
}
