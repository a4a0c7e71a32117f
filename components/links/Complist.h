#pragma once

#include <QPointer>
#include <QStringList>
#include <functional>
#include <vector>

#include "components/links/Propclasses.h"

enum TListAction { laAdded, laRemoved };

/// Components of one base class, each at most once, in an order. The list does not own them: a
/// component that is destroyed leaves it. Forms store their object names, which are resolved once
/// the form is complete. GUI thread only.
class TKorvalCompList : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QStringList Components READ GetNames WRITE SetNames)

 public:
  /// `owner` is the component whose form is searched for names.
  explicit TKorvalCompList(QObject* owner = nullptr,
                           const QMetaObject* baseClass = &QObject::staticMetaObject);

  const QMetaObject* GetBaseClass() const { return baseClass_; }
  /// Components of another class leave the list.
  void SetBaseClass(const QMetaObject* baseClass);

  int Count() const { return static_cast<int>(items_.size()); }
  bool Empty() const { return items_.empty(); }
  /// The component at 0 to Count() - 1. One that is being destroyed is a bare widget, and then
  /// null.
  QObject* Get(int index) const { return items_[static_cast<std::size_t>(index)].alive; }
  /// Same, as the list's base class or one above it; null for another class, and so for a component
  /// that is being destroyed.
  template <class T>
  T* Get(int index) const {
    return qobject_cast<T*>(Get(index));
  }
  /// -1 if the list does not hold it.
  int IndexOf(const QObject* component) const;
  bool Contains(const QObject* component) const { return IndexOf(component) >= 0; }

  /// False, and nothing changes, for null, another class, a component that is in the list already,
  /// an index outside 0 to Count(), or a veto.
  bool Add(QObject* component) { return Insert(Count(), component); }
  bool Insert(int index, QObject* component);
  /// False for an index outside the list or a veto.
  bool Delete(int index);
  bool DeleteComponent(QObject* component) { return Delete(IndexOf(component)); }
  /// Deletes from the end; vetoed components stay.
  void Clear();

  /// Asked before each change; setting `allow`, which comes as true, to false refuses it. Not asked
  /// when a component leaves because it is destroyed.
  std::function<void(QObject* item, TListAction action, bool& allow)> OnBeforeChange;

  /// Object names of the components, among them, in their places, the names not resolved yet. A
  /// component without a name cannot be stored.
  QStringList GetNames() const;
  /// Empties the list and remembers names to be resolved.
  void SetNames(const QStringList& names);
  /// Resolves the remembered names: the component of that name and of the base class that is
  /// nearest to the owner in its form. A name that is not found is kept for another time; a vetoed
  /// one is dropped.
  void GetComponentsByNames();

  /// Called with each name that a list does not find; may be unset. For whoever reads forms.
  static inline std::function<void(QObject* owner, const QString& name)> OnUnresolved;

  /// Finds a name in the form that is being read, for whoever reads it: it knows them all. Unset
  /// searches the owner's form anew for each name.
  static inline std::function<QObject*(const QString& name, const QMetaObject* baseClass)> OnFind;

  /// Makes the destination hold these components in this order. Each is subject to its base class
  /// and its OnBeforeChange; OnChange fires once if anything changed.
  void AssignTo(TPersistent* destination) const override;
  /// Same components and unresolved names in the same order.
  bool SameAs(const TPersistent* other) const override;

 signals:
  /// Follows each change of one component, before OnChange. A removed component may be in its
  /// destruction: then only what QObject itself offers, its name for one, is left of it.
  void OnItemChanged(QObject* sender, QObject* item, TListAction action);

 private:
  struct TItem {
    QObject* component;       ///< for comparing only
    QPointer<QObject> alive;  ///< a widget emits `destroyed` before this is null
    friend bool operator==(const TItem& a, const TItem& b) { return a.component == b.component; }
  };
  /// A name to be resolved, with its place among all names.
  struct TPending {
    QString name;
    int place;
    friend bool operator==(const TPending&, const TPending&) = default;
  };

  /// A copy for loops in which a listener may change the list.
  std::vector<TItem> ItemsFromEnd() const;
  bool Allows(QObject* item, TListAction action) const;
  void Remove(QObject* component);
  QObject* Find(const QString& name) const;
  void Changed();
  /// Runs `change`, which gets a pointer that is null once a listener has destroyed the list, and
  /// fires OnChange once if anything is different then.
  template <class TChange>
  void InOneChange(TChange change);

  const QMetaObject* baseClass_;
  std::vector<TItem> items_;
  std::vector<TPending> pending_;  ///< by ascending place
  bool updating_ = false;
};
