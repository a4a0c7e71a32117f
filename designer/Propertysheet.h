#pragma once

#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QExtensionFactory>
#include <map>
#include <utility>
#include <vector>

#include "components/panels/Published.h"

class QDesignerFormEditorInterface;

/// Makes the published properties of a component's sub-objects editable in Designer, under dotted
/// names, beside the component's own: Designer by itself knows neither sub-objects nor TColor. What
/// Designer knows is left to the sheets that it makes for the component and each sub-object. What
/// its form files would change, such as the last digits of a number, goes as text.
///
/// A property is saved when it differs from that of a new component, whoever has changed it: a
/// setter that moves another property, or a button such as ShiftToInitial.Click.
class TPropertySheet : public QObject, public QDesignerPropertySheetExtension {
  Q_OBJECT
  Q_INTERFACES(QDesignerPropertySheetExtension)

 public:
  /// `own` is Designer's sheet of the component; neither is owned.
  TPropertySheet(QWidget& component, QDesignerPropertySheetExtension& own,
                 QDesignerFormEditorInterface& core, QObject* parent);

  int count() const override;
  int indexOf(const QString& name) const override;
  QString propertyName(int index) const override;
  QString propertyGroup(int index) const override;
  void setPropertyGroup(int index, const QString& group) override;
  bool hasReset(int index) const override;
  bool reset(int index) override;
  bool isVisible(int index) const override;
  void setVisible(int index, bool visible) override;
  bool isAttribute(int index) const override;
  void setAttribute(int index, bool attribute) override;
  QVariant property(int index) const override;
  void setProperty(int index, const QVariant& value) override;
  bool isChanged(int index) const override;
  void setChanged(int index, bool changed) override;
  bool isEnabled(int index) const override;

 private:
  /// A published property with the value that a new component has.
  struct TEntry {
    TPublished published;
    TFormValue initial;
    QDesignerPropertySheetExtension* sheet;  ///< Designer's, of the object that publishes it
    int index;                               ///< in that sheet
    /// Designer writes no set without elements: beside the entry of the set there is one, which it
    /// does not show, that takes its place then.
    bool isEmptySet = false;

    bool IsMoved() const;
  };
  struct TRefused {
    QVariant value;      ///< as Designer gave it
    TFormValue instead;  ///< what the property has
  };
  /// Null for an index of the component's own sheet.
  const TEntry* Extra(int index) const;
  /// Null for an index of the toolkit's classes.
  const TEntry* Published(int index) const;
  QVariant Shown(const TEntry& entry) const;
  /// Null unless the property still has what it had when it refused a value.
  const TRefused* Refused(const TEntry& entry) const;
  void Take(const TEntry& entry, const QVariant& value);
  bool Stands(const TEntry& entry, const QVariant& value);
  void Settle();
  void KeepIfRefused(const TEntry& entry, const QVariant& value);
  QVariant Plain(const QVariant& value);
  void ShowAgain(int button);
  void ShowOtherEditor();

  QDesignerFormEditorInterface& core_;
  QObject carrier_;  ///< see Plain
  QWidget& component_;
  QDesignerPropertySheetExtension& own_;
  /// Behind the properties of the component's own sheet, which grow in number: one that Designer
  /// does not know becomes dynamic.
  std::vector<TEntry> extras_;
  std::map<int, TEntry> ownEntries_;  ///< by their index in the component's own sheet
  /// By a form that is being read, see Settle.
  std::vector<std::pair<const TEntry*, QVariant>> taken_;
  std::map<const TEntry*, TRefused> refused_;
};

/// Gives Designer such a sheet for every component.
class TPropertySheetFactory : public QExtensionFactory {
  Q_OBJECT

 public:
  explicit TPropertySheetFactory(QDesignerFormEditorInterface& core);

 protected:
  QObject* createExtension(QObject* object, const QString& iid, QObject* parent) const override;

 private:
  QDesignerFormEditorInterface& core_;
  mutable bool asking_ = false;  ///< Designer's own factories for their sheet
};
