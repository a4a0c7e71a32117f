#include "designer/Propertysheet.h"

#include <QColor>
#include <QtDesigner/QDesignerDynamicPropertySheetExtension>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QExtensionManager>

#include "components/package/Registry.h"
#include "model/Color.h"

namespace {

bool IsColor(const TPublished& published) {
  return published.Property.typeId() == qMetaTypeId<TColor>();
}

/// As a type that Designer can edit. A colour that is not painted is a transparent one.
QVariant ToDesigner(const TPublished& published) {
  const QVariant value = published.Property.read(published.Object);
  if (published.Property.isEnumType()) return WriteFormValue(published).Text;
  if (!IsColor(published)) return value;
  const TColor color = value.value<TColor>();
  return color.IsNone() || color.IsInherited() ? QColor(Qt::transparent) : color.ToQColor();
}

/// What its properties are shown instead of.
bool IsSubObject(const QWidget& component, const QString& name) {
  const QMetaObject* meta = component.metaObject();
  const QMetaProperty property = meta->property(meta->indexOfProperty(name.toLatin1()));
  return property.metaType().flags() & QMetaType::PointerToQObject;
}

QVariant FromDesigner(const TPublished& published, const QVariant& value) {
  if (published.Property.isEnumType()) {
    return ReadFormValue(published, {QString(), value.toString(), {}}, nullptr);
  }
  if (!IsColor(published)) return value;
  const QColor color = value.value<QColor>();
  return QVariant::fromValue(color.alpha() == 0 ? TColor::None() : TColor::FromQColor(color));
}

}  // namespace

TPropertySheet::TPropertySheet(QWidget& component, QDesignerPropertySheetExtension& own,
                               QDesignerFormEditorInterface& core, QObject* parent)
    : QObject(parent), core_(core), component_(component), own_(own) {
  ForEachPublished(component_, [this](const TPublished& published) {
    const QMetaProperty& property = published.Property;
    if (!property.isStored() && !property.isDesignable()) return;
    TEntry entry{published, WriteFormValue(published)};
    if (published.Path.contains('.') || IsColor(published)) {
      extras_.push_back(std::move(entry));
    } else if (const int index = own_.indexOf(published.Path); index >= 0 && property.isStored()) {
      ownEntries_.emplace(index, std::move(entry));
    }
  });
}

const TPropertySheet::TEntry* TPropertySheet::Extra(int index) const {
  const int extra = index - own_.count();
  return extra >= 0 && extra < static_cast<int>(extras_.size())
             ? &extras_[static_cast<std::size_t>(extra)]
             : nullptr;
}

int TPropertySheet::count() const { return own_.count() + static_cast<int>(extras_.size()); }

int TPropertySheet::indexOf(const QString& name) const {
  for (std::size_t i = 0; i < extras_.size(); ++i) {
    if (extras_[i].published.Path == name) return own_.count() + static_cast<int>(i);
  }
  return own_.indexOf(name);
}

QString TPropertySheet::propertyName(int index) const {
  const TEntry* extra = Extra(index);
  return extra ? extra->published.Path : own_.propertyName(index);
}

QString TPropertySheet::propertyGroup(int index) const {
  const TEntry* extra = Extra(index);
  if (!extra) return own_.propertyGroup(index);
  const QString className = QString::fromLatin1(component_.metaObject()->className());
  const QString& path = extra->published.Path;
  return path.contains('.') ? className + '.' + path.section('.', 0, 0) : className;
}

void TPropertySheet::setPropertyGroup(int index, const QString& group) {
  if (!Extra(index)) own_.setPropertyGroup(index, group);
}

bool TPropertySheet::hasReset(int index) const { return Extra(index) || own_.hasReset(index); }

bool TPropertySheet::reset(int index) {
  const TEntry* extra = Extra(index);
  if (!extra) return own_.reset(index);
  const QVariant value = ReadFormValue(extra->published, extra->initial, nullptr);
  return extra->published.Property.write(extra->published.Object, value);
}

