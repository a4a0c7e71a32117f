#pragma once

#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QExtensionFactory>
#include <map>
#include <vector>

#include "components/package/Published.h"

class QDesignerFormEditorInterface;

/// Makes the published properties of a component's sub-objects editable in Designer, under dotted
/// names, beside the component's own: Designer by itself knows neither sub-objects nor TColor. The
/// properties that it knows are left to its own sheet.
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
    bool IsMoved() const { return WriteFormValue(published) != initial; }
  };
  /// Null for an index of the component's own sheet.
  const TEntry* Extra(int index) const;
  QVariant Plain(const QVariant& value);
  void ShowAgain(int button);

  QDesignerFormEditorInterface& core_;
  QObject carrier_;  ///< see Plain
  QWidget& component_;
  QDesignerPropertySheetExtension& own_;
  std::vector<TEntry> extras_;        ///< behind the properties of the component's own sheet
  std::map<int, TEntry> ownEntries_;  ///< by their index in the component's own sheet
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
