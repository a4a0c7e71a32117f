#include "components/links/Propclasses.h"

#include <QCoreApplication>
#include <algorithm>

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

bool TSelectedCollItem::SameAs(const TPersistent* other) const {
  const auto* selected = qobject_cast<const TSelectedCollItem*>(other);
  return selected && selected->item_ == item_;
}
