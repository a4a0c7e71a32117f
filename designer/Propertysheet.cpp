#include "designer/Propertysheet.h"

#include <QColor>
#include <QFont>
#include <QtDesigner/QDesignerDynamicPropertySheetExtension>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QExtensionManager>
#include <utility>

#include "components/panels/Registry.h"
#include "model/Color.h"

namespace {

bool IsColor(const TPublished& published) {
  return published.Property.typeId() == qMetaTypeId<TColor>();
}

/// Designer writes numbers with 15 digits behind the point, and its box shows six.
bool IsExact(double number) { return QString::number(number, 'f', 6).toDouble() == number; }

/// Designer writes whole points, and not every attribute.
bool IsExact(const QFont& font) {
  QFont written(font.family(), font.pointSize());
  written.setBold(font.bold());
  written.setItalic(font.italic());
  written.setUnderline(font.underline());
  written.setStrikeOut(font.strikeOut());
  return written.toString() == font.toString();
}

/// Designer reads no string of blanks.
bool IsExact(const QString& text) { return text.isEmpty() || !text.trimmed().isEmpty(); }

/// What Designer would not show, read or write as it is goes as the text that forms hold.
bool NeedsText(const QVariant& value) {
  switch (value.typeId()) {
    case QMetaType::Double:
      return !IsExact(value.toDouble());
    case QMetaType::QFont:
      return !IsExact(value.value<QFont>());
    default:
      return value.typeId() == qMetaTypeId<TColor>() && value.value<TColor>().IsInherited();
  }
}

/// A colour that is not painted is a transparent one.
QColor ShownColor(TColor color) {
  return color.IsNone() ? QColor(Qt::transparent) : color.ToQColor();
}

/// What its properties are shown instead of.
bool IsSubObject(const QWidget& component, const QString& name) {
  const QMetaObject* meta = component.metaObject();
  const QMetaProperty property = meta->property(meta->indexOfProperty(name.toLatin1()));
  return property.metaType().flags() & QMetaType::PointerToQObject;
}

bool IsText(const TPublished& published) {
  const int type = published.Property.typeId();
  return type == QMetaType::QString || type == QMetaType::QStringList;
}

/// Invalid if the property does not take it.
QVariant FromDesigner(const TPublished& published, QVariant value) {
  const int type = published.Property.typeId();
  const bool isText = value.typeId() == QMetaType::QString;
  if (isText && type != QMetaType::QString) {
    return ReadFormValue(published, {QStringLiteral("string"), value.toString(), {}}, nullptr);
  }
  if (IsColor(published) && value.typeId() == QMetaType::QColor) {
    const QColor color = value.value<QColor>();
    return QVariant::fromValue(color.alpha() == 0 ? TColor::None() : TColor::FromQColor(color));
  }
  return value.convert(published.Property.metaType()) ? value : QVariant();
}

}  // namespace

TPropertySheet::TPropertySheet(QWidget& component, QDesignerPropertySheetExtension& own,
                               QDesignerFormEditorInterface& core, QObject* parent)
    : QObject(parent), core_(core), component_(component), own_(own) {
  ForEachPublished(component_, [this](const TPublished& published) {
    const QMetaProperty& property = published.Property;
    if (!property.isStored() && !property.isDesignable()) return;
    const bool isOwn = published.Object == &component_;
    auto* sheet = isOwn ? &own_
                        : qt_extension<QDesignerPropertySheetExtension*>(core_.extensionManager(),
                                                                         published.Object);
    if (!sheet) return;
    const int index = sheet->indexOf(QString::fromLatin1(property.name()));
    TEntry entry{published, WriteFormValue(published), sheet, index};
    if (!isOwn) {
      extras_.push_back(entry);
    } else if (property.isStored()) {
      ownEntries_.emplace(index, entry);
    }
    entry.isEmptySet = true;
    if (property.isFlagType() && !entry.initial.Text.isEmpty()) extras_.push_back(entry);
  });
}

const TPropertySheet::TEntry* TPropertySheet::Extra(int index) const {
  const int extra = index - own_.count();
  return extra >= 0 && extra < static_cast<int>(extras_.size())
             ? &extras_[static_cast<std::size_t>(extra)]
             : nullptr;
}

const TPropertySheet::TEntry* TPropertySheet::Published(int index) const {
  const auto own = ownEntries_.find(index);
  return own == ownEntries_.end() ? Extra(index) : &own->second;
}

int TPropertySheet::count() const { return own_.count() + static_cast<int>(extras_.size()); }

