#include "components/links/Outside.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QObject>
#include <algorithm>

#include "components/links/Propclasses.h"
#include "model/Oneline.h"

namespace {

struct TForm {
  QString folder;
  QString realFolder;
  bool readsAnywhere = false;
  bool atRest = true;
  TWishes granted;
};

/// By their topmost objects.
QHash<const QObject*, TForm>& Forms() {
  static QHash<const QObject*, TForm> forms;
  return forms;
}

/// Null if no form brought the object.
const TForm* FormOf(const QObject* object) {
  const auto& forms = Forms();
  if (forms.isEmpty()) return nullptr;
  while (object) {
    if (const auto found = forms.constFind(object); found != forms.cend()) return &*found;
    const auto* part = qobject_cast<const TPersistent*>(object);
    object = part ? part->Owner() : object->parent();
  }
  return nullptr;
}

const QString kAtRest = QStringLiteral("the panel has not been started");
const QString kOutside = QStringLiteral("it lies outside the folder of the panel");

/// Of files and folders.
QString PlaceText(const TForm* form, const QString& path) {
  if (!form || !IsBelow(path, form->realFolder)) return ShownName(path);
  const QString name = QDir(form->realFolder).relativeFilePath(path);
  return QStringLiteral("%1 beside the panel").arg(ShownName(name));
}

bool IsGranted(const TForm& form, TWish::TKind kind, const QString& place) {
  return std::ranges::any_of(
      form.granted, [&](const TWish& wish) { return wish.Kind == kind && wish.Place == place; });
}

void AddFileWish(TWishes& wishes, const QObject* component, TWish::TKind kind,
                 const QString& fileName, const QString& text) {
  const QString path = RealPath(FormPath(component, fileName));
  wishes.push_back({kind, fileName, path, text.arg(PlaceText(FormOf(component), path))});
}

}  // namespace

void BeginForm(QObject& form, const QString& folder, bool readsAnywhere) {
  if (!Forms().contains(&form)) {
    QObject::connect(&form, &QObject::destroyed, [](const QObject* gone) { Forms().remove(gone); });
  }
  Forms().insert(&form, {folder, RealPath(folder), readsAnywhere, true, {}});
}

void StartForm(QObject& form, const TWishes& granted) {
  const auto found = Forms().find(&form);
  if (found == Forms().end()) return;
  found->atRest = false;
  found->granted = granted;
}

QString FormFolder(const QObject* component) {
  const TForm* form = FormOf(component);
  return form ? form->folder : QString();
}

QString FormPath(const QObject* component, const QString& fileName) {
  const TForm* form = fileName.isEmpty() ? nullptr : FormOf(component);
  return form ? QDir(form->folder).filePath(fileName) : fileName;
}

bool IsAtRest(const QObject* component) {
  const TForm* form = FormOf(component);
  return form && form->atRest;
}

// Wishes

void AddConnectWish(TWishes& wishes, const QString& host, int port) {
  if (host.isEmpty() || port == 0) return;
  wishes.push_back(
      {TWish::TKind::Connect,
       host,
       {},
       QStringLiteral("connect to %1 port %2").arg(ShownName(host), QString::number(port))});
}

void AddPortWish(TWishes& wishes, const QString& port) {
  if (port.isEmpty()) return;
  wishes.push_back(
      {TWish::TKind::OpenPort, port, {}, QStringLiteral("open %1").arg(ShownName(port))});
}

void AddWriteWish(TWishes& wishes, const QObject* component, const QString& fileName,
                  bool isPattern) {
  if (fileName.isEmpty()) return;
  AddFileWish(wishes, component, TWish::TKind::Write, fileName, QStringLiteral("write %1"));
  const QString path = FormPath(component, fileName);
  const qsizetype made = isPattern ? path.indexOf('%') : -1;
  if (made >= 0) wishes.back().Place = RealPath(path.left(path.lastIndexOf('/', made)) + '/');
}

