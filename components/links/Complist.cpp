#include "components/links/Complist.h"

#include <algorithm>
#include <utility>

TKorvalCompList::TKorvalCompList(QObject* owner, const QMetaObject* baseClass)
    : TPersistent(owner), baseClass_(baseClass) {}

void TKorvalCompList::SetBaseClass(const QMetaObject* baseClass) {
  baseClass_ = baseClass;
  for (const TItem& item : ItemsFromEnd()) {
    if (item.alive && !item.alive->metaObject()->inherits(baseClass_)) Remove(item.component);
  }
}

std::vector<TKorvalCompList::TItem> TKorvalCompList::ItemsFromEnd() const {
  return {items_.rbegin(), items_.rend()};
}

int TKorvalCompList::IndexOf(const QObject* component) const {
  const auto found = std::find_if(items_.begin(), items_.end(), [component](const TItem& item) {
    return item.component == component;
  });
  return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

// Changes

bool TKorvalCompList::Allows(QObject* item, TListAction action) const {
  bool allow = true;
  if (OnBeforeChange) OnBeforeChange(item, action, allow);
  return allow;
}

bool TKorvalCompList::Insert(int index, QObject* component) {
  if (index < 0 || index > Count() || !component || Contains(component)) return false;
  if (!component->metaObject()->inherits(baseClass_)) return false;
  const QPointer<TKorvalCompList> self(this);
  const QPointer<QObject> alive = component;
  if (!Allows(component, laAdded)) return false;
  // Whoever was asked may have changed the list, or asked the user and let time pass.
  if (!self || !alive || Contains(component)) return false;
  items_.insert(items_.begin() + std::min(index, Count()), {component, alive});
  connect(component, &QObject::destroyed, this, &TKorvalCompList::Remove);
  emit OnItemChanged(this, component, laAdded);
  if (self) Changed();
  return true;
}

bool TKorvalCompList::Delete(int index) {
  const QPointer<TKorvalCompList> self(this);
  QObject* item = index >= 0 && index < Count() ? Get(index) : nullptr;
  if (!item || !Allows(item, laRemoved) || !self || !Contains(item)) return false;
  Remove(item);
  return true;
}

void TKorvalCompList::Remove(QObject* component) {
  if (std::erase_if(items_,
                    [component](const TItem& item) { return item.component == component; }) == 0) {
    return;
  }
  disconnect(component, &QObject::destroyed, this, &TKorvalCompList::Remove);
  const QPointer<TKorvalCompList> self(this);
  emit OnItemChanged(this, component, laRemoved);
  if (self) Changed();
}

void TKorvalCompList::Clear() {
  InOneChange([this](const QPointer<TKorvalCompList>& self) {
    for (const TItem& item : ItemsFromEnd()) {
      if (self) DeleteComponent(item.component);
    }
    if (self) pending_.clear();
  });
}

void TKorvalCompList::Changed() {
  if (!updating_) emit OnChange(this);
}

template <class TChange>
void TKorvalCompList::InOneChange(TChange change) {
  const std::vector<TItem> items = items_;
  const std::vector<TPending> pending = pending_;
  const bool outer = std::exchange(updating_, true);
  const QPointer<TKorvalCompList> self(this);
  change(self);
  if (!self) return;
  updating_ = outer;
  if (items_ != items || pending_ != pending) Changed();
}

// Names

QStringList TKorvalCompList::GetNames() const {
  QStringList names;
  for (const TItem& item : items_) {
    if (item.alive && !item.alive->objectName().isEmpty()) names << item.alive->objectName();
  }
  for (const TPending& pending : pending_) {
    names.insert(std::min<qsizetype>(pending.place, names.size()), pending.name);
  }
  return names;
}

void TKorvalCompList::SetNames(const QStringList& names) {
  if (names == GetNames()) return;
  InOneChange([&](const QPointer<TKorvalCompList>& self) {
    Clear();
    if (!self) return;
    for (const QString& name : names) {
      pending_.push_back({name, static_cast<int>(pending_.size())});
    }
  });
}

QObject* TKorvalCompList::Find(const QString& name) const {
  if (OnFind) return OnFind(name, baseClass_);
  const auto above = [](QObject* object) {
    const auto* part = qobject_cast<const TPersistent*>(object);
    return part ? part->Owner() : object->parent();
  };
  for (QObject* root = Owner(); root; root = above(root)) {
    for (QObject* candidate : QObjectList{root} + root->findChildren<QObject*>(name)) {
      if (candidate->objectName() == name && candidate->metaObject()->inherits(baseClass_)) {
        return candidate;
      }
    }
  }
  return nullptr;
}

void TKorvalCompList::GetComponentsByNames() {
  InOneChange([this](const QPointer<TKorvalCompList>& self) {
    std::vector<TPending> unknown;
    for (const TPending& pending : std::exchange(pending_, {})) {
      if (!self) return;
      QObject* found = Find(pending.name);
      if (found) {
        Insert(std::min(pending.place - static_cast<int>(unknown.size()), Count()), found);
      } else {
        unknown.push_back(pending);
        if (OnUnresolved) OnUnresolved(Owner(), pending.name);
      }
    }
    if (self) pending_ = unknown;
  });
}

// Copies

void TKorvalCompList::AssignTo(TPersistent* destination) const {
  auto* other = qobject_cast<TKorvalCompList*>(destination);
  if (!other || other == this) return;
  const std::vector<TItem> items = items_;
  const std::vector<TPending> pending = pending_;
  const auto place = [&items](const TItem& item) {
    const auto at = std::ranges::find(items, item);
    return at == items.end() ? -1 : at - items.begin();
  };
  other->InOneChange([&](const QPointer<TKorvalCompList>& alive) {
    for (const TItem& item : other->ItemsFromEnd()) {
      if (alive && place(item) < 0) other->DeleteComponent(item.component);
    }
    for (const TItem& item : items) {
      if (alive) other->Add(item.alive);
    }
    if (!alive) return;
    std::ranges::stable_sort(other->items_, {}, place);
    other->pending_ = pending;
  });
}

bool TKorvalCompList::SameAs(const TPersistent* other) const {
  const auto* list = qobject_cast<const TKorvalCompList*>(other);
  return list && list->items_ == items_ && list->pending_ == pending_;
}
