#include "components/package/Panel.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLabel>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSaveFile>
#include <QUiLoader>
#include <map>

#include "components/controls/Korvaltools.h"
#include "components/links/Compclasses.h"

namespace {

constexpr qint64 kMaxFileSize = 64 << 20;
constexpr qsizetype kMaxFaults = 1000;  ///< told of one file

/// Makes the widgets of a form: the toolkit's, the components, and placeholders for the rest.
class TFormLoader : public QUiLoader {
 public:
  TFormLoader() : known_(availableWidgets()) {}

  bool Knows(const QString& className) const {
    return known_.contains(className) || FindComponentClass(className);
  }

  /// Null for a class that is not known.
  const QMetaObject* MetaOf(const QString& className) {
    if (const TComponentClass* component = FindComponentClass(className)) return component->Meta;
    const auto found = metas_.constFind(className);
    if (found != metas_.cend()) return *found;
    const std::unique_ptr<QWidget> sample(
        known_.contains(className) ? QUiLoader::createWidget(className, nullptr, {}) : nullptr);
    return *metas_.insert(className, sample ? sample->metaObject() : nullptr);
  }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    if (const TComponentClass* component = FindComponentClass(className)) {
      QWidget* made = component->Make(parent);
      made->setObjectName(name);
      component->BeginLoading(made);
      made_.push_back({made, component});
      first_.emplace(TKey(name, component), made);
      return made;
    }
    if (known_.contains(className)) return QUiLoader::createWidget(className, parent, name);
    auto* placeholder = new QLabel('?' + className, parent);
    placeholder->setObjectName(name);
    placeholder->setFrameShape(QFrame::Box);
    placeholder->setAlignment(Qt::AlignCenter);
    return placeholder;
  }

  struct TMade {
    QPointer<QWidget> Component;
    const TComponentClass* Class;
  };
  const std::vector<TMade>& Made() const { return made_; }

  /// The first component that was made with this name and class.
  QWidget* Find(const QString& name, const TComponentClass* component) const {
    const auto found = first_.find({name, component});
    return found == first_.end() ? nullptr : found->second.data();
  }

 private:
  using TKey = std::pair<QString, const TComponentClass*>;

  const QStringList known_;
  QHash<QString, const QMetaObject*> metas_;
  std::vector<TMade> made_;
  std::map<TKey, QPointer<QWidget>> first_;
};

/// The files whose pictures a rich text or a style sheet shows.
QStringList PicturesIn(const QString& text) {
  static const QRegularExpression picture(
      R"((?:url\s*\(|src\s*=)\s*["']?\s*(?:file://)?([^"')>\s]+))",
      QRegularExpression::CaseInsensitiveOption);
  QStringList names;
  for (auto found = picture.globalMatch(text); found.hasNext();) names << found.next().captured(1);
  return names;
}

/// The first file with a picture for the property that may have no end, such as a pipe.
QString EndlessPicture(const TFormFile::TProperty& property, const QDir& folder) {
  const QString& kind = property.Value.Kind;
  const bool isPicture = kind == QLatin1String("pixmap") || kind == QLatin1String("iconset");
  const QStringList names =
      isPicture ? QStringList(property.Value.Text.trimmed()) : PicturesIn(property.Value.Text);
  for (const QString& name : names) {
    for (const QDir& from : {folder, QDir::current()}) {
      const QFileInfo picture(from, name);
      if (picture.exists() && !picture.isFile() && !picture.isDir()) return name;
    }
  }
  return {};
}

/// What is wrong with the value of a property of the toolkit's own: its form loader would set
/// something else without a word, or wait for a picture from a pipe. Empty if nothing is.
QString WrongValue(const QMetaObject& meta, const TFormFile::TProperty& property,
                   const QDir& folder) {
  const QMetaProperty published =
      meta.property(meta.indexOfProperty(property.Name.toLatin1().constData()));
  if (!published.isValid()) return {};
  const int type = published.typeId();
  const QString& kind = property.Value.Kind;
  const QString endless = EndlessPicture(property, folder);
  if (!endless.isEmpty()) return QStringLiteral("'%1' is no file").arg(endless);
  if ((type == QMetaType::QRect && kind != QLatin1String("rect")) ||
      (type == QMetaType::QSize && kind != QLatin1String("size"))) {
    return QStringLiteral("a %1 is not a %2").arg(kind, QLatin1String(published.typeName()));
  }
  const bool isPlain = published.isEnumType() || type == QMetaType::Bool ||
                       type == QMetaType::Int || type == QMetaType::Double;
  QString reason;
  if (isPlain) (void)ReadFormValue({property.Name, nullptr, published}, property.Value, &reason);
  return reason;
}

