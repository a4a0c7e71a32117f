#include "components/links/Propclasses.h"

#include <QCoreApplication>
#include <algorithm>

#include "components/links/Properties.h"

namespace {

/// Classes are related if they stand on one class behind the bases that publish nothing.
const QMetaObject* FirstClass(const TPersistent& object) {
  const QMetaObject* meta = object.metaObject();
  const auto isBase = [](const QMetaObject* candidate) {
    return candidate == &TPersistent::staticMetaObject ||
           candidate == &TNotifyPersistent::staticMetaObject;
  };
  while (!isBase(meta) && !isBase(meta->superClass())) meta = meta->superClass();
  return meta;
}

/// The last class of an object that publishes something.
const QMetaObject* LastPublisher(const TPersistent& object) {
  const QMetaObject* meta = object.metaObject();
  while (meta != &TPersistent::staticMetaObject &&
         meta->propertyCount() == meta->superClass()->propertyCount()) {
    meta = meta->superClass();
  }
  return meta;
}

}  // namespace

TPersistent* SubObject(const TPersistent& object, const QMetaProperty& property) {
  return qobject_cast<TPersistent*>(property.read(&object).value<QObject*>());
}

void TPersistent::AssignTo(TPersistent* destination) const {
  if (!destination || destination == this || FirstClass(*destination) != FirstClass(*this)) return;
  // A listener may destroy both.
  const QPointer<const TPersistent> self(this);
  const QPointer<TPersistent> other(destination);
  const QMetaObject* meta = destination->metaObject();
  ForEachOwnProperty(*this, [&](const QMetaProperty& property) {
    const int index = meta->indexOfProperty(property.name());
    if (!self || !other || index < 0) return;
    const QMetaProperty target = meta->property(index);
    if (TPersistent* sub = SubObject(*other, target)) {
      sub->Assign(SubObject(*self, property));
    } else {
      target.write(other, property.read(self));
    }
  });
}

bool TPersistent::SameAs(const TPersistent* other) const {
  if (other == this) return true;
  if (!other || !LastPublisher(*other)->inherits(LastPublisher(*this))) return false;
  bool same = true;
  ForEachOwnProperty(*this, [&](const QMetaProperty& property) {
    if (!same) return;
    const TPersistent* sub = SubObject(*this, property);
    same = sub ? sub->SameAs(SubObject(*other, property))
               : property.read(this) == property.read(other);
  });
  return same;
}

void TNotifyPersistent::FreeNotification(QObject* object) {
  if (!object ||
      std::find(subscribers_.begin(), subscribers_.end(), object) != subscribers_.end()) {
    return;
  }
  subscribers_.emplace_back(object);
}

void TNotifyPersistent::RemoveFreeNotification(QObject* object) {
  std::erase(subscribers_, object);
}

void TNotifyPersistent::BeforeDestruction() {
  // A subscriber may unsubscribe or delete another one while it is notified.
  const std::vector<QPointer<QObject>> notified = subscribers_;
  for (const QPointer<QObject>& subscriber : notified) {
    if (!subscriber ||
        std::find(subscribers_.begin(), subscribers_.end(), subscriber) == subscribers_.end()) {
      continue;
    }
    TObjectMessage message(this, true);
    QCoreApplication::sendEvent(subscriber, &message);
  }
  subscribers_.clear();
}

void TSelectedCollItem::SetCollection(TItems items) {
  items_ = std::move(items);
  index_ = -1;
  emit OnChange(this);
}

void TSelectedCollItem::Clear() {
  if (!items_ && item_.isEmpty()) return;
  items_ = nullptr;
  item_.clear();
  index_ = -1;
  emit OnChange(this);
}

void TSelectedCollItem::SetItem(const QString& name) { Select(name, -1); }

void TSelectedCollItem::SetIndex(int index) {
  const QString name = Items().value(index);
  Select(name, name.isEmpty() ? -1 : index);
}

int TSelectedCollItem::GetIndex() const {
  if (item_.isEmpty()) return -1;
  const QStringList names = Items();
  if (index_ >= 0 && names.value(index_) == item_) return index_;
  return static_cast<int>(names.indexOf(item_));
}

void TSelectedCollItem::Select(const QString& name, int index) {
  if (item_ == name && (index == -1 || GetIndex() == index)) return;
  item_ = name;
  index_ = index;
  emit OnChange(this);
}

void TSelectedCollItem::AssignTo(TPersistent* destination) const {
  auto* other = qobject_cast<TSelectedCollItem*>(destination);
  if (!other || other == this) return;
  other->items_ = items_;
  other->item_ = item_;
  other->index_ = index_;
  emit other->OnChange(other);
}
