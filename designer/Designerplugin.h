#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <memory>
#include <vector>

/// Puts every component class on a page of Designer's palette.
class TDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
  Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

 public:
  TDesignerPlugin();
  ~TDesignerPlugin() override;

  QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

 private:
  std::vector<std::unique_ptr<QDesignerCustomWidgetInterface>> widgets_;
};