/// Empty, or why it cannot be made.
QString Connect(QObject* sender, QObject* receiver, const TFormFile::TConnection& wanted) {
  if (!sender || !receiver) {
    return QStringLiteral("there is no object %1").arg(sender ? wanted.Receiver : wanted.Sender);
  }
  const auto normalized = [](const QString& signature) {
    return QMetaObject::normalizedSignature(signature.toLatin1().constData());
  };
  const QMetaObject& from = *sender->metaObject();
  const QMetaObject& to = *receiver->metaObject();
  const QMetaMethod signal = from.method(from.indexOfSignal(normalized(wanted.Signal)));
  const QMetaMethod slot = to.method(to.indexOfMethod(normalized(wanted.Slot)));
  const auto lacks = [](const QMetaObject& meta, const char* what, const QString& name) {
    return QStringLiteral("%1 has no %2 %3").arg(meta.className(), what, name);
  };
  if (!signal.isValid()) return lacks(from, "signal", wanted.Signal);
  const bool isSlot = slot.methodType() == QMetaMethod::Slot;
  if (!slot.isValid() || !(isSlot || slot.methodType() == QMetaMethod::Signal)) {
    return lacks(to, "slot", wanted.Slot);
  }
  if (!QMetaObject::checkConnectArgs(signal, slot)) {
    return QStringLiteral("%1 does not fit %2").arg(wanted.Slot, wanted.Signal);
  }
  QObject::connect(sender, signal, receiver, slot);
  return {};
}

}  // namespace

/// Builds one panel from its form.
class TPanelReader {
 public:
  TPanelReader(TPanel& panel, QStringList& faults) : panel_(panel), faults_(faults) {}

  bool Read();

 private:
  /// A value on its way into a property.
  struct TWanted {
    const TFormFile::TProperty* property;
    TPublished published;
    QVariant value;
    QVariant before;

    void Write() const { published.Property.write(published.Object, value); }
    /// Texts may be read as others than were set; a hidden one, such as rows of numbers, is damaged
    /// if it has no effect.
    bool Stands() const {
      const QVariant now = published.Property.read(published.Object);
      const bool isText = value.typeId() == QMetaType::QString;
      return now == value || (isText && (published.Property.isDesignable() || now != before));
    }
  };

  using TWidget = TFormFile::TWidget;
  using TProperty = TFormFile::TProperty;

  void Fault(int line, const QString& what) {
    if (++faultCount_ > kMaxFaults) return;
    faults_.append(QStringLiteral("%1:%2: %3").arg(panel_.fileName_).arg(line).arg(what));
  }
  void PropertyFault(const QString& owner, const TProperty& property, const QString& what) {
    const QString name = property.Name.isEmpty() ? QStringLiteral("without a name") : property.Name;
    Fault(property.Line, QStringLiteral("%1: property %2: %3").arg(owner, name, what));
  }
  static QString NameOf(const TWidget& widget) {
    return QStringLiteral("%1 (%2)").arg(widget.Name, widget.ClassName);
  }

  void CheckWidgets();
  void CheckToolkit();
  bool MakeWidgets();
  void MakeConnections();
  void SetProperties();
  void Set(const TWidget& widget, QWidget& component);
  void Refuse(const TWidget& widget, const TProperty& property, const QString& reason);
  void Complete();
  void ReportUnresolved(const QObject* owner, const QString& name);
  void OpenCircles();
  void ReportCircle(const TServerDataControl& control, const QString& client);
  static bool IsOurs(const TWidget& widget, const TProperty& property);

