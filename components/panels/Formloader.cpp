#include "components/panels/Formloader.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLayout>

#include "components/panels/Formwidgets.h"

/// The toolkit loads what it finds in its folders for plug-ins as soon as a loader is made.
std::unique_ptr<TFormLoader> TFormLoader::Make() {
  const QStringList paths = QCoreApplication::libraryPaths();
  QCoreApplication::setLibraryPaths({});
  std::unique_ptr<TFormLoader> loader(new TFormLoader);
  QCoreApplication::setLibraryPaths(paths);
  loader->clearPluginPaths();
  return loader;
}

const QMetaObject* TFormLoader::MetaOf(const QString& className) {
  if (const TComponentClass* component = FindComponentClass(className)) return component->Meta;
  const auto found = metas_.constFind(className);
  if (found != metas_.cend()) return *found;
  const std::unique_ptr<QWidget> sample(PlainWidgetCost(className, true) > 0
                                            ? QUiLoader::createWidget(className, nullptr, {})
                                            : nullptr);
  return *metas_.insert(className, sample ? sample->metaObject() : nullptr);
}

QWidget* TFormLoader::createWidget(const QString& className, QWidget* parent, const QString& name) {
  const bool isRoot = !std::exchange(hasRoot_, true);
  if (const TComponentClass* component = FindComponentClass(className)) {
    QWidget* made = component->Make(parent);
    made->setObjectName(name);
    component->BeginLoading(made);
    made_.push_back({made, component});
    first_.emplace(TKey(name, component), made);
    return made;
  }
  if (QWidget* editor = MakeTextEditor(className, parent, pictureFolder_)) {
    editor->setObjectName(name);
    return editor;
  }
  if (PlainWidgetCost(className, isRoot) > 0) {
    return QUiLoader::createWidget(className, parent, name);
  }
  auto* placeholder = new QLabel(parent);
  placeholder->setTextFormat(Qt::PlainText);
  placeholder->setText('?' + className);
  placeholder->setObjectName(name);
  placeholder->setFrameShape(QFrame::Box);
  placeholder->setAlignment(Qt::AlignCenter);
  return placeholder;
}

QLayout* TFormLoader::createLayout(const QString& className, QObject* parent, const QString& name) {
  return QUiLoader::createLayout(
      IsPlainLayout(className) ? className : QStringLiteral("QVBoxLayout"), parent, name);
}

QWidget* TFormLoader::Find(const QString& name, const TComponentClass* component) const {
  const auto found = first_.find({name, component});
  return found == first_.end() ? nullptr : found->second.data();
}
