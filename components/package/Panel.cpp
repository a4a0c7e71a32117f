#include "components/package/Panel.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLabel>
#include <QSaveFile>
#include <QUiLoader>
#include <map>

#include "components/links/Compclasses.h"

namespace {

constexpr qint64 kMaxFileSize = 256 << 20;

/// Makes the widgets of a form: the toolkit's, the components, and placeholders for the rest.
class TFormLoader : public QUiLoader {
 public:
  TFormLoader() : known_(availableWidgets()) {}

  bool Knows(const QString& className) const {
    return known_.contains(className) || FindComponentClass(className);
  }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    if (const TComponentClass* component = FindComponentClass(className)) {
      QWidget* made = component->Make(parent);
      made->setObjectName(name);
      component->BeginLoading(made);
      Made.insert(name, made);
      return made;
    }
    if (known_.contains(className)) return QUiLoader::createWidget(className, parent, name);
    auto* placeholder = new QLabel('?' + className, parent);
    placeholder->setObjectName(name);
    placeholder->setFrameShape(QFrame::Box);
    placeholder->setAlignment(Qt::AlignCenter);
    return placeholder;
  }

  QHash<QString, QWidget*> Made;  ///< components by name, not owned

 private:
  const QStringList known_;
};

}  // namespace

/// Builds one panel from its form.
class TPanelReader {
 public:
  TPanelReader(TPanel& panel, QStringList& faults) : panel_(panel), faults_(faults) {}

  bool Read();

 private:
  using TWidget = TFormFile::TWidget;
  using TProperty = TFormFile::TProperty;

  void Fault(int line, const QString& what) {
    faults_.append(QStringLiteral("%1:%2: %3").arg(panel_.fileName_).arg(line).arg(what));
  }
  static QString NameOf(const TWidget& widget) {
    return QStringLiteral("%1 (%2)").arg(widget.Name, widget.ClassName);
  }

  void CheckWidgets();
  bool MakeWidgets();
  void SetProperties();
  void Set(const TWidget& widget, QWidget& component);
  void Complete();
  void ReportUnresolved(const QObject* owner, const QString& name);
  void OpenCircles();
  bool IsOurs(const TWidget& widget, const TProperty& property) const;

  TPanel& panel_;
  QStringList& faults_;
  TFormLoader loader_;
  std::map<QString, const TWidget*> components_;  ///< by name
};