  TPanel& panel_;
  QStringList& faults_;
  qsizetype faultCount_ = 0;
  TFormLoader loader_;
  std::map<QString, const TWidget*> components_;  ///< by name
  std::set<const TProperty*> wrong_;              ///< the toolkit's, with wrong values
};

bool TPanelReader::Read() {
  CheckWidgets();
  CheckToolkit();
  if (!MakeWidgets()) return false;
  MakeConnections();
  SetProperties();
  Complete();
  OpenCircles();
  if (faultCount_ > kMaxFaults) {
    faults_.append(QStringLiteral("%1: there are %2 faults more")
                       .arg(panel_.fileName_)
                       .arg(faultCount_ - kMaxFaults));
  }
  return true;
}

void TPanelReader::CheckToolkit() {
  const QDir folder = QFileInfo(panel_.fileName_).dir();
  for (const TFormFile::TOversized& one : panel_.form_.Oversized()) {
    PropertyFault(one.Owner, one.Property, QStringLiteral("it is too large for any screen"));
  }
  for (const TWidget& widget : panel_.form_.Widgets()) {
    const QMetaObject* meta = loader_.MetaOf(widget.ClassName);
    for (const TProperty& property : widget.Properties) {
      if (!meta || IsOurs(widget, property)) continue;
      const QString reason = WrongValue(*meta, property, folder);
      if (reason.isEmpty()) continue;
      PropertyFault(NameOf(widget), property, reason);
      wrong_.insert(&property);
    }
  }
}

void TPanelReader::CheckWidgets() {
  for (const TWidget& widget : panel_.form_.Widgets()) {
    if (!loader_.Knows(widget.ClassName)) {
      Fault(widget.Line, QStringLiteral("%1: the class is unknown").arg(NameOf(widget)));
    }
    if (!FindComponentClass(widget.ClassName)) continue;
    if (widget.Name.isEmpty()) {
      Fault(widget.Line, QStringLiteral("%1: the component has no name").arg(NameOf(widget)));
    } else if (!components_.emplace(widget.Name, &widget).second) {
      Fault(widget.Line, QStringLiteral("%1: the name is used twice").arg(NameOf(widget)));
    }
  }
}

bool TPanelReader::IsOurs(const TWidget& widget, const TProperty& property) {
  const TComponentClass* component = FindComponentClass(widget.ClassName);
  if (!component) return false;
  if (property.Name.contains('.') || IsOwnProperty(*component->Meta, property.Name)) return true;
  // Names of the toolkit's class, and such as style sheets ask for, are left to the form loader.
  return !property.IsDynamic && component->Meta->indexOfProperty(property.Name.toLatin1()) < 0;
}

bool TPanelReader::MakeWidgets() {
  QByteArray text = panel_.form_
                        .Without([this](const TWidget& widget, const TProperty& property) {
                          return wrong_.contains(&property) || IsOurs(widget, property);
                        })
                        .toUtf8();
  QBuffer buffer(&text);
  buffer.open(QIODevice::ReadOnly);
  loader_.setWorkingDirectory(QFileInfo(panel_.fileName_).dir());
  panel_.root_ = loader_.load(&buffer);
  if (!panel_.root_) {
    Fault(1, loader_.errorString());
    return false;
  }
  BeginForm(*panel_.root_, QFileInfo(panel_.fileName_).absolutePath());
  return true;
}

/// The form loader would only mutter about a connection that cannot be made.
void TPanelReader::MakeConnections() {
  if (panel_.form_.Connections().empty()) return;
  QHash<QString, QObject*> objects;
  for (QObject* object : panel_.root_->findChildren<QObject*>()) {
    if (!object->objectName().isEmpty()) objects.insert(object->objectName(), object);
  }
  objects.insert(panel_.root_->objectName(), panel_.root_);
  for (const TFormFile::TConnection& wanted : panel_.form_.Connections()) {
    const QString fault =
        Connect(objects.value(wanted.Sender), objects.value(wanted.Receiver), wanted);
    if (fault.isEmpty()) continue;
    Fault(
        wanted.Line,
        QStringLiteral("connection from %1 to %2: %3").arg(wanted.Sender, wanted.Receiver, fault));
  }
}

