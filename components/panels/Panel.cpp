#include "components/panels/Panel.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSlider>
#include <map>

#include "components/links/Compclasses.h"
#include "components/panels/Filenames.h"
#include "components/panels/Formchecks.h"
#include "components/panels/Formloader.h"
#include "components/panels/Formtexts.h"
#include "components/panels/Formwidgets.h"
#include "model/Message.h"
#include "model/Oneline.h"
#include "model/Ordinaryfile.h"
#include "model/Wholefile.h"

namespace {

constexpr qint64 kMaxFileSize = 64 << 20;
constexpr qsizetype kMaxFaults = 1000;  ///< reported of one file

QString ConnectionText(const TFormFile::TConnection& connection, const QString& what) {
  return QStringLiteral("connection from %1 to %2: %3")
      .arg(connection.Sender, connection.Receiver, what);
}

const QString kCircle = QStringLiteral("it leads back to where it began, and is taken out");
const QString kTwice = QStringLiteral("it is given twice");

/// Not from within a chain of signals: the user may take long to answer.
void ShowLater(const QString& text) {
  QMetaObject::invokeMethod(
      qApp, [text] { ShowMessage(text); }, Qt::QueuedConnection);
}

/// Drawing the marks of a slider takes a step for each.
bool HasTooManyMarks(const QSlider& slider) {
  constexpr qint64 kMost = 1000;
  if (slider.tickPosition() == QSlider::NoTicks) return false;
  const int step = slider.tickInterval() > 0
                       ? slider.tickInterval()
                       : std::max(1, std::min(slider.singleStep(), slider.pageStep()));
  return (qint64{slider.maximum()} - slider.minimum()) / step > kMost;
}

}  // namespace

/// Builds one panel from its form.
class TPanelReader {
 public:
  TPanelReader(TPanel& panel, QStringList& faults, bool known)
      : panel_(panel),
        faults_(faults),
        known_(known),
        checks_(*panel.pictures_, panel.form_.Widgets().size()) {}

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
    constexpr qsizetype kMost = 1000;
    faults_.append(
        QStringLiteral("%1:%2: %3").arg(panel_.fileName_).arg(line).arg(OneLine(what, kMost)));
  }
  void PropertyFault(const QString& owner, const TProperty& property, const QString& what) {
    const QString name = property.Name.isEmpty() ? QStringLiteral("without a name") : property.Name;
    Fault(property.Line, QStringLiteral("%1: property %2: %3").arg(owner, name, what));
  }
  static QString NameOf(const TWidget& widget) {
    return QStringLiteral("%1 (%2)").arg(OneLine(widget.Name), OneLine(widget.ClassName));
  }

  bool CheckWidgets();
  void CheckToolkit();
  void CheckProperty(const QString& owner, const QMetaObject* meta, const TProperty& property,
                     const QString& textProperty);
  bool MakeWidgets();
  void CheckMarks();
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
  const bool known_;
  qsizetype faultCount_ = 0;
  const std::unique_ptr<TFormLoader> loader_ = TFormLoader::Make();
  TFormChecks checks_;
  std::map<QString, const TWidget*> components_;  ///< by name
  TFormFile::TReplacements replacements_;         ///< of what the toolkit gets
};

bool TPanelReader::Read() {
  if (!CheckWidgets()) return false;
  CheckToolkit();
  if (!MakeWidgets()) return false;
  CheckMarks();
  MakeConnections();
  SetProperties();
  Complete();
  OpenCircles();
  panel_.connections_.OnCircle = [&panel = panel_](const TFormFile::TConnection& connection) {
    ShowLater(QStringLiteral("%1:%2: %3")
                  .arg(panel.fileName_)
                  .arg(connection.Line)
                  .arg(ConnectionText(connection, kCircle)));
  };
  if (faultCount_ > kMaxFaults) {
    faults_.append(QStringLiteral("%1: there are %2 faults more")
                       .arg(panel_.fileName_)
                       .arg(faultCount_ - kMaxFaults));
  }
  return true;
}

void TPanelReader::CheckToolkit() {
  for (const TWidget& widget : panel_.form_.Widgets()) {
    const QMetaObject* meta = loader_->MetaOf(widget.ClassName);
    const QString textProperty = TextProperty(widget);
    std::set<QString> names;
    for (const TProperty& property : widget.Properties) {
      if (IsOurs(widget, property)) {
        replacements_.emplace(&property, QString());
      } else if (!names.insert(property.Name).second) {
        PropertyFault(NameOf(widget), property, kTwice);
        replacements_.emplace(&property, QString());
      } else {
        CheckProperty(NameOf(widget), meta, property, textProperty);
      }
    }
  }
  for (const TFormFile::TOtherProperty& other : panel_.form_.Others()) {
    CheckProperty(other.Owner, nullptr, other.Property, {});
  }
}

