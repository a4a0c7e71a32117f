#pragma once

#include <QMetaProperty>
#include <QPointer>
#include <QVariant>
#include <QWidget>
#include <functional>
#include <vector>

#include "components/links/Propclasses.h"

class QFormLayout;

/// Edits every published property of an object and of its sub-objects, whatever its class: one row
/// each, whose widget bears the property's name. An edit takes effect at once, and what the object
/// makes of it is shown; so is a change that comes from elsewhere. GUI thread only.
class TPropertyForm : public QWidget {
  Q_OBJECT

 public:
  /// The object is not owned and may go first.
  explicit TPropertyForm(TPersistent& object, QWidget* parent = nullptr);

  /// What has been edited becomes what Revert restores.
  void Commit() { edits_.clear(); }
  /// Gives the properties that were edited their earlier values; others keep theirs.
  void Revert();

 private:
  struct TField {
    QPointer<TPersistent> object;
    QMetaProperty property;
  };
  struct TEdit {
    TField field;
    QVariant before;
  };

  void AddRows(QFormLayout& form, TPersistent& object);
  QWidget* MakeEditor(const TField& field);
  QWidget* MakeChoice(const TField& field);
  QWidget* MakeSet(const TField& field);
  QWidget* MakeText(const TField& field);
  void Write(const TField& field, const QVariant& value);
  void Refresh();
  /// Has `show` called with the present value now and after each change.
  template <class TShow>
  void Show(const TField& field, TShow show);

  std::vector<std::function<void()>> shows_;
  std::vector<TEdit> edits_;  ///< oldest first, each property once
  bool refreshing_ = false;
};
