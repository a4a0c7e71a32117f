#pragma once

#include <QString>
#include <memory>

#include "components/panels/Panel.h"

/// A form with these widgets in it; the first of them begins in line 5.
inline QString FormOf(const QString& widgets) {
  return QStringLiteral(
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ui version=\"4.0\">\n"
             " <class>Panel</class>\n <widget class=\"QWidget\" name=\"Panel\">\n%1 </widget>\n"
             "</ui>\n")
      .arg(widgets);
}

/// A panel that has been started.
inline std::unique_ptr<TPanel> LoadForm(const QString& widgets, QStringList* faults) {
  auto panel = TPanel::FromText(FormOf(widgets), QStringLiteral("p.ui"), faults);
  if (panel) panel->Start();
  return panel;
}
