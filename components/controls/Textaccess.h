#pragma once

#include <QAccessibleWidget>

#include "components/controls/Textcontrol.h"

/// What programs for those who cannot see the screen are told of a text control: its text, unless
/// the form gives it another name. GUI thread only.
class TTextAccess : public QAccessibleWidget {
 public:
  explicit TTextAccess(TCustomTextControl* control,
                       QAccessible::Role role = QAccessible::StaticText)
      : QAccessibleWidget(control, role) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    if (kind != QAccessible::Name || !own.isEmpty()) return own;
    return static_cast<const TCustomTextControl*>(widget())->Text();
  }
};
