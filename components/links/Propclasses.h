#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QMetaProperty;

/// Base of every published sub-object: a value with named properties that belongs to one owner and
/// reports each real change. GUI thread only.
class TPersistent : public QObject {
  Q_OBJECT

 public:
  /// The owner is not the Qt parent: a sub-object is a member of its owner. May be null.
  explicit TPersistent(QObject* owner = nullptr) : owner_(owner) {}

  QObject* Owner() const { return owner_; }

  /// Copies this object into `destination` through the destination's setters: the properties of one
  /// name, in the order of publication. Null, or an object of an unrelated class, changes nothing.
  virtual void AssignTo(TPersistent* destination) const;
  void Assign(const TPersistent* source) {
    if (source && source != this) source->AssignTo(this);
  }
  /// The other has what this object's class publishes, and equal values of it.
  virtual bool SameAs(const TPersistent* other) const;

 signals:
  /// A property has really changed; emitted last, when the state is consistent.
  void OnChange(QObject* sender);

 protected:
  /// The whole of a plain setter: stores a value that differs and reports the change.
  template <class T>
  void Store(T& field, const T& value) {
    if (field == value) return;
    field = value;
    emit OnChange(this);
  }

  /// The steps of a copy that is more than its properties, or takes them in another order. None is
  /// made any more once a listener has destroyed the destination or this object.
  template <class... TStep>
  void CopyInSteps(TPersistent* destination, TStep... steps) const {
    const QPointer<const TPersistent> self(this);
    const QPointer<const TPersistent> other(destination);
    (static_cast<void>(self && other && (steps(), true)), ...);
  }

 private:
  QObject* owner_;  ///< not owned
};

/// The sub-object behind a property; null for a plain value.
TPersistent* SubObject(const TPersistent& object, const QMetaProperty& property);

/// The object message that a TNotifyPersistent sends before it goes. Receivers take it in
/// QObject::customEvent. The sender is still whole while it is delivered.
class TObjectMessage : public QEvent {
 public:
  static constexpr Type kType = static_cast<Type>(1524);

  explicit TObjectMessage(QObject* sender, bool flag) : QEvent(kType), Sender(sender), Flag(flag) {}

  QObject* const Sender;
  const bool Flag;  ///< true: the sender is being destroyed
};

/// A sub-object that notifies its subscribers when it is being destroyed.
class TNotifyPersistent : public TPersistent {
  Q_OBJECT

 public:
  using TPersistent::TPersistent;
  ~TNotifyPersistent() override { BeforeDestruction(); }

  /// Subscribes an object; a second time changes nothing. Subscribers are not owned and may go
  /// first.
  void FreeNotification(QObject* object);
  void RemoveFreeNotification(QObject* object);

  /// Sends each subscriber the object message, in the order of subscription, and forgets them all.
  /// A derived class whose subscribers look at more than the sender's identity calls this first in
  /// its own destructor, while it is still whole; the base's call then finds nobody left.
  void BeforeDestruction();

 private:
  std::vector<QPointer<QObject>> subscribers_;
};

/// A published button: setting it to true, or Click at any time, runs the owner's operation.
/// It always reads as false, so that a form never stores a click.
class TClick : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(bool Click READ GetClick WRITE SetClick STORED false)

 public:
  using TPersistent::TPersistent;

  bool GetClick() const { return false; }
  void SetClick(bool click) {
    if (click) Click();
  }
  void Click() { emit OnClick(this); }

 signals:
  void OnClick(QObject* sender);
};

/// Selects one item of a collection by name, and shows a caption while there is no collection. What
/// a collection is, the owner says: it supplies the names. GUI thread only.
class TSelectedCollItem : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QString Item READ GetItem WRITE SetItem)

 public:
  /// The names of a collection's items, in order.
  using TItems = std::function<QStringList()>;

  using TPersistent::TPersistent;

  /// Shown while no collection is set.
  QString Caption = QStringLiteral("(none)");

  bool HasCollection() const { return static_cast<bool>(items_); }
  /// An empty function takes the collection away. The selected name is kept, so that a name that
  /// was loaded before its collection can be resolved later. Fires OnChange.
  void SetCollection(TItems items);
  /// The items by name; empty without a collection.
  QStringList Items() const { return items_ ? items_() : QStringList(); }
  /// Takes both collection and selection away.
  void Clear();

  /// The selected name, whether the collection has it or not; empty for no selection.
  const QString& GetItem() const { return item_; }
  void SetItem(const QString& name);
  /// Index of the selected item in the collection, or -1. Of items with one name it is the one that
  /// was selected by index, else the first.
  int GetIndex() const;
  /// An index outside the collection selects nothing.
  void SetIndex(int index);

  /// The selected name, or the caption while no collection is set.
  QString Text() const { return items_ ? item_ : Caption; }

  /// Copies the collection and the selection.
  void AssignTo(TPersistent* destination) const override;

 private:
  void Select(const QString& name, int index);

  TItems items_;
  QString item_;
  int index_ = -1;  ///< where the item stood when it was selected, -1 if that is not known
};