void TPanelReader::SetProperties() {
  for (const auto& widget : panel_.form_.Widgets()) {
    const auto found = components_.find(widget.Name);
    if (found == components_.end() || found->second != &widget) continue;
    const TComponentClass* componentClass = FindComponentClass(widget.ClassName);
    if (QWidget* component = loader_.Find(widget.Name, componentClass)) {
      panel_.entries_.push_back({widget.Name, componentClass, component, &widget});
      Set(widget, *component);
    }
  }
}

/// Some setters look at other properties: a pair of limits never crosses on its way. So what a
/// later property has moved is set again, until all of them stand.
void TPanelReader::Set(const TWidget& widget, QWidget& component) {
  std::vector<TWanted> wanted;
  std::set<QString> names;
  for (const TProperty& property : widget.Properties) {
    if (!IsOurs(widget, property)) continue;
    if (!names.insert(property.Name).second) {
      PropertyFault(NameOf(widget), property, QStringLiteral("it is given twice"));
      continue;
    }
    QString reason;
    auto published = FindPublished(component, property.Name, &reason);
    const QVariant value =
        published ? ReadFormValue(*published, property.Value, &reason) : QVariant();
    if (value.isValid()) {
      const QVariant before = published->Property.read(published->Object);
      wanted.push_back({&property, std::move(*published), value, before});
      wanted.back().Write();
    } else {
      Refuse(widget, property, reason);
    }
  }
  constexpr int kRounds = 2;
  for (int round = 0; round < kRounds; ++round) {
    for (const TWanted& one : wanted) {
      if (!one.Stands()) one.Write();
    }
  }
  for (const TWanted& one : wanted) {
    if (!one.published.Property.isStored() || one.Stands()) continue;
    Refuse(widget, *one.property,
           QStringLiteral("it does not take the value '%1'").arg(ShownText(one.property->Value)));
  }
}

void TPanelReader::Refuse(const TWidget& widget, const TProperty& property, const QString& reason) {
  PropertyFault(NameOf(widget), property, reason);
  panel_.refused_.insert(&property);
}

void TPanelReader::Complete() {
  QHash<QString, QList<QPointer<QObject>>> named;
  for (QObject* object : QObjectList{panel_.root_} + panel_.root_->findChildren<QObject*>()) {
    if (!object->objectName().isEmpty()) named[object->objectName()].append(object);
  }
  TKorvalCompList::OnFind = [&](const QString& name, const QMetaObject* baseClass) -> QObject* {
    for (const auto& object : named.value(name)) {
      if (object && object->metaObject()->inherits(baseClass)) return object;
    }
    return nullptr;
  };
  TKorvalCompList::OnUnresolved = [this](QObject* owner, const QString& name) {
    ReportUnresolved(owner, name);
  };
  for (const TPanel::TEntry& entry : panel_.entries_) {
    if (entry.Component) entry.Class->Loaded(entry.Component);
  }
  // Those without a name of their own.
  for (const TFormLoader::TMade& made : loader_.Made()) {
    if (made.Component && IsLoading(made.Component)) made.Class->Loaded(made.Component);
  }
  TKorvalCompList::OnUnresolved = nullptr;
  TKorvalCompList::OnFind = nullptr;
}

void TPanelReader::ReportUnresolved(const QObject* owner, const QString& name) {
  const auto found = owner ? components_.find(owner->objectName()) : components_.end();
  if (found == components_.end()) {
    return Fault(1, QStringLiteral("there is no component %1").arg(name));
  }
  const TWidget& widget = *found->second;
  for (const TProperty& property : widget.Properties) {
    if (property.Value.Text != name && !property.Value.Items.contains(name)) continue;
    return PropertyFault(NameOf(widget), property,
                         QStringLiteral("there is no component %1 that fits").arg(name));
  }
  Fault(widget.Line,
        QStringLiteral("%1: there is no component %2 that fits").arg(NameOf(widget), name));
}

