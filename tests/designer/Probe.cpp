#include "tests/designer/Probe.h"

#include <QtTest>

namespace {

constexpr int kPatience = 30'000;  ///< milliseconds, for a machine that is busy

QString ScriptFile() { return qEnvironmentVariable("VELMORA_PROBE"); }

QString Fingerprint(const QIcon& icon) {
  const QImage image = icon.pixmap(22, 22).toImage().convertToFormat(QImage::Format_ARGB32);
  const QByteArray bits(reinterpret_cast<const char*>(image.constBits()),
                        static_cast<qsizetype>(image.sizeInBytes()));
  if (image.isNull() || bits.count('\0') == bits.size()) return {};
  return QString::fromLatin1(QCryptographicHash::hash(bits, QCryptographicHash::Md5).toHex());
}

/// The editor in the row of a property; null if it does not open.
template <class T>
T* OpenEditor(QTreeWidgetItem& item) {
  QTreeWidget& tree = *item.treeWidget();
  tree.scrollToItem(&item);
  tree.setCurrentItem(&item);
  T* found = nullptr;
  const auto isOpen = [&] {
    for (T* editor : tree.viewport()->findChildren<T*>()) {
      const QPoint middle = editor->mapTo(tree.viewport(), editor->rect().center());
      if (editor->isVisible() && tree.visualItemRect(&item).contains(middle)) found = editor;
    }
    return found != nullptr;
  };
  // The property editor opens some rows as soon as they are current.
  if (!isOpen()) tree.editItem(&item, 1);
  return QTest::qWaitFor(isOpen, kPatience) ? found : nullptr;
}

/// Of every page the names that it shows, each with a fingerprint of its icon.
QJsonObject Palette(const QDesignerFormEditorInterface& core) {
  QDesignerWidgetBoxInterface* box = core.widgetBox();
  std::map<QString, QString> icons;
  for (const QListView* view : box->findChildren<QListView*>()) {
    for (int row = 0; row < view->model()->rowCount(); ++row) {
      const QModelIndex index = view->model()->index(row, 0);
      icons[index.data().toString()] = Fingerprint(index.data(Qt::DecorationRole).value<QIcon>());
    }
  }
  QJsonObject pages;
  for (int i = 0; i < box->categoryCount(); ++i) {
    const auto category = box->category(i);
    QJsonObject page;
    for (int w = 0; w < category.widgetCount(); ++w) {
      const QString name = category.widget(w).name();
      page.insert(name, icons[name]);
    }
    pages.insert(category.name(), page);
  }
  return pages;
}

/// Of the form: whether it shows the widget, if need be after scrolling.
QJsonObject ShownWidgets(const QDesignerFormEditorInterface& core) {
  QJsonObject shown;
  const auto* cursor = core.formWindowManager()->activeFormWindow()->cursor();
  for (int i = 0; i < cursor->widgetCount(); ++i) {
    const QWidget* widget = cursor->widget(i);
    shown.insert(widget->objectName(), widget->isVisible() && !widget->size().isEmpty());
  }
  return shown;
}

QTreeWidgetItem* FindProperty(const QDesignerFormEditorInterface& core, const QString& component,
                              const QString& name) {
  QDesignerFormWindowInterface* form = core.formWindowManager()->activeFormWindow();
  auto* widget = form->findChild<QWidget*>(component);
  if (!widget) return nullptr;
  // The form first: that closes what is still being edited.
  for (QWidget* next : {form->mainContainer(), widget}) {
    form->clearSelection();
    form->selectWidget(next);
    const auto isShown = [&] { return core.propertyEditor()->object() == next; };
    if (!QTest::qWaitFor(isShown, kPatience)) return nullptr;
  }
  for (QTreeWidget* tree : core.propertyEditor()->findChildren<QTreeWidget*>()) {
    for (QTreeWidgetItem* item : tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive)) {
      if (!item->isHidden()) return item;
    }
  }
  return nullptr;
}

