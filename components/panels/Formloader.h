#pragma once

#include <QHash>
#include <QPointer>
#include <QUiLoader>
#include <map>
#include <memory>
#include <vector>

#include "components/panels/Registry.h"

/// Makes the widgets of a form: the toolkit's plain ones, the components, and placeholders for the
/// rest.
class TFormLoader : public QUiLoader {
 public:
  /// `pictures`: the folder with those that the form may show.
  static std::unique_ptr<TFormLoader> Make();

  /// Null for a class that no form may hold.
  const QMetaObject* MetaOf(const QString& className);
  void SetPictureFolder(const QString& folder) { pictureFolder_ = folder; }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;
  QLayout* createLayout(const QString& className, QObject* parent, const QString& name) override;

  struct TMade {
    QPointer<QWidget> Component;
    const TComponentClass* Class;
  };
  const std::vector<TMade>& Made() const { return made_; }
  /// The first component that was made with this name and class.
  QWidget* Find(const QString& name, const TComponentClass* component) const;

 private:
  using TKey = std::pair<QString, const TComponentClass*>;

  TFormLoader() = default;

  QString pictureFolder_;
  bool hasRoot_ = false;
  QHash<QString, const QMetaObject*> metas_;
  std::vector<TMade> made_;
  std::map<TKey, QPointer<QWidget>> first_;
};