/// While a form is read every client is taken, for the lists are not complete; so a circle is found
/// only now, by following the clients from each component to the next: the client that leads back
/// is taken out.
void TPanelReader::OpenCircles() {
  struct TStep {
    TServerDataControl* control;
    int next = 0;  ///< of its clients
  };
  std::set<const TServerDataControl*> seen;
  std::set<const TServerDataControl*> onPath;
  for (const TPanel::TEntry& entry : panel_.entries_) {
    std::vector<TStep> path;
    const auto enter = [&](TServerDataControl* control) {
      if (!control || !seen.insert(control).second) return;
      onPath.insert(control);
      path.push_back({control});
    };
    enter(qobject_cast<TServerDataControl*>(entry.Component.data()));
    while (!path.empty()) {
      TStep& step = path.back();
      TKorvalCompList& clients = *step.control->GetClientControls();
      if (step.next >= clients.Count()) {
        onPath.erase(step.control);
        path.pop_back();
        continue;
      }
      auto* client = clients.Get<TServerDataControl>(step.next);
      if (onPath.contains(client)) {
        ReportCircle(*step.control, client->objectName());
        if (clients.Delete(step.next)) continue;
      }
      ++step.next;
      enter(client);
    }
  }
}

void TPanelReader::ReportCircle(const TServerDataControl& control, const QString& client) {
  const auto found = components_.find(control.objectName());
  if (found == components_.end()) return;
  const TWidget& widget = *found->second;
  int line = widget.Line;
  for (const TProperty& property : widget.Properties) {
    if (property.Value.Items.contains(client)) line = property.Line;
  }
  Fault(line, QStringLiteral("%1: property ClientControls: %2 would get its own values back; "
                             "circular references are not allowed")
                  .arg(NameOf(widget), client));
}

// TPanel

namespace {

/// The number of the first line that is no UTF-8 text; 0 if there is none.
int FirstForeignLine(QByteArrayView bytes) {
  for (int line = 1; !bytes.isEmpty(); ++line) {
    const qsizetype end = bytes.indexOf('\n');
    if (!bytes.first(end < 0 ? bytes.size() : end).isValidUtf8()) return line;
    bytes = bytes.sliced(end < 0 ? bytes.size() : end + 1);
  }
  return 0;
}

/// Those without a name, too. Each may destroy another.
std::vector<QPointer<TComponentControl>> AllComponents(QWidget* root) {
  std::vector<QPointer<TComponentControl>> result;
  if (auto* component = qobject_cast<TComponentControl*>(root)) result.emplace_back(component);
  for (auto* component :
       root ? root->findChildren<TComponentControl*>() : QList<TComponentControl*>()) {
    result.emplace_back(component);
  }
  return result;
}

}  // namespace

TPanel::~TPanel() {
  if (root_ && !root_->parent()) delete root_;
}

TWishes TPanel::Wishes() const {
  TWishes wishes;
  std::set<QString> seen;
  for (const QPointer<TComponentControl>& component : AllComponents(root_)) {
    for (TWish& wish : component->Wishes()) {
      if (seen.insert(wish.Text + '\n' + wish.Place).second) wishes.push_back(std::move(wish));
    }
  }
  return wishes;
}

void TPanel::Start() {
  if (!IsAtRest()) return;
  StartForm(*root_, Wishes());
  for (const QPointer<TComponentControl>& component : AllComponents(root_)) {
    if (component) component->Started();
  }
}

std::unique_ptr<TPanel> TPanel::FromText(const QString& text, const QString& fileName,
                                         QStringList* faults) {
  QStringList found;
  std::unique_ptr<TPanel> panel(new TPanel);
  panel->fileName_ = fileName;
  QString error;
  bool read = panel->form_.Parse(text, &error);
  if (read) {
    read = TPanelReader(*panel, found).Read();
  } else {
    found.append(QStringLiteral("%1: %2").arg(fileName, error));
  }
  if (faults) faults->append(found);
  return read ? std::move(panel) : nullptr;
}