/// Hidden properties, such as the samples of a channel, are kept when a form is saved.
bool TPropertySheet::isVisible(int index) const {
  const TEntry* extra = Extra(index);
  if (extra) return extra->published.Property.isDesignable();
  return own_.isVisible(index) && !IsSubObject(component_, own_.propertyName(index));
}

void TPropertySheet::setVisible(int index, bool visible) {
  if (!Extra(index)) own_.setVisible(index, visible);
}

bool TPropertySheet::isAttribute(int index) const {
  return !Extra(index) && own_.isAttribute(index);
}

void TPropertySheet::setAttribute(int index, bool attribute) {
  if (!Extra(index)) own_.setAttribute(index, attribute);
}

QVariant TPropertySheet::property(int index) const {
  const TEntry* extra = Extra(index);
  return extra ? ToDesigner(extra->published) : own_.property(index);
}

void TPropertySheet::setProperty(int index, const QVariant& value) {
  const TEntry* extra = Extra(index);
  if (!extra) return own_.setProperty(index, value);
  const QVariant wanted = FromDesigner(extra->published, Plain(value));
  if (!wanted.isValid()) return;
  extra->published.Property.write(extra->published.Object, wanted);
  if (!extra->published.Property.isStored()) ShowAgain(index);
}

/// A button has done its work: its box is empty again, and other properties may have moved.
void TPropertySheet::ShowAgain(int button) {
  QMetaObject::invokeMethod(
      this,
      [this, button] {
        QDesignerPropertyEditorInterface* editor = core_.propertyEditor();
        if (!editor || editor->object() != &component_) return;
        // The box in which the click was made hears of changes alone.
        editor->setPropertyValue(propertyName(button), true, false);
        for (int i = 0; i < count(); ++i) {
          if (isVisible(i)) editor->setPropertyValue(propertyName(i), property(i), isChanged(i));
        }
      },
      Qt::QueuedConnection);
}

/// Designer hands strings over with what translators need, in types of its own that only its own
/// sheets can read: one of them unpacks the value into an object made for that.
QVariant TPropertySheet::Plain(const QVariant& value) {
  if (value.typeId() < QMetaType::User) return value;
  static const QString kName = QStringLiteral("carried");
  auto* sheet = qt_extension<QDesignerPropertySheetExtension*>(core_.extensionManager(), &carrier_);
  auto* dynamic =
      qt_extension<QDesignerDynamicPropertySheetExtension*>(core_.extensionManager(), &carrier_);
  if (!sheet || !dynamic || !dynamic->dynamicPropertiesAllowed()) return value;
  const int index =
      sheet->indexOf(kName) < 0 ? dynamic->addDynamicProperty(kName, value) : sheet->indexOf(kName);
  if (index < 0) return value;
  sheet->setProperty(index, value);
  return carrier_.property(kName.toLatin1());
}

bool TPropertySheet::isChanged(int index) const {
  if (const TEntry* extra = Extra(index)) return extra->IsMoved();
  const auto found = ownEntries_.find(index);
  return own_.isChanged(index) || (found != ownEntries_.end() && found->second.IsMoved());
}

void TPropertySheet::setChanged(int index, bool changed) {
  if (!Extra(index)) own_.setChanged(index, changed);
}

bool TPropertySheet::isEnabled(int index) const { return Extra(index) || own_.isEnabled(index); }

TPropertySheetFactory::TPropertySheetFactory(QDesignerFormEditorInterface& core)
    : QExtensionFactory(core.extensionManager()), core_(core) {}

QObject* TPropertySheetFactory::createExtension(QObject* object, const QString& iid,
                                                QObject* parent) const {
  if (asking_ || iid != QLatin1String(Q_TYPEID(QDesignerPropertySheetExtension))) return nullptr;
  auto* widget = qobject_cast<QWidget*>(object);
  if (!widget || !FindComponentClass(QString::fromLatin1(widget->metaObject()->className()))) {
    return nullptr;
  }
  asking_ = true;
  auto* own = qt_extension<QDesignerPropertySheetExtension*>(extensionManager(), object);
  asking_ = false;
  return own ? new TPropertySheet(*widget, *own, core_, parent) : nullptr;
}
