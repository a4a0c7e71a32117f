#pragma once

#include <QAccessibleWidget>
#include <functional>
#include <utility>

/// What programs for those who cannot see the screen get of a widget that draws a text: that
/// text, unless the form gives it another name. GUI thread only.
class TTextAccess : public QAccessibleWidget {
 public:
  TTextAccess(QWidget* widget, QAccessible::Role role, std::function<QString()> shown)
      : QAccessibleWidget(widget, role), shown_(std::move(shown)) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? shown_() : own;
  }

 private:
  std::function<QString()> shown_;
};