std::unique_ptr<TPanel> TPanel::Load(const QString& fileName, QStringList* faults) {
  QFile file(fileName);
  QString error;
  if (!file.open(QIODevice::ReadOnly)) {
    error = file.errorString();
  } else if (file.size() > kMaxFileSize) {
    error = QStringLiteral("it is larger than %1 MiB").arg(kMaxFileSize >> 20);
  } else {
    const QByteArray bytes = file.read(kMaxFileSize);
    const int line = FirstForeignLine(bytes);
    if (line == 0) return FromText(QString::fromUtf8(bytes), fileName, faults);
    error = QStringLiteral("line %1 is no UTF-8 text").arg(line);
  }
  if (faults) faults->append(QStringLiteral("Cannot read %1: %2").arg(fileName, error));
  return nullptr;
}

namespace {

using TStoredValues = std::map<QString, TFormValue>;

/// What a new component of the class has.
TStoredValues DefaultsOf(const TComponentClass& component) {
  const std::unique_ptr<QWidget> fresh(component.Make(nullptr));
  component.BeginLoading(fresh.get());
  TStoredValues values;
  ForEachStored(*fresh, [&](const TPublished& published) {
    values.emplace(published.Path, WriteFormValue(published));
  });
  return values;
}

/// Not what changes by itself while a panel runs. That of one class alone its class information
/// names.
bool IsSetting(const TPublished& published) {
  static const QByteArrayList kMoving = {"Value",  "Data",    "CumulCount",
                                         "Active", "Logging", "TimeFormatStr"};
  const QMetaObject& meta = *published.Object->metaObject();
  const QByteArray name = published.Property.name();
  const QByteArray measured = meta.classInfo(meta.indexOfClassInfo("Measured")).value();
  return published.Property.isDesignable() && !kMoving.contains(name) && measured != name;
}

/// Those that a new component has otherwise.
TFormFile::TNewProperties ChangedProperties(QWidget& component, const TStoredValues& standard) {
  TFormFile::TNewProperties result;
  ForEachStored(component, [&](const TPublished& published) {
    TFormValue value = WriteFormValue(published);
    const auto found = standard.find(published.Path);
    const bool isDefault = found != standard.end() && found->second == value;
    if (!isDefault) result.emplace_back(published.Path, std::move(value));
  });
  return result;
}

}  // namespace

QString TPanel::Text() const {
  struct TState {
    QWidget* component;
    TFormFile::TNewProperties properties;
    std::set<QString> names{};
  };
  std::map<const TComponentClass*, TStoredValues> defaults;
  std::map<const TFormFile::TWidget*, TState> states;
  for (const TEntry& entry : entries_) {
    if (!entry.Component) continue;
    const auto [standard, isNew] = defaults.try_emplace(entry.Class);
    if (isNew) standard->second = DefaultsOf(*entry.Class);
    TState& state = states.emplace(entry.Widget, TState{entry.Component, {}}).first->second;
    state.properties = ChangedProperties(*entry.Component, standard->second);
    for (const auto& [name, value] : state.properties) state.names.insert(name);
  }
  return form_.Replaced(
      [&](const TFormFile::TWidget& widget, const TFormFile::TProperty& property) {
        const auto state = states.find(&widget);
        if (state == states.end()) return false;
        return state->second.names.contains(property.Name) ||
               (!refused_.contains(&property) &&
                FindPublished(*state->second.component, property.Name, nullptr));
      },
      [&](const TFormFile::TWidget& widget) {
        const auto state = states.find(&widget);
        return state == states.end() ? TFormFile::TNewProperties() : state->second.properties;
      });
}

QString TPanel::Settings() const {
  QString text;
  for (const TEntry& entry : entries_) {
    if (!entry.Component) continue;
    ForEachStored(*entry.Component, [&](const TPublished& published) {
      if (!IsSetting(published)) return;
      const TFormValue value = WriteFormValue(published);
      text += published.Path + '=' + value.Text + value.Items.join(',') + '\n';
    });
  }
  return text;
}

bool TPanel::Save(const QString& fileName, QString* error) {
  QSaveFile file(fileName);
  const QByteArray text = Text().toUtf8();
  if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
    fileName_ = fileName;
    return true;
  }
  if (error) *error = QStringLiteral("Cannot write %1: %2").arg(fileName, file.errorString());
  return false;
}