void AddFolderWish(TWishes& wishes, const QObject* component, const QString& folder) {
  const QString name = folder.isEmpty() ? QStringLiteral(".") : folder;
  AddFileWish(wishes, component, TWish::TKind::Write, name, QStringLiteral("write files into %1"));
  TWish& wish = wishes.back();
  const TForm* form = FormOf(component);
  if (form && wish.Place == form->realFolder) {
    wish.Text = QStringLiteral("write files into the folder of the panel");
  }
}

void AddReadWish(TWishes& wishes, const QObject* component, const QString& fileName) {
  if (fileName.isEmpty()) return;
  const TForm* form = FormOf(component);
  if (form && IsBelow(RealPath(FormPath(component, fileName)), form->realFolder)) return;
  AddFileWish(wishes, component, TWish::TKind::Read, fileName, QStringLiteral("read %1"));
}

void AddFollowWish(TWishes& wishes, const QObject* component, const QString& fileName) {
  if (fileName.isEmpty()) return;
  AddFileWish(wishes, component, TWish::TKind::Follow, fileName,
              QStringLiteral("open %1 when its link is clicked"));
}

// Permission

QString RestRefusal(const QObject* component) { return IsAtRest(component) ? kAtRest : QString(); }

QString ReadRefusal(const QObject* component, const QString& path) {
  const TForm* form = FormOf(component);
  if (!form || form->readsAnywhere) return {};
  const QString real = RealPath(path);
  if (IsBelow(real, form->realFolder) || IsGranted(*form, TWish::TKind::Read, real)) return {};
  return NoPlaceText(component);
}

QString FollowRefusal(const QObject* component, const QString& path) {
  const TForm* form = FormOf(component);
  if (!form || IsGranted(*form, TWish::TKind::Follow, RealPath(path))) return {};
  return form->atRest ? kAtRest : QStringLiteral("nobody was asked about it");
}

QString NoPlaceText(const QObject* component) { return IsAtRest(component) ? kAtRest : kOutside; }

std::optional<QString> WritePlace(const QObject* component, const TWish& wish) {
  const TForm* form = FormOf(component);
  if (!form) return QString();
  if (form->atRest) return {};
  if (IsBelow(wish.Place, form->realFolder)) return form->realFolder;
  const auto granted = std::ranges::find_if(form->granted, [&](const TWish& one) {
    return one.Kind == wish.Kind && one.Target == wish.Target && one.Place == wish.Place;
  });
  if (granted == form->granted.end()) return {};
  return granted->Place;
}

QString PlaceRefusal(const QString& path, const QString& place) {
  if (place.isEmpty()) return {};
  const QFileInfo info(path);
  if (info.exists() && !info.isFile()) return QStringLiteral("it is no file");
  if (IsBelow(RealPath(path), place)) return {};
  return kOutside;
}

QString WriteRefusal(const QObject* component, const TWishes& wishes, const QString& path) {
  if (wishes.empty()) return QStringLiteral("there is no name");
  const std::optional<QString> place = WritePlace(component, wishes.front());
  if (place) return PlaceRefusal(path, *place);
  return NoPlaceText(component);
}

// Paths and names

QString RealPath(const QString& path) {
  constexpr int kMaxLinks = 40;
  // Not made absolute by the toolkit, which takes "link/.." for nothing; the system follows the
  // link.
  QString head = QDir::isAbsolutePath(path) ? path : QDir::currentPath() + '/' + path;
  QString tail;
  for (int links = 0; links < kMaxLinks;) {
    const QFileInfo info(head);
    if (const QString real = info.canonicalFilePath(); !real.isEmpty()) {
      return QDir::cleanPath(real + tail);
    }
    // A link to what is not there yet: whoever writes the link makes that.
    if (info.isSymLink()) {
      head = info.symLinkTarget();
      ++links;
      continue;
    }
    const qsizetype slash = head.lastIndexOf('/');
    if (slash <= 0) break;
    tail.prepend(head.mid(slash));
    head.truncate(slash);
  }
  return QDir::cleanPath(head + tail);
}

bool IsBelow(const QString& path, const QString& folder) {
  return !folder.isEmpty() &&
         (path == folder || path.startsWith(folder.endsWith('/') ? folder : folder + '/'));
}
