#pragma once

#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QExtensionFactory>
#include <vector>

#include "components/package/Published.h"

/// Makes the published properties of a component's sub-objects editable in Designer, under dotted
/// names, beside the component's own: Designer by itself knows neither sub-objects nor TColor. The
/// properties that it knows are left to its own sheet.
class TPropertySheet : public QObject, public QDesignerPropertySheetExtension {
  Q_OBJECT
  Q_INTERFACES(QDesignerPropertySheetExtension)

 public:
  /// `own` is Designer's sheet of the component; neither is owned.
  TPropertySheet(QWidget& component, QDesignerPropertySheetExtension& own,
                 QExtensionManager* manager, QObject* parent);

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
  struct TExtra {
    TPublished published;
    QVariant initial;
    bool changed = false;
  };
  const TExtra* Extra(int index) const;
  TExtra* Extra(int index) { return const_cast<TExtra*>(std::as_const(*this).Extra(index)); }

  QVariant Plain(const QVariant& value);

  QExtensionManager* manager_;
  QObject carrier_;  ///< see Plain
  QWidget& component_;
  QDesignerPropertySheetExtension& own_;
  std::vector<TExtra> extras_;
};

/// Gives Designer such a sheet for every component.
class TPropertySheetFactory : public QExtensionFactory {
  Q_OBJECT

 public:
  explicit TPropertySheetFactory(QExtensionManager* manager) : QExtensionFactory(manager) {}

 protected:
  QObject* createExtension(QObject* object, const QString& iid, QObject* parent) const override;

 private:
  mutable bool asking_ = false;  ///< Designer's own factories for their sheet
};
