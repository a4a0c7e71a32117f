#pragma once

#include "components/panels/Panel.h"

#include "tests/support/Testing.h"

/// A form with these widgets in it, of which the first begins in line 5, and with connections, such
/// as "a clicked() b toggle()".
inline QString FormOf(const QString& widgets, const QStringList& connections = {}) {
  QString made;
  for (const QString& ends : connections) {
    const QStringList parts = ends.split(' ');
    made += QStringLiteral(
                "<connection><sender>%1</sender><signal>%2</signal><receiver>%3</receiver><slot>%4"
                "</slot><hints><hint type=\"sourcelabel\"><x>1</x></hint></hints></connection>\n")
                .arg(parts[0], parts[1], parts[2], parts[3]);
  }
  if (!made.isEmpty()) made = "<connections>\n" + made + "</connections>";
  return QStringLiteral(
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ui version=\"4.0\">\n"
             " <class>Panel</class>\n <widget class=\"QWidget\" name=\"Panel\">\n%1 </widget>\n"
             "%2</ui>\n")
      .arg(widgets, made);
}

/// Such a form as a file of the test's folder; returns its full name.
inline QString WriteForm(const QString& name, const QString& widgets) {
  return WriteTestFile(name, FormOf(widgets).toUtf8());
}

/// A panel that has been started.
inline std::unique_ptr<TPanel> LoadForm(const QString& widgets, QStringList* faults) {
  auto panel = TPanel::FromText(FormOf(widgets), QStringLiteral("p.ui"), faults);
  if (panel) panel->Start();
  return panel;
}

/// One of a form without faults.
inline std::unique_ptr<TPanel> LoadSoundForm(const QString& widgets) {
  QStringList faults;
  auto panel = LoadForm(widgets, &faults);
  EXPECT_EQ(faults.join('\n').toStdString(), "");
  if (!panel) throw std::runtime_error("no panel");
  return panel;
}
