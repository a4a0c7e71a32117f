#pragma once

#include <QtDesigner/QtDesigner>
#include <QtWidgets>

/// A plug-in that takes a person's place at a running Designer: once the forms named on Designer's
/// command line are open, it does the steps in the file VELMORA_PROBE with the mouse and the keys,
/// writes what it has seen into the same file and ends Designer.
///
/// Each step is a line of words: "type COMPONENT PROPERTY TEXT", "choose COMPONENT PROPERTY NAME"
/// for a drop-down list, "tick COMPONENT PROPERTY NAME" for an element of a set, "press COMPONENT
/// PROPERTY" for a button, "save", "picture FILE", "retitle TEXT" for all forms, which it saves.
class TProbe : public QObject, public QDesignerFormEditorPluginInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.qt-project.Qt.Designer.QDesignerFormEditorPluginInterface")
  Q_INTERFACES(QDesignerFormEditorPluginInterface)

 public:
  bool isInitialized() const override { return core_; }
  void initialize(QDesignerFormEditorInterface* core) override;
  QAction* action() const override { return nullptr; }
  QDesignerFormEditorInterface* core() const override { return core_; }

 private:
  void LookForForm();
  void Run();
  QString Do(const QStringList& words);

  QPointer<QDesignerFormEditorInterface> core_;
  QTimer timer_;
};