int TPropertySheet::indexOf(const QString& name) const {
  for (std::size_t i = 0; i < extras_.size(); ++i) {
    const TEntry& extra = extras_[i];
    if (!extra.isEmptySet && extra.published.Path == name)
      return own_.count() + static_cast<int>(i);
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
  return className + '.' + extra->published.Path.section('.', 0, 0);
}

void TPropertySheet::setPropertyGroup(int index, const QString& group) {
  if (!Extra(index)) own_.setPropertyGroup(index, group);
}

bool TPropertySheet::hasReset(int index) const { return Extra(index) || own_.hasReset(index); }

bool TPropertySheet::reset(int index) {
  refused_.erase(Published(index));
  const TEntry* extra = Extra(index);
  if (!extra) return own_.reset(index);
  const QVariant value = ReadFormValue(extra->published, extra->initial, nullptr);
  return extra->published.Property.write(extra->published.Object, value);
}

/// Hidden properties, such as the samples of a channel, are kept when a form is saved.
bool TPropertySheet::isVisible(int index) const {
  const TEntry* extra = Extra(index);
  if (extra) return extra->published.Property.isDesignable() && !extra->isEmptySet;
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
  const TEntry* entry = Published(index);
  if (!entry) return own_.property(index);
  const TRefused* refused = Refused(*entry);
  return refused ? refused->value : Shown(*entry);
}

/// Drop-down lists, check boxes, and texts with what translators need come from Designer's own
/// sheet of the sub-object.
QVariant TPropertySheet::Shown(const TEntry& entry) const {
  if (entry.isEmptySet) return QString();
  const TPublished& published = entry.published;
  const QVariant value = published.Property.read(published.Object);
  if (NeedsText(value)) return WriteFormValue(published).Text;
  if (IsColor(published)) return ShownColor(value.value<TColor>());
  const bool isString = value.typeId() == QMetaType::QString;
  if (isString && !IsExact(value.toString())) return value.toString().toUtf8();
  return entry.sheet->property(entry.index);
}

void TPropertySheet::setProperty(int index, const QVariant& value) {
  const TEntry* entry = Published(index);
  if (!entry) return own_.setProperty(index, value);
  const QDesignerPropertyEditorInterface* editor = core_.propertyEditor();
  if (!editor || editor->object() != &component_) {
    if (taken_.empty()) {
      QMetaObject::invokeMethod(
          this, [this] { Settle(); }, Qt::QueuedConnection);
    }
    taken_.emplace_back(entry, value);
    return Take(*entry, value);
  }
  const int shown = property(index).typeId();
  refused_.erase(entry);
  Take(*entry, value);
  if (IsText(entry->published)) KeepIfRefused(*entry, value);
  if (!entry->published.Property.isStored()) {
    ShowAgain(index);
  } else if (property(index).typeId() != shown) {
    ShowOtherEditor();
  }
}

void TPropertySheet::Take(const TEntry& entry, const QVariant& value) {
  const TPublished& published = entry.published;
  const QVariant wanted = FromDesigner(published, Plain(value));
  if (!wanted.isValid()) return;
  // With what translators need.
  if (IsText(published) && value.typeId() >= QMetaType::User) {
    entry.sheet->setProperty(entry.index, value);
  } else {
    published.Property.write(published.Object, wanted);
  }
}

/// Texts may be read as others than were set.
bool TPropertySheet::Stands(const TEntry& entry, const QVariant& value) {
  const TPublished& published = entry.published;
  const QVariant wanted = FromDesigner(published, Plain(value));
  if (!wanted.isValid()) return false;
  return published.Property.read(published.Object) == wanted ||
         (IsText(published) && WriteFormValue(published) != entry.initial);
}

/// Some setters look at other properties: what a later property of a form has moved is set again.
void TPropertySheet::Settle() {
  const auto taken = std::exchange(taken_, {});
  constexpr int kRounds = 2;
  for (int round = 0; round < kRounds; ++round) {
    for (const auto& [entry, value] : taken) {
      if (!Stands(*entry, value)) Take(*entry, value);
    }
  }
  for (const auto& [entry, value] : taken) KeepIfRefused(*entry, value);
}

/// A value that a property refuses, such as the name of a file that is not on this computer, stays
/// in the form until the property has another one.
void TPropertySheet::KeepIfRefused(const TEntry& entry, const QVariant& value) {
  refused_.erase(&entry);
  if (!entry.published.Property.isStored() || Stands(entry, value)) return;
  refused_.emplace(&entry, TRefused{value, WriteFormValue(entry.published)});
}

const TPropertySheet::TRefused* TPropertySheet::Refused(const TEntry& entry) const {
  const auto found = refused_.find(&entry);
  if (found == refused_.end()) return nullptr;
  return WriteFormValue(entry.published) == found->second.instead ? &found->second : nullptr;
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

/// A value that goes as text has another editor than one that does not.
void TPropertySheet::ShowOtherEditor() {
  QMetaObject::invokeMethod(
      this,
      [this] {
        QDesignerPropertyEditorInterface* editor = core_.propertyEditor();
        if (editor && editor->object() == &component_) editor->setObject(&component_);
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

bool TPropertySheet::TEntry::IsMoved() const {
  const TFormValue now = WriteFormValue(published);
  return now != initial && (!isEmptySet || now.Text.isEmpty());
}

bool TPropertySheet::isChanged(int index) const {
  const TEntry* entry = Published(index);
  if (entry && (entry->IsMoved() || Refused(*entry))) return true;
  return !Extra(index) && own_.isChanged(index);
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