bool TPanelReader::Read() {
  CheckWidgets();
  if (!MakeWidgets()) return false;
  SetProperties();
  Complete();
  OpenCircles();
  return true;
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

bool TPanelReader::IsOurs(const TWidget& widget, const TProperty& property) const {
  const TComponentClass* component = FindComponentClass(widget.ClassName);
  // A name of the toolkit's class is left to the form loader.
  return component && (property.Name.contains('.') ||
                       component->Meta->indexOfProperty(property.Name.toLatin1()) < 0 ||
                       IsOwnProperty(*component->Meta, property.Name));
}

bool TPanelReader::MakeWidgets() {
  QByteArray text = panel_.form_
                        .Without([this](const TWidget& widget, const TProperty& property) {
                          return IsOurs(widget, property);
                        })
                        .toUtf8();
  QBuffer buffer(&text);
  buffer.open(QIODevice::ReadOnly);
  panel_.root_ = loader_.load(&buffer);
  if (!panel_.root_) Fault(1, loader_.errorString());
  return panel_.root_;
}

void TPanelReader::SetProperties() {
  for (const TWidget& widget : panel_.form_.Widgets()) {
    const auto found = components_.find(widget.Name);
    if (found == components_.end() || found->second != &widget) continue;
    if (QWidget* component = loader_.Made.value(widget.Name)) {
      panel_.entries_.push_back({widget.Name, FindComponentClass(widget.ClassName), component});
      Set(widget, *component);
    }
  }
}

/// Some setters look at other properties: a pair of limits never crosses on its way. So what a
/// later property has moved is set again, until all of them stand.
void TPanelReader::Set(const TWidget& widget, QWidget& component) {
  struct TWanted {
    const TProperty* property;
    TPublished published;
    QVariant value;
    bool Stands() const {
      return value.typeId() == QMetaType::QString ||
             published.Property.read(published.Object) == value;
    }
  };
  std::vector<TWanted> wanted;
  const auto refuse = [&](const TProperty& property, const QString& reason) {
    Fault(property.Line,
          QStringLiteral("%1: property %2: %3").arg(NameOf(widget), property.Name, reason));
    panel_.refused_.emplace(widget.Name, property.Name);
  };
  for (const TProperty& property : widget.Properties) {
    if (!IsOurs(widget, property)) continue;
    QString reason;
    const auto published = FindPublished(component, property.Name, &reason);
    if (!published) {
      refuse(property, reason);
      continue;
    }
    const QVariant value = ReadFormValue(*published, property.Value, &reason);
    if (!value.isValid()) {
      refuse(property, reason);
      continue;
    }
    published->Property.write(published->Object, value);
    wanted.push_back({&property, *published, value});
  }
  constexpr int kRounds = 2;
  for (int round = 0; round < kRounds; ++round) {
    for (const TWanted& one : wanted) {
      if (!one.Stands()) one.published.Property.write(one.published.Object, one.value);
    }
  }
  for (const TWanted& one : wanted) {
    if (!one.published.Property.isStored() || one.Stands()) continue;
    refuse(*one.property,
           QStringLiteral("it does not take the value '%1'").arg(one.property->Value.Text));
  }
}

void TPanelReader::Complete() {
  TKorvalCompList::OnUnresolved = [this](QObject* owner, const QString& name) {
    ReportUnresolved(owner, name);
  };
  for (const TPanel::TEntry& entry : panel_.entries_) {
    if (entry.Component) entry.Class->Loaded(entry.Component);
  }
  TKorvalCompList::OnUnresolved = nullptr;
}

void TPanelReader::ReportUnresolved(const QObject* owner, const QString& name) {
  const auto found = owner ? components_.find(owner->objectName()) : components_.end();
  if (found == components_.end()) {
    return Fault(1, QStringLiteral("there is no component %1").arg(name));
  }
  const TWidget& widget = *found->second;
  for (const TProperty& property : widget.Properties) {
    if (property.Value.Text != name && !property.Value.Items.contains(name)) continue;
    return Fault(property.Line,
                 QStringLiteral("%1: property %2: there is no component %3 that fits")
                     .arg(NameOf(widget), property.Name, name));
  }
  Fault(widget.Line,
        QStringLiteral("%1: there is no component %2 that fits").arg(NameOf(widget), name));
}

/// While a form is read every client is taken, for the lists are not complete; so a circle is found
/// only now.
void TPanelReader::OpenCircles() {
  for (const TPanel::TEntry& entry : panel_.entries_) {
    auto* control = qobject_cast<TServerDataControl*>(entry.Component.data());
    if (!control) continue;
    TKorvalCompList& clients = *control->GetClientControls();
    for (int i = clients.Count() - 1; i >= 0; --i) {
      const auto* client = clients.Get<TServerDataControl>(i);
      if (!client || (client != control && !client->PointsTo(control))) continue;
      const QString name = client->objectName();
      clients.Delete(i);
      const TWidget& widget = *components_.at(entry.Name);
      int line = widget.Line;
      for (const TProperty& property : widget.Properties) {
        if (property.Value.Items.contains(name)) line = property.Line;
      }
      Fault(line, QStringLiteral("%1: property ClientControls: %2 would get its own values back; "
                                 "circular references are not allowed")
                      .arg(NameOf(widget), name));
    }
  }
}

// TPanel

TPanel::~TPanel() {
  if (root_ && !root_->parent()) delete root_;
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
    return FromText(QString::fromUtf8(bytes), fileName, faults);
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

}  // namespace

QString TPanel::Text() const {
  std::map<QString, TStoredValues> defaults;
  QHash<QString, const TEntry*> entries;
  for (const TEntry& entry : entries_) {
    if (entry.Component) entries.insert(entry.Name, &entry);
  }
  const auto entryOf = [&](const TFormFile::TWidget& widget) {
    const TEntry* entry = entries.value(widget.Name);
    return entry && entry->Class->Name == widget.ClassName ? entry : nullptr;
  };
  return form_.Replaced(
      [&](const TFormFile::TWidget& widget, const TFormFile::TProperty& property) {
        const TEntry* entry = entryOf(widget);
        return entry && !refused_.contains({widget.Name, property.Name}) &&
               FindPublished(*entry->Component, property.Name, nullptr);
      },
      [&](const TFormFile::TWidget& widget) {
        TFormFile::TNewProperties result;
        const TEntry* entry = entryOf(widget);
        if (!entry) return result;
        const auto [known, isNew] = defaults.try_emplace(entry->Class->Name);
        if (isNew) known->second = DefaultsOf(*entry->Class);
        const auto& standard = known->second;
        ForEachStored(*entry->Component, [&](const TPublished& published) {
          TFormValue value = WriteFormValue(published);
          const auto found = standard.find(published.Path);
          const bool isDefault = found != standard.end() && found->second == value;
          if (!isDefault) result.emplace_back(published.Path, std::move(value));
        });
        return result;
      });
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