QString Type(QTreeWidgetItem& item, const QString& text) {
  auto* edit = OpenEditor<QLineEdit>(item);
  if (!edit) return "it cannot be edited";
  edit->setFocus();
  edit->selectAll();
  QTest::keyClicks(edit, text);
  QTest::keyClick(edit, Qt::Key_Return);
  QTest::qWait(0);
  return {};
}

QString Press(QTreeWidgetItem& item) {
  const QPointer<QCheckBox> box = OpenEditor<QCheckBox>(item);
  if (!box) return "it has no box to tick";
  QTest::mouseClick(box, Qt::LeftButton);
  const auto isEmpty = [&] { return !box || !box->isChecked(); };
  return QTest::qWaitFor(isEmpty, kPatience) ? "" : "the box stays ticked";
}

QString Choose(QTreeWidgetItem& item, const QString& text) {
  auto* box = OpenEditor<QComboBox>(item);
  if (!box || box->findText(text) < 0) return "no such line drops down";
  box->setCurrentIndex(box->findText(text));
  return {};
}

QString Tick(QTreeWidgetItem& item, const QString& key) {
  item.setExpanded(true);
  for (int i = 0; i < item.childCount(); ++i) {
    if (item.child(i)->text(0) != key) continue;
    auto* box = OpenEditor<QCheckBox>(*item.child(i));
    if (box) QTest::mouseClick(box, Qt::LeftButton);
    return box ? "" : "it has no box to tick";
  }
  return "there is no such element";
}

QString Save(const QDesignerFormEditorInterface& core) {
  for (const QWidget* widget : QApplication::allWidgets()) {
    for (QAction* action : widget->actions()) {
      if (action->objectName() != "__qt_save_form_action") continue;
      action->trigger();
      return core.formWindowManager()->activeFormWindow()->isDirty() ? "not saved" : "";
    }
  }
  return "there is no such action";
}

QString Retitle(const QDesignerFormEditorInterface& core, const QString& title) {
  QDesignerFormWindowManagerInterface* manager = core.formWindowManager();
  for (int i = 0; i < manager->formWindowCount(); ++i) {
    QDesignerFormWindowInterface* form = manager->formWindow(i);
    manager->setActiveFormWindow(form);
    form->cursor()->setWidgetProperty(form->mainContainer(), "windowTitle", title);
    const QString fault = Save(core);
    if (!fault.isEmpty()) return form->fileName() + ": " + fault;
  }
  return {};
}

}  // namespace

void TProbe::initialize(QDesignerFormEditorInterface* core) {
  core_ = core;
  connect(&timer_, &QTimer::timeout, this, &TProbe::LookForForm);
  timer_.start(50);
}

void TProbe::LookForForm() {
  auto* manager = core_->formWindowManager();
  if (!manager || !manager->activeFormWindow() || !core_->propertyEditor()) return;
  if (manager->formWindowCount() + 1 < QCoreApplication::arguments().size()) return;
  if (!core_->propertyEditor()->object()) return;
  timer_.stop();
  Run();
  QCoreApplication::exit();
}

void TProbe::Run() {
  QFile file(ScriptFile());
  if (!file.open(QIODevice::ReadWrite)) return;
  QJsonArray answers;
  for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)) {
    const QString answer = Do(line.split(' '));
    answers.append(QString(line + ": " + (answer.isEmpty() ? "done" : answer)));
  }
  const QJsonObject report{
      {"palette", Palette(*core_)}, {"shown", ShownWidgets(*core_)}, {"answers", answers}};
  file.resize(0);
  file.write(QJsonDocument(report).toJson());
}

/// Empty if it worked.
QString TProbe::Do(const QStringList& words) {
  if (words[0] == "save") return Save(*core_);
  if (words[0] == "retitle") return Retitle(*core_, words[1]);
  if (words[0] == "picture") return core_->topLevel()->grab().save(words[1]) ? "" : "not written";
  QTreeWidgetItem* item = FindProperty(*core_, words[1], words[2]);
  if (!item) return "the property editor does not show it";
  if (words[0] == "choose") return Choose(*item, words[3]);
  if (words[0] == "tick") return Tick(*item, words[3]);
  return words[0] == "type" ? Type(*item, words[3]) : Press(*item);
}
