#pragma once

#include "components/links/Complist.h"

/// A component that another one knows by its object name: a list of one at most. Not owned; it may
/// go first, and leaves then. GUI thread only.
template <class T>
class TComponentRef : public TKorvalCompList {
 public:
  /// `owner` is the component whose form is searched for the name.
  explicit TComponentRef(QObject* owner) : TKorvalCompList(owner, &T::staticMetaObject) {}

  /// Null for none, and for one that is being destroyed.
  T* Get() const { return Empty() ? nullptr : TKorvalCompList::Get<T>(0); }
  /// Null takes a name away, too, that has not been found yet. False if nothing changes.
  bool Set(T* component) {
    if (component ? component == Get() : Empty() && GetName().isEmpty()) return false;
    const QPointer<TKorvalCompList> self(this);
    const QPointer<T> alive(component);
    Clear();
    // Whoever was notified may have set another one.
    if (self && alive && Empty()) Add(alive);
    return true;
  }

  /// The component's object name, as forms keep it. A name set here is looked for by Loaded.
  QString GetName() const { return GetNames().value(0); }
  /// False if nothing changes.
  bool SetName(const QString& name) {
    if (name == GetName()) return false;
    SetNames(name.isEmpty() ? QStringList() : QStringList(name));
    return true;
  }
  /// To be called once the form of the owner is complete.
  void Loaded() { GetComponentsByNames(); }

 private:
  // These would make it more than one.
  using TKorvalCompList::Add;
  using TKorvalCompList::Insert;
  using TKorvalCompList::SetNames;
};
