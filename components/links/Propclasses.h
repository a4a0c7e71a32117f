#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>

/// Base of every published sub-object: a value with named properties that belongs to one owner and
/// reports each real change. GUI thread only.
class TPersistent : public QObject {
  Q_OBJECT

 public:
  /// The owner is not the Qt parent: a sub-object is a member of its owner. May be null.
  explicit TPersistent(QObject* owner = nullptr) : owner_(owner) {}

  QObject* Owner() const { return owner_; }

  /// Copies this object into `destination` through the destination's setters. Null, or an object of
  /// another class, changes nothing.
  virtual void AssignTo(TPersistent* destination) const { Q_UNUSED(destination) }
  void Assign(const TPersistent* source) {
    if (source && source != this) source->AssignTo(this);
  }
  virtual bool SameAs(const TPersistent* other) const { return other == this; }

 signals:
  /// A property has really changed; emitted last, when the state is consistent.
  void OnChange(QObject* sender);

 private:
  QObject* owner_;  ///< not owned
};

/// A published button: setting it at design time, or Click at any time, runs the owner's operation.
/// It reads as false always, so that a form never stores a click.
class TClick : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(bool Click READ GetClick WRITE SetClick STORED false)

 public:
  using TPersistent::TPersistent;

  bool GetClick() const { return false; }
  void SetClick(bool click);
  /// Fires OnClick.
  void Click();

 signals:
  void OnClick(QObject* sender);
};

/// Selects one item of a collection by name, and shows a caption while there is no collection. What
/// a collection is, the owner says: it supplies the names. GUI thread only.
class TSelectedCollItem : public TPersistent {
  Q_OBJECT
  Q_PROPERTY(QString Item READ GetItem WRITE SetItem)

 public:
  using TPersistent::TPersistent;

  /// The names of the collection's items in order; an empty function means no collection. The
  /// selected name is kept when the collection changes, so that it can be resolved later.
  std::function<QStringList()> Items;
  /// Shown while no collection is set.
  QString Caption = QStringLiteral("(none)");

  bool HasCollection() const { return static_cast<bool>(Items); }
  const QString& GetItem() const { return item_; }
  void SetItem(const QString& name);
  /// Index of the selected item in the collection, or -1.
  int GetIndex() const;
  /// An index outside the collection selects nothing.
  void SetIndex(int index);
  /// The selected name, or the caption while no collection is set.
  QString Text() const;

 private:
  QString item_;
};