void TPanelReader::CheckProperty(const QString& owner, const QMetaObject* meta,
                                 const TProperty& property, const QString& textProperty) {
  const TFormChecks::TVerdict verdict = checks_.Check(meta, property, textProperty);
  if (!verdict.Why.isEmpty()) PropertyFault(owner, property, verdict.Why);
  if (!verdict.Why.isEmpty() || !verdict.Text.isEmpty()) {
    replacements_.emplace(&property, verdict.Text);
  }
}

bool TPanelReader::CheckWidgets() {
  qint64 cost = 0;
  for (const TWidget& widget : panel_.form_.Widgets()) {
    const TComponentClass* component = FindComponentClass(widget.ClassName);
    const bool isRoot = &widget == &panel_.form_.Widgets().front();
    const int plainCost = PlainWidgetCost(widget.ClassName, isRoot);
    cost += component ? ComponentCost(*component->Meta) : std::max(plainCost, 1);
    if (widget.Children > MostChildren(widget.ClassName)) {
      Fault(widget.Line, QStringLiteral("%1: it has too many pages").arg(NameOf(widget)));
      return false;
    }
    if (!component && plainCost == 0) {
      Fault(widget.Line, QStringLiteral("%1: the class is unknown").arg(NameOf(widget)));
    }
    if (!component) continue;
    if (widget.Name.isEmpty()) {
      Fault(widget.Line, QStringLiteral("%1: the component has no name").arg(NameOf(widget)));
    } else if (!components_.emplace(widget.Name, &widget).second) {
      Fault(widget.Line, QStringLiteral("%1: the name is used twice").arg(NameOf(widget)));
    }
  }
  for (const TFormFile::TLayout& layout : panel_.form_.Layouts()) {
    if (IsPlainLayout(layout.ClassName)) continue;
    Fault(layout.Line,
          QStringLiteral("%1 (%2): the class is unknown").arg(layout.Name, layout.ClassName));
  }
  if (cost > TFormFile::kMaxWidgets) Fault(1, QStringLiteral("too many widgets"));
  return cost <= TFormFile::kMaxWidgets;
}

bool TPanelReader::IsOurs(const TWidget& widget, const TProperty& property) {
  const TComponentClass* component = FindComponentClass(widget.ClassName);
  if (!component) return false;
  if (property.Name.contains('.') || IsOwnProperty(*component->Meta, property.Name)) return true;
  // Names of the toolkit's class, and such as style sheets ask for, are left to the form loader.
  return !property.IsDynamic && component->Meta->indexOfProperty(property.Name.toLatin1()) < 0;
}

bool TPanelReader::MakeWidgets() {
  QByteArray text = panel_.form_.Loadable(replacements_).toUtf8();
  QBuffer buffer(&text);
  buffer.open(QIODevice::ReadOnly);
  loader_->SetPictureFolder(panel_.pictures_->Folder());
  panel_.root_ = loader_->load(&buffer);
  if (!panel_.root_) {
    Fault(1, loader_->errorString());
    return false;
  }
  BeginForm(*panel_.root_, panel_.folder_, known_);
  return true;
}

void TPanelReader::CheckMarks() {
  for (auto* slider : panel_.root_->findChildren<QSlider*>()) {
    if (!HasTooManyMarks(*slider)) continue;
    slider->setTickPosition(QSlider::NoTicks);
    Fault(1,
          QStringLiteral("%1 (QSlider): it would have too many marks").arg(slider->objectName()));
  }
}

/// The form loader would only mutter about a connection that cannot be made.
void TPanelReader::MakeConnections() {
  if (panel_.form_.Connections().empty()) return;
  panel_.connections_.OnCircle = [this](const TFormFile::TConnection& connection) {
    Fault(connection.Line, ConnectionText(connection, kCircle));
  };
  QHash<QString, QObject*> objects;
  for (QObject* object : panel_.root_->findChildren<QObject*>()) {
    if (!object->objectName().isEmpty()) objects.insert(object->objectName(), object);
  }
  objects.insert(panel_.root_->objectName(), panel_.root_);
  for (const TFormFile::TConnection& wanted : panel_.form_.Connections()) {
    const QString fault = panel_.connections_.Connect(objects.value(wanted.Sender),
                                                      objects.value(wanted.Receiver), wanted);
    if (!fault.isEmpty()) Fault(wanted.Line, ConnectionText(wanted, fault));
  }
}

