#include "designer/Designerplugin.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QExtensionManager>

#include "components/controls/Compbase.h"
#include "components/controls/Designmode.h"
#include "components/controls/Iconimages.h"
#include "components/panels/Registry.h"
#include "designer/Propertysheet.h"

namespace {

/// The nearest class below it that Designer knows.
QString BaseOf(const QMetaObject& component) {
  const QMetaObject* base = component.superClass();
  const auto isKnown = [&] {
    const QString name = QString::fromLatin1(base->className());
    return name.startsWith('Q') || FindComponentClass(name);
  };
  while (!isKnown()) base = base->superClass();
  return QString::fromLatin1(base->className());
}

/// One component class as Designer sees it.
class TDesignerWidget : public QDesignerCustomWidgetInterface {
 public:
  explicit TDesignerWidget(const TComponentClass& component) : class_(component) {}

  QString name() const override { return class_.Name; }
  QString group() const override { return "Velmora " + class_.Page; }
  QString toolTip() const override { return class_.Name; }
  QString whatsThis() const override { return {}; }
  QString includeFile() const override { return class_.Header; }
  bool isContainer() const override { return class_.IsContainer; }
  bool isInitialized() const override { return initialized_; }

  QIcon icon() const override {
    const std::unique_ptr<QWidget> component(class_.Make(nullptr));
    const auto* control = qobject_cast<const TIconControl*>(component.get());
    constexpr int kSide = 48;
    QPixmap picture(kSide, kSide);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const QString image = control ? control->GetIconImage() : QString();
    DrawIconImage(painter, QRectF(0, 0, kSide, kSide), image.isEmpty() ? class_.Name : image);
    return picture;
  }

  void initialize(QDesignerFormEditorInterface* core) override {
    if (initialized_) return;
    initialized_ = true;
    static bool registered = false;
    if (std::exchange(registered, true)) return;
    core->extensionManager()->registerExtensions(new TPropertySheetFactory(*core),
                                                 Q_TYPEID(QDesignerPropertySheetExtension));
  }

  QWidget* createWidget(QWidget* parent) override {
    QWidget* component = class_.Make(parent);
    // It stores what is set and starts nothing.
    class_.BeginLoading(component);
    SetDesignMode(component, true);
    return component;
  }

  QString domXml() const override {
    QString name = class_.Name.mid(1);
    name[0] = name[0].toLower();
    return QStringLiteral(
               "<ui language=\"c++\"><widget class=\"%1\" "
               "name=\"%2\"/><customwidgets><customwidget>"
               "<class>%1</class><extends>%3</extends></customwidget></customwidgets></ui>")
        .arg(class_.Name, name, BaseOf(*class_.Meta));
  }

 private:
  const TComponentClass& class_;
  bool initialized_ = false;
};

}  // namespace

TDesignerPlugin::TDesignerPlugin() {
  for (const TComponentClass& component : ComponentClasses()) {
    widgets_.push_back(std::make_unique<TDesignerWidget>(component));
  }
}

TDesignerPlugin::~TDesignerPlugin() = default;

QList<QDesignerCustomWidgetInterface*> TDesignerPlugin::customWidgets() const {
  QList<QDesignerCustomWidgetInterface*> result;
  for (const auto& widget : widgets_) result.append(widget.get());
  return result;
}