void TPanelReader::SetProperties() {
  for (const auto& widget : panel_.form_.Widgets()) {
    const auto found = components_.find(widget.Name);
    if (found == components_.end() || found->second != &widget) continue;
    const TComponentClass* componentClass = FindComponentClass(widget.ClassName);
    if (QWidget* component = loader_->Find(widget.Name, componentClass)) {
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
      PropertyFault(NameOf(widget), property, kTwice);
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
  for (const TFormLoader::TMade& made : loader_->Made()) {
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
                                         QStringList* faults, bool known) {
  QStringList found;
  std::unique_ptr<TPanel> panel(new TPanel);
  panel->fileName_ = fileName;
  panel->folder_ = QFileInfo(fileName).absolutePath();
  panel->pictures_ = std::make_unique<TFormPictures>(panel->folder_, known);
  QString error;
  bool read = panel->form_.Parse(text, &error);
  if (read) {
    read = TPanelReader(*panel, found, known).Read();
  } else {
    found.append(QStringLiteral("%1: %2").arg(fileName, error));
  }
  if (faults) faults->append(found);
  return read ? std::move(panel) : nullptr;
}

std::unique_ptr<TPanel> TPanel::Load(const QString& fileName, QStringList* faults, bool trusted) {
  TOrdinaryFile file(fileName);
  QString error;
  if (!file.Open(QIODevice::ReadOnly, &error)) {
    // The reason is reported below.
  } else if (file.size() > kMaxFileSize) {
    error = QStringLiteral("it is larger than %1 MiB").arg(kMaxFileSize >> 20);
  } else {
    const QByteArray bytes = file.read(kMaxFileSize);
    const int line = FirstForeignLine(bytes);
    if (line == 0) {
      const QByteArray content = ContentHash(bytes);
      const bool known = trusted || IsKnownPanel(fileName, content);
      auto panel = FromText(QString::fromUtf8(bytes), fileName, faults, known);
      if (panel) panel->content_ = content;
      return panel;
    }
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

/// Those that a new component has otherwise, with file names as they are meant from a folder.
TFormFile::TNewProperties ChangedProperties(QWidget& component, const TStoredValues& standard,
                                            const QString& from, const QString& to) {
  TFormFile::TNewProperties result;
  ForEachStored(component, [&](const TPublished& published) {
    TFormValue value = WriteFormValue(published);
    const auto found = standard.find(published.Path);
    const bool isDefault = found != standard.end() && found->second == value;
    if (isDefault) return;
    result.emplace_back(published.Path, Moved(published.Path, std::move(value), from, to));
  });
  return result;
}

}  // namespace

QString TPanel::Text() const { return TextFor(folder_); }

QString TPanel::TextFor(const QString& folder) const {
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
    state.properties = ChangedProperties(*entry.Component, standard->second, folder_, folder);
    for (const auto& [name, value] : state.properties) state.names.insert(name);
  }
  const QString text = form_.Replaced(
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
  return MovedPictures(text, folder_, folder);
}

QString TPanel::TextOf(bool (*wanted)(const TPublished&)) const {
  QString text;
  for (const TEntry& entry : entries_) {
    if (!entry.Component) continue;
    ForEachStored(*entry.Component, [&](const TPublished& published) {
      if (!wanted(published)) return;
      const TFormValue value = WriteFormValue(published);
      text += published.Path + '=' + value.Text + value.Items.join(',') + '\n';
    });
  }
  return text;
}

QString TPanel::Settings() const { return TextOf(IsSetting); }

QString TPanel::State() const {
  return TextOf([](const TPublished& published) {
    return published.Path != QLatin1String("Active") && published.Path != QLatin1String("Logging");
  });
}

bool TPanel::IsChangedOnDisk() const {
  TOrdinaryFile file(fileName_);
  return file.Open(QIODevice::ReadOnly, nullptr) &&
         ContentHash(file.read(kMaxFileSize)) != content_;
}

bool TPanel::Save(const QString& fileName, QString* error) {
  const QByteArray text = TextFor(QFileInfo(fileName).absolutePath()).toUtf8();
  const QString why = WriteWholeFile(fileName, text);
  if (!why.isEmpty()) {
    if (error) *error = QStringLiteral("Cannot write %1: %2").arg(fileName, why);
    return false;
  }
  fileName_ = fileName;
  content_ = ContentHash(text);
  return true;
}
